#include "conexionqt.h"

#include "dialectosql.h"
#include "registrosql.h"

#include <QAtomicInt>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace {

QString textoError(const QSqlError &e)
{
    QString t = e.databaseText().trimmed();
    const QString d = e.driverText().trimmed();
    if (t.isEmpty())
        t = d;
    else if (!d.isEmpty() && !t.contains(d))
        t += QStringLiteral(" (") + d + QLatin1Char(')');
    return t.isEmpty() ? QStringLiteral("error desconocido de la base de datos") : t;
}

int numeroError(const QSqlError &e)
{
    bool ok = false;
    const int n = e.nativeErrorCode().toInt(&ok);
    return ok ? n : -1;
}

class RecordsetQt final : public Recordset
{
public:
    explicit RecordsetQt(QSqlQuery &&q)
        : m_query(std::move(q))
        , m_registro(m_query.record())
    {
        avanzar();
    }

    bool Fin() const override { return m_fin; }

    void MoverSiguiente() override
    {
        if (m_fin)
            throw ErrorBaseDatos(QStringLiteral("No hay fila actual."), 3021);
        avanzar();
    }

    ~RecordsetQt() override { Cerrar(); }

    // PostgreSQL hands a forward-only result over row by row; a result left half read would
    // be discarded by the next statement on the connection, taking that statement with it.
    // Reading it to the end first keeps the connection usable.
    void Cerrar() override
    {
        if (m_cerrado)
            return;
        m_cerrado = true;
        if (!m_fin && m_query.driver() && m_query.driver()->dbmsType() == QSqlDriver::PostgreSQL)
            while (m_query.next()) {
            }
        m_query.finish();
        // The statement is let go now, not when this object dies: on PostgreSQL a statement
        // released after the next one started takes that one's result with it.
        m_query = QSqlQuery();
        m_fin = true;
    }

    QVariant Campo(const QString &nombre) const override
    {
        const int i = m_registro.indexOf(nombre); // Qt matches field names without case
        if (i < 0)
            throw ErrorBaseDatos(QStringLiteral("No se encontró el elemento en esta colección (%1).").arg(nombre), 3265);
        return Campo(i);
    }

    QVariant Campo(int indice) const override
    {
        if (m_fin || m_cerrado)
            throw ErrorBaseDatos(QStringLiteral("No hay fila actual."), 3021);
        if (indice < 0 || indice >= m_registro.count())
            throw ErrorBaseDatos(QStringLiteral("No se encontró el elemento en esta colección (%1).").arg(indice), 3265);
        return m_query.value(indice);
    }

    int CantidadCampos() const override { return m_registro.count(); }
    int IndiceCampo(const QString &nombre) const override { return m_registro.indexOf(nombre); }

private:
    void avanzar()
    {
        if (m_query.next())
            return;
        m_fin = true;
        if (m_query.lastError().isValid())
            throw ErrorBaseDatos(textoError(m_query.lastError()), numeroError(m_query.lastError()));
    }

    QSqlQuery m_query;
    QSqlRecord m_registro;
    bool m_fin = false;
    bool m_cerrado = false;
};

} // namespace

ConexionQt::ConexionQt(Motor motor, const QString &nombre)
    : m_motor(motor)
    , m_nombre(nombre)
{
}

ConexionQt::~ConexionQt()
{
    Cerrar();
}

std::unique_ptr<ConexionQt> ConexionQt::Abrir(const DireccionBD &direccion, bool crearArchivo)
{
    static QAtomicInt contador;
    const QString nombre = QStringLiteral("asientos-%1").arg(contador.fetchAndAddRelaxed(1));

    if (!direccion.valida())
        throw ErrorBaseDatos(QStringLiteral("no se indicó la base de datos"));

    const bool esSqlite = direccion.motor == Motor::SQLite;
    if (esSqlite && !crearArchivo && !QFileInfo::exists(direccion.archivo))
        throw ErrorBaseDatos(QStringLiteral("no existe el archivo %1").arg(direccion.archivo));

    std::unique_ptr<ConexionQt> c(new ConexionQt(direccion.motor, nombre));
    QSqlDatabase db = QSqlDatabase::addDatabase(esSqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), nombre);
    if (!db.isValid())
        throw ErrorBaseDatos(QStringLiteral("no está instalado el controlador %1").arg(db.driverName()));

    if (esSqlite) {
        db.setDatabaseName(direccion.archivo);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    } else {
        db.setDatabaseName(direccion.base);
        db.setHostName(direccion.servidor);
        db.setPort(direccion.puerto);
        db.setUserName(direccion.usuario);
        db.setPassword(direccion.clave);
        // A server that does not answer must not hang the start-up.
        QString opciones = QStringLiteral("connect_timeout=5");
        if (!direccion.esquema.isEmpty())
            opciones += QStringLiteral(";options=-csearch_path=") + direccion.esquema;
        db.setConnectOptions(opciones);
    }
    db.setNumericalPrecisionPolicy(QSql::HighPrecision);

    if (!db.open())
        throw ErrorBaseDatos(textoError(db.lastError()), numeroError(db.lastError()));

    // SQLite opens anything lazily; read the catalogue once so that a file that is not a
    // database is refused here and not at the first query.
    if (esSqlite) {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("Select count(*) From sqlite_master")))
            throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
        q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    }
    return c;
}

