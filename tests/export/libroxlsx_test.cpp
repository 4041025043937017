#include "grillafalsa.h"

#include "entries/grilla.h"
#include "export/escritores.h"
#include "export/exportacion.h"
#include "export/fuentegrilla.h"
#include "export/libroxlsx.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The workbook as openpyxl reads it, and whether python's zip reader finds it sound.
QJsonObject Leido(const QString &ruta)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(ASIENTOS_LEER_ARCHIVO), QStringLiteral("xlsx-detalle"), ruta});
    p.waitForFinished(60000);
    EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

QJsonObject Celda(const QJsonObject &libro, int fila, int columna)
{
    return libro.value(QLatin1String("filas")).toArray().at(fila).toArray().at(columna).toObject();
}

// A device that takes only so many bytes, as a full disk does.
class DispositivoLleno : public QIODevice
{
public:
    explicit DispositivoLleno(qint64 cabe)
        : m_cabe(cabe)
    {
        open(QIODevice::WriteOnly);
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 largo) override
    {
        if (largo > m_cabe)
            return -1;
        m_cabe -= largo;
        return largo;
    }

private:
    qint64 m_cabe;
};

} // namespace

// What is written reads back the same in a standard reader: values, dates, number formats,
// colours, the caption row in bold over a line and frozen, column widths, texts with what XML
// reserves, accents, a character outside the basic plane and blanks at their ends; skipped
// rows and columns stay empty. Enough rows go in to cross many blocks of the compressed sheet.
TEST(LibroXlsx, LoEscritoSeLeeIgualConSusEstilos)
{
    QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(QStringLiteral("libro.xlsx"));
    QFile archivo(ruta);
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
    constexpr int kFilas = 9000;
    constexpr qsizetype kMaximo = 32767; // characters in a cell
    {
        LibroXlsx libro(archivo);
        ASSERT_TRUE(libro.Empezar(QStringLiteral("Asientos <1>"), 1, {10, 25.5, 3}));
        const int titulo = libro.Estilo({}, LibroXlsx::kSinColor, 0xc0c0c0, true);
        libro.Texto(0, u"Fecha", titulo);
        libro.Texto(1, u"Leyenda & <más>", titulo);
        ASSERT_TRUE(libro.TerminarFila());
        libro.Fecha(0, QDate(2026, 11, 25), libro.Estilo(QStringLiteral("dd/mm/yyyy"), 0xff0000, LibroXlsx::kSinColor, false));
        libro.Numero(1, 1234567.89, libro.Estilo(QStringLiteral("\"U$S \"#,##0.00"), LibroXlsx::kSinColor, 0x00ff00, false));
        libro.Numero(2, 0.1 + 0.2, 0);
        ASSERT_TRUE(libro.TerminarFila());
        ASSERT_TRUE(libro.TerminarFila()); // an empty row
        libro.Texto(1, u"  ñandú \x01 \U0001F600 a\tb  ", 0);
        libro.Vacia(2, libro.Estilo({}, LibroXlsx::kSinColor, 0x00ff00, false));
        ASSERT_TRUE(libro.TerminarFila());
        // Texts the sheet's own escapes would change, and dates around its false 29 February 1900.
        const int dia = libro.Estilo(QStringLiteral("dd/mm/yyyy"), LibroXlsx::kSinColor, LibroXlsx::kSinColor, false);
        libro.Fecha(0, QDate(1900, 1, 1), dia);
        libro.Texto(1, u"_x0041_ y _x00e9_ y _x00AF_ con a\r\nb y \x1f", 0);
        libro.Texto(2, QString(kMaximo - 1, u'a') + QStringLiteral("\U0001F600 y más"), 0);
        ASSERT_TRUE(libro.TerminarFila());
        libro.Fecha(0, QDate(1900, 2, 28), dia);
        libro.Fecha(1, QDate(1900, 3, 1), dia);
        ASSERT_TRUE(libro.TerminarFila());
        for (int i = 0; i < kFilas; ++i) {
            libro.Numero(0, -i - 0.25, 0);
            libro.Texto(1, QStringLiteral("Línea %1 de una leyenda larga como las de todos los días, con su cuenta").arg(i), 0);
            ASSERT_TRUE(libro.TerminarFila());
        }
        ASSERT_TRUE(libro.Terminar());
    }
    archivo.close();
    ASSERT_GT(archivo.size(), 1 << 16);

    const QJsonObject leido = Leido(ruta);
    EXPECT_TRUE(leido.value(QLatin1String("roto")).isNull());
    EXPECT_EQ(leido.value(QLatin1String("hoja")).toString(), QStringLiteral("Asientos <1>"));
    EXPECT_EQ(leido.value(QLatin1String("fijas")).toString(), QStringLiteral("A2"));
    EXPECT_EQ(leido.value(QLatin1String("anchos")).toArray(), (QJsonArray{10.7109375, 26.28515625, 3.7109375}));
    EXPECT_EQ(leido.value(QLatin1String("total")).toInt(), 6 + kFilas);
    EXPECT_EQ(leido.value(QLatin1String("ultima")).toArray(),
              (QJsonArray{-(kFilas - 1) - 0.25,
                          QStringLiteral("Línea %1 de una leyenda larga como las de todos los días, con su cuenta").arg(kFilas - 1),
                          QJsonValue()}));

    const QJsonObject fecha = Celda(leido, 0, 0);
    EXPECT_EQ(fecha.value(QLatin1String("valor")).toString(), QStringLiteral("Fecha"));
    EXPECT_TRUE(fecha.value(QLatin1String("negrita")).toBool());
    EXPECT_EQ(fecha.value(QLatin1String("linea")).toString(), QStringLiteral("thin"));
    EXPECT_EQ(fecha.value(QLatin1String("fondo")).toString(), QStringLiteral("FFC0C0C0"));
    EXPECT_EQ(Celda(leido, 0, 1).value(QLatin1String("valor")).toString(), QStringLiteral("Leyenda & <más>"));

    const QJsonObject dia = Celda(leido, 1, 0);
    EXPECT_EQ(dia.value(QLatin1String("valor")).toString(), QStringLiteral("2026-11-25"));
    EXPECT_EQ(dia.value(QLatin1String("formato")).toString(), QStringLiteral("dd/mm/yyyy"));
    EXPECT_EQ(dia.value(QLatin1String("color")).toString(), QStringLiteral("FFFF0000"));
    EXPECT_FALSE(dia.value(QLatin1String("negrita")).toBool());
    EXPECT_TRUE(dia.value(QLatin1String("linea")).isNull());
    const QJsonObject importe = Celda(leido, 1, 1);
    EXPECT_EQ(importe.value(QLatin1String("valor")).toDouble(), 1234567.89);
    EXPECT_EQ(importe.value(QLatin1String("formato")).toString(), QStringLiteral("\"U$S \"#,##0.00"));
    EXPECT_EQ(importe.value(QLatin1String("fondo")).toString(), QStringLiteral("FF00FF00"));
    EXPECT_EQ(Celda(leido, 1, 2).value(QLatin1String("valor")).toDouble(), 0.1 + 0.2);

    const QJsonArray vacia = leido.value(QLatin1String("filas")).toArray().at(2).toArray();
    EXPECT_TRUE(std::all_of(vacia.begin(), vacia.end(), [](const QJsonValue &v) { return v.isNull(); }));
    EXPECT_TRUE(leido.value(QLatin1String("filas")).toArray().at(3).toArray().at(0).isNull());
    EXPECT_EQ(Celda(leido, 3, 1).value(QLatin1String("valor")).toString(), QStringLiteral("  ñandú \x01 \U0001F600 a\tb  "));
    EXPECT_TRUE(Celda(leido, 3, 2).value(QLatin1String("valor")).isNull());
    EXPECT_EQ(Celda(leido, 3, 2).value(QLatin1String("fondo")).toString(), QStringLiteral("FF00FF00"));

    EXPECT_EQ(Celda(leido, 4, 0).value(QLatin1String("valor")).toString(), QStringLiteral("1900-01-01"));
    EXPECT_EQ(Celda(leido, 4, 1).value(QLatin1String("valor")).toString(), QStringLiteral("_x0041_ y _x00e9_ y _x00AF_ con a\r\nb y \x1f"));
    // Cut at the cell's limit, never between the halves of a character.
    EXPECT_EQ(Celda(leido, 4, 2).value(QLatin1String("valor")).toString(), QString(kMaximo - 1, u'a'));
    EXPECT_EQ(Celda(leido, 5, 0).value(QLatin1String("valor")).toString(), QStringLiteral("1900-02-28"));
    EXPECT_EQ(Celda(leido, 5, 1).value(QLatin1String("valor")).toString(), QStringLiteral("1900-03-01"));
}

