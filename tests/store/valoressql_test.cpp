#include "store/valoressql.h"

#include <gtest/gtest.h>

namespace {

TEST(NumeroSQL, PuntoDecimalEnCualquierLocale)
{
    const QLocale es(QLocale::Spanish, QLocale::Uruguay);
    const QLocale de(QLocale::German, QLocale::Germany);
    const QLocale en(QLocale::English, QLocale::UnitedStates);
    for (const QLocale &l : {es, de, en}) {
        SCOPED_TRACE(l.name().toStdString());
        EXPECT_EQ(NumeroSQL(1234.5, l), QStringLiteral("1234.5"));      // no grouping ever
        EXPECT_EQ(NumeroSQL(-0.25, l), QStringLiteral("-0.25"));
        EXPECT_EQ(NumeroSQL(1000000.0, l), QStringLiteral("1000000"));  // no exponent
        EXPECT_EQ(NumeroSQL(0.1 + 0.2, l), QStringLiteral("0.30000000000000004"));
        EXPECT_EQ(NumeroSQL(38.1234, l), QStringLiteral("38.1234"));
    }
    EXPECT_EQ(NumeroSQL(qint64(-42)), QStringLiteral("-42"));
    EXPECT_EQ(NumeroSQL(qint64(2147483647)), QStringLiteral("2147483647"));
}

TEST(FechaSQL, DelimitadorYPatronDeLaBase)
{
    const QDate d(2010, 3, 5);
    EXPECT_EQ(FechaSQL(d, QStringLiteral("'"), QStringLiteral("yyyy-mm-dd")), QStringLiteral("'2010-03-05'"));
    EXPECT_EQ(FechaSQL(d, QString(), QStringLiteral("yyyy-mm-dd")), QStringLiteral("2010-03-05"));
    EXPECT_EQ(FechaSQL(d, QStringLiteral("#"), QStringLiteral("mm/dd/yyyy")), QStringLiteral("#03/05/2010#"));
    EXPECT_EQ(FechaSQL(d, QStringLiteral("'"), QStringLiteral("YYYYMMDD")), QStringLiteral("'20100305'"));
    EXPECT_EQ(FechaSQL(d, QStringLiteral("'"), QStringLiteral("d/m/yy")), QStringLiteral("'5/3/10'"));
}

TEST(FormatoFechaSuite, MesYMinutoSeDistinguenPorLaHora)
{
    const QDateTime m(QDate(2024, 12, 31), QTime(9, 7, 5));
    EXPECT_EQ(FormatoFechaSuite(m, QStringLiteral("yyyy-mm-dd hh:mm:ss")), QStringLiteral("2024-12-31 09:07:05"));
    EXPECT_EQ(FormatoFechaSuite(m, QStringLiteral("hh:nn")), QStringLiteral("09:07"));
    EXPECT_EQ(FormatoFechaSuite(m, QStringLiteral("\"dia\" d \\de mmmm"), QLocale(QLocale::Spanish)),
              QStringLiteral("dia 31 de diciembre"));
    EXPECT_EQ(FormatoFechaSuite(m, QStringLiteral("q y")), QStringLiteral("4 366"));
}

TEST(FormatoFechaSuite, SemanasEmpiezanEnDomingoYLaPrimeraTieneEl1DeEnero)
{
    // 1 January 2022 was a Saturday: it is week 1 alone, Sunday 2 January starts week 2.
    EXPECT_EQ(FormatoFechaSuite(QDate(2022, 1, 1).startOfDay(), QStringLiteral("ww w")), QStringLiteral("1 7"));
    EXPECT_EQ(FormatoFechaSuite(QDate(2022, 1, 2).startOfDay(), QStringLiteral("ww w")), QStringLiteral("2 1"));
    EXPECT_EQ(FormatoFechaSuite(QDate(2022, 12, 31).startOfDay(), QStringLiteral("ww")), QStringLiteral("53"));
}

} // namespace
