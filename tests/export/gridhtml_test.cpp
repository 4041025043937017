// The grid as an HTML page: escaping, colours, numbers, and every rule of the table.
#include "grillafalsa.h"

#include "export/gridhtml.h"

#include <QGuiApplication>
#include <QPalette>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace modGridHTML;

namespace {

// The <td ...>...</TD> pieces of a page, in order.
QStringList Celdas(const QString &html)
{
    QStringList celdas;
    static const QRegularExpression td(QStringLiteral("<td [^>]*>.*?</TD>"));
    for (auto it = td.globalMatch(html); it.hasNext();)
        celdas << it.next().captured(0);
    return celdas;
}

QString Pagina(const FuenteGrilla &g)
{
    return GridHTML(g, QStringLiteral("T"), QStringLiteral("E"), QStringLiteral("Ed"), QStringLiteral("dd/mm/yyyy"), QDateTime());
}

} // namespace

// Escaping: "&" goes first, so the entities made for "<" are not escaped again; empty is a
// space. Colours come as blue-green-red and go out as red-green-blue; a system colour is the
// palette's current one.
TEST(PiezasHTML, EscaparYColores)
{
    EXPECT_EQ(EscaparHTML(QString()), QStringLiteral("&nbsp;"));
    EXPECT_EQ(EscaparHTML(QStringLiteral("a & <b> &lt;")), QStringLiteral("a &amp; &lt;b&gt; &amp;lt;"));
    EXPECT_EQ(EscaparHTML(QStringLiteral("Pérez \"y\" cía.")), QStringLiteral("Pérez \"y\" cía."));
    EXPECT_EQ(ColorHTML(0x123456), QStringLiteral("\"#563412\""));
    EXPECT_EQ(ColorHTML(0x80), QStringLiteral("\"#800000\""));
    QPalette paleta = QGuiApplication::palette();
    paleta.setColor(QPalette::Button, QColor(0x12, 0x34, 0x56));
    QGuiApplication::setPalette(paleta);
    EXPECT_EQ(ColorHTML(0x8000000F), QStringLiteral("\"#123456\""));
    paleta.setColor(QPalette::Button, QColor(0xab, 0xcd, 0xef));
    QGuiApplication::setPalette(paleta);
    EXPECT_EQ(ColorHTML(0x8000000F), QStringLiteral("\"#ABCDEF\""));
    QGuiApplication::setPalette(QPalette());
}

TEST(EsNumero, SoloDigitosComasUnPuntoYMenosAlPrincipio)
{
    const std::pair<const char *, bool> casos[] = {
        {"", true},          {"1.234,50", true}, {"  12 ", true},  {"-5", true},    {"1,2,3", true},
        {"1.2.3", false},    {"+5", false},      {"5+", false},    {"5-", false},   {"--5", false},
        {"12a", false},      {"1 234", false},   {"-", true},      {".", true},
    };
    for (const auto &[texto, esperado] : casos)
        EXPECT_EQ(EsNumero(QString::fromUtf8(texto)), esperado) << texto;
}

// The page around the table: the title and the company escaped in the heading, the table as
// wide as its columns, the moment in the user's date format and the edition in the footer.
TEST(GridHTML, EncabezadoYPie)
{
    GrillaFalsa g(2, 2);
    const QString html = GridHTML(g, QStringLiteral("Asientos <1>"), QStringLiteral("Pérez & cía"), QStringLiteral("Ed"),
                                  QStringLiteral("dd/mm/yyyy"), QDateTime(QDate(2026, 11, 23), QTime(14, 5, 9)));
    EXPECT_TRUE(html.startsWith(QStringLiteral("<html>\r\n<head>\r\n<title>Asientos &lt;1&gt;</title>")));
    for (const char *parte : {"<span class=\"stTitleC\">Asientos &lt;1&gt;</span>", "<span class=\"stTitle\">Pérez &amp; cía</span>",
                              "<table width=\"260\" ", " WIDTH=260>\r\n<TR>", "<span class=stTitle>23/11/2026 14:05:09</span>",
                              "<span class=\"stTitle\">Ed</span></td></tr></table></body></html>"})
        EXPECT_TRUE(html.contains(QString::fromUtf8(parte))) << parte;
}

