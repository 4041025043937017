// Edit mode: the header fields and the line editor over the edited row.
#include "lumingasiento.h"

#include "idioma.h"
#include "lumhiperlink.h"
#include "menusdocumento.h"
#include "currency/catalogomonedas.h"
#include "currency/importe.h"
#include "currency/mascara.h"
#include "entries/vistas.h"
#include "entries/vsgrid.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/lumerasiento.h"
#include "services/serviciobusquedacuentas.h"
#include "services/serviciomensajes.h"

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScrollBar>

namespace {
QString texto(int numero)
{
    return Idioma::resLoad(numero - 1000);
}
} // namespace

// Builds the line editor once the session is known: it looks accounts and rates up itself.
void lumIngAsiento::prepararEditor()
{
    if (!m_busquedaPropia)
        m_busquedaPropia = std::make_unique<BusquedaCuentasQt>();
    ContextoLinea c;
    c.conexion = ConexionCompartida().get();
    c.monedas = &Monedas();
    c.mensajes = m_entorno.mensajes;
    c.busqueda = m_entorno.busquedaCuentas ? m_entorno.busquedaCuentas : m_busquedaPropia.get();
    c.empresa = EmpresaProceso();
    c.monedaContabilidad = m_empresa.monedaContabilidad;
    c.mostrarCodigoCta = m_empresa.mostrarCodigoCta;
    c.tipoTCComprobantes = m_empresa.tipoTCComprobantes;
    c.reglas.delimitador = Parametros().delimitadorFecha;
    c.reglas.patronFecha = Parametros().formatoFecha;
    c.reglas.fechaCotizacion = m_empresa.fechaCotizacion;
    c.texto = texto;
    oraEdit->FijarContexto(std::move(c));
}

QString lumIngAsiento::nombreLibro(qint16 libro) const
{
    const int i = cfTipo->findData(int(libro));
    return i >= 0 ? cfTipo->itemText(i) : QString();
}

void lumIngAsiento::NuevoAsiento()
{
    if (m_filaEdicion > 0)
        SalirEdicion();
    SeleccionarFila(m_grilla.Filas() - 1);
    EntrarEdicion(m_grilla.Filas() - 1);
}

