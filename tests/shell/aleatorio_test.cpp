// Two accountants on one database, each with a started document, doing what people do in an
// order drawn from a seeded sequence; after every step the books are checked in the database
// itself. A failing seed prints itself and its steps, one a line.
//   ASIENTOS_ALEATORIO_SEMILLA=n   runs that seed alone instead of the fixed list
//   ASIENTOS_ALEATORIO_PASOS=n     steps per seed (kPasos by default)
#include "escenario.h"

#include "comun/lecturasbase.h"
#include "editing/cambiosajenos.h"
#include "entries/historialasiento.h"

#include <QJsonDocument>

#include <optional>
#include <random>

namespace {

constexpr unsigned kSemillas[] = {1, 2, 3};
constexpr int kPasos = 60;

QString enTexto(const QJsonObject &o)
{
    return QString::fromUtf8(QJsonDocument(o).toJson(QJsonDocument::Compact));
}

// One accountant: the document, its messages and what it typed without accepting.
struct Contador
{
    struct Pendiente
    {
        qint32 asiento = 0; // 0: an entry never stored, found by its legend
        QString leyenda;
        QString codigo;
        double importe = 0;
    };

    QString nombre;
    int usuario = 0;
    QTemporaryDir carpeta;
    HostDePrueba host;
    MensajesGuionados mensajes;
    std::unique_ptr<lumIngAsiento> doc;
    DatosDocumento datosVigia;
    std::unique_ptr<CambiosAjenos> vigia; // tells the grid of other sessions' writes on demand
    std::optional<Pendiente> pendiente;
};

// One seed's run: a fresh demo database, two documents, the steps and their checks.
class Partida
{
public:
    Partida(Motor motor, unsigned semilla, const QString &texto1956)
        : m_base(motor, BaseDePrueba::Contenido::Demo)
        , m_semilla(semilla)
        , m_azar(semilla)
        , m_texto1956(texto1956)
    {
        m_a.nombre = QStringLiteral("A");
        m_a.usuario = Demo::kUsuarioAdministrador;
        m_b.nombre = QStringLiteral("B");
        m_b.usuario = Demo::kUsuarioContador;
        for (Contador *c : {&m_a, &m_b}) {
            // Answers drawn from a sequence of each accountant's own, so the choice of steps
            // does not shift with the number of questions asked.
            auto respuestas = std::make_shared<std::mt19937>(semilla * 7919u + unsigned(c->usuario));
            c->mensajes.ResponderSiempre(
                [respuestas](ServicioMensajes::Botones b) {
                    const int r = int((*respuestas)() % 10);
                    if (b == ServicioMensajes::Botones::SiNoCancelar)
                        return r < 4 ? ServicioMensajes::Respuesta::Si : r < 7 ? ServicioMensajes::Respuesta::No
                                                                               : ServicioMensajes::Respuesta::Cancelar;
                    if (r < 7)
                        return ServicioMensajes::Respuesta::Si;
                    return b == ServicioMensajes::Botones::SiNo ? ServicioMensajes::Respuesta::No : ServicioMensajes::Respuesta::Cancelar;
                },
                [respuestas]() -> std::optional<double> {
                    const unsigned r = (*respuestas)() % 700;
                    if (r < 50)
                        return std::nullopt;
                    return 38.0 + r / 100.0;
                });
            iniciar(*c);
        }
        // A window a step opens and waits on would stop the run: it is closed and reported.
        m_modales.setInterval(50);
        QObject::connect(&m_modales, &QTimer::timeout, [this] {
            if (QWidget *w = QApplication::activeModalWidget()) {
                m_fallas << QStringLiteral("una ventana modal quedó esperando: %1 \"%2\"")
                                .arg(QString::fromLatin1(w->metaObject()->className()), w->windowTitle());
                w->close();
            }
        });
        m_modales.start();
    }

    // Runs the steps, each checked; stops after the first whose checks failed (already reported).
    void Jugar(int pasos)
    {
        for (int n = 0; Revisar(n) && n < pasos;)
            paso(++n);
    }

private:
    // Steps ------------------------------------------------------------------------------

    int al(int n) { return int(m_azar() % unsigned(n)); }
    bool moneda(int porCiento) { return al(100) < porCiento; }

    // One line of the step being run, numbered by the step.
    void anotar(Contador &c, const QString &texto) { m_pasos << QStringLiteral("%1 %2: %3").arg(m_n).arg(c.nombre, texto); }

