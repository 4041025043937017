#include "parametroshost.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>
#include <limits>

namespace {

const QString kTipos = QStringLiteral("No coinciden los tipos");
const QString kDesbordamiento = QStringLiteral("Desbordamiento");
const QString kSubindice = QStringLiteral("Subíndice fuera del intervalo");

bool esMarcaDelHost(const QString &par)
{
    return par.contains(QLatin1String("[prmprm]"), Qt::CaseInsensitive)
        || par.contains(QLatin1String("%5Bprmprm%5D"), Qt::CaseInsensitive);
}

} // namespace

QString ExtraerParametrosHost(const QString &baseHRef)
{
    static const QRegularExpression interrogacion(QStringLiteral("%3F"), QRegularExpression::CaseInsensitiveOption);
    QString direccion = baseHRef;
    direccion.replace(interrogacion, QStringLiteral("?"));
    const qsizetype pos = direccion.indexOf(QLatin1Char('?'));
    return pos < 0 ? direccion : direccion.mid(pos + 1);
}

std::optional<qint64> ConvertirEntero(const QString &texto, qint64 minimo, qint64 maximo, QString &error)
{
    bool ok = false;
    const double valor = texto.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(valor)) {
        error = kTipos;
        return std::nullopt;
    }
    const double redondeado = std::nearbyint(valor); // the default mode rounds halves to even
    if (redondeado < double(minimo) || redondeado > double(maximo)) {
        error = kDesbordamiento;
        return std::nullopt;
    }
    return qint64(redondeado);
}

LecturaHost LeerParametrosHost(const QString &parametros, DatosHost &datos)
{
    LecturaHost lectura;
    QString texto = parametros;
    texto.replace(QLatin1String("%7C"), QLatin1String("|"));

    for (const QString &par : texto.split(QLatin1Char('|'))) {
        const QStringList partes = par.split(QLatin1Char('='));
        const QString clave = partes.first().trimmed().toLower();
        const bool conValor = partes.size() > 1;
        const QString valor = conValor ? partes.at(1) : QString();

        static const QStringList claves{
            QStringLiteral("psidusuario"), QStringLiteral("psidempresa"), QStringLiteral("psnombreempresa"),
            QStringLiteral("psckey"),      QStringLiteral("pskeyinit"),   QStringLiteral("pstempdir"),
            QStringLiteral("pshacerasi")};
        const qsizetype cual = claves.indexOf(clave);
        if (cual < 0) {
            if (!par.trimmed().isEmpty() && !esMarcaDelHost(par))
                datos.SolicitudPendiente = par;
            continue;
        }
        if (!conValor) {
            lectura.error = kSubindice;
            return lectura;
        }
        switch (cual) {
        case 0: {
            const auto n = ConvertirEntero(valor, std::numeric_limits<qint16>::min(),
                                           std::numeric_limits<qint16>::max(), lectura.error);
            if (!n)
                return lectura;
            datos.IDUsuario = qint16(*n);
            break;
        }
        case 1: {
            const auto n = ConvertirEntero(valor, std::numeric_limits<qint32>::min(),
                                           std::numeric_limits<qint32>::max(), lectura.error);
            if (!n)
                return lectura;
            datos.IDEmpresa = qint32(*n);
            break;
        }
        case 2:
            datos.NombreEmpresa = valor;
            break;
        case 3:
            datos.ClaveSesion = valor;
            break;
        case 4:
            datos.PrefijoUsuario = valor;
            break;
        case 5:
            datos.CarpetaTemporal = QString(valor).replace(QLatin1String("%20"), QLatin1String(" "))
                                                  .replace(QLatin1Char('/'), QLatin1Char('\\'));
            break;
        case 6:
            datos.PedidoAsientoApertura = valor.toLower() == QLatin1String("si");
            break;
        }
    }
    lectura.exito = datos.IDEmpresa != 0;
    return lectura;
}

std::optional<qint32> IdAsientoPendiente(const QString &solicitud)
{
    static const QLatin1String clave("prmidasi=");
    if (!solicitud.toLower().startsWith(clave))
        return std::nullopt;
    QString resto = solicitud;
    resto.remove(clave, Qt::CaseInsensitive);
    QString error;
    const auto id = ConvertirEntero(resto, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), error);
    if (!id || resto.trimmed().isEmpty())
        return std::nullopt;
    return qint32(*id);
}
