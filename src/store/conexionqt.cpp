#include "conexionqt.h"

#include "dialectosql.h"
#include "recordsetpg.h"
#include "recordsetsqlite.h"
#include "registrosql.h"
#include "semejanza.h"

#include <QAtomicInt>
#include <QFileInfo>
#include <QPointer>
#include <QUrl>
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

// SQLite answers busy (5) or locked (6) when another connection holds the file past the
// busy timeout; PostgreSQL answers lock_not_available past lock_timeout, a deadlock or a
// serialization failure. In every case the statement, and so the transaction, wrote nothing.
// A write the server dropped with its session, told once the session is back. Failures told in
// the program's own words carry no engine number: it would say nothing more to the user.
ErrorBaseDatos cambioNoGrabado()
{
    return ErrorBaseDatos(QStringLiteral("Se perdió la conexión con el servidor de la base de datos y el cambio no se grabó."
                                         " La conexión ya se restableció: vuelva a intentarlo."),
                          -1, ErrorBaseDatos::Causa::ConexionPerdida);
}

// esperaMs: how long the connection waits for a lock, said when the wait ran out.
// SQLite answers read-only (8) for a file the user may not write; PostgreSQL's codes are read
// where its rows are read straight from the server too.
ErrorBaseDatos errorDeMotor(const QSqlError &e, Motor motor, int esperaMs)
{
    if (motor == Motor::PostgreSQL)
        return RecordsetPG::ErrorDe(e.nativeErrorCode(), textoError(e), esperaMs);
    const QString codigo = e.nativeErrorCode();
    if (codigo == QLatin1String("5") || codigo == QLatin1String("6"))
        return ErrorBaseDatos::Ocupada(esperaMs);
    if (codigo == QLatin1String("8"))
        return ErrorBaseDatos::SoloLectura();
    return ErrorBaseDatos(textoError(e), numeroError(e));
}

class RecordsetQt final : public Recordset
{
public:
    RecordsetQt(QSqlQuery &&q, int esperaMs)
        : m_query(std::move(q))
        , m_esperaMs(esperaMs)
        , m_registro(m_query.record())
    {
        avanzar();
    }

    bool Fin() const override { return m_fin; }

    void MoverSiguiente() override
    {
        if (m_fin)
            throw ErrorBaseDatos::SinFilaActual();
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

    using Recordset::Campo;
    QVariant Campo(int indice) const override
    {
        ComprobarFila(m_fin || m_cerrado, indice);
        return m_query.value(indice);
    }

    int CantidadCampos() const override { return m_registro.count(); }
    int IndiceCampo(const QString &nombre) const override { return m_registro.indexOf(nombre); } // case ignored
    QString NombreCampo(int indice) const override { return m_registro.fieldName(indice); }

private:
    void avanzar()
    {
        if (m_query.next())
            return;
        m_fin = true;
        if (m_query.lastError().isValid())
            throw errorDeMotor(m_query.lastError(), m_query.driver() && m_query.driver()->dbmsType() == QSqlDriver::PostgreSQL
                                                        ? Motor::PostgreSQL : Motor::SQLite,
                               m_esperaMs);
    }

    QSqlQuery m_query;
    QSqlRecord m_registro;
    int m_esperaMs;
    bool m_fin = false;
    bool m_cerrado = false;
};

} // namespace

ConexionQt::ConexionQt(Motor motor, const QString &nombre, const DireccionBD &direccion)
    : m_motor(motor)
    , m_nombre(nombre)
    , m_direccion(direccion)
{
}

ConexionQt::~ConexionQt()
{
    Cerrar();
}

namespace {

// Opens the SQLite file and reads its catalogue once: SQLite opens anything lazily, so a
// file that is not a database is refused here and not at the first query.
bool abrirSqlite(QSqlDatabase &db, const QString &archivo, const QString &opciones, QSqlError &error)
{
    db.setDatabaseName(archivo);
    db.setConnectOptions(opciones);
    if (!db.open()) {
        error = db.lastError();
        return false;
    }
    // A search folds every letter's case, as on PostgreSQL. Registered before any statement
    // runs: the engine refuses it while one is active.
    RegistrarLikeSinMayusculas(db.driver()->handle());
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("Select count(*) From sqlite_master"))) {
        error = q.lastError();
        q = QSqlQuery();
        db.close();
        return false;
    }
    return true;
}

} // namespace

