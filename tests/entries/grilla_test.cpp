#include "fixtureasientos.h"

#include "comun/sinesperar.h"
#include "grid/vsgrid.h"

#include <QAbstractItemModelTester>
#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

namespace {

Grilla grillaDeEjemplo()
{
    Grilla g;
    g.FijarEncabezados(QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
    g.FijarFormatoColumna(2, QStringLiteral("#,##0.00"));
    g.InsertarFilas(1, 3);
    g.FijarTexto(1, 1, QStringLiteral("01/02/26   Apertura"));
    g.FijarDato(1, 0, 7);
    g.FijarDato(1, 2, QDate(2026, 2, 1));
    g.FijarDato(1, 4, QDateTime(QDate(2026, 2, 1), QTime(9, 30, 0, 125)));
    g.FijarFondoFila(1, 0xffe5e5e5);
    g.FijarImagen(1, QStringLiteral("asiento"));
    g.FijarTexto(2, 0, QStringLiteral("1.1.01 - Caja"));
    g.FijarNumero(2, 2, 1234.5_imp);
    g.FijarNumero(2, 4, 40.1234_imp, QStringLiteral("#,##0.000"));
    g.FijarDato(2, 1, QStringLiteral("10|0|0|1|1"));
    g.FijarColorTexto(2, 1, 0xff000080);
    g.FijarBordeSuperior(3, 0xffb9dbea);
    g.FijarTexto(3, 0, QStringLiteral("Nuevo Asiento"));
    g.FijarAnchoColumna(1, 2222);
    return g;
}

QStringList todasLasFilas(const Grilla &g)
{
    QStringList filas;
    for (int r = 0; r < g.Filas(); ++r) {
        const FilaGrilla &f = g.Fila(r);
        filas << FilaComoTexto(g, r) + QStringLiteral(" @%1:%2:%3").arg(g.Imagen(r)).arg(f.fondo, 0, 16).arg(f.colorBorde, 0, 16);
    }
    return filas;
}

TEST(Grilla, MoverPermutarYQuitarFilas)
{
    Grilla g;
    g.InsertarFilas(1, 6);
    for (int r = 1; r < 7; ++r)
        g.FijarTexto(r, 0, QString::number(r));
    auto textos = [&] {
        QString t;
        for (int r = 1; r < g.Filas(); ++r)
            t += g.Texto(r, 0);
        return t;
    };
    g.MoverFilas(5, 2, 2); // rows 5 and 6 before row 2
    EXPECT_EQ(textos(), QStringLiteral("156234"));
    g.MoverFilas(1, 2, 7); // the first two to the end
    EXPECT_EQ(textos(), QStringLiteral("623415"));
    g.PermutarFilas(2, {3, 0, 1, 2}); // rows 2..5 held "2341"
    EXPECT_EQ(textos(), QStringLiteral("612345"));
    g.QuitarFilasMarcadas({false, true, false, true, false, false, true});
    EXPECT_EQ(textos(), QStringLiteral("134"));
    g.FijarTexto(0, 0, QStringLiteral("Cuenta"));
    g.QuitarFilas(0, 2); // the caption row is not removed, nor anything with it
    EXPECT_EQ(textos(), QStringLiteral("134"));
    EXPECT_EQ(g.Texto(0, 0), QStringLiteral("Cuenta"));
    g.FijarFilas(0); // the caption row always stays
    EXPECT_EQ(g.Filas(), 1);
}

// A cell keeps its texts and data in the grid's pools: each kind of datum comes back with its
// type, and rows keep theirs through moves, swaps and the removals that compact the pools.
TEST(Grilla, TextosYDatosSobrevivenAMovimientosYCompactaciones)
{
    const QList<QVariant> datos{QVariant(),
                                7,
                                QVariant::fromValue(short(-3)),
                                qlonglong(1) << 40,
                                -0.125,
                                QDate(2026, 2, 28),
                                QDate(),
                                QDateTime(QDate(2026, 2, 1), QTime(9, 30, 0, 125), Qt::UTC),
                                QDateTime(QDate(2026, 2, 1), QTime(9, 30), Qt::LocalTime),
                                QString(),
                                QStringLiteral(""),
                                QStringLiteral("10|0|0|1|1"),
                                QStringLiteral(" 42 "),
                                true};
    Grilla g;
    const int filas = 6000;
    g.InsertarFilas(1, filas);
    QStringList esperado{FilaComoTexto(g, 0)};
    for (int r = 1; r <= filas; ++r) {
        g.FijarTexto(r, 0, QStringLiteral("fila %1").arg(r));
        g.FijarTexto(r, 1, r % 2 ? QStringLiteral("1.1.01 - Caja") : QStringLiteral("2.1.01 - Proveedores"));
        g.FijarNumero(r, 2, Importe::DesdeDiezmilesimos(r));
        g.FijarDato(r, 3, datos[r % datos.size()]);
        g.FijarDato(r, 4, QStringLiteral("dato %1").arg(r));
        g.FijarColorTexto(r, 5, r % 3 ? 0xff000080 : 0);
        esperado << FilaComoTexto(g, r);
    }
    for (int i = 0; i < datos.size(); ++i) {
        const QVariant leido = g.Dato(i == 0 ? datos.size() : i, 3);
        EXPECT_EQ(leido.typeId(), datos[i].typeId()) << i;
        EXPECT_EQ(leido, datos[i]) << i;
        EXPECT_EQ(leido.isNull(), datos[i].isNull()) << i;
        EXPECT_EQ(g.HayDato(i == 0 ? int(datos.size()) : i, 3), datos[i].isValid()) << i;
        // ... and read as a number or a text the way the datum itself reads
        EXPECT_EQ(g.DatoEntero(i == 0 ? int(datos.size()) : i, 3), datos[i].toInt()) << i;
        EXPECT_EQ(g.DatoTexto(i == 0 ? int(datos.size()) : i, 3), datos[i].toString()) << i;
    }
    EXPECT_EQ(g.ColorTexto(1, 5), 0xff000080u);
    EXPECT_EQ(g.ColorTexto(3, 5), 0u);

    auto comprobar = [&](const char *paso) {
        QStringList ahora;
        for (int r = 0; r < g.Filas(); ++r)
            ahora << FilaComoTexto(g, r);
        EXPECT_EQ(ahora, esperado) << paso;
    };
    g.MoverFilas(10, 5, 2);
    esperado = esperado.mid(0, 2) + esperado.mid(10, 5) + esperado.mid(2, 8) + esperado.mid(15);
    g.IntercambiarFilas(1, g.Filas() - 1);
    esperado.swapItemsAt(1, esperado.size() - 1);
    comprobar("movidas");
    // Every other row goes, and with it thousands of texts: the pools are compacted.
    std::vector<bool> quitar(size_t(g.Filas()), false);
    for (int r = 1; r < g.Filas(); r += 2)
        quitar[size_t(r)] = true;
    g.QuitarFilasMarcadas(quitar);
    for (qsizetype r = esperado.size() - 1; r > 0; --r)
        if (r % 2 == 1)
            esperado.removeAt(r);
    comprobar("quitadas");
    // Texts written after a compaction do not take the place of those still shown.
    g.QuitarFilas(1, 2500);
    esperado.remove(1, 2500);
    const int nueva = g.Filas();
    g.InsertarFila(nueva);
    g.FijarTexto(nueva, 0, QStringLiteral("nueva"));
    g.FijarDato(nueva, 1, QStringLiteral("dato nuevo"));
    esperado << FilaComoTexto(g, nueva);
    comprobar("tras compactar");
    EXPECT_EQ(g.Texto(nueva, 0), QStringLiteral("nueva"));
    g.FijarFilas(0);
    g.InsertarFila(1);
    EXPECT_EQ(FilaComoTexto(g, 1), QStringLiteral("||||| #|||||"));
}

TEST(DisenoGrilla, NumerosConSuMascaraYVuelveComoSeGuardo)
{
    QTemporaryDir dir;
    const QString ruta = dir.filePath(QStringLiteral("lg1a.tgr"));
    const Grilla original = grillaDeEjemplo();
    // Numbers show with their mask and keep their value.
    EXPECT_EQ(original.Texto(2, 2), QStringLiteral("1.234,50"));
    EXPECT_EQ(original.Valor(2, 2), 1234.5_imp);
    EXPECT_EQ(original.Texto(2, 4), QStringLiteral("40,123"));
    EXPECT_EQ(original.Valor(2, 4), 40.1234_imp); // the value keeps what the mask does not show
    EXPECT_TRUE(original.EsNumero(2, 2));
    EXPECT_FALSE(original.EsNumero(2, 3));
    EXPECT_EQ(original.Texto(0, 3), QStringLiteral("Haber"));
    EXPECT_EQ(original.AlineacionColumna(3) & Qt::AlignHorizontal_Mask, Qt::AlignRight);
    ASSERT_TRUE(original.Guardar(ruta));

    Grilla leida;
    QString error;
    ASSERT_TRUE(leida.Cargar(ruta, &error)) << error.toStdString();
    EXPECT_EQ(todasLasFilas(leida), todasLasFilas(original));
    EXPECT_EQ(leida.AnchoColumna(1), 2222);
    EXPECT_EQ(leida.ColorTexto(2, 1), 0xff000080u);
    EXPECT_EQ(leida.Texto(2, 2), QStringLiteral("1.234,50")); // the column format came back too
}

// A layout file made by hand: six columns, one fixed row, then filas rows of which only
// filasEscritas are there, under a right checksum.
QString archivoDeFilas(const QTemporaryDir &dir, const char *nombre, qint64 filas, int filasEscritas)
{
    QByteArray datos;
    QDataStream s(&datos, QIODevice::WriteOnly);
    s.setVersion(QDataStream::Qt_6_0);
    s << qint32(6) << qint32(1);
    for (int c = 0; c < 6; ++c)
        s << qint32(1440) << false << qint32(1) << QString();
    s << qint32(0) << filas;
    for (int r = 0; r < filasEscritas; ++r) {
        s << QString() << quint32(0) << quint32(0) << qint32(0) << false;
        for (int c = 0; c < 6; ++c)
            s << QString() << QVariant() << 0.0 << qint16(-1) << quint32(0) << quint8(0);
    }
    const QString ruta = dir.filePath(QString::fromLatin1(nombre));
    QFile f(ruta);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    QDataStream cabecera(&f);
    cabecera.setVersion(QDataStream::Qt_6_0);
    cabecera << quint32(0x41534752) << quint16(1) << qint64(datos.size());
    cabecera.writeRawData(QCryptographicHash::hash(datos, QCryptographicHash::Sha1).constData(), 20);
    cabecera.writeRawData(datos.constData(), int(datos.size()));
    return ruta;
}

// A damaged file, one of another grid, or one claiming far more rows than it holds (refused
// before the rows are made: 5,000,000 empty rows of six cells take gigabytes) is refused and
// leaves the grid as it was.
TEST(DisenoGrilla, ArchivosDanadosSeIgnoranSinTocarLaGrilla)
{
    QTemporaryDir dir;
    const QString bueno = dir.filePath(QStringLiteral("bueno.tgr"));
    ASSERT_TRUE(grillaDeEjemplo().Guardar(bueno));
    QFile f(bueno);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray contenido = f.readAll();

    auto escribir = [&](const char *nombre, const QByteArray &datos) {
        const QString ruta = dir.filePath(QString::fromLatin1(nombre));
        QFile s(ruta);
        EXPECT_TRUE(s.open(QIODevice::WriteOnly));
        s.write(datos);
        return ruta;
    };
    QByteArray volteado = contenido;
    volteado[volteado.size() / 2] = char(volteado[volteado.size() / 2] ^ 0x5a);
    QByteArray otraVersion = contenido;
    otraVersion[5] = char(9);
    const QString deOtra = dir.filePath(QStringLiteral("otra.tgr"));
    ASSERT_TRUE(Grilla(4).Guardar(deOtra)); // a grid of four columns does not take a six-column layout
    const QStringList rutas{
        dir.filePath(QStringLiteral("no-existe.tgr")),
        escribir("vacio.tgr", {}),
        escribir("truncado.tgr", contenido.left(contenido.size() - 7)),
        escribir("volteado.tgr", volteado),
        escribir("version.tgr", otraVersion),
        escribir("ajeno.tgr", QByteArray("<html><body>no soy una grilla</body></html>")),
        escribir("largo.tgr", contenido.left(12) + QByteArray(64, '\xff')),
        deOtra,
        archivoDeFilas(dir, "cinco-millones.tgr", 5'000'000, 2),
        archivoDeFilas(dir, "una-de-mas.tgr", 4, 3),
        archivoDeFilas(dir, "sin-la-fija.tgr", 0, 0),
    };
    // The same way of making a file gives one that loads when the count is true.
    Grilla buena;
    QString error;
    ASSERT_TRUE(buena.Cargar(archivoDeFilas(dir, "tres.tgr", 3, 3), &error)) << error.toStdString();
    EXPECT_EQ(buena.Filas(), 3);

    struct rusage antes {};
    getrusage(RUSAGE_SELF, &antes);
    for (const QString &ruta : rutas) {
        Grilla g;
        g.InsertarFilas(1, 2);
        g.FijarTexto(2, 0, QStringLiteral("queda"));
        error.clear();
        EXPECT_FALSE(g.Cargar(ruta, &error)) << ruta.toStdString();
        EXPECT_FALSE(error.isEmpty()) << ruta.toStdString();
        EXPECT_EQ(g.Filas(), 3);
        EXPECT_EQ(g.Texto(2, 0), QStringLiteral("queda"));
        EXPECT_FALSE(Grilla().Cargar(ruta)) << ruta.toStdString(); // nor when the reason is not asked for
    }
    struct rusage despues {};
    getrusage(RUSAGE_SELF, &despues);
    EXPECT_LT(despues.ru_maxrss - antes.ru_maxrss, 200L * 1024) << "kilobytes taken"; // not gigabytes
}

QByteArray leerArchivo(const QString &ruta)
{
    QFile f(ruta);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Writes past a file size limit fail with EFBIG, as on a full disk. The limit holds only
// while the call runs.
bool guardarConLimite(const Grilla &g, const QString &ruta, rlim_t limite, QString *error)
{
    const auto senal = signal(SIGXFSZ, SIG_IGN);
    struct rlimit antes {};
    getrlimit(RLIMIT_FSIZE, &antes);
    struct rlimit limitado = antes;
    limitado.rlim_cur = limite;
    setrlimit(RLIMIT_FSIZE, &limitado);
    const bool guardado = g.Guardar(ruta, error);
    setrlimit(RLIMIT_FSIZE, &antes);
    signal(SIGXFSZ, senal);
    return guardado;
}

// A small grid stays in the write buffer until the save file commits; a large one is
// written as it goes. Either way a write that does not fit leaves the last good file.
TEST(DisenoGrilla, UnDiscoLlenoDejaElArchivoAnterior)
{
    QTemporaryDir dir;
    const QString ruta = dir.filePath(QStringLiteral("lg1a.tgr"));
    const Grilla original = grillaDeEjemplo();
    ASSERT_TRUE(original.Guardar(ruta));
    const QByteArray bueno = leerArchivo(ruta);

    Grilla grande = grillaDeEjemplo();
    grande.InsertarFilas(3, 20000);
    for (int r = 3; r < 20003; ++r)
        grande.FijarTexto(r, 0, QStringLiteral("Cuenta %1").arg(r));
    Grilla chica = grillaDeEjemplo();
    chica.FijarTexto(3, 1, QString(200, QLatin1Char('x')));

    for (const auto &[grilla, limite] : {std::pair{&grande, rlim_t(64 * 1024)}, std::pair{&chica, rlim_t(bueno.size())}}) {
        QString error;
        EXPECT_FALSE(guardarConLimite(*grilla, ruta, limite, &error)) << limite;
        EXPECT_FALSE(error.isEmpty()) << limite;
        EXPECT_EQ(leerArchivo(ruta), bueno) << limite;
        Grilla leida;
        ASSERT_TRUE(leida.Cargar(ruta, &error)) << error.toStdString();
        EXPECT_EQ(todasLasFilas(leida), todasLasFilas(original));
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("lg1a.tgr")}); // no temporary left
}

// A link (to a file here or in another folder), a FIFO or a folder in the layout's place
// is neither read nor replaced: what it points at keeps its bytes and the link stays.
TEST(DisenoGrilla, SoloSeUsaUnArchivoComun)
{
    QTemporaryDir dir, otraCarpeta;
    const QString cerca = dir.filePath(QStringLiteral("cerca.tgr"));
    const QString lejos = otraCarpeta.filePath(QStringLiteral("lejos.tgr"));
    ASSERT_TRUE(grillaDeEjemplo().Guardar(cerca));
    ASSERT_TRUE(grillaDeEjemplo().Guardar(lejos));
    const QByteArray bytes = leerArchivo(cerca);

    const QString enlaceCerca = dir.filePath(QStringLiteral("enlace-cerca.tgr"));
    const QString enlaceLejos = dir.filePath(QStringLiteral("enlace-lejos.tgr"));
    const QString fifo = dir.filePath(QStringLiteral("fifo.tgr"));
    const QString carpeta = dir.filePath(QStringLiteral("carpeta.tgr"));
    ASSERT_TRUE(QFile::link(cerca, enlaceCerca));
    ASSERT_TRUE(QFile::link(lejos, enlaceLejos));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("carpeta.tgr")));

