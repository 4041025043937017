#include "paginasgrilla.h"

#include "fuentegrilla.h"

#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double kTwipsPorPunto = 20.0;

Qt::Alignment AlineacionDe(int codigo)
{
    switch (codigo) {
    case 3: case 4: case 5: return Qt::AlignHCenter;
    case 6: case 7: case 8: return Qt::AlignRight;
    default: return Qt::AlignLeft;
    }
}

} // namespace

void PaginasGrilla::Limpiar()
{
    m_g = nullptr;
    m_paginas.clear();
    m_columnas.clear();
    m_anchos.clear();
    m_fijas.clear();
}

void PaginasGrilla::Componer(const FuenteGrilla &g, const QPageLayout &pagina, const QString &titulo, const QString &pie)
{
    Limpiar();
    m_g = &g;
    m_titulo = titulo;
    m_pie = pie;
    m_pagina = pagina;

    double total = 0;
    for (int c = 0; c < g.Columnas(); ++c) {
        if (g.ColumnaOculta(c) || g.AnchoColumna(c) <= 0)
            continue;
        m_columnas.push_back(c);
        m_anchos.push_back(g.AnchoColumna(c) / kTwipsPorPunto);
        total += m_anchos.back();
    }
    const QRectF area = pagina.paintRect(QPageLayout::Point);
    m_escala = total > area.width() && total > 0 ? area.width() / total : 1.0;

    for (int r = 0; r < g.FilasFijas(); ++r)
        if (!g.FilaOculta(r))
            m_fijas.push_back(r);
    // A grid wider than the page is drawn smaller, letters included, so nothing is cut.
    const double alto = kAltoFila * m_escala;
    const double disponible = area.height() - kAltoTitulo - kAltoPie - double(m_fijas.size()) * alto;
    const int porPagina = std::max(2, int(disponible / alto));
    std::vector<int> actual;
    for (int r = g.FilasFijas(); r < g.Filas(); ++r) {
        if (g.FilaOculta(r) || g.AltoFila(r) == 0)
            continue;
        // An entry's header row (a row that opens a block of cells) never ends a page.
        const bool abreBloque = g.Columnas() > 1 && g.Rango(r, 1).columna2 > 1;
        if (abreBloque && int(actual.size()) == porPagina - 1) {
            m_paginas.push_back(std::move(actual));
            actual.clear();
        }
        actual.push_back(r);
        if (int(actual.size()) == porPagina) {
            m_paginas.push_back(std::move(actual));
            actual.clear();
        }
    }
    if (!actual.empty() || m_paginas.empty())
        m_paginas.push_back(std::move(actual));
}

double PaginasGrilla::AnchoEnPapel(int columna) const
{
    for (size_t i = 0; i < m_columnas.size(); ++i)
        if (m_columnas[i] == columna)
            return m_anchos[i] * m_escala;
    return 0;
}

bool PaginasGrilla::Imprimir(QPagedPaintDevice &dispositivo) const
{
    QPainter p;
    if (!p.begin(&dispositivo))
        return false;
    const double escala = dispositivo.logicalDpiX() / 72.0;
    for (int n = 0; n < Paginas(); ++n) {
        if (n > 0 && !dispositivo.newPage())
            return false;
        p.save();
        p.scale(escala, dispositivo.logicalDpiY() / 72.0);
        DibujarPagina(p, n);
        p.restore();
    }
    return p.end();
}

