// Printing and exporting what the grid shows, from the real document's menu: every file is
// read back with a standard parser and compared with the grid as the user sees it.
#include "escenario.h"

#include "comun/archivosleidos.h"
#include "comun/dialogos.h"

#include "export/exportacion.h"
#include "shell/pvprevia.h"

#include <QFileDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QSettings>
#include <QTimer>

namespace {

// Answers the save dialog with a path given by the test, recording what it was shown.
class SelectorGuionado final : public SelectorArchivo
{
public:
    QString respuesta;
    QStringList titulos, carpetas, nombres, filtros;

    QString ElegirArchivoGuardar(const QString &titulo, const QString &carpeta, const QString &nombre,
                                 const QString &filtro) override
    {
        titulos << titulo;
        carpetas << carpeta;
        nombres << nombre;
        filtros << filtro;
        return respuesta;
    }
};


class Salidas : public Escenario
{
protected:
    Salidas()
    {
        // The selector is handed over through the settings the document reads on first use.
        QSettings(m_carpeta.filePath(QStringLiteral("a.ini")), QSettings::IniFormat)
            .setValue(QStringLiteral("CarpetaDatos"), m_carpeta.filePath(QStringLiteral("datos")));
        m_doc->FijarSelectorArchivo(&m_selector);
        vista(Vista::kPrimerMes);
        m_leyenda = QStringLiteral("Pago \"urgente\", caja <chica> & más");
        m_id = asientoAlFinal(EstadoAsiento::kRegistrado, m_leyenda,
                              {{"5.3.01", true, 1234.5}, {"1.1.01", false, 1234.5}}, Demo::kLibroDiario);
    }

    QString ruta(const char *nombre) const { return m_carpeta.filePath(QString::fromLatin1(nombre)); }

    // The grid's visible cells as the user sees them, row by row, the caption row first and
    // without the closing "new entry" row, which is the screen's and not exported.
    QList<QStringList> celdasVistas() const
    {
        QList<QStringList> filas;
        const Grilla &g = m_doc->grilla();
        for (int r = 0; r < g.Filas() - 1; ++r) {
            if (g.Fila(r).oculta)
                continue;
            QStringList celdas;
            for (int c = 0; c < g.Columnas(); ++c)
                if (!g.ColumnaOculta(c))
                    celdas << g.Texto(r, c);
            filas << celdas;
        }
        return filas;
    }

