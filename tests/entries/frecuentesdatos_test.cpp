#include "fixtureasientos.h"

#include "comun/textoscatalogo.h"

#include "entries/frecuentesdatos.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

class Frecuentes : public ::testing::TestWithParam<Motor>
{
protected:
    static MovimientoFrecuente plantilla(const QString &nombre, const QVector<LineaDatos> &lineas, const QDate &proxima = {})
    {
        MovimientoFrecuente m;
        m.Empresa = 1;
        m.Nombre = nombre;
        m.Recurrencia = proxima.isValid() ? QString::fromLatin1(FrecuentesDatos::kRecurrenciaAgendado) : QString();
        m.FechaProxima = proxima;
        m.Fecha = QDate(2026, 3, 10);
        m.Leyenda = nombre + QStringLiteral(" (leyenda)");
        m.Libro = 1;
        m.Autoriza = 4;
        m.Usuario = 7;
        m.Lineas = lineas;
        m.Monedas = QVector<qint16>(lineas.size(), 1);
        return m;
    }

    void guardar(MovimientoFrecuente m, qint32 empresa = 1)
    {
        m.Empresa = empresa;
        ASSERT_TRUE(Bien(f.Guardar(m)));
    }
    // The template's id once stored; 0 when the write was refused.
    qint32 guardado(MovimientoFrecuente &m) { return f.Guardar(m) ? 0 : m.MFrID; }
    // The entry registered from the template by user 7; 0 when refused.
    qint32 registrar(const MovimientoFrecuente &m, const QDate &fecha, bool borrador = false)
    {
        qint32 id = 0;
        const auto fallo = f.Registrar(m, fecha, 7, libros, borrador, id);
        EXPECT_EQ(fallo.has_value(), id == 0) << Motivo(fallo);
        return id;
    }
    int contar(const char *tabla) { return d.Valor(QStringLiteral("Select Count(*) From ") + QLatin1String(tabla)).toInt(); }
    QString proxima(qint32 mfrID)
    {
        return d.Filas(QStringLiteral("Select MFrRecurrencia, MFrFechaProxima From genMovimientosFrecuentes Where MFrID = ?"), {mfrID}).value(0);
    }
    // An entry as stored: state, date, legend, book, then each line by its order.
    QStringList asiento(qint32 id)
    {
        return d.Filas(QStringLiteral("Select AsiEstado, AsiFechaAsiento, AsiLeyenda, AsiTipo From cceAsientos Where AsiID = ?"), {id})
             + d.Filas(QStringLiteral("Select ACuCuenta, ACuDebe, AcuHaber, ACuImporteMC, ACuProyecto, ACuDepartamento"
                                      " From cceAsientoCuenta Where ACuIDAsiento = ? Order By ACuOrden"),
                       {id});
    }
    // A whole template as one text, amounts to the cent, so a round trip compares whole.
    static QString texto(const MovimientoFrecuente &m)
    {
        QStringList t{QStringList{QString::number(m.MFrID), QString::number(m.Empresa), m.Nombre, m.Recurrencia,
                                  m.FechaProxima.toString(Qt::ISODate), m.Fecha.toString(Qt::ISODate), m.Leyenda,
                                  QString::number(m.Libro), QString::number(m.Autoriza), QString::number(m.Usuario)}
                          .join(QLatin1Char('|'))};
        for (int i = 0; i < m.Lineas.size(); ++i) {
            const LineaDatos &l = m.Lineas[i];
            t << QStringLiteral("%1 %2 %3 %4 %5 %6/%7 $%8").arg(l.Cuenta).arg(l.AlDebe ? 'D' : 'H').arg(l.Importe.aDouble(), 0, 'f', 2)
                     .arg(l.ImporteMC.aDouble(), 0, 'f', 2).arg(l.Tasa, 0, 'f', 6).arg(l.Proyecto).arg(l.Departamento).arg(m.Monedas.value(i, -1));
        }
        return t.join(QLatin1Char('\n'));
    }

