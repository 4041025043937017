#include "fixtureasientos.h"

#include "entries/vistas.h"

#include <gtest/gtest.h>

namespace {

class Llenado : public ::testing::TestWithParam<Motor>
{
};

QStringList filas(const Grilla &g, int desde = 1)
{
    QStringList l;
    for (int r = desde; r < g.Filas(); ++r)
        l << FilaComoTexto(g, r);
    return l;
}

TEST_P(Llenado, CabezalesLineasYFilaDeDiferencia)
{
    DatosAsientos d(GetParam());
    const qint32 a = d.Asiento(QDate(2026, 2, 1), 1, QStringLiteral("20:H:100,10:D:100"), QStringLiteral("  Venta contado "));
    const qint32 b = d.Asiento(QDate(2026, 2, 3), 0, QStringLiteral("11:D:10:400,20:H:400"), QStringLiteral("Cobro"));
    ASSERT_TRUE(CargarAsientoEnGrilla(d.asientos, d.conexion(), 0, 0, QStringLiteral("%1,%2").arg(a).arg(b)) == std::nullopt);

    const QString A = QString::number(a);
    const QString B = QString::number(b);
    const QString sello = QStringLiteral("T10:00:00.005");
    EXPECT_EQ(filas(d.grilla), (QStringList{
        QStringLiteral("|01/02/26 Venta contado|||Diario| #") + A + QStringLiteral("||2026-02-01|1|2026-02-01") + sello + QStringLiteral("|1:0"),
        QStringLiteral("1.1.01 - Caja||100,00||| #") + A + QStringLiteral("|10|0|0|1|2||||"),
        QStringLiteral("|4.1.01 - Ventas||100,00|| #") + A + QStringLiteral("|20|0|0|0|1||||"),
        QStringLiteral("|03/02/26 Cobro|||Diario| #") + B + QStringLiteral("||2026-02-03|0|2026-02-03") + sello + QStringLiteral("|1:0"),
        QStringLiteral("1.1.02 - Banco U$S||400,00||40,000|10,00 #") + B + QStringLiteral("|11|0|0|2|1||||10"),
        QStringLiteral("|4.1.01 - Ventas||400,00|| #") + B + QStringLiteral("|20|0|0|0|2||||"),
        // The sums agree in pesos but not in dollars: the credit side is short of U$S 10.
        QStringLiteral("|................?||10,00|| #") + B + QStringLiteral("|-1|0|0|0|999||||"),
        QStringLiteral("Nuevo Asiento||||| #|||||"),
    }));

    const Grilla &g = d.grilla;
    EXPECT_EQ(g.Fila(1).colorBorde, 0u);                      // first entry: no separating line
    EXPECT_EQ(g.Fila(4).colorBorde, ColoresGrilla::kBordeAsiento);
    EXPECT_EQ(g.Fila(1).fondo, ColoresGrilla::kFondoCabezal);
    EXPECT_EQ(g.Fila(1).imagen, QStringLiteral("asiento"));
    EXPECT_EQ(g.Fila(4).imagen, QStringLiteral("borrador"));
    EXPECT_EQ(g.celda(3, 1).colorTexto, ColoresGrilla::kHaber);
    EXPECT_EQ(g.celda(3, 3).colorTexto, ColoresGrilla::kHaber);
    EXPECT_EQ(d.asientos.Cabezal.AsiID, 0);                   // nothing current after a fill

    EXPECT_EQ(d.asientos.EstadoDeFila(6), 0);
    EXPECT_EQ(d.asientos.FilaCabezalDe(6), 4);
    EXPECT_EQ(d.asientos.FilaCabezalDe(8), -1);
    d.asientos.FijarLibroAutoriza(4, 3, 12);
    EXPECT_EQ(d.asientos.LibroDeFila(4), 3);
    EXPECT_EQ(d.asientos.AutorizaDeFila(4), 12);
}

TEST_P(Llenado, CargarEncimaDelMarcadorNoAgregaOtroYMueveElBorde)
{
    DatosAsientos d(GetParam());
    const qint32 a = d.Asiento(QDate(2026, 2, 1), 1, QStringLiteral("10:D:5,20:H:5"));
    const qint32 b = d.Asiento(QDate(2026, 2, 2), 1, QStringLiteral("10:D:7,20:H:7"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), a, 0));
    ASSERT_EQ(d.grilla.Filas(), 5);
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), b, 1)); // before the first entry
    ASSERT_EQ(d.grilla.Filas(), 8);
    EXPECT_EQ(d.grilla.Dato(1, 0).toInt(), b);
    EXPECT_EQ(d.grilla.Dato(4, 0).toInt(), a);
    EXPECT_EQ(d.grilla.Fila(1).colorBorde, 0u);
    EXPECT_EQ(d.grilla.Fila(4).colorBorde, ColoresGrilla::kBordeAsiento);
    EXPECT_EQ(d.grilla.Texto(7, 0), QStringLiteral("Nuevo Asiento"));
    EXPECT_TRUE(d.asientos.EsFilaNuevoAsiento(7));
}

