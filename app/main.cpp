#include "opciones.h"
#include "ventanahost.h"

#include "editing/sesion.h"
#include "exportacionlinea.h"
#include "services/serviciopermisos.h"
#include "services/servicioconexion.h"
#include "shell/idioma.h"
#include "store/basedelprograma.h"
#include "store/copiabase.h"
#include "store/reloj.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>

#include <QTextStream>

#include <cstdio>
#include <memory>
#include <tuple>

namespace {

// The demo database of the user's data folder, made on first run. It is built under
// another name and renamed when complete, so an interrupted first run leaves no half file.
QString BaseDemo(const QString &carpeta, int idioma, QString &error)
{
    const QString ruta = QDir(carpeta).filePath(QStringLiteral("demo.sqlite"));
    if (QFile::exists(ruta))
        return ruta;
    const QString provisoria = ruta + QStringLiteral(".nueva");
    QFile::remove(provisoria);
    const Inicializacion r = InicializarBase(provisoria, true, Reloj().Hoy());
    if (r.resultado != Inicializacion::Resultado::Creada) {
        error = r.informe;
        QFile::remove(provisoria);
        return {};
    }
    if (!QFile::rename(provisoria, ruta)) {
        error = OpcionesHost::Texto(idioma, 2176).arg(ruta);
        return {};
    }
    return ruta;
}

// --exportar: the entries asked for, loaded and written without a window. Exit status 0
// done, 1 failed, 2 a bad request.
int ExportarSinVentana(const OpcionesHost &o, const QString &baseDatos, const QString &archivoAjustes)
{
    QTextStream errores(stderr);
    // Everything is said in the language asked for.
    const int idioma = o.idioma > 0 ? o.idioma : 1;
    Idioma::AplicarAlProceso(idioma);
    const std::shared_ptr<ComponenteIdioma> catalogo(
        ComponenteIdioma::Crear(Idioma::NombreComponente(QStringLiteral("LUM01"), idioma)).release());
    if (!catalogo) {
        // Without the catalogue there are no words in that language to say it with.
        errores << QStringLiteral("No se encontraron los textos del idioma %1.").arg(idioma) << Qt::endl;
        return 1;
    }
    auto texto = [catalogo](int numero) {
        QString t;
        catalogo->resLoad(numero, t);
        return t;
    };
    PedidoExportacion pedido;
    pedido.archivo = o.exportar;
    pedido.edicion = NombreEdicion(QLatin1String(OpcionesHost::kClaveSesion));
    if (!o.vista.isEmpty()) {
        bool ok = false;
        pedido.vista = o.vista.toInt(&ok);
        if (!ok) {
            errores << texto(2150).arg(QStringLiteral("--vista"), o.vista) << Qt::endl;
            return 2;
        }
    }
    if (!o.mes.isEmpty()) {
        pedido.mes = QDate::fromString(o.mes + QStringLiteral("-01"), Qt::ISODate);
        if (!pedido.mes.isValid()) {
            errores << texto(2171).arg(o.mes) << Qt::endl;
            return 2;
        }
    }
    for (const auto &[valor, destino, nombre] : {std::tuple{o.desde, &pedido.criterios.prmFInit, "--desde"},
                                                 std::tuple{o.hasta, &pedido.criterios.prmFEnd, "--hasta"}}) {
        if (valor.isEmpty())
            continue;
        if (!QDate::fromString(valor, Qt::ISODate).isValid()) {
            errores << texto(2172).arg(QString::fromLatin1(nombre), valor) << Qt::endl;
            return 2;
        }
        *destino = valor;
    }
    pedido.cuenta = o.cuenta.trimmed();
    pedido.criterios.prmLeyenda = o.leyenda;
    pedido.hayCriterios = !o.desde.isEmpty() || !o.hasta.isEmpty() || !o.cuenta.isEmpty() || !o.leyenda.isEmpty();
    pedido.criterios.FindOK = pedido.hayCriterios;
    if (const QString malo = pedido.Validar(texto); !malo.isEmpty()) {
        errores << malo << Qt::endl;
        return 2;
    }

    AjustesConexion ajustes;
    ajustes.archivoAjustes = archivoAjustes;
    const ServicioConexion servicio(ajustes);
    pedido.formatoFecha = servicio.FormatoFecha(0);
    auto abierta = ConexionDelPrograma(baseDatos);
    if (!abierta) {
        errores << texto(2173) << abierta.fallo().detalle << Qt::endl;
        return 1;
    }
    const auto conexion = std::move(*abierta);
    // The command line admits whom the window admits: no file for anyone else.
    ServicioPermisos permisos(*conexion, o.usuario);
    const auto letras = permisos.Permisos(QString(), kModuloAsientos, o.empresa);
    if (!letras) {
        errores << texto(2173) << letras.fallo().detalle << Qt::endl;
        conexion->Cerrar();
        return 1;
    }
    if (!PuedeEntrar(letras->trimmed())) {
        errores << texto(2174).arg(o.usuario).arg(o.empresa)
                << Qt::endl;
        conexion->Cerrar();
        return 1;
    }
    const int estado = ExportarDesdeLinea(pedido, *conexion, o.empresa, texto, errores,
                                          [&errores](const QString &linea) { errores << linea << Qt::endl; });
    conexion->Cerrar();
    return estado;
}

} // namespace

