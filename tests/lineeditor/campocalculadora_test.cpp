#include "lineeditor/campocalculadora.h"

#include <gtest/gtest.h>

namespace {

TEST(CampoCalculadora, NumerosYCuentasEnElLocale)
{
    const QLocale es(QLocale::Spanish, QLocale::Uruguay);
    struct Caso
    {
        const char *texto;
        bool valido;
        double valor;
    };
    const Caso casos[] = {
        {"1250*1,22", true, 1525},  {"1.250,5", true, 1250.5}, {"100+25,5-3", true, 122.5},
        {"-40", true, -40},         {"10/4", true, 2.5},       {"2+3*4", true, 14},
        {"10/0", false, 0},         {"abc", false, 0},         {"", false, 0},
        {"5*", false, 0},           {"*5", false, 0},
    };
    for (const Caso &c : casos) {
        double v = 0;
        EXPECT_EQ(CampoCalculadora::Evaluar(QString::fromUtf8(c.texto), v, es), c.valido) << c.texto;
        if (c.valido)
            EXPECT_DOUBLE_EQ(v, c.valor) << c.texto;
    }
}

TEST(CampoCalculadora, MuestraConMascaraSinFoco)
{
    CampoCalculadora campo(QStringLiteral("ocImporte"));
    campo.FijarMascara(QStringLiteral("#,##0.00"));
    campo.FijarValor(1234.5);
    EXPECT_EQ(campo.text(), QStringLiteral("1.234,50"));
    EXPECT_DOUBLE_EQ(campo.Valor(), 1234.5);
    campo.setText(QStringLiteral("3*3"));
    EXPECT_TRUE(campo.EsNumeroValido());
    EXPECT_DOUBLE_EQ(campo.Valor(), 9);
    campo.Limpiar();
    EXPECT_FALSE(campo.EsNumeroValido());
}

} // namespace
