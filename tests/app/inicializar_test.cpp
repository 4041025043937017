// Creating a database from the command line, as a newcomer does: the tables and a company
// in an empty database, nothing changed in one that has tables, and a database the user
// may only read still opened.
#include "comun/basesprueba.h"
#include "programa.h"

#include "store/basedemo.h"
#include "store/conexionqt.h"
#include "store/esquema.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
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

qint64 contar(Conexion &c, const char *sql)
{
    auto rs = c.Abrir(QString::fromLatin1(sql));
    return rs->Campo(0).toLongLong();
}

// A table's rows as text, sorted, each value as both engines give it back alike: numbers
// to four decimals, dates and stamps in ISO form.
QStringList volcado(Conexion &c, const QString &tabla)
{
    static const QRegularExpression numero(QStringLiteral("^-?[0-9]+(\\.[0-9]+)?$"));
    QStringList filas;
    auto rs = c.Abrir(QStringLiteral("Select * From ") + tabla);
    for (; !rs->Fin(); rs->MoverSiguiente()) {
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
    QTemporaryDir m_carpeta;
};

TEST_P(Inicializar, CreaLaBaseUnaVezYDespuesNoCambiaNada)
{
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const QString db = GetParam() == Motor::SQLite ? m_carpeta.filePath(QStringLiteral("nueva.sqlite")) : vacia.direccion();

    Salida s = Correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar")}, m_carpeta.path());
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    EXPECT_TRUE(s.salida.contains(QStringLiteral("creada con la empresa de demostración"))) << s.salida.toStdString();
    auto conexion = ConexionQt::Abrir(DireccionBD::Leer(db));
    const qint64 asientos = contar(*conexion, "Select Count(*) From cceAsientos");
    const qint64 lineas = contar(*conexion, "Select Count(*) From cceAsientoCuenta");
    EXPECT_GT(asientos, 100);
    EXPECT_TRUE(s.salida.contains(QString::number(asientos))) << s.salida.toStdString();
    EXPECT_EQ(ExaminarEsquema(*conexion), EstadoEsquema::DelPrograma);

    s = Correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar")}, m_carpeta.path());
    EXPECT_EQ(s.estado, 0);
    EXPECT_TRUE(s.salida.contains(QStringLiteral("ya tiene las tablas"))) << s.salida.toStdString();
    EXPECT_EQ(contar(*conexion, "Select Count(*) From cceAsientos"), asientos);
    EXPECT_EQ(contar(*conexion, "Select Count(*) From cceAsientoCuenta"), lineas);
    conexion->Cerrar();

    // A password given in the address is not repeated in the report.
    if (GetParam() == Motor::PostgreSQL) {
        QString conClave = db;
        conClave.replace(QStringLiteral("postgresql://postgres@"), QStringLiteral("postgresql://postgres:nodecir@"));
        s = Correr({QStringLiteral("--db"), conClave, QStringLiteral("--inicializar")}, m_carpeta.path());
        EXPECT_FALSE((s.salida + s.errores).contains(QStringLiteral("nodecir"))) << s.salida.toStdString();
    }
}

TEST_P(Inicializar, SinDemoUnaEmpresaVaciaQueElAdministradorPuedeUsar)
{
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const QString db = GetParam() == Motor::SQLite ? m_carpeta.filePath(QStringLiteral("vacia.sqlite")) : vacia.direccion();
    const Salida s = Correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar"), QStringLiteral("--sin-demo")}, m_carpeta.path());
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    auto c = ConexionQt::Abrir(DireccionBD::Leer(db));
    EXPECT_EQ(contar(*c, "Select Count(*) From cceAsientos"), 0);
    EXPECT_EQ(contar(*c, "Select Count(*) From cceEmpresas"), 1);
    EXPECT_EQ(contar(*c, "Select Count(*) From genLibros Where LibDelSistema = 1"), 5);
    EXPECT_GE(contar(*c, "Select Count(*) From genMonedas"), 2);
    EXPECT_EQ(contar(*c, "Select Count(*) From segPermisos Where PerUsuario = 1 And PerLetras = 'AMEQ' And PerAutoriza = 1"), 1);
    EXPECT_EQ(contar(*c, "Select Count(*) From genParametros Where ParNombre = 'sis_Multiusuario' And ParValor = 1"), 1);
    c->Cerrar();

    // The empty company opens: the command-line export finds nothing and says so without failing.
    const Salida e = Correr({QStringLiteral("--db"), db, QStringLiteral("--exportar"), m_carpeta.filePath(QStringLiteral("x.csv")),
                             QStringLiteral("--vista"), QStringLiteral("1")},
                            m_carpeta.path());
    EXPECT_EQ(e.estado, 0) << e.errores.toStdString();
}

// The books of a file copied to an empty database: every row alike, the numbering going on
// after the copied ids, the program reading the same entries; a second copy is refused.
TEST_P(Inicializar, LosLibrosSeCopianAUnaBaseVacia)
{
    BaseDePrueba origen(Motor::SQLite, BaseDePrueba::Contenido::Demo);
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const QString db = GetParam() == Motor::SQLite ? m_carpeta.filePath(QStringLiteral("copia.sqlite")) : vacia.direccion();
    // A trashed entry travels too; the id of one deleted for good is not given again.
    origen.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = (Select Min(AsiID) From cceAsientos)"));
    const qint64 mayor = contar(origen.conexion(), "Select Max(AsiID) From cceAsientos");
    origen.conexion().Ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento = ?"), {mayor});
    origen.conexion().Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID = ?"), {mayor});

    Salida s = Correr({QStringLiteral("--db"), origen.direccion(), QStringLiteral("--copiar-a"), db}, m_carpeta.path());
    ASSERT_EQ(s.estado, 0) << s.errores.toStdString();
    EXPECT_TRUE(s.salida.contains(QStringLiteral("coinciden"))) << s.salida.toStdString();
    auto copia = ConexionQt::Abrir(DireccionBD::Leer(db));
    for (const QString &tabla : TablasEsquema())
        EXPECT_EQ(volcado(*copia, tabla), volcado(origen.conexion(), tabla)) << tabla.toStdString();
    EXPECT_GT(copia->Insertar(QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento) Values (1, 1, ?)"),
                              {Conexion::ValorFecha(BaseDePrueba::Hoy())}, QStringLiteral("AsiID")),
              mayor);
    copia->Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID > ?"), {mayor});

    const QString mes = BaseDePrueba::Hoy().toString(QStringLiteral("yyyy-MM"));
    for (const auto &[base, archivo] : {std::pair{origen.direccion(), QStringLiteral("origen.csv")}, std::pair{db, QStringLiteral("copia.csv")}})
        ASSERT_EQ(Correr({QStringLiteral("--db"), base, QStringLiteral("--exportar"), m_carpeta.filePath(archivo), QStringLiteral("--mes"), mes},
                         m_carpeta.path()).estado, 0);
    EXPECT_EQ(huella(m_carpeta.filePath(QStringLiteral("copia.csv"))), huella(m_carpeta.filePath(QStringLiteral("origen.csv"))));

    const qint64 lineas = contar(*copia, "Select Count(*) From cceAsientoCuenta");
    s = Correr({QStringLiteral("--db"), origen.direccion(), QStringLiteral("--copiar-a"), db}, m_carpeta.path());
    EXPECT_EQ(s.estado, 1);
    EXPECT_TRUE(s.errores.contains(QStringLiteral("no está vacía"))) << s.errores.toStdString();
    EXPECT_EQ(contar(*copia, "Select Count(*) From cceAsientoCuenta"), lineas);
}

