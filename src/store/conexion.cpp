#include "conexion.h"
#include "fallo.h"

ErrorBaseDatos::ErrorBaseDatos(const QString &descripcion, int numero)
    : std::runtime_error(descripcion.toStdString())
    , m_descripcion(descripcion)
    , m_numero(numero)
{
}

static QVariant campoNoNulo(const Recordset &rs, const QString &nombre)
{
    const QVariant v = rs.Campo(nombre);
    if (v.isNull())
        throw ErrorBaseDatos(QStringLiteral("Uso no válido de Null (%1)").arg(nombre), 94);
    return v;
}

QString Recordset::Texto(const QString &nombre) const
{
    return campoNoNulo(*this, nombre).toString();
}

qint64 Recordset::Entero(const QString &nombre) const
{
    const QVariant v = campoNoNulo(*this, nombre);
    bool ok = false;
    // PostgreSQL hands NUMERIC over as exact text ("2.0000"); round it like the suite does.
    const double d = v.toString().toDouble(&ok);
    if (!ok)
        throw ErrorBaseDatos(QStringLiteral("No coinciden los tipos (%1)").arg(nombre), 13);
    return qRound64(d);
}

double Recordset::Numero(const QString &nombre) const
{
    const QVariant v = campoNoNulo(*this, nombre);
    bool ok = false;
    const double d = v.toString().toDouble(&ok);
    if (!ok)
        throw ErrorBaseDatos(QStringLiteral("No coinciden los tipos (%1)").arg(nombre), 13);
    return d;
}

QDate Recordset::Fecha(const QString &nombre) const
{
    const QDate d = FechaDeValor(campoNoNulo(*this, nombre));
    if (!d.isValid())
        throw ErrorBaseDatos(QStringLiteral("No coinciden los tipos (%1)").arg(nombre), 13);
    return d;
}

QDateTime Recordset::FechaHora(const QString &nombre) const
{
    const QDateTime d = FechaHoraDeValor(campoNoNulo(*this, nombre));
    if (!d.isValid())
        throw ErrorBaseDatos(QStringLiteral("No coinciden los tipos (%1)").arg(nombre), 13);
    return d;
}

QVariant Conexion::ValorFecha(const QDate &fecha)
{
    // ISO text works on both engines: SQLite keeps it as is, PostgreSQL casts it to DATE.
    return fecha.isValid() ? QVariant(fecha.toString(Qt::ISODate)) : QVariant(QMetaType(QMetaType::QString));
}

QVariant Conexion::ValorFechaHora(const QDateTime &momento)
{
    return momento.isValid() ? QVariant(momento.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")))
                             : QVariant(QMetaType(QMetaType::QString));
}

Transaccion::Transaccion(Conexion &conexion)
    : m_conexion(conexion)
{
    m_conexion.Comenzar();
}

Transaccion::~Transaccion()
{
    if (m_terminada)
        return;
    try {
        m_conexion.Deshacer();
    } catch (const ErrorBaseDatos &) {
        // Nothing more can be done: the engine drops the transaction with the connection.
    }
}

void Transaccion::Confirmar()
{
    m_conexion.Confirmar();
    m_terminada = true;
}

QDate FechaDeValor(const QVariant &valor)
{
    if (valor.isNull())
        return {};
    switch (valor.typeId()) {
    case QMetaType::QDate:
        return valor.toDate();
    case QMetaType::QDateTime:
        return valor.toDateTime().date();
    default:
        break;
    }
    const QString texto = valor.toString().trimmed();
    return QDate::fromString(texto.left(10), Qt::ISODate);
}

QDateTime FechaHoraDeValor(const QVariant &valor)
{
    if (valor.isNull())
        return {};
    switch (valor.typeId()) {
    case QMetaType::QDate:
        return valor.toDate().startOfDay();
    case QMetaType::QDateTime:
        return valor.toDateTime();
    default:
        break;
    }
    const QString texto = valor.toString().trimmed();
    if (texto.size() <= 10)
        return QDate::fromString(texto, Qt::ISODate).startOfDay();
    QDateTime d = QDateTime::fromString(texto, QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    if (!d.isValid())
        d = QDateTime::fromString(texto, Qt::ISODateWithMs);
    if (!d.isValid())
        d = QDateTime::fromString(texto.left(19), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return d;
}

Fallo FalloDe(int numeroTexto, const ErrorBaseDatos &error)
{
    return {numeroTexto, DetalleError(error.numero(), error.descripcion())};
}
