#pragma once

#include <QLoggingCategory>

// Every SQL text as built and as sent: QT_LOGGING_RULES="asientos.sql=true".
Q_DECLARE_LOGGING_CATEGORY(lcSql)
