#pragma once

#include "entries/asientosgrilla.h"
#include "store/fallo.h"

#include <QHash>
#include <QString>

#include <functional>
#include <memory>

class Grilla;
class Mascara;

// What an export or a printout reads of a grid, addressed by row and column from 0; the
// first FilasFijas() rows and ColumnasFijas() columns are the fixed heading cells. Colours
// are 32-bit values with red in the low byte, then green, then blue; a value with the top
// bit set names a system colour; 0 means "not set".
class FuenteGrilla
{
public:
    virtual ~FuenteGrilla() = default;

    virtual int Filas() const = 0;
    virtual int Columnas() const = 0;
    virtual int FilasFijas() const = 0;
    virtual int ColumnasFijas() const = 0;

    virtual int AnchoColumna(int columna) const = 0;   // twips
    virtual bool ColumnaOculta(int columna) const = 0;
    virtual int AltoFila(int fila) const = 0;          // twips; 0 leaves the row out
    virtual bool FilaOculta(int fila) const = 0;

    virtual RangoCeldas Rango(int fila, int columna) const = 0;
    virtual QString Texto(int fila, int columna) const = 0;
    virtual double Valor(int fila, int columna) const = 0;

    virtual quint32 ColorFondo(int fila, int columna) const = 0;
    virtual quint32 ColorTexto(int fila, int columna) const = 0;
    virtual bool Negrita(int, int) const { return false; }
    virtual bool Cursiva(int, int) const { return false; }
    virtual bool Subrayado(int, int) const { return false; }

    // 0 left-top ... 8 right-bottom, 9 general (by content).
    virtual int AlineacionColumna(int columna) const = 0;
    // 7 date, 11 boolean, 0 anything else.
    virtual int TipoColumna(int) const { return 0; }

    virtual quint32 ColorFondoFijo() const = 0;
    virtual quint32 ColorTextoFijo() const = 0;
    virtual quint32 ColorLineasFijas() const = 0;

    // Tree rows: the outline column (-1 none), whether its bar is shown, node rows, levels.
    virtual int ColumnaArbol() const { return -1; }
    virtual bool BarraArbol() const { return false; }
    virtual bool EsNodo(int) const { return false; }
    virtual int NivelArbol(int) const { return 0; }

    virtual int AnchoControl() const = 0;              // twips
    virtual double TwipsPorPixel() const = 0;
};

// Asked for the next part of a long export once the rows of the grid are written: it puts
// the next rows in the grid below the fixed ones and answers whether it put any, or why the
// part could not be read (the writer then stops and leaves no file).
using SiguienteParte = std::function<Resultado<bool>()>;

// Calls fila(r) for every row of the grid and, when siguiente is given, for the rows of each
// part it puts in the grid afterwards (the fixed rows go once, first); stops early when fila
// answers false. Answers the number of rows visited, or the failure of a part's reading.
template <typename Fila>
Resultado<int> RecorrerFilas(const FuenteGrilla &g, const SiguienteParte &siguiente, Fila &&fila)
{
    int vistas = 0;
    for (int r = 0;; r = g.FilasFijas()) {
        for (; r < g.Filas(); ++r, ++vistas)
            if (!fila(r))
                return vistas;
        if (!siguiente)
            return vistas;
        const auto hay = siguiente();
        if (!hay)
            return hay.fallo();
        if (!*hay)
            return vistas;
    }
}

// Colour values as a grid view stores them.
namespace ColorVista {
constexpr quint32 kSistema = 0x80000000u;
constexpr quint32 kBotonFondo = kSistema | 15;
constexpr quint32 kBotonSombra = kSistema | 16;
constexpr quint32 kBotonTexto = kSistema | 18;
// A QRgb as a grid colour value (red in the low byte); fully transparent gives 0.
quint32 DesdeRgb(QRgb rgb);
// The colour a value stands for; system colours come from the application's palette, or
// from the usual desktop defaults when there is no application.
QColor AColor(quint32 valor);
} // namespace ColorVista

// The journal grid as an export source: its cells, the header rows' merged cells, the
// fixed caption row in the system button colours, and widths in twips.
class FuenteDeGrilla final : public FuenteGrilla
{
public:
    FuenteDeGrilla(const Grilla &grilla, double puntosPorPulgada = 96, int anchoControlTwips = 0);
    ~FuenteDeGrilla() override;

    const Grilla &grilla() const { return m_g; }

    int Filas() const override;
    int Columnas() const override;
    int FilasFijas() const override;
    int ColumnasFijas() const override { return 0; }
    int AnchoColumna(int columna) const override;
    bool ColumnaOculta(int columna) const override;
    int AltoFila(int fila) const override;
    bool FilaOculta(int fila) const override;
    RangoCeldas Rango(int fila, int columna) const override;
    QString Texto(int fila, int columna) const override;
    double Valor(int fila, int columna) const override;
    quint32 ColorFondo(int fila, int columna) const override;
    quint32 ColorTexto(int fila, int columna) const override;
    int AlineacionColumna(int columna) const override;
    quint32 ColorFondoFijo() const override { return ColorVista::kBotonFondo; }
    quint32 ColorTextoFijo() const override { return ColorVista::kBotonTexto; }
    quint32 ColorLineasFijas() const override { return ColorVista::kBotonSombra; }
    int AnchoControl() const override { return m_anchoControl; }
    double TwipsPorPixel() const override { return 1440.0 / m_ppp; }

    // A number cell (an amount, a rate) and its mask.
    bool EsNumero(int fila, int columna) const;
    QString MascaraDe(int fila, int columna) const;
    // An entry's header row: its date (invalid on other rows) and its legend alone.
    QDate FechaCabezal(int fila) const;
    QString LeyendaCabezal(int fila) const;

private:
    const Grilla &m_g;
    double m_ppp;
    int m_anchoControl;
    // Parsed masks by their text: formatting 100,000 amounts parses each mask once.
    mutable QHash<QString, std::shared_ptr<Mascara>> m_mascaras;
};
