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

#include "currency/importe.h"

inline void PrintTo(const Importe &importe, std::ostream *os)
{
    *os << importe.aTexto().toStdString();
}

// An amount written as a test writes it: 1234.5_imp, 100_imp.
inline Importe operator""_imp(long double valor)
{
    return Importe::DesdeDouble(double(valor));
}

inline Importe operator""_imp(unsigned long long valor)
{
    return Importe::DesdeDiezmilesimos(qint64(valor) * Importe::kEscala);
}
