#include "fixtureasientos.h"

#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "store/basedemo.h"

#include <QSet>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace {

std::function<QString(int)> textos()
{
    return [](int n) {
        switch (n) {
        case 1050: return QStringLiteral("Personalizada");
        case 1051: return QStringLiteral("En edición");
        case 1052: return QStringLiteral("Recién ingresados");
        case 1056: return QStringLiteral("Últimos 15 días");
        case 1058: return QStringLiteral("(cerrado)");
        case 1075: return QStringLiteral("Ver");
        default: return QString();
        }
    };
}

TEST(Vistas, CaptionsYMesesDelMenu)
{
    const QLocale es(QLocale::Spanish, QLocale::Uruguay);
    EXPECT_EQ(CaptionVista(0, {}, textos(), es), QStringLiteral("Ver : Recién ingresados"));
    EXPECT_EQ(CaptionVista(-1, {}, textos(), es), QStringLiteral("Ver : Personalizada"));
    EXPECT_EQ(CaptionVista(-2, {}, textos(), es), QStringLiteral("Ver : En edición"));
    EXPECT_EQ(CaptionVista(4, {}, textos(), es), QStringLiteral("Ver : Últimos 15 días"));
    EXPECT_EQ(CaptionVista(7, {}, textos(), es), QStringLiteral("Ver"));  // no name: "Ver" alone
    EXPECT_EQ(CaptionVista(Vista::kPrimerMes, QDate(2026, 11, 1), textos(), es), QStringLiteral("Ver : Noviembre 2026"));
    EXPECT_EQ(CaptionVista(11, QDate(2026, 2, 1), textos(), es), QStringLiteral("Ver : Febrero 2026"));

    // Earliest closing 15 September 2026: August and before are closed, September is not.
    const auto meses = MesesDelMenu(QDate(2026, 11, 23), QDate(2026, 9, 15), textos(), es);
    ASSERT_EQ(meses.size(), 12);
    EXPECT_EQ(meses[0].primerDia, QDate(2026, 11, 1));
    EXPECT_EQ(meses[0].caption, QStringLiteral("Noviembre 2026"));
    EXPECT_EQ(meses[2].caption, QStringLiteral("Setiembre 2026")); // as Uruguay spells it
    EXPECT_EQ(meses[3].caption, QStringLiteral("Agosto 2026 (cerrado)"));
    EXPECT_EQ(meses[11].primerDia, QDate(2025, 12, 1));
    EXPECT_EQ(meses[11].caption, QStringLiteral("Diciembre 2025 (cerrado)"));

    for (const auto &m : MesesDelMenu(QDate(2026, 1, 31), QDate(), textos(), es))
        EXPECT_FALSE(m.caption.contains(QStringLiteral("(cerrado)")));
    const auto ingles = MesesDelMenu(QDate(2026, 1, 31), QDate(), textos(), QLocale(QLocale::English));
    EXPECT_EQ(ingles[1].caption, QStringLiteral("December 2025"));
}

class VistasEnDemo : public ::testing::TestWithParam<Motor>
{
};