// A sheet holds 1,048,576 rows: the next one is refused, and said to be the reason.
TEST(LibroXlsx, MasFilasDeLasQueCabenEnUnaHojaSeRechazan)
{
    QBuffer salida;
    salida.open(QIODevice::WriteOnly);
    LibroXlsx libro(salida);
    ASSERT_TRUE(libro.Empezar(QStringLiteral("Hoja"), 0, {}));
    bool bien = true;
    for (int i = 0; i < 1048575 && bien; ++i)
        bien = libro.TerminarFila();
    libro.Texto(0, u"la última que cabe", 0);
    EXPECT_TRUE(bien && libro.TerminarFila());
    EXPECT_FALSE(libro.DemasiadasFilas());
    libro.Texto(0, u"una de más", 0);
    EXPECT_FALSE(libro.TerminarFila());
    EXPECT_TRUE(libro.DemasiadasFilas());
}

// A device that stops taking bytes, at the start or within the sheet, makes the workbook fail
// rather than end as if whole.
TEST(LibroXlsx, UnDispositivoLlenoLoHaceFallar)
{
    for (const qint64 cabe : {qint64(10), qint64(4000), qint64(60000)}) {
        SCOPED_TRACE(cabe);
        DispositivoLleno lleno(cabe);
        LibroXlsx libro(lleno);
        bool bien = libro.Empezar(QStringLiteral("Hoja"), 0, {});
        for (int i = 0; i < 20000 && bien; ++i) {
            libro.Texto(0, QStringLiteral("fila %1 con un texto que ocupa").arg(i * 7919 % 10007), 0);
            bien = libro.TerminarFila();
        }
        EXPECT_FALSE(bien && libro.Terminar());
    }
}

