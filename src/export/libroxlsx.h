#pragma once

#include "archivozip.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringView>

#include <cstring>
#include <map>
#include <tuple>
#include <vector>

// An Office Open XML workbook of one sheet, written row by row as the cells come: the sheet's
// XML goes deflated into the file in blocks, so memory does not grow with the rows. Numbers
// are written in the shortest form that reads back the same, whatever the process's locale.
class LibroXlsx
{
public:
    static constexpr quint32 kSinColor = 0xffffffff;

    explicit LibroXlsx(QIODevice &salida);
    bool Listo() const { return m_zip.Listo(); }

    // Before the first row: the sheet's name, the rows frozen at its top and each column's
    // width in characters.
    bool Empezar(const QString &hoja, int filasFijas, const std::vector<double> &anchos);
    // The style of a cell: a number format (empty: general), the text and background colours
    // as 0xRRGGBB (kSinColor: the default), and bold with a line below for caption rows.
    int Estilo(const QString &numero, quint32 texto, quint32 fondo, bool fija);

    // The cells of the current row, left to right; a column left out stays empty.
    void Numero(int columna, double valor, int estilo);
    void Fecha(int columna, const QDate &fecha, int estilo);
    void Texto(int columna, QStringView texto, int estilo);
    void Vacia(int columna, int estilo);
    // Ends the current row (an empty one too) and hands the XML on now and then. False past
    // the last row a sheet can hold (DemasiadasFilas), or when the device refused bytes.
    bool TerminarFila();
    bool DemasiadasFilas() const { return m_demasiadasFilas; }
    // The rest of the sheet, its styles and the archive's directory.
    bool Terminar();

private:
    // The sheet's XML is written straight into a buffer: room is made first, then bytes go
    // in without a check each.
    char *reservar(qsizetype bytes);
    template<qsizetype N>
    void poner(const char (&literal)[N])
    {
        std::memcpy(reservar(N - 1), literal, N - 1);
        m_usados += N - 1;
    }
    void poner(const QByteArray &bytes);
    void abrirCelda(int columna, int estilo, const char *tipo, qsizetype resto);
    char *ponerEntero(char *p, qint64 n);
    char *ponerEscapado(char *p, QStringView texto);
    bool volcar();
    QByteArray estilos() const;

    ArchivoZip m_zip;
    QByteArray m_xml;
    qsizetype m_usados = 0;
    qint64 m_fila = 1;
    bool m_filaAbierta = false;
    bool m_demasiadasFilas = false;
    std::vector<QByteArray> m_letras; // each column's letters, "A" to "ZZ"

    struct Formato
    {
        int numero, fuente, relleno, borde;
    };
    std::map<std::tuple<QString, quint32, quint32, bool>, int> m_estilos;
    std::vector<Formato> m_formatos;
    std::map<QString, int> m_numeros;              // number format -> its id (164 on)
    std::map<std::pair<quint32, bool>, int> m_fuentes; // (colour, bold) -> font
    std::map<quint32, int> m_rellenos;             // background -> fill
};
