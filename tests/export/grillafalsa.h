#pragma once

#include "export/fuentegrilla.h"

#include <map>
#include <vector>

// A grid view with every item set by hand, to render a page of a few cells without a journal.
class GrillaFalsa final : public FuenteGrilla
{
public:
    GrillaFalsa(int filas, int columnas, int filasFijas = 1, int columnasFijas = 0)
        : filas(filas), columnas(columnas), fijas(filasFijas), columnasFijas(columnasFijas)
        , anchos(size_t(columnas), 1500), ocultas(size_t(columnas), false), alineaciones(size_t(columnas), 9)
        , altos(size_t(filas), 240), filasOcultas(size_t(filas), false)
    {
    }

    int Filas() const override { return filas; }
    int Columnas() const override { return columnas; }
    int FilasFijas() const override { return fijas; }
    int ColumnasFijas() const override { return columnasFijas; }
    int AnchoColumna(int c) const override { return anchos[size_t(c)]; }
    bool ColumnaOculta(int c) const override { return ocultas[size_t(c)]; }
    int AltoFila(int r) const override { return altos[size_t(r)]; }
    bool FilaOculta(int r) const override { return filasOcultas[size_t(r)]; }
    RangoCeldas Rango(int r, int c) const override
    {
        for (const RangoCeldas &m : combinadas)
            if (r >= m.fila1 && r <= m.fila2 && c >= m.columna1 && c <= m.columna2)
                return m;
        return {r, c, r, c};
    }
    QString Texto(int r, int c) const override
    {
        const auto it = textos.find({r, c});
        return it == textos.end() ? QString() : it->second;
    }
    double Valor(int r, int c) const override { return Texto(r, c).toDouble(); }
    quint32 ColorFondo(int r, int c) const override { return buscar(fondos, r, c); }
    quint32 ColorTexto(int r, int c) const override { return buscar(letras, r, c); }
    int AlineacionColumna(int c) const override { return alineaciones[size_t(c)]; }
    quint32 ColorFondoFijo() const override { return fondoFijo; }
    quint32 ColorTextoFijo() const override { return textoFijo; }
    quint32 ColorLineasFijas() const override { return lineasFijas; }
    int AnchoControl() const override { return anchoControl; }
    double TwipsPorPixel() const override { return 15; }

    int filas, columnas, fijas, columnasFijas;
    std::vector<int> anchos;
    std::vector<bool> ocultas;
    std::vector<int> alineaciones;
    std::vector<int> altos;
    std::vector<bool> filasOcultas;
    std::vector<RangoCeldas> combinadas;
    std::map<std::pair<int, int>, QString> textos;
    std::map<std::pair<int, int>, quint32> fondos, letras;
    quint32 fondoFijo = 0xC0C0C0;
    quint32 textoFijo = 0x000080;
    quint32 lineasFijas = 0x808080;
    int anchoControl = 0;

private:
    static quint32 buscar(const std::map<std::pair<int, int>, quint32> &m, int r, int c)
    {
        const auto it = m.find({r, c});
        return it == m.end() ? 0 : it->second;
    }
};
