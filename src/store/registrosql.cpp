#include "registrosql.h"

Q_LOGGING_CATEGORY(lcSql, "asientos.sql", QtWarningMsg)