    SelectorGuionado m_selector;
    QString m_leyenda;
    qint32 m_id = 0;
};

TEST_P(Salidas, ArchivosEImpresionSonLaGrillaQueVuelveComoEstaba)
{
    m_selector.respuesta = ruta("mes.csv");
    elegir("MnuExpCSV");
    // The user is told where the file went, and nothing else.
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("información: Se exportó a %1.").arg(ruta("mes.csv"))});

    ASSERT_EQ(m_selector.titulos, QStringList{QStringLiteral("Exportar a Excel CSV")});
    EXPECT_EQ(m_selector.nombres.value(0), QStringLiteral("Ingreso de Asientos.csv"));
    EXPECT_EQ(m_selector.filtros.value(0), QStringLiteral("Archivo de texto (csv) (*.csv)"));
    // The export folder is made on first use, inside the data folder.
    const QString carpeta = m_carpeta.filePath(QStringLiteral("datos/Archivos Exportados"));
    EXPECT_EQ(m_selector.carpetas.value(0), carpeta);
    EXPECT_TRUE(QFileInfo(carpeta).isDir());

    QFile archivo(m_selector.respuesta);
    ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
    EXPECT_EQ(archivo.read(3), QByteArray("\xEF\xBB\xBF")); // UTF-8, said to the spreadsheet
    // Every visible row but the "new entry" one, the legend with quotes, a comma and markup
    // as typed; the cells themselves are the export's, checked where it is driven alone.
    const QJsonArray csv = LeerArchivoExportado("csv", m_selector.respuesta);
    ASSERT_EQ(csv.size(), celdasVistas().size());
    bool hallada = false;
    for (const QJsonValue &f : csv) {
        hallada = hallada || f.toArray().at(1).toString() == m_leyenda;
        EXPECT_NE(f.toArray().at(0).toString(), QStringLiteral("Nuevo Asiento"));
    }
    EXPECT_TRUE(hallada);
    EXPECT_TRUE(m_doc->grilla().Redibujar());
    EXPECT_FALSE(m_doc->grilla().Fila(m_doc->grilla().Filas() - 1).oculta);

    // The workbook: the name as written, with the extension the dialog added, is the one told.
    m_mensajes.mostrados.clear();
    m_selector.respuesta = ruta("mes");
    elegir("MnuExpExcell");
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("información: Se exportó a %1.").arg(ruta("mes.xlsx"))});
    EXPECT_EQ(LeerArchivoExportado("xlsx", ruta("mes.xlsx")).size(), celdasVistas().size());
    EXPECT_TRUE(m_selector.filtros.last().endsWith(QStringLiteral("(*.xlsx)"))) << m_selector.filtros.last().toStdString();
    // The dialog asked about the name as typed: a file the added extension names is asked
    // about before it is replaced, and No leaves it.
    const auto contenido = [](const QString &r) {
        QFile f(r);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    };
    const QByteArray libro = contenido(ruta("mes.xlsx"));
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    m_selector.respuesta = ruta("mes.xls");
    elegir("MnuExpExcell");
    ASSERT_EQ(m_mensajes.mostrados.size(), 1) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("pregunta: El archivo %1 ya existe.").arg(ruta("mes.xlsx"))))
        << m_mensajes.mostrados[0].toStdString();
    EXPECT_EQ(contenido(ruta("mes.xlsx")), libro);

    // The print preview and the printout, and the grid afterwards. The printer, made when
    // first needed, starts on a landscape A4 page.
    EXPECT_EQ(m_doc->previa()->ModoPagina(), 1);
    EXPECT_EQ(m_doc->previa()->AnchoPagina(), 16840);
    Grilla &grilla = m_doc->grilla();
    const int ultima = grilla.Filas() - 1;
    const int ancho = grilla.AnchoColumna(1);
    // The row the user is on stays the current one through the preview and the printout.
    m_doc->grid()->FijarFilaActual(grilla.FilasFijas() + 1);
    const int actual = m_doc->grid()->FilaActual();
    ASSERT_EQ(actual, grilla.FilasFijas() + 1);
    int paginas = 0;
    bool ultimaOcultaDurante = false;
    QTimer::singleShot(0, [&] {
        auto *d = qobject_cast<QPrintPreviewDialog *>(QApplication::activeModalWidget());
        ASSERT_TRUE(d);
        paginas = m_doc->previa()->paginas().Paginas();
        ultimaOcultaDurante = grilla.Fila(ultima).oculta;
        d->reject();
    });
    elegir("MnuPriPrevia");
    EXPECT_GT(paginas, 1);
    EXPECT_TRUE(ultimaOcultaDurante);
    EXPECT_EQ(m_doc->previa()->titulo(), QStringLiteral("Ingreso de Asientos||") + m_doc->empresa().NombreEmpresa);
    // Afterwards the grid is as before, and back in the window it has the focus.
    EXPECT_FALSE(grilla.Fila(ultima).oculta);
    QApplication::setActiveWindow(m_doc.get());
    QApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), m_doc->grid());
    EXPECT_EQ(grilla.AnchoColumna(1), ancho);
    EXPECT_TRUE(grilla.Redibujar());
    EXPECT_EQ(m_doc->grid()->columnWidth(1), m_doc->grid()->TwipsAPixeles(ancho));
    EXPECT_EQ(m_doc->grid()->FilaActual(), actual);

    // Printed to PDF.
    m_doc->previa()->FijarSalidaPDF(ruta("mes.pdf"));
    QTest::keyClick(m_doc->grid(), Qt::Key_P, Qt::ControlModifier);
    ASSERT_TRUE(QFile::exists(ruta("mes.pdf")));
    const QString texto = TextoPDF(ruta("mes.pdf"));
    EXPECT_TRUE(texto.contains(QStringLiteral("Ingreso de Asientos"))) << texto.left(400).toStdString();
    EXPECT_TRUE(texto.contains(m_doc->empresa().NombreEmpresa));
    // Pages, headers and amounts on paper are the printout's own, checked where it is driven alone.
    EXPECT_TRUE(texto.contains(QStringLiteral("Pago \"urgente\", caja <chica> & más")));
    EXPECT_FALSE(texto.contains(QStringLiteral("Nuevo Asiento")));
    EXPECT_FALSE(grilla.Fila(grilla.Filas() - 1).oculta);
    EXPECT_EQ(QApplication::focusWidget(), m_doc->grid());
    EXPECT_EQ(m_doc->grid()->FilaActual(), actual);

    // Through the print dialog: cancelled, nothing is printed; accepted, the printout goes
    // where the dialog says (here, with no printer, a file).
    m_doc->previa()->FijarSalidaPDF(QString());
    const QString destino = ruta("dialogo.pdf");
    EXPECT_EQ(ConDialogo<QPrintDialog>([&] { elegir("MnuPriPrint"); }), 1);
    ConDialogo<QPrintDialog>([&] { elegir("MnuPriPrint"); }, [&](QPrintDialog &d) {
        auto *archivo = d.findChild<QLineEdit *>(QStringLiteral("filename"));
        ASSERT_TRUE(archivo);
        EXPECT_FALSE(QFile::exists(destino));
        archivo->setText(destino);
        d.accept();
    });
    EXPECT_TRUE(TextoPDF(destino).contains(m_doc->empresa().NombreEmpresa));
}

