#include "store/valoressql.h"

#include <gtest/gtest.h>

namespace {

TEST(NumeroSQL, PuntoDecimalEnCualquierLocale)
{
    for (const QLocale &l : {QLocale(QLocale::Spanish, QLocale::Uruguay), QLocale(QLocale::German, QLocale::Germany),
                             QLocale(QLocale::English, QLocale::UnitedStates)}) {
        SCOPED_TRACE(l.name().toStdString());
        EXPECT_EQ(NumeroSQL(1234.5, l), QStringLiteral("1234.5")); // no grouping ever
        EXPECT_EQ(NumeroSQL(-0.25, l), QStringLiteral("-0.25"));
        EXPECT_EQ(NumeroSQL(1000000.0, l), QStringLiteral("1000000")); // no exponent
        EXPECT_EQ(NumeroSQL(0.1 + 0.2, l), QStringLiteral("0.30000000000000004"));
    }
}

// "m" after an hour is the minute; weeks start on Sunday, and 1 January 2022, a Saturday, is
// week 1 alone.
TEST(FormatoFechaSuite, PatronesDeLaBaseYDelUsuario)
{
    const QDateTime m(QDate(2024, 12, 31), QTime(9, 7, 5));
    const QDateTime d = QDate(2010, 3, 5).startOfDay();
    const struct
    {
        QDateTime momento;
        const char *patron, *esperado;
    } casos[] = {
        {m, "yyyy-mm-dd hh:mm:ss", "2024-12-31 09:07:05"}, {m, "hh:nn", "09:07"},
        {m, "\"dia\" d \\de mmmm", "dia 31 de diciembre"}, {m, "q y", "4 366"},
        {d, "YYYYMMDD", "20100305"},                       {d, "d/m/yy", "5/3/10"},
        {QDate(2022, 1, 1).startOfDay(), "ww w", "1 7"},  {QDate(2022, 1, 2).startOfDay(), "ww w", "2 1"},
        {QDate(2022, 12, 31).startOfDay(), "ww", "53"},
    };
    for (const auto &c : casos)
        EXPECT_EQ(FormatoFechaSuite(c.momento, QString::fromUtf8(c.patron), QLocale(QLocale::Spanish)), QString::fromUtf8(c.esperado))
            << c.patron;
    EXPECT_EQ(FechaSQL(QDate(2010, 3, 5), QStringLiteral("#"), QStringLiteral("mm/dd/yyyy")), QStringLiteral("#03/05/2010#"));
}

} // namespace
