#pragma once

#include "criteriosbusqueda.h"

#include "store/fallo.h"

#include <QString>

#include <optional>

// The SQL text of an entry search: every entry of the company that meets the criteria,
// with the columns and order of the grid's loading query. The criteria group opens with
// the first criterion given and joins the next ones with And or Or; the legend is a prefix
// pattern ("*" for any text) placed in a quoted literal with its quotes doubled, so no
// typed text can change the statement. Dates go through the database's date literal.
// The statement goes into sql; a date text that is no date is refused (text 1927, with the
// date), and sql is then left empty.
[[nodiscard]] std::optional<Fallo> SqlBusqueda(const CriteriosBusqueda &c, qint32 empresa, const QString &delimitadorFecha,
                                               const QString &patronFecha, QString &sql);
