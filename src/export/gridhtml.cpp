#include "gridhtml.h"

#include "fuentegrilla.h"

#include "store/valoressql.h"

#include <QHash>

#include <cmath>

namespace modGridHTML {

namespace {

const QString kCRLF = QStringLiteral("\r\n");

// The table width in pixels: every column's width, hidden ones included, or the
// control's when that is larger.
double AnchoTabla(const FuenteGrilla &g)
{
    double total = 0;
    for (int c = 0; c < g.Columnas(); ++c)
        total += g.AnchoColumna(c);
    total = std::max(total, double(g.AnchoControl()));
    return total * 1.3 / g.TwipsPorPixel();
}

// A fraction as a whole percentage, "#%": no digit at all when it rounds to 0.
QString Porcentaje(double fraccion)
{
    const long n = std::lround(fraccion * 100);
    return (n == 0 ? QString() : QString::number(n)) + QLatin1Char('%');
}

QLatin1StringView Alineacion(const FuenteGrilla &g, int columna, const QString &texto)
{
    switch (g.AlineacionColumna(columna)) {
    case 0: return QLatin1StringView(" VALIGN=TOP");
    case 1: return {};
    case 2: return QLatin1StringView(" VALIGN=BOTTOM");
    case 3: return QLatin1StringView(" ALIGN=CENTER VALIGN=TOP");
    case 4: return QLatin1StringView(" ALIGN=CENTER");
    case 5: return QLatin1StringView(" ALIGN=CENTER VALIGN=BOTTOM");
    case 6: return QLatin1StringView(" ALIGN=RIGHT VALIGN=TOP");
    case 7: return QLatin1StringView(" ALIGN=RIGHT");
    case 8: return QLatin1StringView(" ALIGN=RIGHT VALIGN=BOTTOM");
    default:
        break;
    }
    const int tipo = g.TipoColumna(columna);
    if (tipo == 7)
        return {};
    if (tipo == 11)
        return QLatin1StringView(" ALIGN=CENTER");
    return EsNumero(texto) ? QLatin1StringView(" ALIGN=RIGHT") : QLatin1StringView();
}

// The text of a cell as HTML, added where the page is being written.
void AgregarEscapado(QString &html, QStringView texto)
{
    if (texto.isEmpty()) {
        html += QLatin1StringView("&nbsp;");
        return;
    }
    qsizetype desde = 0;
    for (qsizetype i = 0; i < texto.size(); ++i) {
        const char16_t ch = texto[i].unicode();
        const char *entidad = ch == u'&' ? "&amp;" : ch == u'<' ? "&lt;" : ch == u'>' ? "&gt;" : nullptr;
        if (!entidad)
            continue;
        html += texto.mid(desde, i - desde);
        html += QLatin1StringView(entidad);
        desde = i + 1;
    }
    html += texto.mid(desde);
}

constexpr qsizetype kParte = 1 << 19;

std::optional<Fallo> TablaDatos(const FuenteGrilla &g, double w, QString &html, const std::function<void(const QString &)> &parte,
                                const SiguienteParte &siguiente)
{
    const QString ancho = QString::number(qint64(w));
    html += QStringLiteral("<TABLE CELLSPACING=0 CELLPADDING=0 vALIGN=CENTER") + QStringLiteral(" WIDTH=") + ancho
            + QStringLiteral(">") + kCRLF;
    const int arbol = g.BarraArbol() ? g.ColumnaArbol() : -1;
    QString sangria; // the indent of the latest node row
    // What repeats cell after cell is made once: each colour's attribute value and each
    // span's width.
    QHash<quint32, QString> colores;
    auto colorHTML = [&colores](quint32 color) -> const QString & {
        auto c = colores.constFind(color);
        return c != colores.cend() ? *c : *colores.insert(color, ColorHTML(color));
    };
    QHash<quint64, QString> anchos;
    auto anchoDe = [&](int desde, int hasta) -> const QString & {
        const quint64 clave = quint64(quint32(desde)) << 32 | quint32(hasta);
        if (auto a = anchos.constFind(clave); a != anchos.cend())
            return *a;
        double anchoCelda = 0;
        for (int k = desde; k <= hasta; ++k)
            anchoCelda += g.AnchoColumna(k);
        anchoCelda = anchoCelda * 1.3 / g.TwipsPorPixel();
        return *anchos.insert(clave, QStringLiteral(" Width = \"") + Porcentaje(anchoCelda / w) + QLatin1Char('"'));
    };
    const auto filas = RecorrerFilas(g, siguiente, [&](int r) {
        if (g.AltoFila(r) == 0 || g.FilaOculta(r))
            return true;
        if (arbol >= 0 && g.EsNodo(r)) {
            sangria.clear();
            for (int n = 0; n < g.NivelArbol(r); ++n)
                sangria += QStringLiteral("&nbsp&nbsp&nbsp&nbsp");
        }
        html += QLatin1StringView("<TR>\r\n");
        for (int c = 0; c < g.Columnas(); ++c) {
            if (g.AnchoColumna(c) == 0 || g.ColumnaOculta(c))
                continue;
            const RangoCeldas rango = g.Rango(r, c);
            if (rango.fila1 < r || rango.columna1 < c)
                continue;

            const QString mostrado = g.Texto(r, c);
            const bool fija = r < g.FilasFijas() || c < g.ColumnasFijas();
            // A cell's own colour, or for a fixed cell the fixed cells' colour.
            const quint32 fondoCelda = g.ColorFondo(r, c);
            const quint32 letraCelda = g.ColorTexto(r, c);
            const bool conFondo = fondoCelda || fija;
            const bool conLetra = letraCelda || fija;
            const bool negrita = g.Negrita(r, c);
            const bool cursiva = g.Cursiva(r, c);
            const bool subrayado = g.Subrayado(r, c);

            html += fija ? QLatin1StringView("<td class=\"stTDFixed\"") : QLatin1StringView("<td class=\"stTDFont\"");
            html += anchoDe(rango.columna1, rango.columna2);
            if (conFondo) {
                html += QLatin1StringView(" BGCOLOR=");
                html += colorHTML(fondoCelda ? fondoCelda : g.ColorFondoFijo());
            }
            html += Alineacion(g, c, mostrado);
            if (fija) {
                html += QLatin1StringView(" BORDERCOLOR=");
                html += colorHTML(g.ColorLineasFijas());
            }
            if (rango.columna2 > c) {
                html += QLatin1StringView(" COLSPAN=");
                html += QString::number(rango.columna2 - c + 1);
            }
            if (rango.fila2 > r) {
                html += QLatin1StringView(" ROWSPAN=");
                html += QString::number(rango.fila2 - r + 1);
            }
            html += QLatin1Char('>');
            if (conLetra) {
                html += QLatin1StringView("<FONT COLOR=");
                html += colorHTML(letraCelda ? letraCelda : g.ColorTextoFijo());
                html += QLatin1Char('>');
            }
            if (negrita)
                html += QLatin1StringView("<B>");
            if (cursiva)
                html += QLatin1StringView("<I>");
            if (subrayado)
                html += QLatin1StringView("<U>");
            if (c == arbol)
                html += sangria;
            if (g.TipoColumna(c) == 11 && r >= g.FilasFijas())
                AgregarEscapado(html, g.Valor(r, c) != 0 ? QStringView(u"Y") : QStringView());
            else
                AgregarEscapado(html, mostrado);
            if (negrita)
                html += QLatin1StringView("</B>");
            if (cursiva)
                html += QLatin1StringView("</I>");
            if (subrayado)
                html += QLatin1StringView("</U>");
            if (conLetra)
                html += QLatin1StringView("</FONT>");
            html += QLatin1StringView("</TD>\r\n");
        }
        html += QStringLiteral("</TR>") + kCRLF;
        if (parte && html.size() >= kParte) {
            parte(html);
            html.resize(0); // keeps its room for the next part
        }
        return true;
    });
    if (!filas)
        return filas.fallo();
    html += QStringLiteral("</TABLE>") + kCRLF + kCRLF;
    return std::nullopt;
}

} // namespace

QString EscaparHTML(const QString &texto)
{
    QString t;
    AgregarEscapado(t, texto);
    return t;
}

QString ColorHTML(quint32 color)
{
    QString h = QString::number(color, 16).toUpper();
    if (h.size() >= 7 && h.at(0) == QLatin1Char('8')) {
        const QColor sistema = ColorVista::AColor(ColorVista::kSistema | h.mid(1).toUInt(nullptr, 16));
        h = QString::number(ColorVista::DesdeRgb(sistema.rgb()), 16).toUpper();
    }
    h = h.rightJustified(6, QLatin1Char('0'));
    return QStringLiteral("\"#") + h.right(2) + h.mid(2, 2) + h.left(2) + QLatin1Char('"');
}

bool EsNumero(const QString &texto)
{
    const QString t = texto.trimmed();
    int puntos = 0;
    for (qsizetype i = 0; i < t.size(); ++i) {
        const QChar ch = t.at(i);
        if (ch == QLatin1Char('-') && i == 0)
            continue;
        if (ch == QLatin1Char('.')) {
            if (++puntos > 1)
                return false;
        } else if (!ch.isDigit() && ch != QLatin1Char(',')) {
            return false;
        }
    }
    return true;
}

std::optional<Fallo> GridHTMLEnPartes(const FuenteGrilla &grilla, const QString &tituloDado, const QString &empresaDada,
                                      const QString &edicion, const QString &formatoFecha, const QDateTime &ahora,
                                      const std::function<void(const QString &)> &parte, const SiguienteParte &siguiente)
{
    const double w = AnchoTabla(grilla);
    const QString ancho = QString::number(qint64(w));
    // The title and the company are text like the cells: "&" or "<" in a name stays text.
    const QString titulo = EscaparHTML(tituloDado);
    const QString empresa = EscaparHTML(empresaDada);
    QString html;
    html.reserve(kParte + 4096);
    html += QStringLiteral("<html>") + kCRLF + QStringLiteral("<head>") + kCRLF + QStringLiteral("<title>") + titulo
            + QStringLiteral("</title>") + kCRLF;
    html += QStringLiteral("<style>.stBody{FONT-WEIGHT: normal; FONT-SIZE: 8pt; COLOR: #666666;Font -FAMILY: tahoma , arial}")
            + QStringLiteral(" .stTbTitleMargin {PADDING-RIGHT: 2px; PADDING-LEFT: 2px; PADDING-BOTTOM: 2px; PADDING-TOP: 2px}")
            + QStringLiteral(".stTitle {FONT-SIZE: 8pt; COLOR: #586a9c; Font -FAMILY: tahoma , arial}") + kCRLF
            + QStringLiteral(".stTitleC {FONT-WEIGHT: bold; FONT-SIZE: 10pt; COLOR: #586a9c; Font -FAMILY: tahoma , arial}")
            + kCRLF + QStringLiteral(".stTDFixed{FONT-SIZE: 9pt; FONT-FAMILY: tahoma, arial}")
            + QStringLiteral(".stTDFont{FONT-SIZE: 8pt; FONT-FAMILY: tahoma, arial}")
            + QStringLiteral(".stTableH { BORDER-BOTTOM: #000000 1px solid}")
            + QStringLiteral(".stTableF { BORDER-TOP: #000000 1px solid}") + QStringLiteral("</style></head>") + kCRLF;
    html += QStringLiteral("<body class=\"stBody\">") + kCRLF;
    html += QStringLiteral("<table width=\"") + ancho
            + QStringLiteral("\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\" class=\"stTableH\">") + kCRLF
            + QStringLiteral("<tr><td align=\"left\" width=\"60%\" class=\"stTbTitleMargin\"><span class=\"stTitleC\">")
            + titulo + QStringLiteral("</span></td>")
            + QStringLiteral("<td align=\"right\" width=\"40%\" class=\"stTbTitleMargin\"><span class=\"stTitle\">")
            + empresa + QStringLiteral("</span></td></tr>") + kCRLF + QStringLiteral("</table><br>") + kCRLF;
    if (auto fallo = TablaDatos(grilla, w, html, parte, siguiente))
        return fallo;
    html += kCRLF + QStringLiteral("<br>") + QStringLiteral("<table width=\"") + ancho
            + QStringLiteral("\" border=\"0\" cellpadding=\"0\" cellspacing=\"0\" class=\"stTableF\">") + kCRLF
            + QStringLiteral("<tr><td><span class=stTitle>")
            + FormatoFechaSuite(ahora, formatoFecha + QStringLiteral(" hh:nn:ss"))
            + QStringLiteral("</span></td>") + QStringLiteral("<td align=right><span class=\"stTitle\">") + edicion
            + QStringLiteral("</span></td></tr></table>") + QStringLiteral("</body></html>");
    parte(html);
    return std::nullopt;
}

QString GridHTML(const FuenteGrilla &grilla, const QString &titulo, const QString &empresa, const QString &edicion,
                 const QString &formatoFecha, const QDateTime &ahora)
{
    QString pagina;
    // Without parts to read there is nothing that can fail.
    static_cast<void>(GridHTMLEnPartes(grilla, titulo, empresa, edicion, formatoFecha, ahora,
                                       [&pagina](const QString &parte) { pagina += parte; }));
    return pagina;
}

} // namespace modGridHTML
