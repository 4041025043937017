#include "paneledicion.h"

#include "lumingasiento.h"
#include "currency/catalogomonedas.h"
#include "editing/datosdocumento.h"
#include "editing/sesionedicion.h"
#include "entries/asientodatos.h"
#include "entries/grilla.h"
#include "grid/vsgrid.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/lumerasiento.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <utility>

PanelEdicion::PanelEdicion(lumIngAsiento &documento, const DatosDocumento &datos, Grilla &grilla, vsGrid *grid,
                           QWidget *padre)
    : QFrame(padre)
    , m_doc(documento)
    , m_datos(datos)
    , m_grilla(grilla)
    , m_vsGrid(grid)
{
    setObjectName(QStringLiteral("picEdit"));
    setAutoFillBackground(true);
    crearCampos();
    oraEdit = new lumERAsiento(ContextoLinea(), m_vsGrid->viewport());
    oraEdit->hide();
    // Tab goes through the header and the line in the order Enter does; hidden or disabled
    // fields (the book list of the opening entry, the authoriser) are passed over.
    QList<QWidget *> orden{odDate, cfTipo, tLeyenda, cfAutoriza};
    orden += oraEdit->camposEnOrden();
    for (qsizetype i = 1; i < orden.size(); ++i)
        setTabOrder(orden[i - 1], orden[i]);
    conectarEditor();
    setVisible(false);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *ahora) {
        if (ahora && (isAncestorOf(ahora) || oraEdit->isAncestorOf(ahora)))
            m_ultimoFoco = ahora;
    });
}

void PanelEdicion::crearCampos()
{
    picCabezal = new QFrame(this);
    picCabezal->setObjectName(QStringLiteral("picCabezal"));
    picCabezal->setAutoFillBackground(true);
    auto etiqueta = [this](const char *nombre) {
        auto *l = new QLabel(picCabezal);
        l->setObjectName(QString::fromLatin1(nombre));
        return l;
    };
    lDate = etiqueta("lDate");
    lLeyenda = etiqueta("lLeyenda");
    lLibro = etiqueta("lLibro");
    lAutoriza = etiqueta("lAutoriza");
    lLibroApertura = etiqueta("lLibroApertura");
    lLibroApertura->setVisible(false);
    odDate = new CampoFecha(m_datos.proceso->reloj, picCabezal);
    odDate->setObjectName(QStringLiteral("odDate"));
    tLeyenda = new QLineEdit(picCabezal);
    tLeyenda->setObjectName(QStringLiteral("tLeyenda"));
    tLeyenda->setMaxLength(kLargoLeyenda);
    cfTipo = new QComboBox(picCabezal);
    cfTipo->setObjectName(QStringLiteral("cfTipo"));
    cfAutoriza = new QComboBox(picCabezal);
    cfAutoriza->setObjectName(QStringLiteral("cfAutoriza"));
    lDate->setBuddy(odDate);
    lLeyenda->setBuddy(tLeyenda);
    lLibro->setBuddy(cfTipo);
    lAutoriza->setBuddy(cfAutoriza);
    for (QWidget *w : {static_cast<QWidget *>(odDate), static_cast<QWidget *>(cfTipo), static_cast<QWidget *>(tLeyenda),
                       static_cast<QWidget *>(cfAutoriza)})
        w->installEventFilter(this);

    auto *cabezal = new QGridLayout(picCabezal);
    cabezal->addWidget(lDate, 0, 0);
    cabezal->addWidget(odDate, 0, 1);
    cabezal->addWidget(lLibro, 0, 2);
    cabezal->addWidget(cfTipo, 0, 3);
    cabezal->addWidget(lLibroApertura, 0, 3);
    cabezal->addWidget(lAutoriza, 0, 4);
    cabezal->addWidget(cfAutoriza, 0, 5);
    cabezal->addWidget(lLeyenda, 1, 0);
    cabezal->addWidget(tLeyenda, 1, 1, 1, 5);
    cabezal->setColumnStretch(3, 1);
    auto *edicion = new QVBoxLayout(this);
    edicion->setContentsMargins(4, 4, 4, 4);
    edicion->addWidget(picCabezal);
}

