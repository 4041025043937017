#include "fixtureasientos.h"

#include "currency/mascara.h"
#include "entries/vistas.h"

#include <gtest/gtest.h>

namespace {

class Llenado : public ::testing::TestWithParam<Motor>
{
};

TEST_P(Llenado, CabezalesLineasYFilaDeDiferencia)
{
    DatosAsientos d(GetParam());
    const qint32 a = d.Asiento(QDate(2026, 2, 1), 1, QStringLiteral("20:H:100,10:D:100"), QStringLiteral("  Venta contado "));
    const qint32 b = d.Asiento(QDate(2026, 2, 3), 0, QStringLiteral("11:D:10:400,20:H:400"), QStringLiteral("Cobro"));
    const qint32 papelera = d.Asiento(QDate(2026, 2, 2), 9, QStringLiteral("10:D:1,20:H:1")); // never loaded
    ASSERT_TRUE(CargarAsientoEnGrilla(d.asientos, d.conexion(), 0, 0, QStringLiteral("%1,%2,%3").arg(a).arg(b).arg(papelera)) == std::nullopt);

    const QString A = QString::number(a);
    const QString B = QString::number(b);
    const QString sello = QStringLiteral("T10:00:00.005");
    QStringList filas;
    for (int r = 1; r < d.grilla.Filas(); ++r)
        filas << FilaComoTexto(d.grilla, r);
    EXPECT_EQ(filas, (QStringList{
        QStringLiteral("|01/02/26 Venta contado|||Diario| #") + A + QStringLiteral("||2026-02-01|1|2026-02-01") + sello + QStringLiteral("|1:0"),
        QStringLiteral("1.1.01 - Caja||100,00||| #") + A + QStringLiteral("|10|0|0|1|2||||"),
        QStringLiteral("|4.1.01 - Ventas||100,00|| #") + A + QStringLiteral("|20|0|0|0|1||||"),
        QStringLiteral("|03/02/26 Cobro|||Diario| #") + B + QStringLiteral("||2026-02-03|0|2026-02-03") + sello + QStringLiteral("|1:0"),
        QStringLiteral("1.1.02 - Banco U$S||400,00||40,000|10,00 #") + B + QStringLiteral("|11|0|0|2|1|||40|10"),
        QStringLiteral("|4.1.01 - Ventas||400,00|| #") + B + QStringLiteral("|20|0|0|0|2||||"),
        // Dollars against pesos: the currencies are mixed, so the pesos decide, and they agree.
        QStringLiteral("Nuevo Asiento||||| #|||||"),
    }));

    const Grilla &g = d.grilla;
    EXPECT_EQ(g.Fila(1).colorBorde, 0u);                      // first entry: no separating line
    EXPECT_EQ(g.Fila(4).colorBorde, ColoresGrilla::kBordeAsiento);
    EXPECT_EQ(g.Fila(1).fondo, ColoresGrilla::kFondoCabezal);
    EXPECT_EQ(g.Imagen(1), QStringLiteral("asiento"));
    EXPECT_EQ(g.Imagen(4), QStringLiteral("borrador"));
    EXPECT_EQ(g.ColorTexto(3, 1), ColoresGrilla::kHaber);
    EXPECT_EQ(g.ColorTexto(3, 3), ColoresGrilla::kHaber);
    EXPECT_NE(g.ColorTexto(4, 1), ColoresGrilla::kHaber); // a header is no credit line
    EXPECT_EQ(d.asientos.Cabezal.AsiID, 0);                   // nothing current after a fill
    EXPECT_EQ(d.asientos.EstadoDeFila(6), 0);
    EXPECT_EQ(d.asientos.FilaCabezalDe(6), 4);
    EXPECT_EQ(d.asientos.FilaCabezalDe(7), -1);

    // A screen reader hears each row as a sighted user reads it.
    QStringList dichas;
    for (int r = 0; r < g.Filas(); ++r)
        dichas << d.asientos.TextoAccesible(r);
    EXPECT_EQ(dichas, (QStringList{QString(), QStringLiteral("01/02/26, Venta contado, Diario, #1006"), QStringLiteral("#1069 1.1.01 - Caja, 100,00 $"),
                                   QStringLiteral("#1070 4.1.01 - Ventas, 100,00 $"), QStringLiteral("03/02/26, Cobro, Diario, #1005"),
                                   QStringLiteral("#1069 1.1.02 - Banco U$S, 400,00 $, #1063 40,000, 10,00 U$S"),
                                   QStringLiteral("#1070 4.1.01 - Ventas, 400,00 $"), QStringLiteral("Nuevo Asiento")}));
}

// The difference row of an entry that does not balance says its side and amount.
TEST_P(Llenado, LaFilaDeDiferenciaSeDiceConSuLado)
{
    DatosAsientos d(GetParam());
    const qint32 a = d.Asiento(QDate(2026, 2, 1), EstadoAsiento::kInconcluso, QStringLiteral("10:D:50,20:H:30"), QStringLiteral("Pendiente"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), a, 0));
    d.asientos.TomarAsientoDeFila(1);
    ASSERT_TRUE(d.asientos.FilaDiferencia(4, true));
    EXPECT_EQ(d.asientos.TextoAccesible(1), QStringLiteral("01/02/26, Pendiente, Diario, #1008"));
    EXPECT_EQ(d.asientos.TextoAccesible(4), QStringLiteral("#1180 #1070, 20,00 $"));
}

