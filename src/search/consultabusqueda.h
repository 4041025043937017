#pragma once

#include "criteriosbusqueda.h"

#include <QString>

// The SQL text of an entry search: every entry of the company that meets the criteria,
// with the columns and order of the grid's loading query. The criteria group opens with
// the first criterion given and joins the next ones with And or Or; the legend is a prefix
// pattern ("*" for any text) placed in a quoted literal with its quotes doubled, so no
// typed text can change the statement. Dates go through the database's date literal.
// Throws std::invalid_argument when a date text is no date.
QString SqlBusqueda(const CriteriosBusqueda &c, qint32 empresa, const QString &delimitadorFecha,
                    const QString &patronFecha);
