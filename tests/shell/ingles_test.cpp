#include "escenario.h"

#include "comun/archivosleidos.h"

#include "comun/dialogos.h"
#include "dialogs/busquedacuentasqt.h"
#include "dialogs/gestorlibros.h"
#include "frequent/movimientosfrecuentes.h"
#include "frequent/registrofrecuentes.h"
#include "search/frmfind.h"
#include "editing/cambiosajenos.h"
#include "shell/comandoshost.h"
#include "shell/dialogohistorial.h"
#include "shell/dialogopapelera.h"
#include "shell/pvprevia.h"

#include <QAbstractButton>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTableWidget>
#include <QTextDocument>
#include <QToolButton>
#include <QTreeWidget>

namespace {

QHash<int, QString> catalogo(const char *nombre)
{
    QFile f(QStringLiteral(":/lang/%1.txt").arg(QLatin1String(nombre)));
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << nombre;
    return ComponenteIdioma::LeerCatalogo(f.readAll());
}

// A text as a screen shows it or a screen reader says it: no accelerator mark, no trailing
// colon, no markup.
QString comoSeVe(QString t)
{
    static const QRegularExpression marcado(QStringLiteral("<[^>]*>"));
    t.remove(marcado).remove(QLatin1Char('&'));
    t = t.trimmed();
    if (t.endsWith(QLatin1Char(':')))
        t.chop(1);
    return t.trimmed();
}

// Every text a user meets in the windows walked, each with the widget that carries it; the
// faults are the texts that only the Spanish catalogue has, or that hold a Spanish word.
class Recorrido
{
public:
    Recorrido()
    {
        const auto es = catalogo("LNG_TCO_001");
        const auto en = catalogo("LNG_TCO_002");
        QSet<QString> ingles;
        for (const QString &t : en)
            ingles.insert(comoSeVe(t));
        for (const QString &t : es)
            if (const QString v = comoSeVe(t); !v.isEmpty() && !ingles.contains(v))
                m_soloEspanol.insert(v);
    }

    void texto(const QString &donde, const QString &t)
    {
        const QString v = comoSeVe(t);
        if (v.isEmpty())
            return;
        static const QRegularExpression palabras(
            QStringLiteral("\\b(Asientos?|Cuentas?|Buscar|Ayuda|Grabar|Historial|Libros?|Leyenda|Fecha|Cancelar|Aceptar|Debe|"
                           "Haber|Papelera|Restaurar|Cerrar|Borrador|Estado|Nombre|Importe|Moneda|Usuario|Eliminar|Agregar|"
                           "Registrar|Guardar|Cambios|Barra|Tasa|Unificar|Línea|Página|Atención|Modificado|Eliminado|"
                           "Enviado|Alta|Cambio|Deshecho|Restauración|Registrado|ninguno|nada|por|el|la|las|los|del|se|"
                           "una)\\b"),
            QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
        if (m_soloEspanol.contains(v) || palabras.match(v).hasMatch())
            fallas << donde + QStringLiteral(": ") + v;
    }

    void ventana(QWidget *raiz, const QString &nombre)
    {
        QList<QWidget *> todos{raiz};
        todos += raiz->findChildren<QWidget *>();
        for (QWidget *w : todos) {
            const QString donde = nombre + QLatin1Char('/') + (w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className())
                                                                                       : w->objectName());
            if (w->isWindow())
                texto(donde + QStringLiteral(" título"), w->windowTitle());
            texto(donde + QStringLiteral(" sugerencia"), w->toolTip());
            texto(donde + QStringLiteral(" nombre accesible"), w->accessibleName());
            texto(donde + QStringLiteral(" descripción accesible"), w->accessibleDescription());
            if (auto *l = qobject_cast<QLabel *>(w))
                texto(donde, l->text());
            else if (auto *b = qobject_cast<QAbstractButton *>(w))
                texto(donde, b->text());
            else if (auto *e = qobject_cast<QLineEdit *>(w))
                texto(donde + QStringLiteral(" indicación"), e->placeholderText());
            else if (auto *c = qobject_cast<QComboBox *>(w); c && !kListasDeDatos.contains(c->objectName()))
                for (int i = 0; i < c->count(); ++i)
                    texto(donde + QStringLiteral(" opción"), c->itemText(i));
            else if (auto *m = qobject_cast<QMenu *>(w))
                menu(m, donde);
            if (auto *a = qobject_cast<QTreeWidget *>(w)) {
                // Headers, and the marks of the columns without one (a closed account, a book
                // of the system); the other cells are the company's data.
                QTreeWidgetItem *h = a->headerItem();
                for (int c = 0; c < a->columnCount(); ++c) {
                    texto(donde + QStringLiteral(" columna"), h->text(c));
                    if (h->text(c).isEmpty())
                        for (int i = 0; i < a->topLevelItemCount(); ++i)
                            texto(donde + QStringLiteral(" marca"), a->topLevelItem(i)->text(c));
                }
            }
            if (auto *t = qobject_cast<QTableWidget *>(w))
                for (int c = 0; c < t->columnCount(); ++c)
                    if (t->horizontalHeaderItem(c))
                        texto(donde + QStringLiteral(" columna"), t->horizontalHeaderItem(c)->text());
        }
    }

