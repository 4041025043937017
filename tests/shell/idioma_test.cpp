#include "comun/mensajesguionados.h"

#include "currency/mascara.h"
#include "services/servicioconexion.h"
#include "shell/idioma.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QHash<int, QString> catalogo(const QString &nombre)
{
    QFile f(QStringLiteral(":/lang/") + nombre + QStringLiteral(".txt"));
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << nombre.toStdString();
    return ComponenteIdioma::LeerCatalogo(f.readAll());
}

// The shared component belongs to the process: every test leaves it released.
void liberarTodo()
{
    while (Idioma::Cuenta() > 0)
        Idioma::Liberar();
}

TEST(Catalogo, FormatoYLosDosIdiomas)
{
    const auto t = ComponenteIdioma::LeerCatalogo(
        QByteArray("# comentario\n\n1000\tUno\\r\\rDos\\\\tres\\tcuatro\r\n1001\t trailing \nmal formada\n12x\tno\n"));
    EXPECT_EQ(t.size(), 2);
    EXPECT_EQ(t.value(1000), QStringLiteral("Uno\r\rDos\\tres\tcuatro"));
    EXPECT_EQ(t.value(1001), QStringLiteral(" trailing "));

    // Spanish and English have the same numbers and markers.
    const auto es = catalogo(QStringLiteral("LNG_TCO_001"));
    const auto en = catalogo(QStringLiteral("LNG_TCO_002"));
    ASSERT_GE(es.size(), 170);
    EXPECT_EQ(QSet<int>(es.keyBegin(), es.keyEnd()), QSet<int>(en.keyBegin(), en.keyEnd()));
    static const QRegularExpression marcas(QStringLiteral("\\[p\\d?\\]|\\r|\\n"));
    for (auto it = es.cbegin(); it != es.cend(); ++it) {
        auto lista = [](const QString &t) {
            QStringList l;
            for (auto m = marcas.globalMatch(t); m.hasNext();)
                l << m.next().captured();
            return l;
        };
        EXPECT_EQ(lista(it.value()), lista(en.value(it.key()))) << it.key();
        EXPECT_EQ(it.value().count(QLatin1Char('|')), en.value(it.key()).count(QLatin1Char('|'))) << it.key();
    }
    // Texts whose exact form the screen builds on: a trailing space, column markers.
    EXPECT_EQ(es.value(1061), QStringLiteral("Importe en "));
    EXPECT_EQ(es.value(1060), QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
}

// "1.500" typed as an amount is read in the system's locale, or in the language's own when the
// system has none (C): fifteen hundred in Spanish, one and a half in English.
TEST(LocaleDelPrograma, ElDelSistemaOElDelIdiomaSiNoHay)
{
    const struct {
        QLocale sistema;
        int idioma;
        double esperado;
    } casos[] = {
        {QLocale::c(), 1, 1500},
        {QLocale::c(), 2, 1.5},
        {QLocale(QLocale::Spanish, QLocale::Uruguay), 2, 1500},
        {QLocale(QLocale::English, QLocale::UnitedStates), 1, 1.5},
    };
    for (const auto &c : casos) {
        const QLocale locale = Idioma::LocaleDelPrograma(c.sistema, c.idioma);
        double leido = 0;
        EXPECT_TRUE(LeerNumero(QStringLiteral("1.500"), leido, locale)) << c.sistema.name().toStdString() << " " << c.idioma;
        EXPECT_EQ(leido, c.esperado) << c.sistema.name().toStdString() << " " << c.idioma;
    }
}

// A window made before the language is known reads numbers in the language's locale once it is.
TEST(LocaleDelPrograma, LasVentanasYaHechasLoToman)
{
    const QLocale antes;
    if (Idioma::LocaleDelPrograma(QLocale::system(), 2) == antes)
        GTEST_SKIP() << "the system's locale is the tests' own";
    QWidget ventana;
    QLineEdit campo(&ventana);
    Idioma::AplicarAlProceso(2);
    const QLocale ahora;
    EXPECT_EQ(campo.locale(), ahora);
    EXPECT_EQ(ventana.locale(), ahora);
    QLocale::setDefault(antes);
    Idioma::AplicarAlProceso(2); // no translation of Qt's texts is left installed
    QLocale::setDefault(antes);
}

// Qt's own texts (standard buttons, print and file dialogs) speak the program's language:
// Spanish from Qt's translations, English as Qt is.
TEST(LocaleDelPrograma, LosTextosPropiosDeQtSiguenAlIdioma)
{
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + QStringLiteral("/qtbase_es.qm")))
        GTEST_SKIP() << "Qt's Spanish translations are not installed";
    const QLocale antes;
    auto cancelar = [] { return QCoreApplication::translate("QPlatformTheme", "Cancel"); };
    Idioma::AplicarAlProceso(1);
    const QString espanol = cancelar();
    Idioma::AplicarAlProceso(2);
    const QString ingles = cancelar();
    QLocale::setDefault(antes);
    EXPECT_EQ(espanol, QStringLiteral("Cancelar"));
    EXPECT_EQ(ingles, QStringLiteral("Cancel"));
}

