#include "comun/basesprueba.h"

#include "opciones.h"
#include "shell/parametroshost.h"
#include "ventanahost.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTest>

#include <gtest/gtest.h>

namespace {

TEST(OpcionesHost, ArmanLaDireccionQueElDocumentoLee)
{
    const OpcionesHost o = OpcionesHost::Leer({QStringLiteral("asientos"), QStringLiteral("--user"), QStringLiteral("2"),
                                               QStringLiteral("--company"), QStringLiteral("5"), QStringLiteral("--asiento"),
                                               QStringLiteral("77"), QStringLiteral("--opening"), QStringLiteral("--temp"),
                                               QStringLiteral("/tmp/mis datos")});
    ASSERT_TRUE(o.error.isEmpty());
    DatosHost d;
    const LecturaHost r = LeerParametrosHost(ExtraerParametrosHost(o.DireccionBase(QStringLiteral("/x"))), d);
    EXPECT_TRUE(r.exito);
    EXPECT_EQ(d.IDUsuario, 2);
    EXPECT_EQ(d.IDEmpresa, 5);
    EXPECT_TRUE(d.PrefijoUsuario.startsWith(QStringLiteral("2_"))) << "another company, another layout";
    EXPECT_EQ(d.CarpetaTemporal, QStringLiteral("\\tmp\\mis datos"));
    EXPECT_TRUE(d.PedidoAsientoApertura);
    EXPECT_EQ(IdAsientoPendiente(d.SolicitudPendiente), 77);
}

// Each database and company keeps its own layout file; the default ones keep the plain
// user number, and a prefix given wins.
TEST(OpcionesHost, CadaBaseYEmpresaTieneSuDiseno)
{
    auto prefijo = [](QStringList argumentos) {
        argumentos.prepend(QStringLiteral("asientos"));
        const OpcionesHost o = OpcionesHost::Leer(argumentos);
        DatosHost d;
        LeerParametrosHost(ExtraerParametrosHost(o.DireccionBase(QStringLiteral("/x"))), d);
        return d.PrefijoUsuario;
    };
    const QString a = prefijo({QStringLiteral("--db"), QStringLiteral("/datos/a.sqlite")});
    EXPECT_EQ(prefijo({}), QStringLiteral("1"));
    EXPECT_EQ(a, prefijo({QStringLiteral("--db"), QStringLiteral("/datos/a.sqlite")}));
    EXPECT_TRUE(a.startsWith(QStringLiteral("1_")));
    EXPECT_NE(a, prefijo({QStringLiteral("--db"), QStringLiteral("/datos/b.sqlite")}));
    EXPECT_NE(a, prefijo({QStringLiteral("--db"), QStringLiteral("/datos/a.sqlite"), QStringLiteral("--company"), QStringLiteral("2")}));
    EXPECT_EQ(prefijo({QStringLiteral("--db"), QStringLiteral("/datos/a.sqlite"), QStringLiteral("--prefix"), QStringLiteral("mio")}),
              QStringLiteral("mio"));
}

TEST(OpcionesHost, HrefSeUsaTalCualYLosErroresSeDicen)
{
    const OpcionesHost o = OpcionesHost::Leer({QStringLiteral("asientos"), QStringLiteral("--href"), QStringLiteral("a?b=c")});
    EXPECT_EQ(o.DireccionBase(QStringLiteral("/x")), QStringLiteral("a?b=c"));
    EXPECT_FALSE(OpcionesHost::Leer({QStringLiteral("asientos"), QStringLiteral("--user"), QStringLiteral("x")}).error.isEmpty());
    EXPECT_FALSE(OpcionesHost::Leer({QStringLiteral("asientos"), QStringLiteral("--db")}).error.isEmpty());
    EXPECT_FALSE(OpcionesHost::Leer({QStringLiteral("asientos"), QStringLiteral("--nada")}).error.isEmpty());
}

class Host : public ::testing::Test
{
protected:
    std::unique_ptr<VentanaHost> abrir(const QStringList &argumentos, const QString &baseDatos)
    {
        auto v = std::make_unique<VentanaHost>(OpcionesHost::Leer(QStringList{QStringLiteral("asientos")} + argumentos),
                                               baseDatos, m_carpeta.filePath(QStringLiteral("a.ini")), m_carpeta.path(),
                                               true);
        v->show();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        return v;
    }
    QTemporaryDir m_carpeta;
};

TEST_F(Host, ErrorDeArranqueMuestraLaPaginaConElTexto)
{
    auto v = abrir({}, m_carpeta.filePath(QStringLiteral("falta.sqlite")));
    auto *pagina = qobject_cast<QTextBrowser *>(v->paginaActual());
    ASSERT_NE(pagina, nullptr);
    EXPECT_EQ(pagina->objectName(), QStringLiteral("paginaError"));
    EXPECT_TRUE(pagina->toPlainText().contains(QStringLiteral("Error al iniciar la conexión a los datos, error: no existe")));
}

TEST_F(Host, AccesoDenegadoYAyuda)
{
    BaseDePrueba base(Motor::SQLite, BaseDePrueba::Contenido::Demo);
    auto denegado = abrir({QStringLiteral("--user"), QStringLiteral("3")}, base.direccion());
    EXPECT_EQ(denegado->paginaActual()->objectName(), QStringLiteral("paginaAccesoDenegado"));
    denegado.reset();

    auto v = abrir({QStringLiteral("--user"), QStringLiteral("1")}, base.direccion());
    EXPECT_EQ(v->paginaActual(), v->documento());
    v->Navegar(QStringLiteral("lumNav:navhelp?Main|asientos\\asiento_de_saldos_iniciales.htm"), QString());
    QCoreApplication::processEvents();
    auto *visor = v->findChild<QDialog *>(QStringLiteral("visorAyuda"));
    ASSERT_NE(visor, nullptr);
    auto *texto = visor->findChild<QTextBrowser *>(QStringLiteral("textoAyuda"));
    EXPECT_TRUE(texto->toPlainText().contains(QStringLiteral("saldos iniciales"), Qt::CaseInsensitive));
    EXPECT_EQ(v->paginaActual(), v->documento()); // help never replaces the document
}

} // namespace
