#include "movimientosfrecuentes.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "editing/datosdocumento.h"
#include "entries/modeloasiento.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/contextodocumento.h"
#include "lineeditor/lumerasiento.h"
#include "services/serviciobusquedacuentas.h"
#include "services/serviciomensajes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>

namespace {

int aTwips(const QWidget *w, int px)
{
    return int(std::lround(px * 1440.0 / std::max(1, w->logicalDpiX())));
}

} // namespace

MovimientosFrecuentes::MovimientosFrecuentes(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, QWidget *padre)
    : QDialog(padre)
    , m_datos(datos)
    , m_cuentas(cuentas)
{
    setObjectName(QStringLiteral("MovimientosFrecuentes"));
    setWindowTitle(m_datos.texto(2060));
    resize(860, 520);
    crearControles();
}

MovimientosFrecuentes::~MovimientosFrecuentes() = default;

void MovimientosFrecuentes::crearControles()
{
    tNombre = new QLineEdit(this);
    tNombre->setObjectName(QStringLiteral("tNombre"));
    tNombre->setMaxLength(120);
    tLeyenda = new QLineEdit(this);
    tLeyenda->setObjectName(QStringLiteral("tLeyenda"));
    tLeyenda->setMaxLength(kLargoLeyenda);
    cfLibro = new QComboBox(this);
    cfLibro->setObjectName(QStringLiteral("cfLibro"));
    chkAgendar = new QCheckBox(m_datos.texto(2061), this);
    chkAgendar->setObjectName(QStringLiteral("chkAgendar"));
    odDesde = new CampoFecha(m_datos.proceso->reloj, this);
    odDesde->setObjectName(QStringLiteral("odDesde"));
    odDesde->setDisplayFormat(FormatoQtDeFecha(m_datos.formatoFecha.isEmpty() ? QStringLiteral("dd/mm/yyyy") : m_datos.formatoFecha));
    odDesde->setDate(m_datos.reloj().Hoy());
    odDesde->setEnabled(false);
    connect(chkAgendar, &QCheckBox::toggled, odDesde, &QWidget::setEnabled);
    connect(odDesde, &CampoFecha::fechaInvalida, this, [this] {
        m_datos.Error(1951);
        odDesde->setFocus();
    }, Qt::QueuedConnection);

    lvLineas = new QTreeWidget(this);
    lvLineas->setObjectName(QStringLiteral("lvLineas"));
    lvLineas->setHeaderLabels({m_datos.texto(1065), m_datos.texto(1066), m_datos.texto(1067).trimmed(), m_datos.texto(1063),
                               m_datos.texto(1061) + m_datos.monedas().DatoMoneda(0, 2).toString()});
    lvLineas->setRootIsDecorated(false);
    lvLineas->setAllColumnsShowFocus(true);
    lvLineas->header()->setStretchLastSection(false);
    lvLineas->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lvLineas->header()->setSectionResizeMode(1, QHeaderView::Stretch);
    lvLineas->installEventFilter(this);
    connect(lvLineas->header(), &QHeaderView::sectionResized, this, &MovimientosFrecuentes::colocarEditor);

    // The line editor lies in a band under the list, each field under its column.
    auto *banda = new QWidget(this);
    banda->setObjectName(QStringLiteral("bandaEditor"));
    oraEdit = new lumERAsiento(ContextoLinea(), banda);
    banda->setMinimumHeight(oraEdit->fontMetrics().height() + 12);
    oraEdit->setPermitirDosCtas(true);
    connect(oraEdit, &lumERAsiento::EditOK, this, [this](bool *) { aceptarLinea(); });
    connect(oraEdit, &lumERAsiento::KeyDownCtrl, this, [this](int *, int *tecla, int *) {
        if (*tecla == Qt::Key_Escape) {
            *tecla = 0;
            oraEdit->InitRegistro();
            lvLineas->setFocus();
        }
    });
    lDiferencia = new QLabel(this);
    lDiferencia->setObjectName(QStringLiteral("lDiferencia"));

    bfOK = new QPushButton(m_datos.texto(2062), this);
    bfOK->setObjectName(QStringLiteral("bfOK"));
    bfCancel = new QPushButton(m_datos.texto(1089), this);
    bfCancel->setObjectName(QStringLiteral("bfCancel"));
    for (QPushButton *b : {bfOK, bfCancel})
        b->setAutoDefault(false);
    connect(bfOK, &QPushButton::clicked, this, &MovimientosFrecuentes::bfOK_Click);
    connect(bfCancel, &QPushButton::clicked, this, &QDialog::reject);

    auto *cabezal = new QFormLayout;
    cabezal->addRow(m_datos.texto(2063), tNombre);
    cabezal->addRow(m_datos.texto(1077), tLeyenda);
    auto *libro = new QHBoxLayout;
    libro->addWidget(cfLibro, 1);
    libro->addSpacing(16);
    libro->addWidget(chkAgendar);
    libro->addWidget(odDesde);
    auto *lLibro = new QLabel(m_datos.texto(1078), this);
    lLibro->setBuddy(cfLibro);
    cabezal->addRow(lLibro, libro);
    auto *botones = new QHBoxLayout;
    botones->addWidget(lDiferencia, 1);
    botones->addWidget(bfOK);
    botones->addWidget(bfCancel);
    auto *todo = new QVBoxLayout(this);
    todo->addLayout(cabezal);
    todo->addWidget(lvLineas, 1);
    todo->addWidget(banda);
    todo->addLayout(botones);
    for (QWidget *w : std::initializer_list<QWidget *>{tNombre, tLeyenda, cfLibro})
        w->installEventFilter(this);
    auto cambio = [this] { m_cambiado = true; };
    connect(tNombre, &QLineEdit::textEdited, this, cambio);
    connect(tLeyenda, &QLineEdit::textEdited, this, cambio);
    connect(cfLibro, &QComboBox::activated, this, cambio);
    connect(chkAgendar, &QCheckBox::clicked, this, cambio);
    connect(odDesde, &QLineEdit::textEdited, this, cambio);
}

