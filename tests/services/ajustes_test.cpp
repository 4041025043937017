#include "comun/sinesperar.h"
#include "services/servicioconexion.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

QStringList avisos;

void guardarAviso(QtMsgType tipo, const QMessageLogContext &, const QString &texto)
{
    if (tipo == QtWarningMsg)
        avisos << texto;
}

// Only a regular settings file (or none) is read. A link to a good one, a FIFO or a folder
// reads as the defaults, at once, with one warning naming it however many settings are read.
TEST(ArchivoDeAjustes, SoloSeLeeUnArchivoComun)
{
    QTemporaryDir dir;
    const QString comun = dir.filePath(QStringLiteral("ajustes.ini"));
    QFile f(comun);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("[General]\nFormatoFecha1=yyyy-mm-dd\nEsquemaColor=3\n");
    f.close();
    const QString enlace = dir.filePath(QStringLiteral("enlace.ini"));
    const QString fifo = dir.filePath(QStringLiteral("fifo.ini"));
    const QString carpeta = dir.filePath(QStringLiteral("carpeta.ini"));
    ASSERT_TRUE(QFile::link(comun, enlace));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("carpeta.ini")));

    const QtMessageHandler anterior = qInstallMessageHandler(guardarAviso);
    EXPECT_EQ(ServicioConexion({comun, {}, {}}).FormatoFecha(1), QStringLiteral("yyyy-mm-dd"));
    EXPECT_EQ(ServicioConexion({dir.filePath(QStringLiteral("no-existe.ini")), {}, {}}).FormatoFecha(1),
              QStringLiteral("dd/mm/yyyy"));
    EXPECT_TRUE(avisos.isEmpty()) << avisos.join(QLatin1Char('\n')).toStdString(); // a missing file is no fault
    for (const QString &ruta : {enlace, fifo, carpeta}) {
        avisos.clear();
        const ServicioConexion servicio({ruta, {}, {}});
        const auto leidos = sinQuedarseEsperando(fifo, [&] {
            return QStringList{servicio.FormatoFecha(1), QString::number(servicio.EsquemaColor(Qt::white))};
        });
        EXPECT_EQ(leidos, (QStringList{QStringLiteral("dd/mm/yyyy"), QStringLiteral("1")})) << ruta.toStdString();
        EXPECT_TRUE(avisos.size() == 1 && avisos[0].contains(ruta)) << avisos.join(QLatin1Char('\n')).toStdString();
    }
    qInstallMessageHandler(anterior);

    // With no scheme chosen, a button face darker than the middle grey means the dark scheme.
    const ServicioConexion sinEsquema({dir.filePath(QStringLiteral("no-existe.ini")), {}, {}});
    EXPECT_EQ(sinEsquema.EsquemaColor(QColor::fromHsl(0, 0, 127)), 2);
    EXPECT_EQ(sinEsquema.EsquemaColor(QColor::fromHsl(0, 0, 128)), 1);
}

} // namespace