TEST_P(VistasEnDemo, CadaVistaCargaLoQueDiceYNuncaLaPapelera)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    Conexion &c = base.conexion();
    CatalogoMonedas monedas;
    EXPECT_FALSE(monedas.CargarMonedas(c));
    monedas.FijarMonedaContabilidad(Demo::kMonedaPesos);
    ContextoAsientos ctx;
    ctx.empresa = Demo::kEmpresa;
    ctx.reloj = base.reloj();
    ctx.monedas = &monedas;
    ctx.monedaContabilidad = Demo::kMonedaPesos;
    Grilla g;
    AsientosGrilla a(g, ctx);
    // A view sees a load as one reset, never row by row.
    ModeloGrilla modelo(g);
    QSignalSpy insertadas(&modelo, &QAbstractItemModel::rowsInserted);
    QSignalSpy reinicios(&modelo, &QAbstractItemModel::modelReset);
    const QDate hoy = BaseDePrueba::Hoy();

    auto cargar = [&](int vista, const QDate &mes = {}) {
        const qsizetype antes = reinicios.count();
        EXPECT_FALSE(CargarAsientos(a, c, vista, {}, hoy, mes).has_value());
        EXPECT_EQ(insertadas.count(), 0);
        EXPECT_EQ(reinicios.count(), antes + 1);
        EXPECT_TRUE(a.EsFilaNuevoAsiento(g.Filas() - 1));
        QList<int> ids;
        for (int r = 1; r < g.Filas(); ++r)
            if (a.EsFilaCabezal(r))
                ids << g.Dato(r, 0).toInt();
        return ids;
    };
    // The entries out of the trash, in date order.
    auto esperados = [&](const QString &where) {
        QList<int> ids;
        auto rs = c.Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9 And ")
                          + where + QStringLiteral(" Order By AsiFechaAsiento, AsiID"));
        for (; !rs->Fin(); rs->MoverSiguiente())
            ids << int(rs->Entero(QStringLiteral("AsiID")));
        return ids;
    };

    const QString ultimos = QStringLiteral("AsiID In (Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9"
                                           " Order By AsiID Desc Limit %1)");
    EXPECT_EQ(cargar(Vista::kUltimos5), esperados(ultimos.arg(5)));
    EXPECT_EQ(cargar(Vista::kUltimos10), esperados(ultimos.arg(10)));
    EXPECT_EQ(cargar(Vista::kHoy), esperados(QStringLiteral("AsiFechaAsiento = '2026-11-23'")));
    EXPECT_EQ(cargar(Vista::kUltimos15Dias),
              esperados(QStringLiteral("AsiFechaAsiento >= '2026-11-09' And AsiFechaAsiento <= '2026-11-23'")));
    EXPECT_EQ(cargar(Vista::kPrimerMes + 2, QDate(2026, 9, 1)),
              esperados(QStringLiteral("AsiFechaAsiento >= '2026-09-01' And AsiFechaAsiento <= '2026-09-30'")));
}

TEST_P(VistasEnDemo, RecienIngresadosConservaBorradoresYNuevos)
{
    DatosAsientos d(GetParam());
    const qint32 registrado = d.Asiento(QDate(2026, 2, 1), 1, QStringLiteral("10:D:5,20:H:5"));
    const qint32 borrador = d.Asiento(QDate(2026, 2, 2), 0, QStringLiteral("10:D:6,20:H:6"));
    const qint32 inconcluso = d.Asiento(QDate(2026, 2, 3), 2, QStringLiteral("10:D:7,20:H:1"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), 0, 0,
                                       QStringLiteral("%1,%2,%3").arg(registrado).arg(borrador).arg(inconcluso)));
    // An entry never stored (id 0, state -1) written by hand above the placeholder.
    Grilla &g = d.grilla;
    const int r = g.Filas() - 1;
    g.InsertarFilas(r, 2);
    d.asientos.ResetCabezal();
    d.asientos.Cabezal.FilaCabezal = r;
    d.asientos.Cabezal.AsiEstado = EstadoAsiento::kNuevo;
    d.asientos.FilaCabezalAsiento(QString());
    RegistroLinea l;
    l.sTextDisplay = QStringLiteral("1.1.01 - Caja");
    l.lCta = 10;
    l.dImporte = l.dImporteMC = 3_imp;
    d.asientos.FilaLineaAsiento(r + 1, l);

    ASSERT_FALSE(CargarAsientos(d.asientos, d.conexion(), Vista::kRecienIngresados, {}, QDate(2026, 2, 5), {}).has_value());
    QList<int> cabezales;
    for (int k = 1; k < g.Filas(); ++k)
        if (d.asientos.EsFilaCabezal(k))
            cabezales << g.Dato(k, 0).toInt();
    EXPECT_EQ(cabezales, (QList<int>{borrador, 0}));
    EXPECT_EQ(g.Filas(), 1 + 3 + 2 + 1);
    EXPECT_TRUE(d.asientos.EsFilaNuevoAsiento(g.Filas() - 1));

    // On an empty grid the view only puts the placeholder.
    g.FijarFilas(1);
    ASSERT_FALSE(CargarAsientos(d.asientos, d.conexion(), Vista::kRecienIngresados, {}, QDate(2026, 2, 5), {}).has_value());
    EXPECT_EQ(g.Filas(), 2);
    EXPECT_EQ(g.Texto(1, 0), QStringLiteral("Nuevo Asiento"));
}

INSTANCIAR_EN_MOTORES(VistasEnDemo);

} // namespace
