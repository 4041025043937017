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

// Each parameter is read into its field, texts trimmed; a Null value leaves the field as it
// was. Without the table it says 1926, and what was read stays.
TEST_P(SesionEnMotor, ParametrosAjustesDelUsuarioYEmpresasLeidas)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    base.conexion().Ejecutar(QStringLiteral("Insert Into genParametros (ParNombre, ParValor, ParTexto) Values ('defBDDateCharSQLs', Null, ' # '),"
                                            " ('defBDDateFormat', Null, Null), ('sis_Multiusuario', 2, Null), ('sis_LibroAsientoResumen', 11, Null),"
                                            " ('sis_LibroAsientoApertura', 12, Null), ('sis_LibroAsientoCierre', 13, Null), ('sis_LibroADC', Null, 'x'),"
                                            " ('sis_LibroAsientoPrimeraApertura', 15, Null)"));
    ParametrosSistema p;
    p.libroADC = 33;
    p.formatoFecha = QStringLiteral("antes");
    EXPECT_FALSE(CargarParametrosSistema(base.conexion(), p).has_value());
    EXPECT_EQ(p.delimitadorFecha, QStringLiteral("#"));
    EXPECT_EQ(p.formatoFecha, QStringLiteral("antes"));
    EXPECT_TRUE(p.multiusuario);
    EXPECT_EQ((QList<qint16>{p.libroResumen, p.libroApertura, p.libroCierre, p.libroADC, p.libroPrimeraApertura}),
              (QList<qint16>{11, 12, 13, 33, 15}));

    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const auto fallo = CargarParametrosSistema(vacia.conexion(), p);
    ASSERT_TRUE(fallo.has_value());
    EXPECT_EQ(fallo->numeroTexto, 1926);
    EXPECT_EQ(p.libroCierre, 13);

    // A user's settings are stored only when confirmed, and are that user's.
    const QString seccion = QStringLiteral("PasajeAsientos"), clave = QStringLiteral("AsiSaveB");
    auto leer = [&](int usuario) { return *ServicioConfigUsuario(base.conexion(), usuario).Leer(seccion, clave); };
    ServicioConfigUsuario(base.conexion(), 5).Escribir(seccion, clave, QStringLiteral("1")); // not confirmed: nothing stored
    EXPECT_EQ(leer(5), QString());
    ServicioConfigUsuario config(base.conexion(), 5);
    config.Escribir(seccion, clave, QStringLiteral("1"));
    ASSERT_FALSE(config.Confirmar());
    config.Escribir(seccion, clave, QStringLiteral("0"));
    ASSERT_FALSE(config.Confirmar());
    EXPECT_EQ(leer(5), QStringLiteral("0"));
    EXPECT_EQ(leer(6), QString());

    // The default book from EmpPrms, else the user's first book; a company that is not there
    // is not read, and one whose row cannot be read says 1920.
    Conexion &c = base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (90, 'Resumen', 1), (3, 'Ventas', 0)"));
    c.Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre, EmpPrms, EmpValoresUsuarioYAuroriza) Values"
                              " (1, 'Uno', 'x|LIB:7|lib:abc', ' 10 '), (2, 'Dos', 'x|cfg:2', Null), (3, Null, Null, Null)"));
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

    ConfigEmpresa falta;
    falta.usuarioYAutoriza = QStringLiteral("11");
    EXPECT_FALSE(LeerConfigEmpresa(c, 9, falta, leida).has_value());
    EXPECT_FALSE(leida);
    EXPECT_EQ(falta.usuarioYAutoriza, QStringLiteral("00"));

    ConfigEmpresa nulo;
    const auto sinFila = LeerConfigEmpresa(c, 3, nulo, leida);
    ASSERT_TRUE(sinFila.has_value());
    EXPECT_EQ(sinFila->numeroTexto, 1920);
    EXPECT_FALSE(leida);
}

