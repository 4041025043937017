#include "escritores.h"

#include "fuentegrilla.h"
#include "gridhtml.h"
#include "libroxlsx.h"

#include "entries/grilla.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringEncoder>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr int kFilasPorAvance = 5000;

std::vector<int> ColumnasVisibles(const FuenteDeGrilla &g)
{
    std::vector<int> visibles;
    for (int c = 0; c < g.Columnas(); ++c)
        if (!g.ColumnaOculta(c) && g.AnchoColumna(c) > 0)
            visibles.push_back(c);
    return visibles;
}

bool FilaVisible(const FuenteDeGrilla &g, int fila)
{
    return !g.FilaOculta(fila);
}

} // namespace

QString TextoParaArchivo(const FuenteDeGrilla &g, int fila, int columna, bool cabezal)
{
    // A header row goes out as the date under the first account column and the legend
    // under the second, so the debit and credit columns of a file hold amounts only.
    if (cabezal && columna <= 3) {
        if (columna == 0) {
            const QString texto = g.grilla().TextoGuardado(fila, 1);
            return texto.left(texto.indexOf(QLatin1String("  "))); // all of it when there are no blanks
        }
        return columna == 1 ? g.LeyendaCabezal(fila) : QString();
    }
    const RangoCeldas rango = g.Rango(fila, columna);
    if (rango.fila1 != fila || rango.columna1 != columna)
        return {};
    return g.Texto(fila, columna);
}

CeldaArchivo CeldaParaArchivo(const FuenteDeGrilla &g, int fila, int columna)
{
    CeldaArchivo celda;
    const QDate fecha = g.FechaCabezal(fila);
    celda.texto = TextoParaArchivo(g, fila, columna, fecha.isValid());
    if (fecha.isValid() && columna <= 3) {
        if (columna == 0) {
            celda.tipo = CeldaArchivo::Tipo::Fecha;
            celda.fecha = fecha;
        }
        return celda;
    }
    const RangoCeldas rango = g.Rango(fila, columna);
    if (rango.fila1 == fila && rango.columna1 == columna && g.EsNumero(fila, columna)) {
        celda.tipo = CeldaArchivo::Tipo::Numero;
        celda.numero = g.Valor(fila, columna);
        celda.mascara = g.MascaraDe(fila, columna);
    }
    return celda;
}

namespace {

// Why a file was not written, told by text 1938 with the reason.
Fallo noSeEscribio(const QString &motivo)
{
    return {1938, motivo};
}

} // namespace

namespace Escritores {

std::optional<Fallo> Confirmar(QSaveFile &archivo)
{
    if (!archivo.flush()) {
        archivo.cancelWriting();
        return Fallo{kNoSeEscribioEntero, QString()};
    }
    if (!archivo.commit())
        return noSeEscribio(archivo.errorString());
    return std::nullopt;
}

QString ConArchivo(const QString &ruta, const QString &motivo)
{
    const QString nombre = QDir::toNativeSeparators(ruta);
    return motivo.contains(nombre) ? motivo : nombre + QStringLiteral(": ") + motivo;
}

QString CampoCSV(const QString &texto)
{
    QString campo;
    AgregarCampoCSV(campo, texto);
    return campo;
}

void AgregarCampoCSV(QString &registro, const QString &texto)
{
    const bool comillas = std::any_of(texto.begin(), texto.end(), [](QChar c) {
        return c == u',' || c == u'"' || c == u'\n' || c == u'\r';
    });
    if (!comillas) {
        registro += texto;
        return;
    }
    registro += QLatin1Char('"');
    if (texto.contains(QLatin1Char('"')))
        registro += QString(texto).replace(QLatin1Char('"'), QLatin1String("\"\""));
    else
        registro += texto;
    registro += QLatin1Char('"');
}

std::optional<Fallo> EscribirHTML(const FuenteDeGrilla &g, const QString &ruta, const QString &titulo,
                                    const QString &empresa, const QString &edicion, const QString &formatoFecha,
                                    const QDateTime &ahora, const SiguienteParte &siguiente)
{
    QSaveFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly))
        return noSeEscribio(archivo.errorString());
    // A byte-order mark tells a browser the page is UTF-8, so accents show right.
    bool escrito = archivo.write("\xEF\xBB\xBF", 3) == 3;
    // A part that cannot be read leaves no file.
    if (auto fallo = modGridHTML::GridHTMLEnPartes(
            g, titulo, empresa, edicion, formatoFecha, ahora,
            [&](const QString &parte) {
                const QByteArray datos = parte.toUtf8();
                escrito = escrito && archivo.write(datos) == datos.size();
            },
            siguiente))
        return fallo;
    if (!escrito) {
        archivo.cancelWriting();
        return Fallo{kNoSeEscribioEntero, QString()};
    }
    return Confirmar(archivo);
}

