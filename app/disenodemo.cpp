#include "disenodemo.h"

#include "currency/catalogomonedas.h"
#include "entries/asientosgrilla.h"
#include "entries/vistas.h"
#include "shell/idioma.h"
#include "shell/sesion.h"
#include "store/basedemo.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

void SembrarDisenosDemo(Conexion &conexion, const QString &carpeta, const QList<int> &usuarios)
{
    const auto catalogo = ComponenteIdioma::Crear(Idioma::NombreComponente(QStringLiteral("LUM01"), 1));
    auto texto = [&catalogo](int n) {
        QString t;
        if (catalogo)
            catalogo->resLoad(n, t);
        return t;
    };

    ParametrosSistema parametros;
    ConfigEmpresa empresa;
    bool leida = false;
    if (CargarParametrosSistema(conexion, parametros) || LeerConfigEmpresa(conexion, Demo::kEmpresa, empresa, leida) || !leida)
        return;
    CatalogoMonedas monedas;
    monedas.CargarMonedas(conexion);
    monedas.FijarMonedaContabilidad(empresa.monedaContabilidad);

    ContextoAsientos ctx;
    ctx.monedas = &monedas;
    ctx.monedaContabilidad = empresa.monedaContabilidad;
    ctx.mostrarCodigoCta = empresa.mostrarCodigoCta;
    ctx.texto = texto;
    ctx.fuente = QApplication::font();
    ctx.empresa = Demo::kEmpresa;
    ctx.delimitadorFecha = parametros.delimitadorFecha;
    ctx.patronFecha = parametros.formatoFecha;

    Grilla grilla;
    PrepararGrillaAsientos(grilla, texto(1060));
    const QString mascara = monedas.DatoMoneda(0, 4).toString();
    grilla.FijarFormatoColumna(2, mascara);
    grilla.FijarFormatoColumna(3, mascara);
    AsientosGrilla asientos(grilla, ctx);
    const QDate hoy = QDate::currentDate();
    if (CargarAsientos(asientos, conexion, Vista::kPrimerMes, QString(), hoy, QDate(hoy.year(), hoy.month(), 1)))
        return;

    for (int usuario : usuarios) {
        const QString ruta = QDir(carpeta).filePath(QStringLiteral("lg%1a.tgr").arg(usuario));
        if (!QFileInfo::exists(ruta))
            grilla.Guardar(ruta);
    }
}