TEST_P(Llenado, BalanceAlBordeDelRedondeo)
{
    DatosAsientos d(GetParam());
    const qint32 casi = d.Asiento(QDate(2026, 3, 1), 1, QStringLiteral("10:D:100.004,20:H:100"));
    const qint32 pasa = d.Asiento(QDate(2026, 3, 2), 1, QStringLiteral("10:D:100.006,20:H:100"));
    const qint32 soloDebe = d.Asiento(QDate(2026, 3, 3), 1, QStringLiteral("10:D:0,22:D:0"));
    const qint32 inconcluso = d.Asiento(QDate(2026, 3, 4), 2, QStringLiteral("10:D:50,20:H:50"));
    const qint32 debeMenor = d.Asiento(QDate(2026, 3, 5), 2, QStringLiteral("10:D:90,20:H:100"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), 0, 0,
                                       QStringLiteral("%1,%2,%3,%4,%5").arg(casi).arg(pasa).arg(soloDebe).arg(inconcluso).arg(debeMenor)));
    auto diferenciaDe = [&](qint32 id) {
        for (int r = 1; r < d.grilla.Filas(); ++r)
            if (d.grilla.Dato(r, 0).toInt() == id && d.asientos.EsFilaDiferencia(r))
                return FilaComoTexto(d.grilla, r).section(QLatin1Char('#'), 0, 0).trimmed();
        return QString();
    };
    EXPECT_EQ(diferenciaDe(casi), QString());                                   // 0.004 is below the mask
    EXPECT_EQ(diferenciaDe(pasa), QStringLiteral("|................?||0,01||"));  // 0.006 is not
    EXPECT_EQ(diferenciaDe(soloDebe), QStringLiteral("................?||0,00|||")); // never balances
    EXPECT_EQ(diferenciaDe(inconcluso), QString());                             // incomplete but balanced
    EXPECT_EQ(diferenciaDe(debeMenor), QStringLiteral("................?||10,00|||"));
}

TEST_P(Llenado, LineasEnMonedaExtranjeraSinImporteNiLibro)
{
    DatosAsientos d(GetParam());
    const qint32 id = d.Asiento(QDate(2026, 4, 1), 1, QStringLiteral("11:D:0:0,20:H:0"), QStringLiteral("Sin libro"), QVariant());
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), id, 0));
    EXPECT_EQ(FilaComoTexto(d.grilla, 1).section(QLatin1Char('#'), 0, 0), QStringLiteral("|01/04/26 Sin libro|||| "));
    EXPECT_EQ(d.grilla.Dato(1, 5).toString(), QStringLiteral("0:0"));
    EXPECT_EQ(d.grilla.Texto(2, 4), QStringLiteral("0,000"));   // rate 0
    EXPECT_FALSE(d.grilla.Dato(2, 5).isValid());                // and no amount in column-5 data
}

