#include "comun/basesprueba.h"

#include "editing/sesion.h"
#include "entries/vistas.h"
#include "search/consultabusqueda.h"
#include "store/basedemo.h"

#include <QSet>

#include <gtest/gtest.h>


namespace {

const QString F = DesdeAsientos();
const QString kOrden = QStringLiteral(" Order By AsiFechaAsiento, AsiID, AcuDebe desc, CueCodigo");

QString sql(const CriteriosBusqueda &c, const QString &delimitador = QStringLiteral("'"),
            const QString &patron = QStringLiteral("yyyy-mm-dd"))
{
    QString texto;
    const auto fallo = SqlBusqueda(c, 1, delimitador, patron, texto);
    EXPECT_FALSE(fallo) << fallo->detalle.toStdString();
    return texto;
}

struct Caso
{
    const char *nombre;
    CriteriosBusqueda criterios;
    QString esperado; // after "Select * F Where AsiEmpresa = 1", before the order
};

TEST(SqlBusqueda, CadaPiezaEnSuOrden)
{
    const QString en = QStringLiteral("cceAsientoCuenta.ACuIDAsiento IN (Select ACuIDAsiento From cceAsientoCuenta As CSQ ");
    const QString sub = QStringLiteral(" And AsiEstado <> 9  And (") + en;
    const QString cta57 = QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 0 And CSQ.AcuDepartamento = 0)");
    constexpr qint16 kTodo = CriteriosBusqueda::kCualquiera;
    const QList<Caso> casos{
        {"sin criterio", {}, QStringLiteral(" And AsiEstado <> 9 ")},
        {"borradores", {.prmEstado = 1}, QStringLiteral(" And AsiEstado = 0")},
        {"inconclusos", {.prmEstado = 2}, QStringLiteral(" And AsiEstado = 2")},
        {"registrados", {.prmEstado = 3}, QStringLiteral(" And AsiEstado = 1")},
        {"estado fuera de rango", {.prmEstado = 7}, QString()},
        {"solo la fecha final", {.prmFEnd = "2010-03-31"}, QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento <= '2010-03-31')")},
        {"solo la fecha inicial", {.prmFInit = "2010-03-01"}, QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento  >= '2010-03-01')")},
        {"todos: fechas, cuenta, registrados", {.prmFInit = "2010-03-01", .prmFEnd = "2010-03-31", .prmCta = 57, .prmEstado = 3},
         QStringLiteral(" And AsiEstado = 1 And (AsiFechaAsiento BetWeen '2010-03-01' And '2010-03-31' And ") + en + cta57 + "))"},
        {"cuenta de cualquier proyecto, del departamento 3", {.prmCta = 57, .prmPry = kTodo, .prmDep = 3},
         sub + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuDepartamento = 3)))")},
        {"alguno: fechas, cuenta y leyenda",
         {.prmCriterioAnd = false, .prmFInit = "2010-03-01", .prmFEnd = "2010-03-31", .prmLeyenda = "Pago", .prmCta = 57, .prmPry = 2, .prmDep = 3},
         QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento BetWeen '2010-03-01' And '2010-03-31' Or ") + en
             + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 2 And CSQ.AcuDepartamento = 3)) Or AsiLeyenda Like 'Pago%')")},
        {"cuenta con ambos importes y alguno", {.prmCriterioAnd = false, .prmCta = 57, .prmImporte = 100, .prmImporte2 = 1250.5},
         sub + cta57 + QStringLiteral(" Or (CSQ.ACuImporteMC between 100 And 1250.5)))")},
        {"cuenta con un importe, todos", {.prmCta = 57, .prmImporte2 = 99.25}, sub + cta57 + QStringLiteral(" And CSQ.ACuImporteMC <= 99.25))")},
        {"importe sin cuenta", {.prmImporte = 1250.5}, sub + QStringLiteral(" Where CSQ.ACuImporteMC >= 1250.5))")},
        {"rango de importes sin cuenta, tras la leyenda va el libro", {.prmLibro = 4, .prmLeyenda = "caja*ref", .prmImporte = 10, .prmImporte2 = 20},
         sub + QStringLiteral(" Where CSQ.ACuImporteMC between 10 And 20) And AsiLeyenda Like 'caja%ref%' And AsiTipo = 4)")},
        {"libro cero o negativo no cuenta", {.prmLibro = -3}, QStringLiteral(" And AsiEstado <> 9 ")},
        {"cuenta cero no cuenta", {.prmCta = 0, .prmPry = 5}, QStringLiteral(" And AsiEstado <> 9 ")},
        {"la cuenta 1 sí", {.prmCta = 1, .prmPry = kTodo, .prmDep = kTodo}, sub + QStringLiteral(" Where (CSQ.AcuCuenta = 1)))")},
    };
    for (const Caso &caso : casos) {
        SCOPED_TRACE(caso.nombre);
        EXPECT_EQ(sql(caso.criterios), QStringLiteral("Select * ") + F + QStringLiteral(" Where AsiEmpresa = 1") + caso.esperado + kOrden);
    }
}

