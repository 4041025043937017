// The print command's preparation of the grid, the pages it makes, and the small rules of
// the file writers.
#include "grillafalsa.h"

#include "comun/archivosleidos.h"

#include "entries/asientosgrilla.h"
#include "entries/grilla.h"
#include "export/escritores.h"
#include "export/exportacion.h"
#include "export/fuentegrilla.h"
#include "export/impresiongrilla.h"
#include "export/paginasgrilla.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QPainter>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <functional>
#include <optional>

namespace {

// A view with a page of a given width and margins that records what it was told.
class VistaFalsa final : public VistaImpresion
{
public:
    int modo = 0;
    int anchoPagina = 16838;
    std::pair<int, int> par1{1000, 1000}, par2{500, 700};
    QStringList llamadas;
    QString titulo;
    std::function<void(const FuenteGrilla &)> alRenderizar;
    const FuenteGrilla *origen = nullptr;

    int ModoPagina() const override { return modo; }
    int AnchoPagina() const override { return anchoPagina; }
    std::pair<int, int> Margenes(int par) const override { return par == 1 ? par1 : par2; }
    void FijarTitulo(const QString &t) override { titulo = t; llamadas << QStringLiteral("titulo"); }
    void Preparar() override { llamadas << QStringLiteral("preparar"); }
    void FijarOrigen(const FuenteGrilla &g) override { origen = &g; llamadas << QStringLiteral("origen"); }
    void Renderizar() override
    {
        llamadas << QStringLiteral("renderizar");
        if (alRenderizar)
            alRenderizar(*origen);
    }
    bool Imprimir() override { llamadas << QStringLiteral("imprimir"); return true; }
    void ConfigurarPagina() override { llamadas << QStringLiteral("configurar"); }
    void FijarVisible(bool v) override { llamadas << (v ? QStringLiteral("visible") : QStringLiteral("oculta")); }
    void AlFrente() override { llamadas << QStringLiteral("frente"); }
};

class Impresion : public ::testing::Test
{
protected:
    Impresion()
    {
        PrepararGrillaAsientos(g, QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
        g.FijarFilas(6);
        g.FijarTexto(5, 0, QStringLiteral("Nuevo Asiento"));
        for (int c = 0; c < g.Columnas(); ++c)
            g.FijarAnchoColumna(c, 1500);
    }

    Grilla g;
    VistaFalsa vista;
    int enfocada = 0;
    ImpresionGrilla impresion{g, vista, [this] { ++enfocada; }};
};

TEST_F(Impresion, ColumnaUnoTomaElAnchoLibreSiLoHayYLaGrillaVuelve)
{
    bool ultimaOculta = false;
    bool redibujo = true;
    int anchoUno = 0;
    vista.alRenderizar = [&](const FuenteGrilla &f) {
        ultimaOculta = f.FilaOculta(5);
        redibujo = g.Redibujar();
        anchoUno = f.AnchoColumna(1);
    };
    impresion.MnuPriPrevia(QStringLiteral("Ingreso de Asientos"), QStringLiteral("Empresa"));
    EXPECT_EQ(vista.llamadas, (QStringList{QStringLiteral("titulo"), QStringLiteral("frente"), QStringLiteral("preparar"),
                                           QStringLiteral("origen"), QStringLiteral("renderizar"), QStringLiteral("visible")}));
    EXPECT_EQ(vista.titulo, QStringLiteral("Ingreso de Asientos||Empresa"));
    EXPECT_TRUE(ultimaOculta);
    EXPECT_FALSE(redibujo);
    EXPECT_EQ(anchoUno, 16838 - 2000 - 5 * 1500);
    EXPECT_FALSE(g.Fila(5).oculta);
    EXPECT_TRUE(g.Redibujar());
    EXPECT_EQ(g.AnchoColumna(1), 1500);
    EXPECT_EQ(enfocada, 1); // the grid has the focus again after the preview

    // A hidden column is not counted: column 1 gets its width too. The other page mode
    // uses the second pair of margins.
    g.FijarColumnaOculta(3, true);
    vista.modo = 1;
    impresion.MnuPriPrint(QStringLiteral("T"), QStringLiteral("E"));
    EXPECT_EQ(anchoUno, 16838 - 1200 - 4 * 1500);
    EXPECT_EQ(vista.llamadas.mid(6), (QStringList{QStringLiteral("titulo"), QStringLiteral("preparar"), QStringLiteral("origen"),
                                                  QStringLiteral("renderizar"), QStringLiteral("imprimir")}));
    EXPECT_EQ(enfocada, 2);
    EXPECT_EQ(g.AnchoColumna(1), 1500);

    // Without room left over column 1 keeps its width. The page set-up is the view's.
    for (int c = 0; c < g.Columnas(); ++c)
        g.FijarAnchoColumna(c, 4000);
    impresion.MnuPriPrint(QStringLiteral("T"), QStringLiteral("E"));
    EXPECT_EQ(anchoUno, 4000);
    impresion.MnuPriCnfgPage();
    EXPECT_EQ(vista.llamadas.last(), QStringLiteral("configurar"));
    EXPECT_EQ(enfocada, 4);
}

TEST(PaginasGrilla, FilasPorPaginaEncabezadoYEscala)
{
    GrillaFalsa g(201, 3);
    g.filasOcultas[7] = true;
    QPageLayout pagina(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(36, 36, 36, 36), QPageLayout::Point);
    PaginasGrilla p;
    p.Componer(g, pagina, QStringLiteral("T||E"), QStringLiteral("%1 / %2"));
    const double alto = pagina.paintRect(QPageLayout::Point).height();
    const int porPagina = int((alto - PaginasGrilla::kAltoTitulo - PaginasGrilla::kAltoPie - PaginasGrilla::kAltoFila)
                              / PaginasGrilla::kAltoFila);
    ASSERT_EQ(p.Paginas(), (199 + porPagina - 1) / porPagina);
    int filas = 0;
    for (int n = 0; n < p.Paginas(); ++n) {
        for (int r : p.FilasDePagina(n)) {
            EXPECT_NE(r, 7);
            EXPECT_GE(r, 1);
        }
        filas += int(p.FilasDePagina(n).size());
    }
    EXPECT_EQ(filas, 199);
    EXPECT_DOUBLE_EQ(p.AnchoEnPapel(0), 75.0); // 1500 twips

    // An entry's header row that would end a page goes to the next one with its lines.
    // (Row 7 is hidden, so the last place of the first page is row porPagina + 1.)
    g.combinadas.push_back({porPagina + 1, 1, porPagina + 1, 2});
    p.Componer(g, pagina, QStringLiteral("T"), QStringLiteral("%1 / %2"));
    EXPECT_EQ(int(p.FilasDePagina(0).size()), porPagina - 1);
    EXPECT_EQ(p.FilasDePagina(1).front(), porPagina + 1);

    // Wider than the page: scaled down to the printable width.
    g.anchos = {20000, 10000, 10000};
    p.Componer(g, pagina, QStringLiteral("T"), QStringLiteral("%1 / %2"));
    const double ancho = pagina.paintRect(QPageLayout::Point).width();
    EXPECT_NEAR(p.AnchoEnPapel(0) + p.AnchoEnPapel(1) + p.AnchoEnPapel(2), ancho, 1e-9);
    EXPECT_NEAR(p.AnchoEnPapel(0), ancho / 2, 1e-9);
    // A hidden column keeps its width in the grid, and takes none on paper.
    g.ocultas[1] = true;
    p.Componer(g, pagina, QStringLiteral("T"), QStringLiteral("%1 / %2"));
    EXPECT_EQ(p.AnchoEnPapel(1), 0);
    EXPECT_NEAR(p.AnchoEnPapel(0) + p.AnchoEnPapel(2), ancho, 1e-9);
    g.ocultas[1] = false;

    // An empty grid still makes one page with its heading.
    GrillaFalsa vacia(1, 2);
    p.Componer(vacia, pagina, QStringLiteral("T"), QStringLiteral("%1 / %2"));
    EXPECT_EQ(p.Paginas(), 1);
}

// The heading's "left|centre|right" pieces go to their places; a title without "|" is all at
// the left.
TEST(PaginasGrilla, EncabezadoEnSusTresLugares)
{
    GrillaFalsa g(3, 2);
    const QPageLayout pagina(QPageSize(QPageSize::A4), QPageLayout::Landscape, QMarginsF(36, 36, 36, 36), QPageLayout::Point);
    const QRectF area = pagina.paintRect(QPageLayout::Point);
    auto tinta = [&](const QString &titulo) {
        PaginasGrilla p;
        p.Componer(g, pagina, titulo, QStringLiteral("%1 / %2"));
        QImage imagen(area.size().toSize(), QImage::Format_RGB32);
        imagen.fill(Qt::white);
        QPainter pintor(&imagen);
        p.DibujarPagina(pintor, 0);
        pintor.end();
        QString tercios; // "x" for a third of the heading's band with ink in it
        for (int t = 0; t < 3; ++t) {
            bool hay = false;
            for (int y = 0; y < int(PaginasGrilla::kAltoTitulo) - 8 && !hay; ++y)
                for (int x = t * imagen.width() / 3; x < (t + 1) * imagen.width() / 3 && !hay; ++x)
                    hay = imagen.pixel(x, y) != qRgb(255, 255, 255);
            tercios += hay ? QLatin1Char('x') : QLatin1Char('-');
        }
        return tercios;
    };
    EXPECT_EQ(tinta(QStringLiteral("Asientos|Diario|Empresa")), QStringLiteral("xxx"));
    EXPECT_EQ(tinta(QStringLiteral("Asientos")), QStringLiteral("x--"));
    EXPECT_EQ(tinta(QStringLiteral("||Empresa | Sucursal")), QStringLiteral("--x"));
}

TEST(Escritores, CamposCSVYFormatosDeLibro)
{
    using namespace Escritores;
    EXPECT_EQ(CampoCSV(QStringLiteral("simple")), QStringLiteral("simple"));
    EXPECT_EQ(CampoCSV(QStringLiteral("1.234,50")), QStringLiteral("\"1.234,50\""));
    EXPECT_EQ(CampoCSV(QStringLiteral("dice \"hola\"")), QStringLiteral("\"dice \"\"hola\"\"\""));
    EXPECT_EQ(CampoCSV(QStringLiteral("dos\nlíneas")), QStringLiteral("\"dos\nlíneas\""));
    EXPECT_EQ(CampoCSV(QString()), QString());

    EXPECT_EQ(FormatoNumeroLibro(QStringLiteral("#,##0.00")), QStringLiteral("#,##0.00"));
    EXPECT_EQ(FormatoNumeroLibro(QStringLiteral("U$S #,##0.00")), QStringLiteral("\"U$S \"#,##0.00"));
    EXPECT_EQ(FormatoNumeroLibro(QStringLiteral("#,##0.000 ds")), QStringLiteral("#,##0.000\" ds\""));
}

using Escribir = std::function<std::optional<Fallo>(const QString &, const SiguienteParte &)>;

// The three file writers of a grid, each with a file name of its kind.
std::vector<std::pair<const char *, Escribir>> LosTresEscritores(const FuenteDeGrilla &fuente)
{
    return {{"a.csv", [&](const QString &r, const SiguienteParte &s) { return Escritores::EscribirCSV(fuente, r, {}, s); }},
            {"a.xlsx", [&](const QString &r, const SiguienteParte &s) { return Escritores::EscribirLibro(fuente, r, QStringLiteral("dd/mm/yyyy"), QStringLiteral("Asientos"), {}, s); }},
            {"a.htm", [&](const QString &r, const SiguienteParte &s) {
                 return Escritores::EscribirHTML(fuente, r, QString(), QString(), QString(), QStringLiteral("dd/mm/yyyy"), QDateTime(), s);
             }}};
}

// An entry's header row at the end of the grid: its date and, when given, the text it shows.
void AgregarCabezal(Grilla &grilla, const QDate &fecha, const QString &texto = {})
{
    const int r = grilla.Filas();
    grilla.FijarFilas(r + 1);
    grilla.FijarDato(r, 0, r);
    grilla.FijarDato(r, 2, fecha);
    if (!texto.isEmpty())
        grilla.FijarTexto(r, 1, texto);
}

// A file there before an export: its path.
QString ArchivoAnterior(const QTemporaryDir &carpeta, const char *nombre)
{
    const QString ruta = carpeta.filePath(QString::fromLatin1(nombre));
    QFile anterior(ruta);
    EXPECT_TRUE(anterior.open(QIODevice::WriteOnly) && anterior.write("antes") == 5);
    return ruta;
}

// After a failed export the file there before is whole and alone: no temporary file is left.
// It goes, for the next writer.
void QuedaElAnterior(const QTemporaryDir &carpeta, const QString &ruta)
{
    QFile anterior(ruta);
    ASSERT_TRUE(anterior.open(QIODevice::ReadOnly));
    EXPECT_EQ(anterior.readAll(), QByteArray("antes"));
    anterior.close();
    EXPECT_EQ(QDir(carpeta.path()).entryList(QDir::Files | QDir::Hidden).size(), 1) << "a temporary file was left";
    QFile::remove(ruta);
}

// A part that cannot be read ends a long export: each writer answers the reading's failure
// as it came, and leaves no file, not even half of one over a file of that name.
TEST(Escritores, UnaParteQueNoSePuedeLeerNoDejaArchivo)
{
    QTemporaryDir carpeta;
    Grilla grilla;
    PrepararGrillaAsientos(grilla, QStringLiteral("Fecha|Leyenda|Debe|Haber|Libro|Estado"));
    // Each part is one entry's header row.
    auto parte = [&] {
        grilla.FijarFilas(grilla.FilasFijas());
        AgregarCabezal(grilla, QDate(2026, 11, 25));
    };
    const FuenteDeGrilla fuente(grilla);
    for (const auto &[nombre, escribir] : LosTresEscritores(fuente)) {
        SCOPED_TRACE(nombre);
        const QString ruta = ArchivoAnterior(carpeta, nombre);
        int leidas = 0;
        parte();
        const auto fallo = escribir(ruta, [&]() -> Resultado<bool> {
            if (++leidas == 2)
                return Fallo{0, QStringLiteral("la base se fue"), true};
            parte();
            return true;
        });
        ASSERT_TRUE(fallo);
        EXPECT_EQ(fallo->detalle, QStringLiteral("la base se fue"));
        EXPECT_TRUE(fallo->deLaBase);
        QuedaElAnterior(carpeta, ruta);
    }
}

// A disk that fills up as the last bytes go out: the writers say the file could not be written
// whole and leave what was there, though the last bytes wait in a buffer until the very end.
TEST(Escritores, UnDiscoQueSeLlenaAlFinalNoDejaArchivoYLoDice)
{
    QTemporaryDir carpeta;
    Grilla grilla;
    PrepararGrillaAsientos(grilla, QStringLiteral("Fecha|Leyenda|Debe|Haber|Libro|Estado"));
    AgregarCabezal(grilla, QDate(2026, 11, 25));
    const FuenteDeGrilla fuente(grilla);
    // Writes past the file size limit fail with EFBIG instead of stopping the process.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit antes{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &antes), 0);
    for (const auto &[nombre, escribir] : LosTresEscritores(fuente)) {
        SCOPED_TRACE(nombre);
        const QString completo = carpeta.filePath(QStringLiteral("completo"));
        ASSERT_FALSE(escribir(completo, {}));
        const qint64 entero = QFileInfo(completo).size();
        QFile::remove(completo);
        const QString ruta = ArchivoAnterior(carpeta, nombre);

        rlimit limite = antes;
        limite.rlim_cur = rlim_t(entero - 1);
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limite), 0);
        const auto fallo = escribir(ruta, {});
        setrlimit(RLIMIT_FSIZE, &antes);
        ASSERT_TRUE(fallo);
        EXPECT_EQ(fallo->numeroTexto, Escritores::kNoSeEscribioEntero);
        QuedaElAnterior(carpeta, ruta);
    }
}

