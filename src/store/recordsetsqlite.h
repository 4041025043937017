#pragma once

#include "conexion.h"

#include <QStringList>

struct sqlite3;
struct sqlite3_stmt;

// A forward-only result read straight from the SQLite engine under a Qt SQL connection (the
// handle QSqlDriver::handle() gives). A column becomes a QVariant only when it is asked for,
// so a reader that needs a few columns of a wide view pays for those few. Values come back
// as the Qt driver gives them: integers as qlonglong, reals as double, text as QString, a
// NULL as a null QString.
class RecordsetSqlite final : public Recordset
{
public:
    // Prepares sql, binds valores in order and reads the first row; throws ErrorBaseDatos
    // when the engine refuses. esperaMs is the lock wait the connection was opened with, said
    // when a read finds the database held too long.
    RecordsetSqlite(sqlite3 *base, const QString &sql, const QVariantList &valores, int esperaMs);
    ~RecordsetSqlite() override;
    RecordsetSqlite(const RecordsetSqlite &) = delete;
    RecordsetSqlite &operator=(const RecordsetSqlite &) = delete;

    // The handle behind a Qt SQL driver, or null when the driver is not SQLite's.
    static sqlite3 *Manejador(const QVariant &manejador);

    bool Fin() const override { return m_fin; }
    void MoverSiguiente() override;
    void Cerrar() override;

    using Recordset::Campo;
    QVariant Campo(int indice) const override;
    bool NuloEn(int indice) const override;
    double NumeroEn(int indice) const override;
    qint64 EnteroEn(int indice) const override;
    int CantidadCampos() const override { return int(m_nombres.size()); }
    int IndiceCampo(const QString &nombre) const override { return IndiceEn(m_nombres, nombre); }
    QString NombreCampo(int indice) const override { return m_nombres.value(indice); }

private:
    void avanzar();
    // Throws unless there is a current row with that column.
    [[noreturn]] void fallar(int codigo);

    sqlite3 *m_base;
    sqlite3_stmt *m_sentencia = nullptr;
    QStringList m_nombres;
    int m_esperaMs;
    bool m_fin = false;
};