void MovimientosFrecuentes::reject()
{
    // What was typed, a line not yet taken included, is only dropped when the user says so.
    const bool lineaEscrita = oraEdit->CuentaIngresadaAlDebe() || oraEdit->CuentaIngresadaAlHaber();
    if ((m_cambiado || lineaEscrita) && !m_datos.Preguntar(1968))
        return;
    QDialog::reject();
}

void MovimientosFrecuentes::prepararEditor()
{
    oraEdit->FijarContexto(ContextoDeDocumento(m_datos, m_cuentas));
    oraEdit->InitRegistro();
    oraEdit->setFechaAsiento(chkAgendar->isChecked() ? odDesde->date() : m_datos.reloj().Hoy());
}

void MovimientosFrecuentes::colocarEditor()
{
    QHeaderView *h = lvLineas->header();
    auto x = [&](int c) { return aTwips(this, h->sectionViewportPosition(c) + lvLineas->viewport()->x()); };
    auto w = [&](int c) { return aTwips(this, h->sectionSize(c)); };
    const int moneda = std::min(800, w(2) / 2);
    oraEdit->setLeft(lumERAsiento::kDebe, x(0));
    oraEdit->setWidth(lumERAsiento::kDebe, w(0));
    oraEdit->setLeft(lumERAsiento::kHaber, x(1));
    oraEdit->setWidth(lumERAsiento::kHaber, w(1));
    oraEdit->setLeft(lumERAsiento::kMoneda, x(2));
    oraEdit->setWidth(lumERAsiento::kMoneda, moneda);
    oraEdit->setLeft(lumERAsiento::kImporte, x(2) + moneda);
    oraEdit->setWidth(lumERAsiento::kImporte, w(2) - moneda);
    oraEdit->setLeft(lumERAsiento::kTCambio, x(3));
    oraEdit->setWidth(lumERAsiento::kTCambio, w(3));
    oraEdit->setLeft(lumERAsiento::kImporteMC, x(4));
    oraEdit->setWidth(lumERAsiento::kImporteMC, w(4));
    const int alto = oraEdit->fontMetrics().height() + 8;
    oraEdit->setHeightAllCtrl(aTwips(this, alto));
    oraEdit->setGeometry(lvLineas->x() - oraEdit->parentWidget()->x(), 2, lvLineas->width(), alto);
}

void MovimientosFrecuentes::resizeEvent(QResizeEvent *evento)
{
    QDialog::resizeEvent(evento);
    lvLineas->header()->resizeSection(2, lvLineas->width() / 6);
    lvLineas->header()->resizeSection(3, lvLineas->width() / 9);
    lvLineas->header()->resizeSection(4, lvLineas->width() / 6);
    colocarEditor();
}

