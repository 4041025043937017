#pragma once

#include "comandoshost.h"
#include "parametroshost.h"
#include "editing/datosdocumento.h"
#include "entries/asientosgrilla.h"
#include "entries/grilla.h"
#include "services/servicioconexion.h"

#include <QWidget>

#include <memory>

class CampoFecha;
class AsientoApertura;
class ExportacionGrilla;
class ImpresionGrilla;
class SelectorArchivo;
class pvPrevia;
struct GrillaEnPantalla;
class BusquedaAsientos;
class CambiosAjenos;
class ComandosAsiento;
class ComandosAsientoEntero;
class ComandosFrecuentes;
class ComandosRestauracion;
class MenusDocumento;
class PanelEdicion;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QTimer;
class ServicioBusquedaCuentas;
class ServicioMensajes;
class SesionEdicion;
class UnificacionTasa;
class lumERAsiento;
class lumHiperLink;
class lumTooMenu;
class vsGrid;

// What the host gives the document when it creates it.
struct EntornoDocumento
{
    ContenedorHost *host = nullptr;
    ServicioMensajes *mensajes = nullptr;
    AjustesConexion ajustes;
    ServicioBusquedaCuentas *busquedaCuentas = nullptr; // null: the program's own search
    std::shared_ptr<Proceso> proceso;                   // null: the document has its own
    SelectorArchivo *selectorArchivo = nullptr;         // null: the platform's save dialog
};

// The journal-entry document. The host creates it, sets its user and company if it wants,
// and shows it; the first show runs the start-up, which ends Ready or Stopped (a failure,
// an empty parameter string or access denied, told to the host as a command address).
// Editing belongs to its SesionEdicion and the entry menu's work to its ComandosAsiento;
// the document lays out the controls, loads the views and wires menus, keys and the grid's
// events to them.
class lumIngAsiento : public QWidget
{
    Q_OBJECT
public:
    enum class Estado { Creado, Detenido, Listo };

    explicit lumIngAsiento(EntornoDocumento entorno, QWidget *padre = nullptr);
    ~lumIngAsiento() override;

    // Runs the start-up now. When this was not called, the first show queues it: it then
    // runs from the event loop after show() has returned, never inside it.
    void Iniciar();
    void LoadDocument();
    void GetFechaAsientoApertura();

    qint16 IDUsuario() const { return m_host.IDUsuario; }
    void setIDUsuario(qint16 id) { m_host.IDUsuario = id; }

    Estado estado() const { return m_estado; }
    int EstadoInicio() const { return m_estadoInicio; }
    const DatosHost &datosHost() const { return m_host; }
    const ConfigEmpresa &empresa() const { return m_datos.empresa; }
    QString letrasPermiso() const { return m_datos.letras; }
    QDate FechaAsientoApertura() const { return m_datos.fechaAsientoApertura; }
    bool AsiSaveB() const { return m_datos.asiSaveB; }
    quint8 AsiOrder() const { return m_asiOrder; }
    Proceso &proceso() const { return *m_datos.proceso; }

    SesionEdicion &edicion() const { return *m_edicion; }
    ComandosAsiento &comandos() const { return *m_comandos; }
    ComandosAsientoEntero &asientoEntero() const { return *m_asientoEntero; }
    UnificacionTasa &unificacionTasa() const { return *m_unificacion; }
    // The action the deferred-action timer carries out next: "1" the opening-balance entry,
    // "2" a new frequent entry, "3|id" the registration of a frequent entry (0: the user
    // finds one).
    QString ComandoDiferido() const { return m_comandoDiferido; }
    MenusDocumento &menus() const { return *m_menus; }
    // The entry menu as it is about to open: its items follow the current row, the user's
    // rights and what this session can undo.
    void PrepararMenuEdicion();
    AsientosGrilla &asientos() { return m_asientos; }
    Grilla &grilla() { return m_grilla; }
    vsGrid *grid() const { return m_vsGrid; }
    pvPrevia *previa() const { return m_pvPrevia; }
    // The save dialog the exports ask (null: the platform's).
    void FijarSelectorArchivo(SelectorArchivo *selector);
    int FilaEdicion() const;
    // Ends an edit before something else happens: false when the user chose to go back to
    // it (question 1956 for typed work), and then nothing else should happen. True when no
    // entry was edited.
    bool TerminarEdicion();
    // Whether the document may close: an edit is ended first, as TerminarEdicion does.
    bool PuedeCerrar() { return TerminarEdicion(); }
    // The edit area's controls.
    lumERAsiento *editor() const;
    CampoFecha *campoFecha() const;
    QLineEdit *campoLeyenda() const;
    QComboBox *listaLibros() const;

