// Account input: looking an account up, checking it and confirming the line.
#include "lumerasiento.h"

#include "campocalculadora.h"

#include "currency/catalogomonedas.h"
#include "currency/importe.h"
#include "entries/modeloasiento.h"
#include "services/cuentasdatos.h"
#include "services/serviciobusquedacuentas.h"
#include "services/serviciomensajes.h"
#include "store/valoressql.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

namespace {

// Restores the normal pointer however the lookup ends.
class CursorEspera
{
public:
    CursorEspera() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CursorEspera() { QApplication::restoreOverrideCursor(); }
};

} // namespace

void lumERAsiento::Advertir(int texto, QWidget *foco)
{
    if (m_ctx.mensajes)
        m_ctx.mensajes->Advertir(m_ctx.texto ? m_ctx.texto(texto) : QString::number(texto));
    if (foco)
        foco->setFocus();
}

void lumERAsiento::CuentaEditada(bool bEsAlDebe)
{
    if (m_cambiandoCuenta)
        return;
    QString &tag = bEsAlDebe ? m_tagDebe : m_tagHaber;
    if (tag.isEmpty())
        return;
    // Typing over an accepted account drops it, with the amounts that went with it.
    QuitarCuenta(bEsAlDebe);
    m_tagMoneda.clear();
    for (CampoCalculadora *c : {ocImporte, ocTCambio, ocImporteMC}) {
        c->Limpiar();
        c->Tag.clear();
    }
    if (!CuentaIngresadaAlDebe() && !CuentaIngresadaAlHaber())
        cfMoneda->setCurrentIndex(-1);
    PrepararImportes(!bEsAlDebe, false);
    tag.clear();
}

void lumERAsiento::QuitarCuenta(bool bEsAlDebe)
{
    CuentaLinea &c = bEsAlDebe ? m_debe : m_haber;
    const CuentaLinea &otra = bEsAlDebe ? m_haber : m_debe;
    if (c.iMon != 0 && c.iMon != m_ctx.monedaContabilidad && !(otra.lCta >= 1 && otra.iMon == c.iMon))
        QuitarMoneda(c.iMon);
    c = CuentaLinea();
}

bool lumERAsiento::ValidarCuenta(bool bEsAlDebe)
{
    // The search dialog and the warnings take the focus away from the box; that must not
    // start a second validation.
    if (m_validando)
        return false;
    m_validando = true;
    QLineEdit *caja = bEsAlDebe ? tDebe : tHaber;
    const bool aceptada = BuscarCuenta(caja->text(), bEsAlDebe);
    m_validando = false;
    if (!aceptada) {
        (bEsAlDebe ? m_tagDebe : m_tagHaber).clear();
        return false;
    }
    EstadoTasa();
    return true;
}

bool lumERAsiento::BuscarCuenta(const QString &texto, bool bEsAlDebe)
{
    if (!m_ctx.conexion || !m_ctx.busqueda)
        return false;
    CuentaElegida elegida;
    bool habilitado = false;
    emit EnabledContenedor(&habilitado);
    const auto hay = m_ctx.busqueda->Buscar(*m_ctx.conexion, m_ctx.empresa, texto, elegida, window());
    if (hay)
        QApplication::processEvents();
    habilitado = true;
    emit EnabledContenedor(&habilitado);
    // A failure to read the accounts is told (1853) and the line keeps what it had.
    auto fallar = [this](const Fallo &fallo) {
        decirFallo({1853, fallo.detalle, true});
        return false;
    };
    if (!hay)
        return fallar(hay.fallo());
    if (!*hay || elegida.id <= 0)
        return false;

    CursorEspera espera;
    const auto leida = CuentasDatos::LeerImputable(*m_ctx.conexion, elegida.id);
    if (!leida) {
        emit EnabledContenedor(&habilitado);
        return fallar(leida.fallo());
    }
    if (!*leida)
        return false;
    const CuentasDatos::Ficha &cuenta = **leida;
    if (cuenta.cerrada && m_fechaAsiento <= cuenta.cierre) {
        QApplication::restoreOverrideCursor();
        Advertir(1854, nullptr);
        QApplication::setOverrideCursor(Qt::WaitCursor);
        return false;
    }
    const QString display = TextoCuenta(cuenta.codigo, cuenta.nombre, m_ctx.mostrarCodigoCta);
    const qint16 moneda = cuenta.moneda > 0 ? cuenta.moneda : m_ctx.monedaContabilidad;
    SetCuenta(bEsAlDebe, elegida.id, elegida.proyecto, elegida.departamento, moneda, display,
              cuenta.cerrada ? cuenta.cierre : QDate(1901, 1, 1));

    const CuentaLinea &otra = bEsAlDebe ? m_haber : m_debe;
    const CuentaLinea &esta = bEsAlDebe ? m_debe : m_haber;
    if (otra.lCta == esta.lCta && otra.iPry == esta.iPry && otra.iDep == esta.iDep) {
        QuitarCuenta(bEsAlDebe);
        return false;
    }
    return true;
}

