#include "opciones.h"

#include "shell/idioma.h"

#include <QCryptographicHash>
#include <QFile>

namespace {
bool numero(const QString &texto, int &valor)
{
    bool ok = false;
    valor = texto.toInt(&ok);
    return ok;
}
} // namespace

OpcionesHost OpcionesHost::Leer(const QStringList &argumentos)
{
    OpcionesHost o;
    // A fault is told in the language asked for, wherever --lang stands.
    int idioma = 0;
    const qsizetype lang = argumentos.indexOf(QStringLiteral("--lang"));
    if (lang > 0 && lang + 1 < argumentos.size())
        numero(argumentos.at(lang + 1), idioma);
    o.idioma = idioma;
    auto texto = [idioma](int n) { return Texto(idioma, n); };
    for (qsizetype i = 1; i < argumentos.size(); ++i) {
        const QString a = argumentos.at(i);
        auto valor = [&](QString &destino) {
            if (i + 1 >= argumentos.size()) {
                o.error = texto(2148).arg(a);
                return false;
            }
            destino = argumentos.at(++i);
            return true;
        };
        QString v;
        if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            o.ayuda = true;
        } else if (a == QLatin1String("--version")) {
            o.version = true;
        } else if (a == QLatin1String("--inicializar")) {
            o.inicializar = true;
        } else if (a == QLatin1String("--sin-demo")) {
            o.sinDemo = true;
        } else if (a == QLatin1String("--opening")) {
            o.apertura = true;
        } else if (a == QLatin1String("--db")) {
            valor(o.baseDatos);
        } else if (a == QLatin1String("--asiento")) {
            valor(o.asiento);
        } else if (a == QLatin1String("--temp")) {
            valor(o.carpetaTemporal);
        } else if (a == QLatin1String("--prefix")) {
            valor(o.prefijo);
        } else if (a == QLatin1String("--href")) {
            valor(o.href);
        } else if (a == QLatin1String("--screenshot")) {
            valor(o.captura);
        } else if (a == QLatin1String("--settings")) {
            valor(o.ajustes);
        } else if (a == QLatin1String("--copiar-a")) {
            o.copiar = valor(o.copiarA);
        } else if (a == QLatin1String("--exportar")) {
            if (valor(o.exportar) && o.exportar.trimmed().isEmpty())
                o.error = texto(2149);
        } else if (a == QLatin1String("--vista")) {
            valor(o.vista);
        } else if (a == QLatin1String("--mes")) {
            valor(o.mes);
        } else if (a == QLatin1String("--desde")) {
            valor(o.desde);
        } else if (a == QLatin1String("--hasta")) {
            valor(o.hasta);
        } else if (a == QLatin1String("--cuenta")) {
            valor(o.cuenta);
        } else if (a == QLatin1String("--leyenda")) {
            valor(o.leyenda);
        } else if (a == QLatin1String("--user") || a == QLatin1String("--company") || a == QLatin1String("--lang")) {
            if (!valor(v))
                break;
            int n = 0;
            if (!numero(v, n)) {
                o.error = texto(2150).arg(a, v);
                break;
            }
            (a == QLatin1String("--user") ? o.usuario : a == QLatin1String("--company") ? o.empresa : o.idioma) = n;
        } else {
            o.error = texto(2151).arg(a);
        }
        if (!o.error.isEmpty())
            break;
    }
    if (o.error.isEmpty() && o.sinDemo && !o.inicializar)
        o.error = texto(2152);
    if (o.error.isEmpty() && o.inicializar && o.baseDatos.isEmpty())
        o.error = texto(2153);
    if (o.error.isEmpty() && o.copiar && o.copiarA.trimmed().isEmpty())
        o.error = texto(2154);
    if (o.error.isEmpty() && o.copiar && o.baseDatos.isEmpty())
        o.error = texto(2155);
    if (o.error.isEmpty() && o.copiar && (o.inicializar || !o.exportar.isEmpty()))
        o.error = texto(2156);
    return o;
}

QString OpcionesHost::Uso(int idioma)
{
    return Texto(idioma, 2110);
}

QString OpcionesHost::Texto(int idioma, int numero)
{
    QFile f(QStringLiteral(":/lang/LNG_TCO_%1.txt").arg(idioma == 2 ? 2 : 1, 3, 10, QLatin1Char('0')));
    return f.open(QIODevice::ReadOnly) ? ComponenteIdioma::LeerCatalogo(f.readAll()).value(numero) : QString();
}

QString OpcionesHost::PrefijoPorDefecto() const
{
    if (baseDatos.isEmpty() && empresa == 1)
        return QString::number(usuario);
    const QByteArray clave = (baseDatos + QLatin1Char('|') + QString::number(empresa)).toUtf8();
    return QStringLiteral("%1_%2").arg(usuario).arg(QString::fromLatin1(QCryptographicHash::hash(clave, QCryptographicHash::Sha1).toHex().left(8)));
}

QString OpcionesHost::DireccionBase(const QString &carpetaTemporalPorDefecto) const
{
    if (!href.isEmpty())
        return href;
    QStringList pares;
    pares << QStringLiteral("psidusuario=%1").arg(usuario) << QStringLiteral("psidempresa=%1").arg(empresa)
          << QStringLiteral("psckey=") + QLatin1String(kClaveSesion)
          << QStringLiteral("pskeyinit=") + (prefijo.isEmpty() ? PrefijoPorDefecto() : prefijo)
          << QStringLiteral("pstempdir=")
                 + QString(carpetaTemporal.isEmpty() ? carpetaTemporalPorDefecto : carpetaTemporal)
                       .replace(QLatin1Char(' '), QLatin1String("%20"));
    if (apertura)
        pares << QStringLiteral("pshacerasi=si");
    if (!asiento.isEmpty())
        pares << QStringLiteral("prmidasi=") + asiento;
    return QStringLiteral("lumapp://asientos/ingreso.htm?") + pares.join(QLatin1Char('|'));
}