// The list shows the template's lines; under it the amount still missing is proposed.
void MovimientosFrecuentes::mostrarLineas()
{
    lvLineas->clear();
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    const Mascara importes(m_datos.monedas().DatoMoneda(0, 4).toString());
    // After a failure to read an account's name, told once (1908), the accounts show their ids.
    bool leerNombres = m_datos.conexion() != nullptr;
    for (int i = 0; i < m_movimiento.Lineas.size(); ++i) {
        const LineaDatos &l = m_movimiento.Lineas[i];
        const qint16 moneda = m_movimiento.Monedas.value(i);
        std::optional<QString> nombre;
        if (leerNombres && !(nombre = m_datos.Leido(TextoDeCuenta(*m_datos.conexion(), l.Cuenta, m_datos.empresa.mostrarCodigoCta), 1908)))
            leerNombres = false;
        const QString cuenta = nombre.value_or(QString::number(l.Cuenta));
        auto *item = new QTreeWidgetItem(lvLineas);
        item->setText(l.AlDebe ? 0 : 1, cuenta);
        const bool extranjera = moneda > 0 && moneda != mc;
        item->setText(2, (extranjera ? m_datos.monedas().DatoMoneda(moneda, 2).toString() + QLatin1Char(' ') : QString())
                             + Mascara(m_datos.monedas().DatoMoneda(extranjera ? moneda : 0, 4).toString()).Formatear(l.Importe));
        if (extranjera)
            item->setText(3, Mascara(QStringLiteral("#,##0.000")).Formatear(l.Tasa > 0 && l.Tasa < 1 ? 1 / l.Tasa : l.Tasa));
        item->setText(4, importes.Formatear(l.ImporteMC));
        for (int c = 2; c < 5; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }
    const ResultadoBalance balance = m_movimiento.Balance(mc, m_datos.monedas());
    oraEdit->InitRegistro();
    if (!balance.cierra && !m_movimiento.Lineas.isEmpty()) {
        oraEdit->SetDiferencia(balance.debeMenor, balance.diferenciaMC);
        lDiferencia->setText(m_datos.texto(2064).arg(importes.Formatear(balance.diferenciaMC),
                                                     m_datos.texto(balance.debeMenor ? 2065 : 2066)));
    } else {
        lDiferencia->setText(m_movimiento.Lineas.isEmpty() ? QString() : m_datos.texto(2067));
    }
}

// Enter in the line editor's amount: the accounts typed become lines of the template.
void MovimientosFrecuentes::aceptarLinea()
{
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    for (bool debe : {true, false}) {
        if (debe ? !oraEdit->CuentaIngresadaAlDebe() : !oraEdit->CuentaIngresadaAlHaber())
            continue;
        const ValorLinea v = debe ? oraEdit->GetValorCuentaDebe() : oraEdit->GetValorCuentaHaber();
        if (v.dImporte.esCero() && v.dImporteMC.esCero()) {
            m_datos.Advertir(1954);
            oraEdit->SetFocusCtrl(lumERAsiento::kImporte, 0);
            return;
        }
        const bool extranjera = v.iMon != mc && v.iMon >= 1;
        LineaDatos l;
        l.Cuenta = v.lCta;
        l.Proyecto = v.iPry;
        l.Departamento = v.iDep;
        l.AlDebe = debe;
        l.Importe = v.dImporte;
        l.ImporteMC = extranjera ? v.dImporteMC : v.dImporte;
        l.Tasa = extranjera ? v.dTCambio : (v.dImporte.esCero() ? 0 : 1);
        m_movimiento.Lineas.append(l); // stored in this order, numbered from 1
        m_movimiento.Monedas.append(extranjera ? v.iMon : qint16(0));
    }
    m_cambiado = true;
    mostrarLineas();
    oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
}

void MovimientosFrecuentes::quitarLinea()
{
    const int i = lvLineas->indexOfTopLevelItem(lvLineas->currentItem());
    if (i < 0 || i >= m_movimiento.Lineas.size())
        return;
    m_movimiento.Lineas.removeAt(i);
    m_movimiento.Monedas.removeAt(i);
    m_cambiado = true;
    mostrarLineas();
    if (lvLineas->topLevelItemCount() > 0)
        lvLineas->setCurrentItem(lvLineas->topLevelItem(std::min(i, lvLineas->topLevelItemCount() - 1)));
}

void MovimientosFrecuentes::bfOK_Click()
{
    if (tNombre->text().trimmed().isEmpty()) {
        m_datos.mensajes->Advertir(m_datos.texto(2068));
        tNombre->setFocus();
        return;
    }
    if (oraEdit->CuentaIngresadaAlDebe() || oraEdit->CuentaIngresadaAlHaber()) {
        // A line typed and not taken with Enter would be lost.
        m_datos.Advertir(1955);
        oraEdit->SetFocusCtrl(lumERAsiento::kImporte, 0);
        return;
    }
    if (m_movimiento.Lineas.isEmpty()) {
        m_datos.mensajes->Advertir(m_datos.texto(2069));
        oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
        return;
    }
    if (chkAgendar->isChecked() && (!odDesde->Aceptar() || !odDesde->date().isValid()))
        return;
    MovimientoFrecuente &m = m_movimiento;
    m.Empresa = m_datos.idEmpresa();
    m.Nombre = tNombre->text().trimmed();
    m.Leyenda = tLeyenda->text().trimmed();
    m.Libro = qint16(cfLibro->currentData().toInt());
    m.Usuario = m_datos.usuario;
    m.Recurrencia = chkAgendar->isChecked() ? QString::fromLatin1(FrecuentesDatos::kRecurrenciaAgendado) : QString();
    const QDate proxima = chkAgendar->isChecked() ? odDesde->date() : QDate();
    // A schedule given a new first date begins again on that day of the month.
    if (proxima.isValid() && proxima != m.FechaProxima)
        m.Fecha = proxima;
    m.FechaProxima = proxima;
    if (!m.Fecha.isValid())
        m.Fecha = chkAgendar->isChecked() ? odDesde->date() : m_datos.reloj().Hoy();
    FrecuentesDatos datos(*m_datos.conexion(), m_datos.texto);
    if (const auto fallo = datos.Guardar(m)) {
        m_datos.Error(1908, fallo->detalle);
        return;
    }
    m_guardado = m.MFrID;
    accept();
}

qint32 MovimientosFrecuentes::Editar(qint32 mfrID)
{
    m_guardado = 0;
    m_movimiento = MovimientoFrecuente();
    if (!m_datos.conexion())
        return 0;
    cfLibro->clear();
    const auto libros = m_datos.Leido(m_datos.LeerLibros(true), 1908);
    if (!libros)
        return 0;
    for (const auto &[nombre, codigo] : *libros)
        cfLibro->addItem(nombre, int(codigo));
    if (mfrID > 0) {
        const auto m = m_datos.Leido(FrecuentesDatos(*m_datos.conexion()).Leer(mfrID), 1908);
        if (!m || !*m)
            return 0;
        m_movimiento = **m;
    }
    tNombre->setText(m_movimiento.Nombre);
    tLeyenda->setText(m_movimiento.Leyenda);
    const int libro = cfLibro->findData(int(m_movimiento.MFrID > 0 ? m_movimiento.Libro : m_datos.empresa.libroPorDefecto));
    cfLibro->setCurrentIndex(libro >= 0 ? libro : (cfLibro->count() > 0 ? 0 : -1));
    chkAgendar->setChecked(m_movimiento.Agendado());
    if (m_movimiento.FechaProxima.isValid())
        odDesde->setDate(m_movimiento.FechaProxima);
    prepararEditor();
    mostrarLineas();
    m_cambiado = false;
    tNombre->setFocus();
    // The list's stretched columns take their widths once the dialog is laid out on screen;
    // the line editor's fields follow them then.
    QTimer::singleShot(0, this, &MovimientosFrecuentes::colocarEditor);
    exec();
    return m_guardado;
}

// Enter moves through the header to the line editor; Supr on the list takes a line out.
bool MovimientosFrecuentes::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() == QEvent::KeyPress) {
        const int tecla = static_cast<QKeyEvent *>(evento)->key();
        if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) {
            if (objeto == tNombre)
                tLeyenda->setFocus();
            else if (objeto == tLeyenda)
                cfLibro->setFocus();
            else if (objeto == cfLibro)
                oraEdit->SetFocusCtrl(lumERAsiento::kDebe, 0);
            else
                return QDialog::eventFilter(objeto, evento);
            return true;
        }
        if (objeto == lvLineas && tecla == Qt::Key_Delete) {
            quitarLinea();
            return true;
        }
    }
    return QDialog::eventFilter(objeto, evento);
}
