#include "direccionbd.h"

#include <QUrl>
#include <QUrlQuery>

bool DireccionBD::valida() const
{
    return motor == Motor::SQLite ? !archivo.isEmpty() : !base.isEmpty();
}

DireccionBD DireccionBD::Leer(const QString &texto)
{
    DireccionBD d;
    const QString limpio = texto.trimmed();
    if (!limpio.startsWith(QLatin1String("postgresql://"), Qt::CaseInsensitive)
        && !limpio.startsWith(QLatin1String("postgres://"), Qt::CaseInsensitive)) {
        d.archivo = limpio;
        return d;
    }

    d.motor = Motor::PostgreSQL;
    const QUrl url(limpio);
    d.usuario = url.userName();
    d.clave = url.password();
    d.servidor = url.host();
    d.puerto = url.port(5432);
    d.base = url.path().mid(1);
    const QUrlQuery consulta(url);
    if (consulta.hasQueryItem(QStringLiteral("host")))
        d.servidor = consulta.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    if (consulta.hasQueryItem(QStringLiteral("port")))
        d.puerto = consulta.queryItemValue(QStringLiteral("port")).toInt();
    if (consulta.hasQueryItem(QStringLiteral("user")))
        d.usuario = consulta.queryItemValue(QStringLiteral("user"));
    d.esquema = consulta.queryItemValue(QStringLiteral("schema"));
    return d;
}