    const Grilla otra(4);
    for (const QString &ruta : {enlaceCerca, enlaceLejos, fifo, carpeta}) {
        Grilla g;
        g.InsertarFilas(1, 2);
        QString error;
        EXPECT_FALSE(sinQuedarseEsperando(fifo, [&] { return g.Cargar(ruta, &error); })) << ruta.toStdString();
        EXPECT_TRUE(error.startsWith(QStringLiteral("el archivo de diseño no es un archivo común: ") + ruta)) << error.toStdString();
        EXPECT_EQ(g.Filas(), 3);
        error.clear();
        EXPECT_FALSE(sinQuedarseEsperando(fifo, [&] { return otra.Guardar(ruta, &error); })) << ruta.toStdString();
        EXPECT_TRUE(error.contains(QStringLiteral("no es un archivo común"))) << error.toStdString();
    }
    EXPECT_EQ(leerArchivo(cerca), bytes);
    EXPECT_EQ(leerArchivo(lejos), bytes);
    EXPECT_TRUE(QFileInfo(enlaceCerca).isSymLink() && QFileInfo(enlaceLejos).isSymLink());
    struct stat datos {};
    EXPECT_TRUE(::lstat(QFile::encodeName(fifo).constData(), &datos) == 0 && S_ISFIFO(datos.st_mode));
    EXPECT_TRUE(QFileInfo(carpeta).isDir());
    EXPECT_EQ(QDir(otraCarpeta.path()).entryList(QDir::Files), QStringList{QStringLiteral("lejos.tgr")});
}

