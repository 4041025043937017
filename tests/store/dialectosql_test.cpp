#include "store/dialectosql.h"

#include <gtest/gtest.h>

namespace {

// The loading query's FROM text, as the views build it.
const QString kDesde = QStringLiteral(
    " From (((((cceAsientos INNER JOIN cceAsientoCuenta On cceAsientos.AsiID = cceAsientoCuenta.ACuIDAsiento)"
    "INNER JOIN cceCuentas ON cceAsientoCuenta.ACuCuenta = cceCuentas.CueID) "
    "LEFT JOIN genLibros ON genLibros.LibCodigo = cceAsientos.AsiTipo) "
    "LEFT JOIN cceProyectos ON cceAsientoCuenta.ACuProyecto = cceProyectos.ProCodigo) "
    "LEFT JOIN cceDepartamentos ON cceAsientoCuenta.ACuDepartamento = cceDepartamentos.DepCodigo) ");

QString mitadCotizacion(const QString &columnas, int a, int b)
{
    const QString par = QStringLiteral(" And CMoMoneda = %1 And CMoCotizaEn = %2 And CMoTipoCotizacion = 1").arg(a).arg(b);
    return QStringLiteral("Select Top 1 ") + columnas + QStringLiteral(" From genCotizacionesMoneda ")
         + QStringLiteral(" Where CMoFecha IN (Select MAX(CMoFecha) from genCotizacionesMoneda ")
         + QStringLiteral(" Where CMoFecha <= '2026-03-15'") + par + QStringLiteral(")") + par;
}

struct Caso
{
    const char *nombre;
    QString entrada;
    QString sqlite;
    QString postgresql;
};

class Dialecto : public ::testing::TestWithParam<Caso>
{
};

TEST_P(Dialecto, AdaptaAlMotor)
{
    const Caso &c = GetParam();
    EXPECT_EQ(AdaptarSQL(c.entrada, Motor::SQLite).toStdString(), c.sqlite.toStdString());
    EXPECT_EQ(AdaptarSQL(c.entrada, Motor::PostgreSQL).toStdString(), c.postgresql.toStdString());
}

const QString kLibro = QStringLiteral("Select Top 1 LibCodigo From genLibros Where LibDelSistema = 0");
const QString kLibroLimit = QStringLiteral("Select LibCodigo From genLibros Where LibDelSistema = 0 LIMIT 1");

QString vistaUltimos(int n, const QString &orden)
{
    return QStringLiteral("Select * ") + kDesde
         + QStringLiteral(" Where ASiID IN (Select %1ASiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9 Order By ASiID ")
               .arg(orden.isEmpty() ? QStringLiteral("Top %1 ").arg(n) : QString())
         + (orden.isEmpty() ? QStringLiteral("Desc") : orden)
         + QStringLiteral(")") + QStringLiteral(" And AsiEmpresa = 1 And AsiEstado <> 9 Order By AsiFechaAsiento, AsiID");
}

const QString kDirecta = mitadCotizacion(QStringLiteral("CMoFecha, CMoCompra, CMoVenta"), 2, 1);
const QString kInversa = mitadCotizacion(QStringLiteral("CMoFecha, 1/CMoCompra, 1/CMoVenta"), 1, 2);

QString sinTop(QString s, int n)
{
    s.replace(QStringLiteral("Select Top 1 "), QStringLiteral("Select "));
    return s + QStringLiteral(" LIMIT %1").arg(n);
}

// Each half keeps its limit and its number; the whole is ordered by that number, so the
// direct quotation comes first on every engine.
const QString kUnionNumerada = QStringLiteral("Select * From (Select 1 AS MitadUnion, t1.* From (") + sinTop(kDirecta, 1)
                             + QStringLiteral(") AS t1 UNION ALL Select 2 AS MitadUnion, t2.* From (") + sinTop(kInversa, 1)
                             + QStringLiteral(") AS t2) AS tu Order By MitadUnion");

const QString kLeyenda = QStringLiteral("Select *") + kDesde
                       + QStringLiteral(" Where AsiLeyenda Like 'caja%ref%' And AsiEmpresa = 1 And AsiEstado <> 9 Order By AsiFechaAsiento, AsiID");

INSTANTIATE_TEST_SUITE_P(
    TextosDelSistema, Dialecto,
    ::testing::Values(
        Caso{"LibroPorDefecto", kLibro, kLibroLimit, kLibroLimit},
        Caso{"UltimosCinco", vistaUltimos(5, {}), vistaUltimos(5, QStringLiteral("Desc LIMIT 5")),
             vistaUltimos(5, QStringLiteral("Desc NULLS LAST LIMIT 5"))},
        Caso{"UltimosDiez", vistaUltimos(10, {}), vistaUltimos(10, QStringLiteral("Desc LIMIT 10")),
             vistaUltimos(10, QStringLiteral("Desc NULLS LAST LIMIT 10"))},
        // Each half of the union keeps its own limit, and the direct half stays first.
        Caso{"CotizacionUnion", kDirecta + QStringLiteral(" UNION ALL ") + kInversa, kUnionNumerada, kUnionNumerada},
        // Halves of a plain UNION, or with one half unlimited, are wrapped but not numbered.
        Caso{"UnionConUnaMitadLimitada", QStringLiteral("Select Top 1 a From t UNION ALL Select b From u"),
             QStringLiteral("Select * From (Select a From t LIMIT 1) AS t1 UNION ALL Select b From u"),
             QStringLiteral("Select * From (Select a From t LIMIT 1) AS t1 UNION ALL Select b From u")},
        Caso{"LeyendaLike", kLeyenda, kLeyenda, QString(kLeyenda).replace(QStringLiteral(" Like "), QStringLiteral(" ILIKE "))},
        // Keywords and quotes inside a literal are text, never SQL.
        Caso{"Literal", QStringLiteral("Select Top 2 AsiID From cceAsientos Where AsiLeyenda Like 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc"),
             QStringLiteral("Select AsiID From cceAsientos Where AsiLeyenda Like 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc LIMIT 2"),
             QStringLiteral("Select AsiID From cceAsientos Where AsiLeyenda ILIKE 'O''Brien (Select Top 3 x Like y desc) UNION' Order By AsiID desc NULLS LAST LIMIT 2")},
        // A UNION without Top, as the first-activity query, is left alone.
        Caso{"UnionSinTop",
             QStringLiteral("Select Min(AsiFechaAsiento) From cceAsientos Where AsiEmpresa = 1 And AsiEstado = 1 Union Select Min(ComFecha) From cceComprobantes Where ComIDEmpresa = 1 And  (ComEstado <> 9 Or ComEstado Is Null) "),
             QStringLiteral("Select Min(AsiFechaAsiento) From cceAsientos Where AsiEmpresa = 1 And AsiEstado = 1 Union Select Min(ComFecha) From cceComprobantes Where ComIDEmpresa = 1 And  (ComEstado <> 9 Or ComEstado Is Null) "),
             QStringLiteral("Select Min(AsiFechaAsiento) From cceAsientos Where AsiEmpresa = 1 And AsiEstado = 1 Union Select Min(ComFecha) From cceComprobantes Where ComIDEmpresa = 1 And  (ComEstado <> 9 Or ComEstado Is Null) ")},
        Caso{"MinusculasYSinEspacioFinal", QStringLiteral("select top 3 a from t"), QStringLiteral("Select a from t LIMIT 3"),
             QStringLiteral("Select a from t LIMIT 3")}),
    [](const ::testing::TestParamInfo<Caso> &info) { return std::string(info.param.nombre); });

TEST(Dialecto, ParentesisSinCerrarNoSeCuelga)
{
    const QString roto = QStringLiteral("Select Top 1 a From t Where b IN (Select Top 2 c From u");
    const QString adaptado = AdaptarSQL(roto, Motor::SQLite);
    EXPECT_TRUE(adaptado.contains(QStringLiteral("(Select c From u LIMIT 2"))) << adaptado.toStdString();
    EXPECT_FALSE(adaptado.contains(QStringLiteral("Top"))) << adaptado.toStdString();
}

} // namespace
