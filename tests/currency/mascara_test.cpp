#include "currency/importe.h"
#include "currency/mascara.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace {

const QLocale kEs(QLocale::Spanish, QLocale::Uruguay);
const QLocale kEn(QLocale::English, QLocale::UnitedStates);

// A mask prints the value in the locale, rounded half away from zero as its digits are
// written; the text around the digits stays; a blank mask does not group.
TEST(Mascaras, ImprimeEnElLocale)
{
    const struct
    {
        const char *mascara;
        double valor;
        const char *es, *en;
    } casos[] = {
        {"#,##0.00", 1234.5, "1.234,50", "1,234.50"}, {"#,##0.00", 0, "0,00", "0.00"},
        {"#,##0.00", -1234567.891, "-1.234.567,89", "-1,234,567.89"},
        {"#,##0.00", 999.995, "1.000,00", "1,000.00"}, // carry into a new group
        {"#,##0.00", 2.675, "2,68", "2.68"}, {"#,##0.00", -2.675, "-2,68", "-2.68"},
        {"#,##0.00", -0.004, "0,00", "0.00"}, // no "-0,00"
        {"#,##0.000", 40.12345, "40,123", "40.123"}, {"#,##0.0000", 38.12345, "38,1235", "38.1235"},
        {"#.000", 1.0 / 3.0, ",333", ".333"}, {"#.000", 25, "25,000", "25.000"},
        {"0", 1234.5, "1235", "1235"}, {"#,##0", 1234567, "1.234.567", "1,234,567"},
        {"000.00", 5, "005,00", "005.00"}, {"0,000", -12, "-0.012", "-0,012"}, // leading zeros, grouped too
        {"#,##0.##", 12.5, "12,5", "12.5"}, {"U$S #,##0.00", 1234.5, "U$S 1.234,50", "U$S 1,234.50"},
        {"", 1234567.5, "1234567,5", "1234567.5"},
    };
    for (const auto &c : casos) {
        const Mascara m(QString::fromUtf8(c.mascara));
        EXPECT_EQ(m.Formatear(c.valor, kEs).toStdString(), c.es) << c.mascara << " " << c.valor;
        EXPECT_EQ(m.Formatear(c.valor, kEn).toStdString(), c.en) << c.mascara << " " << c.valor;
    }
}

QLocale LocaleDe(const char *nombre)
{
    return QLatin1String(nombre) == QLatin1String("C") ? QLocale::c() : QLocale(QString::fromLatin1(nombre));
}

// One rule for a typed number, whatever the locale: the locale's decimal mark is always the
// decimal mark; the other mark is one too when it is the last separator and not followed by
// exactly three digits; group separators stand only between groups of three. A refused text
// leaves the value alone.
TEST(Lecturas, UnaReglaQueNuncaEscala)
{
    struct Leido
    {
        const char *texto;
        double valor;
    };
    auto probar = [](const char *locale, std::initializer_list<Leido> buenos, std::initializer_list<const char *> malos) {
        for (const Leido &c : buenos) {
            double v = -777;
            EXPECT_TRUE(LeerNumero(QString::fromUtf8(c.texto), v, LocaleDe(locale))) << locale << " \"" << c.texto << '"';
            EXPECT_DOUBLE_EQ(v, c.valor) << locale << " \"" << c.texto << '"';
        }
        for (const char *t : malos) {
            double v = -777;
            EXPECT_FALSE(LeerNumero(QString::fromUtf8(t), v, LocaleDe(locale))) << locale << " \"" << t << '"';
            EXPECT_DOUBLE_EQ(v, -777) << locale << " \"" << t << '"';
        }
    };
    for (const char *l : {"es_UY", "es_ES"})
        probar(l,
               {{"12,5", 12.5}, {"12.5", 12.5}, {"1500.50", 1500.5}, {"1.500", 1500}, {"1.500,5", 1500.5}, {"1.500.000", 1500000},
                {"1.500.000,25", 1500000.25}, {"1,500", 1.5}, {"1500,505", 1500.505}, {"1.5000", 1.5}, {",25", 0.25}, {".5", 0.5},
                {"12,", 12}, {"12.", 12}, {"0,500", 0.5}, {"1 500,5", 1500.5}, {"-1.234,5", -1234.5}, {"- 3", -3}, {" 007 ", 7},
                {"1234567,891", 1234567.891}},
               // "1500.505": "." before three digits groups, and 1500 is no group.
               {"1500.505", "1.2.3,4", "1,23,4", "0.500", ".500", "1.234.5", "1,234.5", "1.234 567", "1,2,3", "1..5", "12a", "1-2",
                "", ",", "-", "1e5"});
    probar("en_US",
           {{"12,5", 12.5}, {"12.5", 12.5}, {"1,500", 1500}, {"1.500", 1.5}, {"1500,50", 1500.5}, {"1,500.25", 1500.25},
            {"1,234,567", 1234567}, {"-1,234.5", -1234.5}, {".25", 0.25}, {"1,5000", 1.5}},
           {"1.500,25", "1,23,4", "1.2.3,4", "0,500", "1500,505", "1.5.0"});
    probar("C",
           {{"12,5", 12.5}, {"12.5", 12.5}, {"1,500", 1500}, {"1,500.5", 1500.5}, {"1500,50", 1500.5}, {"1 000 000", 1000000}},
           {"1.2.3,4", "1,23,4", "1.500,5", "1,5,0"});
}