TEST_P(Llenado, LaPapeleraNuncaSeCarga)
{
    DatosAsientos d(GetParam());
    const qint32 id = d.Asiento(QDate(2026, 4, 1), 9, QStringLiteral("10:D:1,20:H:1"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), id, 0));
    EXPECT_EQ(filas(d.grilla), QStringList{QStringLiteral("Nuevo Asiento||||| #|||||")});
}

TEST_P(Llenado, ErrorDeLaBaseSeInformaComo1916Y1917)
{
    DatosAsientos d(GetParam());
    d.conexion().Ejecutar(QStringLiteral("Drop Table cceProyectos"));
    const auto uno = CargarAsientoEnGrilla(d.asientos, d.conexion(), 1, 0);
    ASSERT_TRUE(uno.has_value());
    EXPECT_EQ(uno->numeroTexto, 1916);
    const auto vista = CargarAsientos(d.asientos, d.conexion(), Vista::kHoy, {}, QDate(2026, 1, 1), {});
    ASSERT_TRUE(vista.has_value());
    EXPECT_EQ(vista->numeroTexto, 1917);
    EXPECT_TRUE(d.grilla.Redibujar()); // switched back on after the error
}

TEST_P(Llenado, TasaQueYaUsanLasLineasDelAsiento)
{
    DatosAsientos d(GetParam());
    d.ctx.AsiOrder = 1; // two lines of one account: keep them in the order they were entered
    const qint32 id = d.Asiento(QDate(2026, 4, 1), 0, QStringLiteral("20:D:100,11:H:4:100,11:H:0:5"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), id, 0));
    d.asientos.TomarAsientoDeFila(1);
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(2), 25);   // 100 in pesos for U$S 4
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(3), 0);    // no line in that currency

    const qint32 cero = d.Asiento(QDate(2026, 4, 2), 0, QStringLiteral("11:D:0:0,20:H:0"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), cero, 0));
    d.asientos.TomarAsientoDeFila(d.asientos.FilaCabezalDe(d.grilla.Filas() - 2));
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(2), 0);    // amount 0: the rate cell, here 0
}

TEST_P(Llenado, TasaPromedioYTasaUnica)
{
    DatosAsientos d(GetParam());
    d.ctx.AsiOrder = 1;
    const qint32 id = d.Asiento(QDate(2026, 4, 1), 1, QStringLiteral("11:D:100:4000,11:D:300:12600,20:H:16600,10:D:5"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), id, 0));
    d.asientos.TomarAsientoDeFila(1);
    d.asientos.PromediarTasas();
    auto linea = [&](int fila) {
        const RegistroLinea l = d.asientos.LineaDeFila(fila);
        return QStringLiteral("%1 %2 %3").arg(l.dImporte, 0, 'g', 12).arg(l.dImporteMC, 0, 'g', 12).arg(l.dTCambio, 0, 'g', 12);
    };
    EXPECT_EQ(linea(2), QStringLiteral("100 4150 41.5"));
    EXPECT_EQ(linea(3), QStringLiteral("300 12450 41.5"));
    EXPECT_EQ(linea(4), QStringLiteral("5 5 1")); // pesos: untouched
    EXPECT_DOUBLE_EQ(d.grilla.Dato(2, 5).toDouble(), 100);

    // One rate for the dollars: 0.025 is taken as 40; to the account's currency the pesos stay.
    EXPECT_EQ(d.asientos.AplicarTasa(true, 0.025, 2), 2);
    EXPECT_EQ(linea(2), QStringLiteral("103.75 4150 40"));
    EXPECT_EQ(d.asientos.AplicarTasa(false, 41, 2), 2);
    EXPECT_EQ(linea(3), QStringLiteral("311.25 12761.25 41"));
}

INSTANTIATE_TEST_SUITE_P(Motores, Llenado, ::testing::ValuesIn(MotoresDePrueba()),
                         [](const ::testing::TestParamInfo<Motor> &i) { return NombreMotor(i.param).toStdString(); });

} // namespace
