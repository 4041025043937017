#include "shell/comandoshost.h"
#include "shell/parametroshost.h"

#include <gtest/gtest.h>

namespace {

TEST(ParametrosHost, DireccionPedidoDeAsientoYComandosAlHost)
{
    EXPECT_EQ(ExtraerParametrosHost(QStringLiteral("lumapp://x/ingreso.htm%3fpsidempresa=3|a=b")),
              QStringLiteral("psidempresa=3|a=b"));
    EXPECT_EQ(ExtraerParametrosHost(QStringLiteral("lumapp://x/y.htm?psidempresa=3?z")), QStringLiteral("psidempresa=3?z"));
    EXPECT_EQ(ExtraerParametrosHost(QStringLiteral("psidempresa=3")), QStringLiteral("psidempresa=3"));
    EXPECT_EQ(ExtraerParametrosHost(QStringLiteral("lumapp://x/y.htm?")), QString());

    // The entry asked for.
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("prmidasi=15")), 15);
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("PRMIDASI=1234")), 1234);
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("prmidasi=2.5")), 2); // rounds half to even
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("prmidasi=x")), std::nullopt);
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("prmidasi=")), std::nullopt);
    EXPECT_EQ(IdAsientoPendiente(QStringLiteral("otra=15")), std::nullopt);

    // The commands sent back to the host, built and read.
    const QString error = ComandoHost::Error(QStringLiteral("Error al iniciar la conexión a los datos, error: sin red"));
    EXPECT_EQ(error, QStringLiteral("lumcod:main_Error<prm>[prmErrDesc]:=Error al iniciar la conexión a los datos, error: sin red</prm>"));
    EXPECT_EQ(ComandoHost::TipoDe(error), ComandoHost::Tipo::Error);
    EXPECT_EQ(ComandoHost::Parametro(error), QStringLiteral("Error al iniciar la conexión a los datos, error: sin red"));

    const QString denegado = ComandoHost::AccesoDenegado(QStringLiteral("Ingreso de Asientos"));
    EXPECT_EQ(denegado, QStringLiteral("lumcod:inf_AccesoDenegado<prm>[NombreApp]:=Ingreso de Asientos</prm>"));
    EXPECT_EQ(ComandoHost::TipoDe(denegado), ComandoHost::Tipo::AccesoDenegado);

    EXPECT_EQ(ComandoHost::TipoDe(ComandoHost::kAyudaIngreso), ComandoHost::Tipo::Ayuda);
    EXPECT_EQ(ComandoHost::PaginaAyuda(ComandoHost::kAyudaIngreso), QStringLiteral("ingreso_de_asientos.htm"));
    EXPECT_EQ(ComandoHost::PaginaAyuda(ComandoHost::kAyudaSaldosIniciales), QStringLiteral("asiento_de_saldos_iniciales.htm"));
}

TEST(ParametrosHost, LeeCadaClaveYSeDetieneEnLoMalFormado)
{
    DatosHost d;
    const LecturaHost r = LeerParametrosHost(
        QStringLiteral(" PSIDUSUARIO =12%7Cpsidempresa=7|psNombreEmpresa=Mi Empresa|psckey=LUM02|pskeyinit=u12"
                       "|pstempdir=C:/Mis%20Datos/tmp|pshacerasi=SI|prmidasi=15"),
        d);
    EXPECT_TRUE(r.exito);
    EXPECT_TRUE(r.error.isEmpty());
    EXPECT_EQ(d.IDUsuario, 12);
    EXPECT_EQ(d.IDEmpresa, 7);
    EXPECT_EQ(d.NombreEmpresa, QStringLiteral("Mi Empresa"));
    EXPECT_EQ(d.ClaveSesion, QStringLiteral("LUM02"));
    EXPECT_EQ(d.PrefijoUsuario, QStringLiteral("u12"));
    EXPECT_EQ(d.CarpetaTemporal, QStringLiteral("C:\\Mis Datos\\tmp"));
    EXPECT_TRUE(d.PedidoAsientoApertura);
    EXPECT_EQ(d.SolicitudPendiente, QStringLiteral("prmidasi=15"));

    // Values are taken as they come, up to the next "=".
    DatosHost tal;
    LeerParametrosHost(QStringLiteral("psidempresa=1|psNombreEmpresa= A=B |pshacerasi= si"), tal);
    EXPECT_EQ(tal.NombreEmpresa, QStringLiteral(" A"));
    EXPECT_FALSE(tal.PedidoAsientoApertura); // " si" is not "si"

    // The pending request is the last unknown key.
    DatosHost pendiente;
    LeerParametrosHost(QStringLiteral("a=1|psidempresa=1|  |b=2|%5Bprmprm%5Dc=3|x[prmprm]=4"), pendiente);
    EXPECT_EQ(pendiente.SolicitudPendiente, QStringLiteral("b=2"));

    // Without a company it fails, unless the host gave one.
    DatosHost sinEmpresa;
    EXPECT_FALSE(LeerParametrosHost(QStringLiteral("psidusuario=1|psidempresa=0"), sinEmpresa).exito);
    DatosHost conEmpresa;
    conEmpresa.IDEmpresa = 4;
    EXPECT_TRUE(LeerParametrosHost(QStringLiteral("psidusuario=1"), conEmpresa).exito);
    EXPECT_EQ(conEmpresa.IDEmpresa, 4);

    // Ill-formed values stop the reading with their description.
    struct Caso
    {
        const char *texto;
        const char *error;
    };
    const Caso casos[] = {
        {"psidusuario=doce|psidempresa=1", "No coinciden los tipos"},
        {"psidempresa=1|psidusuario=", "No coinciden los tipos"},
        {"psidusuario=40000|psidempresa=1", "Desbordamiento"},
        {"psidempresa=99999999999", "Desbordamiento"},
        {"psidempresa=1|psckey", "Subíndice fuera del intervalo"},
    };
    for (const Caso &c : casos) {
        DatosHost d;
        const LecturaHost r = LeerParametrosHost(QString::fromUtf8(c.texto), d);
        EXPECT_EQ(r.error, QString::fromUtf8(c.error)) << c.texto;
        EXPECT_FALSE(r.exito) << c.texto;
    }
}


} // namespace