    void paso(int n)
    {
        Contador &c = al(2) ? m_b : m_a;
        Contador &otro = &c == &m_a ? m_b : m_a;
        m_n = n;
        m_actor = &c;
        m_abiertos.clear();
        m_mostradosAntes = c.mensajes.mostrados.size();
        m_sellosAntes = sellosEnGrilla(c);
        m_historialAntes = ultimoHistorial();
        m_pendienteAntes = c.pendiente;
        m_leyendaEdicion = editando(c) ? c.doc->campoLeyenda()->text() : QString();
        m_idAntes = editando(c) ? idEditado(c) : -1;
        QApplication::setActiveWindow(c.doc.get());

        const qsizetype lineas = m_pasos.size();
        elegir(c, otro, n);
        // A grid with nothing the step could act on shows another view instead.
        if (m_pasos.size() == lineas)
            cambiarVista(c);
    }

    void elegir(Contador &c, Contador &otro, int n)
    {
        // While an entry is open it is often carried on; anything else leaves it.
        if (editando(c) && moneda(35))
            return seguirEdicion(c, n);
        switch (const int accion = al(16)) {
        case 0: case 1: return nuevo(c, n);
        case 2: case 3:
            if (abrirAlguno(c))
                seguirEdicion(c, n);
            return;
        case 4: case 5: return cambiarCabezal(c, accion == 4);
        case 6:
            if (!editando(c))
                return cambiarVista(c);
            anotar(c, QStringLiteral("Escape"));
            return escape(c);
        case 7: return cambiarVista(c);
        case 8: return cerrar(c);
        case 9: return comando(c, "MnuEdiDelRow", false);
        case 10: return comando(c, "MnuEdiDel", true);
        case 11: return comando(c, moneda(50) ? "MnuEdiCopy" : "MnuEdiASI", true);
        case 12: return comando(c, moneda(75) ? "MnuEdiSaveNormal" : "MnuSaveEnBorrador", true);
        case 13: return comando(c, moneda(50) ? "MnuUnificarTCMC" : "MnuUnificarTCCta", false, true);
        case 14:
            if (!moneda(85))
                return comando(c, "MnuEdiAPA", true);
            [[fallthrough]];
        default: return mostrarDelOtro(c, otro);
        }
    }

    static bool editando(const Contador &c) { return c.doc->FilaEdicion() > 0; }
    static qint32 idEditado(Contador &c)
    {
        const int cabezal = c.doc->asientos().FilaCabezalDe(c.doc->FilaEdicion());
        return cabezal < 0 ? 0 : c.doc->asientos().IdDeFila(cabezal);
    }
    // Where the user's keys go: the focused control of the document, else its grid.
    static QWidget *teclado(Contador &c)
    {
        QWidget *f = foco();
        return f && c.doc->isAncestorOf(f) && f->isEnabled() ? f : static_cast<QWidget *>(c.doc->grid());
    }
    // Escape is the user's way to drop the line being typed: no question is owed for it.
    void escape(Contador &c)
    {
        QTest::keyClick(teclado(c), Qt::Key_Escape);
        QApplication::processEvents();
        c.pendiente.reset();
        m_pendienteAntes.reset();
    }
    static QComboBox *autoriza(Contador &c) { return c.doc->findChild<QComboBox *>(QStringLiteral("cfAutoriza")); }

    // Enter in the amount accepts the line; an entry without an authoriser gets the first,
    // and Enter on the list takes the line.
    void aceptarLinea(Contador &c)
    {
        enter(c.doc->editor()->campo(lumERAsiento::kImporte));
        if (editando(c) && foco() == autoriza(c)) {
            autoriza(c)->setCurrentIndex(0);
            enter(autoriza(c));
        }
        c.pendiente.reset();
    }

    QString importeAlAzar() { return QLocale().toString((1 + al(4000)) + (moneda(30) ? al(100) / 100.0 : 0.0), 'f', 2); }
    const char *cuentaEnPesos()
    {
        static const char *const cuentas[] = {"1.1.01", "4.1.01", "5.3.15", "2.1.01", "1.2.01"};
        return cuentas[al(5)];
    }
    const char *cuentaExtranjera() { return moneda(70) ? "1.1.04" : "1.1.05"; }