TEST_P(Llenado, CargarEncimaDelMarcadorNoAgregaOtroYMueveElBorde)
{
    DatosAsientos d(GetParam());
    const qint32 a = d.Asiento(QDate(2026, 2, 1), 1, QStringLiteral("10:D:5,20:H:5"));
    const qint32 b = d.Asiento(QDate(2026, 2, 2), 1, QStringLiteral("10:D:7,20:H:7"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), a, 0));
    ASSERT_EQ(d.grilla.Filas(), 5);
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), b, 1)); // before the first entry
    ASSERT_EQ(d.grilla.Filas(), 8);
    EXPECT_EQ(d.grilla.Dato(1, 0).toInt(), b);
    EXPECT_EQ(d.grilla.Dato(4, 0).toInt(), a);
    EXPECT_EQ(d.grilla.Fila(1).colorBorde, 0u);
    EXPECT_EQ(d.grilla.Fila(4).colorBorde, ColoresGrilla::kBordeAsiento);
    EXPECT_EQ(d.grilla.Texto(7, 0), QStringLiteral("Nuevo Asiento"));
    EXPECT_TRUE(d.asientos.EsFilaNuevoAsiento(7));
}

TEST_P(Llenado, BalanceAlBordeDelRedondeo)
{
    DatosAsientos d(GetParam());
    const qint32 pasa = d.Asiento(QDate(2026, 3, 2), 1, QStringLiteral("10:D:100.006,20:H:100"));
    const qint32 inconcluso = d.Asiento(QDate(2026, 3, 4), 2, QStringLiteral("10:D:50,20:H:50"));
    const qint32 debeMenor = d.Asiento(QDate(2026, 3, 5), 2, QStringLiteral("10:D:90,20:H:100"));
    // All in dollars: the dollars must agree as well as the pesos.
    const qint32 dolares = d.Asiento(QDate(2026, 3, 6), 1, QStringLiteral("11:D:10:400,11:H:9:400"));
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), 0, 0,
                                       QStringLiteral("%1,%2,%3,%4").arg(pasa).arg(inconcluso).arg(debeMenor).arg(dolares)));
    auto diferenciaDe = [&](qint32 id) {
        for (int r = 1; r < d.grilla.Filas(); ++r)
            if (d.grilla.Dato(r, 0).toInt() == id && d.asientos.EsFilaDiferencia(r))
                return FilaComoTexto(d.grilla, r).section(QLatin1Char('#'), 0, 0).trimmed();
        return QString();
    };
    // The difference goes on the short side; which entries balance is CalcularBalance's rule.
    EXPECT_EQ(diferenciaDe(pasa), QStringLiteral("|................?||0,01||"));
    EXPECT_EQ(diferenciaDe(inconcluso), QString());                             // incomplete but balanced
    EXPECT_EQ(diferenciaDe(debeMenor), QStringLiteral("................?||10,00|||"));
    EXPECT_EQ(diferenciaDe(dolares), QStringLiteral("|................?||1,00||"));
}

