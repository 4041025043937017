#pragma once

#include "conexion.h"

#include <QString>

// Turns SQL written in the suite's dialect into the engine's:
// - "Select Top n ..." loses "Top n" and gets " LIMIT n" at the end of that select, also
//   inside sub-selects; a half of a UNION with a Top becomes "Select * From (... LIMIT n) AS tK"
//   because neither engine accepts LIMIT on a bare half. When every half of a UNION ALL is
//   limited, each half also gets its number as column MitadUnion and the whole is ordered by
//   it, so the halves come back in the order they are written.
// - PostgreSQL only: "Like" becomes "ILIKE" (the suite compares without case) and a
//   descending order gets "NULLS LAST" (the suite's engine sorts NULL last).
// String literals ('...' with '' inside) and quoted names are never looked into nor split.
QString AdaptarSQL(const QString &sql, Motor motor);
