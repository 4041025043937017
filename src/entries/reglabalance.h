#pragma once

#include "currency/importe.h"

#include <QString>
#include <QVector>

#include <functional>

class CatalogoMonedas;
class Mascara;

// One line as the balance test sees it: its side, its currency (0: the accounting currency)
// and its amounts in the accounting currency and in its own.
struct LineaBalance
{
    bool alDebe = true;
    qint16 moneda = 0;
    Importe mc;
    Importe me;
};

// What the balance test answers. The differences and the side mean something only when the
// entry does not balance.
struct ResultadoBalance
{
    bool cierra = false;
    bool debeMenor = false;   // the debit side is the short one
    Importe diferenciaMC;
    Importe diferenciaME;
    Importe debeMC;
    Importe haberMC;
};

// The balance test of an entry, the one rule the screen and the write path share. Each line
// counts as its currency's amount mask shows it; an entry balances when it has a debit and a
// credit line and its sums in the accounting currency are equal as its amount mask shows
// them; when every line is in one foreign currency, the sums in that currency must be equal
// too. mascaraImporte answers the amount mask of a currency (0: the accounting one); it is
// asked for every foreign line, so a caller that tests many entries keeps its masks.
// Sums past the amount type's range do not balance.
ResultadoBalance CalcularBalance(const QVector<LineaBalance> &lineas, qint16 monedaContabilidad,
                                 const std::function<const Mascara &(qint16)> &mascaraImporte);
// The same test with each currency's amount mask as the catalogue gives it.
ResultadoBalance CalcularBalance(const QVector<LineaBalance> &lineas, qint16 monedaContabilidad, CatalogoMonedas &monedas);
