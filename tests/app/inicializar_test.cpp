// Creating and copying a database from the command line, as a newcomer does, and a database
// the user may only read still opened. What a new database holds, and that a database of
// something else is left alone, the store's own tests check.
#include "comun/basesprueba.h"
#include "programa.h"

#include "store/conexionqt.h"
#include "store/esquema.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

QByteArray huella(const QString &archivo)
{
    QFile f(archivo);
    return f.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha1) : QByteArray();
}

// A table's rows as text, sorted, each value as both engines give it back alike: numbers
// to four decimals, dates and stamps in ISO form.
QStringList volcado(Conexion &c, const QString &tabla)
{
    static const QRegularExpression numero(QStringLiteral("^-?[0-9]+(\\.[0-9]+)?$"));
    QStringList filas;
    for (auto rs = c.Abrir(QStringLiteral("Select * From ") + tabla); !rs->Fin(); rs->MoverSiguiente()) {
        QStringList valores;
        for (int i = 0; i < rs->CantidadCampos(); ++i) {
            const QVariant v = rs->Campo(i);
            QString t = v.isNull()                              ? QStringLiteral("<nulo>")
                      : v.metaType().id() == QMetaType::QDateTime ? v.toDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"))
                      : v.metaType().id() == QMetaType::QDate   ? v.toDate().toString(Qt::ISODate)
                                                                : v.toString();
            if (numero.match(t).hasMatch())
                t = QString::number(t.toDouble(), 'f', 4);
            valores << t;
        }
        filas << valores.join(QLatin1Char('|'));
    }
    filas.sort();
    return filas;
}

class Inicializar : public ::testing::TestWithParam<Motor>
{
protected:
    Salida correr(const QStringList &argumentos) { return Correr(argumentos, m_carpeta.path()); }
    QTemporaryDir m_carpeta;
};

// With --sin-demo an empty company, which the export reads without failing; a second time
// nothing changes; a password given in the address is not repeated in the report.
TEST_P(Inicializar, CreaLaBaseUnaVezYDespuesNoCambiaNada)
{
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const QString db = GetParam() == Motor::SQLite ? m_carpeta.filePath(QStringLiteral("nueva.sqlite")) : vacia.direccion();
    Salida s = correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar"), QStringLiteral("--sin-demo")});
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    EXPECT_TRUE(s.salida.contains(QStringLiteral("creada con una empresa vacía"))) << s.salida.toStdString();

    s = correr({QStringLiteral("--db"), db, QStringLiteral("--exportar"), m_carpeta.filePath(QStringLiteral("x.csv")),
                QStringLiteral("--vista"), QStringLiteral("1")});
    EXPECT_EQ(s.estado, 0) << s.errores.toStdString();

    QString conClave = db;
    conClave.replace(QStringLiteral("postgresql://postgres@"), QStringLiteral("postgresql://postgres:nodecir@"));
    s = correr({QStringLiteral("--db"), conClave, QStringLiteral("--inicializar")});
    EXPECT_EQ(s.estado, 0);
    EXPECT_TRUE(s.salida.contains(QStringLiteral("ya tiene las tablas"))) << s.salida.toStdString();
    EXPECT_FALSE((s.salida + s.errores).contains(QStringLiteral("nodecir"))) << s.salida.toStdString();
}

// The books of a file copied to an empty database: every row alike, the numbering going on
// after the copied ids; a second copy is refused.
TEST_P(Inicializar, LosLibrosSeCopianAUnaBaseVacia)
{
    BaseDePrueba origen(Motor::SQLite, BaseDePrueba::Contenido::Demo);
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const QString db = GetParam() == Motor::SQLite ? m_carpeta.filePath(QStringLiteral("copia.sqlite")) : vacia.direccion();
    // A trashed entry travels too; the id of one deleted for good is not given again.
    origen.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = (Select Min(AsiID) From cceAsientos)"));
    const qint64 mayor = ValorDe(origen.conexion(), QStringLiteral("Select Max(AsiID) From cceAsientos")).toLongLong();
    origen.conexion().Ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento = ?"), {mayor});
    origen.conexion().Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID = ?"), {mayor});

    Salida s = correr({QStringLiteral("--db"), origen.direccion(), QStringLiteral("--copiar-a"), db});
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    EXPECT_TRUE(s.salida.contains(QStringLiteral("coinciden"))) << s.salida.toStdString();
    auto copia = ConexionQt::Abrir(DireccionBD::Leer(db));
    for (const QString &tabla : TablasEsquema())
        EXPECT_EQ(volcado(*copia, tabla), volcado(origen.conexion(), tabla)) << tabla.toStdString();
    EXPECT_GT(copia->Insertar(QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento) Values (1, 1, ?)"),
                              {Conexion::ValorFecha(BaseDePrueba::Hoy())}, QStringLiteral("AsiID")),
              mayor);
    copia->Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID > ?"), {mayor});

    const qint64 lineas = ValorDe(*copia, QStringLiteral("Select Count(*) From cceAsientoCuenta")).toLongLong();
    s = correr({QStringLiteral("--db"), origen.direccion(), QStringLiteral("--copiar-a"), db});
    EXPECT_EQ(s.estado, 1);
    EXPECT_TRUE(s.errores.contains(QStringLiteral("no está vacía"))) << s.errores.toStdString();
    EXPECT_EQ(ValorDe(*copia, QStringLiteral("Select Count(*) From cceAsientoCuenta")).toLongLong(), lineas);
}

