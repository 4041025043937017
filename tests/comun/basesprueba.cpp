#include "basesprueba.h"

#include "store/basedemo.h"
#include "store/conexionqt.h"
#include "store/esquema.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QUuid>

namespace {
QString direccionPG()
{
    return qEnvironmentVariable("ASIENTOS_TEST_PG");
}

QString conEsquema(const QString &direccion, const QString &esquema)
{
    return direccion + (direccion.contains(QLatin1Char('?')) ? QStringLiteral("&") : QStringLiteral("?"))
         + QStringLiteral("schema=") + esquema;
}
} // namespace

BaseDePrueba::BaseDePrueba(Motor motor, Contenido contenido)
    : m_motor(motor)
{
    if (motor == Motor::SQLite) {
        m_direccion = m_carpeta.filePath(QStringLiteral("prueba.sqlite"));
        m_conexion = ConexionQt::Abrir(DireccionBD::Leer(m_direccion), true);
    } else {
        m_esquema = QStringLiteral("t_") + QUuid::createUuid().toString(QUuid::Id128).left(16);
        {
            auto admin = ConexionQt::Abrir(DireccionBD::Leer(direccionPG()));
            admin->Ejecutar(QStringLiteral("CREATE SCHEMA ") + m_esquema);
        }
        m_direccion = conEsquema(direccionPG(), m_esquema);
        m_conexion = ConexionQt::Abrir(DireccionBD::Leer(m_direccion));
    }
    m_conexion->UsarReloj(m_reloj);
    if (contenido == Contenido::Esquema)
        CrearEsquema(*m_conexion);
    else if (contenido == Contenido::Demo)
        CrearBaseDemo(*m_conexion, Hoy());
}

BaseDePrueba::~BaseDePrueba()
{
    m_conexion->Cerrar();
    if (m_motor == Motor::PostgreSQL) {
        try {
            auto admin = ConexionQt::Abrir(DireccionBD::Leer(direccionPG()));
            admin->Ejecutar(QStringLiteral("DROP SCHEMA ") + m_esquema + QStringLiteral(" CASCADE"));
        } catch (const ErrorBaseDatos &) {
        }
    }
}

std::shared_ptr<Reloj> BaseDePrueba::RelojFijo(const QDate &dia)
{
    auto reloj = std::make_shared<Reloj>();
    reloj->Fijar(QDateTime(dia, QTime(12, 0)));
    return reloj;
}

std::vector<Motor> MotoresDePrueba()
{
    std::vector<Motor> motores{Motor::SQLite};
    if (!direccionPG().isEmpty())
        motores.push_back(Motor::PostgreSQL);
    return motores;
}

QVariant ValorDe(Conexion &conexion, const QString &sql, const QVariantList &valores)
{
    auto rs = conexion.Abrir(sql, valores);
    const QVariant valor = rs->Fin() ? QVariant() : rs->Campo(0);
    rs->Cerrar();
    return valor;
}

QVariant BaseDePrueba::Valor(const QString &sql, const QVariantList &valores)
{
    return ValorDe(*m_conexion, sql, valores);
}

qint32 BaseDePrueba::IdCuenta(const char *codigo)
{
    return Valor(QStringLiteral("Select CueID From cceCuentas Where CueIDEmpresa = 1 And CueCodigo = ?"), {QString::fromLatin1(codigo)}).toInt();
}

qint32 BaseDePrueba::UltimoAsiento()
{
    return Valor(QStringLiteral("Select Max(AsiID) From cceAsientos")).toInt();
}

QList<qint32> BaseDePrueba::Asientos(const QString &condicion)
{
    QList<qint32> l;
    for (auto rs = conexion().Abrir(QStringLiteral("Select AsiID From cceAsientos Where %1 Order By AsiID").arg(condicion)); !rs->Fin();
         rs->MoverSiguiente())
        l << qint32(rs->Entero(QStringLiteral("AsiID")));
    return l;
}

QString NombreMotor(Motor motor)
{
    return motor == Motor::SQLite ? QStringLiteral("SQLite") : QStringLiteral("PostgreSQL");
}
