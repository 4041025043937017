#pragma once

#include "services/datossesion.h"

#include <QDate>
#include <QString>

#include <optional>

extern const QString kModuloAsientos; // "PasajeAsientos"

bool TienePermiso(const QString &letras, QChar letra);
// Whether the letters let the user in at all: to see entries (Q), add (A), change (M) or
// delete (E). The window and the command line admit the same users.
bool PuedeEntrar(const QString &letras);
QString NombreEdicion(const QString &claveSesion);

// Date display format in the suite's notation ("dd/mm/yyyy") as a Qt display format.
QString FormatoQtDeFecha(const QString &formatoSuite);