std::optional<Fallo> EscribirCSV(const FuenteDeGrilla &g, const QString &ruta, const AvanceExportacion &avance,
                                 const SiguienteParte &siguiente)
{
    QSaveFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly))
        return noSeEscribio(archivo.errorString());
    const std::vector<int> columnas = ColumnasVisibles(g);
    QString registro;
    QStringEncoder utf8(QStringEncoder::Utf8);
    QByteArray bloque;
    bloque.reserve(1 << 20);
    // A byte-order mark tells a spreadsheet the text is UTF-8, so accents open right.
    bloque += "\xEF\xBB\xBF";
    const int total = siguiente ? 0 : g.Filas();
    int hechas = 0;
    bool escrito = true;
    const auto filas = RecorrerFilas(g, siguiente, [&](int r) {
        if (!FilaVisible(g, r))
            return true;
        registro.clear();
        const bool cabezal = g.FechaCabezal(r).isValid();
        for (size_t i = 0; i < columnas.size(); ++i) {
            if (i > 0)
                registro += QLatin1Char(',');
            AgregarCampoCSV(registro, TextoParaArchivo(g, r, columnas[i], cabezal));
        }
        registro += QLatin1String("\r\n");
        // Encoded straight into the block, without an array per row.
        const qsizetype usados = bloque.size();
        bloque.resize(usados + registro.size() * 3);
        bloque.resize(utf8.appendToBuffer(bloque.data() + usados, registro) - bloque.data());
        if (bloque.size() >= (1 << 20)) {
            escrito = archivo.write(bloque) == bloque.size();
            bloque.clear();
        }
        if (avance && ++hechas % kFilasPorAvance == 0)
            avance(hechas, total);
        return escrito;
    });
    // A part that cannot be read leaves no file.
    if (!filas)
        return filas.fallo();
    if (!escrito || archivo.write(bloque) != bloque.size())
        return Fallo{kNoSeEscribioEntero, QString()};
    if (auto fallo = Confirmar(archivo))
        return fallo;
    if (avance)
        avance(*filas, *filas);
    return std::nullopt;
}

QString FormatoNumeroLibro(const QString &mascara)
{
    static const QString kCodigos = QStringLiteral("#0,.");
    QString salida;
    QString literal;
    auto volcar = [&] {
        if (!literal.isEmpty())
            salida += QLatin1Char('"') + literal + QLatin1Char('"');
        literal.clear();
    };
    for (const QChar ch : mascara) {
        if (kCodigos.contains(ch)) {
            volcar();
            salida += ch;
        } else if (ch != QLatin1Char('"')) {
            literal += ch;
        }
    }
    volcar();
    return salida;
}

namespace {

QString FormatoFechaLibro(const QString &formatoSuite)
{
    // The suite's "dd/mm/yyyy" notation reads the same in a spreadsheet; minutes ("nn")
    // are "mm" there.
    QString f = formatoSuite.toLower();
    f.replace(QLatin1String("nn"), QLatin1String("mm"));
    return f.isEmpty() ? QStringLiteral("dd/mm/yyyy") : f;
}

quint32 Rgb(quint32 valor)
{
    if (!valor)
        return LibroXlsx::kSinColor;
    const QColor c = ColorVista::AColor(valor);
    return (quint32(c.red()) << 16) | (quint32(c.green()) << 8) | quint32(c.blue());
}

} // namespace

