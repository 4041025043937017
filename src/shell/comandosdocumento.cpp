// The document's menus, links and keys, wired to the edit session and the entry commands.
#include "lumingasiento.h"

#include "dialogohistorial.h"
#include "dialogopapelera.h"
#include "idioma.h"
#include "lumhiperlink.h"
#include "lumtoomenu.h"
#include "menusdocumento.h"
#include "paneledicion.h"
#include "editing/asientoapertura.h"
#include "editing/comandosasiento.h"
#include "editing/comandosasientoentero.h"
#include "editing/restauraciones.h"
#include "editing/sesion.h"
#include "editing/frecuentesdeasiento.h"
#include "editing/sesionedicion.h"
#include "editing/unificaciontasa.h"
#include "frequent/comandosfrecuentes.h"
#include "search/busquedaasientos.h"
#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "dialogs/gestorlibros.h"

#include <QAction>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QTimer>

#include <utility>

void lumIngAsiento::conectarComandos()
{
    connect(tmMenu, &lumTooMenu::HelpClick, this, [this] {
        if (m_entorno.host)
            m_entorno.host->Navegar(ComandoHost::kAyudaIngreso, QString());
    });
    connect(hlRegistro, &QToolButton::clicked, this, [this] { ClickEnlace(hlRegistro, m_menus->MnuEdicion); });
    connect(hlOpSave, &QToolButton::clicked, this, [this] { ClickEnlace(hlOpSave, m_menus->MnuSave); });
    connect(hlCargar, &QToolButton::clicked, this, [this] { ClickEnlace(hlCargar, m_menus->MnuView); });
    connect(hlFind, &QToolButton::clicked, this, [this] { Buscar(true); });
    connect(hlAsientoFrecuente, &QToolButton::clicked, this, [this] { ClickEnlace(hlAsientoFrecuente, m_menus->MnuAsientoFrecuente); });
    connect(tmShowASI, &QTimer::timeout, this, &lumIngAsiento::tmShowASI_Timer);
    // The banner's links: "aquí" makes the opening-balance entry once the click is over,
    // "Necesito ayuda" opens its help page.
    connect(lMsgASI1, &QLabel::linkActivated, this, [this] {
        if (TerminarEdicion())
            ArmarComandoDiferido(QStringLiteral("1"));
    });
    connect(lMsgASI2, &QLabel::linkActivated, this, [this] {
        if (TerminarEdicion())
            m_apertura->ayuda();
    });

    connect(m_vsGrid, &vsGrid::Click, this, &lumIngAsiento::vsGrid_Click);
    connect(m_vsGrid, &vsGrid::KeyDown, this, &lumIngAsiento::vsGrid_KeyDown);
    connect(m_vsGrid, &vsGrid::KeyPress, this, &lumIngAsiento::vsGrid_KeyPress);
    connect(m_vsGrid, &vsGrid::MouseDown, this, &lumIngAsiento::vsGrid_MouseDown);
    connect(m_vsGrid, &vsGrid::FilaActualCambiada, this, &lumIngAsiento::vsGrid_FilaActual);
    connect(m_vsGrid->horizontalHeader(), &QHeaderView::sectionClicked, this, [this] {
        if (FilaEdicion() > 0) {
            TerminarEdicion();
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
        m_datos.asiSaveB = marcado;
        ConfigUsuario(true);
    });
    for (const auto &[accion, orden] : {std::pair{"MnuEdiVCod", 0}, std::pair{"MnuEdiVIngreso", 1}}) {
        connect(m_menus->accion(QString::fromLatin1(accion)), &QAction::triggered, this, [this, orden = orden] {
            m_asiOrder = quint8(orden);
            ConfigUsuario(true);
            OrdenarCuentasGrilla();
        });
    }

    // Every entry command first finishes a line being edited, as leaving it with Escape does:
    // the command then works on the entry as stored, and no row of the edit is left behind.
    // A command on one line (deleting a row) has no line to act on when the row being typed
    // was none yet.
    auto alElegir = [this](const char *accion, auto funcion, bool sobreUnaLinea = false) {
        connect(m_menus->accion(QString::fromLatin1(accion)), &QAction::triggered, this, [this, funcion, sobreUnaLinea] {
            if (FilaEdicion() > 0) {
                const bool enLaFila = m_edicion->SalirEdicionEnLaFila();
                if (FilaEdicion() > 0 || (!enLaFila && sobreUnaLinea))
                    return;
            }
            funcion();
            // Deleting, registering or converting may make or unmake the opening-balance entry.
            m_apertura->ActualizarExisteApertura();
        });
    };
    ComandosAsiento &c = *m_comandos;
    alElegir("MnuEdiNew", [this] { m_edicion->NuevoAsiento(); });
    alElegir("MnuEdiAddCta", [this] { m_edicion->AgregarCuenta(); });
    alElegir("MnuEdiSaveNormal", [&c] { c.RegistrarAsiento(); });
    alElegir("MnuSaveEnBorrador", [&c] { c.RegistrarListados(EstadoAsiento::kBorrador); });
    alElegir("MnuEdiAgendarAsiento", [this, &c] { FrecuentesDeAsiento(m_datos, m_asientos, c).AgendarAsiento(); });
    alElegir("MnuEdiHacerFrecuente", [this, &c] {
        m_asientos.ResetCabezal();
        FrecuentesDeAsiento(m_datos, m_asientos, c).CrearMovimientoFrecuente(false);
        m_asientos.ResetCabezal();
    });
    ComandosAsientoEntero &entero = *m_asientoEntero;
    alElegir("MnuEdiDel", [&entero] { entero.EliminarAsiento(false); });
    alElegir("MnuEdiDelRow", [&entero] { entero.EliminarAsiento(true); }, true);
    alElegir("MnuEdiCopy", [&entero] { entero.CopiarAsiento(); });
    alElegir("MnuEdiHide", [&entero] { entero.OcultarAsiento(); });
    alElegir("MnuUnificarTCCta", [this] { m_unificacion->UnificarTC(true); });
    alElegir("MnuUnificarTCMC", [this] { m_unificacion->UnificarTC(false); });
    alElegir("MnuAFrRegistrar", [this] { RegistrarFrecuente(0); });
    alElegir("MnuAFrNew", [this] { ArmarComandoDiferido(QStringLiteral("2")); });
    alElegir("MnuEdiAPA", [this] { m_apertura->MnuEdiAPA(); });
    alElegir("MnuEdiASI", [this] { m_apertura->ConvertirApertura(); });
    alElegir("MnuEdiLibro", [this] {
        if (!m_datos.conexion())
            return;
        GestorLibros gestor(*m_datos.conexion(), *m_datos.mensajes, [this](int n) { return m_datos.texto(n); }, this);
        gestor.exec();
        m_edicion->OlvidarLibros(); // the list is read again on the next edit
    });
    connect(m_menus->accion(QStringLiteral("MnuEdiHistorial")), &QAction::triggered, this, [this] { MostrarHistorial(); });
    connect(m_menus->accion(QStringLiteral("MnuViePapelera")), &QAction::triggered, this, [this] { MostrarPapelera(); });
    alElegir("MnuEdiDeshacer", [this] { Deshacer(); });
    conectarSalidas();
}

// The history of the current row's entry, in a window of its own that does not stop the
// document.
void lumIngAsiento::MostrarHistorial()
{
    const int cabezal = m_asientos.FilaCabezalDe(m_vsGrid->FilaActual());
    const qint32 id = cabezal >= 0 ? m_asientos.IdDeFila(cabezal) : 0;
    if (id <= 0 || !m_datos.conexion())
        return;
    const auto filas = m_datos.Leido(HistorialAsiento::Leer(*m_datos.conexion(), id), 1916);
    if (!filas)
        return;
    // A version goes back over the entry as it was when the history was read.
    std::optional<QHash<qint32, SelloGuardado>> sellos;
    if (m_datos.TienePermiso(u'M') && !(sellos = m_datos.Leido(LeerSellos(*m_datos.conexion(), {id}), 1916)))
        return;
    // The books by name; without them (a read that fails) the history shows their numbers.
    QHash<int, QString> libros;
    if (const auto leidos = m_datos.LeerLibros(false))
        for (const auto &[nombre, numero] : *leidos)
            libros.insert(numero, nombre);
    auto *dialogo = new DialogoHistorial(id, *filas, FormatoQtDeFecha(m_datos.formatoFecha), m_datos.texto, std::move(libros), this);
    dialogo->setAttribute(Qt::WA_DeleteOnClose);
    if (sellos) {
        const QDateTime leido = sellos->value(id).sello;
        dialogo->OfrecerRestaurar(m_datos.texto(1160), [this, id, leido](const QJsonObject &version) {
            return m_restauracion->RestaurarVersion(id, version, leido);
        });
    }
    dialogo->open();
}

// The company's trash, for a user who may delete: entries given back or deleted for good.
void lumIngAsiento::MostrarPapelera()
{
    if (!m_datos.TienePermiso(u'E') || !m_datos.conexion())
        return;
    auto *dialogo = new DialogoPapelera(*m_restauracion, m_datos.texto, FormatoQtDeFecha(m_datos.formatoFecha), this);
    dialogo->setAttribute(Qt::WA_DeleteOnClose);
    if (!dialogo->Leer()) {
        delete dialogo;
        return;
    }
    dialogo->open();
}

// Ctrl+Z outside an edit: this session's last write still standing is undone.
void lumIngAsiento::Deshacer()
{
    if (FilaEdicion() > 0 || !m_datos.TienePermiso(u'M'))
        return;
    m_restauracion->Deshacer();
}

void lumIngAsiento::ClickEnlace(lumHiperLink *enlace, QMenu *menu)
{
    if (FilaEdicion() > 0) {
        if (!TerminarEdicion())
            return;
        setFocus();
    }
    if (enlace == hlCargar)
        PrepararMenuVistas();
    if (enlace == hlRegistro)
        PrepararMenuEdicion();
    if (enlace == hlAsientoFrecuente)
        CargarFrecuentesRecientes();
    menu->popup(enlace->mapToGlobal(QPoint(0, enlace->height())));
}

void lumIngAsiento::MenuEdicionEnCelda()
{
    PrepararMenuEdicion();
    const QRect celda = m_vsGrid->visualRect(m_vsGrid->currentIndex());
    m_menus->MnuEdicion->popup(m_vsGrid->viewport()->mapToGlobal(celda.bottomLeft()));
}

// The state caption and the save command follow the entry of the current row.
void lumIngAsiento::PrepararMenuEdicion()
{
    const int fila = m_vsGrid->FilaActual();
    const bool hayAsiento = m_asientos.FilaCabezalDe(fila) >= 0;
    const qint16 estado = hayAsiento ? m_asientos.EstadoDeFila(fila) : 0;
    QAction *info = m_menus->accion(QStringLiteral("MnuEdiShowEstado"));
    const int texto = hayAsiento ? TextoMenuEstado(estado) : 0;
    info->setVisible(hayAsiento && estado <= 0);
    info->setText(texto ? m_datos.texto(texto) : QString());
    m_menus->accion(QStringLiteral("MnuEdiLineEstado"))->setVisible(info->isVisible());
    QAction *grabar = m_menus->accion(QStringLiteral("MnuEdiSaveNormal"));
    grabar->setText(m_datos.texto(hayAsiento && estado == EstadoAsiento::kRegistrado ? 1036 : 1023));

    // Only what the user's rights allow is offered: adding (A), changing (M), deleting (E).
    const bool a = m_datos.TienePermiso(u'A');
    const bool m = m_datos.TienePermiso(u'M');
    const bool e = m_datos.TienePermiso(u'E');
    for (const auto &[accion, permitido] :
         {std::pair{"MnuEdiNew", a}, std::pair{"MnuEdiCopy", a}, std::pair{"MnuEdiHacerFrecuente", a},
          std::pair{"MnuEdiAgendarAsiento", a}, std::pair{"MnuEdiDel", e}, std::pair{"MnuEdiDelRow", e},
          std::pair{"MnuEdiAddCta", m}, std::pair{"MnuEdiSaveNormal", m}, std::pair{"MnuUnificarTCCta", m},
          std::pair{"MnuUnificarTCMC", m}, std::pair{"MnuEdiLibro", m}})
        m_menus->accion(QString::fromLatin1(accion))->setEnabled(permitido);
    const int filaCabezal = m_asientos.FilaCabezalDe(fila);
    m_menus->accion(QStringLiteral("MnuEdiHistorial"))->setEnabled(filaCabezal >= 0 && m_asientos.IdDeFila(filaCabezal) > 0);
    QAction *deshacer = m_menus->accion(QStringLiteral("MnuEdiDeshacer"));
    // Unknown when the history cannot be read: the item stays off, and Ctrl+Z says why.
    const QString queDeshace = m ? m_restauracion->TextoDeshacer() : QString();
    deshacer->setText(queDeshace.isEmpty() ? m_datos.texto(1159) : queDeshace);
    deshacer->setEnabled(!queDeshace.isEmpty());
    m_menus->MnuEdiTC->menuAction()->setEnabled(m);

    // The opening-balance commands offer what can be done: making it while there is none,
    // converting a stored entry into it while there is none, or it back into an ordinary one.
    const bool existe = m_apertura->ActualizarExisteApertura();
    const int cabezal = m_asientos.FilaCabezalDe(fila);
    const bool guardado = cabezal >= 0 && m_asientos.IdDeFila(cabezal) > 0;
    const qint16 libro = guardado ? m_asientos.LibroDeFila(cabezal) : 0;
    const bool esApertura = libro != 0 && libro == m_datos.librosSistema().primeraApertura;
    m_menus->accion(QStringLiteral("MnuEdiAPA"))->setEnabled(!existe && m_datos.TienePermiso(u'A'));
    QAction *convertir = m_menus->accion(QStringLiteral("MnuEdiASI"));
    convertir->setText(m_datos.texto(esApertura ? 1034 : 1033));
    convertir->setEnabled(guardado && m_datos.TienePermiso(u'M') && (esApertura || !existe));
}

void lumIngAsiento::ArmarComandoDiferido(const QString &comando)
{
    m_comandoDiferido = comando;
    tmShowASI->start();
}

// Carries out the deferred action once the menu or the click that asked for it is over.
void lumIngAsiento::tmShowASI_Timer()
{
    tmShowASI->stop();
    const QString comando = std::exchange(m_comandoDiferido, QString());
    const QString codigo = comando.section(QLatin1Char('|'), 0, 0);
    if (codigo == QLatin1String("1"))
        m_apertura->MnuEdiAPA();
    else if (codigo == QLatin1String("2"))
        NuevoFrecuente();
    else if (codigo == QLatin1String("3"))
        registrarFrecuenteDiferido(comando.section(QLatin1Char('|'), 1, 1).toInt());
    m_vsGrid->setFocus();
}

// "Crear nuevo", once the menu is closed.
void lumIngAsiento::NuevoFrecuente()
{
    frecuentes().NuevoFrecuente();
}

// A recent frequent entry is registered after question 1834; "Buscar y Registrar" lets the
// user find one. Either runs once the menu is closed.
void lumIngAsiento::RegistrarFrecuente(qint32 mfrID)
{
    if (mfrID > 0 && !m_datos.Preguntar(1834)) {
        m_vsGrid->setFocus();
        return;
    }
    ArmarComandoDiferido(QStringLiteral("3|") + QString::number(mfrID));
}

void lumIngAsiento::registrarFrecuenteDiferido(qint32 mfrID)
{
    const int fila = frecuentes().RegistrarFrecuente(mfrID);
    if (fila < 0)
        return;
    // The new entries are shown after the last row, the first one current.
    SeleccionarFila(fila);
    m_vsGrid->scrollTo(m_vsGrid->currentIndex(), QAbstractItemView::EnsureVisible);
}

ComandosFrecuentes lumIngAsiento::frecuentes()
{
    return ComandosFrecuentes(m_datos, m_asientos, *m_comandos, busquedaCuentas(), this);
}

// The menu of frequent entries lists the user's recent ones after its commands.
void lumIngAsiento::CargarFrecuentesRecientes()
{
    qDeleteAll(m_menus->MnuAFrRecientes);
    m_menus->MnuAFrRecientes.clear();
    QAction *linea = m_menus->accion(QStringLiteral("MnuAFrLine"));
    linea->setVisible(false);
    const QList<std::pair<QString, qint32>> items = frecuentes().Recientes();
    for (const auto &[nombre, id] : items) {
        QAction *a = m_menus->MnuAsientoFrecuente->addAction(nombre);
        a->setObjectName(QStringLiteral("MnuAFrRecientes"));
        a->setData(id);
        connect(a, &QAction::triggered, this, [this, id = id] {
            if (!TerminarEdicion())
                return;
            RegistrarFrecuente(id);
        });
        m_menus->MnuAFrRecientes.append(a);
    }
    linea->setVisible(!items.isEmpty());
}

void lumIngAsiento::MostrarAvisoApertura(bool existe)
{
    TextoAvisoApertura();
    picASI->setVisible(!existe);
}

// The banner invites to make the opening-balance entry, or to finish the one made.
void lumIngAsiento::TextoAvisoApertura()
{
    const bool sinTerminar = m_apertura && m_apertura->HayAsientoSinTerminar();
    lMsgASI1->setText(QStringLiteral("%1 <a href=\"aqui\">%2</a> %3")
                          .arg(m_datos.texto(sinTerminar ? 1154 : 1150).toHtmlEscaped(), m_datos.texto(1151).toHtmlEscaped(),
                               m_datos.texto(sinTerminar ? 1155 : 1152).toHtmlEscaped()));
    lMsgASI2->setText(QStringLiteral("<a href=\"ayuda\">%1</a>").arg(m_datos.texto(1153).toHtmlEscaped()));
}

bool lumIngAsiento::eventFilter(QObject *objeto, QEvent *evento)
{
    // A click on the banner ends an edit, as a click elsewhere above the grid does. On its
    // labels the edit ends as the button comes up, before the label takes the release: a
    // question asked at the press would eat the click, and the link would do nothing.
    const bool enEtiqueta = objeto == lMsgASI1 || objeto == lMsgASI2;
    if (FilaEdicion() > 0
        && ((objeto == picASI && evento->type() == QEvent::MouseButtonPress)
            || (enEtiqueta && evento->type() == QEvent::MouseButtonRelease)))
        TerminarEdicion();
    return QWidget::eventFilter(objeto, evento);
}

void lumIngAsiento::Buscar(bool mostrarDialogo)
{
    if (FilaEdicion() > 0) {
        if (!TerminarEdicion())
            return;
        setFocus();
    }
    const auto resultado = m_busqueda->Buscar(mostrarDialogo);
    if (resultado != BusquedaAsientos::Resultado::SinCambios) {
        hlCargar->Tag = QString::number(Vista::kPersonalizada);
        MostrarVista();
    }
    if (resultado == BusquedaAsientos::Resultado::Cargada)
        hlFind->Tag = QStringLiteral("1");
    m_vsGrid->setFocus();
}

void lumIngAsiento::keyPressEvent(QKeyEvent *evento)
{
    const Qt::KeyboardModifiers mods = evento->modifiers() & ~Qt::KeypadModifier;
    // F3 repeats the last search inside a search view and opens the dialog outside one.
    if (evento->key() == Qt::Key_F3 && !(mods & Qt::ControlModifier) && hlFind->isEnabled()) {
        if (hlCargar->Tag != QString::number(Vista::kPersonalizada))
            Buscar(true);
        else if (hlFind->Tag == QLatin1String("1"))
            Buscar(false);
        evento->accept();
        return;
    }
    const QString letra = m_datos.texto(1002).left(1).toUpper();
    if (mods == Qt::ControlModifier && !letra.isEmpty() && evento->key() == letra.at(0).unicode() && hlFind->isEnabled()) {
        Buscar(true);
        evento->accept();
        return;
    }
    if (mods == Qt::ControlModifier && evento->key() == Qt::Key_N) {
        m_edicion->NuevoAsiento();
        evento->accept();
        return;
    }
    if (evento->matches(QKeySequence::Undo)) {
        Deshacer();
        evento->accept();
        return;
    }
    // F1 opens the help of this screen, as its help link does.
    if (evento->key() == Qt::Key_F1 && !mods) {
        if (m_entorno.host)
            m_entorno.host->Navegar(ComandoHost::kAyudaIngreso, QString());
        evento->accept();
        return;
    }
    // Ctrl+P prints and Ctrl+Shift+P previews what the grid shows, as their menu items do.
    if ((mods & ~Qt::ShiftModifier) == Qt::ControlModifier && evento->key() == Qt::Key_P && hlRegistro->isEnabled()) {
        m_menus->accion(mods & Qt::ShiftModifier ? QStringLiteral("MnuPriPrevia") : QStringLiteral("MnuPriPrint"))->trigger();
        evento->accept();
        return;
    }
    QWidget::keyPressEvent(evento);
}
