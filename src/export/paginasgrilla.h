#pragma once

#include <QPageLayout>
#include <QString>

#include <vector>

class FuenteGrilla;
class QPagedPaintDevice;
class QPainter;

// A grid laid out on pages: the page heading (the title's "left|centre|right" parts) and
// the fixed caption rows on every page, the rows that fit below them, the page number at
// the foot (its text given in the user's language, "%1" the page and "%2" the count).
// Widths follow the grid's (twips); a grid wider than the page is scaled down to fit it.
// The layout keeps which rows and columns go where and the widths of the moment it was
// made; the texts and colours are read from the grid when a page is painted.
class PaginasGrilla
{
public:
    void Componer(const FuenteGrilla &grilla, const QPageLayout &pagina, const QString &titulo, const QString &pie);
    void Limpiar();

    int Paginas() const { return int(m_paginas.size()); }
    // The rows of page n (the caption rows not included).
    const std::vector<int> &FilasDePagina(int n) const { return m_paginas[size_t(n)]; }
    // The width each column gets on paper, in points (0 for a column left out).
    double AnchoEnPapel(int columna) const;

    // Paints every page onto a printer or PDF writer; false when the device cannot be
    // painted on.
    bool Imprimir(QPagedPaintDevice &dispositivo) const;
    // One page, in a painter whose unit is the point and whose origin is the page's
    // printable top-left corner.
    void DibujarPagina(QPainter &p, int n) const;

    static constexpr double kAltoFila = 13.0;      // points
    static constexpr double kAltoTitulo = 28.0;
    static constexpr double kAltoPie = 18.0;

private:
    void DibujarFila(QPainter &p, int fila, double y) const;

    const FuenteGrilla *m_g = nullptr;
    QString m_titulo;
    QString m_pie;
    QPageLayout m_pagina;
    double m_escala = 1;                 // grid points to paper points
    std::vector<int> m_columnas;         // the visible columns
    std::vector<double> m_anchos;        // their widths in grid points
    std::vector<int> m_fijas;            // the visible caption rows
    std::vector<std::vector<int>> m_paginas;
};
