#pragma once

#include "comandoshost.h"
#include "parametroshost.h"
#include "sesion.h"
#include "entries/asientodatos.h"
#include "entries/asientosgrilla.h"
#include "entries/saldosiniciales.h"
#include "entries/grilla.h"
#include "services/servicioconexion.h"

#include <QWidget>

#include <memory>

class QComboBox;
class CampoFecha;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class CatalogoMonedas;
class vsGrid;
class QTimer;
class Conexion;
class MenusDocumento;
class ServicioMensajes;
class ServicioBusquedaCuentas;
class lumERAsiento;
class lumHiperLink;
class lumTooMenu;

// What the host gives the document when it creates it.
struct EntornoDocumento
{
    ContenedorHost *host = nullptr;
    ServicioMensajes *mensajes = nullptr;
    AjustesConexion ajustes;
    ServicioBusquedaCuentas *busquedaCuentas = nullptr; // null: the program's own search
};

// The journal-entry document. The host creates it, sets its user and company if it wants,
// and shows it; the first show runs the start-up, which ends Ready or Stopped (a failure,
// an empty parameter string or access denied, told to the host as a command address).
class lumIngAsiento : public QWidget
{
    Q_OBJECT
public:
    enum class Estado { Creado, Detenido, Listo };

    explicit lumIngAsiento(EntornoDocumento entorno, QWidget *padre = nullptr);
    ~lumIngAsiento() override;

    qint16 IDUsuario() const { return m_host.IDUsuario; }
    void setIDUsuario(qint16 id) { m_host.IDUsuario = id; }
    // The company id is process-wide; reading one beyond 16 bits throws std::overflow_error.
    qint16 IDEmpresa() const;
    void setIDEmpresa(qint16 id);

    void LoadDocument();
    void GetFechaAsientoApertura();

    // Runs the start-up now. When this was not called, the first show queues it: it then
    // runs from the event loop after show() has returned, never inside it.
    void Iniciar();

    Estado estado() const { return m_estado; }
    int EstadoInicio() const { return m_estadoInicio; }
    const DatosHost &datosHost() const { return m_host; }
    const ConfigEmpresa &empresa() const { return m_empresa; }
    QString letrasPermiso() const { return m_letras; }
    QDate FechaAsientoApertura() const { return m_fechaAsientoApertura; }
    QString FormatoFecha() const { return m_formatoFecha; }
    bool AsiSaveB() const { return m_asiSaveB; }
    quint8 AsiOrder() const { return m_asiOrder; }
    QString ComandoDiferido() const { return m_comandoDiferido; }
    MenusDocumento &menus() const { return *m_menus; }
    AsientosGrilla &asientos() { return m_asientos; }
    Grilla &grilla() { return m_grilla; }
    vsGrid *grid() const { return m_vsGrid; }
    QString VistaActual() const;
    // Loads a view of the view menu (0 to 4, 10 + month) as the menu does.
    void ElegirVista(int vista);
    QString RutaDisenoGrilla() const;

    bool TienePermiso(QChar letra) const;
    void BuscarPermisos(const QString &modulo, qint32 idEmpresa);
    bool CargarConfigEmpresa();
    void ConfigUsuario(bool guardar);

    // Edit mode.
    bool EntrarEdicion(int fila);
    void SalirEdicion();
    // Leaves edit mode with the edited line as the current row again, once the entry has
    // been re-read; false when that row was no stored line (then the entry's header row is).
    bool SalirEdicionEnLaFila();
    void AceptarLinea();
    void AgregarCuenta();
    void NuevoAsiento();
    int FilaEdicion() const { return m_filaEdicion; }
    lumERAsiento *editor() const { return oraEdit; }
    CampoFecha *campoFecha() const { return odDate; }
    QLineEdit *campoLeyenda() const { return tLeyenda; }
    QComboBox *listaLibros() const { return cfTipo; }

    // Saving, deleting, copying (the commands of the entry menu).
    void RegistrarAsiento();
    void RegistrarListados(qint16 estadoOrigen);
    void AgendarAsiento();
    bool CrearMovimientoFrecuente(bool agendar);
    bool GrabarCabezal();
    bool GrabarAsientoCompleto(bool asientoCierra);
    void EliminarAsiento(bool porFila);
    bool EliminarDefinitivo(qint32 asiID);
    void CopiarAsiento();
    void OcultarAsiento();
    bool PuedeModificarApertura();
    void UnificarTC(bool bMonedaCuenta);
    bool AplicarTC(bool bMonedaCuenta, double tasa, qint16 moneda);
    void CargarLibros(QComboBox *lista, bool excluirSistema);

