#include "gridhtml.h"

#include "fuentegrilla.h"

#include "store/valoressql.h"

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

QString Alineacion(const FuenteGrilla &g, int columna, const QString &texto)
{
    switch (g.AlineacionColumna(columna)) {
    case 0: return QStringLiteral(" VALIGN=TOP");
    case 1: return {};
    case 2: return QStringLiteral(" VALIGN=BOTTOM");
    case 3: return QStringLiteral(" ALIGN=CENTER VALIGN=TOP");
    case 4: return QStringLiteral(" ALIGN=CENTER");
    case 5: return QStringLiteral(" ALIGN=CENTER VALIGN=BOTTOM");
    case 6: return QStringLiteral(" ALIGN=RIGHT VALIGN=TOP");
    case 7: return QStringLiteral(" ALIGN=RIGHT");
    case 8: return QStringLiteral(" ALIGN=RIGHT VALIGN=BOTTOM");
    default:
        break;
    }
    const int tipo = g.TipoColumna(columna);
    if (tipo == 7)
        return {};
    if (tipo == 11)
        return QStringLiteral(" ALIGN=CENTER");
    return EsNumero(texto) ? QStringLiteral(" ALIGN=RIGHT") : QString();
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
    const auto filas = RecorrerFilas(g, siguiente, [&](int r) {
        if (g.AltoFila(r) == 0 || g.FilaOculta(r))
            return true;
        if (arbol >= 0 && g.EsNodo(r)) {
            sangria.clear();
            for (int n = 0; n < g.NivelArbol(r); ++n)
                sangria += QStringLiteral("&nbsp&nbsp&nbsp&nbsp");
        }
        html += QStringLiteral("<TR>") + kCRLF;
        for (int c = 0; c < g.Columnas(); ++c) {
            if (g.AnchoColumna(c) == 0 || g.ColumnaOculta(c))
                continue;
            const RangoCeldas rango = g.Rango(r, c);
            if (rango.fila1 < r || rango.columna1 < c)
                continue;

            QString spans;
            if (rango.columna2 > c)
                spans += QStringLiteral(" COLSPAN=") + QString::number(rango.columna2 - c + 1);
            if (rango.fila2 > r)
                spans += QStringLiteral(" ROWSPAN=") + QString::number(rango.fila2 - r + 1);

            double anchoCelda = 0;
            for (int k = rango.columna1; k <= rango.columna2; ++k)
                anchoCelda += g.AnchoColumna(k);
            anchoCelda = anchoCelda * 1.3 / g.TwipsPorPixel();

            const QString mostrado = g.Texto(r, c);
            QString texto = mostrado;
            if (g.TipoColumna(c) == 11 && r >= g.FilasFijas())
                texto = g.Valor(r, c) != 0 ? QStringLiteral("Y") : QString();
            texto = EscaparHTML(texto);
            if (c == arbol)
                texto.prepend(sangria);

            const bool fija = r < g.FilasFijas() || c < g.ColumnasFijas();
            QString fondo;
            if (const quint32 color = g.ColorFondo(r, c))
                fondo = QStringLiteral(" BGCOLOR=") + ColorHTML(color);
            else if (fija)
                fondo = QStringLiteral(" BGCOLOR=") + ColorHTML(g.ColorFondoFijo());
            const QString borde = fija ? QStringLiteral(" BORDERCOLOR=") + ColorHTML(g.ColorLineasFijas()) : QString();
            QString letra;
            if (const quint32 color = g.ColorTexto(r, c))
                letra = QStringLiteral(" COLOR=") + ColorHTML(color);
            else if (fija)
                letra = QStringLiteral(" COLOR=") + ColorHTML(g.ColorTextoFijo());

            const bool negrita = g.Negrita(r, c);
            const bool cursiva = g.Cursiva(r, c);
            const bool subrayado = g.Subrayado(r, c);

            html += QStringLiteral("<td ");
            html += fija ? QStringLiteral("class=\"stTDFixed\"") : QStringLiteral("class=\"stTDFont\"");
            html += QStringLiteral(" Width = \"") + Porcentaje(anchoCelda / w) + QLatin1Char('"');
            html += fondo + Alineacion(g, c, mostrado) + borde + spans + QLatin1Char('>');
            if (!letra.isEmpty())
                html += QStringLiteral("<FONT") + letra + QLatin1Char('>');
            if (negrita)
                html += QStringLiteral("<B>");
            if (cursiva)
                html += QStringLiteral("<I>");
            if (subrayado)
                html += QStringLiteral("<U>");
            html += texto;
            if (negrita)
                html += QStringLiteral("</B>");
            if (cursiva)
                html += QStringLiteral("</I>");
            if (subrayado)
                html += QStringLiteral("</U>");
            if (!letra.isEmpty())
                html += QStringLiteral("</FONT>");
            html += QStringLiteral("</TD>") + kCRLF;
        }
        html += QStringLiteral("</TR>") + kCRLF;
        if (parte && html.size() >= kParte) {
            parte(html);
            html.clear();
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
    QString t = texto;
    t.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    t.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    t.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    return t.isEmpty() ? QStringLiteral("&nbsp;") : t;
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
