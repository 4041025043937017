// Balance test, difference row, finishing of an entry's rows and the order of its lines.
#include "asientosgrilla.h"

#include "currency/catalogomonedas.h"
#include "currency/importe.h"
#include "currency/mascara.h"
#include "entries/reglabalance.h"

#include <algorithm>
#include <cmath>

void AsientosGrilla::CierreAsiento(bool &bDebeMenor, Importe &cDiferenciaMC, Importe &cDiferenciaME, bool &bCierra)
{
    QVector<LineaBalance> lineas;
    lineas.reserve(8);
    const int cabezal = Cabezal.FilaCabezal;
    for (int r = cabezal + 1; r >= m_g.FilasFijas() && r < m_g.Filas(); ++r) {
        if (EsFilaCabezal(r) || !m_g.HayDato(r, 0) || m_g.DatoEntero(r, 0) != Cabezal.AsiID)
            break;
        const QString clave = m_g.DatoTexto(r, 1);
        if (clave.isEmpty() || clave == kClaveDiferencia)
            continue;
        LineaBalance l;
        l.alDebe = tieneTexto(r, 2);
        l.moneda = qint16(CampoDeClave(clave, 3));
        l.mc = m_g.Valor(r, l.alDebe ? 2 : 3);
        l.me = m_g.Valor(r, 5);
        lineas.append(l);
    }
    const ResultadoBalance b = CalcularBalance(lineas, m_ctx.monedaContabilidad, 
                                               [this](qint16 m) -> const Mascara & { return mascaraLeida(mascaraImporte(m)); });
    bCierra = b.cierra;
    bDebeMenor = b.debeMenor;
    cDiferenciaMC = b.diferenciaMC;
    cDiferenciaME = b.diferenciaME;
}

bool AsientosGrilla::Cierra()
{
    bool debeMenor = false, cierra = false;
    Importe mc, me;
    CierreAsiento(debeMenor, mc, me, cierra);
    return cierra;
}

double AsientosGrilla::BuscarTCMonedaCuenta(qint16 iMoneda) const
{
    for (int r = Cabezal.FilaCabezal + 1; r >= m_g.FilasFijas() && r < m_g.Filas(); ++r) {
        if (m_g.DatoEntero(r, 0) != Cabezal.AsiID || EsFilaCabezal(r) || EsFilaNuevoAsiento(r))
            return 0;
        const QString clave = m_g.DatoTexto(r, 1);
        if (clave.isEmpty() || CampoDeClave(clave, 3) != iMoneda)
            continue;
        const Importe importe = m_g.Valor(r, 5);
        if (importe.esCero())
            return Importe::DesdeDouble(TasaDeFila(r)).aDouble();
        double tasa = 0;
        if (m_g.EsNumero(r, 2))
            tasa = m_g.Valor(r, 2).aDouble() / importe.aDouble();
        else if (m_g.EsNumero(r, 3))
            tasa = m_g.Valor(r, 3).aDouble() / importe.aDouble();
        return Importe::DesdeDouble(tasa).aDouble();
    }
    return 0;
}

bool AsientosGrilla::FilaDiferencia(int fila, bool insertar)
{
    bool debeMenor = false;
    bool cierra = false;
    Importe difMC;
    Importe difME;
    CierreAsiento(debeMenor, difMC, difME, cierra);
    if (cierra)
        return false;
    if (insertar)
        m_g.InsertarFila(fila);

    RegistroLinea l;
    l.bEsAlDebe = debeMenor;
    l.sTextDisplay = kTextoDiferencia;
    l.lCta = -1;
    l.iMon = 0;
    l.dImporte = difME.esCero() && difMC > Importe() ? difMC : difME;
    l.dImporteMC = difMC;
    l.dTCambio = 1;
    l.ACuOrden = 999;
    FilaLineaAsiento(fila, l);
    return true;
}

bool AsientosGrilla::FormatoEntrada()
{
    if (Cabezal.FilaCabezal < 0)
        return false;
    listo = false;
    OrdenarCuentas();
    bool debeMenor = false;
    bool cierra = false;
    Importe difMC;
    Importe difME;
    CierreAsiento(debeMenor, difMC, difME, cierra);

    const int cabezal = Cabezal.FilaCabezal;
    if (cabezal > m_g.FilasFijas())
        m_g.FijarBordeSuperior(cabezal, ColoresGrilla::kBordeAsiento);
    const int ultima = UltimaFilaAsiento(cabezal);
    for (int r = cabezal + 1; r <= ultima; ++r) {
        m_g.FijarAltoFila(r, 0);
        m_g.FijarColorTexto(r, 1, ColoresGrilla::kHaber);
        m_g.FijarColorTexto(r, 3, ColoresGrilla::kHaber);
    }
    if ((Cabezal.AsiEstado == EstadoAsiento::kInconcluso || !cierra) && !EsFilaDiferencia(ultima))
        return FilaDiferencia(ultima + 1, true);
    return false;
}