std::unique_ptr<ConexionQt> ConexionQt::Abrir(const DireccionBD &direccion, bool crearArchivo)
{
    static QAtomicInt contador;
    const QString nombre = QStringLiteral("asientos-%1").arg(contador.fetchAndAddRelaxed(1));

    if (!direccion.valida())
        throw ErrorBaseDatos(QStringLiteral("no se indicó la base de datos"));

    const bool esSqlite = direccion.motor == Motor::SQLite;
    if (esSqlite && !crearArchivo && !QFileInfo::exists(direccion.archivo))
        throw ErrorBaseDatos(QStringLiteral("no existe el archivo %1. Para crear en él la base de datos ejecute"
                                            " «asientos --db %1 --inicializar».")
                                 .arg(direccion.archivo));

    std::unique_ptr<ConexionQt> c(new ConexionQt(direccion.motor, nombre, direccion));
    QSqlDatabase db = QSqlDatabase::addDatabase(esSqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), nombre);
    if (!db.isValid())
        throw ErrorBaseDatos(QStringLiteral("no está instalado el controlador %1").arg(db.driverName()));
    db.setNumericalPrecisionPolicy(QSql::HighPrecision);

    if (esSqlite) {
        const QString espera = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(direccion.esperaBloqueoMs);
        QSqlError error;
        const QFileInfo info(direccion.archivo);
        const bool escribible = !info.exists() || (info.isWritable() && QFileInfo(info.absolutePath()).isWritable());
        bool abierta = escribible && abrirSqlite(db, direccion.archivo, espera, error);
        // A file the user may only read is opened read-only; a read-only file in
        // write-ahead mode whose folder is read-only too cannot get its shared-memory
        // file, and is read as an unchanging file instead.
        if (!abierta && info.exists()) {
            c->m_soloLectura = true;
            abierta = abrirSqlite(db, direccion.archivo, espera + QStringLiteral(";QSQLITE_OPEN_READONLY"), error);
            if (!abierta) {
                const QString uri = QStringLiteral("file:%1?immutable=1")
                                        .arg(QString::fromUtf8(QUrl::toPercentEncoding(info.absoluteFilePath(), "/")));
                abierta = abrirSqlite(db, uri, espera + QStringLiteral(";QSQLITE_OPEN_READONLY;QSQLITE_OPEN_URI"), error);
            }
        }
        if (!abierta)
            throw ErrorBaseDatos(textoError(error), numeroError(error));
    } else {
        db.setDatabaseName(direccion.base);
        db.setHostName(direccion.servidor);
        db.setPort(direccion.puerto);
        db.setUserName(direccion.usuario);
        db.setPassword(direccion.clave);
        if (!DireccionBD::EsquemaValido(direccion.esquema))
            throw ErrorBaseDatos(QStringLiteral("el esquema «%1» no es un nombre válido: use solo letras, números y «_»").arg(direccion.esquema));
        // A server that does not answer must not hang the start-up.
        QString opciones = QStringLiteral("connect_timeout=5");
        if (!direccion.esquema.isEmpty())
            opciones += QStringLiteral(";options=-csearch_path=") + direccion.esquema;
        db.setConnectOptions(opciones);
        if (!db.open())
            throw ErrorBaseDatos(textoError(db.lastError()), numeroError(db.lastError()));
    }
    return c;
}

void ConexionQt::ModoCompartido()
{
    m_compartido = true;
    aplicarModo();
}