// A grid's workbook: its sheet named in the user's language, the caption row bold over its line
// and no other row, and each cell in its own text colour even where the column changes colour
// from one row to the next.
TEST(LibroXlsx, LaGrillaDaSuFilaDeTitulosYElColorDeCadaCelda)
{
    QTemporaryDir carpeta;
    Grilla grilla;
    PrepararGrillaAsientos(grilla, QStringLiteral("Cuenta|Leyenda|Debe|Haber|Libro|Estado"));
    const int primera = grilla.Filas();
    const QRgb colores[] = {qRgb(0xff, 0, 0), qRgb(0, 0, 0xff), qRgb(0, 0, 0xff)};
    grilla.FijarFilas(primera + 4); // the last, the new-entry row the screen ends with
    for (int i = 0; i < 3; ++i) {
        grilla.FijarTexto(primera + i, 0, QStringLiteral("Cuenta %1").arg(i));
        grilla.FijarColorTexto(primera + i, 0, colores[i]);
    }
    const QString ruta = carpeta.filePath(QStringLiteral("g.xlsx"));
    EntornoExportacion ingles;
    ingles.texto = [](int n) { return n == 1010 ? QStringLiteral("Entries") : QStringLiteral("texto %1").arg(n); };
    ingles.formatoFecha = QStringLiteral("dd/mm/yyyy");
    ASSERT_FALSE(ExportacionGrilla::Escribir(ExportacionGrilla::Libro, GrillaEnPantalla{&grilla}, ruta, ingles, {}, {}));
    const QJsonObject leido = Leido(ruta);
    EXPECT_EQ(leido.value(QLatin1String("hoja")).toString(), QStringLiteral("Entries"));
    EXPECT_TRUE(Celda(leido, primera - 1, 0).value(QLatin1String("negrita")).toBool());
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const QJsonObject c = Celda(leido, primera + i, 0);
        EXPECT_EQ(c.value(QLatin1String("valor")).toString(), QStringLiteral("Cuenta %1").arg(i));
        EXPECT_FALSE(c.value(QLatin1String("negrita")).toBool());
        EXPECT_EQ(c.value(QLatin1String("color")).toString(), QStringLiteral("FF") + QColor(colores[i]).name().mid(1).toUpper());
    }
}