bool lumIngAsiento::EntrarEdicion(int fila)
{
    if (!ConexionCompartida() || fila < m_grilla.FilasFijas() || fila >= m_grilla.Filas())
        return false;
    const bool ultima = fila == m_grilla.Filas() - 1;
    if (!TienePermiso(ultima ? u'A' : u'M'))
        return false;
    m_filaRecordada = -1;
    try {
        odDate->setDate(QDate::currentDate());
        tLeyenda->clear();
        cfTipo->setCurrentIndex(-1);
        cfAutoriza->setCurrentIndex(-1);

        // A new entry: the placeholder becomes its header row and its first line, and a new
        // placeholder closes the grid again.
        if (ultima && m_asientos.EsFilaNuevoAsiento(fila)) {
            m_grilla.FijarRedibujar(false);
            m_asientos.ResetCabezal();
            m_asientos.Cabezal.AsiEstado = EstadoAsiento::kNuevo;
            m_asientos.Cabezal.FilaCabezal = fila;
            m_asientos.FilaCabezalAsiento(QString());
            m_grilla.InsertarFila(fila + 1);
            m_grilla.FijarDato(fila + 1, 0, 0);
            m_grilla.FijarDato(fila + 1, 1, QString()); // a line row with no account yet
            m_asientos.FilaNuevoAsiento();
            m_grilla.FijarRedibujar(true);
            fila = fila + 1;
        }
        const int cabezal = m_asientos.FilaCabezalDe(fila);
        if (cabezal < 0)
            return false;
        m_asientos.TomarAsientoDeFila(cabezal);
        CabezalAsiento &c = m_asientos.Cabezal;
        if (m_asientos.EsFilaCabezal(fila))
            fila = cabezal + 1 <= m_asientos.UltimaFilaAsiento(cabezal) ? cabezal + 1 : cabezal;
        m_filaEdicion = fila;
        m_escrituraRechazada = false;

        const LibrosSistema libros = librosSistema();
        if (c.AsiID > 0 && c.AsiTipo != 0 && c.AsiTipo == libros.primeraApertura && !PuedeModificarApertura()) {
            m_filaEdicion = 0;
            m_asientos.ResetCabezal();
            return false;
        }
        m_grilla.FijarImagen(cabezal, QStringLiteral("edicion"));
        if (cfTipo->count() == 0) {
            CargarLibros(cfTipo, true);
            cfTipo->setCurrentIndex(-1); // filling a list selects its first item
        }
        if (cfTipo->count() == 0) {
            terminarEdicion(false);
            m_entorno.mensajes->Informar(Idioma::resLoad(828));
            return false;
        }
        if (m_vistaAntesDeEditar.isEmpty())
            m_vistaAntesDeEditar = hlCargar->Tag;
        hlCargar->Tag = QString::number(Vista::kEnEdicion);
        MostrarVista();

        odDate->setEnabled(true);
        if (c.AsiFechaAsiento.isValid())
            odDate->setDate(c.AsiFechaAsiento);
        if (c.AsiID > 0 && hayCuentasCerradasEnGrilla(c.AsiFechaAsiento))
            odDate->setEnabled(false);
        // A book the list does not offer (the opening-balance book, or another system book)
        // is shown by name and kept: the entry cannot be moved to or from it here.
        m_libroFijo = c.AsiTipo != 0 && (c.AsiTipo == libros.primeraApertura || cfTipo->findData(int(c.AsiTipo)) < 0);
        cfTipo->setVisible(!m_libroFijo);
        lLibroApertura->setVisible(m_libroFijo);
        lLibroApertura->setText(m_libroFijo ? m_grilla.Texto(cabezal, 4) : QString());
        if (c.AsiTipo > 0 && !m_libroFijo)
            cfTipo->setCurrentIndex(cfTipo->findData(int(c.AsiTipo)));
        if (!cfAutoriza->isHidden()) {
            cfAutoriza->setCurrentIndex(c.AsiUsuarioVerificador ? cfAutoriza->findData(int(c.AsiUsuarioVerificador)) : -1);
            cfAutoriza->setEnabled(!(c.AsiID > 0 && AsientoVerificado(*ConexionCompartida(), c.AsiID)));
        }
        tLeyenda->setText(c.AsiLeyenda);
        // An entry without a book is offered the default book, the first one when there is none.
        if (cfTipo->count() > 0 && cfTipo->currentIndex() < 0) {
            const int defecto = cfTipo->findData(int(m_empresa.libroPorDefecto));
            cfTipo->setCurrentIndex(defecto >= 0 ? defecto : 0);
        }

        cargarLineaEnEditor(fila);
        picEdit->setVisible(true);
        mostrarFilaEdicion();
        if (odDate->isEnabled())
            odDate->setFocus();
        else
            tLeyenda->setFocus();
        return true;
    } catch (const ErrorBaseDatos &e) {
        errorTexto(1928, DetalleError(e.numero(), e.descripcion()));
        if (m_filaEdicion > 0)
            terminarEdicion(false);
        m_asientos.ResetCabezal();
        return false;
    }
}

// The edited row is scrolled into view and the line editor laid over it. The header area
// that opens above the grid makes the grid shorter, so its layout is settled first.
void lumIngAsiento::mostrarFilaEdicion()
{
    if (m_filaEdicion <= 0)
        return;
    if (layout())
        layout()->activate();
    if (picVBD->layout())
        picVBD->layout()->activate();
    const QModelIndex i = m_vsGrid->model()->index(m_filaEdicion - m_grilla.FilasFijas(), 0);
    m_vsGrid->scrollTo(i, QAbstractItemView::EnsureVisible);
    // The editor is taller than a row: a row at the bottom edge is brought up.
    const QRect fila = m_vsGrid->visualRect(i);
    if (fila.top() + std::max(fila.height(), oraEdit->fontMetrics().height() + 8) > m_vsGrid->viewport()->height())
        m_vsGrid->scrollTo(i, QAbstractItemView::PositionAtCenter);
    colocarEditor();
}

