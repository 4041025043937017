#include "comun/basesprueba.h"

#include "services/servicioconfigusuario.h"
#include "services/serviciopermisos.h"
#include "editing/sesion.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

namespace {

class SesionEnMotor : public ::testing::TestWithParam<Motor>
{
};

TEST_P(SesionEnMotor, ParametrosDelSistemaDeLaDemo)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    ParametrosSistema p;
    EXPECT_FALSE(CargarParametrosSistema(base.conexion(), p).has_value());
    EXPECT_EQ(p.delimitadorFecha, QStringLiteral("'"));
    EXPECT_EQ(p.formatoFecha, QStringLiteral("yyyy-mm-dd"));
    EXPECT_TRUE(p.multiusuario);
    EXPECT_EQ(p.libroResumen, Demo::kLibroResumen);
    EXPECT_EQ(p.libroApertura, Demo::kLibroApertura);
    EXPECT_EQ(p.libroCierre, Demo::kLibroCierre);
    EXPECT_EQ(p.libroADC, Demo::kLibroADC);
    EXPECT_EQ(p.libroPrimeraApertura, Demo::kLibroPrimeraApertura);
}

TEST_P(SesionEnMotor, ValoresNulosNoCambianYTextosSeRecortan)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into genParametros (ParNombre, ParValor, ParTexto) Values"
                              " ('sis_Multiusuario', 2, Null), ('sis_LibroADC', Null, 'x'),"
                              " ('defBDDateCharSQLs', Null, ' # '), ('defBDDateFormat', Null, Null),"
                              " ('sis_LibroAsientoCierre', 12, Null)"));
    ParametrosSistema p;
    p.libroADC = 33;
    p.formatoFecha = QStringLiteral("antes");
    EXPECT_FALSE(CargarParametrosSistema(c, p).has_value());
    EXPECT_TRUE(p.multiusuario);
    EXPECT_EQ(p.libroADC, 33);                          // Null ParValor leaves it
    EXPECT_EQ(p.formatoFecha, QStringLiteral("antes"));  // Null ParTexto leaves it
    EXPECT_EQ(p.delimitadorFecha, QStringLiteral("#"));
    EXPECT_EQ(p.libroCierre, 12);
}

TEST_P(SesionEnMotor, SinTablaDeParametrosAvisa1926YConservaLoLeido)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Vacia);
    ParametrosSistema p;
    p.libroCierre = 5;
    const auto fallo = CargarParametrosSistema(base.conexion(), p);
    ASSERT_TRUE(fallo.has_value());
    EXPECT_EQ(fallo->numeroTexto, 1926);
    EXPECT_EQ(p.libroCierre, 5);
}

TEST_P(SesionEnMotor, ConfiguracionDeLaEmpresaDemo)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    ConfigEmpresa c;
    bool leida = false;
    EXPECT_FALSE(LeerConfigEmpresa(base.conexion(), Demo::kEmpresa, c, leida).has_value());
    EXPECT_TRUE(leida);
    EXPECT_FALSE(c.NombreEmpresa.isEmpty());
    EXPECT_TRUE(c.mostrarCodigoCta);
    EXPECT_EQ(c.monedaContabilidad, Demo::kMonedaPesos);
    EXPECT_EQ(c.usuarioYAutoriza, QStringLiteral("01"));
    EXPECT_TRUE(c.ConAutoriza());
    EXPECT_EQ(c.tipoTCComprobantes, Demo::kTipoCotizacion);
    EXPECT_EQ(c.FechaCierreEjercicio, QDate(BaseDePrueba::Hoy().year() - 1, 12, 31));
    EXPECT_EQ(c.baseEjercicio, c.FechaCierreEjercicio);
    EXPECT_EQ(c.libroPorDefecto, Demo::kLibroDiario);
}

TEST_P(SesionEnMotor, LibroPorDefectoDeEmpPrmsOPrimerLibroDelUsuario)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (90, 'Resumen', 1), (3, 'Ventas', 0)"));
    c.Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre, EmpPrms, EmpValoresUsuarioYAuroriza) Values"
                              " (1, 'Uno', 'x|LIB:7|lib:abc', ' 10 '), (2, 'Dos', 'x|cfg:2', Null)"));
    ConfigEmpresa uno;
    bool leida = false;
    LeerConfigEmpresa(c, 1, uno, leida);
    EXPECT_EQ(uno.libroPorDefecto, 7);
    EXPECT_EQ(uno.usuarioYAutoriza, QStringLiteral("10"));
    EXPECT_FALSE(uno.ConAutoriza());

    ConfigEmpresa dos;
    LeerConfigEmpresa(c, 2, dos, leida);
    EXPECT_EQ(dos.libroPorDefecto, 3);
    EXPECT_EQ(dos.usuarioYAutoriza, QStringLiteral("00"));
    EXPECT_EQ(dos.FechaCierreEjercicio, QDate(1900, 1, 1));
}

