#pragma once

#include "conexion.h"
#include "direccionbd.h"
#include "recordsetpg.h"

#include <QSqlDatabase>

// Conexion over Qt SQL: QSQLITE for a file, QPSQL for a server. Reads are forward-only so a
// long result is never held in memory whole.
class ConexionQt final : public Conexion
{
public:
    ~ConexionQt() override;

    // Opens the database; throws ErrorBaseDatos with the reason when it cannot.
    // A SQLite file that does not exist is refused unless crearArchivo is true. Nothing is
    // written to the database: a file the user cannot write is opened for reading only.
    static std::unique_ptr<ConexionQt> Abrir(const DireccionBD &direccion, bool crearArchivo = false);

    // Settings for working beside other sessions, applied once the database is known to
    // be this program's: SQLite goes to write-ahead logging (readers never wait for a
    // writer), PostgreSQL waits at most the address's lock wait for a row another session
    // holds.
    void ModoCompartido();
    bool soloLectura() const { return m_soloLectura; }

    Motor motor() const override { return m_motor; }
    bool abierta() const override;

    std::unique_ptr<Recordset> Abrir(const QString &sql, const QVariantList &valores = {}) override;
    int Ejecutar(const QString &sql, const QVariantList &valores = {}) override;
    qint64 Insertar(const QString &sql, const QVariantList &valores, const QString &columnaId) override;

    void Comenzar() override;
    void Confirmar() override;
    void Deshacer() override;
    void Cerrar() override;

    bool Escuchar(const QString &canal, std::function<void(const QString &carga)> aviso) override;
    void Avisar(const QString &canal, const QString &carga) override;

private:
    ConexionQt(Motor motor, const QString &nombre, const DireccionBD &direccion);

    // The statement in the engine's dialect, logged as built and as sent.
    QString adaptar(const QString &sql) const;
    QSqlQuery preparar(const QString &sql, const QVariantList &valores, bool lectura);
    std::unique_ptr<Recordset> abrirPG(const QString &sql, const QVariantList &valores);
    // codigo: the engine's code for the failure, empty when it gave none.
    bool conexionCaida(const QString &codigo);
    void reconectar();
    void aplicarModo();
    void suscribir();
    QString canal(const QString &nombre) const;

    Motor m_motor;
    QString m_nombre;
    DireccionBD m_direccion;
    int m_nivel = 0; // transactions open, the outermost one and its savepoints
    bool m_soloLectura = false;
    bool m_compartido = false;
    QStringList m_canales; // channels listened to, subscribed again on every new session
    // PostgreSQL: the reader whose rows are still coming; it lets go before anything else runs.
    std::shared_ptr<RecordsetPG::Turno> m_turno = std::make_shared<RecordsetPG::Turno>();
};
