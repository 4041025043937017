#include "lumingasiento.h"

#include "idioma.h"
#include "lumhiperlink.h"
#include "lumtoomenu.h"
#include "menusdocumento.h"
#include "currency/catalogomonedas.h"
#include "entries/vistas.h"
#include "entries/vsgrid.h"
#include "services/serviciomensajes.h"
#include "services/servicioconfigusuario.h"
#include "services/serviciopermisos.h"
#include "services/serviciobusquedacuentas.h"
#include "services/gestorlibros.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/lumerasiento.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QHeaderView>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include <limits>
#include <stdexcept>

namespace {

// Values shared by every document of the process.
struct Proceso
{
    qint32 IDEmpresa = 0;
    std::shared_ptr<Conexion> conexion;
    ParametrosSistema parametros;
    CatalogoMonedas monedas;
};

Proceso &proceso()
{
    static Proceso p;
    return p;
}

const QString kAplicacion = QStringLiteral("LUM01");
const QString kNombreAplicacion = QStringLiteral("IngresoAsiento");

} // namespace

std::shared_ptr<Conexion> lumIngAsiento::ConexionCompartida()
{
    return proceso().conexion;
}

const ParametrosSistema &lumIngAsiento::Parametros()
{
    return proceso().parametros;
}

qint32 lumIngAsiento::EmpresaProceso()
{
    return proceso().IDEmpresa;
}

CatalogoMonedas &lumIngAsiento::Monedas()
{
    return proceso().monedas;
}

lumIngAsiento::lumIngAsiento(EntornoDocumento entorno, QWidget *padre)
    : QWidget(padre)
    , m_entorno(std::move(entorno))
{
    setObjectName(QStringLiteral("lumIngAsiento"));
    setAccessibleName(QStringLiteral("Ingreso de Asientos"));
    crearControles();
    conectarComandos();

    m_host.PedidoAsientoApertura = false;
    m_estadoInicio = 0;
    cfTipo->clear();
    const ServicioConexion conexion(m_entorno.ajustes);
    if (Idioma::CrearComponenteIdioma(kAplicacion, kNombreAplicacion, conexion, *m_entorno.mensajes) == 1)
        m_usaIdioma = true;
    else
        m_estadoInicio = 9;
}

lumIngAsiento::~lumIngAsiento()
{
    if (m_filaEdicion > 0)
        SalirEdicion();
    // Only a document that got as far as loading the user's layout writes it back: one that
    // stopped on the way would replace the user's grid with an empty one.
    if (!m_host.PrefijoUsuario.isEmpty() && m_estado == Estado::Listo)
        GuardarDisenoGrilla();
    if (m_estado != Estado::Creado && proceso().conexion) {
        proceso().conexion->Cerrar();
        proceso().conexion.reset();
    }
    if (m_usaIdioma)
        Idioma::Liberar();
    // The grid's view reads the grid, a member that goes before the base class closes the
    // window: the view goes first.
    delete m_vsGrid;
    m_vsGrid = nullptr;
}

qint16 lumIngAsiento::IDEmpresa() const
{
    const qint32 id = proceso().IDEmpresa;
    if (id < std::numeric_limits<qint16>::min() || id > std::numeric_limits<qint16>::max())
        throw std::overflow_error("Desbordamiento");
    return qint16(id);
}

void lumIngAsiento::setIDEmpresa(qint16 id)
{
    proceso().IDEmpresa = id;
}

