#include "comun/basesprueba.h"

#include "services/serviciobusquedacuentas.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

namespace {

class BusquedaDeCuentas : public ::testing::TestWithParam<Motor>
{
};

TEST_P(BusquedaDeCuentas, CodigoExactoOUnicaCoincidenciaYNuncaCarpetas)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    const auto cuentas = BusquedaCuentasQt::Cuentas(base.conexion(), Demo::kEmpresa);
    ASSERT_FALSE(cuentas.isEmpty());
    auto codigos = [](const QList<BusquedaCuentasQt::Cuenta> &l) {
        QStringList c;
        for (const auto &x : l)
            c << x.codigo;
        return c;
    };
    // Folders ("1", "1.1") are not offered.
    EXPECT_FALSE(codigos(cuentas).contains(QStringLiteral("1")));
    EXPECT_FALSE(codigos(cuentas).contains(QStringLiteral("1.1")));

    EXPECT_EQ(codigos(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("1.1.01"))), QStringList{QStringLiteral("1.1.01")});
    EXPECT_EQ(codigos(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("  caja chica "))).size(), 1);
    const auto bancos = BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("BANCO"));
    EXPECT_GT(bancos.size(), 2);
    for (const auto &b : bancos)
        EXPECT_TRUE(b.nombre.contains(QStringLiteral("banco"), Qt::CaseInsensitive) || b.codigo.startsWith(QStringLiteral("BANCO")));
    EXPECT_TRUE(BusquedaCuentasQt::Coincidencias(cuentas, QStringLiteral("no existe ninguna")).isEmpty());
    EXPECT_EQ(BusquedaCuentasQt::Coincidencias(cuentas, QString()).size(), cuentas.size());

    bool hayCerrada = false;
    bool hayDolares = false;
    for (const auto &c : cuentas) {
        hayCerrada = hayCerrada || c.cerrada;
        hayDolares = hayDolares || c.moneda == QStringLiteral("U$S");
    }
    EXPECT_TRUE(hayCerrada);
    EXPECT_TRUE(hayDolares);
}

INSTANCIAR_EN_MOTORES(BusquedaDeCuentas);

} // namespace
