#include "frmfind.h"

#include "currency/catalogomonedas.h"
#include "editing/datosdocumento.h"
#include "entries/modeloasiento.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/campofecha.h"
#include "services/cuentasdatos.h"
#include "services/ocupado.h"
#include "services/serviciobusquedacuentas.h"
#include "services/serviciomensajes.h"
#include "store/conexion.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <utility>

frmFind::frmFind(const DatosDocumento &datos, ServicioBusquedaCuentas &cuentas, const Listas &listas, QWidget *padre)
    : QDialog(padre)
    , m_datos(datos)
    , m_cuentas(cuentas)
{
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(m_datos.texto(2010));
    setModal(true);
    crearControles(listas);
    AsignarTextos();
    if (criterios.prmEstado >= 1 && criterios.prmEstado <= 3)
        cfEstado->setCurrentIndex(criterios.prmEstado - 1);
}

void frmFind::crearControles(const Listas &listas)
{
    auto etiqueta = [this](const char *nombre, QWidget *campo) {
        auto *l = new QLabel(this);
        l->setObjectName(QString::fromLatin1(nombre));
        l->setBuddy(campo);
        l->installEventFilter(this);
        return l;
    };
    auto nombrar = [](QWidget *w, const char *nombre) {
        w->setObjectName(QString::fromLatin1(nombre));
        return w;
    };
    cfCriterio = new QComboBox(this);
    odInicio = new CampoFecha(m_datos.proceso->reloj, this);
    odFin = new CampoFecha(m_datos.proceso->reloj, this);
    cfLibro = new QComboBox(this);
    cfEstado = new QComboBox(this);
    tLeyenda = new QLineEdit(this);
    tCuenta = new QLineEdit(this);
    cfProyecto = new QComboBox(this);
    cfDepartamento = new QComboBox(this);
    ocImporte = new CampoCalculadora(QStringLiteral("ocImporte"), this);
    ocImporte2 = new CampoCalculadora(QStringLiteral("ocImporte2"), this);
    nombrar(cfCriterio, "cfCriterio");
    nombrar(odInicio, "odInicio");
    nombrar(odFin, "odFin");
    nombrar(cfLibro, "cfLibro");
    nombrar(cfEstado, "cfEstado");
    nombrar(tLeyenda, "tLeyenda");
    nombrar(tCuenta, "tCuenta");
    nombrar(cfProyecto, "cfProyecto");
    nombrar(cfDepartamento, "cfDepartamento");
    lbCriterio = etiqueta("lbCriterio", cfCriterio);
    lbFecha = etiqueta("lbFecha", odInicio);
    lbHasta = etiqueta("lbHasta", odFin);
    lbLibro = etiqueta("lbLibro", cfLibro);
    Label1 = etiqueta("Label1", cfEstado);
    lbLeyenda = etiqueta("lbLeyenda", tLeyenda);
    lbCuenta = etiqueta("lbCuenta", tCuenta);
    lbProyecto = etiqueta("lbProyecto", cfProyecto);
    lbDepartamento = etiqueta("lbDepartamento", cfDepartamento);
    lbImporte = etiqueta("lbImporte", ocImporte);
    lbImporte2 = etiqueta("lbImporte2", ocImporte2);

    // The dates may be left empty: no date is no criterion.
    const QString formato = FormatoQtDeFecha(m_datos.formatoFecha.isEmpty() ? QStringLiteral("dd/mm/yyyy") : m_datos.formatoFecha);
    for (CampoFecha *f : {odInicio, odFin}) {
        f->setDisplayFormat(formato);
        f->setPermitirVacia(true);
        f->setDate(m_datos.reloj().Hoy());
        f->Vaciar();
        connect(f, &CampoFecha::fechaInvalida, this, [this, f] { avisar(1951, f); });
    }
    cfLibro->setEditable(true);
    cfLibro->setInsertPolicy(QComboBox::NoInsert);
    for (const auto &[nombre, codigo] : listas.libros)
        cfLibro->addItem(nombre, int(codigo));
    // Any project (or department), the lines without one, then each of them. They narrow
    // the account's lines, so they wait for an account.
    for (const auto &[lista, codigos] : {std::pair{cfProyecto, &listas.proyectos}, std::pair{cfDepartamento, &listas.departamentos}}) {
        lista->addItem(m_datos.texto(1168), int(CriteriosBusqueda::kCualquiera));
        lista->addItem(m_datos.texto(1169), 0);
        for (const auto &[nombre, codigo] : *codigos)
            lista->addItem(nombre, int(codigo));
        lista->setEnabled(false);
        lista->installEventFilter(this);
    }
    lbProyecto->setVisible(!listas.proyectos.isEmpty());
    cfProyecto->setVisible(!listas.proyectos.isEmpty());
    lbDepartamento->setVisible(!listas.departamentos.isEmpty());
    cfDepartamento->setVisible(!listas.departamentos.isEmpty());
    connect(tCuenta, &QLineEdit::textChanged, this, [this](const QString &texto) {
        cfProyecto->setEnabled(!texto.trimmed().isEmpty());
        cfDepartamento->setEnabled(!texto.trimmed().isEmpty());
    });
    cfLibro->setCurrentIndex(-1);
    for (int estado = 1; estado <= 3; ++estado)
        cfEstado->addItem(m_datos.texto(2011 + estado), estado);
    cfEstado->setCurrentIndex(-1);
    cfEstado->setToolTip(m_datos.texto(2015));
    // Typing in the account makes it a text again, not yet an account.
    connect(tCuenta, &QLineEdit::textEdited, this, [this] { m_idCuenta = 0; });
    const QString mascara = m_datos.monedas().DatoMoneda(0, 4).toString();
    for (CampoCalculadora *c : {ocImporte, ocImporte2}) {
        c->Limpiar();
        c->FijarMascara(mascara);
        connect(c, &CampoCalculadora::TextoInvalido, this, [this, c] { avisar(1950, c); });
    }
    for (QWidget *w : std::initializer_list<QWidget *>{cfCriterio, odInicio, odFin, cfLibro, cfEstado, tLeyenda, tCuenta,
                                                       ocImporte, ocImporte2})
        w->installEventFilter(this);
    if (cfLibro->lineEdit())
        cfLibro->lineEdit()->installEventFilter(this);

    picToolbar = new QFrame(this);
    picToolbar->setObjectName(QStringLiteral("picToolbar"));
    picToolbar->setFrameShape(QFrame::NoFrame);
    bfOK = new QPushButton(picToolbar);
    bfCancel = new QPushButton(picToolbar);
    bfHelp = new QPushButton(picToolbar);
    nombrar(bfOK, "bfOK");
    nombrar(bfCancel, "bfCancel");
    nombrar(bfHelp, "bfHelp");
    auto *barra = new QHBoxLayout(picToolbar);
    barra->addStretch(1);
    barra->addWidget(bfOK);
    barra->addWidget(bfCancel);
    barra->addSpacing(24);
    barra->addWidget(bfHelp);
    connect(bfOK, &QPushButton::clicked, this, &frmFind::bfOK_Click);
    connect(bfCancel, &QPushButton::clicked, this, &frmFind::bfCancel_Click);
    connect(bfHelp, &QPushButton::clicked, this, [this] {
        if (ayuda)
            ayuda();
    });

    auto *rejilla = new QGridLayout;
    rejilla->addWidget(lbCriterio, 0, 0);
    rejilla->addWidget(cfCriterio, 0, 1, 1, 3);
    rejilla->addWidget(lbFecha, 1, 0);
    rejilla->addWidget(odInicio, 1, 1);
    rejilla->addWidget(lbHasta, 1, 2);
    rejilla->addWidget(odFin, 1, 3);
    rejilla->addWidget(lbLibro, 2, 0);
    rejilla->addWidget(cfLibro, 2, 1);
    rejilla->addWidget(Label1, 2, 2);
    rejilla->addWidget(cfEstado, 2, 3);
    rejilla->addWidget(lbLeyenda, 3, 0);
    rejilla->addWidget(tLeyenda, 3, 1, 1, 3);
    rejilla->addWidget(lbCuenta, 4, 0);
    rejilla->addWidget(tCuenta, 4, 1, 1, 3);
    rejilla->addWidget(lbProyecto, 5, 0);
    rejilla->addWidget(cfProyecto, 5, 1);
    rejilla->addWidget(lbDepartamento, 5, 2);
    rejilla->addWidget(cfDepartamento, 5, 3);
    rejilla->addWidget(lbImporte, 6, 0);
    rejilla->addWidget(ocImporte, 6, 1);
    rejilla->addWidget(lbImporte2, 6, 2);
    rejilla->addWidget(ocImporte2, 6, 3);
    rejilla->setColumnStretch(1, 1);
    rejilla->setColumnStretch(3, 1);
    auto *todo = new QVBoxLayout(this);
    todo->addLayout(rejilla);
    todo->addWidget(picToolbar);
    const QList<QWidget *> orden{cfCriterio, odInicio, odFin, cfLibro, cfEstado, tLeyenda, tCuenta, cfProyecto, cfDepartamento,
                                 ocImporte, ocImporte2, bfOK, bfCancel, bfHelp};
    for (int i = 1; i < orden.size(); ++i)
        setTabOrder(orden[i - 1], orden[i]);
}

