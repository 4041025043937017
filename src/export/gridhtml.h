#pragma once

#include <QDateTime>
#include <QString>

#include "store/fallo.h"

#include <functional>
#include <optional>

class FuenteGrilla;

// A grid as one self-contained HTML page: a title bar, the grid as a table with its
// merged cells, colours, font styles, alignments and relative widths, and a footer with
// the moment of the export.
namespace modGridHTML {

// formatoFecha: the user's date format in the suite's notation ("dd/mm/yyyy").
QString GridHTML(const FuenteGrilla &grilla, const QString &titulo, const QString &empresa,
                 const QString &edicion, const QString &formatoFecha, const QDateTime &ahora);
// The same page handed over in pieces of about half a million characters, so a page of
// any size is written without being held whole; siguiente, when given, puts the next part of
// a long export in the grid (RecorrerFilas); a part that cannot be read ends the page there,
// and its failure is answered.
[[nodiscard]] std::optional<Fallo> GridHTMLEnPartes(const FuenteGrilla &grilla, const QString &titulo, const QString &empresa,
                                                    const QString &edicion, const QString &formatoFecha, const QDateTime &ahora,
                                                    const std::function<void(const QString &)> &parte,
                                                    const std::function<Resultado<bool>()> &siguiente = {});
// "&", "<" and ">" as entities; an empty text becomes "&nbsp;".
QString EscaparHTML(const QString &texto);
// A grid colour value (red in the low byte; system colours with the top bit) as a quoted
// HTML colour: "\"#RRGGBB\"".
QString ColorHTML(quint32 color);
// Digits, "," and at most one "."; a "-" only first; empty is a number.
bool EsNumero(const QString &texto);

} // namespace modGridHTML
