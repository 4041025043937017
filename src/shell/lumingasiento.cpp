#include "lumingasiento.h"

#include "idioma.h"
#include "lumhiperlink.h"
#include "lumtoomenu.h"
#include "menusdocumento.h"
#include "paneledicion.h"
#include "pvprevia.h"
#include "currency/catalogomonedas.h"
#include "editing/asientoapertura.h"
#include "editing/cambiosajenos.h"
#include "editing/comandosasiento.h"
#include "editing/comandosasientoentero.h"
#include "editing/restauraciones.h"
#include "editing/sesionedicion.h"
#include "editing/unificaciontasa.h"
#include "search/busquedaasientos.h"
#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/contextodocumento.h"
#include "lineeditor/lumerasiento.h"
#include "dialogs/busquedacuentasqt.h"
#include "services/servicioconfigusuario.h"
#include "services/serviciomensajes.h"
#include "services/serviciopermisos.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QHBoxLayout>
#include <QTimer>
#include <QVBoxLayout>


namespace {

const QString kAplicacion = QStringLiteral("LUM01");
const QString kNombreAplicacion = QStringLiteral("IngresoAsiento");

} // namespace

lumIngAsiento::lumIngAsiento(EntornoDocumento entorno, QWidget *padre)
    : QWidget(padre)
    , m_entorno(std::move(entorno))
{
    m_datos.proceso = m_entorno.proceso ? m_entorno.proceso : std::make_shared<Proceso>();
    m_ctx.reloj = m_datos.proceso->reloj;
    m_datos.mensajes = m_entorno.mensajes;
    m_datos.texto = [](int numero) { return Idioma::resLoad(numero - 1000); };
    setObjectName(QStringLiteral("lumIngAsiento"));

    // The language first: in the program it sets the locale, which every control made below
    // takes when it is made and reads typed amounts in.
    m_estadoInicio = 0;
    const ServicioConexion conexion(m_entorno.ajustes);
    if (Idioma::CrearComponenteIdioma(kAplicacion, kNombreAplicacion, conexion, *m_entorno.mensajes) == 1)
        m_usaIdioma = true;
    else
        m_estadoInicio = 9;

    crearControles();
    conectarComandos();
}