TEST(GridHTML, CeldaCombinadaLlevaSusSpansYTapaLasOtras)
{
    GrillaFalsa g(5, 4);
    g.combinadas.push_back({1, 1, 3, 2});
    g.textos[{1, 1}] = QStringLiteral("grande");
    g.textos[{2, 1}] = QStringLiteral("tapada");
    const QStringList celdas = Celdas(Pagina(g));
    // 4 caption cells, then row 1: 3 cells (one of them the block), rows 2 and 3: 2 each, row 4: 4.
    ASSERT_EQ(celdas.size(), 4 + 3 + 2 + 2 + 4);
    EXPECT_TRUE(celdas[5].contains(QStringLiteral(" COLSPAN=2 ROWSPAN=3>"))) << celdas[5].toStdString();
    EXPECT_TRUE(celdas[5].contains(QStringLiteral(">grande</TD>")));
    // The block spans two of the four equal columns.
    EXPECT_TRUE(celdas[5].contains(QStringLiteral("Width = \"50%\"")));
    for (const QString &c : celdas)
        EXPECT_FALSE(c.contains(QStringLiteral("tapada")));
}

TEST(GridHTML, OcultasNoSalenPeroSuAnchoCuenta)
{
    GrillaFalsa g(3, 3);
    g.ocultas[1] = true;
    g.filasOcultas[2] = true;
    g.altos[1] = 0;
    g.textos[{0, 1}] = QStringLiteral("oculta");
    const QString html = Pagina(g);
    // Three columns of 1500 twips: 4500 * 1.3 / 15 = 390 pixels, the hidden one included.
    EXPECT_TRUE(html.contains(QStringLiteral("WIDTH=390>")));
    EXPECT_FALSE(html.contains(QStringLiteral("oculta")));
    EXPECT_EQ(Celdas(html).size(), 2); // only the caption row, without its hidden column
    EXPECT_EQ(html.count(QStringLiteral("<TR>")), 1);

    // The control's width wins when it is larger.
    g.anchoControl = 9000;
    EXPECT_TRUE(Pagina(g).contains(QStringLiteral("WIDTH=780>")));
}

TEST(GridHTML, AlineacionesPorColumna)
{
    const std::pair<int, const char *> casos[] = {
        {0, " VALIGN=TOP>"}, {1, "%\">"}, {2, " VALIGN=BOTTOM>"}, {3, " ALIGN=CENTER VALIGN=TOP>"},
        {4, " ALIGN=CENTER>"}, {5, " ALIGN=CENTER VALIGN=BOTTOM>"}, {6, " ALIGN=RIGHT VALIGN=TOP>"},
        {7, " ALIGN=RIGHT>"}, {8, " ALIGN=RIGHT VALIGN=BOTTOM>"},
    };
    for (const auto &[codigo, esperado] : casos) {
        GrillaFalsa g(2, 1);
        g.alineaciones[0] = codigo;
        g.textos[{1, 0}] = QStringLiteral("texto");
        EXPECT_TRUE(Celdas(Pagina(g)).at(1).contains(QLatin1String(esperado))) << codigo;
    }

    // General: a number to the right, anything else as it comes.
    GrillaFalsa g(4, 1);
    g.textos[{1, 0}] = QStringLiteral("1.234,50");
    g.textos[{2, 0}] = QStringLiteral("1.2.3");
    g.textos[{3, 0}] = QStringLiteral("+5");
    const QStringList c = Celdas(Pagina(g));
    EXPECT_TRUE(c[1].contains(QStringLiteral("%\" ALIGN=RIGHT>1.234,50<")));
    EXPECT_TRUE(c[2].contains(QStringLiteral("%\">1.2.3<")));
    EXPECT_TRUE(c[3].contains(QStringLiteral("%\">+5<")));
}

// A cell's own colours; a caption cell takes the fixed colours, but for a back colour of its
// own. Empty, it counts as a number in a general column.
TEST(GridHTML, ColoresYCeldasFijas)
{
    GrillaFalsa g(2, 2);
    g.fondos[{1, 1}] = 0x00FF00;
    g.letras[{1, 1}] = 0x0000FF;
    g.fondos[{0, 1}] = 0xFF0000;
    g.textos[{1, 1}] = QStringLiteral("x<y");
    const QStringList c = Celdas(Pagina(g));
    EXPECT_EQ(c[3], QStringLiteral("<td class=\"stTDFont\" Width = \"50%\" BGCOLOR=\"#00FF00\"><FONT COLOR=\"#FF0000\">x&lt;y</FONT></TD>"));
    EXPECT_EQ(c[0], QStringLiteral("<td class=\"stTDFixed\" Width = \"50%\" BGCOLOR=\"#C0C0C0\" ALIGN=RIGHT BORDERCOLOR=\"#808080\">"
                                   "<FONT COLOR=\"#800000\">&nbsp;</FONT></TD>"));
    EXPECT_EQ(c[1], QStringLiteral("<td class=\"stTDFixed\" Width = \"50%\" BGCOLOR=\"#0000FF\" ALIGN=RIGHT BORDERCOLOR=\"#808080\">"
                                   "<FONT COLOR=\"#800000\">&nbsp;</FONT></TD>"));
}