std::optional<Fallo> EscribirLibro(const FuenteDeGrilla &g, const QString &ruta, const QString &formatoFecha, const QString &hoja,
                                     const AvanceExportacion &avance, const SiguienteParte &siguiente)
{
    QSaveFile archivo(ruta);
    if (!archivo.open(QIODevice::WriteOnly))
        return noSeEscribio(archivo.errorString());
    LibroXlsx libro(archivo);
    if (!libro.Listo()) {
        archivo.cancelWriting();
        return Fallo{kNoSeCreoLibro, QString()};
    }
    const std::vector<int> columnas = ColumnasVisibles(g);
    std::vector<double> anchos;
    for (const int c : columnas)
        anchos.push_back(g.AnchoColumna(c) / g.TwipsPorPixel() / 7.0);
    bool escrito = libro.Empezar(hoja, g.FilasFijas(), anchos);
    const QString fechas = FormatoFechaLibro(formatoFecha);

    // A column's cells mostly share one style: the last one asked is kept for each column
    // and kind of cell, so the style table is looked up only when something changes.
    struct Ultimo
    {
        QString mascara;
        quint32 texto = 0, fondo = 0;
        bool fija = false;
        int estilo = -1;
    };
    std::vector<std::array<Ultimo, 3>> ultimos(columnas.size());
    const auto estilo = [&](size_t columna, CeldaArchivo::Tipo tipo, const QString &mascara, quint32 texto, quint32 fondo, bool fija) {
        Ultimo &u = ultimos[columna][size_t(tipo)];
        if (u.estilo < 0 || u.texto != texto || u.fondo != fondo || u.fija != fija || u.mascara != mascara) {
            const QString numero = tipo == CeldaArchivo::Tipo::Numero ? FormatoNumeroLibro(mascara)
                                 : tipo == CeldaArchivo::Tipo::Fecha  ? fechas
                                                                      : QString();
            u = {mascara, texto, fondo, fija, libro.Estilo(numero, texto, fondo, fija)};
        }
        return u.estilo;
    };

    const int total = siguiente ? 0 : g.Filas();
    int hechas = 0;
    const auto filas = RecorrerFilas(g, siguiente, [&](int r) {
        if (!FilaVisible(g, r))
            return true;
        const bool fija = r < g.FilasFijas();
        const quint32 fondo = Rgb(fija ? g.ColorFondoFijo() : g.ColorFondo(r, 0));
        for (size_t i = 0; i < columnas.size(); ++i) {
            const CeldaArchivo celda = CeldaParaArchivo(g, r, columnas[i]);
            const quint32 texto = Rgb(g.ColorTexto(r, columnas[i]));
            const int col = int(i);
            switch (celda.tipo) {
            case CeldaArchivo::Tipo::Numero:
                libro.Numero(col, celda.numero, estilo(i, celda.tipo, celda.mascara, texto, fondo, fija));
                break;
            case CeldaArchivo::Tipo::Fecha:
                // A sheet's dates start in 1900: an earlier one goes as it shows.
                if (celda.fecha.year() < 1900)
                    libro.Texto(col, celda.texto, estilo(i, CeldaArchivo::Tipo::Texto, {}, texto, fondo, fija));
                else
                    libro.Fecha(col, celda.fecha, estilo(i, celda.tipo, {}, texto, fondo, fija));
                break;
            case CeldaArchivo::Tipo::Texto:
                // An empty cell is written only to show its background.
                if (!celda.texto.isEmpty())
                    libro.Texto(col, celda.texto, estilo(i, celda.tipo, {}, texto, fondo, fija));
                else if (fondo != LibroXlsx::kSinColor)
                    libro.Vacia(col, estilo(i, celda.tipo, {}, LibroXlsx::kSinColor, fondo, fija));
                break;
            }
        }
        escrito = libro.TerminarFila() && escrito;
        if (avance && ++hechas % kFilasPorAvance == 0)
            avance(hechas, total);
        return escrito;
    });
    // A part that cannot be read leaves no file.
    if (!filas)
        return filas.fallo();
    if (!escrito || !libro.Terminar()) {
        archivo.cancelWriting();
        return Fallo{libro.DemasiadasFilas() ? kDemasiadasFilas : kNoSeEscribioEntero, QString()};
    }
    if (auto fallo = Confirmar(archivo))
        return fallo;
    if (avance)
        avance(*filas, *filas);
    return std::nullopt;
}

} // namespace Escritores
