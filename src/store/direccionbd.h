#pragma once

#include "conexion.h"

#include <QString>

// Where the database is: a SQLite file path, or a PostgreSQL address
// postgresql://user[:password]@[host][:port]/dbname[?host=/socket/dir&port=N&schema=NAME&password=P].
// User and password are percent-decoded ("%23" for "#", "%40" for "@").
struct DireccionBD
{
    Motor motor = Motor::SQLite;
    QString archivo;    // SQLite
    QString usuario;    // PostgreSQL from here on
    QString clave;
    QString servidor;   // host name or socket folder
    int puerto = 5432;
    QString base;
    QString esquema;    // PostgreSQL schema to work in (?schema=NAME); empty: the default
    // How long a write waits for another session before it gives up, in milliseconds.
    static constexpr int kEsperaBloqueoMs = 5000;
    int esperaBloqueoMs = kEsperaBloqueoMs;

    bool valida() const;
    // Whether a schema name is a plain name (letters, digits, "_"; not a digit first).
    static bool EsquemaValido(const QString &esquema);
    static DireccionBD Leer(const QString &texto);
};
