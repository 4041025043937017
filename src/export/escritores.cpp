#include "escritores.h"

#include "bibliotecalibro.h"
#include "fuentegrilla.h"
#include "gridhtml.h"

#include "entries/grilla.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringEncoder>
#include <QTemporaryFile>


#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <locale.h>

#include <sys/stat.h>
#include <map>
#include <tuple>
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
    if (!archivo.commit())
        return noSeEscribio(archivo.errorString());
    return std::nullopt;
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
    if (!archivo.commit())
        return noSeEscribio(archivo.errorString());
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

// The workbook's cell formats, made once per combination.
class FormatosLibro
{
public:
    FormatosLibro(lxw_workbook *libro, QString formatoFecha)
        : m_libro(libro)
        , m_fecha(std::move(formatoFecha))
    {
    }

    lxw_format *Formato(const QString &numero, quint32 texto, quint32 fondo, bool fija)
    {
        const auto clave = std::make_tuple(numero, texto, fondo, fija);
        auto it = m_formatos.find(clave);
        if (it != m_formatos.end())
            return it->second;
        lxw_format *f = Xlsx().workbook_add_format(m_libro);
        if (!numero.isEmpty())
            Xlsx().format_set_num_format(f, numero.toUtf8().constData());
        if (texto)
            Xlsx().format_set_font_color(f, Rgb(texto));
        if (fondo)
            Xlsx().format_set_bg_color(f, Rgb(fondo));
        if (fija) {
            Xlsx().format_set_bold(f);
            Xlsx().format_set_bottom(f, LXW_BORDER_THIN);
        }
        m_formatos.emplace(clave, f);
        return f;
    }

    const QString &FormatoFecha() const { return m_fecha; }

private:
    static lxw_color_t Rgb(quint32 valor)
    {
        const QColor c = ColorVista::AColor(valor);
        return lxw_color_t((c.red() << 16) | (c.green() << 8) | c.blue());
    }

    lxw_workbook *m_libro;
    QString m_fecha;
    std::map<std::tuple<QString, quint32, quint32, bool>, lxw_format *> m_formatos;
};

QString FormatoFechaLibro(const QString &formatoSuite)
{
    // The suite's "dd/mm/yyyy" notation reads the same in a spreadsheet; minutes ("nn")
    // are "mm" there.
    QString f = formatoSuite.toLower();
    f.replace(QLatin1String("nn"), QLatin1String("mm"));
    return f.isEmpty() ? QStringLiteral("dd/mm/yyyy") : f;
}

// The workbook library prints numbers with the C library's printf, which follows the
// process's numeric locale: under a Spanish one, 4703.31 would be written "4703,31" and the
// workbook would not open. The C locale holds on this thread while the workbook is made.
class LocaleNumericoC
{
public:
    LocaleNumericoC()
        : m_c(::newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr)))
        , m_anterior(m_c ? ::uselocale(m_c) : static_cast<locale_t>(nullptr))
    {
    }
    ~LocaleNumericoC()
    {
        if (m_c) {
            ::uselocale(m_anterior);
            ::freelocale(m_c);
        }
    }
    LocaleNumericoC(const LocaleNumericoC &) = delete;
    LocaleNumericoC &operator=(const LocaleNumericoC &) = delete;

private:
    locale_t m_c;
    locale_t m_anterior;
};

} // namespace