// Two lines of one account on one side tie in the query's order: their order of entry
// decides, the same on every engine and after every re-read.
TEST_P(Llenado, LineasPorCodigoOPorOrdenDeIngresoYEmpatadasEnSuOrden)
{
    DatosAsientos d(GetParam());
    const qint32 id = d.Asiento(QDate(2026, 5, 4), 1, QStringLiteral("10:D:30,20:H:20,20:H:10"));
    // The query as the views order it, with the tie broken the wrong way on purpose, as an
    // engine may.
    d.asientos.LlenarGrilla(d.conexion(), QStringLiteral("Select * ") + DesdeAsientos() + QStringLiteral(" Where AsiID = ")
                                              + QString::number(id)
                                              + QStringLiteral(" Order By AsiFechaAsiento, AsiID, AcuDebe desc, CueCodigo, ACuOrden desc"),
                            0);
    QStringList haber;
    for (int r = 1; r < d.grilla.Filas(); ++r)
        if (d.grilla.Dato(r, 0).toInt() == id && !d.grilla.Texto(r, 3).isEmpty())
            haber << d.grilla.Texto(r, 3);
    EXPECT_EQ(haber, (QStringList{QStringLiteral("20,00"), QStringLiteral("10,00")}));

    // By code, debits first, or in the order they were entered.
    d.grilla.FijarFilas(1);
    // Entered: Ventas (credit), Caja, alquileres (debit), Banco (credit).
    const qint32 cuatro = d.Asiento(QDate(2026, 5, 1), 1, QStringLiteral("20:H:30,22:D:10,10:D:20,21:H:0"));
    auto cuentas = [&] {
        QStringList l;
        for (int r = 2; r < d.grilla.Filas() - 1; ++r)
            l << d.grilla.Texto(r, 0) + QLatin1Char('/') + d.grilla.Texto(r, 1);
        return l;
    };
    d.ctx.AsiOrder = 0;
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), cuatro, 0));
    EXPECT_EQ(cuentas(), (QStringList{QStringLiteral("1.1.01 - Caja/"), QStringLiteral("5.1.01 - alquileres/"),
                                      QStringLiteral("/2.1.01 - Proveedores"), QStringLiteral("/4.1.01 - Ventas")}));

    d.grilla.FijarFilas(1);
    d.ctx.AsiOrder = 1;
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), cuatro, 0));
    EXPECT_EQ(cuentas(), (QStringList{QStringLiteral("5.1.01 - alquileres/"), QStringLiteral("1.1.01 - Caja/"),
                                      QStringLiteral("/4.1.01 - Ventas"), QStringLiteral("/2.1.01 - Proveedores")}));
}

TEST_P(Llenado, LineasEnMonedaExtranjeraSinImporteNiLibroLaTasaQueUsanYErroresDeLaBase)
{
    DatosAsientos d(GetParam());
    const qint32 id = d.Asiento(QDate(2026, 4, 1), 1, QStringLiteral("11:D:0:0,20:H:0"), QStringLiteral("Sin libro"), QVariant());
    ASSERT_FALSE(CargarAsientoEnGrilla(d.asientos, d.conexion(), id, 0));
    EXPECT_EQ(FilaComoTexto(d.grilla, 1).section(QLatin1Char('#'), 0, 0), QStringLiteral("|01/04/26 Sin libro|||| "));
    EXPECT_EQ(d.grilla.Dato(1, 5).toString(), QStringLiteral("0:0"));
    EXPECT_EQ(d.grilla.Texto(2, 4), QStringLiteral("0,000"));   // rate 0
    EXPECT_FALSE(d.grilla.Dato(2, 5).isValid());                // and no amount in column-5 data

    // The rate an entry's lines already use for a currency.
    d.ctx.AsiOrder = 1; // two lines of one account: keep them in the order they were entered
    d.Cargar(d.Asiento(QDate(2026, 4, 1), 0, QStringLiteral("20:D:100,11:H:4:100,11:H:0:5")));
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(2), 25);   // 100 in pesos for U$S 4
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(3), 0);    // no line in that currency

    d.Cargar(d.Asiento(QDate(2026, 4, 2), 0, QStringLiteral("11:D:0:0,20:H:0")));
    EXPECT_DOUBLE_EQ(d.asientos.BuscarTCMonedaCuenta(2), 0);    // amount 0: the rate cell, here 0

    // A database error while loading is told as 1916 (one entry) or 1917 (a view).
    d.conexion().Ejecutar(QStringLiteral("Drop Table cceProyectos"));
    const auto uno = CargarAsientoEnGrilla(d.asientos, d.conexion(), 1, 0);
    ASSERT_TRUE(uno.has_value());
    EXPECT_EQ(uno->numeroTexto, 1916);
    const auto vista = CargarAsientos(d.asientos, d.conexion(), Vista::kHoy, {}, QDate(2026, 1, 1), {});
    ASSERT_TRUE(vista.has_value());
    EXPECT_EQ(vista->numeroTexto, 1917);
    EXPECT_TRUE(d.grilla.Redibujar()); // switched back on after the error
    // ... showing none of the view, and a new entry still offered
    ASSERT_EQ(d.grilla.Filas(), d.grilla.FilasFijas() + 1);
    EXPECT_TRUE(d.asientos.EsFilaNuevoAsiento(d.grilla.FilasFijas()));
}

