#pragma once

#include "store/conexion.h"

#include <QList>
#include <QString>

// Writes, for each demo user without one, a grid layout holding this month's journal, so
// that the first start of the demo shows entries rather than an empty grid. Uses the same
// loading code as the document.
void SembrarDisenosDemo(Conexion &conexion, const QString &carpeta, const QList<int> &usuarios);