void PaginasGrilla::DibujarPagina(QPainter &p, int n) const
{
    if (!m_g)
        return;
    const QRectF area = m_pagina.paintRect(QPageLayout::Point);
    const double ancho = area.width();
    QFont letra(QStringLiteral("DejaVu Sans"));
    letra.setPixelSize(8);

    // Heading: the title's parts at the left, centre and right, a rule under them.
    // "left|centre|right": the right part keeps any further "|" (a company's name may have one).
    const QStringList partes{m_titulo.section(QLatin1Char('|'), 0, 0), m_titulo.section(QLatin1Char('|'), 1, 1),
                             m_titulo.section(QLatin1Char('|'), 2)};
    QFont fuerte = letra;
    fuerte.setPixelSize(11);
    fuerte.setBold(true);
    const Qt::Alignment lugares[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    for (int i = 0; i < std::min<int>(3, int(partes.size())); ++i) {
        p.setFont(i == 0 ? fuerte : letra);
        p.setPen(QColor(0x58, 0x6a, 0x9c));
        p.drawText(QRectF(0, 0, ancho, kAltoTitulo - 8), int(lugares[i] | Qt::AlignBottom), partes.at(i));
    }
    p.setPen(QPen(Qt::black, 0.5));
    p.drawLine(QPointF(0, kAltoTitulo - 4), QPointF(ancho, kAltoTitulo - 4));

    p.setFont(letra);
    p.save();
    p.translate(0, kAltoTitulo);
    p.scale(m_escala, m_escala);
    double y = 0;
    for (int r : m_fijas) {
        DibujarFila(p, r, y);
        y += kAltoFila;
    }
    for (int r : m_paginas[size_t(n)]) {
        DibujarFila(p, r, y);
        y += kAltoFila;
    }
    p.restore();

    p.setPen(QPen(Qt::black, 0.5));
    const double pie = area.height() - kAltoPie + 4;
    p.drawLine(QPointF(0, pie), QPointF(ancho, pie));
    p.setPen(QColor(0x66, 0x66, 0x66));
    p.drawText(QRectF(0, pie + 2, ancho, kAltoPie - 6), int(Qt::AlignRight | Qt::AlignVCenter),
               m_pie.arg(n + 1).arg(Paginas()));
}

void PaginasGrilla::DibujarFila(QPainter &p, int fila, double y) const
{
    const FuenteGrilla &g = *m_g;
    const bool fija = fila < g.FilasFijas();
    double x = 0;
    double anchoFila = 0;
    for (double a : m_anchos)
        anchoFila += a;

    const quint32 fondo = fija ? g.ColorFondoFijo() : g.ColorFondo(fila, m_columnas.empty() ? 0 : m_columnas[0]);
    if (fondo)
        p.fillRect(QRectF(0, y, anchoFila, kAltoFila), ColorVista::AColor(fondo));
    if (fija) {
        p.setPen(QPen(Qt::black, 0.5));
        p.drawLine(QPointF(0, y + kAltoFila), QPointF(anchoFila, y + kAltoFila));
    } else if (g.ColorFondo(fila, 0)) {
        p.setPen(QPen(QColor(0xb9, 0xdb, 0xea), 0.5));
        p.drawLine(QPointF(0, y), QPointF(anchoFila, y));
    }

    for (size_t i = 0; i < m_columnas.size(); ++i) {
        const int c = m_columnas[i];
        const double w = m_anchos[i];
        const RangoCeldas rango = g.Rango(fila, c);
        if (rango.columna1 < c) {
            x += w;
            continue;
        }
        double anchoCelda = w;
        for (size_t k = i + 1; k < m_columnas.size() && m_columnas[k] <= rango.columna2; ++k)
            anchoCelda += m_anchos[k];
        const QString texto = g.Texto(fila, c);
        if (!texto.isEmpty()) {
            const quint32 color = g.ColorTexto(fila, c);
            p.setPen(color ? ColorVista::AColor(color) : (fija ? ColorVista::AColor(g.ColorTextoFijo()) : QColor(Qt::black)));
            const Qt::Alignment a = rango.columna2 > c ? Qt::AlignLeft : AlineacionDe(g.AlineacionColumna(c));
            const QRectF celda(x + 2, y, anchoCelda - 4, kAltoFila);
            p.drawText(celda, int(a | Qt::AlignVCenter) | Qt::TextSingleLine,
                       p.fontMetrics().elidedText(texto, Qt::ElideRight, int(celda.width())));
        }
        x += w;
    }
}