lumIngAsiento::~lumIngAsiento()
{
    if (m_edicion->FilaEdicion() > 0)
        m_edicion->SalirEdicion(SesionEdicion::Salida::Cierre);
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

    picASI = new QFrame(this);
    picASI->setObjectName(QStringLiteral("picASI"));
    picASI->setAutoFillBackground(true);
    QPalette aviso = picASI->palette();
    aviso.setColor(QPalette::Window, QColor(0xff, 0xf4, 0xce));
    picASI->setPalette(aviso);
    // The invitation and the help link are two labels, so a screen reader and Tab reach each.
    auto *capaAviso = new QHBoxLayout(picASI);
    capaAviso->setContentsMargins(8, 4, 8, 4);
    capaAviso->setSpacing(16);
    for (QLabel **l : {&lMsgASI1, &lMsgASI2}) {
        *l = new QLabel(picASI);
        (*l)->setTextFormat(Qt::RichText);
        (*l)->setTextInteractionFlags(Qt::TextBrowserInteraction);
        (*l)->installEventFilter(this);
        capaAviso->addWidget(*l);
    }
    lMsgASI1->setObjectName(QStringLiteral("lMsgASI1"));
    lMsgASI2->setObjectName(QStringLiteral("lMsgASI2"));
    capaAviso->addStretch(1);
    picASI->setVisible(false);
    picASI->installEventFilter(this);

    tmShowASI = new QTimer(this);
    tmShowASI->setObjectName(QStringLiteral("tmShowASI"));
    tmShowASI->setSingleShot(true);
    tmShowASI->setInterval(0);

    picVBD = new QFrame(this);
    picVBD->setObjectName(QStringLiteral("picVBD"));
    m_vsGrid = new vsGrid(m_grilla, picVBD);
    m_panel = new PanelEdicion(*this, m_datos, m_grilla, m_vsGrid, picVBD);
    auto *principal = new QVBoxLayout(picVBD);
    principal->setContentsMargins(0, 0, 0, 0);
    principal->addWidget(m_panel);
    principal->addWidget(m_vsGrid, 1);

    lbEstado = new QLabel(this);
    lbEstado->setObjectName(QStringLiteral("lbEstado"));
    lbEstado->setContentsMargins(8, 2, 8, 2);
    lbEstado->setTextFormat(Qt::PlainText);
    // Coalesces the grid's changes of one step into one update of the line.
    tmEstado = new QTimer(this);
    tmEstado->setSingleShot(true);
    tmEstado->setInterval(0);
    connect(tmEstado, &QTimer::timeout, this, &lumIngAsiento::ActualizarEstado);

    auto *todo = new QVBoxLayout(this);
    todo->setContentsMargins(0, 0, 0, 0);
    todo->setSpacing(0);
    todo->addWidget(tmMenu);
    todo->addWidget(lbTitle);
    todo->addWidget(picASI);
    todo->addWidget(picVBD, 1);
    todo->addWidget(lbEstado);

    m_menus = std::make_unique<MenusDocumento>(this);
    m_comandos = std::make_unique<ComandosAsiento>(m_datos, m_asientos, *m_panel);
    m_asientoEntero = std::make_unique<ComandosAsientoEntero>(m_datos, m_asientos, *m_panel, *m_comandos);
    m_unificacion = std::make_unique<UnificacionTasa>(m_datos, m_asientos, *m_panel, *m_comandos);
    m_restauracion = std::make_unique<ComandosRestauracion>(m_datos, *m_comandos, m_asientos, *m_panel);
    m_edicion = std::make_unique<SesionEdicion>(m_datos, m_asientos, *m_comandos, *m_panel);
    m_busquedaPropia = std::make_unique<BusquedaCuentasQt>([this](int n) { return m_datos.texto(n); });
    m_busqueda = std::make_unique<BusquedaAsientos>(m_datos, m_asientos, *m_panel, busquedaCuentas(), this);
    m_apertura = std::make_unique<AsientoApertura>(m_datos, m_asientos, *m_comandos, *m_panel);
    m_apertura->alCambiar = [this](bool existe) { MostrarAvisoApertura(existe); };
    m_cambiosAjenos = std::make_unique<CambiosAjenos>(m_datos, m_asientos, [this] {
        const int fijas = m_grilla.FilasFijas();
        const int primera = m_vsGrid->rowAt(0);
        const int ultima = m_vsGrid->rowAt(m_vsGrid->viewport()->height() - 1);
        return std::pair{primera < 0 ? fijas : primera + fijas, ultima < 0 ? m_grilla.Filas() - 1 : ultima + fijas};
    });
    // The state picture's tooltip names the state, unless another user's change is to be told.
    m_vsGrid->modelo()->FijarAyuda([this](int fila, int columna) {
        if (columna != 0)
            return QString();
        const QString aviso = m_cambiosAjenos->Aviso(fila);
        return !aviso.isEmpty() || !m_asientos.EsFilaCabezal(fila) ? aviso : m_asientos.NombreEstado(qint16(m_grilla.Dato(fila, 3).toInt()));
    });
    m_vsGrid->modelo()->FijarTextoAccesible([this](int fila) { return m_asientos.TextoAccesible(fila); });
    auto *modelo = m_vsGrid->modelo();
    auto actualizar = [this] { tmEstado->start(); };
    connect(modelo, &QAbstractItemModel::dataChanged, this, actualizar);
    connect(modelo, &QAbstractItemModel::rowsInserted, this, actualizar);
    connect(modelo, &QAbstractItemModel::rowsRemoved, this, actualizar);
    connect(modelo, &QAbstractItemModel::rowsMoved, this, actualizar);
    connect(modelo, &QAbstractItemModel::modelReset, this, actualizar);
    connect(m_vsGrid, &vsGrid::FilaActualCambiada, this, actualizar);
    // While the header is typed the status line follows it, a field at a time.
    connect(m_panel->campoFecha(), &QLineEdit::editingFinished, this, actualizar);
    connect(m_panel->campoLeyenda(), &QLineEdit::editingFinished, this, actualizar);
    connect(m_panel->listaLibros(), qOverload<int>(&QComboBox::currentIndexChanged), this, actualizar);
    m_apertura->ayuda = [this] {
        if (m_entorno.host)
            m_entorno.host->Navegar(ComandoHost::kAyudaSaldosIniciales, QString());
    };
    m_busqueda->ayuda = [this] {
        if (m_entorno.host)
            m_entorno.host->Navegar(ComandoHost::kAyudaBusqueda, QString());
    };

    PrepararGrillaAsientos(m_grilla, QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
    m_vsGrid->AplicarAnchos();
}

ServicioBusquedaCuentas &lumIngAsiento::busquedaCuentas() const
{
    return m_entorno.busquedaCuentas ? *m_entorno.busquedaCuentas : *m_busquedaPropia;
}

int lumIngAsiento::FilaEdicion() const
{
    return m_edicion->FilaEdicion();
}

bool lumIngAsiento::TerminarEdicion()
{
    return FilaEdicion() <= 0 || m_edicion->SalirEdicion();
}

lumERAsiento *lumIngAsiento::editor() const
{
    return m_panel->editor();
}

CampoFecha *lumIngAsiento::campoFecha() const
{
    return m_panel->campoFecha();
}

QLineEdit *lumIngAsiento::campoLeyenda() const
{
    return m_panel->campoLeyenda();
}

QComboBox *lumIngAsiento::listaLibros() const
{
    return m_panel->listaLibros();
}

// Builds the line editor's context once the session is known: it looks accounts and rates
// up itself.
void lumIngAsiento::prepararEditor()
{
    m_panel->editor()->FijarContexto(ContextoDeDocumento(m_datos, busquedaCuentas()));
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
        m_panel->FijarColorFondo(servicio.ColorEsquema(esquema, 13));
        m_datos.formatoFecha = servicio.FormatoFecha(1);
        m_panel->FijarFormatoFecha(FormatoQtDeFecha(m_datos.formatoFecha));
    }

    m_host.IDEmpresa = proceso().IDEmpresa;
    const LecturaHost lectura = LeerParametrosHost(parametros, m_host);
    proceso().IDEmpresa = m_host.IDEmpresa;
    m_datos.usuario = m_host.IDUsuario;
    if (!lectura.error.isEmpty()) {
        EnviarComando(ComandoHost::Error(lectura.error));
        return;
    }
    if (!lectura.exito) {
        EnviarComando(ComandoHost::Error(Idioma::resLoad(906)));
        return;
    }

    AsignarTextos();
    m_busqueda->claveSesion = m_host.ClaveSesion;
    tmMenu->SetPictureHelp(m_host.ClaveSesion);

    {
        std::unique_ptr<Conexion> conexion;
        if (const auto fallo = ServicioConexion(m_entorno.ajustes).AbrirConexion(m_host.ClaveSesion, 15, conexion)) {
            EnviarComando(ComandoHost::Error(Idioma::resLoad(fallo->numeroTexto) + fallo->detalle));
            return;
        }
        conexion->UsarReloj(proceso().reloj);
        proceso().conexion = std::move(conexion);
    }

    CargarParametrosSistema();
    if (const auto fallo = proceso().monedas.CargarMonedas(*proceso().conexion))
        m_datos.MostrarFallo(*fallo);

    m_apertura->ActualizarExisteApertura(true);

    const auto admitido = InicializarDocumento();
    if (!admitido) {
        EnviarComando(ComandoHost::Error(admitido.fallo().detalle));
        return;
    }
    if (!*admitido) {
        EnviarComando(ComandoHost::AccesoDenegado(Idioma::resLoad(0)));
        return;
    }

    prepararEditor();
    CargarDisenoGrilla();
    // The entry the host asked for is shown and made current: found among the rows the
    // grid already holds, or else loaded at its end.
    if (const auto id = IdAsientoPendiente(m_host.SolicitudPendiente)) {
        int fila = FilaDeAsiento(*id);
        if (fila < 0) {
            fila = m_grilla.Filas() - 1;
            m_comandos->CargarAsiento(*id, fila);
            if (m_asientos.IdDeFila(fila) != *id)
                fila = -1;
        }
        SeleccionarFila(fila);
    }
    AcomodarPantalla();
    ConfigUsuario(false);
    m_cambiosAjenos->Iniciar();
    m_estado = Estado::Listo;
    if (m_host.PedidoAsientoApertura && !m_apertura->ExisteAsientoApertura())
        ArmarComandoDiferido(QStringLiteral("1"));
}

