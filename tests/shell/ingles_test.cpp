#include "escenario.h"

#include "comun/dialogos.h"
#include "dialogs/busquedacuentasqt.h"
#include "dialogs/gestorlibros.h"
#include "frequent/movimientosfrecuentes.h"
#include "frequent/registrofrecuentes.h"
#include "search/frmfind.h"
#include "shell/dialogohistorial.h"
#include "shell/dialogopapelera.h"

#include <QAbstractButton>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QSettings>
#include <QTableWidget>
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
                           "Registrar|Guardar|Cambios|Barra|Tasa|Unificar|Línea)\\b"),
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

    QStringList fallas;

private:
    // Lists the company fills: its books, projects, departments, currencies, authorisers.
    inline static const QSet<QString> kListasDeDatos{QStringLiteral("cfLibro"), QStringLiteral("cfProyecto"),
                                                     QStringLiteral("cfDepartamento"), QStringLiteral("cfMoneda"),
                                                     QStringLiteral("cfAutoriza")};
    QSet<QString> m_soloEspanol;
};

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
        m_doc = Documento(m_host, m_mensajes, m_carpeta, 1);
        QApplication::setActiveWindow(m_doc.get());
        QApplication::processEvents();
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
    m_doc->grid()->FijarFilaActual(filaDe(id));
    r.ventana(m_doc.get(), QStringLiteral("documento"));

    EXPECT_EQ(ConDialogo<frmFind>([&] { m_doc->findChild<QToolButton *>(QStringLiteral("hlFind"))->click(); },
                                  enVentana("búsqueda")),
              1);
    EXPECT_EQ(ConDialogo<RegistroFrecuentes>([&] {
                  elegir("MnuAFrRegistrar");
                  QTest::qWait(50);
              }, enVentana("registro de frecuentes")),
              1);
    EXPECT_EQ(ConDialogo<MovimientosFrecuentes>([&] {
                  elegir("MnuAFrNew");
                  QTest::qWait(50);
              }, enVentana("asiento frecuente")),
              1);
    EXPECT_EQ(ConDialogo<GestorLibros>([&] { elegir("MnuEdiLibro"); }, enVentana("libros")), 1);

    elegir("MnuEdiHistorial");
    auto *historial = m_doc->findChild<DialogoHistorial *>();
    ASSERT_NE(historial, nullptr);
    r.ventana(historial, QStringLiteral("historial"));
    elegir("MnuViePapelera");
    auto *papelera = m_doc->findChild<DialogoPapelera *>();
    ASSERT_NE(papelera, nullptr);
    r.ventana(papelera, QStringLiteral("papelera"));

    BusquedaCuentasQt cuentas([](int n) { return Idioma::resLoad(n - 1000); });
    CuentaElegida elegida;
    EXPECT_EQ(ConDialogo<QDialog>([&] { (void)cuentas.Buscar(m_base.conexion(), 1, QStringLiteral("1."), elegida, m_doc.get()); },
                                  enVentana("cuentas")),
              1);

    for (int i = 0; i < m_mensajes.mostrados.size(); ++i)
        r.texto(QStringLiteral("mensaje"), m_mensajes.mostrados[i]);
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