    // Loads a view of the view menu (0 to 4, 10 + month) as the menu does.
    void ElegirVista(int vista);
    QString VistaActual() const;
    QString RutaDisenoGrilla() const;
    // Ends an edit, then searches: with the dialog, or again with the last criteria. The
    // grid then shows a search view.
    void Buscar(bool mostrarDialogo);
    // Makes a data row current, with the selection colours of its kind of row.
    void SeleccionarFila(int fila);
    // The header row of the entry with that id in the grid, or -1.
    int FilaDeAsiento(qint32 id) const;
    // Brings the grid's context (font, width, order, company) up to date.
    void ActualizarContexto();
    // Shows the edit view's mark while an entry is edited, and the view before it after.
    void MarcarVistaEdicion(bool enEdicion);

protected:
    void showEvent(QShowEvent *evento) override;
    bool eventFilter(QObject *objeto, QEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    // Start-up (lumingasiento.cpp).
    void crearControles();
    void iniciarSinTrampa();
    // Whether the user may see the entries; a failure when the authorisers cannot be read.
    Resultado<bool> InicializarDocumento();
    void AsignarTextos();
    void prepararEditor();
    ServicioBusquedaCuentas &busquedaCuentas() const;
    void EnviarComando(const QString &direccion);
    void HabilitarEnlaces();
    [[nodiscard]] std::optional<Fallo> LlenarAutorizadores(Conexion &conexion);
    void CargarParametrosSistema();
    bool CargarConfigEmpresa();
    void BuscarPermisos(const QString &modulo, qint32 idEmpresa);
    void ConfigUsuario(bool guardar);
    void AcomodarPantalla();

    // Menus and keys (comandosdocumento.cpp).
    void conectarComandos();
    void conectarSalidas();
    GrillaEnPantalla GrillaMostrada() const;
    ExportacionGrilla &exportacion();
    void ClickEnlace(lumHiperLink *enlace, QMenu *menu);
    void MostrarHistorial();
    void MostrarPapelera();
    void Deshacer();
    void MenuEdicionEnCelda();
    void ArmarComandoDiferido(const QString &comando);
    void tmShowASI_Timer();
    void MostrarAvisoApertura(bool existe);
    void TextoAvisoApertura();
    void RegistrarFrecuente(qint32 mfrID);
    void NuevoFrecuente();
    void registrarFrecuenteDiferido(qint32 mfrID);
    void CargarFrecuentesRecientes();
    ComandosFrecuentes frecuentes();

    // The grid (grilladocumento.cpp).
    void FormatoColumnasImporte();
    void CargarVistaInicial();
    void CargarAsientos(const QString &sql);
    void MostrarVista();
    void CargarMeses();
    void PrepararMenuVistas();
    void CargarDisenoGrilla();
    void GuardarDisenoGrilla();
    void OrdenarCuentasGrilla();
    void vsGrid_Click();
    void vsGrid_KeyDown(int tecla, Qt::KeyboardModifiers modificadores, bool *atendida);
    void vsGrid_KeyPress(int ascii, bool *atendida);
    void vsGrid_MouseDown(Qt::MouseButton boton, const QPoint &posicion);
    void vsGrid_FilaActual();

    EntornoDocumento m_entorno;
    DatosDocumento m_datos;
    Estado m_estado = Estado::Creado;
    int m_estadoInicio = 0;
    bool m_usaIdioma = false;
    bool m_iniciado = false;
    DatosHost m_host;
    quint8 m_asiOrder = 0;
    int m_filaRecordada = -1; // the row a second click opens
    QString m_vistaAntesDeEditar;
    QString m_comandoDiferido;
    QDate m_mesVista;
    std::unique_ptr<ServicioBusquedaCuentas> m_busquedaPropia;

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
    // The status line: the current entry's difference while it does not balance, and its
    // header in words with its state, so a screen reader hears each line's effect and each
    // save's outcome.
    QLabel *lbEstado = nullptr;
    QTimer *tmEstado = nullptr;
    void ActualizarEstado();
    QFrame *picASI = nullptr;  // the banner shown while there is no opening-balance entry
    QLabel *lMsgASI1 = nullptr;  // the invitation, with its link that makes the entry
    QLabel *lMsgASI2 = nullptr;  // the link to the entry's help page
    QTimer *tmShowASI = nullptr;
    QFrame *picVBD = nullptr;
    vsGrid *m_vsGrid = nullptr;
    PanelEdicion *m_panel = nullptr;
    std::unique_ptr<MenusDocumento> m_menus;
    std::unique_ptr<ComandosAsiento> m_comandos;
    std::unique_ptr<ComandosAsientoEntero> m_asientoEntero;
    std::unique_ptr<UnificacionTasa> m_unificacion;
    std::unique_ptr<ComandosRestauracion> m_restauracion;
    std::unique_ptr<SesionEdicion> m_edicion;
    std::unique_ptr<BusquedaAsientos> m_busqueda;
    std::unique_ptr<AsientoApertura> m_apertura;
    std::unique_ptr<CambiosAjenos> m_cambiosAjenos;
    pvPrevia *m_pvPrevia = nullptr;
    std::unique_ptr<ImpresionGrilla> m_impresion;
    std::unique_ptr<SelectorArchivo> m_selectorPropio;
    std::unique_ptr<ExportacionGrilla> m_exportacion;
};