    DatosAsientos d{GetParam()};
    FrecuentesDatos f{d.conexion(), TextoEspanol}; // refusals are told in the user's words
    LibrosSistema libros;
    const QVector<LineaDatos> unPeso{Linea(22, true, 1), Linea(10, false, 1)};
};

TEST_P(Frecuentes, GuardarYLeerConservanCabezalLineasYMonedasYReemplazarCambiaLasLineas)
{
    MovimientoFrecuente m = plantilla(QStringLiteral("Alquiler"),
                                      {Linea(22, true, 1234.56, -1, 2, 3), Linea(11, false, 30.86, 1234.40), Linea(20, false, 0.16)});
    m.Monedas = {1, 2, 0};
    const qint32 id = guardado(m);
    ASSERT_GT(id, 0);
    EXPECT_EQ(m.MFrID, id);
    EXPECT_EQ(d.Filas(QStringLiteral("Select MFLOrden, MFLCuenta, MFLMoneda, MFLEsDebe, MFLImporte, MFLImporteMC, MFLProyecto,"
                                     " MFLDepartamento From genMovimientosFrecuentesLineas Where MFLIDMovimiento = ? Order By MFLOrden"),
                      {id}),
              (QStringList{QStringLiteral("1|22|1|1|1234.56|1234.56|2|3"), QStringLiteral("2|11|2|0|30.86|1234.40|0|0"),
                           QStringLiteral("3|20|0|0|0.16|0.16|0|0")}));
    const auto leido = *f.Leer(id);
    ASSERT_TRUE(leido.has_value());
    EXPECT_EQ(texto(*leido), texto(m));
    EXPECT_FALSE(leido->Agendado());

    // Stored again: the same template, its old lines gone.
    m.Nombre = QStringLiteral("Alquiler local");
    m.Lineas = {Linea(10, false, 99.99), Linea(22, true, 99.99)};
    m.Monedas = {1, 1};
    EXPECT_EQ(guardado(m), id);
    EXPECT_EQ(contar("genMovimientosFrecuentes"), 1);
    EXPECT_EQ(d.Filas(QStringLiteral("Select MFLIDMovimiento, MFLOrden, MFLCuenta, MFLImporteMC From genMovimientosFrecuentesLineas"
                                     " Order By MFLOrden")),
              (QStringList{QStringLiteral("%1|1|10|99.99").arg(id), QStringLiteral("%1|2|22|99.99").arg(id)}));
    EXPECT_EQ(texto(**f.Leer(id)), texto(m));

    // One that no longer exists is not brought back.
    ASSERT_TRUE(Bien(f.Eliminar(id)));
    EXPECT_EQ(guardado(m), 0);
    EXPECT_EQ(contar("genMovimientosFrecuentesLineas"), 0);
    EXPECT_FALSE(f.Leer(id)->has_value());

    // A new one whose lines cannot be written keeps no id, so that storing it again makes it.
    MovimientoFrecuente nuevo = plantilla(QStringLiteral("Luz"), {Linea(22, true, 10), Linea(10, false, 10)});
    d.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentesLineas Rename To lineasAparte"));
    EXPECT_EQ(guardado(nuevo), 0);
    EXPECT_EQ(nuevo.MFrID, 0);
    d.conexion().Ejecutar(QStringLiteral("Alter Table lineasAparte Rename To genMovimientosFrecuentesLineas"));
    EXPECT_TRUE(Bien(f.Guardar(nuevo)));

    // A line beyond what a line may hold in its own currency or in the accounting one, or at a
    // rate that is no number, refuses the whole template, naming its account (2142).
    LineaDatos sinTasa = Linea(11, false, 10, 400);
    sinTasa.Tasa = std::numeric_limits<double>::infinity();
    for (const LineaDatos &mala : {Linea(22, true, 2e11, 100), Linea(11, true, 100, 2e11), sinTasa}) {
        SCOPED_TRACE(mala.Cuenta);
        MovimientoFrecuente demasiado = plantilla(QStringLiteral("Demasiado"), {mala, Linea(10, false, 10)});
        const auto fallo = f.Guardar(demasiado);
        ASSERT_TRUE(fallo);
        EXPECT_EQ(fallo->detalle, TextoEspanol(2142).arg(mala.Cuenta));
    }
    EXPECT_EQ(contar("genMovimientosFrecuentes"), 1);
}

