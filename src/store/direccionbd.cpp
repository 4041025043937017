#include "direccionbd.h"

#include <QUrl>
#include <QUrlQuery>

bool DireccionBD::valida() const
{
    return motor == Motor::SQLite ? !archivo.isEmpty() : !base.isEmpty();
}

bool DireccionBD::EsquemaValido(const QString &esquema)
{
    // A plain name only: it goes into the connection's options, where ";" or "=" would
    // start another option (another database, another user).
    if (esquema.isEmpty())
        return true;
    if (!(esquema.at(0).isLetter() || esquema.at(0) == u'_'))
        return false;
    for (QChar c : esquema)
        if (!(c.isLetterOrNumber() || c == u'_'))
            return false;
    return esquema.size() <= 63;
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
    d.usuario = url.userName(QUrl::FullyDecoded);
    d.clave = url.password(QUrl::FullyDecoded);
    d.servidor = url.host();
    d.puerto = url.port(5432);
    d.base = url.path().mid(1);
    const QUrlQuery consulta(url);
    if (consulta.hasQueryItem(QStringLiteral("host")))
        d.servidor = consulta.queryItemValue(QStringLiteral("host"), QUrl::FullyDecoded);
    if (consulta.hasQueryItem(QStringLiteral("port")))
        d.puerto = consulta.queryItemValue(QStringLiteral("port")).toInt();
    if (consulta.hasQueryItem(QStringLiteral("user")))
        d.usuario = consulta.queryItemValue(QStringLiteral("user"), QUrl::FullyDecoded);
    if (consulta.hasQueryItem(QStringLiteral("password")))
        d.clave = consulta.queryItemValue(QStringLiteral("password"), QUrl::FullyDecoded);
    d.esquema = consulta.queryItemValue(QStringLiteral("schema"), QUrl::FullyDecoded);
    return d;
}
