#pragma once

#include <QColor>
#include <QString>
#include <QVariant>

#include "currency/importe.h"

#include <vector>

// One cell: display text (or a number shown through a mask), hidden data, colours and
// alignment. A number keeps its value; its text is made from the value and the mask only
// when someone asks for it, so a fill formats nothing.
struct CeldaGrilla
{
    QString texto;
    QVariant dato;
    Importe valor;
    qint16 mascara = -1;        // -1 plain text; otherwise an index into the grid's masks
    QRgb colorTexto = 0;        // 0 (transparent): the default colour
    quint8 alineacion = 0;      // 0: the column's alignment; else Qt::Alignment bits
};

// One row: its cells, the row-wide formats and the picture drawn at the left of column 0.
struct FilaGrilla
{
    std::vector<CeldaGrilla> celdas;
    QString imagen;             // picture key ("asiento", "borrador", ...)
    QRgb fondo = 0;             // 0: the grid's background
    QRgb colorBorde = 0;        // top border colour; 0 = no border
    int alto = 0;               // pixels; 0 = the grid's row height
    bool oculta = false;
};

// Told about changes so that a view can follow. While redraw is off nothing is reported;
// switching it on after changes reports one Reinicio.
class ObservadorGrilla
{
public:
    virtual ~ObservadorGrilla() = default;
    virtual void AntesDeInsertar(int fila, int cantidad) = 0;
    virtual void DespuesDeInsertar() = 0;
    virtual void AntesDeQuitar(int fila, int cantidad) = 0;
    virtual void DespuesDeQuitar() = 0;
    virtual void AntesDeMover(int desde, int cantidad, int antes) = 0;
    virtual void DespuesDeMover() = 0;
    virtual void CeldasCambiadas(int fila1, int fila2) = 0;
    virtual void Reinicio() = 0;
};

// The journal grid as plain data: rows of cells with a fixed caption row (row 0) on top.
// All entry logic works on it; a view only shows it. Rows and columns count from 0.
class Grilla
{
public:
    static constexpr qint16 kMascaraColumna = -2; // number shown with its column's mask

    explicit Grilla(int columnas = 6, int filasFijas = 1);

    int Filas() const { return int(m_filas.size()); }
    int FilasFijas() const { return m_filasFijas; }
    int Columnas() const { return m_columnas; }
    // Keeps the first n rows (at least the fixed ones) or adds empty rows up to n.
    void FijarFilas(int n);

    // An empty row before fila (at the end when fila is Filas()).
    void InsertarFila(int fila) { InsertarFilas(fila, 1); }
    void InsertarFilas(int fila, int cantidad);
    void QuitarFila(int fila) { QuitarFilas(fila, 1); }
    void QuitarFilas(int fila, int cantidad);
    // Moves rows [desde, desde + cantidad) to stand before row antes, in one step.
    void MoverFilas(int desde, int cantidad, int antes);
    void IntercambiarFilas(int a, int b);
    // Puts the rows from desde on in a new order: orden[i] is the offset (from desde) of the
    // row that goes to position desde + i.
    void PermutarFilas(int desde, const std::vector<int> &orden);
    // Removes every row whose flag is set (indexes as now), in one pass.
    void QuitarFilasMarcadas(const std::vector<bool> &quitar);

    QString Texto(int fila, int columna) const;
    void FijarTexto(int fila, int columna, const QString &texto);
    // A number shown through a mask (kMascaraColumna: the column's).
    void FijarNumero(int fila, int columna, Importe valor, const QString &mascara = {});
    // The cell's number: the value of a number cell, else its text read in the locale.
    Importe Valor(int fila, int columna) const;
    bool EsNumero(int fila, int columna) const { return celda(fila, columna).mascara != -1; }
    QVariant Dato(int fila, int columna) const { return celda(fila, columna).dato; }
    void FijarDato(int fila, int columna, const QVariant &dato);
    void FijarColorTexto(int fila, int columna, QRgb color);
    void FijarAlineacion(int fila, int columna, Qt::Alignment alineacion);
    void LimpiarTextos(int fila);

    void FijarFondoFila(int fila, QRgb color);
    void FijarBordeSuperior(int fila, QRgb color);
    void FijarImagen(int fila, const QString &clave);
    void FijarAltoFila(int fila, int alto);
    void FijarFilaOculta(int fila, bool oculta);

    const FilaGrilla &Fila(int fila) const { return m_filas[size_t(fila)]; }
    const CeldaGrilla &celda(int fila, int columna) const { return m_filas[size_t(fila)].celdas[size_t(columna)]; }

    int AnchoColumna(int columna) const { return m_anchos[size_t(columna)]; } // twips
    void FijarAnchoColumna(int columna, int twips);
    bool ColumnaOculta(int columna) const { return m_ocultas[size_t(columna)]; }
    void FijarColumnaOculta(int columna, bool oculta);
    Qt::Alignment AlineacionColumna(int columna) const { return m_alineaciones[size_t(columna)]; }
    void FijarAlineacionColumna(int columna, Qt::Alignment a);
    QString FormatoColumna(int columna) const { return m_formatos[size_t(columna)]; }
    void FijarFormatoColumna(int columna, const QString &mascara);
    // The column captions and alignments from a format "<Cuenta|<|>Debe|...".
    void FijarEncabezados(const QString &formato);

    // The mask a number cell is shown with (the column's for kMascaraColumna).
    QString MascaraDe(int fila, int columna) const;

    bool Redibujar() const { return m_redibujar; }
    void FijarRedibujar(bool si);

    void FijarObservador(ObservadorGrilla *o) { m_observador = o; }

    // The whole grid (cells, data, formats, widths) in the layout file format; a file that
    // is missing, truncated, damaged or of another program leaves the grid as it was and
    // answers false with the reason.
    bool Guardar(const QString &ruta, QString *error = nullptr) const;
    bool Cargar(const QString &ruta, QString *error = nullptr);

private:
    friend class FormatoDisenoGrilla;

    CeldaGrilla &celdaEditable(int fila, int columna) { return m_filas[size_t(fila)].celdas[size_t(columna)]; }
    FilaGrilla filaVacia() const;
    void cambio(int fila1, int fila2);
    bool avisar() const { return m_observador && m_redibujar; }
    qint16 indiceMascara(const QString &mascara);

    int m_columnas;
    int m_filasFijas;
    std::vector<FilaGrilla> m_filas;
    std::vector<int> m_anchos;
    std::vector<bool> m_ocultas;
    std::vector<Qt::Alignment> m_alineaciones;
    std::vector<QString> m_formatos;
    std::vector<QString> m_mascaras;
    bool m_redibujar = true;
    bool m_sucia = false;
    ObservadorGrilla *m_observador = nullptr;
};