void lumIngAsiento::cargarLineaEnEditor(int fila)
{
    oraEdit->InitRegistro();
    oraEdit->setFechaAsiento(odDate->date());
    bool debeMenor = false, cierra = false;
    double mc = 0, me = 0;
    m_asientos.CierreAsiento(debeMenor, mc, me, cierra);
    // The missing amount is proposed as an amount: to the cent of the fixed-point type, not
    // with the noise of the sums (99.99999999999999).
    if (!cierra)
        oraEdit->SetDiferencia(debeMenor, Importe::DesdeDouble(me != 0 ? me : mc).aDouble());
    RegistroLinea l = m_asientos.LineaDeFila(fila);
    if (l.lCta > 0) {
        // A foreign line shows the rate the entry uses for its currency.
        const bool extranjera = l.iMon != m_empresa.monedaContabilidad && l.iMon >= 1;
        const double tasa = extranjera ? m_asientos.BuscarTCMonedaCuenta(l.iMon) : 0;
        if (tasa != 0)
            l.dTCambio = tasa;
        oraEdit->CargarLinea(l);
    }
}

// The editor lies over the edited row, each field over its column.
void lumIngAsiento::colocarEditor()
{
    if (m_filaEdicion <= 0)
        return;
    const QModelIndex i = m_vsGrid->model()->index(m_filaEdicion - m_grilla.FilasFijas(), 0);
    const QRect fila = m_vsGrid->visualRect(i);
    if (!fila.isValid() || fila.bottom() < 0 || fila.top() > m_vsGrid->viewport()->height()) {
        oraEdit->hide();
        return;
    }
    auto twips = [this](int columna) { return m_vsGrid->PixelesATwips(m_vsGrid->columnViewportPosition(columna)); };
    auto ancho = [this](int columna) { return m_vsGrid->PixelesATwips(m_vsGrid->columnWidth(columna)); };
    const int x0 = twips(0);
    oraEdit->setLeft(lumERAsiento::kDebe, twips(0) - x0);
    oraEdit->setWidth(lumERAsiento::kDebe, ancho(0));
    oraEdit->setLeft(lumERAsiento::kHaber, twips(1) - x0);
    oraEdit->setWidth(lumERAsiento::kHaber, ancho(1));
    const int moneda = std::min(800, ancho(2) / 2);
    oraEdit->setLeft(lumERAsiento::kMoneda, twips(2) - x0);
    oraEdit->setWidth(lumERAsiento::kMoneda, moneda);
    oraEdit->setLeft(lumERAsiento::kImporte, twips(2) - x0 + moneda);
    oraEdit->setWidth(lumERAsiento::kImporte, ancho(2) + ancho(3) - moneda);
    oraEdit->setLeft(lumERAsiento::kTCambio, twips(4) - x0);
    oraEdit->setWidth(lumERAsiento::kTCambio, ancho(4));
    oraEdit->setLeft(lumERAsiento::kImporteMC, twips(5) - x0);
    oraEdit->setWidth(lumERAsiento::kImporteMC, ancho(5));
    oraEdit->setHeightAllCtrl(m_vsGrid->PixelesATwips(std::max(fila.height(), oraEdit->fontMetrics().height() + 8)));
    oraEdit->setGeometry(fila.left() + m_vsGrid->columnViewportPosition(0) - fila.left(), fila.top(),
                         m_vsGrid->viewport()->width(), std::max(fila.height(), oraEdit->fontMetrics().height() + 8));
    oraEdit->show();
    oraEdit->raise();
}

// The headings name the field in use: the side of the account, or the amount's currency.
void lumIngAsiento::encabezadosDeEdicion(int campo)
{
    m_grilla.FijarTexto(0, 0, texto(campo == lumERAsiento::kDebe ? 1065 : 1068));
    m_grilla.FijarTexto(0, 1, campo == lumERAsiento::kHaber ? texto(1066) : QString());
    m_grilla.FijarTexto(0, 2, campo == lumERAsiento::kImporte || campo == lumERAsiento::kMoneda
                                  ? texto(1067) + Monedas().DatoMoneda(oraEdit->MonedaCombo(), 2).toString()
                                  : texto(1069));
}

