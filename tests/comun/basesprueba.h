#pragma once

#include "store/conexion.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <vector>

// A database of its own for one test: a SQLite file in a temporary folder, or a fresh
// schema on the PostgreSQL server named by ASIENTOS_TEST_PG (dropped afterwards).
class BaseDePrueba
{
public:
    enum class Contenido { Vacia, Esquema, Demo };

    BaseDePrueba(Motor motor, Contenido contenido);
    ~BaseDePrueba();

    Conexion &conexion() { return *m_conexion; }
    // The first column of the first row a query gives; a null value when it gives none.
    QVariant Valor(const QString &sql, const QVariantList &valores = {});
    // The id of the account of the demo company with that code.
    qint32 IdCuenta(const char *codigo);
    // The newest entry's id, and the ids of the entries meeting a condition, oldest first.
    qint32 UltimoAsiento();
    QList<qint32> Asientos(const QString &condicion);
    // The clock of this database's connection, fixed at noon of Hoy(); a test that needs
    // another day fixes it again, and hands it to every document it opens on the data.
    std::shared_ptr<Reloj> reloj() const { return m_reloj; }
    // The address another connection (a document) opens the same data with.
    QString direccion() const { return m_direccion; }
    Motor motor() const { return m_motor; }

    // Today as the demo data and the clocks of the tests see it: fixed, so results do not
    // depend on the day the suite runs.
    static QDate Hoy() { return QDate(2026, 11, 23); }
    // A clock fixed at noon of the day given (Hoy() when none).
    static std::shared_ptr<Reloj> RelojFijo(const QDate &dia = Hoy());

private:
    Motor m_motor;
    QTemporaryDir m_carpeta;
    QString m_direccion;
    QString m_esquema;
    std::shared_ptr<Reloj> m_reloj = RelojFijo();
    std::unique_ptr<Conexion> m_conexion;
};

// The first column of the first row a query gives; a null value when it gives none.
QVariant ValorDe(Conexion &conexion, const QString &sql, const QVariantList &valores = {});

// The database error the call throws; none when it throws nothing.
template <class Llamada>
std::optional<ErrorBaseDatos> ErrorDe(Llamada llamada)
{
    try {
        llamada();
    } catch (const ErrorBaseDatos &e) {
        return e;
    }
    return std::nullopt;
}

// SQLite always; PostgreSQL too when ASIENTOS_TEST_PG holds a connection address.
std::vector<Motor> MotoresDePrueba();
QString NombreMotor(Motor motor);

// A suite parameterised by engine, run on each engine of MotoresDePrueba and named by it.
#define INSTANCIAR_EN_MOTORES(Suite)                                                                      \
    INSTANTIATE_TEST_SUITE_P(Motores, Suite, ::testing::ValuesIn(MotoresDePrueba()),                      \
                             [](const ::testing::TestParamInfo<Motor> &i) { return NombreMotor(i.param).toStdString(); })
