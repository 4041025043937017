#include "conexion.h"
#include "fallo.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>



ErrorBaseDatos::ErrorBaseDatos(const QString &descripcion, int numero, Causa causa)
    : std::runtime_error(descripcion.toStdString())
    , m_descripcion(descripcion)
    , m_numero(numero)
    , m_causa(causa)
{
}

ErrorBaseDatos ErrorBaseDatos::Ocupada(int esperaMs)
{
    return ErrorBaseDatos(QStringLiteral("La base de datos está ocupada por otro usuario: se esperó %1 segundos y la operación"
                                         " no se hizo, sin cambiar nada. Vuelva a intentarlo en unos instantes.")
                              .arg(QLocale(QLocale::Spanish).toString(esperaMs / 1000.0)),
                          -1, Causa::Ocupada);
}

ErrorBaseDatos ErrorBaseDatos::SoloLectura()
{
    return ErrorBaseDatos(QStringLiteral("La base de datos no admite cambios (es de solo lectura para este usuario): no se grabó nada."));
}

ErrorBaseDatos ErrorBaseDatos::SinFilaActual()
{
    return ErrorBaseDatos(QStringLiteral("No hay fila actual."), 3021);
}

ErrorBaseDatos ErrorBaseDatos::CampoInexistente(const QString &campo)
{
    return ErrorBaseDatos(QStringLiteral("No se encontró el elemento en esta colección (%1).").arg(campo), 3265);
}

QVariant Recordset::Campo(const QString &nombre) const
{
    const int i = IndiceCampo(nombre);
    if (i < 0)
        throw ErrorBaseDatos::CampoInexistente(nombre);
    return Campo(i);
}

void Recordset::ComprobarFila(bool fin, int indice) const
{
    if (fin)
        throw ErrorBaseDatos::SinFilaActual();
    if (indice < 0 || indice >= CantidadCampos())
        throw ErrorBaseDatos::CampoInexistente(QString::number(indice));
}

int Recordset::IndiceEn(const QStringList &nombres, const QString &nombre)
{
    for (int i = 0; i < nombres.size(); ++i)
        if (nombres[i].compare(nombre, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

static QVariant campoNoNulo(const Recordset &rs, const QString &nombre)
{
    const QVariant v = rs.Campo(nombre);
    if (v.isNull())
        throw ErrorBaseDatos(QStringLiteral("Uso no válido de Null (%1)").arg(nombre), 94);
    return v;
}

double Recordset::NumeroEn(int indice) const
{
    const QVariant v = Campo(indice);
    switch (v.typeId()) {
    case QMetaType::Double:
        return v.value<double>();
    case QMetaType::LongLong:
        return double(v.value<qlonglong>());
    case QMetaType::Int:
        return v.value<int>();
    default:
        return v.isNull() ? 0 : v.toString().toDouble();
    }
}

qint64 Recordset::EnteroEn(int indice) const
{
    const QVariant v = Campo(indice);
    if (v.typeId() == QMetaType::LongLong)
        return v.value<qlonglong>();
    if (v.typeId() == QMetaType::Int)
        return v.value<int>();
    return qRound64(NumeroEn(indice));
}

QDateTime Recordset::FechaHoraEn(int indice) const
{
    return FechaHoraDeValor(Campo(indice));
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

namespace {

// Reads "yyyy-MM-dd" and "yyyy-MM-dd hh:mm:ss[.zzz]" without the general parser: a fill
// reads one stamp per entry.
bool leerDigitos(QStringView t, qsizetype desde, qsizetype cuantos, int &valor)
{
    if (desde + cuantos > t.size())
        return false;
    valor = 0;
    for (qsizetype i = desde; i < desde + cuantos; ++i) {
        const char16_t c = t[i].unicode();
        if (c < u'0' || c > u'9')
            return false;
        valor = valor * 10 + (c - u'0');
    }
    return true;
}

QDate fechaIso(QStringView t)
{
    int a = 0, m = 0, d = 0;
    if (t.size() < 10 || t[4] != u'-' || t[7] != u'-' || !leerDigitos(t, 0, 4, a) || !leerDigitos(t, 5, 2, m)
        || !leerDigitos(t, 8, 2, d))
        return {};
    return QDate(a, m, d);
}

QTime horaIso(QStringView t)
{
    int h = 0, n = 0, s = 0, z = 0;
    if (t.size() < 8 || !leerDigitos(t, 0, 2, h) || !leerDigitos(t, 3, 2, n) || !leerDigitos(t, 6, 2, s))
        return {};
    if (t.size() >= 12 && t[8] == u'.')
        leerDigitos(t, 9, 3, z);
    return QTime(h, n, s, z);
}

} // namespace

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
    return fechaIso(texto);
}

QDateTime FechaHoraDeValor(const QVariant &valor)
{
    if (valor.isNull())
        return {};
    switch (valor.typeId()) {
    case QMetaType::QDate:
        return QDateTime(valor.toDate(), QTime(0, 0), Qt::UTC);
    case QMetaType::QDateTime: {
        const QDateTime d = valor.toDateTime();
        return QDateTime(d.date(), d.time(), Qt::UTC);
    }
    default:
        break;
    }
    const QString texto = valor.toString().trimmed();
    const QDate fecha = fechaIso(texto);
    if (!fecha.isValid())
        return {};
    if (texto.size() <= 10)
        return QDateTime(fecha, QTime(0, 0), Qt::UTC);
    const QTime hora = horaIso(QStringView(texto).mid(11));
    return hora.isValid() ? QDateTime(fecha, hora, Qt::UTC) : QDateTime();
}

Fallo FalloDe(int numeroTexto, const ErrorBaseDatos &error)
{
    return {numeroTexto, DetalleError(error.numero(), error.descripcion()), true};
}

Resultado<bool> EnTransaccion(Conexion &conexion, const std::function<bool()> &pasos)
{
    return Intentar([&] {
        Transaccion tx(conexion);
        if (!pasos())
            return false;
        tx.Confirmar();
        return true;
    });
}

namespace {
constexpr int kFilasPorSentencia = 100;
}

// Multi-row INSERTs with bound values, a hundred rows per statement: one round trip per
// hundred rows keeps the whole demo well under a second on either engine.
void InsertarEnBloques(Conexion &conexion, const char *tabla, const char *columnas, const QList<QVariantList> &filas)
{
    const QString encabezado = QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(QLatin1String(tabla), QLatin1String(columnas));
    const qsizetype cantidadColumnas = QByteArray(columnas).count(',') + 1;
    const QString fila = QStringLiteral("(?") + QStringLiteral(",?").repeated(cantidadColumnas - 1) + QLatin1Char(')');
    for (qsizetype desde = 0; desde < filas.size(); desde += kFilasPorSentencia) {
        const qsizetype hasta = std::min(filas.size(), desde + kFilasPorSentencia);
        QStringList marcas;
        QVariantList valores;
        for (qsizetype i = desde; i < hasta; ++i) {
            Q_ASSERT(filas[i].size() == cantidadColumnas);
            marcas << fila;
            valores += filas[i];
        }
        conexion.Ejecutar(encabezado + marcas.join(QLatin1Char(',')), valores);
    }
}