void lumIngAsiento::restaurarEncabezados()
{
    m_grilla.FijarTexto(0, 0, texto(1068));
    m_grilla.FijarTexto(0, 1, QString());
    m_grilla.FijarTexto(0, 2, texto(1069));
    m_grilla.FijarTexto(0, 3, texto(1070));
    m_grilla.FijarTexto(0, 4, texto(1063));
    m_grilla.FijarTexto(0, 5, texto(1062));
}

bool lumIngAsiento::teclaEnCabezal(QObject *objeto, QKeyEvent *evento)
{
    if (evento->key() == Qt::Key_Escape) {
        SalirEdicion();
        return true;
    }
    if (evento->key() != Qt::Key_Return && evento->key() != Qt::Key_Enter)
        return false;
    if (objeto == odDate) {
        // An accepted date reaches the line editor through dateChanged.
        if (!odDate->Aceptar())
            return true;
        (cfTipo->isVisible() ? static_cast<QWidget *>(cfTipo) : tLeyenda)->setFocus();
    } else if (objeto == cfTipo) {
        tLeyenda->setFocus();
    } else if (objeto == tLeyenda) {
        if (!cfAutoriza->isHidden() && cfAutoriza->isEnabled())
            cfAutoriza->setFocus();
        else
            oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
    } else if (objeto == cfAutoriza) {
        oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
    }
    return true;
}

bool lumIngAsiento::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() == QEvent::Resize && objeto == m_vsGrid->viewport() && m_filaEdicion > 0) {
        QMetaObject::invokeMethod(this, &lumIngAsiento::mostrarFilaEdicion, Qt::QueuedConnection);
        return false;
    }
    if (evento->type() == QEvent::KeyPress
        && (objeto == odDate || objeto == cfTipo || objeto == tLeyenda || objeto == cfAutoriza))
        return teclaEnCabezal(objeto, static_cast<QKeyEvent *>(evento));
    // The date and the legend are typed over: on focus their whole text is selected.
    if (evento->type() == QEvent::FocusIn && (objeto == tLeyenda || objeto == odDate))
        QMetaObject::invokeMethod(static_cast<QLineEdit *>(objeto), &QLineEdit::selectAll, Qt::QueuedConnection);
    return QWidget::eventFilter(objeto, evento);
}

void lumIngAsiento::AgregarCuenta()
{
    // Leaving an edit re-reads that entry and leaves its header row current.
    if (m_filaEdicion > 0)
        SalirEdicion();
    const int cabezal = m_asientos.FilaCabezalDe(m_vsGrid->FilaActual());
    if (cabezal < 0)
        return;
    try {
        m_asientos.TomarAsientoDeFila(cabezal);
        int ultima = m_asientos.UltimaFilaAsiento(cabezal);
        if (m_asientos.EsFilaDiferencia(ultima))
            --ultima;
        m_grilla.InsertarFila(ultima + 1);
        m_grilla.FijarDato(ultima + 1, 0, m_asientos.Cabezal.AsiID);
        m_grilla.FijarDato(ultima + 1, 1, QString()); // a line row with no account yet
        m_asientos.ResetCabezal();
        SeleccionarFila(ultima + 1);
        EntrarEdicion(ultima + 1);
    } catch (const ErrorBaseDatos &e) {
        errorTexto(1935, DetalleError(e.numero(), e.descripcion()));
    }
}

