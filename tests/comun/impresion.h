#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// Failing comparisons print texts as text, not as arrays of characters.
inline void PrintTo(const QString &texto, std::ostream *os)
{
    *os << '"' << texto.toStdString() << '"';
}

inline void PrintTo(const QStringList &lista, std::ostream *os)
{
    *os << '[';
    for (qsizetype i = 0; i < lista.size(); ++i)
        *os << (i ? ",\n  \"" : "\"") << lista[i].toStdString() << '"';
    *os << ']';
}
