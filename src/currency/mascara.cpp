#include "mascara.h"

#include "importe.h"

#include <QHash>

#include <algorithm>
#include <cmath>

Mascara::Mascara(const QString &mascara)
    : m_texto(mascara)
{
    static const QString digitos = QStringLiteral("#0.,");
    qsizetype inicio = 0;
    while (inicio < mascara.size() && !digitos.contains(mascara.at(inicio)))
        ++inicio;
    if (inicio == mascara.size())
        return;
    qsizetype fin = inicio;
    while (fin < mascara.size() && digitos.contains(mascara.at(fin)))
        ++fin;
    m_prefijo = mascara.left(inicio);
    m_sufijo = mascara.mid(fin);
    const QString numero = mascara.mid(inicio, fin - inicio);
    const qsizetype punto = numero.indexOf(QLatin1Char('.'));
    const QString entera = punto < 0 ? numero : numero.left(punto);
    const QString fraccion = punto < 0 ? QString() : numero.mid(punto + 1);
    m_agrupar = entera.contains(QLatin1Char(','));
    m_enterosMin = int(entera.count(QLatin1Char('0')));
    m_decimalesMin = int(fraccion.count(QLatin1Char('0')));
    m_decimalesMax = int(fraccion.count(QLatin1Char('0')) + fraccion.count(QLatin1Char('#')));
    m_valida = true;
}

QString Mascara::Formatear(double valor, const QLocale &locale) const
{
    if (!std::isfinite(valor))
        return {};
    if (!m_valida)
        return m_texto.isEmpty() ? FormatearNumero(valor, locale) : m_texto;
    return m_prefijo + FormatearNumero(valor, locale) + m_sufijo;
}

QString Mascara::FormatearNumero(double valor, const QLocale &locale) const
{
    if (!std::isfinite(valor))
        return {};
    if (!m_valida) {
        // No grouping asked for; and Qt groups some locales in ways no reader accepts
        // ("1234.567,5" in es_ES).
        QLocale sinGrupos = locale;
        sinGrupos.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
        return sinGrupos.toString(valor, 'f', QLocale::FloatingPointShortest);
    }

    return formatearDigitos(RedondearDecimal(TextoDecimal(valor), m_decimalesMax), locale);
}

QString Mascara::Formatear(Importe valor, const QLocale &locale) const
{
    if (!m_valida)
        return m_texto.isEmpty() ? FormatearNumero(valor, locale) : m_texto;
    return m_prefijo + FormatearNumero(valor, locale) + m_sufijo;
}

QString Mascara::FormatearNumero(Importe valor, const QLocale &locale) const
{
    if (!m_valida)
        return FormatearNumero(valor.aDouble(), locale);
    return formatearDigitos(valor.aTexto(m_decimalesMax), locale);
}

QString Mascara::formatearDigitos(QString digitos, const QLocale &locale) const
{
    // Read in place and written once: an amount is formatted for every cell of a grid.
    QStringView d(digitos);
    const bool negativo = d.startsWith(u'-');
    if (negativo)
        d = d.mid(1);
    const qsizetype punto = d.indexOf(u'.');
    QStringView entera = punto < 0 ? d : d.left(punto);
    QStringView fraccion = punto < 0 ? QStringView() : d.mid(punto + 1);

    while (fraccion.size() > m_decimalesMin && fraccion.endsWith(u'0'))
        fraccion.chop(1);
    if (entera == u"0" && m_enterosMin == 0)
        entera = QStringView();
    const qsizetype ceros = std::max<qsizetype>(0, m_enterosMin - entera.size());
    const qsizetype largo = ceros + entera.size();

    const QString menos = negativo ? locale.negativeSign() : QString();
    const QString grupo = m_agrupar && largo > 3 ? locale.groupSeparator() : QString();
    const QString coma = fraccion.isEmpty() ? QString() : locale.decimalPoint();
    QString texto(menos.size() + largo + (largo - 1) / 3 * grupo.size() + coma.size() + fraccion.size(), Qt::Uninitialized);
    QChar *p = texto.data();
    auto poner = [&p](QStringView parte) {
        std::copy(parte.begin(), parte.end(), p);
        p += parte.size();
    };
    poner(menos);
    for (qsizetype i = 0; i < largo; ++i) {
        if (i > 0 && (largo - i) % 3 == 0)
            poner(grupo);
        *p++ = i < ceros ? QChar(u'0') : entera[i - ceros];
    }
    poner(coma);
    poner(fraccion);
    return texto;
}

namespace {

bool esBlanco(QChar c)
{
    return c == u' ' || c == QChar(0xA0) || c == QChar(0x202F) || c == QChar(0x2009);
}

// The kinds of separator a number may hold.
enum class Separador { Ninguno, Decimal, Otra, Grupo, Blanco };

} // namespace

