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
    m_operador = QStringLiteral("*");
    MostrarTasa(l.dTCambio, l.iMon, mc);
    setImporteTC(RedondearConMascara(ocTCambio->Valor(), mascaraTasa(l.iMon)));
    setImporteMC(l.dImporteMC);
}
