#pragma once

#include <QString>
#include <QtGlobal>

#include <compare>
#include <limits>

// An amount as the suite keeps it: a whole number of ten-thousandths. Amounts are stored,
// shown and added up in this type; sums never run in floating point.
class Importe
{
public:
    static constexpr qint64 kEscala = 10000;

    constexpr Importe() = default;
    static constexpr Importe DesdeDiezmilesimos(qint64 n) { Importe i; i.m_n = n; return i; }
    // Rounds to four decimals, halves away from zero, on the value as written (1.00005 is
    // 1.0001 even though its binary double is slightly less). A value past the type's range
    // is held at its end (Maximo or its negative), never 0; what is not a number is 0.
    // Amounts a user gives are refused long before that (MaximoLinea).
    static Importe DesdeDouble(double valor);
    static constexpr Importe Maximo() { return DesdeDiezmilesimos(std::numeric_limits<qint64>::max()); }
    // The largest amount a line may carry: amounts pass through doubles (and SQLite keeps
    // them as REAL), in which every ten-thousandth reads back as itself only below 2^37,
    // about 137 billion. A larger one would be stored as another number.
    static constexpr Importe MaximoLinea() { return DesdeDiezmilesimos(100000000000LL * kEscala); }
    // Reads "1234.5", "-0.25" (a point as decimal separator, no grouping); false when the
    // text is no number or does not fit.
    static bool DesdeTexto(const QString &texto, Importe &resultado);

    qint64 diezmilesimos() const { return m_n; }
    double aDouble() const { return double(m_n) / kEscala; }
    QString aTexto() const; // "1234.5000"
    // Rounded half away from zero to that many decimals: "1234.50" for 2; no sign on a zero.
    // The same as RedondearDecimal(aTexto(), decimales), made without a text in between.
    QString aTexto(int decimales) const;

    // Sums and differences past the range stay at its end instead of wrapping around to the
    // other sign; SumarComprobado tells when that would happen.
    Importe operator+(Importe o) const { return DesdeDiezmilesimos(saturada(m_n, o.m_n, false)); }
    Importe operator-(Importe o) const { return DesdeDiezmilesimos(saturada(m_n, o.m_n, true)); }
    Importe operator-() const { return DesdeDiezmilesimos(saturada(0, m_n, true)); }
    Importe &operator+=(Importe o) { return *this = *this + o; }
    Importe &operator-=(Importe o) { return *this = *this - o; }
    // Adds o unless the sum would leave the type's range; false (and nothing added) then.
    bool SumarComprobado(Importe o)
    {
        qint64 suma = 0;
        if (__builtin_add_overflow(m_n, o.m_n, &suma))
            return false;
        m_n = suma;
        return true;
    }
    auto operator<=>(const Importe &) const = default;
    bool esCero() const { return m_n == 0; }
    Importe abs() const { return DesdeDiezmilesimos(m_n < 0 ? -m_n : m_n); }
    // Rounded to fewer decimals (0 to 4), halves away from zero: what a mask with that many
    // decimals shows.
    Importe RedondeadoA(int decimales) const;

private:
    static constexpr qint64 saturada(qint64 a, qint64 b, bool restar)
    {
        qint64 r = 0;
        if (!(restar ? __builtin_sub_overflow(a, b, &r) : __builtin_add_overflow(a, b, &r)))
            return r;
        return (restar ? b < 0 : b > 0) ? std::numeric_limits<qint64>::max() : -std::numeric_limits<qint64>::max();
    }

    qint64 m_n = 0;
};

// Rounds the decimal text of a number (digits, optional "-", optional "." part) to the given
// number of decimals, halves away from zero. Used by Importe and by the masks so that both
// round the same value the same way.
QString RedondearDecimal(const QString &digitos, int decimales);
// The shortest decimal text that reads back as the same double ("0.1", "1.005", "1e-07" never).
QString TextoDecimal(double valor);