// A refused date or amount is said once, when the event that found it is over, and the
// field takes the focus back: leaving a field and pressing "Aceptar" with one click finds
// the same fault twice.
void frmFind::avisar(int numero, QWidget *campo)
{
    if (m_aviso.second)
        return;
    m_aviso = {numero, campo};
    QMetaObject::invokeMethod(this, [this] {
        const auto [texto, foco] = std::exchange(m_aviso, {0, nullptr});
        m_datos.Error(texto);
        if (foco)
            foco->setFocus();
    }, Qt::QueuedConnection);
}

void frmFind::showEvent(QShowEvent *evento)
{
    QDialog::showEvent(evento);
    // Each search starts on its first field, so typing never goes to a button.
    cfCriterio->setFocus();
}

void frmFind::AsignarTextos()
{
    lbCriterio->setText(m_datos.texto(1080));
    cfCriterio->addItem(m_datos.texto(1091));
    cfCriterio->addItem(m_datos.texto(1092));
    cfCriterio->setCurrentIndex(0);
    lbFecha->setText(m_datos.texto(1081));
    lbHasta->setText(m_datos.texto(1082));
    lbLibro->setText(m_datos.texto(1083));
    Label1->setText(m_datos.texto(2011));
    lbLeyenda->setText(m_datos.texto(1084));
    lbCuenta->setText(m_datos.texto(1085));
    lbProyecto->setText(m_datos.texto(1170));
    lbDepartamento->setText(m_datos.texto(1171));
    lbImporte->setText(m_datos.texto(1086));
    lbImporte2->setText(m_datos.texto(1087));
    bfOK->setText(m_datos.texto(1088));
    bfCancel->setText(m_datos.texto(1089));
    bfHelp->setText(m_datos.texto(1090));
    for (QLabel *l : {lbCriterio, lbFecha, lbHasta, lbLibro, Label1, lbLeyenda, lbCuenta, lbProyecto, lbDepartamento, lbImporte,
                      lbImporte2})
        l->buddy()->setAccessibleName(QString(l->text()).remove(QLatin1Char('&')).remove(QLatin1Char(':')).trimmed());
}

