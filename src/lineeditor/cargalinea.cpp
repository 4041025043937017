// A stored line put back into the editor.
#include "lumerasiento.h"

#include "campocalculadora.h"
#include "currency/mascara.h"

#include <QComboBox>

void lumERAsiento::CargarLinea(const RegistroLinea &l)
{
    SetCuenta(l.bEsAlDebe, l.lCta, l.iPry, l.iDep, l.iMon, l.sTextDisplay, QDate::fromString(l.dFechaCierre, Qt::ISODate));
    const qint16 mc = m_ctx.monedaContabilidad;
    const bool extranjera = l.iMon >= 1 && l.iMon != mc;
    setMonedaCombo(extranjera ? l.iMon : mc);
    EstadoTasa();
    ocImporte->FijarMascara(mascaraImporte(extranjera ? l.iMon : mc));
    setImporteCta(l.dImporte);
    if (!extranjera)
        return;
    m_operador = l.dTCambio > 0 && l.dTCambio < 1 ? QStringLiteral("/") : QStringLiteral("*");
    const double mostrada = m_operador == QLatin1String("/") ? 1 / l.dTCambio : l.dTCambio;
    ocImporteMC->FijarMascara(mascaraImporte(mc));
    ocTCambio->FijarMascara(mascaraTasa(l.iMon));
    setImporteTC(RedondearConMascara(mostrada, mascaraTasa(l.iMon)));
    setImporteMC(l.dImporteMC);
    QString s = simbolo(mc);
    QString o = m_operador;
    emit MonedaResultadoTC(&s, &o);
}