// The save dialog: cancelled, it answers no file, though a name was proposed; accepted, the
// proposed name in the export folder.
TEST(NombresDeExportacion, LaExtensionDelFormatoVaUnaSolaVezYCancelarNoDaNingunArchivo)
{
    using E = ExportacionGrilla;
    const struct
    {
        const char *ruta;
        int formato;
        const char *esperada;
    } casos[] = {
        {"/x/asientos", E::Libro, "/x/asientos.xlsx"}, {"/x/asientos.XLSX", E::Libro, "/x/asientos.XLSX"},
        {"/x/asientos.xls", E::Libro, "/x/asientos.xlsx"}, {"/x/asientos", E::HTML, "/x/asientos.htm"},
        {"/x/asientos.htm", E::HTML, "/x/asientos.htm"}, {"/x/asientos.txt", E::CSV, "/x/asientos.txt"},
    };
    for (const auto &c : casos)
        EXPECT_EQ(E::ConExtension(QString::fromLatin1(c.ruta), c.formato), QString::fromLatin1(c.esperada)) << c.ruta;

    QTemporaryDir carpeta;
    SelectorArchivoQt selector(nullptr);
    QString elegido = QStringLiteral("sin guardar");
    auto guardar = [&](bool aceptar) {
        ConDialogo<QFileDialog>(
            [&] {
                elegido = selector.ElegirArchivoGuardar(QStringLiteral("Exportar"), carpeta.path(), QStringLiteral("asientos.csv"),
                                                        QStringLiteral("CSV (*.csv)"));
            },
            [&](QFileDialog &d) {
                if (aceptar)
                    QTest::keyClick(&d, Qt::Key_Return); // the proposed name, as it is
            });
    };
    guardar(false);
    EXPECT_TRUE(elegido.isEmpty()) << elegido.toStdString();
    guardar(true);
    EXPECT_EQ(elegido, QDir(carpeta.path()).filePath(QStringLiteral("asientos.csv")));
}

TEST_P(Salidas, CancelarOFallarNoEscribeNada)
{
    const QList<QStringList> antes = celdasVistas();
    m_selector.respuesta.clear();
    elegir("MnuExpCSV");
    elegir("MnuExpHtml");
    EXPECT_EQ(QDir(m_carpeta.filePath(QStringLiteral("datos/Archivos Exportados"))).entryList(QDir::Files), QStringList{});
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    EXPECT_EQ(celdasVistas(), antes);

    // A folder that is not there: the error with its detail, and no file anywhere.
    m_selector.respuesta = ruta("no-existe/mes.csv");
    elegir("MnuExpCSV");
    m_selector.respuesta = ruta("no-existe/mes");
    elegir("MnuExpExcell");
    ASSERT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_EQ(m_mensajes.mostrados.value(0), Dicho("error", 1938));
    EXPECT_FALSE(m_mensajes.detalles.value(0).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(ruta("no-existe")));

    // A file that cannot be replaced (a folder of that name) stays as it was.
    QDir().mkpath(ruta("ocupado.htm/dentro"));
    m_selector.respuesta = ruta("ocupado");
    elegir("MnuExpHtml");
    EXPECT_EQ(m_mensajes.mostrados.size(), 3);
    EXPECT_TRUE(QFileInfo(ruta("ocupado.htm/dentro")).isDir());
    EXPECT_EQ(QDir(m_carpeta.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("a.ini")});
    EXPECT_EQ(celdasVistas(), antes);
    EXPECT_TRUE(m_doc->grilla().Redibujar());
}

// What is printed and exported is the grid, whichever engine filled it.
INSTANTIATE_TEST_SUITE_P(SQLite, Salidas, ::testing::Values(Motor::SQLite));

} // namespace
