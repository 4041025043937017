#include "tipocambio.h"

#include "mascara.h"

#include "store/fallo.h"
#include "store/valoressql.h"

QString SqlCotizacion(qint16 a, qint16 b, qint16 tipo, const QString &l)
{
    auto mitad = [&](const QString &columnas, qint16 x, qint16 y) {
        const QString par = QStringLiteral(" And CMoMoneda = ") + NumeroSQL(qint64(x)) + QStringLiteral(" And CMoCotizaEn = ")
                          + NumeroSQL(qint64(y)) + QStringLiteral(" And CMoTipoCotizacion = ") + NumeroSQL(qint64(tipo));
        return QStringLiteral("Select Top 1 ") + columnas + QStringLiteral(" ") + QStringLiteral(" From genCotizacionesMoneda ")
             + QStringLiteral(" Where CMoFecha IN (Select MAX(CMoFecha) from genCotizacionesMoneda ")
             + QStringLiteral(" Where CMoFecha <= ") + l + par + QStringLiteral(")") + par;
    };
    return mitad(QStringLiteral("CMoFecha, CMoCompra, CMoVenta"), a, b) + QStringLiteral(" UNION ALL ")
         + mitad(QStringLiteral("CMoFecha, 1/CMoCompra, 1/CMoVenta"), b, a);
}

QString SqlMonedasCruzadas(qint16 a, qint16 b)
{
    return QStringLiteral("Select MonID, MonCotizaEn From genMonedas ") + QStringLiteral(" Where MonTipo = 1 And MonCotizaEn Is Not Null")
         + QStringLiteral(" And MonID IN (") + NumeroSQL(qint64(a)) + QStringLiteral(", ") + NumeroSQL(qint64(b)) + QStringLiteral(")");
}

QDate FechaEfectivaCotizacion(const QDate &dFecha, const ReglasCotizacion &reglas, const QDate &hoy)
{
    QDate d = dFecha == QDate(1900, 1, 1) || !dFecha.isValid() ? hoy : dFecha;
    if (reglas.fechaCotizacion == 2)
        d = d.addDays(-1);
    else if (reglas.fechaCotizacion == 3)
        d = d.addDays(-d.day());
    return d;
}

namespace {

// One search: the latest direct or inverse quotation of the pair on or before dFecha. True
// when one was found; then cTasa and dFechaCotizacion hold it. A later inverse quotation
// beats an earlier direct one; on equal dates the direct one stays.
bool BuscarCotizacion(Conexion &conexion, qint16 iMoneda, qint16 iCotizaEn, qint16 iTipoCotizacion, const QDate &dFecha,
                      QDate &dFechaCotizacion, Importe &cTasa, const ReglasCotizacion &reglas)
{
    const QString l = FechaSQL(dFecha, reglas.delimitador, reglas.patronFecha);
    auto rs = conexion.Abrir(SqlCotizacion(iMoneda, iCotizaEn, iTipoCotizacion, l));
    if (rs->Fin())
        return false;
    cTasa = Importe::DesdeDouble(rs->Numero(QStringLiteral("CMoCompra")));
    dFechaCotizacion = rs->Fecha(QStringLiteral("CMoFecha"));
    rs->MoverSiguiente();
    if (!rs->Fin()) {
        const QDate otra = rs->Fecha(QStringLiteral("CMoFecha"));
        if (otra > dFechaCotizacion) {
            cTasa = Importe::DesdeDouble(rs->Numero(QStringLiteral("CMoCompra")));
            dFechaCotizacion = otra;
        }
    }
    rs->Cerrar();
    return true;
}

// The rate of BuscarTipoCambio; a database error is thrown.
Importe tipoCambio(Conexion &conexion, qint16 iMonedaOrigen, qint16 iMonedaDestino, qint16 iTipoCotizacion,
                   const QDate &dFecha, QDate &dFechaCotizacion, const ReglasCotizacion &reglas, bool *encontrada)
{
    const QDate efectiva = FechaEfectivaCotizacion(dFecha, reglas, conexion.reloj().Hoy());
    Importe tasa = Importe::DesdeDouble(1);
    if (encontrada)
        *encontrada = false;
    if (BuscarCotizacion(conexion, iMonedaOrigen, iMonedaDestino, iTipoCotizacion, efectiva, dFechaCotizacion, tasa, reglas)) {
        if (encontrada)
            *encontrada = true;
        return tasa;
    }

    qint16 cotizaA = 0;
    qint16 cotizaB = 0;
    auto rs = conexion.Abrir(SqlMonedasCruzadas(iMonedaOrigen, iMonedaDestino));
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        const qint16 id = qint16(rs->Entero(QStringLiteral("MonID")));
        const qint16 cotiza = qint16(rs->Entero(QStringLiteral("MonCotizaEn")));
        if (id == iMonedaOrigen)
            cotizaA = cotiza;
        if (id == iMonedaDestino)
            cotizaB = cotiza;
    }
    rs->Cerrar();

    double cruzada = 1;
    bool hallada = false;
    if (cotizaA != 0 && cotizaA == cotizaB) {
        QDate fechaA;
        QDate fechaB;
        Importe ra;
        Importe rb;
        if (BuscarCotizacion(conexion, iMonedaOrigen, cotizaA, iTipoCotizacion, efectiva, fechaA, ra, reglas)
            && BuscarCotizacion(conexion, iMonedaDestino, cotizaB, iTipoCotizacion, efectiva, fechaB, rb, reglas)
            && !rb.esCero()) {
            cruzada = ra.aDouble() / rb.aDouble();
            dFechaCotizacion = fechaB;
            hallada = true;
        }
    }
    if (!hallada)
        dFechaCotizacion = efectiva;
    if (encontrada)
        *encontrada = hallada;
    // A cross rate, like the fallback of 1, is cut to three decimals by printing it with the
    // mask "#.000" and reading it back.
    return Importe::DesdeDouble(RedondearConMascara(cruzada, QStringLiteral("#.000")));
}

} // namespace

std::optional<Fallo> BuscarTipoCambio(Conexion &conexion, qint16 iMonedaOrigen, qint16 iMonedaDestino, qint16 iTipoCotizacion,
                                      const QDate &dFecha, QDate &dFechaCotizacion, const ReglasCotizacion &reglas,
                                      Importe &tasa, bool *hallada)
{
    try {
        tasa = tipoCambio(conexion, iMonedaOrigen, iMonedaDestino, iTipoCotizacion, dFecha, dFechaCotizacion, reglas, hallada);
        return std::nullopt;
    } catch (const ErrorBaseDatos &e) {
        if (hallada)
            *hallada = false;
        return FalloDe(1929, e);
    }
}