Resultado<bool> lumIngAsiento::InicializarDocumento()
{
    CargarConfigEmpresa();
    BuscarPermisos(kModuloAsientos, proceso().IDEmpresa);

    // Entries that carry an authoriser cannot be shown without the list of them: the
    // document stops.
    if (!m_datos.empresa.ConAutoriza())
        m_panel->FijarAutorizadores({}, false);
    else if (const auto fallo = LlenarAutorizadores(*proceso().conexion))
        return *fallo;

    HabilitarEnlaces();
    if (!PuedeEntrar(m_datos.letras))
        return false;

    hlCargar->Tag = QStringLiteral("0");
    CargarVistaInicial();
    m_vsGrid->setVisible(true);
    AcomodarPantalla();
    return true;
}

std::optional<Fallo> lumIngAsiento::LlenarAutorizadores(Conexion &conexion)
{
    ServicioPermisos permisos(conexion, m_host.IDUsuario);
    const auto registros = permisos.Autorizadores(m_host.ClaveSesion, kModuloAsientos, proceso().IDEmpresa);
    if (!registros)
        return registros.fallo();
    QList<std::pair<QString, qint16>> autorizadores;
    for (const QString &registro : registros->split(QLatin1Char('\r'))) {
        if (registro.trimmed().isEmpty())
            continue;
        const qsizetype barra = registro.indexOf(QLatin1Char('|'));
        autorizadores.append({registro.mid(barra + 1), qint16(registro.left(barra).trimmed().toInt())});
    }
    m_panel->FijarAutorizadores(autorizadores, proceso().parametros.multiusuario);
    return std::nullopt;
}

