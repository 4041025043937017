#pragma once

#include "importe.h"

#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QString>

#include <optional>

// What the rate lookup needs of the session: the database's date literal and the company's
// quotation-date rule (EmpFechaCotizacion: 2 the day before, 3 the last day of the previous
// month, anything else the date itself).
struct ReglasCotizacion
{
    QString delimitador = QStringLiteral("'");
    QString patronFecha = QStringLiteral("yyyy-mm-dd");
    quint8 fechaCotizacion = 0;
};

// The query of the latest direct quotation of a in b on or before the date and the latest
// inverse one (b in a, as its reciprocal), the direct half first.
QString SqlCotizacion(qint16 a, qint16 b, qint16 tipo, const QString &fechaSQL);
// The query of the quoting currencies of two currencies, for a cross rate.
QString SqlMonedasCruzadas(qint16 a, qint16 b);

// Units of iMonedaDestino per unit of iMonedaOrigen on dFecha after the date rule: a direct
// or inverse quotation (four decimals), else a cross rate through a common quoting currency
// (cut to three decimals), else 1. dFechaCotizacion gets the date of the quotation used, or
// the date searched on when none was found; the empty date is today by the connection's
// clock. hallada, when given, tells whether a quotation was found (false: the 1 is no rate
// at all). A failure to read the quotations is answered (1929, with the database's detail)
// and leaves tasa as it was; dFechaCotizacion then holds no date to rely on.
[[nodiscard]] std::optional<Fallo> BuscarTipoCambio(Conexion &conexion, qint16 iMonedaOrigen, qint16 iMonedaDestino,
                                                    qint16 iTipoCotizacion, const QDate &dFecha, QDate &dFechaCotizacion,
                                                    const ReglasCotizacion &reglas, Importe &tasa, bool *hallada = nullptr);

// The date a quotation is searched on: the empty date (1 January 1900) is today; then the
// company's rule.
QDate FechaEfectivaCotizacion(const QDate &dFecha, const ReglasCotizacion &reglas, const QDate &hoy);