void PanelEdicion::conectarEditor()
{
    // Every accepted change of the date reaches the line editor, whatever moved the focus:
    // its rates and closed-account checks go by the entry's date.
    connect(odDate, &CampoFecha::dateChanged, oraEdit, [this](const QDate &fecha) { oraEdit->setFechaAsiento(fecha); });
    // A date that cannot be read is refused where it was typed. The refusal may come from a
    // focus change, so the message waits for it to end.
    connect(odDate, &CampoFecha::fechaInvalida, this, [this] {
        if (m_fila <= 0)
            return;
        m_datos.Error(1951);
        odDate->setFocus();
    }, Qt::QueuedConnection);
    connect(oraEdit, &lumERAsiento::EnabledContenedor, this, [this](bool *si) { m_vsGrid->setEnabled(*si); });
    connect(oraEdit, &lumERAsiento::EditOK, this, [this](bool *) {
        // An entry of a company whose entries carry an authoriser needs one: the line waits
        // in the editor while it is chosen, and Enter on the list then takes it.
        if (ConAutoriza() && cfAutoriza->currentIndex() < 0) {
            m_datos.Advertir(1953);
            m_aceptarTrasAutoriza = true;
            cfAutoriza->setFocus();
            return;
        }
        m_doc.edicion().AceptarLinea();
    });
    connect(oraEdit, &lumERAsiento::MonedaResultadoTC, this, [this](QString *simbolo, QString *operador) {
        m_grilla.FijarTexto(0, 5, m_datos.texto(1061) + *simbolo);
        m_grilla.FijarTexto(0, 4, *operador + m_datos.texto(1063));
    });
    connect(oraEdit, &lumERAsiento::GetTCME, this,
            [this](qint16 *moneda, double *tasa) { *tasa = m_doc.asientos().BuscarTCMonedaCuenta(*moneda); });
    connect(oraEdit, &lumERAsiento::GotFocusCtrl, this, [this](int *campo) { encabezadosDeEdicion(*campo); });
    connect(oraEdit, &lumERAsiento::KeyDownCtrl, this, [this](int *campo, int *tecla, int *) {
        encabezadosDeEdicion(*campo);
        if (*tecla == Qt::Key_Escape) {
            *tecla = 0;
            QMetaObject::invokeMethod(this, [this] { m_doc.edicion().SalirEdicion(SesionEdicion::Salida::Escape); }, Qt::QueuedConnection);
        }
    });
    connect(m_vsGrid, &vsGrid::Desplazado, this, &PanelEdicion::colocarEditor);
    connect(m_vsGrid->horizontalHeader(), &QHeaderView::sectionResized, this, &PanelEdicion::colocarEditor);
    // The grid's height changes with the window: the editor follows its row.
    m_vsGrid->viewport()->installEventFilter(this);
}

