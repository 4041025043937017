#include "comun/basesprueba.h"

#include "opciones.h"
#include "shell/parametroshost.h"
#include "ventanahost.h"

#include <QCoreApplication>
#include <QDialog>
#include <QTemporaryDir>
#include <QTextBrowser>

#include <gtest/gtest.h>

namespace {

// The options of a command line, the program's name left out.
OpcionesHost leer(QStringList argumentos)
{
    argumentos.prepend(QStringLiteral("asientos"));
    return OpcionesHost::Leer(argumentos);
}

DatosHost datos(const OpcionesHost &o)
{
    DatosHost d;
    EXPECT_TRUE(LeerParametrosHost(ExtraerParametrosHost(o.DireccionBase(QStringLiteral("/x"))), d).exito);
    return d;
}

TEST(OpcionesHost, ArmanLaDireccionQueElDocumentoLeeConSuDiseno)
{
    const OpcionesHost o = leer({"--user", "2", "--company", "5", "--asiento", "77", "--opening", "--temp", "/tmp/mis datos"});
    ASSERT_TRUE(o.error.isEmpty());
    const DatosHost d = datos(o);
    EXPECT_EQ(d.IDUsuario, 2);
    EXPECT_EQ(d.IDEmpresa, 5);
    EXPECT_EQ(d.CarpetaTemporal, QStringLiteral("\\tmp\\mis datos"));
    EXPECT_TRUE(d.PedidoAsientoApertura);
    EXPECT_EQ(IdAsientoPendiente(d.SolicitudPendiente), 77);
    EXPECT_EQ(leer({"--href", "a?b=c"}).DireccionBase(QStringLiteral("/x")), QStringLiteral("a?b=c"));

    // Each database and company keeps its own layout file; the default ones keep the plain
    // user number, and a prefix given wins.
    auto prefijo = [](const QStringList &argumentos) { return datos(leer(argumentos)).PrefijoUsuario; };
    const QString a = prefijo({"--db", "/datos/a.sqlite"});
    EXPECT_EQ(prefijo({}), QStringLiteral("1"));
    EXPECT_TRUE(prefijo({"--user", "2", "--company", "5"}).startsWith(QStringLiteral("2_")));
    EXPECT_EQ(a, prefijo({"--db", "/datos/a.sqlite"}));
    EXPECT_TRUE(a.startsWith(QStringLiteral("1_")));
    EXPECT_NE(a, prefijo({"--db", "/datos/b.sqlite"}));
    EXPECT_NE(a, prefijo({"--db", "/datos/a.sqlite", "--company", "2"}));
    EXPECT_EQ(prefijo({"--db", "/datos/a.sqlite", "--prefix", "mio"}), QStringLiteral("mio"));
}

// Requests that make no sense are refused before anything is opened or made.
TEST(OpcionesHost, PedidosMalosSonErrores)
{
    const QStringList malos[] = {
        {"--user", "x"},  {"--db"}, {"--nada"}, {"--inicializar"}, {"--db", "a", "--sin-demo"}, {"--copiar-a", "b"},
        {"--db", "a", "--copiar-a", ""}, {"--exportar", " "}, {"--db", "a", "--copiar-a", "b", "--inicializar"},
    };
    for (const auto &argumentos : malos)
        EXPECT_FALSE(leer(argumentos).error.isEmpty()) << argumentos.join(QLatin1Char(' ')).toStdString();
    EXPECT_TRUE(leer({"--db", "a", "--inicializar", "--sin-demo"}).error.isEmpty());
}

class Host : public ::testing::Test
{
protected:
    std::unique_ptr<VentanaHost> abrir(const QStringList &argumentos, const QString &baseDatos)
    {
        auto v = std::make_unique<VentanaHost>(leer(argumentos),
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
    EXPECT_EQ(abrir({"--user", "3"}, base.direccion())->paginaActual()->objectName(),
              QStringLiteral("paginaAccesoDenegado"));

    auto v = abrir({"--user", "1"}, base.direccion());
    EXPECT_EQ(v->paginaActual(), v->documento());
    v->Navegar(QStringLiteral("lumNav:navhelp?Main|asientos\\asiento_de_saldos_iniciales.htm"), QString());
    QCoreApplication::processEvents();
    auto *visor = v->findChild<QDialog *>(QStringLiteral("visorAyuda"));
    ASSERT_NE(visor, nullptr);
    auto *texto = visor->findChild<QTextBrowser *>(QStringLiteral("textoAyuda"));
    EXPECT_TRUE(texto->toPlainText().contains(QStringLiteral("saldos iniciales"), Qt::CaseInsensitive));
    EXPECT_EQ(v->paginaActual(), v->documento()); // help never replaces the document

    // In English the English page, and a link on it leads to the English one too.
    v.reset();
    v = abrir({"--user", "1", "--lang", "2"}, base.direccion());
    v->Navegar(QStringLiteral("lumNav:navhelp?Main|asientos\\asiento_de_saldos_iniciales.htm"), QString());
    QCoreApplication::processEvents();
    texto = v->findChild<QTextBrowser *>(QStringLiteral("textoAyuda"));
    ASSERT_NE(texto, nullptr);
    EXPECT_TRUE(texto->toPlainText().contains(QStringLiteral("opening balance entry"))) << texto->toPlainText().left(200).toStdString();
    texto->setSource(QUrl(QStringLiteral("ingreso_de_asientos.htm")));
    EXPECT_TRUE(texto->toPlainText().startsWith(QStringLiteral("Journal Entries"))) << texto->toPlainText().left(200).toStdString();
}

// The window opens again as large as the user left it.
TEST_F(Host, LaVentanaVuelveComoSeDejo)
{
    BaseDePrueba base(Motor::SQLite, BaseDePrueba::Contenido::Demo);
    auto v = abrir({"--user", "1"}, base.direccion());
    const QSize inicial = v->size();
    v->resize(inicial.width() - 150, inicial.height() - 90);
    QCoreApplication::processEvents();
    ASSERT_TRUE(v->close());
    EXPECT_EQ(abrir({"--user", "1"}, base.direccion())->size(), QSize(inicial.width() - 150, inicial.height() - 90));
}

} // namespace