// A sheet's dates start in 1900: an entry dated before goes to the workbook as the date it
// shows, a later one as a date.
TEST(Escritores, UnaFechaAnteriorA1900VaAlLibroComoTexto)
{
    QTemporaryDir carpeta;
    Grilla grilla;
    PrepararGrillaAsientos(grilla, QStringLiteral("Fecha|Leyenda|Debe|Haber|Libro|Estado"));
    const std::pair<QDate, const char *> cabezales[] = {{QDate(1899, 12, 31), "31/12/1899  Antigua"},
                                                        {QDate(1900, 1, 1), "01/01/1900  Nueva"}};
    for (const auto &[fecha, texto] : cabezales)
        AgregarCabezal(grilla, fecha, QString::fromUtf8(texto));
    const QString ruta = carpeta.filePath(QStringLiteral("a.xlsx"));
    ASSERT_FALSE(Escritores::EscribirLibro(FuenteDeGrilla(grilla), ruta, QStringLiteral("dd/mm/yyyy"), QStringLiteral("Asientos")));
    const QJsonArray filas = LeerArchivoExportado("xlsx", ruta);
    ASSERT_EQ(filas.size(), grilla.FilasFijas() + 2);
    const QJsonArray antigua = filas.at(grilla.FilasFijas()).toArray();
    EXPECT_EQ(antigua.at(0).toString(), QStringLiteral("31/12/1899"));
    EXPECT_EQ(antigua.at(1).toString(), QStringLiteral("Antigua"));
    EXPECT_EQ(filas.at(grilla.FilasFijas() + 1).toArray().at(0).toObject().value(QLatin1String("fecha")).toString(),
              QStringLiteral("1900-01-01"));
}


