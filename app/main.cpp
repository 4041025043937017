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
QString BaseDemo(const QString &carpeta, QString &error)
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
        error = QStringLiteral("no se pudo crear %1").arg(ruta);
        return {};
    }
    return ruta;
}

// --exportar: the entries asked for, loaded and written without a window. Exit status 0
// done, 1 failed, 2 a bad request.
int ExportarSinVentana(const OpcionesHost &o, const QString &baseDatos, const QString &archivoAjustes)
{
    QTextStream errores(stderr);
    PedidoExportacion pedido;
    pedido.archivo = o.exportar;
    pedido.edicion = NombreEdicion(QLatin1String(OpcionesHost::kClaveSesion));
    if (!o.vista.isEmpty()) {
        bool ok = false;
        pedido.vista = o.vista.toInt(&ok);
        if (!ok) {
            errores << QStringLiteral("--vista espera un número: %1").arg(o.vista) << Qt::endl;
            return 2;
        }
    }
    if (!o.mes.isEmpty()) {
        pedido.mes = QDate::fromString(o.mes + QStringLiteral("-01"), Qt::ISODate);
        if (!pedido.mes.isValid()) {
            errores << QStringLiteral("--mes espera AAAA-MM: %1").arg(o.mes) << Qt::endl;
            return 2;
        }
    }
    for (const auto &[texto, destino, nombre] : {std::tuple{o.desde, &pedido.criterios.prmFInit, "--desde"},
                                                 std::tuple{o.hasta, &pedido.criterios.prmFEnd, "--hasta"}}) {
        if (texto.isEmpty())
            continue;
        if (!QDate::fromString(texto, Qt::ISODate).isValid()) {
            errores << QStringLiteral("%1 espera una fecha AAAA-MM-DD: %2").arg(QString::fromLatin1(nombre), texto) << Qt::endl;
            return 2;
        }
        *destino = texto;
    }
    pedido.cuenta = o.cuenta.trimmed();
    pedido.criterios.prmLeyenda = o.leyenda;
    pedido.hayCriterios = !o.desde.isEmpty() || !o.hasta.isEmpty() || !o.cuenta.isEmpty() || !o.leyenda.isEmpty();
    pedido.criterios.FindOK = pedido.hayCriterios;
    if (const QString malo = pedido.Validar(); !malo.isEmpty()) {
        errores << malo << Qt::endl;
        return 2;
    }

    AjustesConexion ajustes;
    ajustes.archivoAjustes = archivoAjustes;
    const ServicioConexion servicio(ajustes);
    pedido.formatoFecha = servicio.FormatoFecha(0);
    const int idioma = o.idioma > 0 ? o.idioma : 1;
    Idioma::AplicarAlProceso(idioma);
    const std::shared_ptr<ComponenteIdioma> catalogo(
        ComponenteIdioma::Crear(Idioma::NombreComponente(QStringLiteral("LUM01"), idioma)).release());
    if (!catalogo) {
        errores << QStringLiteral("No se encontraron los textos del idioma %1.").arg(idioma) << Qt::endl;
        return 1;
    }
    auto texto = [catalogo](int numero) {
        QString t;
        catalogo->resLoad(numero, t);
        return t;
    };
    auto abierta = ConexionDelPrograma(baseDatos);
    if (!abierta) {
        errores << QStringLiteral("No se pudo abrir la base de datos: ") << abierta.fallo().detalle << Qt::endl;
        return 1;
    }
    const auto conexion = std::move(*abierta);
    // The command line admits whom the window admits: no file for anyone else.
    ServicioPermisos permisos(*conexion, o.usuario);
    const auto letras = permisos.Permisos(QString(), kModuloAsientos, o.empresa);
    if (!letras) {
        errores << QStringLiteral("No se pudo abrir la base de datos: ") << letras.fallo().detalle << Qt::endl;
        conexion->Cerrar();
        return 1;
    }
    if (!PuedeEntrar(letras->trimmed())) {
        errores << QStringLiteral("Acceso denegado: el usuario %1 no puede ver los asientos de la empresa %2.").arg(o.usuario).arg(o.empresa)
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
    // A CSV file is written without a display: no platform to load.
    PedidoExportacion formato;
    formato.archivo = opciones.exportar;
    std::unique_ptr<QCoreApplication> app;
    if (!opciones.exportar.isEmpty() && formato.SinPantalla())
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
    const QString baseDatos = opciones.baseDatos.isEmpty() ? BaseDemo(carpetaDatos, errorDemo) : opciones.baseDatos;
    if (!opciones.exportar.isEmpty()) {
        if (!errorDemo.isEmpty()) {
            std::fprintf(stderr, "No se pudo crear la base de demostración: %s\n", qPrintable(errorDemo));
            return 1;
        }
        return ExportarSinVentana(opciones, baseDatos, archivoAjustes);
    }

    const bool captura = !opciones.captura.isEmpty();
    VentanaHost ventana(opciones, baseDatos, archivoAjustes, carpetaDatos, captura);
    if (!errorDemo.isEmpty())
        ventana.MostrarError(QStringLiteral("No se pudo crear la base de demostración: ") + errorDemo);
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
