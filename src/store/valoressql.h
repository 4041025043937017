#pragma once

#include <QDate>
#include <QDateTime>
#include <QLocale>
#include <QString>

// Values written into SQL text.

// A number as SQL: its shortest text in the given locale, without grouping, with every ","
// turned into "." so the database always receives a point as the decimal separator.
QString NumeroSQL(double valor, const QLocale &locale = QLocale());
QString NumeroSQL(qint64 valor);

// A date literal: the delimiter, the date formatted with the database's pattern, the
// delimiter again; nothing else is added (delimiter "'" and pattern "yyyy-mm-dd" give
// '2010-03-05').
QString FechaSQL(const QDate &fecha, const QString &delimitador, const QString &patron);

// Formats with a pattern in the suite's notation: d dd ddd dddd, m mm mmm mmmm (minutes
// after an hour), yy yyyy, y (day of year), q, w (weekday, Sunday = 1), ww (week of the
// year, weeks starting on Sunday, week 1 holding 1 January), h hh, n nn, s ss; letters are
// taken without case; text in double quotes and a character after "\" are copied as is.
QString FormatoFechaSuite(const QDateTime &momento, const QString &patron, const QLocale &locale = QLocale());
QString FormatoFechaSuite(const QDate &fecha, const QTime &hora, const QString &patron, const QLocale &locale = QLocale());
