#pragma once

#include "search/criteriosbusqueda.h"

#include <QDate>
#include <QString>

#include <functional>

class Conexion;
class QTextStream;

// An export asked for on the command line: the file (its extension says the format) and
// the entries, as a view, a month or search criteria.
struct PedidoExportacion
{
    QString archivo;
    int vista = -100;          // 1 to 4: a view of the view menu; else none
    QDate mes;                 // valid: the entries of that month
    CriteriosBusqueda criterios;
    QString cuenta;            // an account code, looked up in the company
    bool hayCriterios = false;
    QString formatoFecha = QStringLiteral("dd/mm/yyyy");
    QString edicion;           // the edition's name, in the footer of a page
    int asientosPorParte = 200; // entries read and written at a time (0: all at once)

    // The format from the file's extension: 1 workbook, 2 CSV, 3 HTML, 4 PDF; 0 unknown.
    int Formato() const;
    // Empty when the request can be carried out; otherwise what is wrong with it, in the
    // catalogue's words (texto: a catalogue text by its number).
    QString Validar(const std::function<QString(int)> &texto) const;
    // True for the files of rows (CSV, workbook): a header's date and legend go in cells of
    // their own, so the blanks that line legends up on screen are not measured, and the file
    // is written without a display platform, whose palette and fonts would cost more than the
    // file (with no desktop palette to follow, a caption row's system colours are the usual
    // defaults). A page (HTML, PDF) is laid out in the document's font.
    bool SinFuentes() const;
};

// Loads the entries into a journal grid with the document's own loading code, without a
// window, and writes them with the document's own export code. Progress goes to progreso
// now and then, failures to errores. Answers the exit status: 0 done, 1 failed.
int ExportarDesdeLinea(const PedidoExportacion &pedido, Conexion &conexion, qint32 empresa,
                       const std::function<QString(int)> &texto, QTextStream &errores,
                       const std::function<void(const QString &)> &progreso = {});
