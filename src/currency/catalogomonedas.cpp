#include "catalogomonedas.h"

CatalogoMonedas::CatalogoMonedas()
    : m_monedas(1)
{
}

QString CatalogoMonedas::SqlMonedas()
{
    return QStringLiteral("Select * From genMonedas Where MonTipo = 1 ");
}

std::optional<Fallo> CatalogoMonedas::CargarMonedas(Conexion &conexion)
{
    m_ultimaMoneda = -1;
    m_monedas = QVector<MonedaInfo>(1);
    try {
        auto rs = conexion.Abrir(SqlMonedas());
        int n = 0;
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            if (n > 0)
                m_monedas.resize(n + 1);
            MonedaInfo &m = m_monedas[n];
            m.MonID = qint16(rs->Entero(QStringLiteral("MonID")));
            m.MonSimbolo = rs->Campo(QStringLiteral("MonSimbolo")).toString().trimmed();
            m.MonCotizaEn = rs->EsNulo(QStringLiteral("MonCotizaEn")) ? 0 : qint16(rs->Entero(QStringLiteral("MonCotizaEn")));
            m.FormatoImporte = QStringLiteral("#,##0.00");
            if (!rs->EsNulo(QStringLiteral("MonRedondeo")))
                m.FormatoImporte = rs->Texto(QStringLiteral("MonRedondeo")).trimmed();
            m.FormatoCotizacion = QStringLiteral("#,##0.000");
            if (!rs->EsNulo(QStringLiteral("MonFormatoCotizacion")))
                m.FormatoCotizacion = rs->Texto(QStringLiteral("MonFormatoCotizacion")).trimmed();
            ++n;
        }
        rs->Cerrar();
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(1906, e);
    }
    return std::nullopt;
}

QVariant CatalogoMonedas::DatoMoneda(qint16 iMoneda, qint32 iCampo)
{
    const qint16 id = iMoneda == 0 ? m_monedaContabilidad : iMoneda;
    if (id != m_ultimaMoneda) {
        for (qsizetype i = 0; i < m_monedas.size(); ++i) {
            if (m_monedas[i].MonID == id) {
                m_ultimaMoneda = id;
                m_ultimaPosicion = qint16(i);
                break;
            }
        }
    }
    const MonedaInfo &m = m_monedas[m_ultimaPosicion];
    switch (iCampo) {
    case 1:
        return m.MonID;
    case 2:
        return m.MonSimbolo;
    case 3:
        return m.MonCotizaEn;
    case 4:
        return m.FormatoImporte;
    case 5:
        return m.FormatoCotizacion;
    default:
        return {};
    }
}
