#include "sesion.h"

#include "services/serviciomensajes.h"
#include "store/valoressql.h"

const QString kModuloAsientos = QStringLiteral("PasajeAsientos");

bool TienePermiso(const QString &letras, QChar letra)
{
    return !letras.isEmpty() && letras.contains(letra, Qt::CaseInsensitive);
}

bool PuedeEntrar(const QString &letras)
{
    return TienePermiso(letras, u'Q') || TienePermiso(letras, u'A') || TienePermiso(letras, u'M') || TienePermiso(letras, u'E');
}

QString NombreEdicion(const QString &claveSesion)
{
    const QString clave = claveSesion.trimmed().toLower();
    if (clave == QLatin1String("lum01"))
        return QStringLiteral("Tarvo Contable");
    if (clave == QLatin1String("lum02"))
        return QStringLiteral("Tarvo Empresa");
    if (clave == QLatin1String("lum03"))
        return QStringLiteral("Tarvo Familia");
    return {};
}

QString FormatoQtDeFecha(const QString &formatoSuite)
{
    QString out;
    bool despuesDeHora = false;
    for (qsizetype i = 0; i < formatoSuite.size();) {
        const QChar lc = formatoSuite.at(i).toLower();
        qsizetype n = 1;
        while (i + n < formatoSuite.size() && formatoSuite.at(i + n).toLower() == lc)
            ++n;
        if (lc == u'm' && !despuesDeHora)
            out += QString(n, QLatin1Char('M'));
        else if (lc == u'n' || lc == u'm')
            out += QString(qMin<qsizetype>(n, 2), QLatin1Char('m'));
        else if (lc == u'd' || lc == u'y' || lc == u'h' || lc == u's')
            out += QString(n, lc);
        else
            out += formatoSuite.mid(i, n);
        despuesDeHora = lc == u'h' || (despuesDeHora && !lc.isLetter());
        i += n;
    }
    return out;
}