// Writes the accepted line into the edited row (a second row for the credit account of a
// line that carries both).
void lumIngAsiento::escribirLinea(int fila, const RegistroLinea &linea)
{
    if (m_asientos.EsFilaDiferencia(fila) || m_grilla.Dato(fila, 1).toString().isEmpty()) {
        int orden = 0;
        const int cabezal = m_asientos.Cabezal.FilaCabezal;
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r)
            if (!m_asientos.EsFilaDiferencia(r))
                orden = std::max(orden, CampoDeClave(m_grilla.Dato(r, 1).toString(), 4));
        RegistroLinea l = linea;
        l.ACuOrden = qint16(orden + 1);
        m_asientos.FilaLineaAsiento(fila, l);
    } else {
        RegistroLinea l = linea;
        l.ACuOrden = qint16(CampoDeClave(m_grilla.Dato(fila, 1).toString(), 4));
        m_asientos.FilaLineaAsiento(fila, l);
    }
}

// A second rate for a currency the entry already uses: all at the new rate, all at the
// average, or this line at the rate used so far. False when the line must not be taken.
bool lumIngAsiento::reglaTasas(RegistroLinea &linea)
{
    const qint16 mc = m_empresa.monedaContabilidad;
    if (linea.iMon == mc || linea.iMon < 1 || linea.dImporte == 0)
        return true;
    const double usada = m_asientos.BuscarTCMonedaCuenta(linea.iMon);
    const QString mascara = Monedas().DatoMoneda(linea.iMon, 5).toString();
    // Rates are compared, shown and rounded as the line editor shows them: a factor below 1
    // as its reciprocal (a yen at 0.25 is "/ 4").
    auto mostrada = [](double f) { return f > 0 && f < 1 ? 1 / f : f; };
    auto redondo = [&](double t) { return RedondearConMascara(mostrada(t), QStringLiteral("#,##0.000")); };
    if (usada == 0 || redondo(usada) == redondo(linea.dTCambio))
        return true;

    // The average over the lines kept and this one.
    double sumaME = linea.dImporte;
    double sumaMC = linea.dImporteMC;
    const int cabezal = m_asientos.Cabezal.FilaCabezal;
    for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
        if (r == m_filaEdicion || m_asientos.EsFilaDiferencia(r))
            continue;
        const RegistroLinea x = m_asientos.LineaDeFila(r);
        if (x.iMon == linea.iMon && x.dImporte != 0) {
            sumaME += x.dImporte;
            sumaMC += x.dImporteMC;
        }
    }
    const double promedio = sumaME != 0 ? sumaMC / sumaME : linea.dTCambio;
    const Mascara tres(QStringLiteral("#,##0.000"));
    QString pregunta = texto(1832);
    pregunta.replace(QLatin1String("[p]"), tres.Formatear(mostrada(linea.dTCambio)));
    pregunta.replace(QLatin1String("[p1]"), tres.Formatear(mostrada(promedio)));
    pregunta.replace(QLatin1String("[p2]"), tres.Formatear(mostrada(usada)));
    const auto respuesta = m_entorno.mensajes->Preguntar(pregunta, ServicioMensajes::Botones::SiNoCancelar);
    double nueva = linea.dTCambio;
    if (respuesta == ServicioMensajes::Respuesta::No)
        nueva = promedio;
    else if (respuesta == ServicioMensajes::Respuesta::Cancelar)
        nueva = usada;
    nueva = nueva > 0 && nueva < 1 ? 1 / RedondearConMascara(1 / nueva, mascara) : RedondearConMascara(nueva, mascara);
    const bool mantenerMC = respuesta != ServicioMensajes::Respuesta::Cancelar && preguntarTexto(1833);
    const QString mascaraMC = Monedas().DatoMoneda(0, 4).toString();
    const QString mascaraME = Monedas().DatoMoneda(linea.iMon, 4).toString();
    auto recalcular = [&](RegistroLinea &l) {
        l.dTCambio = nueva;
        if (mantenerMC)
            l.dImporte = RedondearConMascara(l.dImporteMC / nueva, mascaraME);
        else
            l.dImporteMC = RedondearConMascara(l.dImporte * nueva, mascaraMC);
    };
    recalcular(linea);
    if (respuesta != ServicioMensajes::Respuesta::Cancelar) {
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
            if (r == m_filaEdicion || m_asientos.EsFilaDiferencia(r))
                continue;
            RegistroLinea x = m_asientos.LineaDeFila(r);
            if (x.iMon != linea.iMon)
                continue;
            recalcular(x);
            x.ACuOrden = qint16(CampoDeClave(m_grilla.Dato(r, 1).toString(), 4));
            m_asientos.FilaLineaAsiento(r, x);
        }
        m_pendiente = true;
    }
    return true;
}

