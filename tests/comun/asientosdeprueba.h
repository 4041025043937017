#pragma once

#include "comun/basesprueba.h"

#include "entries/asientodatos.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

// Why an operation failed, for a test's message; empty when it did not.
std::string Motivo(const std::optional<Fallo> &fallo);
// Passes when the operation did not fail; else fails saying why.
::testing::AssertionResult Bien(const std::optional<Fallo> &fallo);
// The catalogue text that tells a failure; -1 when there was none.
int NumeroDe(const std::optional<Fallo> &fallo);
// Writes the entry whole; answers its id, 0 when the write was refused.
qint32 IdGrabado(AsientoDatos &datos);
// Sends the entry to the trash; answers the ids sent, joined by ",", empty when refused.
QString Papelera(AsientoDatos &datos, qint32 asiID, const QDateTime &sello);

// A line as the data services take it, by account id; the rate is the one of the two
// amounts (mc, the accounting amount, is the amount itself when left out).
LineaDatos Linea(qint32 cuenta, bool debe, double importe, double mc = -1, qint16 pry = 0, qint16 dep = 0);

// A line of a test entry: the demo account's code, whether it is at the debit, and the
// amount in the accounting currency.
using LineaDePrueba = std::tuple<const char *, bool, double>;

// The lines as the data services take them, in pesos at rate 1, numbered in order.
QVector<LineaDatos> LineasDePrueba(BaseDePrueba &base, const QList<LineaDePrueba> &lineas);

// A stored entry as text, to compare whole: the header "estado|fecha|leyenda|libro|autoriza|
// verificado", then each line by its order as "código|D or H|importe|importe MC|orden|proyecto|
// departamento"; a null value reads "null". Empty when there is no such entry; sello, when
// given, receives the modification stamp.
QStringList AsientoComoTexto(Conexion &conexion, qint32 id, QString *sello = nullptr);

// An entry's lines, or a frequent template's, in their order as "código|D or H|importe MC" with
// the amount to the cent.
QStringList LineasDe(Conexion &conexion, qint32 id, bool deFrecuente = false);

// Writes an entry of the demo company through the data service, as a document would;
// answers its id, 0 when the service refused it (the test fails then, unless it expects so).
qint32 GrabarAsientoDePrueba(BaseDePrueba &base, qint16 estado, const QDate &fecha, const QString &leyenda, qint16 libro,
                             const QList<LineaDePrueba> &lineas, bool debeGrabarse = true);
