#include "importe.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// What one unit of the last of that many decimals is worth in ten-thousandths (0 to 4 decimals).
qint64 Paso(int decimales)
{
    qint64 paso = 1;
    for (int i = decimales; i < 4; ++i)
        paso *= 10;
    return paso;
}

} // namespace

QString TextoDecimal(double valor)
{
    return QLocale::c().toString(valor, 'f', QLocale::FloatingPointShortest);
}

// Rounding is done on the decimal digits, half away from zero, as an accountant does it by
// hand and as the suite's formatter does: 2.675 shown with two decimals is 2.68, although
// the nearest double is 2.67499999....
QString RedondearDecimal(const QString &texto, int decimales)
{
    QString t = texto;
    const bool negativo = t.startsWith(QLatin1Char('-'));
    if (negativo)
        t.remove(0, 1);
    qsizetype punto = t.indexOf(QLatin1Char('.'));
    QString entera = punto < 0 ? t : t.left(punto);
    QString fraccion = punto < 0 ? QString() : t.mid(punto + 1);
    if (entera.isEmpty())
        entera = QStringLiteral("0");

    const bool subir = fraccion.size() > decimales && fraccion.at(decimales) >= QLatin1Char('5');
    fraccion = fraccion.left(decimales).leftJustified(decimales, QLatin1Char('0'));
    QString digitos = entera + fraccion;
    if (subir) {
        qsizetype i = digitos.size() - 1;
        for (; i >= 0; --i) {
            if (digitos[i] == QLatin1Char('9')) {
                digitos[i] = QLatin1Char('0');
            } else {
                digitos[i] = QChar(digitos[i].unicode() + 1);
                break;
            }
        }
        if (i < 0)
            digitos.prepend(QLatin1Char('1'));
    }
    QString resultado = digitos.left(digitos.size() - decimales);
    while (resultado.size() > 1 && resultado.startsWith(QLatin1Char('0')))
        resultado.remove(0, 1);
    if (decimales > 0)
        resultado += QLatin1Char('.') + digitos.right(decimales);
    const bool cero = std::all_of(resultado.cbegin(), resultado.cend(), [](QChar c) { return c == u'0' || c == u'.'; });
    return negativo && !cero ? QLatin1Char('-') + resultado : resultado;
}

Importe Importe::DesdeDouble(double valor)
{
    if (std::isnan(valor))
        return {};
    // 2^63 ten-thousandths: past it the type holds its end.
    constexpr double kLimite = 9223372036854775807.0 / double(kEscala);
    if (valor >= kLimite)
        return Maximo();
    if (valor <= -kLimite)
        return -Maximo();
    // Most values are far from a half: scaling and rounding gives the same result as the
    // decimal digits do, at a fraction of the cost. Values near a half take the exact way.
    const double escalado = valor * double(kEscala);
    if (std::fabs(escalado) < 1e15) {
        const double resto = std::fabs(escalado - std::trunc(escalado));
        if (std::fabs(resto - 0.5) > 1e-6)
            return DesdeDiezmilesimos(qint64(std::round(escalado)));
    }
    Importe i;
    DesdeTexto(RedondearDecimal(TextoDecimal(valor), 4), i);
    return i;
}

bool Importe::DesdeTexto(const QString &texto, Importe &resultado)
{
    const QString t = texto.trimmed();
    if (t.isEmpty())
        return false;
    const QString redondo = RedondearDecimal(t, 4);
    bool ok = false;
    const qint64 n = QString(redondo).remove(QLatin1Char('.')).toLongLong(&ok);
    if (!ok)
        return false;
    // The digits must have been digits: toLongLong alone would accept " 12" or "+12".
    for (QChar c : t)
        if (!(c.isDigit() || c == u'.' || c == u'-'))
            return false;
    resultado = DesdeDiezmilesimos(n);
    return true;
}

Importe Importe::RedondeadoA(int decimales) const
{
    if (decimales >= 4)
        return *this;
    const qint64 paso = Paso(decimales);
    const qint64 a = m_n < 0 ? -m_n : m_n;
    qint64 cociente = a / paso;
    if (a % paso >= paso / 2) // halves away from zero
        ++cociente;
    qint64 r = 0;
    if (__builtin_mul_overflow(cociente, paso, &r)) // past the end of the range: held there
        r = std::numeric_limits<qint64>::max();
    return DesdeDiezmilesimos(m_n < 0 ? -r : r);
}

QString Importe::aTexto(int decimales) const
{
    if (decimales < 0 || decimales > 4)
        return RedondearDecimal(aTexto(), decimales);
    const quint64 paso = quint64(Paso(decimales));
    const quint64 magnitud = m_n < 0 ? 0 - quint64(m_n) : quint64(m_n);
    quint64 resto = (magnitud + paso / 2) / paso;
    const bool cero = resto == 0;
    char16_t texto[32];
    int n = 32;
    for (int i = 0; i < decimales; ++i, resto /= 10)
        texto[--n] = char16_t(u'0' + resto % 10);
    if (decimales > 0)
        texto[--n] = u'.';
    do {
        texto[--n] = char16_t(u'0' + resto % 10);
        resto /= 10;
    } while (resto > 0);
    if (m_n < 0 && !cero)
        texto[--n] = u'-';
    return QString(reinterpret_cast<const QChar *>(texto + n), 32 - n);
}

QString Importe::aTexto() const
{
    const qint64 a = m_n < 0 ? -m_n : m_n;
    return QStringLiteral("%1%2.%3")
        .arg(m_n < 0 ? QStringLiteral("-") : QString())
        .arg(a / kEscala)
        .arg(a % kEscala, 4, 10, QLatin1Char('0'));
}