// Both dates read, and the end not before the start (1849, the focus back on the start).
bool frmFind::fechasValidas()
{
    if (!odInicio->Aceptar() || !odFin->Aceptar())
        return false;
    if (odInicio->date().isValid() && odFin->date().isValid() && odFin->date() < odInicio->date()) {
        m_datos.Advertir(1849);
        odInicio->setFocus();
        return false;
    }
    return true;
}

// A typed book must be one of the list; a blank one is no book.
bool frmFind::libroValido()
{
    const QString escrito = cfLibro->currentText().trimmed();
    if (escrito.isEmpty()) {
        cfLibro->setCurrentIndex(-1);
        return true;
    }
    const int i = cfLibro->findText(escrito, Qt::MatchFixedString);
    if (i < 0) {
        cfLibro->lineEdit()->selectAll();
        return false;
    }
    cfLibro->setCurrentIndex(i);
    return true;
}

bool frmFind::BuscarCuentaFind()
{
    if (m_buscandoCuenta)
        return false;
    if (tCuenta->text().trimmed().isEmpty()) {
        // A blank account is no account.
        m_idCuenta = 0;
        return true;
    }
    Conexion *conexion = m_datos.conexion();
    if (!conexion)
        return false;
    m_buscandoCuenta = true;
    const Ocupado ocupado;
    CuentaElegida elegida;
    bool hallada = false;
    // A failing lookup is told (1927) and leaves the account as it was.
    const auto buscada = m_datos.Leido(m_cuentas.Buscar(*conexion, m_datos.idEmpresa(), tCuenta->text().trimmed(), elegida, this), 1927);
    if (buscada && *buscada && elegida.id > 0) {
        const auto cuenta = m_datos.Leido(CuentasDatos::Leer(*conexion, elegida.id), 1927);
        if (cuenta && *cuenta) {
            const CuentasDatos::Ficha &f = **cuenta;
            tCuenta->setText(TextoCuenta(f.codigo.trimmed(), f.nombre.trimmed(), m_datos.empresa.mostrarCodigoCta));
            m_idCuenta = f.id;
            // A project or department the chooser names is taken as chosen.
            if (elegida.proyecto > 0)
                elegirCodigo(cfProyecto, elegida.proyecto);
            if (elegida.departamento > 0)
                elegirCodigo(cfDepartamento, elegida.departamento);
            hallada = true;
        }
    }
    m_buscandoCuenta = false;
    return hallada;
}