TEST_P(SesionEnMotor, EmpresaQueNoExisteONombreNulo)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    ConfigEmpresa falta;
    falta.usuarioYAutoriza = QStringLiteral("11");
    bool leida = true;
    EXPECT_FALSE(LeerConfigEmpresa(c, 9, falta, leida).has_value());
    EXPECT_FALSE(leida);
    EXPECT_EQ(falta.usuarioYAutoriza, QStringLiteral("00"));

    c.Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre) Values (3, Null)"));
    ConfigEmpresa nulo;
    const auto fallo = LeerConfigEmpresa(c, 3, nulo, leida);
    ASSERT_TRUE(fallo.has_value());
    EXPECT_EQ(fallo->numeroTexto, 1920);
    EXPECT_FALSE(leida);
}

struct Actividad
{
    QString asientos;     // "fecha:estado:libro" separated by ","
    QString comprobantes; // "fecha:estado" separated by ","; estado "-" for Null
    QDate cierre;
    QDate esperado;
};

class FechaApertura : public ::testing::TestWithParam<std::tuple<Motor, Actividad>>
{
};

TEST_P(FechaApertura, ComienzoDelEjercicio)
{
    const auto &[motor, a] = GetParam();
    BaseDePrueba base(motor, BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    for (const QString &x : a.asientos.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList p = x.split(QLatin1Char(':'));
        c.Ejecutar(QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiTipo) Values (1, ?, ?, ?)"),
                   {p[1].toInt(), p[0], p[2].toInt()});
    }
    for (const QString &x : a.comprobantes.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList p = x.split(QLatin1Char(':'));
        c.Ejecutar(QStringLiteral("Insert Into cceComprobantes (ComIDEmpresa, ComFecha, ComEstado) Values (1, ?, ?)"),
                   {p[0], p[1] == QLatin1String("-") ? QVariant(QMetaType(QMetaType::Int)) : QVariant(p[1].toInt())});
    }
    // An entry of another company never counts.
    c.Ejecutar(QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiTipo) Values (2, 1, '2030-05-05', 91)"));

    ParametrosSistema p;
    p.libroApertura = 91;
    p.libroPrimeraApertura = 94;
    ConfigEmpresa e;
    e.baseEjercicio = a.cierre;
    QDate fecha(1999, 9, 9);
    EXPECT_FALSE(GetFechaAsientoApertura(c, p, e, 1, QDate(2026, 11, 23), fecha).has_value());
    EXPECT_EQ(fecha, a.esperado);
}

const Actividad kActividades[] = {
    // A registered opening entry gives its own date; drafts do not count.
    {QStringLiteral("2024-01-01:1:91,2025-01-01:1:94,2026-01-01:0:91,2023-02-02:1:1"), {}, QDate(2025, 12, 31), QDate(2025, 1, 1)},
    // Closing 30 June, earliest activity 10 March 2009: the year began 1 July 2008.
    {QStringLiteral("2009-03-10:1:1,2010-05-05:1:1,2008-01-01:0:1,2001-01-01:9:1"), QStringLiteral("2009-01-05:0,2000-01-01:9"),
     QDate(2010, 6, 30), QDate(2008, 7, 1)},
    // Of the two earliest dates (entries, vouchers) the later one decides.
    {QStringLiteral("2012-02-01:1:1"), QStringLiteral("2013-08-20:-"), QDate(2012, 12, 31), QDate(2013, 1, 1)},
    // No activity at all: the fiscal year of today.
    {{}, {}, QDate(1900, 12, 31), QDate(2026, 1, 1)},
    {{}, QStringLiteral("2020-01-01:9"), QDate(2019, 3, 31), QDate(2026, 4, 1)},
};

INSTANTIATE_TEST_SUITE_P(Motores, FechaApertura,
                         ::testing::Combine(::testing::ValuesIn(MotoresDePrueba()), ::testing::ValuesIn(kActividades)));