void ConexionQt::aplicarModo()
{
    if (!m_compartido)
        return;
    m_turno->Liberar();
    QSqlQuery q(QSqlDatabase::database(m_nombre, false));
    if (m_motor == Motor::SQLite) {
        if (!m_soloLectura)
            q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    } else if (!q.exec(QStringLiteral("SET lock_timeout = %1").arg(m_direccion.esperaBloqueoMs))) {
        throw ErrorBaseDatos(textoError(q.lastError()), numeroError(q.lastError()));
    }
}

bool ConexionQt::abierta() const
{
    return QSqlDatabase::contains(m_nombre) && QSqlDatabase::database(m_nombre, false).isOpen();
}

// Whether a PostgreSQL error means the session is gone (server restarted, connection cut):
// the failed statement is probed with a trivial one, which fails again, without an error
// code of the SQL kind, only when there is no session to run it in.
bool ConexionQt::conexionCaida(const QString &codigo)
{
    if (m_motor != Motor::PostgreSQL)
        return false;
    m_turno->Liberar();
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    if (!db.isOpen())
        return true;
    if (codigo.startsWith(QLatin1String("08")) || codigo.startsWith(QLatin1String("57P0")))
        return true;
    if (!codigo.isEmpty())
        return false;
    QSqlQuery sonda(db);
    if (sonda.exec(QStringLiteral("SELECT 1")))
        return false;
    const QString codigoSonda = sonda.lastError().nativeErrorCode();
    return codigoSonda.isEmpty() || codigoSonda.startsWith(QLatin1String("08")) || codigoSonda.startsWith(QLatin1String("57P0"));
}

// Opens the session again after the server dropped it, with the same settings and notices.
// Any transaction that was open is lost with the old session.
void ConexionQt::reconectar()
{
    m_nivel = 0;
    m_turno->Liberar();
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    db.close();
    if (!db.open())
        throw ErrorBaseDatos(QStringLiteral("Se perdió la conexión con el servidor de la base de datos y no se pudo restablecer: %1")
                                 .arg(textoError(db.lastError())),
                             numeroError(db.lastError()), ErrorBaseDatos::Causa::ConexionPerdida);
    aplicarModo();
    suscribir();
}

QString ConexionQt::adaptar(const QString &sql) const
{
    const QString enviado = AdaptarSQL(sql, m_motor);
    qCDebug(lcSql).noquote() << "construido:" << sql;
    qCDebug(lcSql).noquote() << "enviado:   " << enviado;
    return enviado;
}

QSqlQuery ConexionQt::preparar(const QString &sql, const QVariantList &valores, bool lectura)
{
    const QString enviado = adaptar(sql);

    for (int intento = 0;; ++intento) {
        m_turno->Liberar();
        QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
        QSqlError error;
        if (db.isOpen()) {
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
            if (ok)
                return q;
            error = q.lastError();
        } else if (m_motor != Motor::PostgreSQL || !QSqlDatabase::contains(m_nombre)) {
            throw ErrorBaseDatos(QStringLiteral("La conexión no está abierta."), 3704);
        }
        if (!conexionCaida(error.nativeErrorCode()))
            throw errorDeMotor(error, m_motor, m_direccion.esperaBloqueoMs);
        // The server dropped the session. A read outside a transaction is tried once more
        // on a new session; a write is not: the user is told it was not made.
        const bool enTransaccion = m_nivel > 0;
        reconectar();
        if (!lectura || enTransaccion || intento > 0)
            throw cambioNoGrabado();
    }
}

std::unique_ptr<Recordset> ConexionQt::Abrir(const QString &sql, const QVariantList &valores)
{
    // SQLite's rows are read from the engine itself, each column when it is asked for: a
    // fill of the grid reads a third of the columns of the view it selects.
    if (m_motor == Motor::SQLite) {
        QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
        if (!db.isOpen())
            throw ErrorBaseDatos(QStringLiteral("La conexión no está abierta."), 3704);
        if (sqlite3 *base = RecordsetSqlite::Manejador(db.driver()->handle())) {
            return std::make_unique<RecordsetSqlite>(base, adaptar(sql), valores, m_direccion.esperaBloqueoMs);
        }
    } else if (auto rs = abrirPG(sql, valores)) {
        return rs;
    }
    return std::make_unique<RecordsetQt>(preparar(sql, valores, true), m_direccion.esperaBloqueoMs);
}