TEST(InicializarLinea, PedidosMalosYBasesAjenasNoCambianNada)
{
    QTemporaryDir carpeta;
    EXPECT_EQ(Correr({QStringLiteral("--inicializar")}, carpeta.path()).estado, 2);
    EXPECT_EQ(Correr({QStringLiteral("--db"), carpeta.filePath(QStringLiteral("a.sqlite")), QStringLiteral("--sin-demo")}, carpeta.path()).estado, 2);
    EXPECT_EQ(Correr({QStringLiteral("--copiar-a"), carpeta.filePath(QStringLiteral("a.sqlite"))}, carpeta.path()).estado, 2);
    EXPECT_EQ(Correr({QStringLiteral("--db"), carpeta.filePath(QStringLiteral("a.sqlite")), QStringLiteral("--copiar-a"), QString()},
                     carpeta.path()).estado, 2);
    EXPECT_FALSE(QFile::exists(carpeta.filePath(QStringLiteral("a.sqlite"))));
    // Books copied onto themselves, or from a database that is not the program's: nothing
    // is made.
    const QString libros = carpeta.filePath(QStringLiteral("libros.sqlite"));
    ASSERT_EQ(Correr({QStringLiteral("--db"), libros, QStringLiteral("--inicializar"), QStringLiteral("--sin-demo")}, carpeta.path()).estado, 0);
    const QByteArray librosAntes = huella(libros);
    EXPECT_EQ(Correr({QStringLiteral("--db"), libros, QStringLiteral("--copiar-a"), libros}, carpeta.path()).estado, 1);
    EXPECT_EQ(huella(libros), librosAntes);
    EXPECT_EQ(Correr({QStringLiteral("--db"), carpeta.filePath(QStringLiteral("nada.sqlite")), QStringLiteral("--copiar-a"),
                      carpeta.filePath(QStringLiteral("b.sqlite"))}, carpeta.path()).estado, 1);
    EXPECT_FALSE(QFile::exists(carpeta.filePath(QStringLiteral("b.sqlite"))));

    // Another program's SQLite file: refused by both the creation and the program, and left
    // byte for byte as it was, in its own journal mode.
    const QString ajena = carpeta.filePath(QStringLiteral("ajena.db"));
    {
        auto c = ConexionQt::Abrir(DireccionBD::Leer(ajena), true);
        c->Ejecutar(QStringLiteral("Create Table notas (a TEXT)"));
        c->Ejecutar(QStringLiteral("Insert Into notas Values ('hola')"));
        c->Cerrar();
    }
    const QByteArray antes = huella(ajena);
    EXPECT_EQ(Correr({QStringLiteral("--db"), libros, QStringLiteral("--copiar-a"), ajena}, carpeta.path()).estado, 1);
    EXPECT_EQ(huella(ajena), antes);
    // A file that holds only a view is not empty either.
    const QString conVista = carpeta.filePath(QStringLiteral("vista.db"));
    ConexionQt::Abrir(DireccionBD::Leer(conVista), true)->Ejecutar(QStringLiteral("Create View v As Select 1 As uno"));
    const QByteArray vistaAntes = huella(conVista);
    const Salida vista = Correr({QStringLiteral("--db"), libros, QStringLiteral("--copiar-a"), conVista}, carpeta.path());
    EXPECT_EQ(vista.estado, 1);
    EXPECT_EQ(vista.errores.count(QLatin1Char('\n')), 1) << vista.errores.toStdString();
    EXPECT_EQ(huella(conVista), vistaAntes);
    Salida s = Correr({QStringLiteral("--db"), ajena, QStringLiteral("--inicializar")}, carpeta.path());
    EXPECT_EQ(s.estado, 1);
    EXPECT_TRUE(s.errores.contains(QStringLiteral("no es de este programa"))) << s.errores.toStdString();
    s = Correr({QStringLiteral("--db"), ajena, QStringLiteral("--exportar"), carpeta.filePath(QStringLiteral("x.csv")),
                QStringLiteral("--vista"), QStringLiteral("1")},
               carpeta.path());
    EXPECT_EQ(s.estado, 1);
    EXPECT_EQ(huella(ajena), antes);
    EXPECT_FALSE(QFile::exists(ajena + QStringLiteral("-wal")));
    auto c = ConexionQt::Abrir(DireccionBD::Leer(ajena));
    auto rs = c->Abrir(QStringLiteral("PRAGMA journal_mode"));
    EXPECT_EQ(rs->Campo(0).toString(), QStringLiteral("delete"));
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
    ASSERT_EQ(Correr({QStringLiteral("--db"), db, QStringLiteral("--inicializar")}, carpeta.path()).estado, 0);
    {
        auto c = ConexionQt::Abrir(DireccionBD::Leer(db));
        auto rs = c->Abrir(QStringLiteral("PRAGMA journal_mode"));
        ASSERT_EQ(rs->Campo(0).toString(), QStringLiteral("wal"));
    }
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
    EXPECT_TRUE(s.errores.isEmpty() || !s.errores.contains(QStringLiteral("No se pudo"))) << s.errores.toStdString();
    EXPECT_TRUE(QFile::exists(csv));
    EXPECT_EQ(huella(db), antes);
}

INSTANCIAR_EN_MOTORES(Inicializar);

} // namespace
