#pragma once

#include "conexion.h"

#include <QStringList>

// The tables of the journal-entry screen and of the services it uses, with their indexes,
// for either engine. Creating them again is harmless (IF NOT EXISTS).
QStringList SentenciasEsquema(Motor motor);
void CrearEsquema(Conexion &conexion);
