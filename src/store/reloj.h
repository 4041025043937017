#pragma once

#include <QDate>
#include <QDateTime>
#include <QElapsedTimer>

// Where "today" and "now" come from. A clock reads the system's until it is fixed; a fixed
// clock starts at the instant given and runs on from there at the real pace, so stamps taken
// one after another still grow. Everything that needs the date asks the clock it was handed.
class Reloj
{
public:
    // Wall-clock time as stamps are kept: the local date and time of day, marked Qt::UTC so
    // that no time-zone rule is applied to it afterwards.
    QDateTime Ahora() const;
    QDate Hoy() const { return Ahora().date(); }

    // From now on the clock reads momento (date and time of day taken as they are) and
    // then the time run since this call.
    void Fijar(const QDateTime &momento);
    bool fijo() const { return m_fijado.isValid(); }

private:
    QDateTime m_fijado;
    QElapsedTimer m_desde;
};
