#include "reglabalance.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"

#include <QHash>

#include <algorithm>

namespace {

// Two sums as a mask prints them. A mask with digits prints them alike exactly when they
// round alike to its decimals; any other mask is printed, and a blank one shows every
// decimal, so no difference passes.
bool igualesImpresos(const Mascara &m, Importe a, Importe b)
{
    if (m.valida())
        return ImporteConMascara(a, m) == ImporteConMascara(b, m);
    return m.Formatear(a) == m.Formatear(b);
}

} // namespace

ResultadoBalance CalcularBalance(const QVector<LineaBalance> &lineas, qint16 monedaContabilidad,
                                 const std::function<const Mascara &(qint16)> &mascaraImporte)
{
    ResultadoBalance r;
    Importe debeME, haberME;
    int lineasDebe = 0;
    int lineasHaber = 0;
    qint16 monedaExtranjera = 0;
    bool unaSolaMoneda = true; // every line is in the same foreign currency
    bool enRango = true;
    // Each line counts as its mask shows it, as the grid holds it: an amount stored with
    // more decimals than its currency shows cannot leave a difference no one can see.
    const Mascara mascaraMC = mascaraImporte(0); // a copy: the next call may move what it answered
    for (const LineaBalance &l : lineas) {
        enRango = enRango && (l.alDebe ? r.debeMC : r.haberMC).SumarComprobado(ImporteConMascara(l.mc, mascaraMC));
        ++(l.alDebe ? lineasDebe : lineasHaber);
        if (l.moneda != 0 && l.moneda != monedaContabilidad) {
            unaSolaMoneda = unaSolaMoneda && (monedaExtranjera == 0 || monedaExtranjera == l.moneda);
            monedaExtranjera = l.moneda;
            enRango = enRango && (l.alDebe ? debeME : haberME).SumarComprobado(ImporteConMascara(l.me, mascaraImporte(l.moneda)));
        } else {
            unaSolaMoneda = false;
        }
    }
    // An entry that mixes currencies (dollars paid with pesos, the opening-balance entry)
    // would add amounts of different currencies: the accounting currency alone decides it.
    const bool compararME = unaSolaMoneda && monedaExtranjera != 0;
    r.cierra = enRango && lineasDebe > 0 && lineasHaber > 0 && igualesImpresos(mascaraImporte(0), r.debeMC, r.haberMC)
            && (!compararME || igualesImpresos(mascaraImporte(monedaExtranjera), debeME, haberME));
    if (r.cierra || !enRango)
        return r;
    if (r.debeMC != r.haberMC) {
        r.debeMenor = r.debeMC < r.haberMC;
        r.diferenciaMC = (r.debeMC - r.haberMC).abs();
    } else {
        r.debeMenor = debeME <= haberME;
        r.diferenciaME = compararME ? (debeME - haberME).abs() : Importe();
    }
    return r;
}

ResultadoBalance CalcularBalance(const QVector<LineaBalance> &lineas, qint16 monedaContabilidad, CatalogoMonedas &monedas)
{
    QHash<qint16, Mascara> mascaras;
    return CalcularBalance(lineas, monedaContabilidad, [&](qint16 moneda) -> const Mascara & {
        auto it = mascaras.find(moneda);
        if (it == mascaras.end())
            it = mascaras.insert(moneda, Mascara(monedas.DatoMoneda(moneda, 4).toString()));
        return *it;
    });
}