void lumIngAsiento::AceptarLinea()
{
    CabezalAsiento &c = m_asientos.Cabezal;
    if (m_filaEdicion <= 0 || c.FilaCabezal < 0)
        return;
    if (!odDate->Aceptar() || !odDate->date().isValid()) {
        odDate->setFocus();
        return;
    }
    const QDate fecha = odDate->date();
    const bool hayDebe = oraEdit->CuentaIngresadaAlDebe();
    const bool hayHaber = oraEdit->CuentaIngresadaAlHaber();
    QVector<RegistroLinea> lineas;
    for (bool debe : {true, false}) {
        if (debe ? !hayDebe : !hayHaber)
            continue;
        const ValorLinea v = debe ? oraEdit->GetValorCuentaDebe() : oraEdit->GetValorCuentaHaber();
        RegistroLinea l;
        l.bEsAlDebe = debe;
        l.lCta = v.lCta;
        l.iPry = v.iPry;
        l.iDep = v.iDep;
        l.iMon = v.iMon;
        l.sTextDisplay = v.sTextDisplay;
        l.dFechaCierre = v.dFechaCierre.isValid() && v.dFechaCierre > QDate(1901, 1, 1) ? v.dFechaCierre.toString(Qt::ISODate) : QString();
        const bool extranjera = v.iMon != m_empresa.monedaContabilidad && v.iMon >= 1;
        l.dImporte = v.dImporte;
        l.dImporteMC = extranjera ? v.dImporteMC : v.dImporte;
        l.dTCambio = extranjera ? v.dTCambio : (v.dImporte != 0 ? 1 : 0);
        lineas.append(l);
    }
    if (lineas.isEmpty())
        return;

    for (const RegistroLinea &l : std::as_const(lineas)) {
        if (l.dImporte == 0 && l.dImporteMC != 0 && !preguntarTexto(1819))
            return;
    }
    // Closed accounts: an account of the stored entry closed at its date cannot change
    // (1815); a date on or before an account's closing is not admitted (1821).
    for (const RegistroLinea &l : std::as_const(lineas)) {
        const QDate cierre = QDate::fromString(l.dFechaCierre, Qt::ISODate);
        if (!cierre.isValid() || fecha > cierre)
            continue;
        // The edited row still carries the key it was loaded with: its account counts as one
        // of the stored entry's.
        bool delAsiento = false;
        for (int r = c.FilaCabezal + 1; r <= m_asientos.UltimaFilaAsiento(c.FilaCabezal); ++r)
            delAsiento = delAsiento || m_asientos.LineaDeFila(r).lCta == l.lCta;
        if (c.AsiID > 0 && delAsiento) {
            errorTexto(1815);
        } else {
            errorTexto(1821);
            if (c.AsiID > 0)
                odDate->setDate(c.AsiFechaAsiento);
            odDate->setFocus();
        }
        return;
    }
    if (c.AsiID > 0 && fecha != c.AsiFechaAsiento && hayCuentasCerradasEnGrilla(fecha)) {
        errorTexto(1821);
        odDate->setDate(c.AsiFechaAsiento);
        odDate->setFocus();
        return;
    }
    for (RegistroLinea &l : lineas)
        if (!reglaTasas(l))
            return;

    // The line goes into the grid; the header row takes the header fields.
    m_grilla.FijarRedibujar(false);
    escribirLinea(m_filaEdicion, lineas[0]);
    if (lineas.size() > 1) {
        m_grilla.InsertarFila(m_filaEdicion + 1);
        m_grilla.FijarDato(m_filaEdicion + 1, 0, c.AsiID);
        escribirLinea(m_filaEdicion + 1, lineas[1]);
    }
    // A book shown by name and an authoriser list the company does not show keep the
    // entry's values.
    const qint16 libro = m_libroFijo ? c.AsiTipo : qint16(cfTipo->currentData().toInt());
    const qint16 autoriza = cfAutoriza->isHidden() ? c.AsiUsuarioVerificador : qint16(cfAutoriza->currentData().toInt());
    const QString leyenda = tLeyenda->text().trimmed();
    const bool cabezalCambiado = c.AsiFechaAsiento != fecha || c.AsiLeyenda != leyenda || c.AsiTipo != libro
                              || c.AsiUsuarioVerificador != autoriza;
    c.AsiFechaAsiento = fecha;
    c.AsiLeyenda = leyenda;
    c.AsiTipo = libro;
    c.AsiUsuarioVerificador = autoriza;
    m_asientos.FilaCabezalAsiento(nombreLibro(c.AsiTipo));
    m_grilla.FijarImagen(c.FilaCabezal, QStringLiteral("edicion"));
    // The old proposal of the missing line goes; a new one is made below when still needed.
    for (int r = m_asientos.UltimaFilaAsiento(c.FilaCabezal); r > c.FilaCabezal; --r)
        if (m_asientos.EsFilaDiferencia(r))
            m_grilla.QuitarFila(r);
    m_grilla.FijarRedibujar(true);
    m_pendiente = true;

    bool escrito = false;
    bool cierra = lineas.size() > 1;
    if (!cierra) {
        bool debeMenor = false;
        double mc = 0, me = 0;
        m_asientos.CierreAsiento(debeMenor, mc, me, cierra);
    }
    if (cierra) {
        escrito = GrabarAsientoCompleto(true);
        m_pendiente = false;
        if (!escrito) {
            // The message is shown once; the edit stays open with what was typed, and
            // leaving it shows the entry as stored.
            m_escrituraRechazada = true;
            return;
        }
    } else if (c.AsiID > 0 && cabezalCambiado) {
        GrabarCabezal();
    }

    if (escrito && c.AsiFechaAsiento > QDate::currentDate() && preguntarTexto(1807)) {
        const qint32 id = c.AsiID;
        if (CrearMovimientoFrecuente(true) && EliminarDefinitivo(id)) {
            // The entry's rows are gone from the grid: no row of it is left to tidy up.
            c.FilaCabezal = -1;
            m_filaEdicion = 0;
            terminarEdicion(false);
        } else {
            terminarEdicion(true);
        }
        return;
    }
    if (escrito) {
        terminarEdicion(true);
        return;
    }
    // Still unbalanced: the next line is typed below, with the missing amount proposed.
    const int ultima = m_asientos.UltimaFilaAsiento(c.FilaCabezal);
    m_grilla.InsertarFila(ultima + 1);
    m_grilla.FijarDato(ultima + 1, 0, c.AsiID);
    m_grilla.FijarDato(ultima + 1, 1, QString()); // a line row with no account yet
    m_filaEdicion = ultima + 1;
    // The proposal of the missing line shows below the line being typed.
    m_asientos.FilaDiferencia(m_filaEdicion + 1, true);
    SeleccionarFila(m_filaEdicion);
    cargarLineaEnEditor(m_filaEdicion);
    mostrarFilaEdicion();
    oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
}