void lumIngAsiento::HabilitarEnlaces()
{
    const bool a = m_datos.TienePermiso(u'A');
    const bool m = m_datos.TienePermiso(u'M');
    const bool e = m_datos.TienePermiso(u'E');
    const bool q = m_datos.TienePermiso(u'Q');
    // The entry menu also holds what a query-only user may do: the history, printing.
    hlRegistro->setEnabled(a || m || e || q);
    hlAsientoFrecuente->setEnabled(a);
    hlOpSave->setEnabled(m);
    hlFind->setEnabled(q || a || m || e);
    hlCargar->setEnabled(q || a || m || e);
}

void lumIngAsiento::LoadDocument()
{
    if (const auto admitido = InicializarDocumento(); !admitido)
        m_entorno.mensajes->MostrarError(admitido.fallo().detalle, QString(), admitido.fallo().detalle);
}

void lumIngAsiento::CargarParametrosSistema()
{
    if (const auto fallo = ::CargarParametrosSistema(*proceso().conexion, proceso().parametros))
        m_datos.MostrarFallo(*fallo);
}

bool lumIngAsiento::CargarConfigEmpresa()
{
    bool leida = false;
    if (!proceso().conexion)
        return false;
    if (const auto fallo = LeerConfigEmpresa(*proceso().conexion, proceso().IDEmpresa, m_datos.empresa, leida)) {
        m_datos.MostrarFallo(*fallo);
        return false;
    }
    if (leida)
        m_host.NombreEmpresa = m_datos.empresa.NombreEmpresa;
    FormatoColumnasImporte();
    GetFechaAsientoApertura();
    return leida;
}

