#include "copiabase.h"

#include "basedelprograma.h"
#include "esquema.h"

#include <QFile>
#include <QFileInfo>

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

// The engine's numbering goes on after the copied ids.
void SeguirNumeracion(Conexion &destino, const QString &tabla)
{
    const QString columna = ColumnaNumerada(tabla);
    if (columna.isEmpty() || destino.motor() != Motor::PostgreSQL)
        return; // SQLite numbers after the largest id by itself
    auto rs = destino.Abrir(QStringLiteral("Select setval(pg_get_serial_sequence('%1', '%2'), Coalesce((Select Max(%2) From %1), 0) + 1, false)")
                                .arg(tabla.toLower(), columna.toLower()));
    rs->Cerrar();
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
        QStringList halladas;
        if (ExaminarEsquema(*a, &halladas) != EstadoEsquema::Vacia) {
            r.informe = QStringLiteral("La base de datos %1 no está vacía (tiene %2 tablas); la copia va a una base sin tablas."
                                       " No se cambió nada.")
                            .arg(visibleDestino)
                            .arg(halladas.size());
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
            SeguirNumeracion(*a, tabla);
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