bool FueraDeOrden(const ClaveOrden &a, const ClaveOrden &b, quint8 modo)
{
    if (modo == 0 && b.esDiferencia)
        return false;
    if (!a.alDebe && b.alDebe)
        return true;
    if (modo == 0) {
        // Lines of one account keep the order they were entered in, whatever order the
        // database hands them in.
        if (a.alDebe && b.alDebe) {
            const int comparacion = QString::compare(a.texto0, b.texto0, Qt::CaseInsensitive);
            if (comparacion != 0)
                return comparacion > 0;
            return a.orden > b.orden;
        }
        if (b.texto1.isEmpty())
            return false;
        const int comparacion = QString::compare(a.texto1, b.texto1, Qt::CaseInsensitive);
        return comparacion > 0 || (comparacion == 0 && !a.alDebe && a.orden > b.orden);
    }
    return a.alDebe == b.alDebe && a.orden > b.orden;
}

namespace {

// The exchange sort itself, without its restarts: after a swap at r only the pair above it
// can have become out of order, since every pair further up was in order and is unchanged,
// so going back one step lands where the restart would first find something. Quadratic at
// worst, used only where the fast ways below do not give the same result. A pair out of
// order both ways (rows with text in both columns, never on the screen) would swap for
// ever; the number of swaps is bounded to stop there.
std::vector<int> OrdenDeIntercambio(const std::vector<ClaveOrden> &filas, quint8 modo)
{
    const size_t n = filas.size();
    std::vector<int> orden(n);
    for (size_t i = 0; i < n; ++i)
        orden[i] = int(i);
    quint64 cambios = 0;
    const quint64 maximo = quint64(n) * quint64(n) + 1;
    for (size_t r = 0; r + 1 < n && cambios < maximo;) {
        if (FueraDeOrden(filas[size_t(orden[r])], filas[size_t(orden[r + 1])], modo)) {
            std::swap(orden[r], orden[r + 1]);
            ++cambios;
            r = r > 0 ? r - 1 : 0;
        } else {
            ++r;
        }
    }
    return orden;
}

// In mode 0 the relation is a strict weak order (debit rows by their column-0 text, then
// credit rows by their column-1 text) only while the debit rows are exactly the rows with no
// text in column 1. A row with text in neither column (an account whose code and name are
// blank, a line still being typed) is passed by no credit row and passes none, so it splits
// the credit rows into groups that are ordered each on its own: a sort would carry them
// across it.
bool OrdenDebil(const std::vector<ClaveOrden> &filas, quint8 modo)
{
    if (modo != 0)
        return true;
    return std::all_of(filas.begin(), filas.end(), [](const ClaveOrden &k) { return k.alDebe == k.texto1.isEmpty(); });
}

} // namespace