int main(int argc, char *argv[])
{
    // The command line is read before the application exists: help, version and a bad
    // option need no display, and an export runs without a window.
    QStringList argumentos;
    for (int i = 0; i < argc; ++i)
        argumentos << QString::fromLocal8Bit(argv[i]);
    const OpcionesHost opciones = OpcionesHost::Leer(argumentos);
    if (opciones.ayuda) {
        std::fputs(qPrintable(OpcionesHost::Uso(opciones.idioma)), stdout);
        return 0;
    }
    if (opciones.version) {
        std::printf("asientos %s\n", ASIENTOS_VERSION);
        return 0;
    }
    if (!opciones.error.isEmpty()) {
        std::fprintf(stderr, "%s\n%s", qPrintable(opciones.error), qPrintable(OpcionesHost::Uso(opciones.idioma)));
        return 2;
    }
    if (opciones.inicializar) {
        const QCoreApplication nucleo(argc, argv);
        const Inicializacion r = InicializarBase(opciones.baseDatos, !opciones.sinDemo, Reloj().Hoy());
        const bool bien = r.resultado == Inicializacion::Resultado::Creada || r.resultado == Inicializacion::Resultado::YaExistia;
        std::fprintf(bien ? stdout : stderr, "%s\n", qPrintable(r.informe));
        return bien ? 0 : 1;
    }
    if (opciones.copiar) {
        const QCoreApplication nucleo(argc, argv);
        // The copy says one line; the driver's own remarks on a failed statement are not it.
        qInstallMessageHandler([](QtMsgType tipo, const QMessageLogContext &, const QString &texto) {
            if (tipo == QtFatalMsg) {
                std::fprintf(stderr, "%s\n", qPrintable(texto));
                std::abort();
            }
        });
        const CopiaBase r = CopiarBase(opciones.baseDatos, opciones.copiarA);
        std::fprintf(r.hecha ? stdout : stderr, "%s\n", qPrintable(r.informe));
        return r.hecha ? 0 : 1;
    }
    if (!opciones.exportar.isEmpty() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // A CSV file or a workbook is written without a display: no platform to load.
    PedidoExportacion formato;
    formato.archivo = opciones.exportar;
    std::unique_ptr<QCoreApplication> app;
    if (!opciones.exportar.isEmpty() && formato.SinFuentes())
        app = std::make_unique<QCoreApplication>(argc, argv);
    else
        app = std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("asientos"));
    QCoreApplication::setOrganizationName(QStringLiteral("asientos"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ASIENTOS_VERSION));

    const QString carpetaDatos = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(carpetaDatos);
    const QString archivoAjustes = opciones.ajustes.isEmpty()
        ? QDir(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)).filePath(QStringLiteral("asientos.ini"))
        : opciones.ajustes;

    QString errorDemo;
    const QString baseDatos = opciones.baseDatos.isEmpty() ? BaseDemo(carpetaDatos, opciones.idioma, errorDemo) : opciones.baseDatos;
    if (!opciones.exportar.isEmpty()) {
        if (!errorDemo.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(OpcionesHost::Texto(opciones.idioma, 2175).arg(errorDemo)));
            return 1;
        }
        return ExportarSinVentana(opciones, baseDatos, archivoAjustes);
    }

    const bool captura = !opciones.captura.isEmpty();
    VentanaHost ventana(opciones, baseDatos, archivoAjustes, carpetaDatos, captura);
    if (!errorDemo.isEmpty())
        ventana.MostrarError(OpcionesHost::Texto(opciones.idioma, 2175).arg(errorDemo));
    ventana.show();
    // The document would start from the event loop; starting it here, after show() has
    // returned, lets a screenshot be taken once it has.
    ventana.documento()->Iniciar();
    ventana.AsignarTitulo();

    if (captura) {
        // Queued behind what the document sent the host during start-up, so the host has
        // acted on it; what that posted in turn (layouts, the window's activation and the
        // focus it brings) is done before the picture.
        QTimer::singleShot(0, &ventana, [&ventana, &opciones] {
            QCoreApplication::processEvents();
            const bool ok = ventana.grab().save(opciones.captura);
            if (!ok)
                std::fprintf(stderr, "no se pudo guardar %s\n", qPrintable(opciones.captura));
            QApplication::exit(ok ? 0 : 1);
        });
    }
    return QApplication::exec();
}
