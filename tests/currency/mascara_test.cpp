#include "currency/importe.h"
#include "currency/mascara.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <ostream>
#include <vector>

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

// One rule for a typed number, whatever the locale: the locale's decimal mark is always the
// decimal mark; the other mark is one too when it is the last separator and not followed by
// exactly three digits; group separators stand only between groups of three.
struct CasoLectura
{
    const char *locale;
    const char *texto;
    bool valido;
    double valor;
};

void PrintTo(const CasoLectura &c, std::ostream *os)
{
    *os << c.locale << " \"" << c.texto << "\"";
}

class Lecturas : public ::testing::TestWithParam<CasoLectura>
{
};

QLocale LocaleDe(const char *nombre)
{
    return QLatin1String(nombre) == QLatin1String("C") ? QLocale::c() : QLocale(QString::fromLatin1(nombre));
}

TEST_P(Lecturas, UnaReglaQueNuncaEscala)
{
    const CasoLectura &c = GetParam();
    double v = -777;
    EXPECT_EQ(LeerNumero(QString::fromUtf8(c.texto), v, LocaleDe(c.locale)), c.valido);
    if (c.valido)
        EXPECT_DOUBLE_EQ(v, c.valor);
    else
        EXPECT_DOUBLE_EQ(v, -777); // a refused text leaves the value alone
}

INSTANTIATE_TEST_SUITE_P(
    UruguayYEspana, Lecturas,
    ::testing::ValuesIn([] {
        std::vector<CasoLectura> casos;
        for (const char *l : {"es_UY", "es_ES"}) {
            const CasoLectura propios[] = {
                {l, "12,5", true, 12.5},           {l, "12.5", true, 12.5},         {l, "1500.50", true, 1500.5},
                {l, "1.500", true, 1500},          {l, "1.500,5", true, 1500.5},    {l, "1.500.000", true, 1500000},
                {l, "1.500.000,25", true, 1500000.25}, {l, "1,500", true, 1.5},     {l, "1500,505", true, 1500.505},
                {l, "1.5000", true, 1.5},          {l, ",25", true, 0.25},          {l, ".5", true, 0.5},
                {l, "12,", true, 12},              {l, "12.", true, 12},            {l, "0,500", true, 0.5},
                {l, "1 500,5", true, 1500.5},      {l, "-1.234,5", true, -1234.5},  {l, "- 3", true, -3},
                {l, " 007 ", true, 7},             {l, "1234567,891", true, 1234567.891},
                {l, "1500.505", false, 0},         // "." before three digits groups, and 1500 is no group
                {l, "1.2.3,4", false, 0},          {l, "1,23,4", false, 0},         {l, "0.500", false, 0},
                {l, ".500", false, 0},             {l, "1.234.5", false, 0},        {l, "1,234.5", false, 0},
                {l, "1.234 567", false, 0},        {l, "1,2,3", false, 0},          {l, "1..5", false, 0},
                {l, "12a", false, 0},              {l, "1-2", false, 0},            {l, "", false, 0},
                {l, ",", false, 0},                {l, "-", false, 0},              {l, "1e5", false, 0},
            };
            casos.insert(casos.end(), std::begin(propios), std::end(propios));
        }
        return casos;
    }()));

INSTANTIATE_TEST_SUITE_P(
    EstadosUnidos, Lecturas,
    ::testing::Values(CasoLectura{"en_US", "12,5", true, 12.5}, CasoLectura{"en_US", "12.5", true, 12.5},
                      CasoLectura{"en_US", "1,500", true, 1500}, CasoLectura{"en_US", "1.500", true, 1.5},
                      CasoLectura{"en_US", "1500,50", true, 1500.5}, CasoLectura{"en_US", "1,500.25", true, 1500.25},
                      CasoLectura{"en_US", "1,234,567", true, 1234567}, CasoLectura{"en_US", "-1,234.5", true, -1234.5},
                      CasoLectura{"en_US", ".25", true, 0.25}, CasoLectura{"en_US", "1,5000", true, 1.5},
                      CasoLectura{"en_US", "1.500,25", false, 0}, CasoLectura{"en_US", "1,23,4", false, 0},
                      CasoLectura{"en_US", "1.2.3,4", false, 0}, CasoLectura{"en_US", "0,500", false, 0},
                      CasoLectura{"en_US", "1500,505", false, 0}, CasoLectura{"en_US", "1.5.0", false, 0}));

INSTANTIATE_TEST_SUITE_P(
    LocaleC, Lecturas,
    ::testing::Values(CasoLectura{"C", "12,5", true, 12.5}, CasoLectura{"C", "12.5", true, 12.5},
                      CasoLectura{"C", "1,500", true, 1500}, CasoLectura{"C", "1,500.5", true, 1500.5},
                      CasoLectura{"C", "1500,50", true, 1500.5}, CasoLectura{"C", "1 000 000", true, 1000000},
                      CasoLectura{"C", "1.2.3,4", false, 0}, CasoLectura{"C", "1,23,4", false, 0},
                      CasoLectura{"C", "1.500,5", false, 0}, CasoLectura{"C", "1,5,0", false, 0}));