TEST_P(Frecuentes, RegistrarSegunCuadreYRelojRegistradoBorradorOInconcluso)
{
    // 0.10 + 0.20 against 0.30 balances to the cent; 100 against 99.99 does not.
    MovimientoFrecuente cierra = plantilla(QStringLiteral("Centavos"), {Linea(22, true, 0.1, -1, 5, 6), Linea(10, true, 0.2), Linea(20, false, 0.3)});
    MovimientoFrecuente noCierra = plantilla(QStringLiteral("Descuadrado"), {Linea(22, true, 100), Linea(10, false, 99.99)});
    const QDate fecha(2026, 4, 30);
    const QStringList lineasCierra{QStringLiteral("22|0.10|null|0.10|5|6"), QStringLiteral("10|0.20|null|0.20|0|0"),
                                   QStringLiteral("20|null|0.30|0.30|0|0")};

    const qint32 registrado = registrar(cierra, fecha);
    ASSERT_GT(registrado, 0);
    EXPECT_EQ(asiento(registrado), QStringList{QStringLiteral("1|2026-04-30|Centavos (leyenda)|1")} + lineasCierra);
    EXPECT_EQ(asiento(registrar(cierra, fecha, true)), QStringList{QStringLiteral("0|2026-04-30|Centavos (leyenda)|1")} + lineasCierra);
    for (bool enBorrador : {false, true}) {
        EXPECT_EQ(asiento(registrar(noCierra, fecha.addDays(1), enBorrador)),
                  (QStringList{QStringLiteral("2|2026-05-01|Descuadrado (leyenda)|1"), QStringLiteral("22|100.00|null|100.00|0|0"),
                               QStringLiteral("10|null|99.99|99.99|0|0")}))
            << enBorrador;
    }
    EXPECT_EQ(d.Valor(QStringLiteral("Select Count(*) From cceAsientos Where AsiUsuario = 7")).toInt(), 4);

    // A template without lines writes nothing.
    EXPECT_EQ(registrar(plantilla(QStringLiteral("Vacío"), {}), fecha), 0);
    EXPECT_EQ(contar("cceAsientos"), 4);

    // A scheduled entry registered on its day is registered; the day after today by the
    // connection's clock (here in the next year) it waits as a draft.
    const MovimientoFrecuente alquiler = plantilla(QStringLiteral("Alquiler"), unPeso);
    const QDate hoy(2026, 12, 31);
    d.conexion().relojCompartido()->Fijar(QDateTime(hoy, QTime(12, 0)));
    for (const QDate dia : {hoy.addDays(-1), hoy, hoy.addDays(1)}) {
        const qint32 id = registrar(alquiler, dia);
        ASSERT_GT(id, 0);
        EXPECT_EQ(asiento(id).value(0), QStringLiteral("%1|%2|Alquiler (leyenda)|1").arg(dia > hoy ? 0 : 1).arg(dia.toString(Qt::ISODate)));
    }
}

