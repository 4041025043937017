#pragma once

#include "store/direccionbd.h"

#include <QColor>
#include <QHash>
#include <QString>

#include <memory>

// What the connection service is started with: its settings file, the database to open
// (empty: the "BaseDatos" setting of the file) and settings forced for this run only
// (the host's --lang), which win over the file.
struct AjustesConexion
{
    QString archivoAjustes;
    QString baseDatos;
    QHash<QString, QString> forzados; // key "APLICACION/Ajuste" or "Ajuste"
    int esperaBloqueoMs = DireccionBD::kEsperaBloqueoMs; // a write's wait for another session
};

// The data-connection service: the user's settings (language, colour scheme, date format,
// data folder) and the opening of the shared database connection.
class ServicioConexion
{
public:
    explicit ServicioConexion(AjustesConexion ajustes);

    // Setting of one application (section = application code in upper case).
    QString LeerAjusteAplicacion(const QString &codigoAplicacion, const QString &nombre) const;
    QString LeerAjuste(const QString &nombre) const;

    int EsquemaColor(const QColor &porDefecto) const;
    QColor ColorEsquema(int esquema, int numeroColor) const;
    // Date display format in the suite's notation ("dd/mm/yyyy").
    QString FormatoFecha(int numero) const;

    // Opens the database for the session; on failure answers null and leaves the reason in
    // ultimoError(). The mode is the suite's open mode; every mode opens read-write here.
    std::unique_ptr<Conexion> AbrirConexion(const QString &claveSesion, int modo);
    QString ultimoError() const { return m_ultimoError; }

private:
    QString leer(const QString &clave) const;

    AjustesConexion m_ajustes;
    QString m_ultimoError;
};
