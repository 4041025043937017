#include "comun/basesprueba.h"

#include "currency/catalogomonedas.h"

#include <gtest/gtest.h>

namespace {

using Catalogo = ::testing::TestWithParam<Motor>;

// Trading currencies (type 1) with their masks, trimmed, or the default ones; with none, or
// when the table cannot be read, one blank currency answers.
TEST_P(Catalogo, LeeLasMonedasDeTipoUnoConSusMascaras)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    CatalogoMonedas c;
    ASSERT_FALSE(c.CargarMonedas(base.conexion()));
    ASSERT_EQ(c.monedas().size(), 1);
    EXPECT_EQ(c.DatoMoneda(3, 1).toInt(), 0);
    EXPECT_EQ(c.DatoMoneda(3, 4).toString(), QString());

    base.conexion().Ejecutar(QStringLiteral(
        "Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo) Values"
        " (1, ' $ ', Null, '#,##0.00 ', Null, 1), (2, 'U$S', 1, Null, ' #,##0.0000', 1),"
        " (5, 'UI', 1, '#,##0.0000', Null, 2)"));
    ASSERT_FALSE(c.CargarMonedas(base.conexion()));
    c.FijarMonedaContabilidad(1);
    EXPECT_EQ(c.monedas().size(), 2);
    EXPECT_EQ(c.DatoMoneda(0, 2).toString(), QStringLiteral("$")); // 0 is the accounting currency
    EXPECT_EQ(c.DatoMoneda(1, 4).toString(), QStringLiteral("#,##0.00"));
    EXPECT_EQ(c.DatoMoneda(1, 5).toString(), QStringLiteral("#,##0.000"));
    EXPECT_EQ(c.DatoMoneda(2, 4).toString(), QStringLiteral("#,##0.00"));
    EXPECT_EQ(c.DatoMoneda(2, 5).toString(), QStringLiteral("#,##0.0000"));
    EXPECT_EQ(c.DatoMoneda(1, 3).toInt(), 0);
    EXPECT_EQ(c.DatoMoneda(2, 3).toInt(), 1);
    EXPECT_FALSE(c.DatoMoneda(2, 6).isValid());
    // An unknown id answers with the currency found last.
    EXPECT_EQ(c.DatoMoneda(77, 2).toString(), QStringLiteral("U$S"));
    EXPECT_EQ(c.DatoMoneda(5, 1).toInt(), 2);

    base.conexion().Ejecutar(QStringLiteral("Alter Table genMonedas Rename To genMonedasAparte"));
    const auto fallo = c.CargarMonedas(base.conexion());
    ASSERT_TRUE(fallo);
    EXPECT_EQ(fallo->numeroTexto, 1906);
    EXPECT_TRUE(fallo->detalle.contains(QStringLiteral("genMonedas"), Qt::CaseInsensitive)) << fallo->detalle.toStdString();
    EXPECT_EQ(c.monedas().size(), 1);
}

INSTANCIAR_EN_MOTORES(Catalogo);

} // namespace