TEST_P(SesionEnMotor, ConfiguracionPermisosYAutorizadoresDeLaDemo)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Demo);
    ConfigEmpresa c;
    bool leida = false;
    EXPECT_FALSE(LeerConfigEmpresa(base.conexion(), Demo::kEmpresa, c, leida).has_value());
    EXPECT_TRUE(leida);
    EXPECT_TRUE(c.mostrarCodigoCta);
    EXPECT_EQ(c.monedaContabilidad, Demo::kMonedaPesos);
    EXPECT_EQ(c.usuarioYAutoriza, QStringLiteral("01"));
    EXPECT_TRUE(c.ConAutoriza());
    EXPECT_EQ(c.tipoTCComprobantes, Demo::kTipoCotizacion);
    EXPECT_EQ(c.FechaCierreEjercicio, QDate(BaseDePrueba::Hoy().year() - 1, 12, 31));
    EXPECT_EQ(c.baseEjercicio, c.FechaCierreEjercicio);
    EXPECT_EQ(c.libroPorDefecto, Demo::kLibroDiario);

    // Its users' permission letters and authorisers.
    const QString modulo = QString::fromLatin1(Demo::kModulo);
    auto letras = [&](int usuario) {
        ServicioPermisos s(base.conexion(), usuario);
        return s.Permisos(QStringLiteral("lum01"), modulo, Demo::kEmpresa)->trimmed();
    };
    EXPECT_EQ(letras(Demo::kUsuarioAdministrador), QStringLiteral("AMEQ"));
    EXPECT_EQ(letras(Demo::kUsuarioConsulta), QStringLiteral("Q"));
    EXPECT_EQ(letras(Demo::kUsuarioSinPermisos), QString());
    EXPECT_EQ(letras(77), QString());

    ServicioPermisos s(base.conexion(), Demo::kUsuarioAdministrador);
    const QStringList autorizadores =
        s.Autorizadores(QStringLiteral("lum01"), modulo, Demo::kEmpresa)->split(QLatin1Char('\r'));
    EXPECT_EQ(autorizadores.size(), 2);
    EXPECT_TRUE(autorizadores.contains(QStringLiteral("1|Administrador")));
}

// The opening-balance date: a registered opening entry's own date, else the start of the
// fiscal year of the earliest activity (entries and vouchers, the later of the two earliest),
// else of today's fiscal year. Entries are "fecha:estado:libro", vouchers "fecha:estado" with
// "-" for a Null state.
TEST_P(SesionEnMotor, FechaDeAperturaEsElComienzoDelEjercicio)
{
    const struct
    {
        const char *asientos;
        const char *comprobantes;
        QDate cierre;
        QDate esperado;
    } casos[] = {
        {"2024-01-01:1:91,2025-01-01:1:94,2026-01-01:0:91,2023-02-02:1:1", "", QDate(2025, 12, 31), QDate(2025, 1, 1)},
        // Closing 30 June, earliest activity 10 March 2009: the year began 1 July 2008.
        {"2009-03-10:1:1,2010-05-05:1:1,2008-01-01:0:1,2001-01-01:9:1", "2009-01-05:0,2000-01-01:9", QDate(2010, 6, 30), QDate(2008, 7, 1)},
        {"2012-02-01:1:1", "2013-08-20:-", QDate(2012, 12, 31), QDate(2013, 1, 1)},
        {"", "", QDate(1900, 12, 31), QDate(2026, 1, 1)},
        {"", "2020-01-01:9", QDate(2019, 3, 31), QDate(2026, 4, 1)},
    };
    for (const auto &a : casos) {
        SCOPED_TRACE(std::string(a.asientos) + " " + a.comprobantes);
        BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
        Conexion &c = base.conexion();
        for (const QString &x : QString::fromLatin1(a.asientos).split(u',', Qt::SkipEmptyParts)) {
            const QStringList p = x.split(u':');
            c.Ejecutar(QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiTipo) Values (1, ?, ?, ?)"),
                       {p[1].toInt(), p[0], p[2].toInt()});
        }
        for (const QString &x : QString::fromLatin1(a.comprobantes).split(u',', Qt::SkipEmptyParts)) {
            const QStringList p = x.split(u':');
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
}

INSTANCIAR_EN_MOTORES(SesionEnMotor);

TEST(Sesion, NombreDeEdicionFormatosLetrasEInicioDeEjercicio)
{
    EXPECT_EQ(NombreEdicion(QStringLiteral("  LUM02 ")), QStringLiteral("Tarvo Empresa"));
    EXPECT_EQ(NombreEdicion(QStringLiteral("lum04")), QString());
    EXPECT_EQ(FormatoQtDeFecha(QStringLiteral("dd/mm/yyyy")), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(FormatoQtDeFecha(QStringLiteral("d-mmm-yy hh:nn")), QStringLiteral("d-MMM-yy hh:mm"));
    // Permission letters are told apart without case.
    EXPECT_TRUE(TienePermiso(QStringLiteral("qa"), u'Q') && TienePermiso(QStringLiteral("qa"), u'A'));
    EXPECT_FALSE(TienePermiso(QStringLiteral("qa"), u'M') || TienePermiso(QString(), u'Q'));
    // The start of a fiscal year, whose closing day may not exist in a leap year.
    EXPECT_EQ(InicioEjercicio(QDate(2009, 3, 10), QDate(2010, 6, 30)), QDate(2008, 7, 1));
    EXPECT_EQ(InicioEjercicio(QDate(2009, 7, 1), QDate(2010, 6, 30)), QDate(2009, 7, 1));
    EXPECT_EQ(InicioEjercicio(QDate(2023, 5, 1), QDate(2020, 2, 28)), QDate(2023, 2, 28));  // 29 Feb does not exist
    EXPECT_EQ(InicioEjercicio(QDate(2023, 1, 1), QDate(2022, 12, 31)), QDate(2023, 1, 1));
}

} // namespace
