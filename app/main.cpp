#include "opciones.h"
#include "ventanahost.h"

#include "store/basedemo.h"
#include "store/conexionqt.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

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
    try {
        auto conexion = ConexionQt::Abrir(DireccionBD::Leer(provisoria), true);
        CrearBaseDemo(*conexion, QDate::currentDate());
        conexion->Ejecutar(QStringLiteral("PRAGMA journal_mode=DELETE"));
        conexion->Cerrar();
    } catch (const ErrorBaseDatos &e) {
        error = e.descripcion();
        QFile::remove(provisoria);
        return {};
    }
    if (!QFile::rename(provisoria, ruta)) {
        error = QStringLiteral("no se pudo crear %1").arg(ruta);
        return {};
    }
    return ruta;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("asientos"));
    QApplication::setOrganizationName(QStringLiteral("asientos"));
    QApplication::setApplicationVersion(QStringLiteral(ASIENTOS_VERSION));

    const OpcionesHost opciones = OpcionesHost::Leer(QApplication::arguments());
    if (opciones.ayuda) {
        std::fputs(qPrintable(OpcionesHost::Uso()), stdout);
        return 0;
    }
    if (opciones.version) {
        std::printf("asientos %s\n", ASIENTOS_VERSION);
        return 0;
    }
    if (!opciones.error.isEmpty()) {
        std::fprintf(stderr, "%s\n%s", qPrintable(opciones.error), qPrintable(OpcionesHost::Uso()));
        return 2;
    }

    const QString carpetaDatos = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(carpetaDatos);
    const QString archivoAjustes = opciones.ajustes.isEmpty()
        ? QDir(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)).filePath(QStringLiteral("asientos.ini"))
        : opciones.ajustes;

    QString errorDemo;
    const QString baseDatos = opciones.baseDatos.isEmpty() ? BaseDemo(carpetaDatos, errorDemo) : opciones.baseDatos;

    const bool captura = !opciones.captura.isEmpty();
    VentanaHost ventana(opciones, baseDatos, archivoAjustes, carpetaDatos, captura);
    if (!errorDemo.isEmpty())
        ventana.MostrarError(QStringLiteral("No se pudo crear la base de demostración: ") + errorDemo);
    ventana.show();
    // The document would start from the event loop; starting it here, after show() has
    // returned, lets a screenshot be taken once it has.
    ventana.documento()->Iniciar();

    if (captura) {
        // Let the host act on what the document sent during start-up first.
        QTimer::singleShot(300, &ventana, [&ventana, &opciones] {
            const bool ok = ventana.grab().save(opciones.captura);
            if (!ok)
                std::fprintf(stderr, "no se pudo guardar %s\n", qPrintable(opciones.captura));
            QApplication::exit(ok ? 0 : 1);
        });
    }
    return app.exec();
}
