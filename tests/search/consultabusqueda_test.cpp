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

CriteriosBusqueda con(auto &&ajuste)
{
    CriteriosBusqueda c;
    ajuste(c);
    return c;
}

TEST(SqlBusqueda, CadaPiezaEnSuOrden)
{
    const QString sub = QStringLiteral("cceAsientoCuenta.ACuIDAsiento IN (Select ACuIDAsiento From cceAsientoCuenta As CSQ ");
    const QList<Caso> casos{
        {"sin criterio", {}, QStringLiteral(" And AsiEstado <> 9 ")},
        {"borradores", con([](auto &c) { c.prmEstado = 1; }), QStringLiteral(" And AsiEstado = 0")},
        {"inconclusos", con([](auto &c) { c.prmEstado = 2; }), QStringLiteral(" And AsiEstado = 2")},
        {"registrados", con([](auto &c) { c.prmEstado = 3; }), QStringLiteral(" And AsiEstado = 1")},
        {"estado fuera de rango", con([](auto &c) { c.prmEstado = 7; }), QString()},
        {"solo la fecha final", con([](auto &c) { c.prmFEnd = QStringLiteral("2010-03-31"); }),
         QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento <= '2010-03-31')")},
        {"solo la fecha inicial", con([](auto &c) { c.prmFInit = QStringLiteral("2010-03-01"); }),
         QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento  >= '2010-03-01')")},
        {"el ejemplo: todos, fechas, cuenta, registrados", con([](auto &c) {
             c.prmFInit = QStringLiteral("2010-03-01");
             c.prmFEnd = QStringLiteral("2010-03-31");
             c.prmCta = 57;
             c.prmEstado = 3;
         }),
         QStringLiteral(" And AsiEstado = 1 And (AsiFechaAsiento BetWeen '2010-03-01' And '2010-03-31' And ") + sub
             + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 0 And CSQ.AcuDepartamento = 0)))")},
        {"cuenta de cualquier proyecto, del departamento 3", con([](auto &c) {
             c.prmCta = 57;
             c.prmPry = CriteriosBusqueda::kCualquiera;
             c.prmDep = 3;
         }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuDepartamento = 3)))")},
        {"alguno: fechas, cuenta y leyenda", con([](auto &c) {
             c.prmCriterioAnd = false;
             c.prmFInit = QStringLiteral("2010-03-01");
             c.prmFEnd = QStringLiteral("2010-03-31");
             c.prmCta = 57;
             c.prmPry = 2;
             c.prmDep = 3;
             c.prmLeyenda = QStringLiteral("Pago");
         }),
         QStringLiteral(" And AsiEstado <> 9  And (AsiFechaAsiento BetWeen '2010-03-01' And '2010-03-31' Or ") + sub
             + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 2 And CSQ.AcuDepartamento = 3)) Or AsiLeyenda Like 'Pago%')")},
        {"cuenta con ambos importes y alguno", con([](auto &c) {
             c.prmCriterioAnd = false;
             c.prmCta = 57;
             c.prmImporte = 100;
             c.prmImporte2 = 1250.5;
         }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub
             + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 0 And CSQ.AcuDepartamento = 0) Or (CSQ.ACuImporteMC between 100 And 1250.5)))")},
        {"cuenta con un importe, todos", con([](auto &c) {
             c.prmCta = 57;
             c.prmImporte2 = 99.25;
         }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub
             + QStringLiteral(" Where (CSQ.AcuCuenta = 57 And CSQ.AcuProyecto = 0 And CSQ.AcuDepartamento = 0) And CSQ.ACuImporteMC <= 99.25))")},
        {"importe sin cuenta", con([](auto &c) { c.prmImporte = 1250.5; }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub + QStringLiteral(" Where CSQ.ACuImporteMC >= 1250.5))")},
        {"rango de importes sin cuenta, tras la leyenda va el libro", con([](auto &c) {
             c.prmImporte = 10;
             c.prmImporte2 = 20;
             c.prmLeyenda = QStringLiteral("caja*ref");
             c.prmLibro = 4;
         }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub
             + QStringLiteral(" Where CSQ.ACuImporteMC between 10 And 20) And AsiLeyenda Like 'caja%ref%' And AsiTipo = 4)")},
        {"libro cero o negativo no cuenta", con([](auto &c) { c.prmLibro = -3; }), QStringLiteral(" And AsiEstado <> 9 ")},
        {"cuenta cero no cuenta", con([](auto &c) { c.prmCta = 0; c.prmPry = 5; }), QStringLiteral(" And AsiEstado <> 9 ")},
        {"la cuenta 1 sí", con([](auto &c) { c.prmCta = 1; c.prmPry = c.prmDep = CriteriosBusqueda::kCualquiera; }),
         QStringLiteral(" And AsiEstado <> 9  And (") + sub + QStringLiteral(" Where (CSQ.AcuCuenta = 1)))")},
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
    CriteriosBusqueda mala;
    mala.prmFInit = QStringLiteral("2010-02-30");
    QString texto = QStringLiteral("anterior");
    const auto fallo = SqlBusqueda(mala, 1, QStringLiteral("'"), QStringLiteral("yyyy-mm-dd"), texto);
    ASSERT_TRUE(fallo);
    EXPECT_EQ(fallo->numeroTexto, 1927);
    EXPECT_EQ(fallo->detalle, QStringLiteral("La fecha \"2010-02-30\" no es una fecha."));
    EXPECT_TRUE(texto.isEmpty());
    CriteriosBusqueda f;
    f.prmFInit = QStringLiteral("2010-03-05");
    EXPECT_TRUE(sql(f, QStringLiteral("#"), QStringLiteral("mm/dd/yyyy")).contains(QStringLiteral(">= #03/05/2010#")));
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
    CriteriosBusqueda c;
    c.prmFInit = desde.toString(Qt::ISODate);
    c.prmFEnd = hasta.toString(Qt::ISODate);
    c.prmCta = caja;
    c.prmImporte = 100;
    c.prmImporte2 = 50000;
    const QSet<qint32> esperados = ids(
        QStringLiteral("Select Distinct a.AsiID From cceAsientos a Where a.AsiEmpresa = 1 And a.AsiEstado <> 9 "
                       "And a.AsiFechaAsiento >= ? And a.AsiFechaAsiento <= ? And Exists (Select 1 From cceAsientoCuenta l "
                       "Where l.ACuIDAsiento = a.AsiID And l.ACuCuenta = ? And l.ACuProyecto = 0 And l.ACuDepartamento = 0 "
                       "And l.ACuImporteMC >= 100 And l.ACuImporteMC <= 50000)"),
        {desde, hasta, caja});
    ASSERT_FALSE(esperados.isEmpty()) << "the demo data should hold such entries";
    EXPECT_EQ(buscar(c), esperados);

    // "Any": the entries of either condition.
    CriteriosBusqueda alguno;
    alguno.prmCriterioAnd = false;
    alguno.prmCta = caja;
    alguno.prmLibro = Demo::kLibroDiario;
    const QSet<qint32> deCaja = ids(QStringLiteral("Select Distinct ACuIDAsiento As AsiID From cceAsientoCuenta Where ACuCuenta = ?"), {caja});
    const QSet<qint32> delDiario = ids(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9 And AsiTipo = ?"),
                                       {Demo::kLibroDiario});
    const QSet<qint32> todos = ids(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = 1 And AsiEstado <> 9"));
    EXPECT_EQ(buscar(alguno), (deCaja | delDiario) & todos);
}

TEST_P(BusquedaEnBase, LaLeyendaConComillasEncuentraYNoDania)
{
    const QSet<qint32> conComillas{m_base.Valor(QStringLiteral("Select Min(AsiID) From cceAsientos")).toInt()};
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiLeyenda = ? Where AsiID = ?"),
                               {QStringLiteral("O'Brien'; Drop Table cceAsientos; -- pago"), *conComillas.begin()});
    CriteriosBusqueda c;
    c.prmLeyenda = QStringLiteral("O'Brien'; Drop Table cceAsientos; --");
    EXPECT_EQ(buscar(c), conComillas);
    // A prefix without case, with "*" inside: both engines agree (and the table is still there).
    c.prmLeyenda = QStringLiteral("o'b*drop");
    EXPECT_EQ(buscar(c), conComillas);

    // The pattern's own signs typed in a legend match only themselves, on both engines.
    const QList<QString> leyendas{QStringLiteral("Cobro 50% anticipo"), QStringLiteral("Cobro 50X anticipo"),
                                  QStringLiteral("Pago_A1 publicidad"), QStringLiteral("Pago AB varios"), QStringLiteral("Ruta C:\\temp\\x")};
    QList<qint32> cambiados;
    for (auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiEstado <> 9 Order By AsiID Desc"));
         !rs->Fin() && cambiados.size() < leyendas.size(); rs->MoverSiguiente())
        cambiados << qint32(rs->Entero(QStringLiteral("AsiID")));
    for (int i = 0; i < leyendas.size(); ++i)
        m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiLeyenda = ? Where AsiID = ?"), {leyendas[i], cambiados[i]});
    auto conLeyenda = [&](const QString &texto) {
        CriteriosBusqueda b;
        b.prmLeyenda = texto;
        return buscar(b);
    };
    EXPECT_EQ(conLeyenda(QStringLiteral("Cobro 50%")), QSet<qint32>{cambiados[0]});
    EXPECT_EQ(conLeyenda(QStringLiteral("Pago_A")), QSet<qint32>{cambiados[2]});
    EXPECT_EQ(conLeyenda(QStringLiteral("Ruta C:\\")), QSet<qint32>{cambiados[4]});
}

INSTANCIAR_EN_MOTORES(BusquedaEnBase);

} // namespace
