#pragma once

#include "conexion.h"
#include "direccionbd.h"

#include <QSqlDatabase>

// Conexion over Qt SQL: QSQLITE for a file, QPSQL for a server. Reads are forward-only so a
// long result is never held in memory whole.
class ConexionQt final : public Conexion
{
public:
    ~ConexionQt() override;

    // Opens the database; throws ErrorBaseDatos with the reason when it cannot.
    // A SQLite file that does not exist is refused unless crearArchivo is true.
    static std::unique_ptr<ConexionQt> Abrir(const DireccionBD &direccion, bool crearArchivo = false);

    Motor motor() const override { return m_motor; }
    bool abierta() const override;

    std::unique_ptr<Recordset> Abrir(const QString &sql, const QVariantList &valores = {}) override;
    int Ejecutar(const QString &sql, const QVariantList &valores = {}) override;
    qint64 Insertar(const QString &sql, const QVariantList &valores, const QString &columnaId) override;

    void Comenzar() override;
    void Confirmar() override;
    void Deshacer() override;
    void Cerrar() override;

private:
    ConexionQt(Motor motor, const QString &nombre);

    Motor m_motor;
    QString m_nombre;
    int m_nivel = 0; // transactions open, the outermost one and its savepoints
};