void lumIngAsiento::SalirEdicion()
{
    if (m_filaEdicion <= 0)
        return;
    CabezalAsiento &c = m_asientos.Cabezal;
    bool escrito = false;
    if (m_pendiente && c.FilaCabezal >= 0) {
        // The row being typed is no line yet; without it the entry is what was accepted.
        if (m_grilla.Dato(m_filaEdicion, 1).toString().isEmpty() && !m_asientos.EsFilaCabezal(m_filaEdicion)) {
            m_grilla.QuitarFila(m_filaEdicion);
            m_filaEdicion = c.FilaCabezal;
        }
        bool debeMenor = false, cierra = false;
        double mc = 0, me = 0;
        m_asientos.CierreAsiento(debeMenor, mc, me, cierra);
        escrito = GrabarAsientoCompleto(cierra);
        m_escrituraRechazada = m_escrituraRechazada || !escrito;
        m_pendiente = false;
    }
    // A stored entry is shown as stored: what was written, or, after a refusal, as it was.
    terminarEdicion(escrito || c.AsiID > 0);
}

bool lumIngAsiento::SalirEdicionEnLaFila()
{
    const qint32 id = m_asientos.IdDeFila(m_filaEdicion);
    const QString clave = m_grilla.Dato(m_filaEdicion, 1).toString();
    SalirEdicion();
    if (id <= 0 || clave.isEmpty() || clave == AsientosGrilla::kClaveDiferencia)
        return false;
    const int cabezal = m_asientos.FilaCabezalDe(m_vsGrid->FilaActual());
    if (cabezal < 0 || m_asientos.IdDeFila(cabezal) != id)
        return false;
    for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
        if (m_grilla.Dato(r, 1).toString() == clave) {
            SeleccionarFila(r);
            return true;
        }
    }
    return false;
}

