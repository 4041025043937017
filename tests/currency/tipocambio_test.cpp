#include "comun/basesprueba.h"

#include "currency/tipocambio.h"

#include <gtest/gtest.h>

namespace {

class TipoCambio : public ::testing::TestWithParam<Motor>
{
protected:
    TipoCambio()
        : m_base(GetParam(), BaseDePrueba::Contenido::Esquema)
    {
        // 1 pesos, 2 dollars (quoted in pesos), 3 euros and 4 pounds (both quoted in dollars),
        // 5 reales (quoted only the other way: pesos in reales), 6 yen with no quotation at all.
        m_base.conexion().Ejecutar(QStringLiteral(
            "Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonTipo) Values (1, '$', Null, 1), (2, 'U$S', 1, 1),"
            " (3, 'EUR', 2, 1), (4, 'GBP', 2, 1), (5, 'R$', 1, 1), (6, 'JPY', Null, 1)"));
    }

    void cotizacion(const char *fecha, int moneda, int cotizaEn, double compra, int tipo = 1)
    {
        m_base.conexion().Ejecutar(QStringLiteral("Insert Into genCotizacionesMoneda (CMoFecha, CMoMoneda, CMoCotizaEn,"
                                                  " CMoTipoCotizacion, CMoCompra, CMoVenta) Values (?, ?, ?, ?, ?, ?)"),
                                   {QString::fromLatin1(fecha), moneda, cotizaEn, tipo, compra, compra + 1});
    }

    // The rate as text, to four decimals, and the date of the quotation it came from.
    QString tasa(int origen, int destino, const QDate &fecha, QDate &fechaCotizacion, quint8 regla = 0)
    {
        ReglasCotizacion r;
        r.fechaCotizacion = regla;
        Importe t;
        const auto fallo = BuscarTipoCambio(m_base.conexion(), qint16(origen), qint16(destino), 1, fecha, fechaCotizacion, r, t);
        EXPECT_FALSE(fallo) << fallo->detalle.toStdString();
        return t.aTexto();
    }

    BaseDePrueba m_base;
};

TEST_P(TipoCambio, DirectaInversaYLaMasReciente)
{
    cotizacion("2026-03-10", 2, 1, 38.1234);
    cotizacion("2026-03-12", 1, 2, 0.025);      // inverse, later: wins
    cotizacion("2026-03-20", 2, 1, 50);         // after the date: never used
    cotizacion("2026-03-12", 2, 1, 99, 2);      // another quotation type
    QDate f;
    EXPECT_EQ(tasa(2, 1, QDate(2026, 3, 15), f), QStringLiteral("40.0000"));
    EXPECT_EQ(f, QDate(2026, 3, 12));
    EXPECT_EQ(tasa(2, 1, QDate(2026, 3, 11), f), QStringLiteral("38.1234")); // direct keeps four decimals
    EXPECT_EQ(f, QDate(2026, 3, 10));
    EXPECT_EQ(tasa(1, 2, QDate(2026, 3, 11), f), QStringLiteral("0.0262")); // 1 / 38.1234

    cotizacion("2026-04-01", 2, 1, 41);
    cotizacion("2026-04-01", 1, 2, 0.02);       // same date: the direct one stays
    EXPECT_EQ(tasa(2, 1, QDate(2026, 4, 2), f), QStringLiteral("41.0000"));
    EXPECT_EQ(f, QDate(2026, 4, 1));
}

TEST_P(TipoCambio, CruzadaCortadaATresDecimalesYNadaEsUno)
{
    cotizacion("2026-05-01", 3, 2, 100);
    cotizacion("2026-05-02", 4, 2, 4);
    QDate f;
    EXPECT_EQ(tasa(3, 4, QDate(2026, 5, 3), f), QStringLiteral("25.0000"));
    EXPECT_EQ(f, QDate(2026, 5, 2));            // the date of the second currency's quotation
    EXPECT_EQ(tasa(4, 3, QDate(2026, 5, 3), f), QStringLiteral("0.0400"));

    cotizacion("2026-06-01", 3, 2, 1);
    cotizacion("2026-06-01", 4, 2, 3);
    EXPECT_EQ(tasa(3, 4, QDate(2026, 6, 1), f), QStringLiteral("0.3330"));

    cotizacion("2026-07-01", 3, 2, 38.1234);
    cotizacion("2026-07-01", 4, 2, 1);
    EXPECT_EQ(tasa(3, 4, QDate(2026, 7, 1), f), QStringLiteral("38.1230")); // the same 38.1234, reached across

    EXPECT_EQ(tasa(6, 1, QDate(2026, 7, 1), f), QStringLiteral("1.0000"));
    EXPECT_EQ(f, QDate(2026, 7, 1));
    EXPECT_EQ(tasa(3, 4, QDate(2026, 4, 30), f), QStringLiteral("1.0000")); // nothing before that date

    // Reales are quoted in pesos, euros in dollars: no common currency, so no rate across,
    // even with a quotation of reales in dollars on record.
    cotizacion("2026-07-01", 5, 2, 0.2);
    EXPECT_EQ(tasa(3, 5, QDate(2026, 7, 2), f), QStringLiteral("1.0000"));
    EXPECT_EQ(tasa(5, 3, QDate(2026, 7, 2), f), QStringLiteral("1.0000"));
}

TEST_P(TipoCambio, ReglasDeFecha)
{
    cotizacion("2026-02-27", 5, 1, 7);
    cotizacion("2026-02-28", 2, 1, 40);
    cotizacion("2026-03-01", 2, 1, 41);
    cotizacion("2026-03-14", 2, 1, 42);
    QDate f;
    // Rule 3: the last day of the previous month.
    EXPECT_EQ(tasa(2, 1, QDate(2026, 3, 15), f, 3), QStringLiteral("40.0000"));
    // Rule 2: the day before.
    EXPECT_EQ(tasa(2, 1, QDate(2026, 3, 1), f, 2), QStringLiteral("40.0000"));
    EXPECT_EQ(tasa(2, 1, QDate(2026, 3, 15), f, 2), QStringLiteral("42.0000"));
    // The empty date is today (23 November 2026).
    EXPECT_EQ(tasa(2, 1, QDate(1900, 1, 1), f), QStringLiteral("42.0000"));
    EXPECT_EQ(tasa(6, 1, QDate(1900, 1, 1), f), QStringLiteral("1.0000"));
    EXPECT_EQ(f, QDate(2026, 11, 23));
}

INSTANCIAR_EN_MOTORES(TipoCambio);

} // namespace