// Whatever a mask prints in any of the four locales reads back as the value it shows.
TEST(Lecturas, LoQueImprimeUnaMascaraSeLeeEnLosCuatroLocales)
{
    const char *const mascaras[] = {"#,##0.00", "#,##0.000", "#,##0", "0", "#.000", "#,##0.##", "0.0000", ""};
    const double valores[] = {0, 0.004, 2.675, -2.675, 12.5, 999.995, 1234.5, -1234567.891, 1500000.25, 0.333333};
    for (const char *l : {"es_UY", "es_ES", "en_US", "C"}) {
        const QLocale locale = LocaleDe(l);
        for (const char *m : mascaras) {
            const Mascara mascara(QString::fromLatin1(m));
            for (double v : valores) {
                const QString texto = mascara.Formatear(v, locale);
                double leido = 0;
                ASSERT_TRUE(LeerNumero(texto, leido, locale)) << l << " " << m << " " << texto.toStdString();
                const double esperado = mascara.valida() ? RedondearADecimales(v, mascara.decimales()) : v;
                EXPECT_DOUBLE_EQ(leido, esperado) << l << " " << m << " " << texto.toStdString();
                EXPECT_DOUBLE_EQ(RedondearConMascara(v, QString::fromLatin1(m), locale), esperado) << l << " " << m;
            }
        }
    }
}

TEST(Mascaras, MascaraEnBlancoNoAgrupaYConTextoSeRedondeaIgual)
{
    // Qt groups es_ES as "1234.567,5", which no reader takes; a blank mask does not group.
    const QLocale es(QLocale::Spanish, QLocale::Spain);
    EXPECT_EQ(Mascara(QString()).Formatear(1234567.5, es), QStringLiteral("1234567,5"));
    EXPECT_DOUBLE_EQ(RedondearConMascara(1234567.5, QString(), es), 1234567.5);
    // The text around the digits is not read back as part of the number.
    EXPECT_DOUBLE_EQ(RedondearConMascara(1234.567, QStringLiteral("U$S #,##0.00"), kEs), 1234.57);
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

    struct Caso
    {
        double valor;
        const char *mascara;
        Importe esperado;
    };
    const Caso casos[] = {{2.675, "#,##0.00", 2.68_imp},  {2.674951, "#,##0.00", 2.67_imp}, {-2.675, "#,##0.00", -2.68_imp},
                          {1234.5, "#,##0", 1235_imp},   {0.123456, "", 0.1235_imp},      {0.123456, "#,##0.000000", 0.1235_imp},
                          {38.12345, "#.000", 38.123_imp}};
    for (const Caso &c : casos) {
        EXPECT_EQ(ImporteConMascara(c.valor, QString::fromLatin1(c.mascara)), c.esperado) << c.valor << " " << c.mascara;
        // An amount already has four decimals at most; it rounds the same when it is the value.
        if (Importe::DesdeDouble(c.valor).aDouble() == c.valor)
            EXPECT_EQ(ImporteConMascara(Importe::DesdeDouble(c.valor), QString::fromLatin1(c.mascara)), c.esperado) << c.valor << " " << c.mascara;
    }
}

TEST(Mascaras, RedondearADecimalesComoImprimeLaMascara)
{
    struct Caso
    {
        double valor;
        int decimales;
        double esperado;
    };
    const Caso casos[] = {{2.675, 2, 2.68},   {-2.675, 2, -2.68},     {1.005, 2, 1.01},        {2.674951, 2, 2.67},
                          {100.555, 2, 100.56}, {4169.5634, 2, 4169.56}, {0.125, 2, 0.13},      {1234567.125, 2, 1234567.13},
                          {123456789012.345, 2, 123456789012.35},      {38.12345, 3, 38.123},  {1234.5, 0, 1235}};
    for (const Caso &c : casos)
        EXPECT_DOUBLE_EQ(RedondearADecimales(c.valor, c.decimales), c.esperado) << c.valor << " " << c.decimales;
    // The fast way and the printed way agree, near halves and far from them.
    const Mascara dos(QStringLiteral("0.00"));
    for (int i = -20000; i <= 20000; ++i) {
        const double v = i * 0.0005 + 1000;
        ASSERT_DOUBLE_EQ(RedondearADecimales(v, 2), LeerNumero(dos.Formatear(v, QLocale::c()), QLocale::c())) << v;
    }
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

// Past its range the type holds its end: never 0, never the other sign.
TEST(Importe, FueraDeRangoNiCeroNiDaLaVuelta)
{
    EXPECT_EQ(Importe::DesdeDouble(1e16), Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(-1e300), -Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(std::numeric_limits<double>::infinity()), Importe::Maximo());
    EXPECT_EQ(Importe::DesdeDouble(922337203685476.0).diezmilesimos(), 9223372036854760000);
    const Importe uno = Importe::DesdeDouble(1);
    EXPECT_EQ(Importe::Maximo() + uno, Importe::Maximo());
    EXPECT_EQ(-Importe::Maximo() - uno, -Importe::Maximo());
    Importe suma = Importe::Maximo();
    EXPECT_FALSE(suma.SumarComprobado(uno));
    EXPECT_EQ(suma, Importe::Maximo()) << "a refused sum adds nothing";
    EXPECT_TRUE(suma.SumarComprobado(-uno));
    EXPECT_LT(suma, Importe::Maximo());
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
