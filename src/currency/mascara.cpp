#include "mascara.h"

#include "importe.h"

#include <QHash>

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
        return m_texto.isEmpty() ? locale.toString(valor, 'f', QLocale::FloatingPointShortest) : m_texto;

    QString digitos = RedondearDecimal(TextoDecimal(valor), m_decimalesMax);
    const bool negativo = digitos.startsWith(QLatin1Char('-'));
    if (negativo)
        digitos.remove(0, 1);
    const qsizetype punto = digitos.indexOf(QLatin1Char('.'));
    QString entera = punto < 0 ? digitos : digitos.left(punto);
    QString fraccion = punto < 0 ? QString() : digitos.mid(punto + 1);

    while (fraccion.size() > m_decimalesMin && fraccion.endsWith(QLatin1Char('0')))
        fraccion.chop(1);
    if (entera == QLatin1String("0") && m_enterosMin == 0)
        entera.clear();
    while (entera.size() < m_enterosMin)
        entera.prepend(QLatin1Char('0'));

    if (m_agrupar && entera.size() > 3) {
        const QString grupo = locale.groupSeparator();
        for (qsizetype i = entera.size() - 3; i > 0; i -= 3)
            entera.insert(i, grupo);
    }
    QString texto = entera;
    if (!fraccion.isEmpty())
        texto += locale.decimalPoint() + fraccion;
    if (negativo)
        texto.prepend(locale.negativeSign());
    return m_prefijo + texto + m_sufijo;
}

bool LeerNumero(const QString &texto, double &valor, const QLocale &locale)
{
    QString t = texto.trimmed();
    const QString grupo = locale.groupSeparator();
    const QString decimal = locale.decimalPoint();
    QString limpio;
    limpio.reserve(t.size());
    for (qsizetype i = 0; i < t.size(); ++i) {
        const QChar c = t.at(i);
        if (c.isDigit()) {
            limpio += c;
        } else if (QStringView(t).mid(i).startsWith(decimal)) {
            limpio += QLatin1Char('.');
            i += decimal.size() - 1;
        } else if (c == u'.' && grupo != QLatin1String(".")) {
            limpio += QLatin1Char('.');
        } else if (c == u'-' || QStringView(t).mid(i).startsWith(locale.negativeSign())) {
            if (!limpio.isEmpty())
                return false;
            limpio += QLatin1Char('-');
        } else if (QStringView(t).mid(i).startsWith(grupo) || c.isSpace() || c == QChar(0x202F) || c == QChar(0xA0)) {
            continue;
        } else {
            return false;
        }
    }
    bool ok = false;
    valor = limpio.toDouble(&ok);
    return ok;
}

double LeerNumero(const QString &texto, const QLocale &locale)
{
    double v = 0;
    return LeerNumero(texto, v, locale) ? v : 0.0;
}

double RedondearConMascara(double valor, const QString &mascara, const QLocale &locale)
{
    return LeerNumero(Mascara(mascara).Formatear(valor, locale), locale);
}