// The dates are read strictly and written as the database's own literals, whatever they are.
// (Quotes and pattern signs in a legend are tried on the engines below.)
TEST(SqlBusqueda, FechaMalaSeRechazaYBuenaVaConElDelimitadorDeLaBase)
{
    QString texto = QStringLiteral("anterior");
    const auto fallo = SqlBusqueda({.prmFInit = "2010-02-30"}, 1, QStringLiteral("'"), QStringLiteral("yyyy-mm-dd"), texto);
    ASSERT_TRUE(fallo);
    EXPECT_EQ(fallo->numeroTexto, 1927);
    EXPECT_EQ(fallo->detalle, QStringLiteral("La fecha \"2010-02-30\" no es una fecha."));
    EXPECT_TRUE(texto.isEmpty());
    EXPECT_TRUE(sql({.prmFInit = "2010-03-05"}, QStringLiteral("#"), QStringLiteral("mm/dd/yyyy")).contains(QStringLiteral(">= #03/05/2010#")));
}

// The search run on the demo company, against queries written independently of it.
class BusquedaEnBase : public ::testing::TestWithParam<Motor>
{
protected:
    BusquedaEnBase()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
    }

    QSet<qint32> ids(const QString &consulta, const QVariantList &valores = {})
    {
        QSet<qint32> r;
        for (auto rs = m_base.conexion().Abrir(consulta, valores); !rs->Fin(); rs->MoverSiguiente())
            r.insert(qint32(rs->Entero(QStringLiteral("AsiID"))));
        return r;
    }

    QSet<qint32> buscar(const CriteriosBusqueda &c)
    {
        ParametrosSistema p;
        EXPECT_FALSE(CargarParametrosSistema(m_base.conexion(), p).has_value());
        QString sql;
        EXPECT_FALSE(SqlBusqueda(c, Demo::kEmpresa, p.delimitadorFecha, p.formatoFecha, sql));
        return ids(sql);
    }

    BaseDePrueba m_base;
};

TEST_P(BusquedaEnBase, CoincideConUnaConsultaIndependiente)
{
    const QDate desde = BaseDePrueba::Hoy().addMonths(-2);
    const QDate hasta = BaseDePrueba::Hoy();
    const qint32 caja = m_base.IdCuenta("1.1.01");
    const QSet<qint32> esperados = ids(
        QStringLiteral("Select Distinct a.AsiID From cceAsientos a Where a.AsiEmpresa = 1 And a.AsiEstado <> 9 "
                       "And a.AsiFechaAsiento >= ? And a.AsiFechaAsiento <= ? And Exists (Select 1 From cceAsientoCuenta l "
                       "Where l.ACuIDAsiento = a.AsiID And l.ACuCuenta = ? And l.ACuProyecto = 0 And l.ACuDepartamento = 0 "
                       "And l.ACuImporteMC >= 100 And l.ACuImporteMC <= 50000)"),
        {desde, hasta, caja});
    ASSERT_FALSE(esperados.isEmpty()) << "the demo data should hold such entries";
    EXPECT_EQ(buscar({.prmFInit = desde.toString(Qt::ISODate), .prmFEnd = hasta.toString(Qt::ISODate), .prmCta = caja,
                      .prmImporte = 100, .prmImporte2 = 50000}),
              esperados);

    // "Any": the entries of either condition.
    const QSet<qint32> deCaja = ids(QStringLiteral("Select Distinct ACuIDAsiento As AsiID From cceAsientoCuenta Where ACuCuenta = ?"), {caja});
    const QSet<qint32> delDiario = ids(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9 And AsiTipo = ?"),
                                       {Demo::kLibroDiario});
    const QSet<qint32> todos = ids(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9"));
    EXPECT_EQ(buscar({.prmCriterioAnd = false, .prmLibro = Demo::kLibroDiario, .prmCta = caja}), (deCaja | delDiario) & todos);
}

TEST_P(BusquedaEnBase, LaLeyendaConComillasEncuentraYNoDania)
{
    const QSet<qint32> conComillas{m_base.Valor(QStringLiteral("Select Min(AsiID) From cceAsientos")).toInt()};
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiLeyenda = ? Where AsiID = ?"),
                               {QStringLiteral("O'Brien'; Drop Table cceAsientos; -- pago"), *conComillas.begin()});
    EXPECT_EQ(buscar({.prmLeyenda = "O'Brien'; Drop Table cceAsientos; --"}), conComillas);
    // A prefix without case, with "*" inside: both engines agree (and the table is still there).
    EXPECT_EQ(buscar({.prmLeyenda = "o'b*drop"}), conComillas);

    // The pattern's own signs typed in a legend match only themselves, on both engines.
    const QList<QString> leyendas{QStringLiteral("Cobro 50% anticipo"), QStringLiteral("Cobro 50X anticipo"),
                                  QStringLiteral("Pago_A1 publicidad"), QStringLiteral("Pago AB varios"), QStringLiteral("Ruta C:\\temp\\x")};
    QList<qint32> cambiados;
    for (auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiEstado <> 9 Order By AsiID Desc"));
         !rs->Fin() && cambiados.size() < leyendas.size(); rs->MoverSiguiente())
        cambiados << qint32(rs->Entero(QStringLiteral("AsiID")));
    for (int i = 0; i < leyendas.size(); ++i)
        m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiLeyenda = ? Where AsiID = ?"), {leyendas[i], cambiados[i]});
    EXPECT_EQ(buscar({.prmLeyenda = "Cobro 50%"}), QSet<qint32>{cambiados[0]});
    EXPECT_EQ(buscar({.prmLeyenda = "Pago_A"}), QSet<qint32>{cambiados[2]});
    EXPECT_EQ(buscar({.prmLeyenda = "Ruta C:\\"}), QSet<qint32>{cambiados[4]});
}

INSTANCIAR_EN_MOTORES(BusquedaEnBase);

} // namespace
