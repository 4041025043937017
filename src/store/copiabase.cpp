#include "copiabase.h"

#include "basedelprograma.h"
#include "esquema.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace {

// Rows per insert: few statements, and well inside both engines' limits on parameters.
constexpr int kFilasPorInsercion = 200;

// A value read from one engine as the other stores it: dates and stamps as the text both
// take; everything else as it came.
QVariant ValorParaDestino(const QVariant &v)
{
    if (v.isNull())
        return v;
    switch (v.metaType().id()) {
    case QMetaType::QDate:
        return Conexion::ValorFecha(v.toDate());
    case QMetaType::QDateTime:
        return Conexion::ValorFechaHora(v.toDateTime());
    default:
        return v;
    }
}

qint64 CopiarTabla(Conexion &origen, Conexion &destino, const QString &tabla)
{
    auto rs = origen.Abrir(QStringLiteral("Select * From %1").arg(tabla));
    const int columnas = rs->CantidadCampos();
    QStringList nombres;
    for (int c = 0; c < columnas; ++c)
        nombres << rs->NombreCampo(c);
    const QString marcas = QLatin1Char('(') + QStringList(columnas, QStringLiteral("?")).join(QLatin1Char(',')) + QLatin1Char(')');
    const QString cabeza = QStringLiteral("Insert Into %1 (%2) Values ").arg(tabla, nombres.join(QLatin1Char(',')));
    qint64 copiadas = 0;
    QVariantList valores;
    int filas = 0;
    auto volcar = [&] {
        if (filas == 0)
            return;
        QStringList grupos(filas, marcas);
        destino.Ejecutar(cabeza + grupos.join(QLatin1Char(',')), valores);
        copiadas += filas;
        valores.clear();
        filas = 0;
    };
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        for (int c = 0; c < columnas; ++c)
            valores << ValorParaDestino(rs->Campo(c));
        if (++filas == kFilasPorInsercion)
            volcar();
    }
    volcar();
    rs->Cerrar();
    return copiadas;
}

// The last number the engine gave out in a table, 0 when none: ids of rows deleted since
// are never given again.
qint64 UltimoNumero(Conexion &conexion, const QString &tabla, const QString &columna)
{
    auto rs = conexion.motor() == Motor::PostgreSQL
                  ? conexion.Abrir(QStringLiteral("Select pg_sequence_last_value(pg_get_serial_sequence('%1', '%2'))")
                                       .arg(tabla.toLower(), columna.toLower()))
                  : conexion.Abrir(QStringLiteral("Select seq From sqlite_sequence Where name = ?"), {tabla});
    const qint64 n = rs->Fin() ? 0 : rs->Campo(0).toLongLong();
    rs->Cerrar();
    return n;
}

// The target's numbering goes on where the source's would: after the copied ids and after
// any the source gave out to rows deleted since.
void SeguirNumeracion(Conexion &origen, Conexion &destino, const QString &tabla)
{
    const QString columna = ColumnaNumerada(tabla);
    if (columna.isEmpty())
        return;
    auto rs = destino.Abrir(QStringLiteral("Select Coalesce(Max(%1), 0) From %2").arg(columna, tabla));
    const qint64 ultimo = std::max(rs->Campo(0).toLongLong(), UltimoNumero(origen, tabla, columna));
    rs->Cerrar();
    if (ultimo == 0)
        return;
    if (destino.motor() == Motor::PostgreSQL) {
        destino.Abrir(QStringLiteral("Select setval(pg_get_serial_sequence('%1', '%2'), %3)").arg(tabla.toLower(), columna.toLower()).arg(ultimo))
            ->Cerrar();
    } else {
        destino.Ejecutar(QStringLiteral("Delete From sqlite_sequence Where name = ?"), {tabla});
        destino.Ejecutar(QStringLiteral("Insert Into sqlite_sequence (name, seq) Values (?, ?)"), {tabla, ultimo});
    }
}

// Anything the target holds: tables, views or other objects of SQLite; tables and views of
// PostgreSQL in the schema the address names, or in any schema when it names none.
int ObjetosEnDestino(Conexion &destino, const DireccionBD &direccion)
{
    std::unique_ptr<Recordset> rs;
    if (destino.motor() == Motor::SQLite)
        rs = destino.Abrir(QStringLiteral("Select Count(*) From sqlite_master"));
    else if (direccion.esquema.isEmpty())
        rs = destino.Abrir(QStringLiteral("Select Count(*) From information_schema.tables"
                                          " Where table_schema Not In ('pg_catalog', 'information_schema')"
                                          " And table_schema Not Like 'pg!_%' Escape '!'"));
    else
        rs = destino.Abrir(QStringLiteral("Select Count(*) From information_schema.tables Where table_schema = current_schema()"));
    const int n = rs->Campo(0).toInt();
    rs->Cerrar();
    return n;
}