// Leaves edit mode. A stored entry's rows are read again from the store; an entry that was
// never stored goes when nothing of it could be written.
void lumIngAsiento::terminarEdicion(bool recargar)
{
    CabezalAsiento &c = m_asientos.Cabezal;
    int seleccion = -1;
    m_grilla.FijarRedibujar(false);
    if (c.FilaCabezal >= 0 && c.FilaCabezal < m_grilla.Filas()) {
        const int cabezal = c.FilaCabezal;
        seleccion = cabezal;
        if (m_filaEdicion > 0 && m_filaEdicion < m_grilla.Filas() && m_grilla.Dato(m_filaEdicion, 1).toString().isEmpty()
            && !m_asientos.EsFilaCabezal(m_filaEdicion) && !m_asientos.EsFilaNuevoAsiento(m_filaEdicion))
            m_grilla.QuitarFila(m_filaEdicion);
        const int ultima = m_asientos.UltimaFilaAsiento(cabezal);
        if (recargar && c.AsiID > 0) {
            const qint32 id = c.AsiID;
            m_grilla.QuitarFilas(cabezal, ultima - cabezal + 1);
            ActualizarContexto();
            if (const auto fallo = CargarAsientoEnGrilla(m_asientos, *ConexionCompartida(), id, cabezal))
                MostrarFallo(*fallo);
        } else if (c.AsiID <= 0 && (ultima == cabezal || m_escrituraRechazada)) {
            // Never stored, and nothing of it could be: its rows go.
            m_grilla.QuitarFilas(cabezal, ultima - cabezal + 1);
        } else if (m_asientos.EsFilaCabezal(cabezal)) {
            m_asientos.ClaveEstado(cabezal, c.AsiEstado);
            m_asientos.FormatoEntrada();
        }
    }
    m_grilla.FijarRedibujar(true);
    oraEdit->hide();
    picEdit->setVisible(false);
    m_filaEdicion = 0;
    m_filaRecordada = -1;
    m_pendiente = false;
    m_libroFijo = false;
    m_escrituraRechazada = false;
    m_asientos.ResetCabezal();
    restaurarEncabezados();
    if (!m_vistaAntesDeEditar.isEmpty()) {
        hlCargar->Tag = m_vistaAntesDeEditar;
        m_vistaAntesDeEditar.clear();
        MostrarVista();
    }
    m_vsGrid->setEnabled(true);
    // The entry just left stays the current row, in view.
    if (seleccion < m_grilla.FilasFijas() || seleccion >= m_grilla.Filas())
        seleccion = m_grilla.Filas() - 1;
    SeleccionarFila(seleccion);
    m_vsGrid->scrollTo(m_vsGrid->currentIndex(), QAbstractItemView::EnsureVisible);
    m_vsGrid->setFocus();
}

bool lumIngAsiento::TeclaEdicion(int ascii)
{
    if (ascii == 27 && m_filaEdicion > 0) {
        SalirEdicion();
        return true;
    }
    if (ascii == 13 && m_filaEdicion <= 0) {
        return EntrarEdicion(m_vsGrid->FilaActual());
    }
    return false;
}