// The exchange sort swaps neighbours while one is "greater" than the next. Where that
// relation is a strict weak order the sort ends where a stable sort ends. The one exception
// is the difference row in mode 0, which no row may pass from above: rows above it stay
// above, it sinks past the rows below that it is greater than, and the rest stays below it.
// Anything else takes the exchange sort's own way.
std::vector<int> OrdenCuentas(const std::vector<ClaveOrden> &filas, quint8 modo)
{
    const int n = int(filas.size());
    std::vector<int> orden(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        orden[size_t(i)] = i;
    auto menor = [&](int a, int b) { return FueraDeOrden(filas[size_t(b)], filas[size_t(a)], modo); };

    std::vector<int> diferencias;
    if (modo == 0)
        for (int i = 0; i < n; ++i)
            if (filas[size_t(i)].esDiferencia)
                diferencias.push_back(i);

    if (!OrdenDebil(filas, modo) || diferencias.size() > 1)
        return OrdenDeIntercambio(filas, modo);
    if (diferencias.empty()) {
        std::stable_sort(orden.begin(), orden.end(), menor);
        return orden;
    }
    const int d = diferencias.front();
    std::vector<int> arriba;
    std::vector<int> abajo;
    for (int i = 0; i < n; ++i) {
        if (i == d)
            continue;
        if (i < d || FueraDeOrden(filas[size_t(d)], filas[size_t(i)], modo))
            arriba.push_back(i);
        else
            abajo.push_back(i);
    }
    std::stable_sort(arriba.begin(), arriba.end(), menor);
    std::stable_sort(abajo.begin(), abajo.end(), menor);
    orden = arriba;
    orden.push_back(d);
    orden.insert(orden.end(), abajo.begin(), abajo.end());
    return orden;
}

void AsientosGrilla::OrdenarCuentas()
{
    const int cabezal = Cabezal.FilaCabezal;
    if (cabezal < 0)
        return;
    const int desde = cabezal + 1;
    const int hasta = UltimaFilaAsiento(cabezal);
    if (hasta - desde < 1)
        return;
    std::vector<ClaveOrden> claves;
    claves.reserve(size_t(hasta - desde + 1));
    for (int r = desde; r <= hasta; ++r) {
        ClaveOrden k;
        k.texto0 = m_g.Texto(r, 0);
        k.texto1 = m_g.Texto(r, 1);
        k.alDebe = !k.texto0.isEmpty();
        const QString clave = m_g.DatoTexto(r, 1);
        k.orden = CampoDeClave(clave, 4);
        k.esDiferencia = clave == kClaveDiferencia;
        claves.push_back(std::move(k));
    }
    const std::vector<int> orden = OrdenCuentas(claves, m_ctx.AsiOrder);
    bool cambia = false;
    for (size_t i = 0; i < orden.size(); ++i)
        cambia = cambia || orden[i] != int(i);
    if (cambia)
        m_g.PermutarFilas(desde, orden);
}

void AsientosGrilla::PromediarTasas()
{
    const int cabezal = Cabezal.FilaCabezal;
    if (cabezal < 0)
        return;
    const int ultima = UltimaFilaAsiento(cabezal);
    QList<qint16> hechas;
    for (int r = cabezal + 1; r <= ultima; ++r) {
        const RegistroLinea l = LineaDeFila(r);
        if (l.iMon < 1 || l.iMon == m_ctx.monedaContabilidad || hechas.contains(l.iMon) || EsFilaDiferencia(r))
            continue;
        hechas << l.iMon;
        Importe sumaME, sumaMC;
        for (int k = cabezal + 1; k <= ultima; ++k) {
            const RegistroLinea x = LineaDeFila(k);
            if (x.iMon == l.iMon && !x.dImporte.esCero() && !EsFilaDiferencia(k)) {
                sumaME += x.dImporte;
                sumaMC += x.dImporteMC;
            }
        }
        if (sumaME <= Importe())
            continue;
        // Accounting units per unit, above or below 1: AplicarTasa applies it the editor's way.
        const double promedio = sumaMC.aDouble() / sumaME.aDouble();
        AplicarTasa(false, promedio, l.iMon);
    }
}

namespace {

// A rate as the line editor shows and applies it: a factor of 1 or more as itself
// with "*", a factor below 1 as its reciprocal with "/". A rate that is the mask's rate but
// for the noise of taking a reciprocal twice is taken as the mask's rate, so that "/ 4.123"
// handed over as 1 / 4.123 is applied as 4.123.
struct TasaVista
{
    double tasa = 0;        // as applied
    double redondeada = 0;  // cut to the rate mask, as shown
    bool divide = false;
};

TasaVista VerTasa(double factor, const QString &mascaraTasa)
{
    TasaVista t;
    t.divide = factor < 1;
    t.tasa = t.divide ? 1 / factor : factor;
    t.redondeada = RedondearConMascara(t.tasa, mascaraTasa);
    if (t.redondeada > 0 && std::abs(t.redondeada - t.tasa) <= t.tasa * 1e-12)
        t.tasa = t.redondeada;
    if (!(t.redondeada > 0))
        t.redondeada = t.tasa;
    return t;
}

} // namespace

int AsientosGrilla::AplicarTasa(bool bMonedaCuenta, double tasa, qint16 moneda)
{
    const int cabezal = Cabezal.FilaCabezal;
    if (cabezal < 0 || !(tasa > 0) || !std::isfinite(tasa))
        return 0;
    const QString mascaraMC = mascaraImporte(0);
    const QString mascaraME = mascaraImporte(moneda);
    const QString mascaraTasa = m_ctx.monedas ? m_ctx.monedas->DatoMoneda(moneda, 5).toString() : QStringLiteral("#,##0.000");
    const TasaVista vista = VerTasa(tasa, mascaraTasa);
    // The rate cell holds accounting units per unit, as a loaded line does; it is the rate as
    // shown, cut to the mask, and taken back to a factor.
    const double factorCelda = vista.divide ? 1 / vista.redondeada : vista.redondeada;
    const double factor = vista.divide ? 1 / vista.tasa : vista.tasa;
    int cambiadas = 0;
    for (int r = cabezal + 1; r <= UltimaFilaAsiento(cabezal); ++r) {
        if (EsFilaDiferencia(r))
            continue;
        RegistroLinea l = LineaDeFila(r);
        // A line with no amount in its currency is an exchange difference: no rate applies.
        if (l.iMon != moneda || l.lCta <= 0 || l.dImporte.esCero())
            continue;
        if (bMonedaCuenta) {
            const double me = vista.divide ? l.dImporteMC.aDouble() * vista.tasa : l.dImporteMC.aDouble() / vista.tasa;
            l.dImporte = ImporteConMascara(me, mascaraME);
        } else {
            const double mc = vista.divide ? l.dImporte.aDouble() / vista.tasa : l.dImporte.aDouble() * vista.tasa;
            l.dImporteMC = ImporteConMascara(mc, mascaraMC);
        }
        l.dTCambio = factorCelda;
        FilaLineaAsiento(r, l);
        m_g.FijarDato(r, 5, m_g.Valor(r, l.bEsAlDebe ? 2 : 3).aDouble() / factor);
        ++cambiadas;
    }
    return cambiadas;
}
