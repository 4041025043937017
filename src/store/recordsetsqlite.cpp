#include "recordsetsqlite.h"

#include <sqlite3.h>

namespace {

// Binds one value as the Qt driver binds it, so that a statement finds the same rows either way.
int ligar(sqlite3_stmt *s, int n, const QVariant &v)
{
    if (v.isNull())
        return sqlite3_bind_null(s, n);
    switch (v.typeId()) {
    case QMetaType::QByteArray: {
        const QByteArray b = v.toByteArray();
        return sqlite3_bind_blob(s, n, b.constData(), int(b.size()), SQLITE_TRANSIENT);
    }
    case QMetaType::Bool:
    case QMetaType::Int:
        return sqlite3_bind_int(s, n, v.toInt());
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return sqlite3_bind_int64(s, n, v.toLongLong());
    case QMetaType::Double:
        return sqlite3_bind_double(s, n, v.toDouble());
    case QMetaType::QDateTime:
        return sqlite3_bind_text16(s, n, v.toDateTime().toString(Qt::ISODateWithMs).utf16(), -1, SQLITE_TRANSIENT);
    default: {
        const QString t = v.toString();
        return sqlite3_bind_text16(s, n, t.utf16(), int(t.size() * sizeof(QChar)), SQLITE_TRANSIENT);
    }
    }
}

} // namespace

sqlite3 *RecordsetSqlite::Manejador(const QVariant &manejador)
{
    if (!manejador.isValid() || qstrcmp(manejador.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(manejador.constData());
}

RecordsetSqlite::RecordsetSqlite(sqlite3 *base, const QString &sql, const QVariantList &valores, int esperaMs)
    : m_base(base)
    , m_esperaMs(esperaMs)
{
    int r = sqlite3_prepare16_v2(m_base, sql.utf16(), int(sql.size() * sizeof(QChar)), &m_sentencia, nullptr);
    if (r != SQLITE_OK)
        fallar(r);
    if (!m_sentencia) // nothing but blanks or a comment: no rows
        throw ErrorBaseDatos(QStringLiteral("La consulta está vacía."));
    if (sqlite3_bind_parameter_count(m_sentencia) != valores.size()) {
        Cerrar();
        throw ErrorBaseDatos(QStringLiteral("La consulta espera %1 valores y se dieron %2.")
                                 .arg(sqlite3_bind_parameter_count(m_sentencia))
                                 .arg(valores.size()));
    }
    for (int i = 0; i < valores.size(); ++i)
        if ((r = ligar(m_sentencia, i + 1, valores[i])) != SQLITE_OK)
            fallar(r);
    const int columnas = sqlite3_column_count(m_sentencia);
    m_nombres.reserve(columnas);
    for (int i = 0; i < columnas; ++i)
        m_nombres << QString::fromUtf8(sqlite3_column_name(m_sentencia, i));
    avanzar();
}

RecordsetSqlite::~RecordsetSqlite()
{
    Cerrar();
}

void RecordsetSqlite::fallar(int codigo)
{
    const int primario = codigo & 0xff;
    const QString texto = QString::fromUtf8(sqlite3_errmsg(m_base));
    Cerrar();
    if (primario == SQLITE_BUSY || primario == SQLITE_LOCKED)
        throw ErrorBaseDatos::Ocupada(m_esperaMs);
    throw ErrorBaseDatos(texto, primario);
}

void RecordsetSqlite::avanzar()
{
    const int r = sqlite3_step(m_sentencia);
    if (r == SQLITE_ROW)
        return;
    if (r != SQLITE_DONE)
        fallar(r);
    // The statement is let go at the end of its rows, as soon as they are read: a write that
    // follows on the connection finds no reader of its own session still open.
    Cerrar();
}

void RecordsetSqlite::MoverSiguiente()
{
    if (m_fin)
        throw ErrorBaseDatos::SinFilaActual();
    avanzar();
}

void RecordsetSqlite::Cerrar()
{
    if (m_sentencia)
        sqlite3_finalize(m_sentencia);
    m_sentencia = nullptr;
    m_fin = true;
}

bool RecordsetSqlite::NuloEn(int indice) const
{
    ComprobarFila(m_fin, indice);
    return sqlite3_column_type(m_sentencia, indice) == SQLITE_NULL;
}

double RecordsetSqlite::NumeroEn(int indice) const
{
    ComprobarFila(m_fin, indice);
    switch (sqlite3_column_type(m_sentencia, indice)) {
    case SQLITE_INTEGER:
        return double(sqlite3_column_int64(m_sentencia, indice));
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_sentencia, indice);
    case SQLITE_NULL:
        return 0;
    default:
        return Recordset::NumeroEn(indice);
    }
}

qint64 RecordsetSqlite::EnteroEn(int indice) const
{
    ComprobarFila(m_fin, indice);
    if (sqlite3_column_type(m_sentencia, indice) == SQLITE_INTEGER)
        return sqlite3_column_int64(m_sentencia, indice);
    return qRound64(NumeroEn(indice));
}

QVariant RecordsetSqlite::Campo(int indice) const
{
    ComprobarFila(m_fin, indice);
    switch (sqlite3_column_type(m_sentencia, indice)) {
    case SQLITE_INTEGER:
        return QVariant(qlonglong(sqlite3_column_int64(m_sentencia, indice)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(m_sentencia, indice));
    case SQLITE_NULL:
        return QVariant(QMetaType::fromType<QString>());
    case SQLITE_BLOB:
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_sentencia, indice)),
                          sqlite3_column_bytes(m_sentencia, indice));
    default: {
        // The file keeps text as UTF-8: read as such, it is converted once, by Qt.
        const auto *texto = reinterpret_cast<const char *>(sqlite3_column_text(m_sentencia, indice));
        return QString::fromUtf8(texto, sqlite3_column_bytes(m_sentencia, indice));
    }
    }
}