bool ConexionQt::abierta() const
{
    return QSqlDatabase::contains(m_nombre) && QSqlDatabase::database(m_nombre, false).isOpen();
}

static QSqlQuery preparar(const QString &nombre, Motor motor, const QString &sql, const QVariantList &valores)
{
    QSqlDatabase db = QSqlDatabase::database(nombre, false);
    if (!db.isOpen())
        throw ErrorBaseDatos(QStringLiteral("La conexión no está abierta."), 3704);

    const QString enviado = AdaptarSQL(sql, motor);
    qCDebug(lcSql).noquote() << "construido:" << sql;
    qCDebug(lcSql).noquote() << "enviado:   " << enviado;

    QSqlQuery q(db);
    q.setForwardOnly(true);
    bool ok;
    if (valores.isEmpty()) {
        ok = q.exec(enviado);
    } else {
        ok = q.prepare(enviado);
        if (ok) {
            for (const QVariant &v : valores)
                q.addBindValue(v);
            ok = q.exec();
        }
    }
    if (!ok)
        throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
    return q;
}

std::unique_ptr<Recordset> ConexionQt::Abrir(const QString &sql, const QVariantList &valores)
{
    return std::make_unique<RecordsetQt>(preparar(m_nombre, m_motor, sql, valores));
}

int ConexionQt::Ejecutar(const QString &sql, const QVariantList &valores)
{
    QSqlQuery q = preparar(m_nombre, m_motor, sql, valores);
    return q.numRowsAffected();
}

qint64 ConexionQt::Insertar(const QString &sql, const QVariantList &valores, const QString &columnaId)
{
    if (m_motor == Motor::PostgreSQL) {
        QSqlQuery q = preparar(m_nombre, m_motor, sql + QStringLiteral(" RETURNING ") + columnaId, valores);
        if (!q.next())
            throw ErrorBaseDatos(QStringLiteral("el motor no devolvió el identificador nuevo"));
        const qint64 id = q.value(0).toLongLong();
        while (q.next()) {
        } // read to the end, or the next statement loses its result
        return id;
    }
    QSqlQuery q = preparar(m_nombre, m_motor, sql, valores);
    return q.lastInsertId().toLongLong();
}

void ConexionQt::Comenzar()
{
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    if (m_nivel > 0) {
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("SAVEPOINT t%1").arg(m_nivel)))
            throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
    } else if (!db.transaction()) {
        throw ErrorBaseDatos(textoError(db.lastError()), numeroError(db.lastError()));
    }
    ++m_nivel;
}

void ConexionQt::Confirmar()
{
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    if (m_nivel > 1) {
        --m_nivel;
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("RELEASE SAVEPOINT t%1").arg(m_nivel)))
            throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
        return;
    }
    if (!db.commit())
        throw ErrorBaseDatos(textoError(db.lastError()), numeroError(db.lastError()));
    m_nivel = 0;
}

void ConexionQt::Deshacer()
{
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    if (m_nivel > 1) {
        --m_nivel;
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT t%1").arg(m_nivel))
            || !q.exec(QStringLiteral("RELEASE SAVEPOINT t%1").arg(m_nivel)))
            throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
        return;
    }
    m_nivel = 0;
    if (!db.rollback())
        throw ErrorBaseDatos(textoError(db.lastError()), numeroError(db.lastError()));
}

void ConexionQt::Cerrar()
{
    m_nivel = 0;
    if (!QSqlDatabase::contains(m_nombre))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_nombre);
}