bool LeerNumero(const QString &texto, double &valor, const QLocale &locale)
{
    const QString t = texto.trimmed();
    const QString decimal = locale.decimalPoint();
    const QString grupo = locale.groupSeparator();
    // The other mark: "." against a decimal comma, "," against a decimal point.
    const QChar otra = decimal == QLatin1String(",") ? QLatin1Char('.') : QLatin1Char(',');
    const QStringView v(t);

    qsizetype i = 0;
    bool negativo = false;
    if (v.startsWith(u'-')) {
        negativo = true;
        i = 1;
    } else if (!locale.negativeSign().isEmpty() && v.startsWith(locale.negativeSign())) {
        negativo = true;
        i = locale.negativeSign().size();
    }
    while (negativo && i < v.size() && esBlanco(v.at(i)))
        ++i;

    // Digit runs and the separator in front of each (none in front of the first).
    struct Tramo
    {
        Separador antes = Separador::Ninguno;
        QChar marca;
        QString digitos;
    };
    QList<Tramo> tramos{Tramo{}};
    while (i < v.size()) {
        const QChar c = v.at(i);
        if (c.isDigit() && c.unicode() < 128) {
            tramos.last().digitos += c;
            ++i;
            continue;
        }
        Tramo nuevo;
        if (v.mid(i).startsWith(decimal)) {
            nuevo.antes = Separador::Decimal;
            i += decimal.size();
        } else if (c == otra) {
            nuevo.antes = Separador::Otra;
            ++i;
        } else if (esBlanco(c)) {
            nuevo.antes = Separador::Blanco;
            ++i;
        } else if (!grupo.isEmpty() && v.mid(i).startsWith(grupo)) {
            nuevo.antes = Separador::Grupo;
            i += grupo.size();
        } else {
            return false;
        }
        nuevo.marca = c;
        // Two separators in a row are never a number.
        if (tramos.size() > 1 && tramos.last().digitos.isEmpty())
            return false;
        tramos << nuevo;
    }

    // Where the decimal mark stands: the locale's own, else the other mark when it is the
    // last separator and not followed by exactly three digits.
    qsizetype coma = -1;
    for (qsizetype k = 1; k < tramos.size(); ++k) {
        if (tramos[k].antes == Separador::Decimal) {
            if (coma >= 0)
                return false;
            coma = k;
        }
    }
    const Tramo &ultimo = tramos.last();
    if (coma < 0 && tramos.size() > 1 && ultimo.antes == Separador::Otra && ultimo.digitos.size() != 3)
        coma = tramos.size() - 1;
    if (coma >= 0 && coma != tramos.size() - 1)
        return false; // separators after the decimal mark

    // The whole part: one run, or groups of three after a first group of one to three.
    const qsizetype grupos = coma >= 0 ? coma : tramos.size();
    QString entera = tramos[0].digitos;
    if (grupos > 1) {
        const QString &primero = tramos[0].digitos;
        if (primero.isEmpty() || primero.size() > 3 || primero.startsWith(u'0'))
            return false;
        for (qsizetype k = 1; k < grupos; ++k) {
            const Tramo &g = tramos[k];
            if (g.digitos.size() != 3 || g.marca != tramos[1].marca
                || (g.antes == Separador::Otra && coma >= 0 && tramos[coma].antes == Separador::Otra))
                return false;
            entera += g.digitos;
        }
    }
    const QString fraccion = coma >= 0 ? tramos[coma].digitos : QString();
    if (entera.isEmpty() && fraccion.isEmpty())
        return false;

    const QString limpio = (negativo ? QStringLiteral("-") : QString()) + (entera.isEmpty() ? QStringLiteral("0") : entera)
                         + (fraccion.isEmpty() ? QString() : QLatin1Char('.') + fraccion);
    bool ok = false;
    const double leido = limpio.toDouble(&ok);
    if (!ok || !std::isfinite(leido))
        return false;
    valor = leido;
    return true;
}

double LeerNumero(const QString &texto, const QLocale &locale)
{
    double v = 0;
    return LeerNumero(texto, v, locale) ? v : 0.0;
}

double RedondearConMascara(double valor, const QString &mascara, const QLocale &locale)
{
    return LeerNumero(Mascara(mascara).FormatearNumero(valor, locale), locale);
}

Importe ImporteConMascara(double valor, const Mascara &m)
{
    return Importe::DesdeDouble(m.valida() ? RedondearADecimales(valor, std::min(m.decimales(), 4)) : valor);
}

Importe ImporteConMascara(Importe valor, const Mascara &m)
{
    return m.valida() ? valor.RedondeadoA(m.decimales()) : valor;
}

Importe ImporteConMascara(double valor, const QString &mascara)
{
    return ImporteConMascara(valor, Mascara(mascara));
}

Importe ImporteConMascara(Importe valor, const QString &mascara)
{
    return ImporteConMascara(valor, Mascara(mascara));
}

double RedondearADecimales(double valor, int decimales)
{
    if (!std::isfinite(valor))
        return valor;
    decimales = std::clamp(decimales, 0, 15);
    double escala = 1;
    for (int i = 0; i < decimales; ++i)
        escala *= 10;
    // Far from a half, scaling and rounding decides as the decimal digits do: below 1e9 the
    // scaled value is off by less than 1e-6. Near a half, or beyond, the digits decide.
    const double escalado = valor * escala;
    if (std::fabs(escalado) < 1e9) {
        const double resto = std::fabs(escalado - std::trunc(escalado));
        if (std::fabs(resto - 0.5) > 1e-6)
            return std::round(escalado) / escala;
    }
    return RedondearDecimal(TextoDecimal(valor), decimales).toDouble();
}