qint64 Contar(Conexion &conexion, const QString &tabla)
{
    auto rs = conexion.Abrir(QStringLiteral("Select Count(*) From %1").arg(tabla));
    const qint64 n = rs->Campo(0).toLongLong();
    rs->Cerrar();
    return n;
}

// Ten-thousandths, the precision amounts are kept with on either engine.
qint64 DiezMilesimos(const QVariant &v)
{
    return v.isNull() ? 0 : qint64(std::llround(v.toDouble() * 10000.0));
}

// Per entry: its line count and the sums of its debit, credit and accounting-currency amounts.
using Sumas = std::map<qint64, std::tuple<qint64, qint64, qint64, qint64>>;

Sumas SumasPorAsiento(Conexion &conexion)
{
    Sumas sumas;
    auto rs = conexion.Abrir(QStringLiteral("Select ACuIDAsiento, Count(*), Sum(ACuDebe), Sum(AcuHaber), Sum(ACuImporteMC)"
                                            " From cceAsientoCuenta Group By ACuIDAsiento"));
    for (; !rs->Fin(); rs->MoverSiguiente())
        sumas[rs->Campo(0).toLongLong()] = {rs->Campo(1).toLongLong(), DiezMilesimos(rs->Campo(2)), DiezMilesimos(rs->Campo(3)),
                                            DiezMilesimos(rs->Campo(4))};
    rs->Cerrar();
    return sumas;
}

} // namespace

CopiaBase CopiarBase(const QString &origen, const QString &destino)
{
    CopiaBase r;
    const QString visibleOrigen = DireccionVisible(origen);
    const QString visibleDestino = DireccionVisible(destino);
    const DireccionBD direccionDestino = DireccionBD::Leer(destino);
    const DireccionBD direccionOrigen = DireccionBD::Leer(origen);
    const bool archivoNuevo = direccionDestino.motor == Motor::SQLite && !QFileInfo::exists(direccionDestino.archivo);
    if (direccionDestino.motor == Motor::SQLite && direccionOrigen.motor == Motor::SQLite
        && QFileInfo(direccionDestino.archivo).absoluteFilePath() == QFileInfo(direccionOrigen.archivo).absoluteFilePath()) {
        r.informe = QStringLiteral("El origen y el destino son la misma base de datos; no se copió nada.");
        return r;
    }
    try {
        auto de = AbrirBaseDelPrograma(origen);
        auto a = ConexionQt::Abrir(direccionDestino, true);
        if (const int objetos = ObjetosEnDestino(*a, direccionDestino); objetos > 0) {
            r.informe = QStringLiteral("La base de datos %1 no está vacía (tiene %2 tablas o vistas); la copia va a una base sin"
                                       " ellas. No se cambió nada.")
                            .arg(visibleDestino)
                            .arg(objetos);
            return r;
        }
        if (a->soloLectura())
            throw ErrorBaseDatos(QStringLiteral("no se puede escribir en %1").arg(visibleDestino));

        // The source is read as of one moment, whatever others write meanwhile.
        Transaccion lectura(*de);
        if (de->motor() == Motor::PostgreSQL)
            de->Ejecutar(QStringLiteral("Set Transaction Isolation Level Repeatable Read"));
        Transaccion tx(*a);
        CrearEsquema(*a);
        qint64 filas = 0;
        QStringList distintas;
        for (const QString &tabla : TablasEsquema()) {
            filas += CopiarTabla(*de, *a, tabla);
            SeguirNumeracion(*de, *a, tabla);
            if (Contar(*de, tabla) != Contar(*a, tabla))
                distintas << tabla;
        }
        const Sumas sumas = SumasPorAsiento(*de);
        if (!distintas.isEmpty() || sumas != SumasPorAsiento(*a)) {
            r.informe = QStringLiteral("La copia en %1 no coincide con %2 (%3); se deshizo y no se cambió nada.")
                            .arg(visibleDestino, visibleOrigen,
                                 distintas.isEmpty() ? QStringLiteral("sumas de las líneas") : distintas.join(QStringLiteral(", ")));
            return r; // the transaction rolls back as it goes
        }
        tx.Confirmar();
        a->ModoCompartido();
        r.hecha = true;
        r.informe = QStringLiteral("Se copiaron %1 filas (%2 asientos) de %3 a %4; las cantidades de cada tabla y las sumas de cada"
                                   " asiento coinciden.")
                        .arg(filas)
                        .arg(Contar(*a, QStringLiteral("cceAsientos")))
                        .arg(visibleOrigen, visibleDestino);
    } catch (const ErrorBaseDatos &e) {
        r.informe = QStringLiteral("No se pudo copiar %1 a %2: %3").arg(visibleOrigen, visibleDestino, e.descripcion());
    }
    // A file made for the copy does not stay behind when the copy failed.
    if (!r.hecha && archivoNuevo)
        QFile::remove(direccionDestino.archivo);
    return r;
}