    // Types a line in the open edit: an account at one side and an amount; Enter accepts it.
    void linea(Contador &c, const char *codigo, bool debe, const QString &importe, bool aceptar)
    {
        lumERAsiento *e = c.doc->editor();
        anotar(c, QStringLiteral("  línea %1 %2 %3%4").arg(QLatin1String(debe ? "debe" : "haber"), QLatin1String(codigo),
                                                            importe.isEmpty() ? QStringLiteral("(importe propuesto)") : importe,
                                                            QLatin1String(aceptar ? " Enter" : " (sin Enter)")));
        if (!debe) {
            if (!e->campoCuenta(true)->text().isEmpty()) {
                e->campoCuenta(true)->selectAll();
                QTest::keyClick(e->campoCuenta(true), Qt::Key_Backspace);
            }
            enter(e->campoCuenta(true));
        }
        escribir(e->campoCuenta(debe), QString::fromLatin1(codigo));
        enter(e->campoCuenta(debe));
        if (!editando(c))
            return;
        if (!importe.isEmpty())
            escribir(e->campo(lumERAsiento::kImporte), importe);
        if (aceptar) {
            aceptarLinea(c);
            return;
        }
        // What the amount field holds: the proposed difference when nothing was typed.
        const double enCampo = QLocale().toDouble(e->campo(lumERAsiento::kImporte)->text());
        if (enCampo != 0)
            c.pendiente = Contador::Pendiente{idEditado(c), c.doc->campoLeyenda()->text(), QString::fromLatin1(codigo), enCampo};
    }

    // Lines of a new or open entry: balanced in pesos, balanced with a foreign line, or
    // unbalanced; the last one is sometimes left typed without Enter.
    void lineas(Contador &c)
    {
        const bool sinEnter = moneda(30);
        const QString importe = importeAlAzar();
        switch (al(3)) {
        case 0:
            linea(c, cuentaEnPesos(), true, importe, true);
            if (editando(c))
                linea(c, cuentaEnPesos(), false, importe, !sinEnter);
            break;
        case 1: {
            // The other side in pesos takes the proposed difference, what the foreign line is worth.
            const bool debe = moneda(50);
            linea(c, cuentaExtranjera(), debe, QLocale().toString(1 + al(300)), true);
            if (editando(c))
                linea(c, cuentaEnPesos(), !debe, QString(), !sinEnter);
            break;
        }
        default:
            linea(c, cuentaEnPesos(), moneda(50), importe, !sinEnter);
            break;
        }
    }

    void nuevo(Contador &c, int n)
    {
        anotar(c, QStringLiteral("Ctrl+N"));
        QTest::keyClick(teclado(c), Qt::Key_N, Qt::ControlModifier);
        if (!editando(c) || foco() != c.doc->campoFecha())
            return;
        enter(c.doc->campoFecha());
        enter(c.doc->listaLibros());
        const QString leyenda = QStringLiteral("Azar %1-%2").arg(m_semilla).arg(n);
        anotar(c, QStringLiteral("  leyenda \"%1\"").arg(leyenda));
        escribir(c.doc->campoLeyenda(), leyenda);
        enter(c.doc->campoLeyenda());
        if (foco() == autoriza(c)) {
            autoriza(c)->setCurrentIndex(0);
            enter(autoriza(c));
        }
        lineas(c);
    }

    // Opens a stored entry of the grid as a user does: a click on it ends an open edit
    // first, then Enter on its row. Answers the entry, 0 when none was opened.
    qint32 abrirAlguno(Contador &c)
    {
        QList<int> filas = FilasCabezal(*c.doc);
        if (filas.isEmpty())
            return 0;
        const qint32 id = c.doc->asientos().IdDeFila(filas[al(int(filas.size()))]);
        anotar(c, QStringLiteral("abre el asiento %1").arg(id));
        if (editando(c)) {
            const QModelIndex celda = c.doc->grid()->model()->index(c.doc->FilaDeAsiento(id) - c.doc->grilla().FilasFijas(), 1);
            c.doc->grid()->scrollTo(celda);
            QTest::mouseClick(c.doc->grid()->viewport(), Qt::LeftButton, {}, c.doc->grid()->visualRect(celda).center());
            if (editando(c)) {
                anotar(c, QStringLiteral("  (el clic no terminó la edición)"));
                return 0;
            }
        }
        const int fila = c.doc->FilaDeAsiento(id);
        if (fila < 0)
            return 0;
        m_abiertos << id;
        c.doc->grid()->FijarFilaActual(fila + (moneda(50) ? 1 : 0));
        c.doc->grid()->setFocus();
        enter(c.doc->grid());
        return editando(c) ? id : 0;
    }

