#pragma once

#include "conexionqt.h"
#include "fallo.h"

#include <QDate>
#include <QString>

#include <memory>

// Opens a database for the program to work on: it must hold this program's tables. An
// empty database or one of something else is refused, before anything is written to it,
// with a text that tells the user what to do; a database of an earlier version gets the
// tables it lacks. The connection is then set for sharing with other sessions, a write
// waiting at most esperaBloqueoMs for another session.
std::unique_ptr<ConexionQt> AbrirBaseDelPrograma(const QString &direccion, int esperaBloqueoMs = DireccionBD::kEsperaBloqueoMs);
// The same for a caller above the data layer: a refusal or a failure to open is answered as
// a Fallo (text 0) whose detail is the text that tells it.
Resultado<std::unique_ptr<ConexionQt>> ConexionDelPrograma(const QString &direccion);

// The address as it may be shown: without its password.
QString DireccionVisible(const QString &direccion);

// Creates the schema and a company in an empty database (a SQLite file is made when it
// does not exist): the demo company with its entries, or one empty company. A database
// that already holds the tables, or tables of something else, is left as it is.
struct Inicializacion
{
    enum class Resultado { Creada, YaExistia, Ajena, Error };
    Resultado resultado = Resultado::Error;
    QString informe; // one line for the user
};
Inicializacion InicializarBase(const QString &direccion, bool conDemo, const QDate &hoy);
