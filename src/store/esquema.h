#pragma once

#include "conexion.h"

#include <QStringList>

// The tables of the journal-entry screen and of the services it uses, with their indexes,
// for either engine. Creating them again is harmless (IF NOT EXISTS).
QStringList SentenciasEsquema(Motor motor);
void CrearEsquema(Conexion &conexion);

// The names of the schema's tables, as written in the statements.
QStringList TablasEsquema();
// The column the engine numbers in a table of the schema, or an empty text.
QString ColumnaNumerada(const QString &tabla);

// What a database holds: nothing at all, this program's tables, only some of them, or
// tables of something else.
enum class EstadoEsquema { Vacia, DelPrograma, Incompleta, Ajena };
// tablas, when given, receives the tables found (names in lower case).
EstadoEsquema ExaminarEsquema(Conexion &conexion, QStringList *tablas = nullptr);
// The program's tables missing from those found (names as the statements write them),
// leaving out the ones an earlier version did not have yet (CompletarEsquema adds them).
QStringList TablasFaltantes(const QStringList &tablas);

// Adds the tables that a database made by an earlier version of the program lacks; tablas
// are those it holds, as ExaminarEsquema found them.
void CompletarEsquema(Conexion &conexion, const QStringList &tablas);