    // Carries on with the open entry: a new amount, a legend, lines, or Enter as it is.
    void seguirEdicion(Contador &c, int n)
    {
        switch (al(5)) {
        case 0: {
            // The account shown is "code - name": the code is what the database is asked for.
            const QString importe = importeAlAzar();
            lumERAsiento *e = c.doc->editor();
            const QString codigo = e->campoCuenta(e->CuentaIngresadaAlDebe())->text().section(QLatin1Char(' '), 0, 0);
            anotar(c, QStringLiteral("  importe %1 (sin Enter)").arg(importe));
            escribir(e->campo(lumERAsiento::kImporte), importe);
            if (!codigo.isEmpty())
                c.pendiente = Contador::Pendiente{idEditado(c), c.doc->campoLeyenda()->text(), codigo, QLocale().toDouble(importe)};
            break;
        }
        case 1:
            anotar(c, QStringLiteral("  importe nuevo y Enter"));
            escribir(c.doc->editor()->campo(lumERAsiento::kImporte), importeAlAzar());
            return aceptarLinea(c);
        case 2: {
            const QString leyenda = QStringLiteral("Cambiada %1-%2").arg(m_semilla).arg(n);
            anotar(c, QStringLiteral("  leyenda \"%1\" y Enter en el importe").arg(leyenda));
            escribir(c.doc->campoLeyenda(), leyenda);
            m_leyendaEdicion = leyenda;
            // The line typed before is looked for under the entry's new legend.
            if (c.pendiente)
                c.pendiente->leyenda = leyenda;
            if (m_pendienteAntes)
                m_pendienteAntes->leyenda = leyenda;
            aceptarLinea(c);
            break;
        }
        case 3:
            anotar(c, QStringLiteral("  Enter en el importe"));
            return aceptarLinea(c);
        default:
            anotar(c, QStringLiteral("  líneas nuevas"));
            if (c.doc->editor()->campoCuenta(true)->text().isEmpty() && c.doc->editor()->campoCuenta(false)->text().isEmpty())
                return lineas(c);
            return aceptarLinea(c);
        }
    }

    // A new date or book in an entry's header, accepted with Enter in the amount or left
    // with Escape.
    void cambiarCabezal(Contador &c, bool fecha)
    {
        if (!editando(c) && !abrirAlguno(c))
            return;
        if (fecha) {
            const QDate d = BaseDePrueba::Hoy().addDays(-al(12));
            anotar(c, QStringLiteral("  fecha %1").arg(d.toString(QStringLiteral("dd MM yyyy"))));
            c.doc->campoFecha()->setFocus();
            escribir(c.doc->campoFecha(), d.toString(QStringLiteral("dd MM yyyy")));
            enter(c.doc->campoFecha());
        } else {
            QComboBox *libros = c.doc->listaLibros();
            if (libros->count() > 1 && libros->isEnabled()) {
                const int i = al(libros->count());
                anotar(c, QStringLiteral("  libro \"%1\"").arg(libros->itemText(i)));
                libros->setFocus();
                libros->setCurrentIndex(i);
                enter(libros);
            }
        }
        if (!editando(c))
            return;
        const bool aceptar = moneda(50);
        anotar(c, QLatin1String(aceptar ? "  Enter en el importe" : "  Escape"));
        aceptar ? aceptarLinea(c) : escape(c);
    }

    // A link of the document's top bar, clicked: it ends an open edit and shows its menu.
    void clicEnlace(Contador &c, const char *enlace)
    {
        QTest::mouseClick(c.doc->findChild<QWidget *>(QString::fromLatin1(enlace)), Qt::LeftButton);
    }
    // The item of the menu shown, chosen; the menu closes.
    static void elegirItem(QAction *item)
    {
        item->trigger();
        if (QWidget *menu = QApplication::activePopupWidget())
            menu->close();
        QApplication::processEvents();
    }

    void cambiarVista(Contador &c)
    {
        static const int vistas[] = {Vista::kRecienIngresados, Vista::kUltimos10, Vista::kHoy, Vista::kUltimos15Dias, Vista::kPrimerMes,
                                     Vista::kPrimerMes + 1};
        const int v = vistas[al(6)];
        anotar(c, QStringLiteral("Ver > vista %1").arg(v));
        clicEnlace(c, "hlCargar");
        const MenusDocumento &m = c.doc->menus();
        elegirItem(v >= Vista::kPrimerMes ? m.MnuViewMItem[v - Vista::kPrimerMes] : m.MnuVieitem[v]);
    }

