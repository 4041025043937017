#include "idioma.h"

#include "services/servicioconexion.h"
#include "services/serviciomensajes.h"

#include <QApplication>
#include <QCoreApplication>
#include <QWidget>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <limits>

namespace {

struct Compartido
{
    std::unique_ptr<ComponenteIdioma> componente;
    int cuenta = 0;
    int idioma = 0;
    bool aplicarAlProceso = false;
    std::unique_ptr<QTranslator> traduccionQt;
};

Compartido &compartido()
{
    static Compartido c;
    return c;
}

QString desescapar(QStringView t)
{
    QString out;
    out.reserve(t.size());
    for (qsizetype i = 0; i < t.size(); ++i) {
        if (t[i] != u'\\' || i + 1 == t.size()) {
            out += t[i];
            continue;
        }
        const QChar c = t[++i];
        if (c == u'r')
            out += QChar(u'\r');
        else if (c == u'n')
            out += QChar(u'\n');
        else if (c == u't')
            out += QChar(u'\t');
        else
            out += c;
    }
    return out;
}

QString prefijo(const QString &codigoAplicacion)
{
    return codigoAplicacion.toUpper() == QLatin1String("LUM04") ? QStringLiteral("LNG_TFA_")
                                                                 : QStringLiteral("LNG_TCO_");
}

// The number as an 8-bit value, as the suite converts a setting; non-numeric text is 0.
quint8 numero8(const QString &texto)
{
    bool ok = false;
    const int n = texto.trimmed().toInt(&ok);
    return ok && n >= 0 && n <= 255 ? quint8(n) : 0;
}

} // namespace

QHash<int, QString> ComponenteIdioma::LeerCatalogo(const QByteArray &contenido)
{
    QHash<int, QString> textos;
    const QString todo = QString::fromUtf8(contenido);
    for (QStringView linea : QStringView(todo).split(u'\n')) {
        if (linea.endsWith(u'\r'))
            linea.chop(1);
        if (linea.isEmpty() || linea.startsWith(u'#'))
            continue;
        const qsizetype tab = linea.indexOf(u'\t');
        if (tab <= 0)
            continue;
        bool ok = false;
        const int numero = linea.left(tab).toInt(&ok);
        if (ok)
            textos.insert(numero, desescapar(linea.mid(tab + 1)));
    }
    return textos;
}

std::unique_ptr<ComponenteIdioma> ComponenteIdioma::Crear(const QString &nombreComponente)
{
    static const QString sufijo = QStringLiteral(".clsResources");
    if (!nombreComponente.endsWith(sufijo, Qt::CaseInsensitive))
        return nullptr;
    QFile archivo(QStringLiteral(":/lang/") + nombreComponente.chopped(sufijo.size()) + QStringLiteral(".txt"));
    if (!archivo.open(QIODevice::ReadOnly))
        return nullptr;
    auto componente = std::make_unique<ComponenteIdioma>();
    componente->m_textos = LeerCatalogo(archivo.readAll());
    if (componente->m_textos.isEmpty())
        return nullptr;
    return componente;
}

bool ComponenteIdioma::resLoad(int numero, QString &texto) const
{
    const auto it = m_textos.constFind(numero);
    if (it == m_textos.constEnd())
        return false;
    texto = *it;
    return true;
}

namespace Idioma {

QString NombreComponente(const QString &codigoAplicacion, int idioma)
{
    return prefijo(codigoAplicacion) + QStringLiteral("%1").arg(idioma, 3, 10, QLatin1Char('0'))
         + QStringLiteral(".clsResources");
}

int CrearComponenteIdioma(const QString &codigoAplicacion, const QString &nombreAplicacion,
                          const ServicioConexion &conexion, ServicioMensajes &mensajes)
{
    int idioma = numero8(conexion.LeerAjusteAplicacion(codigoAplicacion, QStringLiteral("Idioma")));
    const quint8 secundario = numero8(conexion.LeerAjusteAplicacion(codigoAplicacion, QStringLiteral("Idioma2")));
    if (idioma == 0)
        idioma = 1;
    mensajes.FijarIdioma(idioma);

    Compartido &c = compartido();
    if (c.aplicarAlProceso)
        AplicarAlProceso(idioma);
    c.componente.reset();

    const QString nombre = NombreComponente(codigoAplicacion, idioma);
    c.componente = ComponenteIdioma::Crear(nombre);
    if (!c.componente) {
        const QString numero = QStringLiteral("%1").arg(idioma, 3, 10, QLatin1Char('0'));
        mensajes.MostrarError(QStringLiteral("Falta el componente de idioma: ") + prefijo(codigoAplicacion) + numero
                                  + QStringLiteral(".dll\r\nSe finalizará la ejecución de la aplicación."),
                              QStringLiteral("Configuración de Idioma"),
                              DetalleError(429, QStringLiteral("No se puede crear el componente ") + nombre));
        return 0;
    }
    c.idioma = idioma;
    c.componente->IDAppName = nombreAplicacion;
    c.componente->IDSLNG = secundario;
    ++c.cuenta;
    return 1;
}

QString resLoad(int n)
{
    const Compartido &c = compartido();
    if (!c.componente || n > std::numeric_limits<qint16>::max() - 1000)
        return {};
    QString texto;
    return c.componente->resLoad(n + 1000, texto) ? texto : QString();
}

void Liberar()
{
    Compartido &c = compartido();
    if (c.cuenta > 0 && --c.cuenta == 0)
        c.componente.reset();
}

QLocale LocaleDelPrograma(const QLocale &sistema, int idioma)
{
    if (sistema.language() != QLocale::C)
        return sistema;
    return idioma == 2 ? QLocale(QLocale::English, QLocale::UnitedStates) : QLocale(QLocale::Spanish, QLocale::Uruguay);
}

void AplicarAlProceso(int idioma)
{
    QLocale::setDefault(LocaleDelPrograma(QLocale::system(), idioma));
    // Windows made before take the new locale too (a widget reads numbers in its own, which
    // it got from its parent when it was made).
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        for (QWidget *ventana : QApplication::topLevelWidgets())
            if (!ventana->testAttribute(Qt::WA_SetLocale))
                ventana->unsetLocale();
    }
    Compartido &c = compartido();
    if (c.traduccionQt) {
        QCoreApplication::removeTranslator(c.traduccionQt.get());
        c.traduccionQt.reset();
    }
    // Qt speaks English by itself; Spanish comes from its translations, when installed.
    if (idioma == 2)
        return;
    auto traduccion = std::make_unique<QTranslator>();
    if (traduccion->load(QLocale(QLocale::Spanish), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath))
        && QCoreApplication::installTranslator(traduccion.get()))
        c.traduccionQt = std::move(traduccion);
}

void AplicarAlElegir(bool si)
{
    compartido().aplicarAlProceso = si;
}

int Numero()
{
    const Compartido &c = compartido();
    return c.componente ? c.idioma : 0;
}

const ComponenteIdioma *Actual()
{
    return compartido().componente.get();
}

int Cuenta()
{
    return compartido().cuenta;
}

} // namespace Idioma