// A currency worth less than the accounting currency: a yen at a quarter of a peso, shown by
// the line editor as "/ 4.000". Its rate goes one way in every operation: to the accounting
// currency U 1000 at 0.25 is $ 250, never $ 4000.
class TasasDeUnaMonedaMenor : public ::testing::TestWithParam<Motor>
{
protected:
    TasasDeUnaMonedaMenor()
        : d(GetParam())
    {
        d.conexion().Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo)"
                                             " Values (3, 'Y', 1, '#,##0.00', '#,##0.000', 1)"));
        d.conexion().Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueFechaCerrada, CueEsCarpeta)"
                                             " Values (12, 1, '1.1.05', 'Banco Yenes', 3, Null, 0)"));
        EXPECT_FALSE(d.monedas.CargarMonedas(d.conexion()));
        d.monedas.FijarMonedaContabilidad(1);
        d.ctx.AsiOrder = 1;
    }

    void cargar(const QString &lineas) { d.Cargar(d.Asiento(QDate(2026, 4, 1), 1, lineas)); }

    // Amount in the currency, accounting amount, rate (as held), the rate as shown and the
    // column-5 data.
    QString linea(int fila)
    {
        const RegistroLinea l = d.asientos.LineaDeFila(fila);
        return QStringLiteral("%1 %2 %3 [%4] %5")
            .arg(l.dImporte.aDouble(), 0, 'g', 12)
            .arg(l.dImporteMC.aDouble(), 0, 'g', 12)
            .arg(l.dTCambio, 0, 'g', 12)
            .arg(d.grilla.Texto(fila, 4))
            .arg(d.grilla.Dato(fila, 5).toDouble(), 0, 'g', 12);
    }

    DatosAsientos d;
};

struct CasoTasa
{
    bool bMonedaCuenta;
    double tasa;            // accounting units per unit
    const char *esperada;   // the yen line afterwards
};

TEST_P(TasasDeUnaMonedaMenor, EnAmbosSentidos)
{
    // The same yen line at rate after rate, each from the one before.
    cargar(QStringLiteral("12:D:1000:250,20:H:250"));
    ASSERT_EQ(linea(2), QStringLiteral("1000 250 0.25 [0,250] 1000"));
    const CasoTasa casos[] = {
        {false, 0.25, "1000 250 0.25 [0,250] 1000"},                   // "/ 4": 1000 / 4
        {false, 1 / 4.5, "1000 222.22 0.222222222222 [0,222] 999.99"}, // "/ 4.5" typed by the user
        {true, 0.2, "1111.1 222.22 0.2 [0,200] 1111.1"},              // "/ 5", the pesos stay
        // An average is applied as it is; its cell shows it cut to the rate mask, "/ 4.000".
        {true, 1 / 3.9999, "888.86 222.22 0.25 [0,250] 888.857778"},
        {false, 2, "888.86 1777.72 2 [2,000] 888.86"},                 // worth more now: "* 2"
        {true, 2.5, "711.09 1777.72 2.5 [2,500] 711.088"},             // the pesos stay
    };
    for (const CasoTasa &c : casos) {
        EXPECT_EQ(d.asientos.AplicarTasa(c.bMonedaCuenta, c.tasa, 3), 1);
        EXPECT_EQ(linea(2), QString::fromLatin1(c.esperada)) << c.bMonedaCuenta << " " << c.tasa;
    }
    EXPECT_EQ(linea(3).section(QLatin1Char(' '), 0, 1), QStringLiteral("250 250")); // pesos: untouched
    // No rate is no rate at all.
    EXPECT_EQ(d.asientos.AplicarTasa(false, 0, 3), 0);
    EXPECT_EQ(d.asientos.AplicarTasa(true, -2, 3), 0);
    EXPECT_EQ(linea(2), QStringLiteral("711.09 1777.72 2.5 [2,500] 711.088"));
}