    void cerrar(Contador &c)
    {
        anotar(c, QStringLiteral("cierra el documento y lo abre de nuevo"));
        c.vigia.reset();
        c.doc.reset();
        iniciar(c);
    }

    void iniciar(Contador &c)
    {
        c.doc = DocumentoIniciado(m_base, c.host, c.mensajes, m_busqueda, c.carpeta, c.usuario);
        EXPECT_EQ(c.doc->estado(), lumIngAsiento::Estado::Listo);
        PrepararDatosDocumento(c.datosVigia, m_base.conexion(), c.mensajes);
        c.vigia = std::make_unique<CambiosAjenos>(c.datosVigia, c.doc->asientos(), CambiosAjenos::FilasVisibles{});
        c.pendiente.reset();
    }

    // An entry command of its menu: on a row of an entry (its header row or one of its
    // lines) chosen first, or with an entry open, from the menu (the link ends the edit)
    // or, as the document also allows, with the edit still open.
    void comando(Contador &c, const char *accion, bool enCabezal, bool soloExtranjeras = false)
    {
        const char *enlace = qstrcmp(accion, "MnuSaveEnBorrador") == 0 ? "hlOpSave" : "hlRegistro";
        if (!editando(c)) {
            QList<int> filas = FilasCabezal(*c.doc);
            if (soloExtranjeras)
                filas.removeIf([&](int r) { return !conMonedaExtranjera(c, r); });
            if (filas.isEmpty())
                return;
            const int cabezal = filas[al(int(filas.size()))];
            const int fila = enCabezal ? cabezal : cabezal + 1 + al(std::max(1, c.doc->asientos().UltimaFilaAsiento(cabezal) - cabezal));
            c.doc->grid()->FijarFilaActual(fila);
            anotar(c, QStringLiteral("%1 en la fila %2 del asiento %3").arg(QLatin1String(accion)).arg(fila).arg(c.doc->asientos().IdDeFila(cabezal)));
            clicEnlace(c, enlace);
        } else if (moneda(50)) {
            anotar(c, QStringLiteral("%1 con el asiento %2 abierto, desde el menú").arg(QLatin1String(accion)).arg(idEditado(c)));
            clicEnlace(c, enlace);
        } else {
            anotar(c, QStringLiteral("%1 con el asiento %2 abierto").arg(QLatin1String(accion)).arg(idEditado(c)));
        }
        elegirItem(c.doc->menus().accion(QString::fromLatin1(accion)));
    }

    static bool conMonedaExtranjera(Contador &c, int cabezal)
    {
        AsientosGrilla &a = c.doc->asientos();
        for (int r = cabezal + 1; r <= a.UltimaFilaAsiento(cabezal); ++r)
            if (!a.EsFilaDiferencia(r) && a.LineaDeFila(r).iMon > Demo::kMonedaPesos)
                return true;
        return false;
    }

    // The entry the other accountant has current, also shown at the end of this grid.
    void mostrarDelOtro(Contador &c, Contador &otro)
    {
        if (editando(c))
            return cambiarVista(c);
        const int cabezal = otro.doc->asientos().FilaCabezalDe(otro.doc->grid()->FilaActual());
        QList<int> filas = FilasCabezal(*otro.doc);
        const qint32 id = cabezal >= 0 && otro.doc->asientos().IdDeFila(cabezal) > 0 ? otro.doc->asientos().IdDeFila(cabezal)
                          : filas.isEmpty()                                          ? 0
                                                                                     : otro.doc->asientos().IdDeFila(filas[al(int(filas.size()))]);
        if (id <= 0 || c.doc->FilaDeAsiento(id) >= 0)
            return cambiarVista(c);
        anotar(c, QStringLiteral("muestra el asiento %1 del otro").arg(id));
        EXPECT_FALSE(CargarAsientoEnGrilla(c.doc->asientos(), *c.doc->proceso().conexion, id, c.doc->grilla().Filas() - 1));
    }

    // Checks -----------------------------------------------------------------------------

