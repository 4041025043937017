#pragma once

#include "comun/basesprueba.h"

#include "entries/asientodatos.h"

#include <QDate>
#include <QList>
#include <QString>

#include <tuple>

// A line of a test entry: the demo account's code, whether it is at the debit, and the
// amount in the accounting currency.
using LineaDePrueba = std::tuple<const char *, bool, double>;

// The lines as the data services take them, in pesos at rate 1, numbered in order.
QVector<LineaDatos> LineasDePrueba(BaseDePrueba &base, const QList<LineaDePrueba> &lineas);

// Writes an entry of the demo company through the data service, as a document would;
// answers its id, 0 when the service refused it (the test fails then, unless it expects so).
qint32 GrabarAsientoDePrueba(BaseDePrueba &base, qint16 estado, const QDate &fecha, const QString &leyenda, qint16 libro,
                             const QList<LineaDePrueba> &lineas, bool debeGrabarse = true);