// PostgreSQL's rows are read from libpq under the driver, as they arrive; null when the
// driver hands over no handle. Tried again once on a new session, as any read, when the server
// dropped the old one.
std::unique_ptr<Recordset> ConexionQt::abrirPG(const QString &sql, const QVariantList &valores)
{
    const QString enviado = adaptar(sql);
    for (int intento = 0;; ++intento) {
        m_turno->Liberar();
        QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
        if (!QSqlDatabase::contains(m_nombre))
            throw ErrorBaseDatos(QStringLiteral("La conexión no está abierta."), 3704);
        RecordsetPG::Rechazo rechazo;
        if (db.isOpen()) {
            PGconn *pg = RecordsetPG::Manejador(db.driver()->handle());
            if (!pg)
                return nullptr;
            auto rs = RecordsetPG::Enviar(pg, m_turno, enviado, valores, m_direccion.esperaBloqueoMs, rechazo);
            if (rs)
                return rs;
            if (!rechazo.sinConexion && !conexionCaida(rechazo.codigo))
                throw RecordsetPG::ErrorDe(rechazo.codigo, rechazo.texto, m_direccion.esperaBloqueoMs);
        }
        const bool enTransaccion = m_nivel > 0;
        reconectar();
        if (enTransaccion || intento > 0)
            throw cambioNoGrabado();
    }
}

int ConexionQt::Ejecutar(const QString &sql, const QVariantList &valores)
{
    QSqlQuery q = preparar(sql, valores, false);
    return q.numRowsAffected();
}

qint64 ConexionQt::Insertar(const QString &sql, const QVariantList &valores, const QString &columnaId)
{
    if (m_motor == Motor::PostgreSQL) {
        QSqlQuery q = preparar(sql + QStringLiteral(" RETURNING ") + columnaId, valores, false);
        if (!q.next())
            throw ErrorBaseDatos(QStringLiteral("el motor no devolvió el identificador nuevo"));
        const qint64 id = q.value(0).toLongLong();
        while (q.next()) {
        } // read to the end, or the next statement loses its result
        return id;
    }
    QSqlQuery q = preparar(sql, valores, false);
    return q.lastInsertId().toLongLong();
}

void ConexionQt::Comenzar()
{
    m_turno->Liberar();
    // A file removed while it is open still takes writes, into a copy nobody will see again:
    // a write to a file that is no longer there is refused before it starts.
    if (m_nivel == 0 && m_motor == Motor::SQLite && !QFileInfo::exists(m_direccion.archivo))
        throw ErrorBaseDatos(QStringLiteral("el archivo %1 ya no existe: lo que se grabe no quedaría en ningún lado").arg(m_direccion.archivo));
    QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
    if (!db.isOpen() && m_motor == Motor::PostgreSQL && QSqlDatabase::contains(m_nombre))
        reconectar();
    QSqlQuery q(db);
    bool ok;
    if (m_nivel > 0)
        ok = q.exec(QStringLiteral("SAVEPOINT t%1").arg(m_nivel));
    else if (m_motor == Motor::SQLite && !m_soloLectura)
        // The write lock is taken at the start: a transaction that read first and wrote
        // later could not wait for another writer, it would fail at once.
        ok = q.exec(QStringLiteral("BEGIN IMMEDIATE"));
    else
        ok = q.exec(QStringLiteral("BEGIN"));
    if (!ok) {
        if (m_nivel == 0 && conexionCaida(q.lastError().nativeErrorCode())) {
            reconectar();
            QSqlQuery otra(QSqlDatabase::database(m_nombre, false));
            if (!otra.exec(QStringLiteral("BEGIN")))
                throw errorDeMotor(otra.lastError(), m_motor, m_direccion.esperaBloqueoMs);
        } else {
            throw errorDeMotor(q.lastError(), m_motor, m_direccion.esperaBloqueoMs);
        }
    }
    ++m_nivel;
}