    QHash<qint32, QString> sellosEnGrilla(Contador &c)
    {
        QHash<qint32, QString> sellos;
        for (int r : FilasCabezal(*c.doc))
            sellos.insert(c.doc->asientos().IdDeFila(r), c.doc->grilla().Dato(r, 4).toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")));
        return sellos;
    }

    qint64 ultimoHistorial() { return m_base.Valor(QStringLiteral("Select Max(HisID) From cceAsientosHistorial")).toLongLong(); }

    bool Revisar(int n)
    {
        for (int i = 0; i < 3; ++i)
            QApplication::processEvents();
        const bool falloAntes = ::testing::Test::HasFailure();
        revisarRegistrados();
        if (n > 0) {
            revisarHistorial();
            revisarEscrito();
        }
        for (Contador *c : {&m_a, &m_b})
            revisarGrilla(*c);
        if (m_fallas.isEmpty() && (falloAntes || !::testing::Test::HasFailure()))
            return true;
        if (m_fallas.isEmpty())
            m_fallas << QStringLiteral("(el fallo de arriba)");
        if (m_actor && m_actor->mensajes.mostrados.size() > m_mostradosAntes)
            m_fallas << QStringLiteral("%1 vio en el paso: %2").arg(m_actor->nombre, m_actor->mensajes.mostrados.mid(m_mostradosAntes).join(QStringLiteral(" / ")));
        ADD_FAILURE() << "semilla " << m_semilla << ", paso " << n << ":\n  " << m_fallas.join(QStringLiteral("\n  ")).toStdString()
                      << "\nPara repetirla: ASIENTOS_ALEATORIO_SEMILLA=" << m_semilla << " ASIENTOS_ALEATORIO_PASOS=" << n
                      << "\nPasos:\n" << m_pasos.join(QLatin1Char('\n')).toStdString();
        return false;
    }

    // 1. A registered entry balances in the accounting currency, with a line at each side.
    void revisarRegistrados()
    {
        const auto sumas = SumasPorAsiento(m_base.conexion(), Demo::kEmpresa, EstadoAsiento::kRegistrado);
        for (auto it = sumas.cbegin(); it != sumas.cend(); ++it)
            if (!it->Balancea(2))
                m_fallas << QStringLiteral("el asiento registrado %1 no balancea: debe %2, haber %3 (diezmilésimos), %4 líneas al debe y %5 al haber")
                                .arg(it.key()).arg(it->debe).arg(it->haber).arg(it->lineasDebe).arg(it->lineasHaber);
    }

    // 2. No stale copy is written over a newer entry. Each history row of the step is the
    // acting accountant's; the first write of an entry starts from the copy that document
    // held, unless the step read the entry again (opening an entry reads it, and so does
    // ending its edit); and each entry's rows still chain, one row per committed write, up
    // to the entry as stored.
    void revisarHistorial()
    {
        QSet<qint32> releidos = m_abiertos;
        if (m_idAntes > 0 && !(m_actor->doc && editando(*m_actor) && idEditado(*m_actor) == m_idAntes))
            releidos.insert(m_idAntes);
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select HisID, HisAsiento, HisUsuario, HisAntes From cceAsientosHistorial"
                                                         " Where HisID > ? Order By HisID"),
                                          {m_historialAntes});
        QSet<qint32> tocados;
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            const qint32 id = qint32(rs->Entero(QStringLiteral("HisAsiento")));
            const qint64 usuario = rs->EsNulo(QStringLiteral("HisUsuario")) ? 0 : rs->Entero(QStringLiteral("HisUsuario"));
            if (usuario != m_actor->usuario)
                m_fallas << QStringLiteral("el asiento %1 quedó escrito por el usuario %2 en un paso de %3").arg(id).arg(usuario).arg(m_actor->nombre);
            if (tocados.contains(id))
                continue;
            tocados.insert(id);
            const QJsonObject antes = QJsonDocument::fromJson(rs->Campo(QStringLiteral("HisAntes")).toString().toUtf8()).object();
            const QString leido = m_sellosAntes.value(id);
            const QString guardado = antes.value(QStringLiteral("FechaModificado")).toString();
            if (!antes.isEmpty() && !leido.isEmpty() && leido != guardado && !releidos.contains(id))
                m_fallas << QStringLiteral("%1 escribió el asiento %2 desde la copia de %3 sobre la guardada de %4")
                                .arg(m_actor->nombre).arg(id).arg(leido, guardado);
        }
        rs->Cerrar();
        const QHash<qint32, int> filas = FilasHistorialPorAsiento(m_base.conexion());
        for (qint32 id : std::as_const(tocados)) {
            const QList<HistorialAsiento::Fila> h = HistorialAsiento::Leer(m_base.conexion(), id);
            if (h.size() != filas.value(id))
                m_fallas << QStringLiteral("el historial del asiento %1 se lee con %2 filas de %3").arg(id).arg(h.size()).arg(filas.value(id));
            for (int i = 1; i < h.size(); ++i)
                if (enTexto(h[i].antes) != enTexto(h[i - 1].despues))
                    m_fallas << QStringLiteral("el asiento %1 cambió sin fila de historial entre la %2 y la %3:\n    %4\n    %5")
                                    .arg(id).arg(i).arg(i + 1).arg(enTexto(h[i - 1].despues), enTexto(h[i].antes));
            const QJsonObject ahora = HistorialAsiento::LeerGuardado(m_base.conexion(), id);
            if (!h.isEmpty() && enTexto(h.last().despues) != enTexto(ahora))
                m_fallas << QStringLiteral("el asiento %1 no es el de su última fila de historial:\n    %2\n    %3")
                                .arg(id).arg(enTexto(h.last().despues), enTexto(ahora));
        }
    }

    // 3. A line typed and not accepted is stored when the edit ends, or the user is asked
    // (question 1956) or told the write failed.
    void revisarEscrito()
    {
        Contador &c = *m_actor;
        if (!m_pendienteAntes)
            return;
        const Contador::Pendiente p = *m_pendienteAntes;
        const bool sigue = c.doc && editando(c) && idEditado(c) == m_idAntes && c.doc->campoLeyenda()->text() == m_leyendaEdicion;
        if (sigue)
            return;
        c.pendiente.reset();
        const QStringList dichos = c.mensajes.mostrados.mid(m_mostradosAntes);
        const bool preguntado = !m_texto1956.isEmpty() && dichos.contains(QStringLiteral("pregunta: ") + m_texto1956);
        const bool error = std::any_of(dichos.cbegin(), dichos.cend(), [](const QString &t) { return t.startsWith(QLatin1String("error: ")); });
        if (preguntado || error)
            return;
        const qint32 id = p.asiento > 0 ? p.asiento
                                        : m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos Where AsiLeyenda = ?"), {p.leyenda}).toInt();
        if (m_base.Valor(QStringLiteral("Select Count(*) From cceAsientoCuenta INNER JOIN cceCuentas ON CueID = ACuCuenta"
                                        " Where ACuIDAsiento = ? And CueCodigo = ? And Abs(Coalesce(ACuDebe, AcuHaber) - ?) < 0.005"),
                         {id, p.codigo, p.importe}).toInt() == 0)
            m_fallas << QStringLiteral("la línea %1 %2 escrita sin Enter en el asiento %3 (\"%4\") se perdió sin preguntar")
                            .arg(p.codigo).arg(p.importe).arg(id).arg(p.leyenda);
    }

    // 2. Every stored entry a document shows, once the document has been told of other
    // sessions' writes, is marked as changed or is the entry as stored: state, date, book,
    // stamp and lines (account, side, amount in the accounting currency).
    void revisarGrilla(Contador &c)
    {
        AsientosGrilla &a = c.doc->asientos();
        Grilla &g = c.doc->grilla();
        c.vigia->Revisar(FilasCabezal(*c.doc));
        const int editado = editando(c) ? a.FilaCabezalDe(c.doc->FilaEdicion()) : -1;
        // The header, then the lines in sorted order, written alike from the grid and the database.
        auto cabezal = [](qint64 estado, const QDate &fecha, qint64 libro, const QDateTime &sello) {
            return QStringLiteral("%1|%2|%3|%4").arg(estado).arg(fecha.toString(Qt::ISODate)).arg(libro).arg(sello.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")));
        };
        auto linea = [](qint64 cuenta, bool debe, const Importe &mc) {
            return QStringLiteral("%1|%2|%3").arg(cuenta).arg(QLatin1String(debe ? "D" : "H")).arg(mc.aTexto());
        };
        QHash<qint32, QStringList> vistos, guardados;
        QHash<qint32, QString> imagenes;
        for (int r : FilasCabezal(*c.doc)) {
            if (r == editado || g.Imagen(r) == QLatin1String(CambiosAjenos::kImagen))
                continue;
            QStringList &v = vistos[a.IdDeFila(r)];
            for (int l = r + 1; l <= a.UltimaFilaAsiento(r); ++l) {
                if (a.EsFilaDiferencia(l) || g.Dato(l, 1).toString().isEmpty())
                    continue;
                const RegistroLinea rl = a.LineaDeFila(l);
                v << linea(rl.lCta, rl.bEsAlDebe, rl.dImporteMC);
            }
            v.sort();
            v.prepend(cabezal(g.Dato(r, 3).toInt(), g.Dato(r, 2).toDate(), a.LibroDeFila(r), g.Dato(r, 4).toDateTime()));
            imagenes.insert(a.IdDeFila(r), g.Imagen(r));
        }
        if (vistos.isEmpty())
            return;
        QStringList lista;
        for (qint32 id : vistos.keys())
            lista << QString::number(id);
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiID, AsiEstado, AsiFechaAsiento, Coalesce(AsiTipo, 0) As Libro, AsiFechaModificado,"
                                                         " ACuCuenta, AcuHaber, ACuImporteMC From cceAsientos Left Join cceAsientoCuenta"
                                                         " On ACuIDAsiento = AsiID Where AsiID In (%1)").arg(lista.join(QLatin1Char(','))));
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            QStringList &b = guardados[qint32(rs->Entero(QStringLiteral("AsiID")))];
            if (b.isEmpty())
                b << cabezal(rs->Entero(QStringLiteral("AsiEstado")), rs->Fecha(QStringLiteral("AsiFechaAsiento")), rs->Entero(QStringLiteral("Libro")),
                             rs->FechaHora(QStringLiteral("AsiFechaModificado")));
            if (!rs->EsNulo(QStringLiteral("ACuCuenta")))
                b << linea(rs->Entero(QStringLiteral("ACuCuenta")), rs->EsNulo(QStringLiteral("AcuHaber")),
                           Importe::DesdeDouble(rs->Numero(QStringLiteral("ACuImporteMC"))));
        }
        rs->Cerrar();
        for (auto it = vistos.cbegin(); it != vistos.cend(); ++it) {
            QStringList enBase = guardados.value(it.key());
            if (!enBase.isEmpty())
                std::sort(enBase.begin() + 1, enBase.end());
            if (enBase != it.value())
                m_fallas << QStringLiteral("%1 muestra el asiento %2 sin marca (imagen \"%6\") y distinto del guardado:\n    grilla %3\n    base   %4\n    historial %5")
                                .arg(c.nombre).arg(it.key()).arg(it.value().join(QLatin1Char(' ')), enBase.join(QLatin1Char(' ')),
                                                                 Operaciones(m_base.conexion(), it.key(), true).join(QLatin1Char(' ')), imagenes.value(it.key()));
        }
    }

    BaseDePrueba m_base;
    unsigned m_semilla;
    std::mt19937 m_azar;
    QString m_texto1956;
    BusquedaExacta m_busqueda;
    Contador m_a;
    Contador m_b;
    QTimer m_modales;
    QStringList m_pasos;
    QStringList m_fallas;

    // What the step started from.
    int m_n = 0;
    Contador *m_actor = nullptr;
    QSet<qint32> m_abiertos; // entries the step opened (opening reads a changed entry again)
    qsizetype m_mostradosAntes = 0;
    QHash<qint32, QString> m_sellosAntes;
    qint64 m_historialAntes = 0;
    std::optional<Contador::Pendiente> m_pendienteAntes;
    QString m_leyendaEdicion; // of the entry open at the start, as this step left it
    qint32 m_idAntes = -1;
};

using Aleatorio = ::testing::TestWithParam<Motor>;

TEST_P(Aleatorio, DosContadoresAlAzarNoRompenLosLibros)
{
    QList<unsigned> semillas(std::begin(kSemillas), std::end(kSemillas));
    if (qEnvironmentVariableIsSet("ASIENTOS_ALEATORIO_SEMILLA"))
        semillas = {unsigned(qEnvironmentVariableIntValue("ASIENTOS_ALEATORIO_SEMILLA"))};
    const int pasos = qEnvironmentVariableIsSet("ASIENTOS_ALEATORIO_PASOS") ? qEnvironmentVariableIntValue("ASIENTOS_ALEATORIO_PASOS") : kPasos;

    // The question about a typed line not accepted.
    QString texto1956;
    if (const auto catalogo = ComponenteIdioma::Crear(QStringLiteral("LNG_TCO_001.clsResources")))
        catalogo->resLoad(1956, texto1956);
    ASSERT_FALSE(texto1956.isEmpty());

    for (unsigned semilla : semillas) {
        Partida partida(GetParam(), semilla, texto1956);
        partida.Jugar(pasos);
    }
}

INSTANCIAR_EN_MOTORES(Aleatorio);

} // namespace
