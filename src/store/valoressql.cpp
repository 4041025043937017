#include "valoressql.h"

QString NumeroSQL(double valor, const QLocale &locale)
{
    QLocale l = locale;
    l.setNumberOptions(QLocale::OmitGroupSeparator);
    QString texto = l.toString(valor, 'f', QLocale::FloatingPointShortest);
    texto.replace(QLatin1Char(','), QLatin1Char('.'));
    return texto;
}

QString NumeroSQL(qint64 valor)
{
    return QString::number(valor);
}

QString FechaSQL(const QDate &fecha, const QString &delimitador, const QString &patron)
{
    return delimitador + FormatoFechaSuite(fecha, QTime(0, 0), patron) + delimitador;
}

namespace {

int semanaDelAnio(const QDate &d)
{
    const QDate primero(d.year(), 1, 1);
    const int desplazamiento = primero.dayOfWeek() % 7; // Sunday = 0
    return (d.dayOfYear() - 1 + desplazamiento) / 7 + 1;
}

QString dosDigitos(int n)
{
    return QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
}

} // namespace

QString FormatoFechaSuite(const QDateTime &momento, const QString &patron, const QLocale &locale)
{
    return FormatoFechaSuite(momento.date(), momento.time(), patron, locale);
}

QString FormatoFechaSuite(const QDate &d, const QTime &t, const QString &patron, const QLocale &locale)
{
    QString out;
    bool despuesDeHora = false;
    qsizetype i = 0;
    while (i < patron.size()) {
        const QChar c = patron.at(i);
        const QChar lc = c.toLower();
        qsizetype n = 1;
        while (i + n < patron.size() && patron.at(i + n).toLower() == lc)
            ++n;

        if (c == u'"') {
            const qsizetype fin = patron.indexOf(u'"', i + 1);
            const qsizetype hasta = fin < 0 ? patron.size() : fin;
            out += patron.mid(i + 1, hasta - i - 1);
            i = hasta + 1;
            continue;
        }
        if (c == u'\\') {
            if (i + 1 < patron.size())
                out += patron.at(i + 1);
            i += 2;
            continue;
        }

        if (lc == u'd') {
            if (n == 1)
                out += QString::number(d.day());
            else if (n == 2)
                out += dosDigitos(d.day());
            else if (n == 3)
                out += locale.dayName(d.dayOfWeek(), QLocale::ShortFormat);
            else
                out += locale.dayName(d.dayOfWeek(), QLocale::LongFormat);
        } else if (lc == u'm' && despuesDeHora && n <= 2) {
            out += n == 1 ? QString::number(t.minute()) : dosDigitos(t.minute());
        } else if (lc == u'm') {
            if (n == 1)
                out += QString::number(d.month());
            else if (n == 2)
                out += dosDigitos(d.month());
            else if (n == 3)
                out += locale.monthName(d.month(), QLocale::ShortFormat);
            else
                out += locale.monthName(d.month(), QLocale::LongFormat);
        } else if (lc == u'y') {
            if (n == 1)
                out += QString::number(d.dayOfYear());
            else if (n <= 3)
                out += dosDigitos(d.year() % 100);
            else
                out += QStringLiteral("%1").arg(d.year(), 4, 10, QLatin1Char('0'));
        } else if (lc == u'q') {
            out += QString::number((d.month() - 1) / 3 + 1);
        } else if (lc == u'w') {
            out += n == 1 ? QString::number(d.dayOfWeek() % 7 + 1) : QString::number(semanaDelAnio(d));
        } else if (lc == u'h') {
            out += n == 1 ? QString::number(t.hour()) : dosDigitos(t.hour());
        } else if (lc == u'n') {
            out += n == 1 ? QString::number(t.minute()) : dosDigitos(t.minute());
        } else if (lc == u's') {
            out += n == 1 ? QString::number(t.second()) : dosDigitos(t.second());
        } else {
            out += patron.mid(i, n);
        }
        despuesDeHora = lc == u'h' || (despuesDeHora && !lc.isLetter());
        i += n;
    }
    return out;
}