TEST(ModeloGrilla, SigueALaGrillaYUnaCargaSinRedibujoEsUnReinicio)
{
    Grilla g = grillaDeEjemplo();
    ModeloGrilla modelo(g);
    QAbstractItemModelTester tester(&modelo, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(modelo.rowCount(), 3);
    EXPECT_EQ(modelo.headerData(2, Qt::Horizontal).toString(), QStringLiteral("Debe"));
    EXPECT_EQ(modelo.data(modelo.index(1, 2)).toString(), QStringLiteral("1.234,50"));

    QSignalSpy insertadas(&modelo, &QAbstractItemModel::rowsInserted);
    QSignalSpy reinicios(&modelo, &QAbstractItemModel::modelReset);
    g.InsertarFila(2);
    EXPECT_EQ(insertadas.count(), 1);
    EXPECT_EQ(modelo.rowCount(), 4);

    g.FijarRedibujar(false);
    for (int i = 0; i < 500; ++i)
        g.InsertarFila(g.Filas());
    g.MoverFilas(10, 20, 2);
    g.QuitarFilas(3, 5);
    EXPECT_EQ(modelo.rowCount(), 4); // views see nothing until redraw is back on
    g.FijarRedibujar(true);
    EXPECT_EQ(reinicios.count(), 1);
    EXPECT_EQ(insertadas.count(), 1);
    EXPECT_EQ(modelo.rowCount(), g.Filas() - 1);

    g.MoverFilas(2, 3, 10);
    g.QuitarFila(4);
    EXPECT_EQ(modelo.rowCount(), g.Filas() - 1);
}

} // namespace
