#pragma once

#include <QColor>
#include <QHash>
#include <QString>
#include <QVariant>

#include "currency/importe.h"

#include <vector>

// One cell: display text (or a number shown through a mask), hidden data, colours and
// alignment. A number keeps its value; its text is made from the value and the mask only
// when someone asks for it, so a fill formats nothing.
// A cell is small and plain: its text, and a datum that is a text or an uncommon type, are
// kept once in the grid's pools and named here by position. The grid reads them for it
// (Grilla::TextoDe, Grilla::Dato); a text shown on many rows (an account) is held once.
struct CeldaGrilla
{
    enum class TipoDato : quint8 { Nulo, Entero, Corto, Largo, Doble, Fecha, FechaHoraUtc, Texto, Otro };

    static constexpr quint32 kMaximoTextos = 1u << 24;

    Importe valor;
    qint64 carga = 0;           // the datum: the number, the day, the moment, or a pool index
    quint32 texto : 24 = 0;     // index into the grid's texts; 0 is the empty text
    quint32 color : 8 = 0;      // index into the grid's text colours; 0 is the default colour
    qint16 mascara = -1;        // -1 plain text; otherwise an index into the grid's masks
    quint8 alineacion = 0;      // 0: the column's alignment; else Qt::Alignment bits
    TipoDato tipoDato = TipoDato::Nulo;
};
static_assert(sizeof(CeldaGrilla) == 24, "a grid of 100,000 lines holds 600,000 cells");

// One row's formats and the picture drawn at the left of column 0; its cells are in the grid.
struct FilaGrilla
{
    QRgb fondo = 0;             // 0: the grid's background
    QRgb colorBorde = 0;        // top border colour; 0 = no border
    int alto = 0;               // pixels; 0 = the grid's row height
    quint8 imagen = 0;          // index into the grid's picture keys; 0 = no picture
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
    QVariant Dato(int fila, int columna) const;
    // Dato(fila, columna).toInt() and .toString(), without making a QVariant for the kinds
    // the entry rows keep their ids and keys in: the fill reads them back for every line.
    int DatoEntero(int fila, int columna) const;
    QString DatoTexto(int fila, int columna) const;
    // Whether the cell holds a datum: Dato(fila, columna).isValid() without making it.
    bool HayDato(int fila, int columna) const { return celda(fila, columna).tipoDato != CeldaGrilla::TipoDato::Nulo; }
    void FijarDato(int fila, int columna, const QVariant &dato);
    void FijarColorTexto(int fila, int columna, QRgb color);
    // 0 (transparent): the default colour.
    QRgb ColorTexto(int fila, int columna) const { return m_colores[celda(fila, columna).color]; }
    void FijarAlineacion(int fila, int columna, Qt::Alignment alineacion);
    void LimpiarTextos(int fila);

    void FijarFondoFila(int fila, QRgb color);
    void FijarBordeSuperior(int fila, QRgb color);
    // The picture key ("asiento", "borrador", ...); empty for none.
    void FijarImagen(int fila, const QString &clave);
    QString Imagen(int fila) const { return m_imagenes[m_filas[size_t(fila)].imagen]; }
    void FijarAltoFila(int fila, int alto);
    void FijarFilaOculta(int fila, bool oculta);

    const FilaGrilla &Fila(int fila) const { return m_filas[size_t(fila)]; }
    const CeldaGrilla &celda(int fila, int columna) const { return m_celdas[indiceCelda(fila, columna)]; }
    // The text a cell holds: empty for a number cell (Texto formats it).
    QString TextoGuardado(int fila, int columna) const { return m_textos[celda(fila, columna).texto]; }

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

    size_t indiceCelda(int fila, int columna) const { return size_t(fila) * size_t(m_columnas) + size_t(columna); }
    CeldaGrilla &celdaEditable(int fila, int columna) { return m_celdas[indiceCelda(fila, columna)]; }
    // The pools: a text's index (the same text gets the same one), a datum into a cell.
    quint32 indiceTexto(const QString &texto);
    void guardarDato(CeldaGrilla &c, const QVariant &dato);
    // A text or datum no cell names any more is dropped from the pools once there are many.
    void soltar(const CeldaGrilla &c);
    void soltarDato(const CeldaGrilla &c);
    // Points the cell at another text, counting the one it let go of.
    void fijarIndiceTexto(CeldaGrilla &c, quint32 indice);
    void soltarFilas(int fila, int cantidad);
    void compactar();
    void quizaCompactar();
    void cambio(int fila1, int fila2);
    bool avisar() const { return m_observador && m_redibujar; }
    qint16 indiceMascara(const QString &mascara);

    int m_columnas;
    int m_filasFijas;
    std::vector<FilaGrilla> m_filas;
    std::vector<CeldaGrilla> m_celdas;     // row by row, m_columnas each
    std::vector<QString> m_textos{QString()};
    QHash<QString, quint32> m_indiceTextos;
    std::vector<QVariant> m_otros;
    std::vector<QString> m_imagenes{QString()};
    std::vector<QRgb> m_colores{0};         // data of the types a cell does not hold itself
    size_t m_soltados = 0;                 // pool entries let go of since the last compaction
    std::vector<int> m_anchos;
    std::vector<bool> m_ocultas;
    std::vector<Qt::Alignment> m_alineaciones;
    std::vector<QString> m_formatos;
    std::vector<QString> m_mascaras;
    bool m_redibujar = true;
    bool m_sucia = false;
    ObservadorGrilla *m_observador = nullptr;
};
