// Currency list, rate and the three amounts of a line.
#include "lumerasiento.h"

#include "campocalculadora.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "services/serviciomensajes.h"

#include <QComboBox>
#include <QLineEdit>

#include <cmath>

namespace {
// "El importe ingresado no es un número válido. Use la coma o el punto solo como separador
// decimal o entre grupos de tres cifras."
constexpr int kTextoNumeroInvalido = 1950;
} // namespace

void lumERAsiento::AgregarMoneda(qint16 moneda)
{
    if (moneda == 0 || cfMoneda->findData(moneda) >= 0)
        return;
    const QVariant elegida = cfMoneda->currentIndex() >= 0 ? cfMoneda->currentData() : QVariant();
    cfMoneda->addItem(simbolo(moneda), moneda);
    if (moneda > 0 && cfMoneda->count() == 1 && moneda != m_ctx.monedaContabilidad)
        cfMoneda->addItem(simbolo(m_ctx.monedaContabilidad), m_ctx.monedaContabilidad);
    cfMoneda->setCurrentIndex(elegida.isValid() ? cfMoneda->findData(elegida) : -1);
}

void lumERAsiento::QuitarMoneda(qint16 moneda)
{
    const int i = cfMoneda->findData(moneda);
    if (i >= 0)
        cfMoneda->removeItem(i);
    if (cfMoneda->count() < 2)
        EstadoTasa();
}

void lumERAsiento::EstadoTasa()
{
    const bool habilitada = cfMoneda->count() >= 2;
    ocTCambio->setEnabled(habilitada);
    ocImporteMC->setEnabled(habilitada);
    ocTCambio->FijarFondo(palette().color(habilitada ? QPalette::Base : QPalette::Button));
    if (habilitada)
        return;
    m_operador.clear();
    QString s = simbolo(0);
    QString o;
    emit MonedaResultadoTC(&s, &o);
    for (CampoCalculadora *c : {ocTCambio, ocImporteMC}) {
        c->Limpiar();
        c->Tag.clear();
    }
}

void lumERAsiento::MonedaCambiada()
{
    if (cfMoneda->currentIndex() < 0 || cfMoneda->count() < 2) {
        EstadoTasa();
        return;
    }
    if (m_tagMoneda.isEmpty() || m_tagMoneda == QLatin1String("0") || m_tagMoneda.toInt() == MonedaCombo()) {
        BuscarTasa();
        Recalcular(2);
    }
}

void lumERAsiento::BuscarTasa()
{
    if (cfMoneda->count() == 0 || cfMoneda->currentIndex() < 0)
        return;
    const qint16 s = MonedaCombo();
    const qint16 mc = m_ctx.monedaContabilidad;
    qint16 a = mc;
    qint16 b = 0;
    qint16 extranjera = 0;
    if (s != mc) {
        a = s;
        b = mc;
        extranjera = s;
    } else {
        b = m_debe.iMon != 0 && m_debe.iMon != mc ? m_debe.iMon : m_haber.iMon;
        extranjera = b;
    }

    qint16 iMon = extranjera;
    double cTC = 0;
    emit GetTCME(&iMon, &cTC);
    // r: units of B per unit of S, from the quotations or from the container, whose answer
    // is accounting units per unit of the foreign currency (the entry's rate for it).
    double r = 0;
    if (cTC == 0) {
        r = m_ctx.conexion ? cotizacion(a, b, true) : 1.0;
    } else {
        r = a != mc ? cTC : 1 / cTC;
    }
    MostrarTasa(r, s, b);
    Recalcular(2);
}

// The quotation of a pair on the entry's date. A failure to read it answers 0, which leaves
// the rate to be typed rather than a 1 that looks like a rate, and with decir it is told.
// The line's values are read several times for one Enter: only the rate shown when the
// account or currency is chosen tells it, once.
double lumERAsiento::cotizacion(qint16 origen, qint16 destino, bool decir)
{
    QDate fecha;
    Importe tasa;
    if (const auto fallo = BuscarTipoCambio(*m_ctx.conexion, origen, destino, m_ctx.tipoTCComprobantes, m_fechaAsiento, fecha,
                                            m_ctx.reglas, tasa)) {
        if (decir)
            decirFallo(*fallo);
        return 0;
    }
    return tasa.aDouble();
}

