#pragma once

#include "store/conexion.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>
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
    // The address another connection (a document) opens the same data with.
    QString direccion() const { return m_direccion; }
    Motor motor() const { return m_motor; }

    // Today as the demo data sees it: fixed, so results do not depend on the day.
    static QDate Hoy() { return QDate(2026, 11, 23); }

private:
    Motor m_motor;
    QTemporaryDir m_carpeta;
    QString m_direccion;
    QString m_esquema;
    std::unique_ptr<Conexion> m_conexion;
};

// SQLite always; PostgreSQL too when ASIENTOS_TEST_PG holds a connection address.
std::vector<Motor> MotoresDePrueba();
QString NombreMotor(Motor motor);
