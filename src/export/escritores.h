#pragma once

#include "store/fallo.h"

#include <QDate>
#include <QString>

class QSaveFile;

#include <functional>
#include <optional>

#include "fuentegrilla.h"

// Told now and then how far a long export has gone: rows done of the total, a total of 0
// when it is not known yet (an export written while it is read).
using AvanceExportacion = std::function<void(int hechas, int total)>;

// One grid cell as a file export writes it. An entry's header row, shown as one block on
// screen, gives its date as a date, its legend in the next column and its book.
struct CeldaArchivo
{
    enum class Tipo { Texto, Numero, Fecha };
    Tipo tipo = Tipo::Texto;
    QString texto;       // as shown (a number or date as well)
    double numero = 0;
    QString mascara;     // a number's mask
    QDate fecha;
};
CeldaArchivo CeldaParaArchivo(const FuenteDeGrilla &g, int fila, int columna);
// The text alone of that cell, for a file that keeps only text; cabezal says the row is an
// entry's header (its FechaCabezal is valid), asked once for the whole row.
QString TextoParaArchivo(const FuenteDeGrilla &g, int fila, int columna, bool cabezal);

// The files of an export. Each one is written beside its final name and put in its place
// only when complete, so a failure never leaves a half-written file (nor harms one that
// was there). On failure they answer text 1938 with the system's reason, or one of their
// own reasons below, by the number of its text and with no detail (ExportacionGrilla::Escribir
// tells it under 1938 in the user's words).
namespace Escritores {

inline constexpr int kNoSeEscribioEntero = 2177; // the file could not be written whole (a full disk?)
inline constexpr int kNoSeCreoLibro = 2178;      // the workbook could not be made
inline constexpr int kDemasiadasFilas = 2179;    // more rows than a sheet holds

// Comma-separated text, RFC 4180: the visible rows and columns, the caption row included,
// fields with a comma, a quote or a line break quoted, quotes doubled, CRLF between
// records, UTF-8.
// siguiente, when given, puts the next part of the export in the grid (RecorrerFilas).
std::optional<Fallo> EscribirCSV(const FuenteDeGrilla &g, const QString &ruta, const AvanceExportacion &avance = {},
                                 const SiguienteParte &siguiente = {});
// An Office Open XML workbook of the same cells: amounts as numbers with their mask,
// header dates as dates in the user's date format (suite notation), colours kept; the sheet
// is named hoja.
std::optional<Fallo> EscribirLibro(const FuenteDeGrilla &g, const QString &ruta, const QString &formatoFecha, const QString &hoja,
                                   const AvanceExportacion &avance = {}, const SiguienteParte &siguiente = {});
// The grid as an HTML page (modGridHTML), written as it is made; ahora is the moment its
// footer shows.
std::optional<Fallo> EscribirHTML(const FuenteDeGrilla &g, const QString &ruta, const QString &titulo,
                                    const QString &empresa, const QString &edicion, const QString &formatoFecha,
                                    const QDateTime &ahora, const SiguienteParte &siguiente = {});

// Puts a file written through a QSaveFile in its place. The last bytes written wait in the
// file's buffer, and a commit that cannot write them does not say so: they are written, and
// checked, first. On failure nothing replaces what was there.
std::optional<Fallo> Confirmar(QSaveFile &archivo);
// Why a file was not written, naming the file once: the system's reason may name it already.
QString ConArchivo(const QString &ruta, const QString &motivo);
// A field quoted as RFC 4180 asks when it must be.
QString CampoCSV(const QString &texto);
// The same field appended to a record.
void AgregarCampoCSV(QString &registro, const QString &texto);
// A mask in the spreadsheet's number format: text around the digits in quotes.
QString FormatoNumeroLibro(const QString &mascara);

} // namespace Escritores