// An amount prints from its own digits: past 2^53 ten-thousandths a double no longer holds
// them (922337203685477.5807 is 922337203685477.625 as a double).
TEST(Mascaras, UnImporteSeImprimeYRedondeaDesdeSusDigitos)
{
    const Mascara dos(QStringLiteral("#,##0.00"));
    EXPECT_EQ(dos.Formatear(Importe::Maximo(), kEs), QStringLiteral("922.337.203.685.477,58"));
    EXPECT_EQ(dos.Formatear(-Importe::Maximo(), kEn), QStringLiteral("-922,337,203,685,477.58"));
    EXPECT_EQ(Mascara(QStringLiteral("U$S #,##0.000")).Formatear(-2.6755_imp, kEs), QStringLiteral("U$S -2,676"));
    EXPECT_EQ(Mascara(QStringLiteral("#,##0")).Formatear(0.4999_imp, kEn), QStringLiteral("0"));
    // The text around the digits is not read back as part of the number.
    EXPECT_DOUBLE_EQ(RedondearConMascara(1234.567, QStringLiteral("U$S #,##0.00"), kEs), 1234.57);

    const struct
    {
        double valor;
        const char *mascara;
        Importe esperado;
    } casos[] = {{2.675, "#,##0.00", 2.68_imp},  {2.674951, "#,##0.00", 2.67_imp}, {-2.675, "#,##0.00", -2.68_imp},
                          {1234.5, "#,##0", 1235_imp},   {0.123456, "", 0.1235_imp},      {0.123456, "#,##0.000000", 0.1235_imp},
                          {38.12345, "#.000", 38.123_imp}};
    // Rounded straight from the fixed-point value, as from its digits.
    for (const Importe v : {Importe(), 0.0001_imp, -0.0001_imp, 0.005_imp, -0.005_imp, 0.0049_imp, 9.9995_imp, -9.9995_imp,
                            123456.7891_imp, -0.5_imp, Importe::Maximo(), -Importe::Maximo()})
        for (int decimales = 0; decimales <= 6; ++decimales)
            EXPECT_EQ(v.aTexto(decimales), RedondearDecimal(v.aTexto(), decimales)) << v.aTexto().toStdString() << " " << decimales;
    for (const auto &c : casos) {
        EXPECT_EQ(ImporteConMascara(c.valor, QString::fromLatin1(c.mascara)), c.esperado) << c.valor << " " << c.mascara;
        // An amount already has four decimals at most; it rounds the same when it is the value.
        if (Importe::DesdeDouble(c.valor).aDouble() == c.valor)
            EXPECT_EQ(ImporteConMascara(Importe::DesdeDouble(c.valor), QString::fromLatin1(c.mascara)), c.esperado) << c.valor << " " << c.mascara;
    }
}

TEST(Mascaras, RedondearADecimalesComoImprimeLaMascara)
{
    const struct
    {
        double valor;
        int decimales;
        double esperado;
    } casos[] = {{2.675, 2, 2.68},   {-2.675, 2, -2.68},     {1.005, 2, 1.01},        {2.674951, 2, 2.67},
                          {100.555, 2, 100.56}, {4169.5634, 2, 4169.56}, {0.125, 2, 0.13},      {1234567.125, 2, 1234567.13},
                          {123456789012.345, 2, 123456789012.35},      {38.12345, 3, 38.123},  {1234.5, 0, 1235}};
    for (const auto &c : casos)
        EXPECT_DOUBLE_EQ(RedondearADecimales(c.valor, c.decimales), c.esperado) << c.valor << " " << c.decimales;
    // The fast way and the printed way agree, near halves and far from them.
    const Mascara dos(QStringLiteral("0.00"));
    for (int i = -20000; i <= 20000; ++i) {
        const double v = i * 0.0005 + 1000;
        ASSERT_DOUBLE_EQ(RedondearADecimales(v, 2), LeerNumero(dos.Formatear(v, QLocale::c()), QLocale::c())) << v;
    }
}

// Amounts are rounded to four decimals as they are written, added and read exactly.
TEST(Importe, CuatroDecimalesSumaExactaYTopesDelRango)
{
    EXPECT_EQ(Importe::DesdeDouble(1.00005).diezmilesimos(), 10001);
    EXPECT_EQ(Importe::DesdeDouble(-1.00005).diezmilesimos(), -10001);
    EXPECT_EQ(Importe::DesdeDouble(0.1 + 0.2).diezmilesimos(), 3000);
    EXPECT_EQ(Importe::DesdeDouble(38.1234).aTexto(), QStringLiteral("38.1234"));
    EXPECT_EQ(Importe::DesdeDouble(-0.00004).aTexto(), QStringLiteral("0.0000"));
    EXPECT_EQ(Importe::DesdeDouble(922337203685.4775).diezmilesimos(), 9223372036854775);

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

    // Past its range the type holds its end: never 0, never the other sign.
    EXPECT_EQ(Importe::DesdeDouble(1e16), Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(-1e300), -Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(std::numeric_limits<double>::infinity()), Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(922337203685476.0).diezmilesimos(), 9223372036854760000);
    const Importe uno = 1_imp;
    EXPECT_EQ(Importe::Maximo() + uno, Importe::Maximo());
    EXPECT_EQ(-Importe::Maximo() - uno, -Importe::Maximo());
    suma = Importe::Maximo();
    EXPECT_FALSE(suma.SumarComprobado(uno));
    EXPECT_EQ(suma, Importe::Maximo()) << "a refused sum adds nothing";
    EXPECT_TRUE(suma.SumarComprobado(-uno));
    EXPECT_LT(suma, Importe::Maximo());
}

} // namespace
