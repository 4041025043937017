#include "servicioconexion.h"

#include "store/archivoregular.h"
#include "store/basedelprograma.h"

#include <QMutex>
#include <QSet>
#include <QSettings>

namespace {

// The settings file is read only when it is a regular file or missing: reading a FIFO
// would hang the start-up and a link may lead anywhere. A refused file reads as empty (the
// defaults) and is reported once, not on every setting read from it.
bool ajustesLegibles(const QString &ruta)
{
    QString motivo;
    if (ArchivoRegularOAusente(ruta, &motivo))
        return true;
    static QMutex mutex;
    static QSet<QString> avisados;
    const QMutexLocker bloqueo(&mutex);
    if (!avisados.contains(ruta)) {
        avisados.insert(ruta);
        qWarning("Se ignora el archivo de ajustes %s: no es un archivo común (%s); se usan los valores por omisión",
                 qPrintable(ruta), qPrintable(motivo));
    }
    return false;
}

} // namespace

ServicioConexion::ServicioConexion(AjustesConexion ajustes)
    : m_ajustes(std::move(ajustes))
{
}

QString ServicioConexion::leer(const QString &clave) const
{
    const auto forzado = m_ajustes.forzados.constFind(clave);
    if (forzado != m_ajustes.forzados.constEnd())
        return *forzado;
    if (m_ajustes.archivoAjustes.isEmpty() || !ajustesLegibles(m_ajustes.archivoAjustes))
        return {};
    const QSettings archivo(m_ajustes.archivoAjustes, QSettings::IniFormat);
    return archivo.value(clave).toString();
}

QString ServicioConexion::LeerAjusteAplicacion(const QString &codigoAplicacion, const QString &nombre) const
{
    return leer(codigoAplicacion.toUpper() + QLatin1Char('/') + nombre);
}

QString ServicioConexion::LeerAjuste(const QString &nombre) const
{
    return leer(nombre);
}

int ServicioConexion::EsquemaColor(const QColor &porDefecto) const
{
    bool ok = false;
    const int esquema = leer(QStringLiteral("EsquemaColor")).toInt(&ok);
    if (ok)
        return esquema;
    // Without a chosen scheme, a dark button face means a dark desktop: use the dark scheme.
    return porDefecto.lightness() < 128 ? 2 : 1;
}

QColor ServicioConexion::ColorEsquema(int esquema, int numeroColor) const
{
    // Colour 13 is the background of the edit panels; the other numbers are the suite's.
    if (numeroColor != 13)
        return {};
    switch (esquema) {
    case 2:
        return QColor(0x3a, 0x40, 0x4a);
    case 3:
        return QColor(0xe8, 0xf0, 0xe0);
    default:
        return QColor(0xdd, 0xe4, 0xee);
    }
}

QString ServicioConexion::FormatoFecha(int numero) const
{
    const QString guardado = leer(QStringLiteral("FormatoFecha%1").arg(numero));
    return guardado.isEmpty() ? QStringLiteral("dd/mm/yyyy") : guardado;
}

std::optional<Fallo> ServicioConexion::AbrirConexion(const QString &claveSesion, int modo, std::unique_ptr<Conexion> &conexion) const
{
    Q_UNUSED(claveSesion)
    Q_UNUSED(modo)
    QString direccion = m_ajustes.baseDatos;
    if (direccion.isEmpty())
        direccion = leer(QStringLiteral("BaseDatos"));
    try {
        conexion = AbrirBaseDelPrograma(direccion, m_ajustes.esperaBloqueoMs);
        return std::nullopt;
    } catch (const ErrorBaseDatos &e) {
        return Fallo{905, e.descripcion(), true};
    }
}
