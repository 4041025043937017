#include "registrofrecuentes.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "editing/datosdocumento.h"
#include "entries/frecuentesdatos.h"
#include "entries/modeloasiento.h"
#include "lineeditor/campofecha.h"
#include "movimientosfrecuentes.h"
#include "services/serviciomensajes.h"
#include "services/ocupado.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <utility>

namespace {

QString fechaCorta(const QDate &d)
{
    return d.toString(QStringLiteral("dd/MM/yyyy"));
}

} // namespace

RegistroFrecuentes::RegistroFrecuentes(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, QWidget *padre)
    : QDialog(padre)
    , m_datos(datos)
    , m_cuentas(cuentas)
{
    setObjectName(QStringLiteral("RegistroFrecuentes"));
    setWindowTitle(m_datos.texto(2070));
    resize(720, 480);

    tBuscar = new QLineEdit(this);
    tBuscar->setObjectName(QStringLiteral("tBuscar"));
    tBuscar->setPlaceholderText(m_datos.texto(2071));
    lvFrecuentes = new QTreeWidget(this);
    lvFrecuentes->setObjectName(QStringLiteral("lvFrecuentes"));
    lvFrecuentes->setHeaderLabels({m_datos.texto(2024), m_datos.texto(2072), m_datos.texto(2073)});
    lvFrecuentes->setRootIsDecorated(false);
    lvFrecuentes->setAllColumnsShowFocus(true);
    lvLineas = new QTreeWidget(this);
    lvLineas->setObjectName(QStringLiteral("lvLineas"));
    lvLineas->setHeaderLabels({m_datos.texto(2074), m_datos.texto(2075), m_datos.texto(2076), m_datos.texto(2025),
                               m_datos.texto(2077)});
    lvLineas->setRootIsDecorated(false);
    lvLineas->setFocusPolicy(Qt::NoFocus);
    lvLineas->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    odFecha = new CampoFecha(m_datos.proceso->reloj, this);
    odFecha->setObjectName(QStringLiteral("odFecha"));
    odFecha->setDisplayFormat(FormatoQtDeFecha(m_datos.formatoFecha.isEmpty() ? QStringLiteral("dd/mm/yyyy") : m_datos.formatoFecha));
    odFecha->setDate(m_datos.reloj().Hoy());
    odFecha->setMinimumWidth(odFecha->fontMetrics().horizontalAdvance(QStringLiteral("00/00/00000")) + 16);
    connect(odFecha, &CampoFecha::fechaInvalida, this, [this] {
        m_datos.Error(1951);
        odFecha->setFocus();
    }, Qt::QueuedConnection);
    lEstado = new QLabel(this);
    lEstado->setObjectName(QStringLiteral("lEstado"));
    bfOK = new QPushButton(m_datos.texto(2078), this);
    bfOK->setObjectName(QStringLiteral("bfOK"));
    bfCancel = new QPushButton(m_datos.texto(1089), this);
    bfCancel->setObjectName(QStringLiteral("bfCancel"));
    bfModificar = new QPushButton(m_datos.texto(2079), this);
    bfModificar->setObjectName(QStringLiteral("bfModificar"));
    bfEliminar = new QPushButton(m_datos.texto(2034), this);
    bfEliminar->setObjectName(QStringLiteral("bfEliminar"));
    for (QPushButton *b : {bfOK, bfCancel, bfModificar, bfEliminar})
        b->setAutoDefault(false);

    auto *buscar = new QFormLayout;
    buscar->addRow(m_datos.texto(2063), tBuscar);
    auto *fecha = new QFormLayout;
    fecha->addRow(m_datos.texto(2080), odFecha);
    auto *botones = new QHBoxLayout;
    botones->addLayout(fecha);
    botones->addWidget(lEstado, 1);
    botones->addWidget(bfModificar);
    botones->addWidget(bfEliminar);
    botones->addSpacing(16);
    botones->addWidget(bfOK);
    botones->addWidget(bfCancel);
    auto *todo = new QVBoxLayout(this);
    todo->addLayout(buscar);
    todo->addWidget(lvFrecuentes, 3);
    todo->addWidget(lvLineas, 2);
    todo->addLayout(botones);

    connect(tBuscar, &QLineEdit::textChanged, this, [this] { llenarLista(false); });
    connect(lvFrecuentes, &QTreeWidget::currentItemChanged, this, &RegistroFrecuentes::mostrarLineas);
    connect(lvFrecuentes, &QTreeWidget::itemDoubleClicked, this, &RegistroFrecuentes::bfOK_Click);
    connect(bfOK, &QPushButton::clicked, this, &RegistroFrecuentes::bfOK_Click);
    connect(bfCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(bfModificar, &QPushButton::clicked, this, &RegistroFrecuentes::modificar);
    connect(bfEliminar, &QPushButton::clicked, this, &RegistroFrecuentes::eliminar);
    for (QWidget *w : std::initializer_list<QWidget *>{tBuscar, lvFrecuentes, odFecha})
        w->installEventFilter(this);
}

// The due scheduled templates first, then every template whose name holds the typed text.
void RegistroFrecuentes::llenarLista(bool avisar)
{
    lvFrecuentes->clear();
    if (!m_datos.conexion())
        return;
    FrecuentesDatos datos(*m_datos.conexion(), m_datos.texto);
    QList<qint32> vistos;
    auto agregar = [&](const MovimientoFrecuente &m, bool vencido) {
        vistos << m.MFrID;
        auto *item = new QTreeWidgetItem(lvFrecuentes);
        item->setText(0, m.Nombre);
        item->setText(1, m.Leyenda);
        if (m.Agendado())
            item->setText(2, m_datos.texto(vencido ? 2081 : 2082) + fechaCorta(m.FechaProxima));
        item->setData(0, Qt::UserRole, m.MFrID);
        item->setData(2, Qt::UserRole, m.Agendado() ? m.FechaProxima : QDate());
        if (vencido) {
            QFont f = item->font(0);
            f.setBold(true);
            for (int c = 0; c < 3; ++c)
                item->setFont(c, f);
        }
    };
    const QString texto = tBuscar->text().trimmed().toLower();
    // A list that cannot be read stays as far as it was read, and the state line says why.
    // A box tells it too, once, except while the user types: no key is lost to a box.
    const QString antes = std::exchange(m_falloLista, QString());
    auto leida = [&](auto leido) {
        if (!leido && m_falloLista.isEmpty()) {
            m_falloLista = leido.fallo().detalle;
            if (avisar && antes.isEmpty())
                m_datos.Error(1912, m_falloLista);
        }
        return leido;
    };
    if (const auto vencidos = leida(datos.Vencidos(m_datos.idEmpresa(), m_datos.reloj().Hoy()))) {
        for (const MovimientoFrecuente &m : *vencidos)
            if (texto.isEmpty() || m.Nombre.toLower().contains(texto))
                agregar(m, true);
        if (const auto todos = leida(datos.Buscar(m_datos.idEmpresa(), texto)))
            for (const MovimientoFrecuente &m : *todos)
                if (!vistos.contains(m.MFrID))
                    agregar(m, false);
    }
    for (int c = 0; c < 3; ++c)
        lvFrecuentes->resizeColumnToContents(c);
    if (lvFrecuentes->topLevelItemCount() > 0)
        lvFrecuentes->setCurrentItem(lvFrecuentes->topLevelItem(0));
    else
        mostrarLineas();
    if (!m_falloLista.isEmpty())
        lEstado->setText(m_datos.texto(1912) + u' ' + m_falloLista);
}

qint32 RegistroFrecuentes::elegido() const
{
    const QTreeWidgetItem *item = lvFrecuentes->currentItem();
    return item ? item->data(0, Qt::UserRole).toInt() : 0;
}

// The chosen template's lines, as the grid shows an entry's, and the date proposed for it.
void RegistroFrecuentes::mostrarLineas()
{
    lvLineas->clear();
    lEstado->clear();
    const qint32 id = elegido();
    bfOK->setEnabled(id > 0);
    bfModificar->setEnabled(id > 0);
    bfEliminar->setEnabled(id > 0);
    if (id <= 0 || !m_datos.conexion())
        return;
    const auto leido = m_datos.Leido(FrecuentesDatos(*m_datos.conexion()).Leer(id), 1912);
    if (!leido || !*leido)
        return;
    const auto &m = *leido;
    const QDate vence = lvFrecuentes->currentItem()->data(2, Qt::UserRole).toDate();
    odFecha->setDate(vence.isValid() && vence <= m_datos.reloj().Hoy() ? vence : m_datos.reloj().Hoy());
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    const Mascara importes(m_datos.monedas().DatoMoneda(0, 4).toString());
    for (int i = 0; i < m->Lineas.size(); ++i) {
        const LineaDatos &l = m->Lineas[i];
        const auto cuenta = m_datos.Leido(TextoDeCuenta(*m_datos.conexion(), l.Cuenta, true), 1912);
        if (!cuenta)
            return;
        auto *item = new QTreeWidgetItem(lvLineas);
        item->setText(0, *cuenta);
        item->setText(l.AlDebe ? 1 : 2, importes.Formatear(l.ImporteMC));
        const qint16 moneda = m->Monedas.value(i);
        if (moneda > 0 && moneda != mc) {
            item->setText(3, m_datos.monedas().DatoMoneda(moneda, 2).toString());
            item->setText(4, Mascara(m_datos.monedas().DatoMoneda(moneda, 4).toString()).Formatear(l.Importe));
        }
        for (int c = 1; c < 5; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }
    lEstado->setText(m->Balance(mc, m_datos.monedas()).cierra ? QString() : m_datos.texto(2083));
}

qint32 RegistroFrecuentes::registrar(const MovimientoFrecuente &m, const QDate &fecha)
{
    const Ocupado ocupado;
    FrecuentesDatos datos(*m_datos.conexion(), m_datos.texto);
    qint32 id = 0;
    if (const auto fallo = datos.Registrar(m, fecha, m_datos.usuario, m_datos.librosSistema(), m_datos.asiSaveB, id))
        m_datos.Error(1912, fallo->detalle);
    return id;
}

void RegistroFrecuentes::bfOK_Click()
{
    const qint32 id = elegido();
    if (id <= 0 || !odFecha->Aceptar() || !odFecha->date().isValid())
        return;
    const auto m = m_datos.Leido(FrecuentesDatos(*m_datos.conexion()).Leer(id), 1912);
    if (!m || !*m)
        return;
    const qint32 asiento = registrar(**m, odFecha->date());
    if (asiento <= 0)
        return;
    m_registrados = QString::number(asiento);
    m_frecuente = id;
    accept();
}

void RegistroFrecuentes::modificar()
{
    const qint32 id = elegido();
    if (id <= 0)
        return;
    if (MovimientosFrecuentes(m_datos, m_cuentas, this).Editar(id) > 0) {
        llenarLista();
        for (int i = 0; i < lvFrecuentes->topLevelItemCount(); ++i)
            if (lvFrecuentes->topLevelItem(i)->data(0, Qt::UserRole).toInt() == id)
                lvFrecuentes->setCurrentItem(lvFrecuentes->topLevelItem(i));
    }
}

void RegistroFrecuentes::eliminar()
{
    const qint32 id = elegido();
    if (id <= 0)
        return;
    const QString pregunta = m_datos.texto(2084).arg(lvFrecuentes->currentItem()->text(0));
    if (m_datos.mensajes->Preguntar(pregunta, ServicioMensajes::Botones::SiNo) != ServicioMensajes::Respuesta::Si)
        return;
    if (const auto fallo = FrecuentesDatos(*m_datos.conexion()).Eliminar(id))
        m_datos.Error(1912, fallo->detalle);
    llenarLista();
}

QString RegistroFrecuentes::Registrar(qint32 mfrID)
{
    m_registrados.clear();
    m_frecuente = 0;
    if (!m_datos.conexion())
        return {};
    if (mfrID > 0) {
        const auto leido = m_datos.Leido(FrecuentesDatos(*m_datos.conexion()).Leer(mfrID), 1912);
        if (!leido)
            return {};
        const auto &m = *leido;
        if (!m) {
            m_datos.Error(1912, m_datos.texto(2085).arg(mfrID));
            return {};
        }
        const QDate fecha = m->Agendado() && m->FechaProxima.isValid() ? m->FechaProxima : m_datos.reloj().Hoy();
        const qint32 asiento = registrar(*m, fecha);
        if (asiento <= 0)
            return {};
        m_frecuente = mfrID;
        return QString::number(asiento);
    }
    llenarLista();
    tBuscar->setFocus();
    exec();
    return m_registrados;
}

// Enter moves from the name to the list, from the list to the date, and registers there.
bool RegistroFrecuentes::eventFilter(QObject *objeto, QEvent *evento)
{
    if (evento->type() == QEvent::KeyPress) {
        const int tecla = static_cast<QKeyEvent *>(evento)->key();
        if (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) {
            if (objeto == tBuscar)
                lvFrecuentes->setFocus();
            else if (objeto == lvFrecuentes && elegido() > 0)
                odFecha->setFocus();
            else if (objeto == odFecha)
                bfOK_Click();
            return true;
        }
        if (objeto == tBuscar && (tecla == Qt::Key_Down || tecla == Qt::Key_Up)) {
            lvFrecuentes->setFocus();
            return false;
        }
    }
    return QDialog::eventFilter(objeto, evento);
}