    void menu(QMenu *m, const QString &donde)
    {
        texto(donde + QStringLiteral(" título"), m->title());
        for (QAction *a : m->actions()) {
            // The recent frequent entries are named by the user.
            if (a->isSeparator() || a->objectName() == QLatin1String("MnuAFrRecientes"))
                continue;
            texto(donde + QLatin1Char('/') + a->objectName(), a->text());
            if (a->menu())
                menu(a->menu(), donde + QLatin1Char('/') + a->menu()->objectName());
        }
    }

    // Every line of a text shown whole (a page, a detail pane, a tooltip).
    void lineas(const QString &donde, const QString &t)
    {
        for (const QString &l : t.split(QRegularExpression(QStringLiteral("[\r\n\f]"))))
            texto(donde, l);
    }

    QStringList fallas;

private:
    // Lists the company fills: its books, projects, departments, currencies, authorisers.
    inline static const QSet<QString> kListasDeDatos{QStringLiteral("cfLibro"), QStringLiteral("cfProyecto"),
                                                     QStringLiteral("cfDepartamento"), QStringLiteral("cfMoneda"),
                                                     QStringLiteral("cfAutoriza")};
    QSet<QString> m_soloEspanol;
};


// The text of the help page a help address opens in the language held.
QString TextoAyuda(const QString &direccion)
{
    QFile f(ComandoHost::RecursoAyuda(ComandoHost::PaginaAyuda(direccion), Idioma::Numero()));
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << f.fileName().toStdString();
    QTextDocument pagina;
    pagina.setHtml(QString::fromUtf8(f.readAll()));
    return pagina.toPlainText();
}

class EnIngles : public Escenario
{
protected:
    void SetUp() override
    {
        // The document of the fixture starts again with the English texts.
        m_doc.reset();
        m_mensajes.mostrados.clear();
        QSettings(m_carpeta.filePath(QStringLiteral("a.ini")), QSettings::IniFormat).setValue(QStringLiteral("LUM01/Idioma"),
                                                                                               QStringLiteral("2"));
        reiniciar();
    }
};

// Every window the document opens without a user, walked in English: no text of the screen,
// its menus, its dialogs or its messages is left in Spanish.
TEST_P(EnIngles, NingunTextoQuedaEnEspanol)
{
    ASSERT_EQ(Idioma::resLoad(0), QStringLiteral("Journal Entries"));
    Recorrido r;
    auto enVentana = [&r](const char *nombre) { return [&r, nombre](QWidget &d) { r.ventana(&d, QString::fromUtf8(nombre)); }; };

    // An entry stored and then changed by another session, current in the grid: its history
    // has rows, and the commands that act on an entry are enabled.
    vista(Vista::kPrimerMes);
    const qint32 id = asientoAlFinal(1, QStringLiteral("Compra"), {{"5.1.01", true, 100}, {"1.1.01", false, 100}}, 1);
    otroCambia(id, QStringLiteral("Compra con flete"));
    // Another one the other session sends to the trash.
    const qint32 tirado = asientoAlFinal(1, QStringLiteral("Venta"), {{"1.1.01", true, 50}, {"4.1.01", false, 50}}, 1);
    {
        AsientoDatos otro(m_base.conexion());
        otro.FijarUsuario(Demo::kUsuarioContador);
        ASSERT_TRUE(Bien(otro.CargarAsiento(tirado)));
        ASSERT_FALSE(otro.EnviarPapelera(tirado, otro.Cabezal().FechaModificado));
    }
    m_doc->grid()->FijarFilaActual(filaDe(id));
    r.ventana(m_doc.get(), QStringLiteral("documento"));

    // The marks of the other session's writes say who did what, in the rows' tooltips.
    // (Shown on screen: the entries in view are the ones looked at.)
    for (const qint32 otro : {tirado, id}) {
        m_doc->grid()->FijarFilaActual(filaDe(otro));
        ASSERT_TRUE(QTest::qWaitFor([&] { return m_doc->grilla().Imagen(filaDe(otro)) == QLatin1String(CambiosAjenos::kImagen); }, 5000));
        const QAbstractItemModel *m = m_doc->grid()->model();
        const QString aviso = m->data(m->index(filaDe(otro) - m_doc->grilla().FilasFijas(), 0), Qt::ToolTipRole).toString();
        EXPECT_FALSE(aviso.isEmpty());
        r.texto(QStringLiteral("aviso de otro usuario"), aviso);
    }

    // The pages printed: the foot of each.
    const QString pdf = m_carpeta.filePath(QStringLiteral("ingles.pdf"));
    m_doc->previa()->FijarSalidaPDF(pdf);
    elegir("MnuPriPrint");
    const QStringList paginas = TextoPDF(pdf).split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_FALSE(paginas.isEmpty());
    for (const QString &pagina : paginas) {
        const QStringList filas = pagina.trimmed().split(QLatin1Char('\n'));
        EXPECT_TRUE(filas.last().contains(QString::number(paginas.size()))) << filas.last().toStdString();
        r.texto(QStringLiteral("pie de página"), filas.last());
    }

    // The help of the screen (F1), as the host opens it.
    m_host.comandos.clear();
    m_doc->grid()->setFocus();
    QTest::keyClick(m_doc->grid(), Qt::Key_F1);
    QApplication::processEvents();

    // The search dialog, and its help button.
    EXPECT_EQ(ConDialogo<frmFind>([&] { m_doc->findChild<QToolButton *>(QStringLiteral("hlFind"))->click(); },
                                  [&r](frmFind &d) {
                                      r.ventana(&d, QStringLiteral("búsqueda"));
                                      d.findChild<QPushButton *>(QStringLiteral("bfHelp"))->click();
                                  }),
              1);
    ASSERT_EQ(m_host.comandos, (QStringList{ComandoHost::kAyudaIngreso, ComandoHost::kAyudaBusqueda}));
    for (const QString &direccion : m_host.comandos)
        r.lineas(QStringLiteral("ayuda ") + ComandoHost::PaginaAyuda(direccion), TextoAyuda(direccion));
    r.lineas(QStringLiteral("ayuda de saldos iniciales"), TextoAyuda(ComandoHost::kAyudaSaldosIniciales));
    // The frequent entries' dialogs open once the menu is over.
    auto diferido = [&](const char *accion) {
        return [&, accion] {
            elegir(accion);
            QTest::qWaitFor([&] { return m_doc->ComandoDiferido().isEmpty(); });
        };
    };
    EXPECT_EQ(ConDialogo<RegistroFrecuentes>(diferido("MnuAFrRegistrar"), enVentana("registro de frecuentes")), 1);
    EXPECT_EQ(ConDialogo<MovimientosFrecuentes>(diferido("MnuAFrNew"), enVentana("asiento frecuente")), 1);
    EXPECT_EQ(ConDialogo<GestorLibros>([&] { elegir("MnuEdiLibro"); }, enVentana("libros")), 1);

    m_doc->grid()->FijarFilaActual(filaDe(id));
    elegir("MnuEdiHistorial");
    auto *historial = m_doc->findChild<DialogoHistorial *>();
    ASSERT_NE(historial, nullptr);
    r.ventana(historial, QStringLiteral("historial"));
    // Each write: its kind, its changes, and the entry before and after it (the time and the
    // user's name are the company's).
    auto *escrituras = historial->findChild<QTableWidget *>(QStringLiteral("tablaHistorial"));
    auto *detalle = historial->findChild<QPlainTextEdit *>(QStringLiteral("detalleHistorial"));
    ASSERT_EQ(escrituras->rowCount(), 2);
    for (int i = 0; i < escrituras->rowCount(); ++i) {
        escrituras->setCurrentCell(i, 0);
        for (int c = 2; c < escrituras->columnCount(); ++c)
            r.texto(QStringLiteral("historial/escritura %1").arg(i), escrituras->item(i, c)->text());
        EXPECT_FALSE(detalle->toPlainText().isEmpty());
        r.lineas(QStringLiteral("historial/detalle %1").arg(i), detalle->toPlainText());
    }
    elegir("MnuViePapelera");
    auto *papelera = m_doc->findChild<DialogoPapelera *>();
    ASSERT_NE(papelera, nullptr);
    r.ventana(papelera, QStringLiteral("papelera"));

    BusquedaCuentasQt cuentas([](int n) { return Idioma::resLoad(n - 1000); });
    CuentaElegida elegida;
    EXPECT_EQ(ConDialogo<QDialog>([&] { (void)cuentas.Buscar(m_base.conexion(), 1, QStringLiteral("1."), elegida, m_doc.get()); },
                                  enVentana("cuentas")),
              1);

    // The opening-balance entry's question, with a title of its own, declined.
    m_mensajes.titulosPreguntas.clear();
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    elegir("MnuEdiAPA");
    ASSERT_FALSE(m_mensajes.titulosPreguntas.isEmpty());
    EXPECT_FALSE(m_mensajes.titulosPreguntas.first().isEmpty());

    for (int i = 0; i < m_mensajes.mostrados.size(); ++i)
        r.texto(QStringLiteral("mensaje"), m_mensajes.mostrados[i]);
    for (const QString &t : m_mensajes.titulos + m_mensajes.titulosPreguntas + m_mensajes.detalles)
        r.texto(QStringLiteral("título o detalle de un mensaje"), t);
    EXPECT_TRUE(r.fallas.isEmpty()) << r.fallas.join(QLatin1Char('\n')).toStdString();
}

// The grid comes back from the layout the Spanish document left, with its captions and its
// new-entry row in English.
TEST_P(EnIngles, LaGrillaGuardadaEnEspanolVuelveEnIngles)
{
    const Grilla &g = m_doc->grilla();
    ASSERT_GT(g.Filas(), g.FilasFijas());
    EXPECT_EQ(g.Texto(g.Filas() - 1, 0), Idioma::resLoad(110));
    EXPECT_EQ(g.Texto(0, 0), QStringLiteral("Account"));
}

INSTANCIAR_EN_MOTORES(EnIngles);

} // namespace