// Why a file was not written names the file, once, whether or not the system's reason does.
TEST(Escritores, ElMotivoNombraElArchivoUnaVez)
{
    const QString ruta = QStringLiteral("/tmp/salida/mes.pdf");
    EXPECT_EQ(Escritores::ConArchivo(ruta, QStringLiteral("No such file or directory")),
              QStringLiteral("/tmp/salida/mes.pdf: No such file or directory"));
    EXPECT_EQ(Escritores::ConArchivo(ruta, QStringLiteral("Existing file /tmp/salida/mes.pdf is not writable")),
              QStringLiteral("Existing file /tmp/salida/mes.pdf is not writable"));
}

// The save dialog's filter from a catalogue one: the pattern after the description, unless the
// description already ends with it; "(csv)" is no pattern, and a filter may have none.
TEST(Escritores, FiltroDelDialogoDeGuardar)
{
    const std::pair<const char *, const char *> casos[] = {
        {"Libro de Microsoft Excel|*.xlsx", "Libro de Microsoft Excel (*.xlsx)"},
        {"Archivo de texto (csv)|*.csv", "Archivo de texto (csv) (*.csv)"},
        {"Archivo html (*.htm)|*.htm", "Archivo html (*.htm)"},
        {"Todos|", "Todos"},
    };
    for (const auto &[filtro, esperado] : casos)
        EXPECT_EQ(ExportacionGrilla::FiltroQt(QString::fromUtf8(filtro)), QString::fromUtf8(esperado)) << filtro;
}
} // namespace