void frmFind::elegirCodigo(QComboBox *lista, qint16 codigo)
{
    const int i = lista->findData(int(codigo));
    if (i >= 0)
        lista->setCurrentIndex(i);
}

// A list the books do not use restricts nothing.
qint16 frmFind::codigoElegido(const QComboBox *lista) const
{
    if (lista->isHidden() || lista->currentIndex() < 0)
        return CriteriosBusqueda::kCualquiera;
    return qint16(lista->currentData().toInt());
}

// The field Enter goes to after the account or the project: the next list shown and
// usable, else the amount.
QWidget *frmFind::siguienteDe(QWidget *campo) const
{
    const QList<QWidget *> listas{cfProyecto, cfDepartamento};
    for (qsizetype i = listas.indexOf(campo) + 1; i < listas.size(); ++i)
        if (!listas[i]->isHidden() && listas[i]->isEnabled())
            return listas[i];
    return ocImporte;
}

// Enter moves on in the dialog's own order; false when the key is not taken here.
bool frmFind::enterEn(QObject *objeto)
{
    if (objeto == cfCriterio) {
        odInicio->setFocus();
    } else if (objeto == odInicio) {
        if (odInicio->Aceptar())
            (odInicio->date().isValid() ? static_cast<QWidget *>(odFin) : cfLibro)->setFocus();
    } else if (objeto == odFin) {
        if (fechasValidas())
            cfLibro->setFocus();
    } else if (objeto == cfLibro || objeto == cfLibro->lineEdit()) {
        if (libroValido())
            cfEstado->setFocus();
    } else if (objeto == cfEstado) {
        tLeyenda->setFocus();
    } else if (objeto == tLeyenda) {
        tCuenta->setFocus();
    } else if (objeto == tCuenta) {
        if (m_idCuenta == 0)
            BuscarCuentaFind();
        siguienteDe(tCuenta)->setFocus();
    } else if (objeto == cfProyecto) {
        siguienteDe(cfProyecto)->setFocus();
    } else if (objeto == cfDepartamento) {
        ocImporte->setFocus();
    } else if (objeto == ocImporte) {
        if (ocImporte->EsTextoInvalido()) {
            // Said here: the key is taken before the field sees it, and must not reach the
            // OK button either.
            avisar(1950, ocImporte);
            return true;
        }
        (ocImporte->EsNumeroValido() ? static_cast<QWidget *>(ocImporte2) : bfOK)->setFocus();
    } else if (objeto == ocImporte2) {
        if (ocImporte2->EsTextoInvalido()) {
            avisar(1950, ocImporte2);
            return true;
        }
        bfOK->setFocus();
    } else {
        return false;
    }
    return true;
}