class ComponenteCompartido : public ::testing::Test
{
protected:
    void TearDown() override { liberarTodo(); }

    ServicioConexion conIdioma(const QString &idioma)
    {
        AjustesConexion a;
        a.archivoAjustes = m_carpeta.filePath(QStringLiteral("ajustes.ini"));
        if (!idioma.isNull()) {
            QSettings s(a.archivoAjustes, QSettings::IniFormat);
            s.setValue(QStringLiteral("LUM01/Idioma"), idioma);
            s.setValue(QStringLiteral("LUM01/Idioma2"), QStringLiteral("3"));
        }
        return ServicioConexion(a);
    }

    QTemporaryDir m_carpeta;
    MensajesGuionados m_mensajes;
};

TEST_F(ComponenteCompartido, SinAjusteOCeroEsEspanolYSeLiberaConElUltimoDocumento)
{
    for (const QString &ajuste : {QString(), QStringLiteral("0"), QStringLiteral("abc")}) {
        ASSERT_EQ(Idioma::CrearComponenteIdioma(QStringLiteral("LUM01"), QStringLiteral("IngresoAsiento"),
                                                conIdioma(ajuste), m_mensajes), 1);
        EXPECT_EQ(m_mensajes.idioma(), 1);
        EXPECT_EQ(Idioma::resLoad(0), QStringLiteral("Ingreso de Asientos"));
        EXPECT_EQ(Idioma::resLoad(906), QStringLiteral("Error al obtener los parámetros para el ingreso de asientos."));
        EXPECT_EQ(Idioma::Actual()->IDAppName, QStringLiteral("IngresoAsiento"));
        liberarTodo();
    }
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());

    // The component is released with the last document.
    const ServicioConexion s = conIdioma(QString());
    ASSERT_EQ(Idioma::CrearComponenteIdioma(QStringLiteral("LUM01"), QStringLiteral("uno"), s, m_mensajes), 1);
    ASSERT_EQ(Idioma::CrearComponenteIdioma(QStringLiteral("LUM01"), QStringLiteral("dos"), s, m_mensajes), 1);
    EXPECT_EQ(Idioma::Actual()->IDAppName, QStringLiteral("dos")); // the second replaced the first
    EXPECT_EQ(Idioma::Cuenta(), 2);
    Idioma::Liberar();
    EXPECT_NE(Idioma::Actual(), nullptr);
    Idioma::Liberar();
    EXPECT_EQ(Idioma::Actual(), nullptr);
    EXPECT_EQ(Idioma::resLoad(0), QString());
}

TEST_F(ComponenteCompartido, InglesYSecundarioOFaltaElComponente)
{
    ASSERT_EQ(Idioma::CrearComponenteIdioma(QStringLiteral("lum01"), QStringLiteral("IngresoAsiento"),
                                            conIdioma(QStringLiteral("2")), m_mensajes), 1);
    EXPECT_EQ(m_mensajes.idioma(), 2);
    EXPECT_EQ(Idioma::Actual()->IDSLNG, 3);
    EXPECT_EQ(Idioma::resLoad(2), QStringLiteral("F"));
    EXPECT_EQ(Idioma::resLoad(500), QString()); // no such text
    liberarTodo();

    // A language without its component.
    EXPECT_EQ(Idioma::CrearComponenteIdioma(QStringLiteral("LUM04"), QStringLiteral("x"), conIdioma(QStringLiteral("1")),
                                            m_mensajes), 0);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(m_mensajes.mostrados[0], QStringLiteral("error: Falta el componente de idioma: LNG_TFA_001.dll\r\n"
                                                      "Se finalizará la ejecución de la aplicación."));
    EXPECT_EQ(m_mensajes.titulos[0], QStringLiteral("Configuración de Idioma"));
    EXPECT_TRUE(m_mensajes.detalles[0].contains(QStringLiteral(" - ")));
    EXPECT_EQ(Idioma::resLoad(0), QString());
    EXPECT_EQ(Idioma::Cuenta(), 0);

    EXPECT_EQ(Idioma::NombreComponente(QStringLiteral("lum01"), 12), QStringLiteral("LNG_TCO_012.clsResources"));
}

} // namespace