// A template balances by the entries' own test, at the accounting currency's decimals: three
// decimals see a thousandth that cents would not, none forgive a fraction.
TEST_P(Frecuentes, CuadraConLosDecimalesDeLaMonedaDeLaContabilidad)
{
    const qint16 mc = d.ctx.monedaContabilidad;
    const MovimientoFrecuente milesimo = plantilla(QStringLiteral("Milésimo"), {Linea(22, true, 0.101), Linea(10, true, 0.2), Linea(20, false, 0.3)});
    const MovimientoFrecuente fraccion = plantilla(QStringLiteral("Fracción"), {Linea(22, true, 100.3), Linea(20, false, 100)});
    for (const auto &[mascara, milesimoCierra, fraccionCierra] : {std::tuple{"#,##0.00", true, false}, std::tuple{"#,##0.000", false, false},
                                                                  std::tuple{"#,##0", true, true}}) {
        SCOPED_TRACE(mascara);
        d.conexion().Ejecutar(QStringLiteral("Update genMonedas Set MonRedondeo = ? Where MonID = ?"), {QString::fromLatin1(mascara), mc});
        EXPECT_FALSE(d.monedas.CargarMonedas(d.conexion()));
        d.monedas.FijarMonedaContabilidad(mc);
        EXPECT_EQ(milesimo.Balance(mc, d.monedas).cierra, milesimoCierra);
        EXPECT_EQ(fraccion.Balance(mc, d.monedas).cierra, fraccionCierra);
    }
}

// A schedule begun on the 31st keeps its day where the month has it.
TEST(FrecuentesFechas, ElDiaDelComienzoVuelveCuandoElMesLoTiene)
{
    MovimientoFrecuente m;
    m.Recurrencia = QString::fromLatin1(FrecuentesDatos::kRecurrenciaAgendado);
    m.Fecha = QDate(2026, 1, 31);
    QStringList fechas;
    for (m.FechaProxima = m.Fecha; fechas.size() < 4; m.FechaProxima = FrecuentesDatos::SiguienteFecha(m))
        fechas << m.FechaProxima.toString(Qt::ISODate);
    EXPECT_EQ(fechas, (QStringList{QStringLiteral("2026-01-31"), QStringLiteral("2026-02-28"), QStringLiteral("2026-03-31"),
                                   QStringLiteral("2026-04-30")}));
}

TEST_P(Frecuentes, UnaCuentaCerradaNoDejaNadaYUnAgendadoAvanzaUnaVezPorFecha)
{
    // Proveedores (21) is closed on 30 June 2020: that day is refused, the next is not.
    MovimientoFrecuente pago = plantilla(QStringLiteral("Pago"), {Linea(21, true, 50), Linea(10, false, 50)}, QDate(2020, 6, 30));
    const qint32 id = guardado(pago);
    ASSERT_GT(id, 0);

    qint32 ninguno = 0;
    const auto fallo = f.Registrar(pago, QDate(2020, 6, 30), 7, libros, false, ninguno);
    EXPECT_TRUE(fallo && fallo->detalle.contains(QStringLiteral("30/06/2020"))) << Motivo(fallo);
    EXPECT_EQ(ninguno, 0);
    EXPECT_EQ(registrar(pago, QDate(2019, 12, 31)), 0);
    EXPECT_EQ(contar("cceAsientos"), 0);
    EXPECT_EQ(contar("cceAsientoCuenta"), 0);
    EXPECT_EQ(proxima(id), QStringLiteral("mensual|2020-06-30")); // the move of the date went back too

    EXPECT_EQ(asiento(registrar(pago, QDate(2020, 7, 1))).value(0), QStringLiteral("1|2020-07-01|Pago (leyenda)|1"));
    EXPECT_EQ(proxima(id), QStringLiteral("mensual|2020-07-30"));

    // A scheduled one moves a month on; the same due date is never registered twice.
    qint32 mensual = 0;
    ASSERT_TRUE(Bien(f.Crear(CabezalDatos{0, 1, 0, QDate(2026, 1, 15), QStringLiteral("Alquiler mensual"), 1},
                             {Linea(22, true, 500), Linea(10, false, 500)}, {1, 1}, true, QStringLiteral("Alquiler mensual"), false, mensual)));
    EXPECT_EQ(proxima(mensual), QStringLiteral("mensual|2026-01-15"));

    const MovimientoFrecuente leido = **f.Leer(mensual);
    const qint32 primero = registrar(leido, leido.FechaProxima);
    ASSERT_GT(primero, 0);
    EXPECT_EQ(asiento(primero).value(0), QStringLiteral("1|2026-01-15|Alquiler mensual|1"));
    EXPECT_EQ(proxima(mensual), QStringLiteral("mensual|2026-02-15"));

    // The same due date again, from the template as it was read: nothing at all.
    EXPECT_EQ(registrar(leido, leido.FechaProxima), 0);
    EXPECT_EQ(contar("cceAsientos"), 2); // and the payment above
    EXPECT_EQ(contar("cceAsientoCuenta"), 4);
    EXPECT_EQ(proxima(mensual), QStringLiteral("mensual|2026-02-15"));

    // Read again, the next month goes through.
    const MovimientoFrecuente siguiente = **f.Leer(mensual);
    EXPECT_GT(registrar(siguiente, siguiente.FechaProxima), primero);
    EXPECT_EQ(proxima(mensual), QStringLiteral("mensual|2026-03-15"));
}