TEST_P(TasasDeUnaMonedaMenor, PromedioDeTasasMenoresQueUno)
{
    // U 1000 at 0.25 and U 3000 at 0.30: the average is 1150 / 4000 = 0.2875, and the pesos
    // add up as before. A line with no amount in yen (an exchange difference) stays.
    cargar(QStringLiteral("12:D:1000:250,12:D:3000:900,12:D:0:7,20:H:1157"));
    d.asientos.PromediarTasas();
    EXPECT_EQ(linea(2), QStringLiteral("1000 287.5 0.287521564117 [0,288] 1000"));
    EXPECT_EQ(linea(3), QStringLiteral("3000 862.5 0.287521564117 [0,288] 3000"));
    EXPECT_EQ(linea(4).section(QLatin1Char(' '), 0, 1), QStringLiteral("0 7"));
    bool debeMenor = false, cierra = false;
    Importe difMC, difME;
    d.asientos.CierreAsiento(debeMenor, difMC, difME, cierra);
    EXPECT_TRUE(difMC.esCero());

    // The exchange difference is left alone by one rate too.
    EXPECT_EQ(d.asientos.AplicarTasa(false, 0.25, 3), 2);
    EXPECT_EQ(linea(4).section(QLatin1Char(' '), 0, 1), QStringLiteral("0 7"));
    EXPECT_EQ(d.asientos.AplicarTasa(true, 0.25, 3), 2);
    EXPECT_EQ(linea(4).section(QLatin1Char(' '), 0, 1), QStringLiteral("0 7"));
}

TEST_P(TasasDeUnaMonedaMenor, DolaresYYenesEnUnAsiento)
{
    // Each currency at its own average, each the right way round; pesos untouched.
    cargar(QStringLiteral("11:D:100:4000,11:D:300:12600,12:D:1000:250,12:D:3000:900,10:D:5,20:H:17755"));
    d.asientos.PromediarTasas();
    EXPECT_EQ(linea(2), QStringLiteral("100 4150 41.5 [41,500] 100"));
    EXPECT_EQ(linea(3).section(QLatin1Char(' '), 0, 3), QStringLiteral("300 12450 41.5 [41,500]"));
    EXPECT_EQ(linea(4).section(QLatin1Char(' '), 0, 1), QStringLiteral("1000 287.5"));
    EXPECT_EQ(linea(5).section(QLatin1Char(' '), 0, 1), QStringLiteral("3000 862.5"));
    EXPECT_EQ(linea(6).section(QLatin1Char(' '), 0, 2), QStringLiteral("5 5 1"));

    // One rate for the dollars: to the account's currency the pesos stay, to the accounting
    // currency the dollars stay.
    EXPECT_EQ(d.asientos.AplicarTasa(true, 40, 2), 2);
    EXPECT_EQ(linea(2).section(QLatin1Char(' '), 0, 2), QStringLiteral("103.75 4150 40"));
    EXPECT_EQ(d.asientos.AplicarTasa(false, 41, 2), 2);
    EXPECT_EQ(linea(3).section(QLatin1Char(' '), 0, 2), QStringLiteral("311.25 12761.25 41"));
}

INSTANCIAR_EN_MOTORES(TasasDeUnaMonedaMenor);

