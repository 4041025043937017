#include "servicioconexion.h"

#include "store/conexionqt.h"

#include <QSettings>

ServicioConexion::ServicioConexion(AjustesConexion ajustes)
    : m_ajustes(std::move(ajustes))
{
}

QString ServicioConexion::leer(const QString &clave) const
{
    const auto forzado = m_ajustes.forzados.constFind(clave);
    if (forzado != m_ajustes.forzados.constEnd())
        return *forzado;
    if (m_ajustes.archivoAjustes.isEmpty())
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

std::unique_ptr<Conexion> ServicioConexion::AbrirConexion(const QString &claveSesion, int modo)
{
    Q_UNUSED(claveSesion)
    Q_UNUSED(modo)
    m_ultimoError.clear();
    QString direccion = m_ajustes.baseDatos;
    if (direccion.isEmpty())
        direccion = leer(QStringLiteral("BaseDatos"));
    try {
        return ConexionQt::Abrir(DireccionBD::Leer(direccion));
    } catch (const ErrorBaseDatos &e) {
        m_ultimoError = e.descripcion();
        return nullptr;
    }
}