bool frmFind::eventFilter(QObject *objeto, QEvent *evento)
{
    switch (evento->type()) {
    case QEvent::KeyPress: {
        auto *tecla = static_cast<QKeyEvent *>(evento);
        if ((tecla->key() == Qt::Key_Return || tecla->key() == Qt::Key_Enter) && enterEn(objeto))
            return true;
        // The state list may be left with no state: all of them.
        if (objeto == cfEstado && (tecla->key() == Qt::Key_Delete || tecla->key() == Qt::Key_Backspace)) {
            cfEstado->setCurrentIndex(-1);
            return true;
        }
        break;
    }
    case QEvent::FocusIn:
        if (objeto == tCuenta)
            QMetaObject::invokeMethod(tCuenta, &QLineEdit::selectAll, Qt::QueuedConnection);
        break;
    case QEvent::FocusOut: {
        const Qt::FocusReason razon = static_cast<QFocusEvent *>(evento)->reason();
        const bool aOtroCampo = razon == Qt::TabFocusReason || razon == Qt::BacktabFocusReason || razon == Qt::MouseFocusReason;
        // Leaving the account with a typed text looks it up, as Enter does.
        if (objeto == tCuenta && aOtroCampo && m_idCuenta == 0 && isVisible())
            QMetaObject::invokeMethod(this, [this] { BuscarCuentaFind(); }, Qt::QueuedConnection);
        if ((objeto == cfLibro || objeto == cfLibro->lineEdit()) && aOtroCampo && !libroValido())
            QMetaObject::invokeMethod(cfLibro, [this] { cfLibro->setFocus(); }, Qt::QueuedConnection);
        break;
    }
    case QEvent::MouseButtonPress:
        // A caption takes the focus to its field; the legend's and the account's select it.
        if (auto *etiqueta = qobject_cast<QLabel *>(objeto); etiqueta && etiqueta->buddy()) {
            etiqueta->buddy()->setFocus(Qt::MouseFocusReason);
            if (etiqueta == lbCuenta || etiqueta == lbLeyenda)
                static_cast<QLineEdit *>(etiqueta->buddy())->selectAll();
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(objeto, evento);
}

void frmFind::keyPressEvent(QKeyEvent *evento)
{
    if (evento->key() == Qt::Key_Escape && !(evento->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier))) {
        bfCancel_Click();
        return;
    }
    // F1 is the help button's key.
    if (evento->key() == Qt::Key_F1 && !(evento->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier))) {
        bfHelp->click();
        return;
    }
    QDialog::keyPressEvent(evento);
}

void frmFind::bfOK_Click()
{
    if (!fechasValidas())
        return;
    if (!libroValido()) {
        cfLibro->setFocus();
        return;
    }
    for (CampoCalculadora *c : {ocImporte, ocImporte2}) {
        if (c->EsTextoInvalido()) {
            avisar(1950, c);
            return;
        }
    }
    // A typed account that is no account yet is looked up; without one the dialog stays.
    if (m_idCuenta == 0 && !BuscarCuentaFind()) {
        if (!tCuenta->text().trimmed().isEmpty()) {
            tCuenta->setFocus();
            return;
        }
    }
    CriteriosBusqueda &c = criterios;
    c.prmFInit = odInicio->date().isValid() ? odInicio->date().toString(Qt::ISODate) : QString();
    c.prmFEnd = odFin->date().isValid() ? odFin->date().toString(Qt::ISODate) : QString();
    c.prmLibro = cfLibro->currentIndex() >= 0 ? qint16(cfLibro->currentData().toInt()) : 0;
    c.prmLeyenda = tLeyenda->text().trimmed().isEmpty() ? QString() : tLeyenda->text();
    c.prmCta = m_idCuenta;
    c.prmPry = m_idCuenta <= 0 ? qint16(0) : codigoElegido(cfProyecto);
    c.prmDep = m_idCuenta <= 0 ? qint16(0) : codigoElegido(cfDepartamento);
    c.prmImporte = ocImporte->EsNumeroValido() ? ocImporte->Valor() : 0;
    c.prmImporte2 = ocImporte2->EsNumeroValido() ? ocImporte2->Valor() : 0;
    c.prmCriterioAnd = cfCriterio->currentIndex() == 0;
    c.prmEstado = cfEstado->currentIndex() >= 0 ? quint8(cfEstado->currentData().toInt()) : 0;
    c.FindOK = !c.prmLeyenda.isEmpty() || !c.prmFInit.isEmpty() || !c.prmFEnd.isEmpty() || c.prmCta >= 1 || c.prmLibro >= 1
            || c.prmEstado != 0 || c.prmImporte != 0 || c.prmImporte2 != 0;
    done(QDialog::Accepted);
}

void frmFind::bfCancel_Click()
{
    criterios.FindOK = false;
    done(QDialog::Rejected);
}
