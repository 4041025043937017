// The reference for the start-up benchmark: a bare Qt window as a user would see it first, a
// main window with a menu bar and an empty table, shown and painted once, then saved to a PNG
// of the given size, as `asientos --screenshot` does, and the program ends.
// ventana_desnuda ARCHIVO.png [ANCHO ALTO]
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QPixmap>
#include <QTableWidget>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList argumentos = QCoreApplication::arguments();
    if (argumentos.size() < 2) {
        std::fprintf(stderr, "uso: ventana_desnuda ARCHIVO.png [ANCHO ALTO]\n");
        return 2;
    }
    const int ancho = argumentos.size() > 3 ? argumentos.at(2).toInt() : 1100;
    const int alto = argumentos.size() > 3 ? argumentos.at(3).toInt() : 700;
    QMainWindow ventana;
    ventana.setWindowTitle(QStringLiteral("Ventana"));
    for (const char *menu : {"&Archivo", "&Edición", "&Ver", "A&yuda"})
        ventana.menuBar()->addMenu(QString::fromUtf8(menu))->addAction(QStringLiteral("Salir"));
    auto *tabla = new QTableWidget(20, 6, &ventana);
    ventana.setCentralWidget(tabla);
    ventana.resize(ancho, alto);
    ventana.show();
    // As the program takes its screenshot: once the window's activation is processed, painted
    // by grab() and saved the same way.
    QTimer::singleShot(0, &ventana, [&] {
        QCoreApplication::processEvents();
        QApplication::exit(ventana.grab().save(argumentos.at(1)) ? 0 : 1);
    });
    return app.exec();
}
