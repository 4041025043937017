#include "currency/importe.h"
#include "currency/mascara.h"

#include <gtest/gtest.h>

namespace {

const QLocale kEs(QLocale::Spanish, QLocale::Uruguay);
const QLocale kEn(QLocale::English, QLocale::UnitedStates);

struct CasoMascara
{
    const char *mascara;
    double valor;
    const char *es;
    const char *en;
};

class Mascaras : public ::testing::TestWithParam<CasoMascara>
{
};

TEST_P(Mascaras, ImprimeEnElLocaleYSeLeeDeVuelta)
{
    const CasoMascara &c = GetParam();
    const Mascara m(QString::fromUtf8(c.mascara));
    EXPECT_EQ(m.Formatear(c.valor, kEs).toStdString(), c.es);
    EXPECT_EQ(m.Formatear(c.valor, kEn).toStdString(), c.en);
    // What is printed reads back as the value rounded to the mask's decimals.
    double es = 0, en = 0;
    ASSERT_TRUE(LeerNumero(QString::fromUtf8(c.es), es, kEs));
    ASSERT_TRUE(LeerNumero(QString::fromUtf8(c.en), en, kEn));
    EXPECT_DOUBLE_EQ(es, en);
    EXPECT_DOUBLE_EQ(RedondearConMascara(c.valor, QString::fromUtf8(c.mascara), kEs), es);
}

INSTANTIATE_TEST_SUITE_P(
    Comunes, Mascaras,
    ::testing::Values(CasoMascara{"#,##0.00", 1234.5, "1.234,50", "1,234.50"},
                      CasoMascara{"#,##0.00", 0, "0,00", "0.00"},
                      CasoMascara{"#,##0.00", -1234567.891, "-1.234.567,89", "-1,234,567.89"},
                      CasoMascara{"#,##0.00", 999.995, "1.000,00", "1,000.00"},       // carry into a new group
                      CasoMascara{"#,##0.00", 2.675, "2,68", "2.68"},                 // half away from zero, as written
                      CasoMascara{"#,##0.00", -2.675, "-2,68", "-2.68"},
                      CasoMascara{"#,##0.00", 0.004, "0,00", "0.00"},
                      CasoMascara{"#,##0.00", -0.004, "0,00", "0.00"},                // no "-0,00"
                      CasoMascara{"#,##0.000", 40.12345, "40,123", "40.123"},
                      CasoMascara{"#,##0.0000", 38.12345, "38,1235", "38.1235"},
                      CasoMascara{"#.000", 1.0 / 3.0, ",333", ".333"},
                      CasoMascara{"#.000", 25, "25,000", "25.000"},
                      CasoMascara{"0", 1234.5, "1235", "1235"},
                      CasoMascara{"#,##0", 1234567, "1.234.567", "1,234,567"},
                      CasoMascara{"#,##0.##", 12.5, "12,5", "12.5"}));

TEST(Mascaras, TextoAlrededorDeLosDigitosSeConserva)
{
    EXPECT_EQ(Mascara(QStringLiteral("U$S #,##0.00")).Formatear(1234.5, kEs), QStringLiteral("U$S 1.234,50"));
}

TEST(Mascaras, NumerosQueNoSonNumerosNoSeLeen)
{
    double v = 0;
    EXPECT_FALSE(LeerNumero(QStringLiteral("12a"), v, kEs));
    EXPECT_FALSE(LeerNumero(QStringLiteral("1-2"), v, kEs));
    EXPECT_FALSE(LeerNumero(QString(), v, kEs));
    EXPECT_TRUE(LeerNumero(QStringLiteral(" -1.234,5 "), v, kEs));
    EXPECT_DOUBLE_EQ(v, -1234.5);
}

TEST(Importe, RedondeaACuatroDecimalesComoSeEscribe)
{
    EXPECT_EQ(Importe::DesdeDouble(1.00005).diezmilesimos(), 10001);
    EXPECT_EQ(Importe::DesdeDouble(-1.00005).diezmilesimos(), -10001);
    EXPECT_EQ(Importe::DesdeDouble(0.1 + 0.2).diezmilesimos(), 3000);
    EXPECT_EQ(Importe::DesdeDouble(38.1234).aTexto(), QStringLiteral("38.1234"));
    EXPECT_EQ(Importe::DesdeDouble(-0.00004).aTexto(), QStringLiteral("0.0000"));
    EXPECT_EQ(Importe::DesdeDouble(922337203685.4775).diezmilesimos(), 9223372036854775);
}

TEST(Importe, SumasExactas)
{
    Importe suma;
    for (int i = 0; i < 1000; ++i)
        suma += Importe::DesdeDouble(0.1);
    EXPECT_EQ(suma, Importe::DesdeDouble(100));
    EXPECT_EQ((Importe::DesdeDouble(10) - Importe::DesdeDouble(10.0001)).aTexto(), QStringLiteral("-0.0001"));

    Importe leido;
    EXPECT_TRUE(Importe::DesdeTexto(QStringLiteral("1234.56789"), leido));
    EXPECT_EQ(leido.aTexto(), QStringLiteral("1234.5679"));
    EXPECT_FALSE(Importe::DesdeTexto(QStringLiteral("12,5"), leido));
    EXPECT_FALSE(Importe::DesdeTexto(QStringLiteral("abc"), leido));
}

} // namespace