void lumERAsiento::MostrarTasa(double r, qint16 s, qint16 b)
{
    // A rate below 1 is shown as its reciprocal with "/", so the rate on screen is always
    // the larger of the two; a rate of 0 leaves the operator as it was.
    if (r >= 1) {
        m_operador = QStringLiteral("*");
    } else if (r > 0) {
        r = 1 / r;
        m_operador = QStringLiteral("/");
    }
    ocTCambio->FijarValor(r);
    m_tagMoneda = QString::number(b);
    ocImporte->FijarMascara(mascaraImporte(s));
    ocImporteMC->FijarMascara(mascaraImporte(b));
    ocTCambio->FijarMascara(mascaraTasa(s));
    if (b != 0) {
        QString sim = simbolo(b);
        QString op = m_operador;
        emit MonedaResultadoTC(&sim, &op);
    }
}

void lumERAsiento::CampoCalculoTerminado(int cambiado)
{
    Recalcular(cambiado);
}

void lumERAsiento::RechazarNumero(CampoCalculadora *campo)
{
    // Leaving the field because the editor is being hidden (the entry is left) is no
    // moment for a message.
    if (!isVisible() || !campo->isVisible() || !campo->EsTextoInvalido())
        return;
    Advertir(kTextoNumeroInvalido, campo);
    campo->selectAll();
}

bool lumERAsiento::RechazarNumeroInvalido(CampoCalculadora *primero)
{
    for (CampoCalculadora *c : {primero, ocImporte, ocTCambio, ocImporteMC}) {
        if (c->isEnabled() && c->EsTextoInvalido()) {
            Advertir(kTextoNumeroInvalido, c);
            c->selectAll();
            return true;
        }
    }
    return false;
}

// Which of the three numbers moves when one changes. The amount's rule compares the change
// in percent, D, with 1: a change of at least 1 % (the first entry of an amount is 100 %)
// keeps the rate and recomputes the converted amount; a smaller one is taken as a correction
// of the same operation, keeps the converted amount and adjusts the rate.
void lumERAsiento::Recalcular(int cambiado)
{
    CampoCalculadora *campo = cambiado == 1 ? ocImporte : cambiado == 2 ? ocTCambio : ocImporteMC;
    if (campo->Tag.isEmpty())
        campo->Tag = QStringLiteral("0");
    // A refused text changes nothing; an empty converted amount counts as 0.
    if (campo->EsTextoInvalido() || (cambiado != 3 && !campo->EsNumeroValido()))
        return;
    if (TextoDecimal(campo->Valor()) == campo->Tag)
        return;

    const bool divide = m_operador == QLatin1String("/");
    const double importe = ocImporte->Valor();
    const double tasa = ocTCambio->Valor();
    const double convertido = ocImporteMC->Valor();
    // The other amount is worked out from this one as its currency keeps it: 100.555 dollars
    // are 100.56, and so many pesos, never the pesos of a fraction of a cent that is not stored.
    auto porTasa = [&](double n) {
        n = ImporteConMascara(n, mascaraImporte(MonedaCombo())).aDouble();
        if (divide) {
            if (tasa != 0)
                ocImporteMC->FijarValor(n / tasa);
        } else {
            ocImporteMC->FijarValor(n * tasa);
        }
    };

    switch (cambiado) {
    case 1: {
        const double n = importe;
        if (n == 0)
            break;
        const double p = campo->Tag.toDouble();
        const Importe d = Importe::DesdeDouble(std::abs(p * 100 / n - 100));
        if (d < Importe::DesdeDouble(1)) {
            if (convertido != 0) {
                if (divide)
                    ocTCambio->FijarValor(n / convertido);
                else
                    ocTCambio->FijarValor(convertido / n);
            } else if (ocTCambio->EsNumeroValido()) {
                porTasa(n);
            }
        } else if (ocTCambio->EsNumeroValido() && ocTCambio->isEnabled()) {
            porTasa(n);
        }
        break;
    }
    case 2:
        if (importe != 0) {
            porTasa(importe);
        } else if (convertido != 0) {
            if (divide)
                ocImporte->FijarValor(convertido * tasa);
            else if (tasa != 0)
                ocImporte->FijarValor(convertido / tasa);
        }
        break;
    case 3:
        if (importe != 0) {
            if (!divide)
                ocTCambio->FijarValor(convertido / importe);
            else if (convertido != 0)
                ocTCambio->FijarValor(importe / convertido);
        } else if (ocTCambio->EsNumeroValido()) {
            if (divide)
                ocImporte->FijarValor(convertido * tasa);
            else if (tasa != 0)
                ocImporte->FijarValor(convertido / tasa);
        }
        break;
    }

    if (ocTCambio->Valor() != 0 && cfMoneda->currentIndex() >= 0)
        ocTCambio->FijarValor(RedondearConMascara(ocTCambio->Valor(), mascaraTasa(MonedaCombo())));
    // An amount worked out from the others shows as its currency's mask rounds it, never as
    // the noise of a division (0.41 / 41.58 dollars is 0.01, not 0.009860652149862672).
    const qint16 elegida = MonedaCombo();
    const qint16 deLaCuenta = CuentaIngresadaAlDebe() ? m_debe.iMon : m_haber.iMon;
    const qint16 otra = elegida == m_ctx.monedaContabilidad ? deLaCuenta : m_ctx.monedaContabilidad;
    if (cambiado != 1 && ocImporte->EsNumeroValido())
        ocImporte->FijarValor(ImporteConMascara(ocImporte->Valor(), mascaraImporte(elegida)).aDouble());
    if (cambiado != 3 && ocImporteMC->EsNumeroValido())
        ocImporteMC->FijarValor(ImporteConMascara(ocImporteMC->Valor(), mascaraImporte(otra)).aDouble());
    ocImporteMC->Tag = TextoDecimal(ocImporteMC->Valor());
    ocImporte->Tag = TextoDecimal(ocImporte->Valor());
    ocTCambio->Tag = TextoDecimal(ocTCambio->Valor());
}