void lumIngAsiento::GetFechaAsientoApertura()
{
    if (!proceso().conexion)
        return;
    if (const auto fallo = ::GetFechaAsientoApertura(*proceso().conexion, proceso().parametros, m_datos.empresa,
                                                      proceso().IDEmpresa, m_datos.reloj().Hoy(),
                                                      m_datos.fechaAsientoApertura))
        m_datos.MostrarFallo(*fallo);
}

void lumIngAsiento::ActualizarEstado()
{
    const int fila = FilaEdicion() > 0 ? FilaEdicion() : m_vsGrid->FilaActual();
    const int cabezal = m_asientos.FilaCabezalDe(fila);
    QString texto;
    if (cabezal >= 0) {
        // What changed first: the difference while there is one, then the header with its state.
        const int ultima = m_asientos.UltimaFilaAsiento(cabezal);
        texto = m_asientos.TextoAccesible(cabezal);
        // The entry being edited is told as its header is typed, not as the grid last showed it.
        if (FilaEdicion() > 0 && m_asientos.FilaCabezalDe(FilaEdicion()) == cabezal)
            texto = (m_panel->TextoCabezal() << m_asientos.NombreEstado(qint16(m_grilla.Dato(cabezal, 3).toInt())))
                        .join(QStringLiteral(", "));
        if (m_asientos.EsFilaDiferencia(ultima))
            texto = m_asientos.TextoAccesible(ultima) + QStringLiteral("; ") + texto;
    }
    // The same text again says nothing new to a screen reader.
    if (texto != lbEstado->text())
        lbEstado->setText(texto);
}

void lumIngAsiento::BuscarPermisos(const QString &modulo, qint32 idEmpresa)
{
    ServicioPermisos permisos(*proceso().conexion, m_host.IDUsuario);
    if (const auto letras = m_datos.Leido(permisos.Permisos(m_host.ClaveSesion, modulo, idEmpresa), 1909))
        m_datos.letras = letras->trimmed();
}

void lumIngAsiento::ConfigUsuario(bool guardar)
{
    static const QString seccion = kModuloAsientos;
    if (proceso().conexion) {
        ServicioConfigUsuario config(*proceso().conexion, m_host.IDUsuario, 0);
        // The user's choices are a convenience: each one that cannot be read or stored keeps
        // its value, and the next one is tried; none of them is told.
        if (guardar) {
            config.Escribir(seccion, QStringLiteral("AsiSaveB"), m_datos.asiSaveB ? QStringLiteral("1") : QStringLiteral("0"));
            config.Escribir(seccion, QStringLiteral("AsiOrder"), QString::number(m_asiOrder));
            static_cast<void>(config.Confirmar());
        } else {
            if (const auto guardado = config.Leer(seccion, QStringLiteral("AsiSaveB")))
                m_datos.asiSaveB = *guardado == QLatin1String("1");
            if (const auto orden = config.Leer(seccion, QStringLiteral("AsiOrder"))) {
                bool ok = false;
                const int valor = orden->trimmed().toInt(&ok);
                m_asiOrder = ok ? quint8(valor) : 0;
            }
        }
    }
    m_menus->accion(QStringLiteral("MnuSaveNewBorrador"))->setChecked(m_datos.asiSaveB);
    m_menus->accion(QStringLiteral("MnuEdiVCod"))->setChecked(m_asiOrder == 0);
    m_menus->accion(QStringLiteral("MnuEdiVIngreso"))->setChecked(m_asiOrder == 1);
}

void lumIngAsiento::AsignarTextos()
{
    m_entorno.mensajes->FijarTitulo(Idioma::resLoad(0));
    setAccessibleName(Idioma::resLoad(0));
    m_vsGrid->setAccessibleName(Idioma::resLoad(10));
    tmMenu->AsignarTextos(Idioma::resLoad(1004), Idioma::resLoad(90));
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
    TextoAvisoApertura();
    m_grilla.FijarEncabezados(Idioma::resLoad(60));
    m_panel->AsignarTextos();
}

void lumIngAsiento::EnviarComando(const QString &direccion)
{
    if (m_entorno.host)
        m_entorno.host->Navegar(direccion, ComandoHost::kMarco);
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
