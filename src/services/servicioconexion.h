#pragma once

#include "store/direccionbd.h"
#include "store/fallo.h"

#include <QColor>
#include <QHash>
#include <QString>

#include <memory>
#include <optional>

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

    // Opens the database for the session into conexion; a failure is told by text 905 with
    // the reason. The mode is the suite's open mode; every mode opens read-write here.
    [[nodiscard]] std::optional<Fallo> AbrirConexion(const QString &claveSesion, int modo, std::unique_ptr<Conexion> &conexion) const;

private:
    QString leer(const QString &clave) const;

    AjustesConexion m_ajustes;
};