TEST(FechaApertura, InicioEjercicioConAniosBisiestos)
{
    EXPECT_EQ(InicioEjercicio(QDate(2009, 3, 10), QDate(2010, 6, 30)), QDate(2008, 7, 1));
    EXPECT_EQ(InicioEjercicio(QDate(2009, 7, 1), QDate(2010, 6, 30)), QDate(2009, 7, 1));
    EXPECT_EQ(InicioEjercicio(QDate(2023, 5, 1), QDate(2020, 2, 28)), QDate(2023, 2, 28));  // 29 Feb does not exist
    EXPECT_EQ(InicioEjercicio(QDate(2023, 1, 1), QDate(2022, 12, 31)), QDate(2023, 1, 1));
}

TEST_P(SesionEnMotor, PermisosYAutorizadoresDeLaDemo)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    const QString modulo = QString::fromLatin1(Demo::kModulo);
    auto letras = [&](int usuario) {
        ServicioPermisos s(base.conexion(), usuario);
        return s.Permisos(QStringLiteral("lum01"), modulo, Demo::kEmpresa).trimmed();
    };
    EXPECT_EQ(letras(Demo::kUsuarioAdministrador), QStringLiteral("AMEQ"));
    EXPECT_EQ(letras(Demo::kUsuarioConsulta), QStringLiteral("Q"));
    EXPECT_EQ(letras(Demo::kUsuarioSinPermisos), QString());
    EXPECT_EQ(letras(77), QString());

    ServicioPermisos s(base.conexion(), Demo::kUsuarioAdministrador);
    const QStringList autorizadores =
        s.Autorizadores(QStringLiteral("lum01"), modulo, Demo::kEmpresa).split(QLatin1Char('\r'));
    EXPECT_EQ(autorizadores.size(), 2);
    EXPECT_TRUE(autorizadores.contains(QStringLiteral("1|Administrador")));
}

TEST(Permisos, LetrasSinDistinguirMayusculas)
{
    EXPECT_TRUE(TienePermiso(QStringLiteral("qa"), u'Q'));
    EXPECT_TRUE(TienePermiso(QStringLiteral("qa"), u'A'));
    EXPECT_FALSE(TienePermiso(QStringLiteral("qa"), u'M'));
    EXPECT_FALSE(TienePermiso(QString(), u'Q'));
}

TEST_P(SesionEnMotor, AjustesDelUsuarioSeGuardanAlConfirmar)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    const QString seccion = QStringLiteral("PasajeAsientos");
    {
        ServicioConfigUsuario config(base.conexion(), 5);
        EXPECT_EQ(config.Leer(seccion, QStringLiteral("AsiSaveB")), QString());
        config.Escribir(seccion, QStringLiteral("AsiSaveB"), QStringLiteral("1"));
        config.Escribir(seccion, QStringLiteral("AsiOrder"), QStringLiteral("1"));
    } // not confirmed: nothing stored
    ServicioConfigUsuario nada(base.conexion(), 5);
    EXPECT_EQ(nada.Leer(seccion, QStringLiteral("AsiSaveB")), QString());

    ServicioConfigUsuario config(base.conexion(), 5);
    config.Escribir(seccion, QStringLiteral("AsiSaveB"), QStringLiteral("1"));
    config.Confirmar();
    config.Escribir(seccion, QStringLiteral("AsiSaveB"), QStringLiteral("0"));
    config.Confirmar();
    ServicioConfigUsuario otro(base.conexion(), 5);
    EXPECT_EQ(otro.Leer(seccion, QStringLiteral("AsiSaveB")), QStringLiteral("0"));
    ServicioConfigUsuario otroUsuario(base.conexion(), 6);
    EXPECT_EQ(otroUsuario.Leer(seccion, QStringLiteral("AsiSaveB")), QString());
}

INSTANCIAR_EN_MOTORES(SesionEnMotor);

TEST(Sesion, NombreDeEdicionYFormatoDeFecha)
{
    EXPECT_EQ(NombreEdicion(QStringLiteral("  LUM02 ")), QStringLiteral("Tarvo Empresa"));
    EXPECT_EQ(NombreEdicion(QStringLiteral("lum01")), QStringLiteral("Tarvo Contable"));
    EXPECT_EQ(NombreEdicion(QStringLiteral("lum03")), QStringLiteral("Tarvo Familia"));
    EXPECT_EQ(NombreEdicion(QStringLiteral("lum04")), QString());
    EXPECT_EQ(FormatoQtDeFecha(QStringLiteral("dd/mm/yyyy")), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(FormatoQtDeFecha(QStringLiteral("d-mmm-yy hh:nn")), QStringLiteral("d-MMM-yy hh:mm"));
}

} // namespace
