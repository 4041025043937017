#include "comandoshost.h"

#include <QFile>

namespace ComandoHost {

const QString kMarco = QStringLiteral("centro");
const QString kAyudaIngreso = QStringLiteral("lumNav:navhelp?Main|asientos\\ingreso_de_asientos.htm");
const QString kAyudaSaldosIniciales = QStringLiteral("lumNav:navhelp?Main|asientos\\asiento_de_saldos_iniciales.htm");
const QString kAyudaBusqueda = QStringLiteral("lumNav:navhelp?Main|asientos\\busqueda_de_asientos.htm");

QString Error(const QString &texto)
{
    return QStringLiteral("lumcod:main_Error<prm>[prmErrDesc]:=") + texto + QStringLiteral("</prm>");
}

QString AccesoDenegado(const QString &nombreAplicacion)
{
    return QStringLiteral("lumcod:inf_AccesoDenegado<prm>[NombreApp]:=") + nombreAplicacion + QStringLiteral("</prm>");
}

Tipo TipoDe(const QString &direccion)
{
    if (direccion.startsWith(QLatin1String("lumcod:main_Error"), Qt::CaseInsensitive))
        return Tipo::Error;
    if (direccion.startsWith(QLatin1String("lumcod:inf_AccesoDenegado"), Qt::CaseInsensitive))
        return Tipo::AccesoDenegado;
    if (direccion.startsWith(QLatin1String("lumNav:navhelp"), Qt::CaseInsensitive))
        return Tipo::Ayuda;
    return Tipo::Otro;
}

QString Parametro(const QString &direccion)
{
    const qsizetype inicio = direccion.indexOf(QLatin1String("]:="));
    if (inicio < 0)
        return {};
    const qsizetype fin = direccion.lastIndexOf(QLatin1String("</prm>"));
    const qsizetype desde = inicio + 3;
    return direccion.mid(desde, (fin < desde ? direccion.size() : fin) - desde);
}

QString PaginaAyuda(const QString &direccion)
{
    const qsizetype barra = qMax(direccion.lastIndexOf(QLatin1Char('\\')), direccion.lastIndexOf(QLatin1Char('|')));
    return direccion.mid(barra + 1);
}

QString RecursoAyuda(const QString &pagina, int idioma)
{
    if (idioma == 2) {
        const QString ingles = QStringLiteral(":/help/en/") + pagina;
        if (QFile::exists(ingles))
            return ingles;
    }
    return QStringLiteral(":/help/") + pagina;
}

} // namespace ComandoHost
