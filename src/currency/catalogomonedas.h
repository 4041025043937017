#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QString>
#include <QVariant>
#include <QVector>

#include <optional>

// One currency of the catalogue.
struct MonedaInfo
{
    qint16 MonID = 0;
    QString MonSimbolo;
    qint16 MonCotizaEn = 0;
    QString FormatoImporte;     // amount mask
    QString FormatoCotizacion;  // rate mask
};

// The currencies journal lines may be kept in, read once; answers by currency id and
// remembers the last currency found so repeated lookups of one currency need no scan.
class CatalogoMonedas
{
public:
    CatalogoMonedas();

    // Reads "Select * From genMonedas Where MonTipo = 1 ". A database error is answered
    // (1906, with its detail); the rows read until then stay. The catalogue always holds at
    // least one element.
    [[nodiscard]] std::optional<Fallo> CargarMonedas(Conexion &conexion);

    // Field iCampo of currency iMoneda (0: the accounting currency): 1 MonID, 2 symbol,
    // 3 MonCotizaEn, 4 amount mask, 5 rate mask, anything else an empty value. An id that is
    // not in the catalogue answers with the currency found last.
    QVariant DatoMoneda(qint16 iMoneda, qint32 iCampo);

    void FijarMonedaContabilidad(qint16 id) { m_monedaContabilidad = id; }
    const QVector<MonedaInfo> &monedas() const { return m_monedas; }
    qint16 UltimaMoneda() const { return m_ultimaMoneda; }
    qint16 UltimaPosicion() const { return m_ultimaPosicion; }

    static QString SqlMonedas();

private:
    QVector<MonedaInfo> m_monedas;
    qint16 m_ultimaMoneda = -1;
    qint16 m_ultimaPosicion = 0;
    qint16 m_monedaContabilidad = 0;
};