void lumIngAsiento::crearControles()
{
    tmMenu = new lumTooMenu(this);
    hlRegistro = new lumHiperLink(QStringLiteral("hlRegistro"), tmMenu);
    hlAsientoFrecuente = new lumHiperLink(QStringLiteral("hlAsientoFrecuente"), tmMenu);
    hlOpSave = new lumHiperLink(QStringLiteral("hlOpSave"), tmMenu);
    hlFind = new lumHiperLink(QStringLiteral("hlFind"), tmMenu);
    hlCargar = new lumHiperLink(QStringLiteral("hlCargar"), tmMenu);
    for (lumHiperLink *l : {hlRegistro, hlAsientoFrecuente, hlOpSave, hlFind, hlCargar}) {
        l->setEnabled(false);
        tmMenu->AgregarEnlace(l);
    }
    tmMenu->setHelpVisible(true);

    lbTitle = new QLabel(this);
    lbTitle->setObjectName(QStringLiteral("lbTitle"));
    QFont titulo = lbTitle->font();
    titulo.setPointSizeF(titulo.pointSizeF() * 1.4);
    titulo.setBold(true);
    lbTitle->setFont(titulo);
    lbTitle->setContentsMargins(8, 6, 8, 4);

    picVBD = new QFrame(this);
    picVBD->setObjectName(QStringLiteral("picVBD"));

    picEdit = new QFrame(picVBD);
    picEdit->setObjectName(QStringLiteral("picEdit"));
    picEdit->setAutoFillBackground(true);
    picCabezal = new QFrame(picEdit);
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
    odDate = new CampoFecha(picCabezal);
    odDate->setObjectName(QStringLiteral("odDate"));
    tLeyenda = new QLineEdit(picCabezal);
    tLeyenda->setObjectName(QStringLiteral("tLeyenda"));
    cfTipo = new QComboBox(picCabezal);
    cfTipo->setObjectName(QStringLiteral("cfTipo"));
    cfAutoriza = new QComboBox(picCabezal);
    cfAutoriza->setObjectName(QStringLiteral("cfAutoriza"));
    lDate->setBuddy(odDate);
    lLeyenda->setBuddy(tLeyenda);
    lLibro->setBuddy(cfTipo);
    lAutoriza->setBuddy(cfAutoriza);

    lLibroApertura = new QLabel(picCabezal);
    lLibroApertura->setObjectName(QStringLiteral("lLibroApertura"));
    lLibroApertura->setVisible(false);
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
    auto *edicion = new QVBoxLayout(picEdit);
    edicion->setContentsMargins(4, 4, 4, 4);
    edicion->addWidget(picCabezal);
    picEdit->setVisible(false);

    m_vsGrid = new vsGrid(m_grilla, picVBD);
    oraEdit = new lumERAsiento(ContextoLinea(), m_vsGrid->viewport());
    oraEdit->hide();

    auto *principal = new QVBoxLayout(picVBD);
    principal->setContentsMargins(0, 0, 0, 0);
    principal->addWidget(picEdit);
    principal->addWidget(m_vsGrid, 1);

    auto *todo = new QVBoxLayout(this);
    todo->setContentsMargins(0, 0, 0, 0);
    todo->setSpacing(0);
    todo->addWidget(tmMenu);
    todo->addWidget(lbTitle);
    todo->addWidget(picVBD, 1);

    tmShowASI = new QTimer(this);
    tmShowASI->setObjectName(QStringLiteral("tmShowASI"));
    tmShowASI->setSingleShot(true);
    tmShowASI->setInterval(0);

    m_menus = std::make_unique<MenusDocumento>(this);

    PrepararGrillaAsientos(m_grilla, QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
    m_vsGrid->AplicarAnchos();
}

void lumIngAsiento::conectarComandos()
{
    connect(tmShowASI, &QTimer::timeout, this, &lumIngAsiento::tmShowASI_Timer);
    connect(tmMenu, &lumTooMenu::HelpClick, this, [this] {
        if (m_entorno.host)
            m_entorno.host->Navegar(ComandoHost::kAyudaIngreso, QString());
    });
    connect(hlRegistro, &QToolButton::clicked, this, [this] { ClickEnlace(hlRegistro, m_menus->MnuEdicion); });
    connect(hlAsientoFrecuente, &QToolButton::clicked, this,
            [this] { ClickEnlace(hlAsientoFrecuente, m_menus->MnuAsientoFrecuente); });
    connect(hlOpSave, &QToolButton::clicked, this, [this] { ClickEnlace(hlOpSave, m_menus->MnuSave); });
    connect(hlCargar, &QToolButton::clicked, this, [this] { ClickEnlace(hlCargar, m_menus->MnuView); });
    connect(hlFind, &QToolButton::clicked, this, [this] {
        if (m_filaEdicion > 0)
            SalirEdicion();
        MostrarBusqueda();
    });

    connect(m_vsGrid, &vsGrid::Click, this, &lumIngAsiento::vsGrid_Click);
    connect(m_vsGrid, &vsGrid::Desplazado, this, &lumIngAsiento::colocarEditor);
    connect(m_vsGrid->horizontalHeader(), &QHeaderView::sectionResized, this, &lumIngAsiento::colocarEditor);
    // Every accepted change of the date reaches the line editor, whatever moved the focus:
    // its rates and closed-account checks go by the entry's date.
    connect(odDate, &CampoFecha::dateChanged, oraEdit, [this](const QDate &fecha) { oraEdit->setFechaAsiento(fecha); });
    // The grid's height changes with the window: the editor follows its row.
    m_vsGrid->viewport()->installEventFilter(this);
    // A date that cannot be read is refused where it was typed. The refusal may come from a
    // focus change, so the message waits for it to end.
    connect(odDate, &CampoFecha::fechaInvalida, this, [this] {
        if (m_filaEdicion <= 0)
            return;
        errorTexto(1951);
        odDate->setFocus();
    }, Qt::QueuedConnection);
    connect(oraEdit, &lumERAsiento::EnabledContenedor, this, [this](bool *si) { m_vsGrid->setEnabled(*si); });
    connect(oraEdit, &lumERAsiento::EditOK, this, [this](bool *) {
        if (!cfAutoriza->isHidden() && cfAutoriza->currentIndex() < 0) {
            cfAutoriza->setFocus();
            return;
        }
        AceptarLinea();
    });
    connect(oraEdit, &lumERAsiento::MonedaResultadoTC, this, [this](QString *simbolo, QString *operador) {
        m_grilla.FijarTexto(0, 5, Idioma::resLoad(61) + *simbolo);
        m_grilla.FijarTexto(0, 4, *operador + Idioma::resLoad(63));
    });
    connect(oraEdit, &lumERAsiento::GetTCME, this, [this](qint16 *moneda, double *tasa) {
        *tasa = m_asientos.BuscarTCMonedaCuenta(*moneda);
    });
    connect(oraEdit, &lumERAsiento::GotFocusCtrl, this, [this](int *campo) { encabezadosDeEdicion(*campo); });
    connect(oraEdit, &lumERAsiento::KeyDownCtrl, this, [this](int *campo, int *tecla, int *) {
        encabezadosDeEdicion(*campo);
        if (*tecla == Qt::Key_Escape) {
            *tecla = 0;
            QMetaObject::invokeMethod(this, &lumIngAsiento::SalirEdicion, Qt::QueuedConnection);
        }
    });
    connect(m_vsGrid, &vsGrid::KeyDown, this, &lumIngAsiento::vsGrid_KeyDown);
    connect(m_vsGrid, &vsGrid::KeyPress, this, &lumIngAsiento::vsGrid_KeyPress);
    connect(m_vsGrid, &vsGrid::MouseDown, this, &lumIngAsiento::vsGrid_MouseDown);
    connect(m_vsGrid, &vsGrid::FilaActualCambiada, this, &lumIngAsiento::vsGrid_FilaActual);
    connect(m_vsGrid->horizontalHeader(), &QHeaderView::sectionClicked, this, [this] {
        if (m_filaEdicion > 0) {
            SalirEdicion();
            return;
        }
        SeleccionarFila(m_grilla.FilasFijas());
        m_filaRecordada = m_grilla.FilasFijas();
    });
    for (int i = 0; i < m_menus->MnuVieitem.size(); ++i)
        connect(m_menus->MnuVieitem[i], &QAction::triggered, this, [this, i] { ElegirVista(i); });
    for (int i = 0; i < m_menus->MnuViewMItem.size(); ++i)
        connect(m_menus->MnuViewMItem[i], &QAction::triggered, this, [this, i] { ElegirVista(Vista::kPrimerMes + i); });

    connect(m_menus->accion(QStringLiteral("MnuSaveNewBorrador")), &QAction::triggered, this, [this](bool marcado) {
        m_asiSaveB = marcado;
        ConfigUsuario(true);
    });
    connect(m_menus->accion(QStringLiteral("MnuEdiVCod")), &QAction::triggered, this, [this] {
        m_asiOrder = 0;
        ConfigUsuario(true);
        OrdenarCuentasGrilla();
    });
    connect(m_menus->accion(QStringLiteral("MnuEdiVIngreso")), &QAction::triggered, this, [this] {
        m_asiOrder = 1;
        ConfigUsuario(true);
        OrdenarCuentasGrilla();
    });
    connect(m_menus->accion(QStringLiteral("MnuAFrNew")), &QAction::triggered, this,
            [this] { ArmarComandoDiferido(QStringLiteral("2")); });
    // Every entry command first finishes a line being edited, as leaving it with Escape does:
    // the command then works on the entry as stored, and no row of the edit is left behind.
    // A command on one line (deleting a row) has no line to act on when the row being typed
    // was none yet.
    auto alElegir = [this](const char *accion, auto funcion, bool sobreUnaLinea = false) {
        connect(m_menus->accion(QString::fromLatin1(accion)), &QAction::triggered, this, [this, funcion, sobreUnaLinea] {
            if (m_filaEdicion > 0 && !SalirEdicionEnLaFila() && sobreUnaLinea)
                return;
            funcion();
        });
    };
    alElegir("MnuEdiSaveNormal", [this] { RegistrarAsiento(); });
    alElegir("MnuSaveEnBorrador", [this] { RegistrarListados(EstadoAsiento::kBorrador); });
    alElegir("MnuEdiAgendarAsiento", [this] { AgendarAsiento(); });
    alElegir("MnuEdiHacerFrecuente", [this] {
        m_asientos.ResetCabezal();
        CrearMovimientoFrecuente(false);
        m_asientos.ResetCabezal();
    });
    alElegir("MnuEdiDel", [this] { EliminarAsiento(false); });
    alElegir("MnuEdiDelRow", [this] { EliminarAsiento(true); }, true);
    alElegir("MnuEdiCopy", [this] { CopiarAsiento(); });
    alElegir("MnuEdiHide", [this] { OcultarAsiento(); });

    // Commands whose operations are not in this build yet stay disabled rather than
    // doing nothing when chosen.
    alElegir("MnuEdiNew", [this] { NuevoAsiento(); });
    alElegir("MnuUnificarTCCta", [this] { UnificarTC(true); });
    alElegir("MnuEdiLibro", [this] {
        if (!ConexionCompartida())
            return;
        try {
            GestorLibros gestor(*ConexionCompartida(), this);
            gestor.exec();
            cfTipo->clear(); // the list is filled again on the next edit
        } catch (const ErrorBaseDatos &e) {
            errorTexto(1932, DetalleError(e.numero(), e.descripcion()));
        }
    });
    alElegir("MnuUnificarTCMC", [this] { UnificarTC(false); });
    alElegir("MnuEdiAddCta", [this] { AgregarCuenta(); });
    for (const char *pendiente : {"MnuEdiASI",
                                  "MnuEdiAPA", "MnuPriCnfgPage", "MnuPriPrint", "MnuPriPrevia",
                                  "MnuExpExcell", "MnuExpCSV", "MnuExpHtml", "MnuAFrRegistrar", "MnuAFrNew"})
        m_menus->accion(QString::fromLatin1(pendiente))->setEnabled(false);
    m_menus->MnuExportar->menuAction()->setEnabled(false);
}

void lumIngAsiento::showEvent(QShowEvent *evento)
{
    QWidget::showEvent(evento);
    // The start-up may open message boxes on the host's window, and Qt is still walking
    // that window's children while it shows them: the start-up runs from the event loop,
    // once the show is over.
    if (!m_iniciado)
        QMetaObject::invokeMethod(this, &lumIngAsiento::Iniciar, Qt::QueuedConnection);
}

void lumIngAsiento::Iniciar()
{
    if (m_iniciado)
        return;
    m_iniciado = true;
    try {
        iniciarSinTrampa();
    } catch (const ErrorBaseDatos &e) {
        m_estado = Estado::Detenido;
        EnviarComando(ComandoHost::Error(e.descripcion()));
    } catch (const std::exception &e) {
        m_estado = Estado::Detenido;
        EnviarComando(ComandoHost::Error(QString::fromLocal8Bit(e.what())));
    }
}

void lumIngAsiento::iniciarSinTrampa()
{
    m_estado = Estado::Detenido;
    if (m_estadoInicio != 0) {
        EnviarComando(ComandoHost::Error(Idioma::resLoad(906)));
        return;
    }

    const QString parametros = m_entorno.host ? ExtraerParametrosHost(m_entorno.host->BaseHRef()) : QString();
    if (parametros.isEmpty())
        return;

    {
        const ServicioConexion servicio(m_entorno.ajustes);
        servicio.LeerAjuste(QStringLiteral("Idioma"));
        const int esquema = servicio.EsquemaColor(palette().color(QPalette::Button));
        QPalette fondo = picEdit->palette();
        fondo.setColor(QPalette::Window, servicio.ColorEsquema(esquema, 13));
        picEdit->setPalette(fondo);
        picCabezal->setPalette(picEdit->palette());
        m_formatoFecha = servicio.FormatoFecha(1);
        odDate->setDisplayFormat(FormatoQtDeFecha(m_formatoFecha));
    }

    m_host.IDEmpresa = proceso().IDEmpresa;
    const LecturaHost lectura = LeerParametrosHost(parametros, m_host);
    proceso().IDEmpresa = m_host.IDEmpresa;
    if (!lectura.error.isEmpty()) {
        EnviarComando(ComandoHost::Error(lectura.error));
        return;
    }
    if (!lectura.exito) {
        EnviarComando(ComandoHost::Error(Idioma::resLoad(906)));
        return;
    }

    AsignarTextos();
    m_claveVistaPrevia = m_host.ClaveSesion;
    tmMenu->SetPictureHelp(m_host.ClaveSesion);

    {
        ServicioConexion servicio(m_entorno.ajustes);
        std::unique_ptr<Conexion> conexion = servicio.AbrirConexion(m_host.ClaveSesion, 15);
        if (!conexion) {
            EnviarComando(ComandoHost::Error(Idioma::resLoad(905) + servicio.ultimoError()));
            return;
        }
        proceso().conexion = std::move(conexion);
    }

    CargarParametrosSistema();
    CargarMonedas();
    BuscarAsientoApertura();

    if (!InicializarDocumento()) {
        EnviarComando(ComandoHost::AccesoDenegado(Idioma::resLoad(0)));
        return;
    }

    prepararEditor();
    CargarDisenoGrilla();
    if (FilasDeDatosGrilla() == 1) {
        if (const auto id = IdAsientoPendiente(m_host.SolicitudPendiente))
            CargarAsientoPendiente(*id);
    }
    AcomodarPantalla();
    ConfigUsuario(false);
    m_estado = Estado::Listo;
    if (m_host.PedidoAsientoApertura && !m_existeAsientoApertura)
        ArmarComandoDiferido(QStringLiteral("1"));
}

bool lumIngAsiento::InicializarDocumento()
{
    CargarConfigEmpresa();
    BuscarPermisos(kModuloAsientos, proceso().IDEmpresa);

    const bool conAutoriza = m_empresa.ConAutoriza();
    lAutoriza->setVisible(conAutoriza && proceso().parametros.multiusuario);
    cfAutoriza->setVisible(conAutoriza && proceso().parametros.multiusuario);
    cfAutoriza->clear();
    if (conAutoriza)
        LlenarAutorizadores(*proceso().conexion);

    HabilitarEnlaces();
    if (!TienePermiso(u'Q') && !TienePermiso(u'A') && !TienePermiso(u'M') && !TienePermiso(u'E'))
        return false;

    hlCargar->Tag = QStringLiteral("0");
    CargarVistaInicial();
    m_vsGrid->setVisible(true);
    MostrarAvisoApertura();
    AcomodarPantalla();
    return true;
}

void lumIngAsiento::LlenarAutorizadores(Conexion &conexion)
{
    ServicioPermisos permisos(conexion, m_host.IDUsuario);
    const QString registros = permisos.Autorizadores(m_host.ClaveSesion, kModuloAsientos, proceso().IDEmpresa);
    for (const QString &registro : registros.split(QLatin1Char('\r'))) {
        if (registro.trimmed().isEmpty())
            continue;
        const qsizetype barra = registro.indexOf(QLatin1Char('|'));
        cfAutoriza->addItem(registro.mid(barra + 1), registro.left(barra).trimmed().toInt());
    }
}

void lumIngAsiento::HabilitarEnlaces()
{
    const bool a = TienePermiso(u'A');
    const bool m = TienePermiso(u'M');
    const bool e = TienePermiso(u'E');
    const bool q = TienePermiso(u'Q');
    hlRegistro->setEnabled(a || m || e);
    hlAsientoFrecuente->setEnabled(a);
    hlOpSave->setEnabled(m);
    hlFind->setEnabled(q || a || m || e);
    hlCargar->setEnabled(q || a || m || e);
}

void lumIngAsiento::LoadDocument()
{
    try {
        InicializarDocumento();
    } catch (const ErrorBaseDatos &e) {
        m_entorno.mensajes->MostrarError(e.descripcion(), QString(), DetalleError(e.numero(), e.descripcion()));
    }
}

void lumIngAsiento::CargarParametrosSistema()
{
    if (const auto fallo = ::CargarParametrosSistema(*proceso().conexion, proceso().parametros))
        MostrarFallo(*fallo);
}

bool lumIngAsiento::CargarConfigEmpresa()
{
    bool leida = false;
    if (!proceso().conexion)
        return false;
    if (const auto fallo = LeerConfigEmpresa(*proceso().conexion, proceso().IDEmpresa, m_empresa, leida)) {
        MostrarFallo(*fallo);
        return false;
    }
    if (leida)
        m_host.NombreEmpresa = m_empresa.NombreEmpresa;
    FormatoColumnasImporte();
    GetFechaAsientoApertura();
    return leida;
}

void lumIngAsiento::GetFechaAsientoApertura()
{
    if (!proceso().conexion)
        return;
    if (const auto fallo = ::GetFechaAsientoApertura(*proceso().conexion, proceso().parametros, m_empresa,
                                                      proceso().IDEmpresa, QDate::currentDate(),
                                                      m_fechaAsientoApertura))
        MostrarFallo(*fallo);
}

void lumIngAsiento::BuscarPermisos(const QString &modulo, qint32 idEmpresa)
{
    try {
        ServicioPermisos permisos(*proceso().conexion, m_host.IDUsuario);
        m_letras = permisos.Permisos(m_host.ClaveSesion, modulo, idEmpresa).trimmed();
    } catch (const ErrorBaseDatos &e) {
        MostrarFallo({1909, DetalleError(e.numero(), e.descripcion())});
    }
}

bool lumIngAsiento::TienePermiso(QChar letra) const
{
    return ::TienePermiso(m_letras, letra);
}

void lumIngAsiento::ConfigUsuario(bool guardar)
{
    static const QString seccion = kModuloAsientos;
    if (proceso().conexion) {
        ServicioConfigUsuario config(*proceso().conexion, m_host.IDUsuario, 0);
        // Each step on its own: a failing one is skipped and the next one runs.
        auto paso = [](auto &&accion) {
            try {
                accion();
            } catch (const ErrorBaseDatos &) {
            }
        };
        if (guardar) {
            paso([&] { config.Escribir(seccion, QStringLiteral("AsiSaveB"), m_asiSaveB ? QStringLiteral("1") : QStringLiteral("0")); });
            paso([&] { config.Escribir(seccion, QStringLiteral("AsiOrder"), QString::number(m_asiOrder)); });
            paso([&] { config.Confirmar(); });
        } else {
            paso([&] { m_asiSaveB = config.Leer(seccion, QStringLiteral("AsiSaveB")) == QLatin1String("1"); });
            paso([&] {
                bool ok = false;
                const int orden = config.Leer(seccion, QStringLiteral("AsiOrder")).trimmed().toInt(&ok);
                m_asiOrder = ok ? quint8(orden) : 0;
            });
        }
    }
    m_menus->accion(QStringLiteral("MnuSaveNewBorrador"))->setChecked(m_asiSaveB);
    m_menus->accion(QStringLiteral("MnuEdiVCod"))->setChecked(m_asiOrder == 0);
    m_menus->accion(QStringLiteral("MnuEdiVIngreso"))->setChecked(m_asiOrder == 1);
}

void lumIngAsiento::AsignarTextos()
{
    m_entorno.mensajes->FijarTitulo(Idioma::resLoad(0));
    m_entorno.mensajes->FijarTextoNumeroInvalido(Idioma::resLoad(950));
    m_menus->AsignarTextos([](int n) { return Idioma::resLoad(n); });
    hlRegistro->setText(Idioma::resLoad(10));
    hlAsientoFrecuente->setText(Idioma::resLoad(11));
    hlOpSave->setText(Idioma::resLoad(12));
    hlFind->setText(Idioma::resLoad(13));
    hlCargar->setText(Idioma::resLoad(14));
    for (lumHiperLink *l : {hlRegistro, hlAsientoFrecuente, hlOpSave, hlFind, hlCargar})
        l->setAccessibleName(l->text());
    lbTitle->setText(Idioma::resLoad(1));
    m_grilla.FijarEncabezados(Idioma::resLoad(60));
    lDate->setText(Idioma::resLoad(76));
    lLeyenda->setText(Idioma::resLoad(77));
    lLibro->setText(Idioma::resLoad(78));
    lAutoriza->setText(Idioma::resLoad(79));
    for (QLabel *l : {lDate, lLeyenda, lLibro, lAutoriza})
        l->buddy()->setAccessibleName(QString(l->text()).remove(QLatin1Char('&')).remove(QLatin1Char(':')));
}

void lumIngAsiento::MostrarFallo(const Fallo &fallo)
{
    m_entorno.mensajes->MostrarError(Idioma::resLoad(fallo.numeroTexto - 1000), QString(), fallo.detalle);
}

void lumIngAsiento::EnviarComando(const QString &direccion)
{
    if (m_entorno.host)
        m_entorno.host->Navegar(direccion, ComandoHost::kMarco);
}

void lumIngAsiento::ClickEnlace(lumHiperLink *enlace, QMenu *menu)
{
    if (m_filaEdicion > 0) {
        SalirEdicion();
        setFocus();
    }
    if (enlace == hlCargar)
        PrepararMenuVistas();
    if (enlace == hlRegistro)
        PrepararMenuEdicion();
    menu->popup(enlace->mapToGlobal(QPoint(0, enlace->height())));
}

void lumIngAsiento::ArmarComandoDiferido(const QString &comando)
{
    m_comandoDiferido = comando;
    tmShowASI->start();
}

void lumIngAsiento::tmShowASI_Timer()
{
    tmShowASI->stop();
    const QStringList campos = m_comandoDiferido.split(QLatin1Char('|'));
    const int codigo = campos.first().toInt();
    if (codigo == 1) {
        AsientoApertura();
    } else if (codigo == 2) {
        NuevoFrecuente();
        m_vsGrid->setFocus();
    } else if (codigo == 3) {
        RegistrarFrecuenteDiferido(campos.value(1).toInt());
        m_vsGrid->setFocus();
    }
}

void lumIngAsiento::keyPressEvent(QKeyEvent *evento)
{
    const Qt::KeyboardModifiers mods = evento->modifiers() & ~Qt::KeypadModifier;
    if (evento->key() == Qt::Key_F3 && !(mods & Qt::ControlModifier) && hlFind->isEnabled()) {
        if (hlCargar->Tag == QLatin1String("-1")) {
            if (hlFind->Tag == QLatin1String("1"))
                RepetirBusqueda();
        } else {
            MostrarBusqueda();
        }
        evento->accept();
        return;
    }
    if (mods == Qt::ControlModifier) {
        const QString letra = Idioma::resLoad(2);
        if (!letra.isEmpty() && evento->key() == QKeySequence(letra.left(1).toUpper())[0].key() && hlFind->isEnabled()) {
            hlFind->click();
            evento->accept();
            return;
        }
        if (evento->key() == Qt::Key_N) {
            NuevoAsiento();
            evento->accept();
            return;
        }
    }
    QWidget::keyPressEvent(evento);
}

void lumIngAsiento::resizeEvent(QResizeEvent *evento)
{
    QWidget::resizeEvent(evento);
    if (picVBD->isVisible())
        AcomodarPantalla();
}

void lumIngAsiento::AcomodarPantalla()
{
    // The layouts place every panel; the help image must not cover the last link, and the
    // account column takes the width the other columns leave, as after a fill.
    tmMenu->setMaxLeftImg(qMax(0, width() - 30));
    int resto = m_vsGrid->AnchoClienteTwips() - 300;
    for (int c = 1; c < m_grilla.Columnas(); ++c)
        resto -= m_grilla.ColumnaOculta(c) ? 0 : m_grilla.AnchoColumna(c);
    if (resto >= 0 && resto != m_grilla.AnchoColumna(0)) {
        m_grilla.FijarAnchoColumna(0, resto);
        m_vsGrid->AplicarAnchos();
    }
}