void PanelEdicion::AsignarTextos()
{
    lDate->setText(m_datos.texto(1076));
    lLeyenda->setText(m_datos.texto(1077));
    lLibro->setText(m_datos.texto(1078));
    lAutoriza->setText(m_datos.texto(1079));
    for (QLabel *l : {lDate, lLeyenda, lLibro, lAutoriza})
        l->buddy()->setAccessibleName(QString(l->text()).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

void PanelEdicion::FijarColorFondo(const QColor &color)
{
    QPalette fondo = palette();
    fondo.setColor(QPalette::Window, color);
    setPalette(fondo);
    picCabezal->setPalette(fondo);
}

void PanelEdicion::FijarFormatoFecha(const QString &formatoQt)
{
    odDate->setDisplayFormat(formatoQt);
}

void PanelEdicion::FijarAutorizadores(const QList<std::pair<QString, qint16>> &autorizadores, bool mostrar)
{
    lAutoriza->setVisible(mostrar);
    cfAutoriza->setVisible(mostrar);
    cfAutoriza->clear();
    for (const auto &[nombre, id] : autorizadores)
        cfAutoriza->addItem(nombre, int(id));
}

int PanelEdicion::FilaActual() const
{
    return m_vsGrid->FilaActual();
}

void PanelEdicion::SeleccionarFila(int fila)
{
    m_doc.SeleccionarFila(fila);
}

void PanelEdicion::ActualizarContexto()
{
    m_doc.ActualizarContexto();
}

void PanelEdicion::FijarLibros(const QList<std::pair<QString, qint16>> &libros)
{
    cfTipo->clear();
    for (const auto &[nombre, codigo] : libros)
        cfTipo->addItem(nombre, int(codigo));
    cfTipo->setCurrentIndex(-1); // filling a list selects its first item
}

bool PanelEdicion::ConAutoriza() const
{
    // A company whose entries carry an authoriser, with nobody allowed to authorise, still
    // keeps its books: its entries go without one.
    return !cfAutoriza->isHidden() && cfAutoriza->count() > 0;
}

void PanelEdicion::AbrirCabezal(const ValoresCabezal &valores)
{
    m_doc.MarcarVistaEdicion(true);
    odDate->setEnabled(true);
    odDate->setDate(valores.fecha);
    odDate->setEnabled(valores.fechaHabilitada);
    cfTipo->setVisible(valores.libroFijo.isEmpty());
    lLibroApertura->setVisible(!valores.libroFijo.isEmpty());
    lLibroApertura->setText(valores.libroFijo);
    cfTipo->setCurrentIndex(cfTipo->findData(int(valores.libro)));
    if (ConAutoriza()) {
        // An entry without one is offered the company's only authoriser.
        const int elegido = valores.autoriza ? cfAutoriza->findData(int(valores.autoriza)) : (cfAutoriza->count() == 1 ? 0 : -1);
        cfAutoriza->setCurrentIndex(elegido);
        cfAutoriza->setEnabled(valores.autorizaHabilitado);
    }
    m_aceptarTrasAutoriza = false;
    tLeyenda->setText(valores.leyenda);
    setVisible(true);
}

QStringList PanelEdicion::TextoCabezal() const
{
    QStringList partes;
    for (const QString &t : {odDate->text(), tLeyenda->text(), lLibroApertura->isVisible() ? lLibroApertura->text() : cfTipo->currentText()})
        if (!t.trimmed().isEmpty())
            partes << t.trimmed();
    return partes;
}

ValoresCabezal PanelEdicion::LeerCabezal()
{
    ValoresCabezal v;
    if (odDate->Aceptar() && odDate->date().isValid())
        v.fecha = odDate->date();
    v.fechaHabilitada = odDate->isEnabled();
    v.leyenda = tLeyenda->text();
    v.libro = qint16(cfTipo->currentData().toInt());
    v.libroFijo = lLibroApertura->isVisible() ? lLibroApertura->text() : QString();
    v.autoriza = qint16(cfAutoriza->currentData().toInt());
    v.autorizaHabilitado = cfAutoriza->isEnabled();
    return v;
}

void PanelEdicion::FijarFecha(const QDate &fecha)
{
    odDate->setDate(fecha);
}

void PanelEdicion::EnfocarFecha()
{
    odDate->setFocus();
}

void PanelEdicion::CargarEditor(const QDate &fecha, std::optional<std::pair<bool, Importe>> diferencia,
                                const std::optional<RegistroLinea> &linea)
{
    oraEdit->InitRegistro();
    oraEdit->setFechaAsiento(fecha);
    if (diferencia)
        oraEdit->SetDiferencia(diferencia->first, diferencia->second);
    if (linea)
        oraEdit->CargarLinea(*linea);
}

std::optional<ValorLinea> PanelEdicion::LineaDelEditor(bool debe) const
{
    if (debe ? !oraEdit->CuentaIngresadaAlDebe() : !oraEdit->CuentaIngresadaAlHaber())
        return std::nullopt;
    return debe ? oraEdit->GetValorCuentaDebe() : oraEdit->GetValorCuentaHaber();
}

void PanelEdicion::MostrarEditor(int fila, bool enfocar)
{
    m_fila = fila;
    mostrarFilaEdicion();
    if (enfocar)
        oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
    else if (odDate->isEnabled())
        odDate->setFocus();
    else
        tLeyenda->setFocus();
}

void PanelEdicion::RetomarEdicion(int fila)
{
    m_fila = fila;
    m_doc.SeleccionarFila(fila);
    mostrarFilaEdicion();
    if (m_ultimoFoco && m_ultimoFoco->isVisible() && m_ultimoFoco->isEnabled())
        m_ultimoFoco->setFocus();
    else
        oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
}

void PanelEdicion::CerrarEdicion(int fila)
{
    oraEdit->hide();
    setVisible(false);
    m_fila = 0;
    RestaurarEncabezados();
    m_doc.MarcarVistaEdicion(false);
    m_vsGrid->setEnabled(true);
    m_doc.SeleccionarFila(fila);
    m_vsGrid->scrollTo(m_vsGrid->currentIndex(), QAbstractItemView::EnsureVisible);
    m_vsGrid->setFocus();
}

// The edited row is scrolled into view and the line editor laid over it. The header area
// that opens above the grid makes the grid shorter, so its layout is settled first.
void PanelEdicion::mostrarFilaEdicion()
{
    if (m_fila <= 0)
        return;
    for (QWidget *w = parentWidget(); w; w = w->parentWidget())
        if (w->layout())
            w->layout()->activate();
    const QModelIndex i = m_vsGrid->model()->index(m_fila - m_grilla.FilasFijas(), 0);
    m_vsGrid->scrollTo(i, QAbstractItemView::EnsureVisible);
    // The editor is taller than a row: a row at the bottom edge is brought up.
    const QRect fila = m_vsGrid->visualRect(i);
    if (fila.top() + std::max(fila.height(), oraEdit->fontMetrics().height() + 8) > m_vsGrid->viewport()->height())
        m_vsGrid->scrollTo(i, QAbstractItemView::PositionAtCenter);
    colocarEditor();
}

// The editor lies over the edited row, each field over its column.
void PanelEdicion::colocarEditor()
{
    if (m_fila <= 0)
        return;
    const QModelIndex i = m_vsGrid->model()->index(m_fila - m_grilla.FilasFijas(), 0);
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
    const int alto = std::max(fila.height(), oraEdit->fontMetrics().height() + 8);
    oraEdit->setHeightAllCtrl(m_vsGrid->PixelesATwips(alto));
    oraEdit->setGeometry(m_vsGrid->columnViewportPosition(0), fila.top(), m_vsGrid->viewport()->width(), alto);
    oraEdit->show();
    oraEdit->raise();
}

// The headings name the field in use: the side of the account, or the amount's currency.
void PanelEdicion::encabezadosDeEdicion(int campo)
{
    m_grilla.FijarTexto(0, 0, m_datos.texto(campo == lumERAsiento::kDebe ? 1065 : 1068));
    m_grilla.FijarTexto(0, 1, campo == lumERAsiento::kHaber ? m_datos.texto(1066) : QString());
    m_grilla.FijarTexto(0, 2, campo == lumERAsiento::kImporte || campo == lumERAsiento::kMoneda
                                  ? m_datos.texto(1067) + m_datos.monedas().DatoMoneda(oraEdit->MonedaCombo(), 2).toString()
                                  : m_datos.texto(1069));
}

void PanelEdicion::RestaurarEncabezados()
{
    m_grilla.FijarTexto(0, 0, m_datos.texto(1068));
    m_grilla.FijarTexto(0, 1, QString());
    m_grilla.FijarTexto(0, 2, m_datos.texto(1069));
    m_grilla.FijarTexto(0, 3, m_datos.texto(1070));
    m_grilla.FijarTexto(0, 4, m_datos.texto(1063));
    m_grilla.FijarTexto(0, 5, m_datos.texto(1062));
}

// Enter moves through the header's open fields to the line editor; Escape ends the edit.
bool PanelEdicion::teclaEnCabezal(QObject *objeto, QKeyEvent *evento)
{
    if (evento->key() == Qt::Key_Escape) {
        m_doc.edicion().SalirEdicion(SesionEdicion::Salida::Escape);
        return true;
    }
    // Tab leaves the book, the legend and the authoriser as Enter does, with the same checks;
    // the date takes Tab itself.
    const bool tab = evento->key() == Qt::Key_Tab && !(evento->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
                  && objeto != odDate;
    if (evento->key() != Qt::Key_Return && evento->key() != Qt::Key_Enter && !tab)
        return false;
    if (objeto == odDate) {
        // An accepted date reaches the line editor through dateChanged.
        if (!odDate->Aceptar())
            return true;
        (cfTipo->isVisible() ? static_cast<QWidget *>(cfTipo) : tLeyenda)->setFocus();
    } else if (objeto == cfTipo) {
        tLeyenda->setFocus();
    } else if (objeto == tLeyenda) {
        if (ConAutoriza() && cfAutoriza->isEnabled())
            cfAutoriza->setFocus();
        else
            oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
    } else if (objeto == cfAutoriza) {
        // Enter does not pass an empty list: the authoriser is asked for here, not after the
        // line's amount.
        if (ConAutoriza() && cfAutoriza->currentIndex() < 0) {
            m_datos.Advertir(1953);
            cfAutoriza->setFocus();
            return true;
        }
        if (std::exchange(m_aceptarTrasAutoriza, false))
            m_doc.edicion().AceptarLinea();
        else
            oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
    }
    return true;
}

bool PanelEdicion::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() == QEvent::Resize && objeto == m_vsGrid->viewport() && m_fila > 0) {
        QMetaObject::invokeMethod(this, &PanelEdicion::mostrarFilaEdicion, Qt::QueuedConnection);
        return false;
    }
    if (evento->type() == QEvent::KeyPress
        && (objeto == odDate || objeto == cfTipo || objeto == tLeyenda || objeto == cfAutoriza))
        return teclaEnCabezal(objeto, static_cast<QKeyEvent *>(evento));
    // The date and the legend are typed over: on focus their whole text is selected.
    if (evento->type() == QEvent::FocusIn && (objeto == tLeyenda || objeto == odDate))
        QMetaObject::invokeMethod(static_cast<QLineEdit *>(objeto), &QLineEdit::selectAll, Qt::QueuedConnection);
    return QFrame::eventFilter(objeto, evento);
}
