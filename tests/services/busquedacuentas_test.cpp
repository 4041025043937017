#include "comun/basesprueba.h"

#include "dialogs/busquedacuentasqt.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using BusquedaDeCuentas = ::testing::TestWithParam<Motor>;

// Accounts that take lines, never folders ("1", "1.1"), with their currency and whether they
// are closed; a typed text finds the account of that exact code, or those whose code starts
// with it or whose name holds it, in any case.
TEST_P(BusquedaDeCuentas, CodigoExactoOUnicaCoincidenciaYNuncaCarpetas)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    const auto cuentas = *CuentasDatos::Imputables(base.conexion(), Demo::kEmpresa);
    auto codigos = [](const QList<BusquedaCuentasQt::Cuenta> &l) {
        QStringList c;
        for (const auto &x : l)
            c << x.codigo;
        return c;
    };
    ASSERT_FALSE(cuentas.isEmpty());
    EXPECT_FALSE(codigos(cuentas).contains(QStringLiteral("1")) || codigos(cuentas).contains(QStringLiteral("1.1")));
    EXPECT_TRUE(std::any_of(cuentas.begin(), cuentas.end(), [](const auto &c) { return c.cerrada; }));
    EXPECT_TRUE(std::any_of(cuentas.begin(), cuentas.end(), [](const auto &c) { return c.moneda == QStringLiteral("U$S"); }));

    EXPECT_EQ(codigos(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("1.1.01"))), QStringList{QStringLiteral("1.1.01")});
    EXPECT_EQ(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("  caja chica ")).size(), 1);
    EXPECT_GT(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("1.1.0")).size(), 1);
    const auto bancos = BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("BANCO"));
    EXPECT_GT(bancos.size(), 2);
    for (const auto &b : bancos)
        EXPECT_TRUE(b.nombre.contains(QStringLiteral("banco"), Qt::CaseInsensitive)) << b.nombre.toStdString();
    EXPECT_TRUE(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("no existe ninguna")).isEmpty());
    EXPECT_EQ(BusquedaCuentasQt::Coincidencias(cuentas, QString()).size(), cuentas.size());
}

INSTANCIAR_EN_MOTORES(BusquedaDeCuentas);

} // namespace