    // Process-wide state shared by every document of the process.
    static std::shared_ptr<Conexion> ConexionCompartida();
    static const ParametrosSistema &Parametros();
    static qint32 EmpresaProceso();
    static CatalogoMonedas &Monedas();

protected:
    void showEvent(QShowEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    void crearControles();
    void conectarComandos();
    void iniciarSinTrampa();
    bool InicializarDocumento();
    void AsignarTextos();
    void EnviarComando(const QString &direccion);
    void MostrarFallo(const Fallo &fallo);
    void HabilitarEnlaces();
    void LlenarAutorizadores(Conexion &conexion);
    void CargarParametrosSistema();
    void ClickEnlace(lumHiperLink *enlace, QMenu *menu);
    void ArmarComandoDiferido(const QString &comando);
    void tmShowASI_Timer();
    void AcomodarPantalla();

    // Hooks of later work, called where the start-up and the commands need them.
    void CargarMonedas();
    void BuscarAsientoApertura();
    void FormatoColumnasImporte();
    void CargarVistaInicial();
    void MostrarAvisoApertura();
    void CargarDisenoGrilla();
    void GuardarDisenoGrilla();
    int FilasDeDatosGrilla() const;
    void CargarAsientoPendiente(qint32 idAsiento);
    void MostrarBusqueda();
    void RepetirBusqueda();
    void OrdenarCuentasGrilla();
    void PrepararMenuVistas();
    void AsientoApertura();
    void NuevoFrecuente();
    void RegistrarFrecuenteDiferido(qint32 idFrecuente);

    // Edit mode helpers.
    void prepararEditor();
    void colocarEditor();
    void cargarLineaEnEditor(int fila);
    void encabezadosDeEdicion(int campo);
    void restaurarEncabezados();
    bool teclaEnCabezal(QObject *objeto, QKeyEvent *evento);
    bool reglaTasas(RegistroLinea &linea);
    void escribirLinea(int fila, const RegistroLinea &linea);
    void terminarEdicion(bool recargar);
    void mostrarFilaEdicion();
    bool libroParaApertura(CabezalDatos &d, bool &esApertura);
    SaldosIniciales saldosIniciales() const;
    // The books of genLibros by name, the system books left out when asked; throws
    // ErrorBaseDatos.
    QList<std::pair<QString, qint16>> LeerLibros(bool excluirSistema) const;
    QString nombreLibro(qint16 libro) const;
    bool eventFilter(QObject *objeto, QEvent *evento) override;

    // Saving helpers.
    LibrosSistema librosSistema() const;
    AsientoDatos nuevoAsientoDatos() const;
    AsientoDatos asientoGuardado(qint32 asiID) const;
    int tomarAsientoDeFilaActual();
    void errorTexto(int numero, const QString &detalle = {});
    void advertirTexto(int numero);
    bool preguntarTexto(int numero);
    bool hayCuentasCerradasEnGrilla(const QDate &fecha) const;

    // The grid.
    void CargarAsientos(const QString &sql);
    void MostrarVista();
    void CargarMeses();
    void ActualizarContexto();
    void SeleccionarFila(int fila);
    void vsGrid_Click();
    void vsGrid_KeyDown(int tecla, Qt::KeyboardModifiers modificadores, bool *atendida);
    void vsGrid_KeyPress(int ascii, bool *atendida);
    void vsGrid_MouseDown(Qt::MouseButton boton, const QPoint &posicion);
    void vsGrid_FilaActual();
    void MenuEdicionEnCelda();
    void PrepararMenuEdicion();
    bool EliminarConTecla(int fila);
    bool TeclaEdicion(int ascii);

    EntornoDocumento m_entorno;
    Estado m_estado = Estado::Creado;
    int m_estadoInicio = 0;
    bool m_usaIdioma = false;
    bool m_iniciado = false;

    DatosHost m_host;
    ConfigEmpresa m_empresa;
    QString m_letras;
    QString m_formatoFecha;
    QString m_claveVistaPrevia;
    QDate m_fechaAsientoApertura;
    bool m_existeAsientoApertura = false;
    bool m_asiSaveB = false;
    quint8 m_asiOrder = 0;
    QString m_comandoDiferido;
    int m_filaEdicion = 0;   // row mark of the edit panel: > 0 while an entry is edited
    int m_filaRecordada = -1; // the row a second click opens
    bool m_pendiente = false;  // lines accepted since the entry was last written
    bool m_libroFijo = false;          // the edited entry's book cannot change here (a system book)
    bool m_escrituraRechazada = false; // a write of the edited entry was refused; leaving re-reads it
    QString m_vistaAntesDeEditar;
    lumERAsiento *oraEdit = nullptr;
    QLabel *lLibroApertura = nullptr;
    std::unique_ptr<ServicioBusquedaCuentas> m_busquedaPropia;
    int m_vista = 0;
    QDate m_mesVista;

    Grilla m_grilla;
    ContextoAsientos m_ctx;
    AsientosGrilla m_asientos{m_grilla, m_ctx};

    lumTooMenu *tmMenu = nullptr;
    lumHiperLink *hlRegistro = nullptr;
    lumHiperLink *hlAsientoFrecuente = nullptr;
    lumHiperLink *hlOpSave = nullptr;
    lumHiperLink *hlFind = nullptr;
    lumHiperLink *hlCargar = nullptr;
    QLabel *lbTitle = nullptr;
    QFrame *picVBD = nullptr;
    QFrame *picEdit = nullptr;
    QFrame *picCabezal = nullptr;
    QLabel *lDate = nullptr;
    CampoFecha *odDate = nullptr;
    QLabel *lLeyenda = nullptr;
    QLineEdit *tLeyenda = nullptr;
    QLabel *lLibro = nullptr;
    QComboBox *cfTipo = nullptr;
    QLabel *lAutoriza = nullptr;
    QComboBox *cfAutoriza = nullptr;
    vsGrid *m_vsGrid = nullptr;
    QTimer *tmShowASI = nullptr;
    std::unique_ptr<MenusDocumento> m_menus;
};