INSTANCIAR_EN_MOTORES(Inicializar);

// Books copied onto themselves, from a database that cannot be opened, or onto a file that
// holds only a view: nothing is made or changed, and the refusal is one line.
TEST(InicializarLinea, CopiasRechazadasNoCambianNada)
{
    QTemporaryDir carpeta;
    auto correr = [&](const QString &de, const QString &a) {
        return Correr({QStringLiteral("--db"), de, QStringLiteral("--copiar-a"), a}, carpeta.path());
    };
    const QString libros = carpeta.filePath(QStringLiteral("libros.sqlite"));
    ASSERT_EQ(Correr({QStringLiteral("--db"), libros, QStringLiteral("--inicializar"), QStringLiteral("--sin-demo")}, carpeta.path()).estado, 0);
    const QByteArray librosAntes = huella(libros);
    EXPECT_EQ(correr(libros, libros).estado, 1);
    EXPECT_EQ(huella(libros), librosAntes);
    EXPECT_EQ(correr(carpeta.filePath(QStringLiteral("nada.sqlite")), carpeta.filePath(QStringLiteral("b.sqlite"))).estado, 1);
    EXPECT_FALSE(QFile::exists(carpeta.filePath(QStringLiteral("b.sqlite"))));

    const QString conVista = carpeta.filePath(QStringLiteral("vista.db"));
    ConexionQt::Abrir(DireccionBD::Leer(conVista), true)->Ejecutar(QStringLiteral("Create View v As Select 1 As uno"));
    const QByteArray vistaAntes = huella(conVista);
    const Salida vista = correr(libros, conVista);
    EXPECT_EQ(vista.estado, 1);
    EXPECT_EQ(vista.errores.count(QLatin1Char('\n')), 1) << vista.errores.toStdString();
    EXPECT_EQ(huella(conVista), vistaAntes);
}

// A database in write-ahead mode in a folder its user may only read: it opens, for reading,
// and is left unchanged. As root the program runs as nobody, to whom the folder is read-only.
TEST(InicializarLinea, UnaBaseDeSoloLecturaSeAbre)
{
    // The other user must reach the folder: it goes under /tmp, which everyone may cross,
    // even when this user's temporary folder is private.
    QTemporaryDir carpeta(QStringLiteral("/tmp/asientos-solo-lectura-XXXXXX"));
    ASSERT_TRUE(carpeta.isValid());
    QFile::setPermissions(carpeta.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                                              | QFileDevice::ReadOther | QFileDevice::ExeOther | QFileDevice::ReadGroup
                                              | QFileDevice::ExeGroup);
    const QString dir = carpeta.filePath(QStringLiteral("libros"));
    const QString salidas = carpeta.filePath(QStringLiteral("salidas"));
    QDir().mkpath(dir);
    QDir().mkpath(salidas);
    const QString db = dir + QStringLiteral("/libros.sqlite");
    const Salida creada = Correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar")}, carpeta.path());
    ASSERT_EQ(creada.estado, 0);
    EXPECT_TRUE(creada.salida.contains(QStringLiteral("creada con la empresa de demostración"))) << creada.salida.toStdString();
    ASSERT_EQ(ConexionQt::Abrir(DireccionBD::Leer(db))->Abrir(QStringLiteral("PRAGMA journal_mode"))->Campo(0).toString(), QStringLiteral("wal"));
    ASSERT_FALSE(QFile::exists(db + QStringLiteral("-shm")));
    // Another user has it open and has written to it: its log and shared-memory files are
    // there, and not writable by the reader either.
    auto otro = ConexionQt::Abrir(DireccionBD::Leer(db));
    otro->ModoCompartido();
    otro->Ejecutar(QStringLiteral("Update cceEmpresas Set EmpNombre = EmpNombre"));
    ASSERT_TRUE(QFile::exists(db + QStringLiteral("-shm")));
    const QByteArray antes = huella(db);
    const auto soloLectura = QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadGroup | QFileDevice::ExeGroup
                           | QFileDevice::ReadOther | QFileDevice::ExeOther;
    QFile::setPermissions(db, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
    QFile::setPermissions(dir, soloLectura);
    QFile::setPermissions(salidas, soloLectura | QFileDevice::WriteOther | QFileDevice::WriteOwner);
    QStringList como;
    QString programa = QStringLiteral(ASIENTOS_PROGRAMA);
    if (geteuid() == 0) {
        como = {QStringLiteral("/usr/sbin/runuser"), QStringLiteral("-u"), QStringLiteral("nobody"), QStringLiteral("--")};
        // The build folder may be out of that user's reach.
        programa = carpeta.filePath(QStringLiteral("asientos"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(ASIENTOS_PROGRAMA), programa));
    }

    const QString csv = salidas + QStringLiteral("/mes.csv");
    const Salida s = Correr({QStringLiteral("--db"), db, QStringLiteral("--exportar"), csv, QStringLiteral("--mes"),
                             BaseDePrueba::Hoy().toString(QStringLiteral("yyyy-MM"))},
                            salidas, como, programa);
    QFile::setPermissions(dir, soloLectura | QFileDevice::WriteOwner);
    EXPECT_EQ(s.estado, 0) << s.errores.toStdString();
    EXPECT_FALSE(s.errores.contains(QStringLiteral("No se pudo"))) << s.errores.toStdString();
    EXPECT_TRUE(QFile::exists(csv));
    EXPECT_EQ(huella(db), antes);
}

} // namespace