ValorLinea lumERAsiento::valorDe(const CuentaLinea &c)
{
    ValorLinea v;
    v.lCta = c.lCta;
    v.iPry = c.iPry;
    v.iDep = c.iDep;
    v.iMon = c.iMon;
    v.sTextDisplay = c.sTextDisplay;
    v.dFechaCierre = c.dFechaCierre;
    const qint16 mc = m_ctx.monedaContabilidad;
    if (!ocTCambio->isEnabled()) {
        v.dImporte = ImporteConMascara(ocImporte->Valor(), mascaraImporte(c.iMon));
        return v;
    }
    const qint16 s = MonedaCombo();
    const qint16 b = qint16(m_tagMoneda.toInt());
    const Importe importeMC = s == mc ? ImporteCta() : ImporteMC();
    v.dImporteMC = importeMC;
    if (s != c.iMon && b != c.iMon) {
        const double r = m_ctx.conexion ? cotizacion(c.iMon, mc, false) : 1.0;
        v.dImporte = r != 0 ? ImporteConMascara(importeMC.aDouble() / r, mascaraImporte(c.iMon)) : Importe();
        v.dTCambio = v.dImporte.esCero() ? 0 : RedondearConMascara(importeMC.aDouble() / v.dImporte.aDouble(), mascaraTasa(c.iMon));
        return v;
    }
    // The line's rate is accounting units per unit of its currency (RegistroLinea). The field
    // shows it so when the selected currency is the foreign one and the operator is "*", or
    // when the accounting currency is selected and the operator is "/" (41 pesos a dollar
    // either way); otherwise it shows the reciprocal: a yen at a quarter of a peso is
    // "/ 4" with the yen selected and "* 4" with the peso selected.
    const double tasa = ocTCambio->Valor();
    const bool reciproca = (s == mc) != (m_operador == QLatin1String("/"));
    v.dTCambio = reciproca ? (tasa != 0 ? 1 / tasa : 0) : tasa;
    v.dImporte = s == c.iMon ? ImporteCta() : ImporteMC();
    return v;
}