// What the grid holds is what it shows, and what is stored: amounts enter the grid rounded to
// the mask of their cell.
TEST_P(Llenado, LoQueSeGuardaEsLoQueSeMuestra)
{
    DatosAsientos d(GetParam());
    d.Cargar(d.Asiento(QDate(2026, 4, 1), 0, QStringLiteral("10:D:1,20:H:1")));
    Grilla &g = d.grilla;
    g.InsertarFila(4);

    struct Caso
    {
        qint16 iMon;
        double importe;
        double tasa;
        double importeMC;
        const char *fila;      // debit, rate and column-5 texts
        double guardado;       // LineaDatos::Importe
        double guardadoMC;     // LineaDatos::ImporteMC
    };
    const Caso casos[] = {
        {2, 100.555, 41.465, 4169.5634, "4.169,56|41,465|100,56", 100.56, 4169.56},
        {1, 10.005, 0, 10.005, "10,01||", 10.01, 10.01},
    };
    for (const Caso &c : casos) {
        RegistroLinea l;
        l.sTextDisplay = QStringLiteral("cuenta");
        l.lCta = c.iMon == 2 ? 11 : 10;
        l.iMon = c.iMon;
        l.dImporte = Importe::DesdeDouble(c.importe);
        l.dTCambio = c.tasa;
        l.dImporteMC = Importe::DesdeDouble(c.importeMC);
        d.asientos.FilaLineaAsiento(4, l);
        const QString texto = g.Texto(4, 2) + QLatin1Char('|') + g.Texto(4, 4) + QLatin1Char('|') + g.Texto(4, 5);
        EXPECT_EQ(texto, QString::fromLatin1(c.fila));
        // The held value reads back from the text.
        EXPECT_EQ(g.Valor(4, 2), Importe::DesdeDouble(LeerNumero(g.Texto(4, 2))));
        const RegistroLinea leida = d.asientos.LineaDeFila(4);
        EXPECT_EQ(leida.dImporte, Importe::DesdeDouble(c.guardado));
        EXPECT_EQ(leida.dImporteMC, Importe::DesdeDouble(c.guardadoMC));
        const QVector<LineaDatos> lineas = d.asientos.LineasParaGrabar();
        ASSERT_EQ(lineas.size(), 3);
        EXPECT_EQ(lineas[2].Importe, Importe::DesdeDouble(c.guardado));
        EXPECT_EQ(lineas[2].ImporteMC, Importe::DesdeDouble(c.guardadoMC));
    }
}

// The grid's balance compares the sums as the currency's mask prints them: with a blank mask
// every decimal is printed, so 0.0001 does not balance; with a mask of no decimals, 0.30 does.
TEST_P(Llenado, BalanceConMascaraEnBlancoOSinDecimales)
{
    for (const auto &[mascara, lineas, cierraEsperado] : {std::tuple{"", "10:D:100.0001,20:H:100", false}, std::tuple{"#,##0", "10:D:100.3,20:H:100", true}}) {
        DatosAsientos d(GetParam());
        d.conexion().Ejecutar(QStringLiteral("Update genMonedas Set MonRedondeo = ? Where MonID = 1"), {QString::fromLatin1(mascara)});
        EXPECT_FALSE(d.monedas.CargarMonedas(d.conexion()));
        d.monedas.FijarMonedaContabilidad(1);
        d.grilla.FijarFormatoColumna(2, QString::fromLatin1(mascara));
        d.grilla.FijarFormatoColumna(3, QString::fromLatin1(mascara));
        d.Cargar(d.Asiento(QDate(2026, 3, 1), 1, QString::fromLatin1(lineas)));
        bool debeMenor = false, cierra = false;
        Importe difMC, difME;
        d.asientos.CierreAsiento(debeMenor, difMC, difME, cierra);
        EXPECT_EQ(cierra, cierraEsperado) << "'" << mascara << "' " << lineas;
    }
}

INSTANCIAR_EN_MOTORES(Llenado);

// A line's key is read field by field, by hand; each field reads as QString would read it,
// and a field the key lacks is 0.
TEST(ClaveDeLinea, CadaCampoSeLeeComoLoLeeQString)
{
    const QStringList claves{QStringLiteral("1201|0|0|2|3"), AsientosGrilla::kClaveDiferencia, QStringLiteral("7|-12|+4| 5 |"),
                             QStringLiteral("123456789|-123456789|1234567890|2147483647|2147483648"),
                             QStringLiteral("-2147483648|-|1x|x1|--1"), QStringLiteral("12"), QString(), QStringLiteral("|||"), QStringLiteral("|9|5")};
    for (const QString &clave : claves) {
        const QStringList campos = clave.split(QLatin1Char('|'));
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(CampoDeClave(clave, i), i < campos.size() ? campos[i].toInt() : 0) << qPrintable(clave) << " campo " << i;
    }
    EXPECT_EQ(CampoDeClave(QStringLiteral("7|-12|+4| 5 |"), 1), -12);
    EXPECT_EQ(CampoDeClave(QStringLiteral("123456789|-123456789|1234567890"), 2), 1234567890);
}

} // namespace