TEST_P(Frecuentes, VencidosHastaHoyYBuscadosPorParteDelNombreSoloDeLaEmpresa)
{
    guardar(plantilla(QStringLiteral("Vence hoy"), unPeso, QDate(2026, 11, 23)));
    guardar(plantilla(QStringLiteral("Vence mañana"), unPeso, QDate(2026, 11, 24)));
    guardar(plantilla(QStringLiteral("Venció en octubre"), unPeso, QDate(2026, 10, 1)));
    guardar(plantilla(QStringLiteral("Vence en otra empresa"), unPeso, QDate(2026, 1, 1)), 2);
    MovimientoFrecuente sinAgenda = plantilla(QStringLiteral("Sin agenda"), unPeso);
    sinAgenda.FechaProxima = QDate(2026, 1, 1); // a date, but no recurrence: never due
    guardar(sinAgenda);

    QStringList vencidos;
    for (const MovimientoFrecuente &m : *f.Vencidos(1, QDate(2026, 11, 23)))
        vencidos << m.Nombre + QLatin1Char('@') + m.FechaProxima.toString(Qt::ISODate);
    EXPECT_EQ(vencidos, (QStringList{QStringLiteral("Venció en octubre@2026-10-01"), QStringLiteral("Vence hoy@2026-11-23")}));
    EXPECT_TRUE(f.Vencidos(1, QDate(2026, 9, 30))->isEmpty());

    // Found by part of the name, without case, only the company's, headers only.
    for (const char *nombre : {"Alquiler Oficina", "ALQUILER DEPÓSITO", "Retención 2%", "Sueldos 2026"})
        guardar(plantilla(QString::fromUtf8(nombre), unPeso));
    guardar(plantilla(QStringLiteral("alquiler ajeno"), unPeso), 2);
    auto nombres = [&](const QString &texto) {
        QStringList r;
        for (const MovimientoFrecuente &m : *f.Buscar(1, texto)) {
            EXPECT_TRUE(m.Lineas.isEmpty()); // headers only
            r << m.Nombre;
        }
        return r;
    };
    EXPECT_EQ(nombres(QStringLiteral("alquiler")), (QStringList{QStringLiteral("ALQUILER DEPÓSITO"), QStringLiteral("Alquiler Oficina")}));
    EXPECT_EQ(nombres(QStringLiteral(" OFICINA ")), QStringList{QStringLiteral("Alquiler Oficina")});
    EXPECT_EQ(nombres(QStringLiteral("depósito")), QStringList{QStringLiteral("ALQUILER DEPÓSITO")});
    EXPECT_EQ(nombres(QStringLiteral("2%")), QStringList{QStringLiteral("Retención 2%")});
    EXPECT_EQ(nombres(QString()).size(), 8); // and the four above
}

INSTANCIAR_EN_MOTORES(Frecuentes);

} // namespace