void ConexionQt::Confirmar()
{
    m_turno->Liberar();
    QSqlQuery q(QSqlDatabase::database(m_nombre, false));
    if (m_nivel > 1) {
        --m_nivel;
        if (!q.exec(QStringLiteral("RELEASE SAVEPOINT t%1").arg(m_nivel)))
            throw errorDeMotor(q.lastError(), m_motor, m_direccion.esperaBloqueoMs);
        return;
    }
    if (!q.exec(QStringLiteral("COMMIT"))) {
        const QSqlError error = q.lastError();
        q = QSqlQuery();
        if (conexionCaida(error.nativeErrorCode())) {
            reconectar();
            throw cambioNoGrabado();
        }
        throw errorDeMotor(error, m_motor, m_direccion.esperaBloqueoMs);
    }
    m_nivel = 0;
}

void ConexionQt::Deshacer()
{
    m_turno->Liberar();
    QSqlQuery q(QSqlDatabase::database(m_nombre, false));
    if (m_nivel > 1) {
        --m_nivel;
        if (!q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT t%1").arg(m_nivel))
            || !q.exec(QStringLiteral("RELEASE SAVEPOINT t%1").arg(m_nivel)))
            throw errorDeMotor(q.lastError(), m_motor, m_direccion.esperaBloqueoMs);
        return;
    }
    if (m_nivel == 0)
        return; // the session that held it is gone, and the transaction with it
    m_nivel = 0;
    if (!q.exec(QStringLiteral("ROLLBACK")))
        throw errorDeMotor(q.lastError(), m_motor, m_direccion.esperaBloqueoMs);
}

void ConexionQt::Cerrar()
{
    m_nivel = 0;
    m_turno->Liberar();
    if (!QSqlDatabase::contains(m_nombre))
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_nombre, false);
        db.close();
    }
    QSqlDatabase::removeDatabase(m_nombre);
}

// Notices reach every session of the server's database; the schema worked in is part of
// the channel, so books kept in two schemas of one database do not hear each other.
QString ConexionQt::canal(const QString &nombre) const
{
    if (m_direccion.esquema.isEmpty())
        return nombre;
    return nombre + QLatin1Char('_') + m_direccion.esquema.toLower();
}

void ConexionQt::suscribir()
{
    if (m_motor != Motor::PostgreSQL)
        return;
    m_turno->Liberar();
    QSqlDriver *driver = QSqlDatabase::database(m_nombre, false).driver();
    for (const QString &nombre : std::as_const(m_canales))
        if (!driver->subscribedToNotifications().contains(canal(nombre)))
            driver->subscribeToNotification(canal(nombre));
}

bool ConexionQt::Escuchar(const QString &canal, std::function<void(const QString &carga)> aviso)
{
    if (m_motor != Motor::PostgreSQL)
        return false;
    m_canales.append(canal);
    // The driver outlives a reconnection, so the signal is connected once; the subscription
    // itself is made again on every new session.
    QSqlDriver *driver = QSqlDatabase::database(m_nombre, false).driver();
    // Notices that came in with rows read from libpq were taken off the socket: the driver is
    // told to look at them, as it does after each of its own statements.
    m_turno->avisos = [driver = QPointer<QSqlDriver>(driver)] {
        if (driver)
            QMetaObject::invokeMethod(driver, "_q_handleNotification", Qt::QueuedConnection);
    };
    QObject::connect(driver, &QSqlDriver::notification, driver,
                     [propio = this->canal(canal), aviso](const QString &nombre, QSqlDriver::NotificationSource origen,
                                                          const QVariant &carga) {
                         if (nombre == propio && origen == QSqlDriver::OtherSource)
                             aviso(carga.toString());
                     });
    suscribir();
    return true;
}

void ConexionQt::Avisar(const QString &canal, const QString &carga)
{
    if (m_motor != Motor::PostgreSQL)
        return;
    auto rs = Abrir(QStringLiteral("Select pg_notify(?, ?)"), {this->canal(canal), carga});
    rs->Cerrar();
}
