#include "currency/mascara.h"
#include "entries/reglabalance.h"

#include <gtest/gtest.h>

namespace {

// Pesos (1) are the accounting currency, "#,##0.00"; dollars (2) "#,##0.00"; yen (3) "#,##0".
const Mascara &mascara(qint16 moneda)
{
    static const Mascara dos(QStringLiteral("#,##0.00"));
    static const Mascara cero(QStringLiteral("#,##0"));
    return moneda == 3 ? cero : dos;
}

LineaBalance linea(bool debe, qint16 moneda, double mc, double me = 0)
{
    return {debe, moneda, Importe::DesdeDouble(mc), Importe::DesdeDouble(me == 0 ? mc : me)};
}

struct Caso
{
    const char *nombre;
    QVector<LineaBalance> lineas;
    bool cierra;
    bool debeMenor;
    double diferenciaMC;
    double diferenciaME;
};

class Balance : public ::testing::TestWithParam<Caso>
{
};

// The one rule the screen and the store use: both sides, sums as the mask shows them, and
// the foreign sums too when every line is in one foreign currency.
TEST_P(Balance, ComoLoMuestraLaMascara)
{
    const Caso &c = GetParam();
    const ResultadoBalance r = CalcularBalance(c.lineas, 1, mascara);
    EXPECT_EQ(r.cierra, c.cierra);
    if (!c.cierra) {
        EXPECT_EQ(r.debeMenor, c.debeMenor);
        EXPECT_EQ(r.diferenciaMC, Importe::DesdeDouble(c.diferenciaMC));
        EXPECT_EQ(r.diferenciaME, Importe::DesdeDouble(c.diferenciaME));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Casos, Balance,
    ::testing::Values(
        Caso{"iguales", {linea(true, 1, 100), linea(false, 1, 100)}, true, false, 0, 0},
        Caso{"bajoElUltimoDecimal", {linea(true, 1, 100.004), linea(false, 1, 100)}, true, false, 0, 0},
        Caso{"unCentavo", {linea(true, 1, 100.006), linea(false, 1, 100)}, false, false, 0.01, 0},
        // Exact sums equal, shown sums not: 100.01 against 50.00 + 50.00.
        Caso{"cadaLineaComoSeMuestra", {linea(true, 1, 100.005), linea(false, 1, 50.0025), linea(false, 1, 50.0025)}, false, false, 0.01, 0},
        Caso{"faltaAlDebe", {linea(true, 1, 90), linea(false, 1, 100)}, false, true, 10, 0},
        Caso{"soloDebeEnCero", {linea(true, 1, 0), linea(true, 1, 0)}, false, true, 0, 0},
        Caso{"soloHaberEnCero", {linea(false, 1, 0), linea(false, 1, 0)}, false, true, 0, 0},
        Caso{"sinLineas", {}, false, true, 0, 0},
        Caso{"dolaresQueNoCierranEnDolares", {linea(true, 2, 400, 10), linea(false, 2, 400, 11)}, false, true, 0, 1},
        Caso{"dolaresContraPesos", {linea(true, 2, 4000, 100), linea(false, 1, 4000)}, true, false, 0, 0},
        Caso{"yenesSinDecimales", {linea(true, 3, 250, 1000.4), linea(false, 3, 250, 1000)}, true, false, 0, 0},
        Caso{"yenesQueNoCierran", {linea(true, 3, 250, 1000.6), linea(false, 3, 250, 1000)}, false, false, 0, 1}),
    [](const ::testing::TestParamInfo<Caso> &i) { return std::string(i.param.nombre); });

// Sums past the amount type's range never balance, whatever they would wrap to.
TEST(Balance, SumasFueraDeRangoNoCierran)
{
    const LineaBalance enorme{true, 1, Importe::Maximo(), Importe::Maximo()};
    const LineaBalance otra{true, 1, Importe::DesdeDouble(1), Importe::DesdeDouble(1)};
    LineaBalance haber = enorme;
    haber.alDebe = false;
    EXPECT_TRUE(CalcularBalance({enorme, haber}, 1, mascara).cierra);
    EXPECT_FALSE(CalcularBalance({enorme, otra, haber, LineaBalance{false, 1, Importe::DesdeDouble(1), Importe::DesdeDouble(1)}}, 1,
                                 mascara)
                     .cierra);
}

} // namespace