std::optional<Fallo> EscribirLibro(const FuenteDeGrilla &g, const QString &ruta, const QString &formatoFecha,
                                     const AvanceExportacion &avance, const SiguienteParte &siguiente)
{
    // The workbook is written under a temporary name in the same folder and renamed.
    const QFileInfo destino(ruta);
    QTemporaryFile provisorio(destino.absolutePath() + QStringLiteral("/.") + destino.fileName()
                              + QStringLiteral(".XXXXXX"));
    if (!Xlsx().error.isEmpty())
        return noSeEscribio(Xlsx().error);
    if (!provisorio.open())
        return noSeEscribio(provisorio.errorString());
    const QByteArray rutaProvisoria = QFile::encodeName(provisorio.fileName());
    provisorio.close();

    const LocaleNumericoC numerosC;
    lxw_workbook_options opciones{};
    opciones.constant_memory = LXW_TRUE;
    const QByteArray carpetaTemporal = QFile::encodeName(QDir::tempPath());
    opciones.tmpdir = const_cast<char *>(carpetaTemporal.constData());
    lxw_workbook *libro = Xlsx().workbook_new_opt(rutaProvisoria.constData(), &opciones);
    if (!libro)
        return Fallo{kNoSeCreoLibro, QString()};
    // However the export ends, the workbook is let go.
    struct Cierre
    {
        lxw_workbook *&libro;
        ~Cierre()
        {
            if (libro)
                Xlsx().workbook_close(libro);
        }
    } cierre{libro};
    lxw_worksheet *hoja = Xlsx().workbook_add_worksheet(libro, "Asientos");
    FormatosLibro formatos(libro, FormatoFechaLibro(formatoFecha));

    if (g.FilasFijas() > 0)
        Xlsx().worksheet_freeze_panes(hoja, lxw_row_t(g.FilasFijas()), 0);
    const std::vector<int> columnas = ColumnasVisibles(g);
    for (size_t i = 0; i < columnas.size(); ++i)
        Xlsx().worksheet_set_column(hoja, lxw_col_t(i), lxw_col_t(i), g.AnchoColumna(columnas[i]) / g.TwipsPorPixel() / 7.0,
                             nullptr);

    lxw_error error = LXW_NO_ERROR;
    lxw_row_t filaLibro = 0;
    const int total = siguiente ? 0 : g.Filas();
    int hechas = 0;
    const auto filas = RecorrerFilas(g, siguiente, [&](int r) {
        if (!FilaVisible(g, r))
            return true;
        const bool fija = r < g.FilasFijas();
        const quint32 fondo = fija ? g.ColorFondoFijo() : g.ColorFondo(r, 0);
        for (size_t i = 0; i < columnas.size() && error == LXW_NO_ERROR; ++i) {
            const int c = columnas[i];
            const CeldaArchivo celda = CeldaParaArchivo(g, r, c);
            const quint32 texto = g.ColorTexto(r, c);
            const lxw_col_t col = lxw_col_t(i);
            switch (celda.tipo) {
            case CeldaArchivo::Tipo::Numero:
                error = Xlsx().worksheet_write_number(hoja, filaLibro, col, celda.numero,
                                               formatos.Formato(FormatoNumeroLibro(celda.mascara), texto, fondo, fija));
                break;
            case CeldaArchivo::Tipo::Fecha: {
                lxw_datetime fecha{celda.fecha.year(), celda.fecha.month(), celda.fecha.day(), 0, 0, 0};
                error = Xlsx().worksheet_write_datetime(hoja, filaLibro, col, &fecha,
                                                 formatos.Formato(formatos.FormatoFecha(), texto, fondo, fija));
                break;
            }
            case CeldaArchivo::Tipo::Texto:
                if (celda.texto.isEmpty())
                    error = fondo ? Xlsx().worksheet_write_blank(hoja, filaLibro, col, formatos.Formato({}, 0, fondo, fija))
                                  : LXW_NO_ERROR;
                else
                    error = Xlsx().worksheet_write_string(hoja, filaLibro, col, celda.texto.toUtf8().constData(),
                                                   formatos.Formato({}, texto, fondo, fija));
                break;
            }
        }
        ++filaLibro;
        if (avance && ++hechas % kFilasPorAvance == 0)
            avance(hechas, total);
        return error == LXW_NO_ERROR;
    });
    const lxw_error alCerrar = Xlsx().workbook_close(std::exchange(libro, nullptr));
    // A part that cannot be read leaves no file: the temporary one goes with provisorio.
    if (!filas)
        return filas.fallo();
    if (error == LXW_NO_ERROR)
        error = alCerrar;
    if (error != LXW_NO_ERROR) {
        QFile::remove(QFile::decodeName(rutaProvisoria));
        return noSeEscribio(QString::fromUtf8(Xlsx().lxw_strerror(error)));
    }
    // The temporary file is private; the workbook gets the permissions of any new file.
    const mode_t mascara = ::umask(0);
    ::umask(mascara);
    ::chmod(rutaProvisoria.constData(), 0666 & ~mascara);
    if (std::rename(rutaProvisoria.constData(), QFile::encodeName(destino.absoluteFilePath()).constData()) != 0) {
        const QString motivo = QString::fromLocal8Bit(std::strerror(errno));
        QFile::remove(QFile::decodeName(rutaProvisoria));
        return noSeEscribio(motivo);
    }
    provisorio.setAutoRemove(false);
    if (avance)
        avance(*filas, *filas);
    return std::nullopt;
}

} // namespace Escritores