// A failure the line cannot get past: its catalogue text and the database's detail.
void lumERAsiento::decirFallo(const Fallo &fallo)
{
    if (m_ctx.mensajes)
        m_ctx.mensajes->MostrarError(m_ctx.texto ? m_ctx.texto(fallo.numeroTexto) : QString(), QString(), fallo.detalle);
}

void lumERAsiento::EnterEnCuenta(bool bEsAlDebe)
{
    QLineEdit *caja = bEsAlDebe ? tDebe : tHaber;
    QLineEdit *otraCaja = bEsAlDebe ? tHaber : tDebe;
    if (caja->text().trimmed().isEmpty()) {
        if (bEsAlDebe)
            tHaber->setFocus();
        else if (CuentaIngresadaAlDebe())
            PrepararImportes(true, true); // a line of its debit account alone: on to the amount
        return;
    }
    if ((bEsAlDebe ? m_tagDebe : m_tagHaber).isEmpty()) {
        if (!ValidarCuenta(bEsAlDebe)) {
            caja->setFocus();
            caja->selectAll();
            return;
        }
    }
    // Where a line may carry both accounts, Enter goes from the debit account to the credit
    // one; from the credit account it goes on to the amount, as the fields are in order.
    if (bEsAlDebe && m_permitirDosCtas && !CuentaIngresadaAlHaber()) {
        otraCaja->setFocus();
        return;
    }
    PrepararImportes(bEsAlDebe, true);
}

void lumERAsiento::PrepararImportes(bool bEsAlDebe, bool moverFoco)
{
    const qint16 mc = m_ctx.monedaContabilidad;
    if (ocImporte->EsNumeroValido() && !ocImporte->text().isEmpty()) {
        EstadoTasa();
    } else {
        auto extranjera = [mc](const CuentaLinea &c) { return c.lCta >= 1 && c.iMon != 0 && c.iMon != mc; };
        qint16 moneda = 0;
        if (extranjera(m_debe))
            moneda = m_debe.iMon;
        else if (extranjera(m_haber))
            moneda = m_haber.iMon;
        if (moneda) {
            cfMoneda->setCurrentIndex(cfMoneda->findData(moneda));
            BuscarTasa();
        } else {
            // A line in one currency shows that currency selected.
            if (cfMoneda->currentIndex() < 0 && cfMoneda->count() > 0 && (CuentaIngresadaAlDebe() || CuentaIngresadaAlHaber()))
                cfMoneda->setCurrentIndex(0);
            EstadoTasa();
        }
        if (!m_diferencia.esCero() && bEsAlDebe == m_diferenciaAlDebe) {
            if (MonedaCombo() == mc && !ocImporte->EsNumeroValido()) {
                ocImporte->FijarValor(m_diferencia.aDouble());
                Recalcular(1);
            } else if (MonedaCombo() != mc && !ocImporteMC->EsNumeroValido()) {
                ocImporteMC->FijarValor(m_diferencia.aDouble());
                Recalcular(3);
            }
        }
    }
    if (moverFoco && ocImporte->isVisible())
        ocImporte->setFocus();
}

void lumERAsiento::ConfirmarLinea()
{
    const bool debe = CuentaIngresadaAlDebe();
    const bool haber = CuentaIngresadaAlHaber();
    if (debe && haber && !m_permitirDosCtas)
        return Advertir(1850, tDebe);
    if (!debe && !haber)
        return Advertir(1851, tDebe);
    if (debe && haber && m_debe.lCta == m_haber.lCta && m_debe.iPry == m_haber.iPry && m_debe.iDep == m_haber.iDep)
        return Advertir(1852, tDebe);
    if (!ocImporte->EsNumeroValido())
        return Advertir(1851, ocImporte);
    if (ocTCambio->isEnabled() && !ocTCambio->EsNumeroValido())
        return Advertir(1851, ocTCambio);
    // A foreign amount needs its rate: with none (the quotations could not be read, say) the
    // line would be worth nothing in the books.
    if (ocTCambio->isEnabled() && !(ocTCambio->Valor() > 0) && ocImporte->Valor() != 0)
        return Advertir(1851, ocTCambio);

    // Each value must be kept to the ten-thousandth, as typed.
    const std::pair<CampoCalculadora *, bool> tamanos[] = {
        {ocImporte, true}, {ocTCambio, ocTCambio->isEnabled()}, {ocImporteMC, ocImporteMC->isEnabled()}};
    for (const auto &[campo, cuenta] : tamanos) {
        if (cuenta && Importe::DesdeDouble(campo->Valor()).abs() > Importe::MaximoLinea())
            return Advertir(1937, campo);
    }
    bool cancelar = false;
    emit EditOK(&cancelar);
}
