// The company's opening-balance entry on the demo data: made from the balances stored with
// the accounts, and an entry turned into it and back.
#include "documentosinventana.h"

#include "comun/asientosdeprueba.h"

#include "editing/asientoapertura.h"

#include <cmath>
#include <functional>

namespace {

using R = ServicioMensajes::Respuesta;

// On the opening-balance date the session works out for the demo company.
class Apertura : public DocumentoSinVentana
{
protected:
    Apertura()
    {
        EXPECT_FALSE(GetFechaAsientoApertura(m_base.conexion(), m_datos.parametros(), m_datos.empresa, Demo::kEmpresa, BaseDePrueba::Hoy(),
                                             m_datos.fechaAsientoApertura));
        m_apertura.alCambiar = [this](bool existe) { m_avisos << existe; };
        m_apertura.ayuda = [this] { ++m_ayudas; };
    }

    void fijar(const char *campos, const char *codigo, const QVariantList &valores)
    {
        ejecutar(QStringLiteral("Update cceCuentas Set %1 Where CueCodigo = ?").arg(QLatin1String(campos)),
                 QVariantList(valores) << QString::fromLatin1(codigo));
    }
    // An account's "saldo|saldo MC|fecha de cierre".
    QString cuenta(const char *codigo)
    {
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select * From cceCuentas Where CueCodigo = ?"), {QString::fromLatin1(codigo)});
        const QDate cierre = rs->EsNulo(QStringLiteral("CueFechaCerrada")) ? QDate() : rs->Fecha(QStringLiteral("CueFechaCerrada"));
        return QStringLiteral("%1|%2|%3").arg(NumeroSQL(rs->Numero(QStringLiteral("CueSaldo"))), NumeroSQL(rs->Numero(QStringLiteral("CueSaldoMConta"))),
                                              cierre.isValid() ? cierre.toString(Qt::ISODate) : QStringLiteral("null"));
    }
    // What the entry should hold, one "código|D or H|importe|importe MC" per account with a
    // balance: a balance carries the sign of its type's usual side (TCuSigno 1 debit, -1
    // credit); a foreign account's own amount is its balance in its currency.
    QStringList saldos()
    {
        QStringList l;
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select CueCodigo, CueMoneda, Coalesce(CueSaldo, 0) As s, Coalesce(CueSaldoMConta, 0) As mc,"
                                                         " TCuSigno From cceCuentas INNER JOIN sisTipoCuenta ON TCuID = CueTipo"
                                                         " Where CueIDEmpresa = 1 And CueEsCarpeta = 0 And (CueSaldo <> 0 Or CueSaldoMConta <> 0)"));
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            const double saldo = rs->Numero(QStringLiteral("s"));
            const double pesos = rs->Numero(QStringLiteral("mc")) != 0 ? rs->Numero(QStringLiteral("mc")) : saldo;
            const int moneda = rs->EsNulo(QStringLiteral("CueMoneda")) ? 0 : int(rs->Entero(QStringLiteral("CueMoneda")));
            const bool debe = (pesos > 0) == (rs->Numero(QStringLiteral("TCuSigno")) > 0);
            const double propio = moneda == 0 || moneda == Demo::kMonedaPesos ? pesos : saldo;
            l << QStringLiteral("%1|%2|%3|%4").arg(rs->Texto(QStringLiteral("CueCodigo")), debe ? QStringLiteral("D") : QStringLiteral("H"),
                                                   NumeroSQL(std::abs(propio)), NumeroSQL(std::abs(pesos)));
        }
        return l.sort(), l;
    }
    // The stored lines in saldos()'s form.
    QStringList lineas(qint32 id)
    {
        QStringList l;
        for (const QString &x : enBase(id).mid(1))
            l << x.section(u'|', 0, 3);
        return l.sort(), l;
    }
    // Debits less credits of the accounting currency, in cents.
    qint64 diferencia(qint32 id)
    {
        return qRound64(100 * m_base.Valor(QStringLiteral("Select Sum(Case When AcuHaber Is Null Then ACuImporteMC Else -ACuImporteMC End)"
                                                          " From cceAsientoCuenta Where ACuIDAsiento = ?"), {id}).toDouble());
    }
    QDateTime sello(qint32 id)
    {
        return m_base.conexion().Abrir(QStringLiteral("Select AsiFechaModificado From cceAsientos Where AsiID = ?"), {id})
            ->FechaHora(QStringLiteral("AsiFechaModificado"));
    }
    QList<qint32> aperturas() { return ids(QStringLiteral("AsiTipo = 94 And AsiEstado <> 9")); }
    // An entry of ours with its leyend "Prueba".
    qint32 asiento(const QDate &fecha, qint16 estado, qint16 libro, const QList<LineaDePrueba> &lineas)
    {
        return GrabarAsientoDePrueba(m_base, estado, fecha, QStringLiteral("Prueba"), libro, lineas);
    }

    AsientoApertura m_apertura{m_datos, m_asientos, m_comandos, m_vista};
    QList<bool> m_avisos;
    int m_ayudas = 0;
};

TEST_P(Apertura, SeHaceDeLosSaldosUnaSolaVez1827Y1835)
{
    // Every account type with a balance, an overdrawn asset and liability, and cents.
    ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = Null"));
    for (const auto &[codigo, saldo] : {std::pair{"4.1.01", 1234.56}, {"5.3.01", 1234.56}, {"1.2.06", -80.25}, {"2.3.07", -80.25}})
        fijar("CueSaldo = ?, CueSaldoMConta = ?", codigo, {saldo, saldo});
    const QStringList esperadas = saldos();
    const int fila = m_grilla.Filas() - 1;

    m_mensajes.Responder(R::Si);
    m_apertura.MnuEdiAPA();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1827")});
    const QList<qint32> hechos = aperturas();
    ASSERT_EQ(hechos.size(), 1);
    const qint32 id = hechos.first();
    const QStringList escritas = lineas(id);
    EXPECT_EQ(escritas, esperadas);
    for (const char *l : {"1.1.01|D|25000|25000", "1.4.04|H|310000|310000", "2.1.01|H|420000|420000", "3.1.01|H|1500000|1500000",
                          "4.1.01|H|1234.56|1234.56", "5.3.01|D|1234.56|1234.56", "1.2.06|H|80.25|80.25", "2.3.07|D|80.25|80.25"})
        EXPECT_TRUE(escritas.contains(QString::fromLatin1(l))) << l;
    EXPECT_EQ(diferencia(id), 0);
    EXPECT_EQ(cabezal(id), QStringLiteral("1|%1|1095|94").arg(m_datos.fechaAsientoApertura.toString(Qt::ISODate)));

    // Shown where the new-entry row was, and current; the new-entry row follows.
    EXPECT_EQ(m_asientos.IdDeFila(fila), id);
    EXPECT_EQ(m_vista.fila, fila);
    EXPECT_TRUE(m_asientos.EsFilaNuevoAsiento(m_grilla.Filas() - 1));
    EXPECT_EQ(m_avisos, (QList<bool>{false, true}));

    // Once it exists the menu does nothing; with exchange differences booked after it, it
    // cannot go to the trash either.
    m_mensajes.mostrados.clear();
    m_apertura.MnuEdiAPA();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    asiento(m_datos.fechaAsientoApertura.addMonths(1), EstadoAsiento::kRegistrado, Demo::kLibroADC, {{"1.1.01", true, 1}, {"3.1.01", false, 1}});
    m_vista.fila = fila;
    m_mensajes.mostrados.clear();
    m_asientoEntero.EliminarAsiento(false);
    EXPECT_EQ(m_mensajes.mostrados.value(0).left(11), QStringLiteral("error: 1829"));
    EXPECT_EQ(cabezal(id).section(u'|', 0, 0), QStringLiteral("1"));
}

// A balance in dollars stored without its value in pesos is valued at the quotation of the
// opening-balance date, never booked as if the dollars were pesos; a currency with no
// quotation at all stops the entry and names the account.
TEST_P(Apertura, SinSaldosNada1855YUnSaldoEnDolaresSinSuValorEnPesosSeValoraALaCotizacion)
{
    const QDate dia = m_datos.fechaAsientoApertura;
    ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = Null, CueSaldo = 0, CueSaldoMConta = 0"));
    // With no balance at all (zero or none) nothing is made; the help is offered (1855).
    ejecutar(QStringLiteral("Update cceCuentas Set CueSaldo = Null, CueSaldoMConta = Null Where CueTipo = 1"));
    const int filas = m_grilla.Filas();
    for (const R ayuda : {R::No, R::Si}) {
        m_mensajes.mostrados.clear();
        m_mensajes.Responder(R::Si);
        m_mensajes.Responder(ayuda);
        m_apertura.MnuEdiAPA();
        EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("pregunta: 1827"), QStringLiteral("pregunta: 1855")}));
        EXPECT_EQ(m_ayudas, ayuda == R::Si ? 1 : 0);
    }
    EXPECT_TRUE(aperturas().isEmpty());
    EXPECT_EQ(m_grilla.Filas(), filas);

    // Dollars without their pesos, and pesos stored as the account's balance alone.
    ejecutar(QStringLiteral("Update cceCuentas Set CueSaldo = 0, CueSaldoMConta = 0"));
    fijar("CueSaldo = ?, CueSaldoMConta = Null", "1.1.04", {12500});
    fijar("CueSaldo = ?, CueSaldoMConta = Null", "1.1.01", {2500});
    fijar("CueSaldo = ?, CueSaldoMConta = ?", "3.1.01", {502500, 502500});
    ejecutar(QStringLiteral("Delete From genCotizacionesMoneda Where CMoFecha >= ? And CMoFecha <= ?"),
             {Conexion::ValorFecha(dia.addDays(-40)), Conexion::ValorFecha(dia)});
    ejecutar(QStringLiteral("Insert Into genCotizacionesMoneda (CMoFecha, CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoCompra, CMoVenta)"
                            " Values (?, 2, 1, 1, 40, 41)"),
             {Conexion::ValorFecha(dia.addDays(-2))});
    const qint32 id = m_apertura.HacerAsientoApertura();
    ASSERT_GT(id, 0) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(lineas(id), (QStringList{QStringLiteral("1.1.01|D|2500|2500"), QStringLiteral("1.1.04|D|12500|500000"),
                                       QStringLiteral("3.1.01|H|502500|502500")}));
    EXPECT_EQ(cabezal(id).left(2), QStringLiteral("1|"));

    // The same balance in a currency nobody quotes, with an account to be opened: it stops
    // before asking to open it, and the account stays closed.
    ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = ?"), {id});
    ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonNombre, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo)"
                            " Values (7, 'R$', 'Reales', 1, '#,##0.00', '#,##0.000', 1)"));
    ejecutar(QStringLiteral("Update cceCuentas Set CueMoneda = 7 Where CueCodigo = '1.1.04'"));
    fijar("CueFechaCerrada = ?", "1.2.01", {Conexion::ValorFecha(dia.addDays(30))});
    const QString cerrada = cuenta("1.2.01");
    // Nothing is made, only the error is said, and the account stays closed.
    auto noSeHace = [&](const char *error) {
        m_mensajes.mostrados.clear();
        EXPECT_EQ(m_apertura.HacerAsientoApertura(), 0);
        EXPECT_EQ(m_mensajes.mostrados.size(), 1);
        EXPECT_TRUE(m_mensajes.mostrados.value(0).startsWith(QLatin1String(error))) << m_mensajes.mostrados.value(0).toStdString();
        EXPECT_TRUE(aperturas().isEmpty());
        EXPECT_EQ(cuenta("1.2.01"), cerrada);
    };
    noSeHace("error: 1959");
    // A quotation of nothing is none.
    ejecutar(QStringLiteral("Insert Into genCotizacionesMoneda (CMoFecha, CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoCompra, CMoVenta)"
                            " Values (?, 7, 1, 1, 0, 0)"),
             {Conexion::ValorFecha(dia)});
    noSeHace("error: 1959");

    // Quotations that cannot be read stop it the same way: said, and nothing made.
    ejecutar(QStringLiteral("Update cceCuentas Set CueMoneda = 2 Where CueCodigo = '1.1.04'"));
    ejecutar(QStringLiteral("Drop Table genCotizacionesMoneda"));
    noSeHace("error: 1929");
}

// The banner's "aquí" with an opening-balance entry made and not finished shows that entry
// instead of refusing: the banner and the command say the same.
TEST_P(Apertura, ElQueFaltaTerminarSeMuestraEnLugarDeHacerOtro)
{
    const qint32 incompleto = asiento(m_datos.fechaAsientoApertura, EstadoAsiento::kInconcluso, Demo::kLibroPrimeraApertura,
                                      {{"1.1.01", true, 100}, {"3.1.01", false, 90}});
    EXPECT_FALSE(m_apertura.ActualizarExisteApertura());
    EXPECT_TRUE(m_apertura.HayAsientoSinTerminar()) << "the banner invites to finish it";
    m_apertura.MnuEdiAPA();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("información: 1960")});
    ASSERT_GE(m_vista.fila, m_grilla.FilasFijas());
    EXPECT_EQ(m_asientos.IdDeFila(m_vista.fila), incompleto);
    EXPECT_TRUE(m_asientos.EsFilaCabezal(m_vista.fila)); // on its header row, before the new-entry row
    EXPECT_TRUE(m_asientos.EsFilaNuevoAsiento(m_grilla.Filas() - 1));
    EXPECT_EQ(aperturas(), QList<qint32>{incompleto});
}

TEST_P(Apertura, NuncaDosAsientosDeApertura)
{
    const QDate dia = m_datos.fechaAsientoApertura;
    // A draft of the opening book is to be finished, not made again.
    const qint32 borrador = asiento(dia, EstadoAsiento::kBorrador, Demo::kLibroPrimeraApertura, {{"1.1.01", true, 100}, {"3.1.01", false, 100}});
    EXPECT_EQ(m_apertura.HacerAsientoApertura(), 0);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: 1835")});
    EXPECT_EQ(aperturas(), QList<qint32>{borrador});

    // An ordinary entry is not converted beside it; an unbalanced one never becomes it.
    const qint32 comun = asiento(dia.addDays(3), EstadoAsiento::kRegistrado, Demo::kLibroDiario, {{"1.1.01", true, 50}, {"4.1.01", false, 50}});
    const qint32 cojo = asiento(dia.addDays(3), EstadoAsiento::kInconcluso, Demo::kLibroDiario, {{"1.1.01", true, 50}});
    m_mensajes.mostrados.clear();
    cargar(comun);
    m_apertura.ConvertirApertura();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: 1835")});
    ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = ?"), {borrador});
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(R::Si);
    cargar(cojo);
    m_apertura.ConvertirApertura();
    EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("pregunta: 1856"), QStringLiteral("información: 1952")}));
    EXPECT_EQ(cabezal(cojo).section(u'|', 3), QStringLiteral("1"));

    // A copy of the registered one is an ordinary entry of the default book.
    m_mensajes.Responder(R::Si);
    cargar(comun);
    m_apertura.ConvertirApertura();
    ASSERT_EQ(aperturas(), QList<qint32>{comun});
    m_mensajes.Responder(R::Si);
    cargar(comun);
    m_asientoEntero.CopiarAsiento();
    EXPECT_EQ(aperturas(), QList<qint32>{comun});
    const qint32 copia = m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos")).toInt();
    EXPECT_NE(copia, comun);
    EXPECT_EQ(cabezal(copia).section(u'|', 3), QString::number(Demo::kLibroDiario));
}

TEST_P(Apertura, CuentasCerradasEnLaFechaOPosteriorSeAbrenSiSeAcepta)
{
    const QDate fecha = m_datos.fechaAsientoApertura;
    ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = Null"));
    for (const auto &[codigo, dias] : {std::pair{"1.2.01", 0}, {"2.1.01", 40}, {"1.2.03", -1}})
        fijar("CueFechaCerrada = ?", codigo, {Conexion::ValorFecha(fecha.addDays(dias))});
    const QStringList antes{cuenta("1.2.01"), cuenta("2.1.01"), cuenta("1.2.03")};
    ASSERT_EQ(antes[0], QStringLiteral("310000|310000|%1").arg(fecha.toString(Qt::ISODate)));

    m_mensajes.Responder(R::Cancelar);
    EXPECT_EQ(m_apertura.HacerAsientoApertura(), 0);
    EXPECT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_TRUE(m_mensajes.mostrados.value(0).startsWith(QStringLiteral("pregunta: ")));
    EXPECT_EQ((QStringList{cuenta("1.2.01"), cuenta("2.1.01"), cuenta("1.2.03")}), antes);
    EXPECT_TRUE(aperturas().isEmpty());

    m_mensajes.Responder(R::Si);
    const qint32 id = m_apertura.HacerAsientoApertura();
    ASSERT_GT(id, 0);
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_EQ(cuenta("1.2.01"), QStringLiteral("0|0|null"));
    EXPECT_EQ(cuenta("2.1.01"), QStringLiteral("0|0|null"));
    EXPECT_EQ(cuenta("1.2.03"), antes[2]);
    const QStringList escritas = lineas(id);
    EXPECT_EQ(escritas, saldos());
    EXPECT_TRUE(escritas.filter(QStringLiteral("1.2.01|")).isEmpty());
    EXPECT_TRUE(escritas.contains(QStringLiteral("1.2.03|D|85000|85000")));
    // 420,000 of credit went with the supplier's balance, 310,000 of debit with the customers':
    // the entry no longer balances, is left incomplete and is not the opening-balance entry.
    EXPECT_EQ(diferencia(id), 11000000);
    EXPECT_TRUE(cabezal(id).startsWith(QStringLiteral("2|")));
    EXPECT_FALSE(m_apertura.ActualizarExisteApertura());
}

// When the entries cannot be read the last answer stands for the banner; the start of the
// document asks for the failure to be told, and a command that needs to know stops and tells
// it with its own text and the database's detail, asking nothing.
TEST_P(Apertura, SinLeerLosAsientosQuedaLaUltimaRespuestaYSeDiceSiSePide)
{
    asiento(m_datos.fechaAsientoApertura, EstadoAsiento::kRegistrado, Demo::kLibroPrimeraApertura,
            {{"1.1.01", true, 100}, {"3.1.01", false, 100}});
    ASSERT_TRUE(m_apertura.ActualizarExisteApertura());
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientos Rename To asientosAparte"));
    EXPECT_TRUE(m_apertura.ActualizarExisteApertura());
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    EXPECT_TRUE(m_apertura.ActualizarExisteApertura(true));
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1906")});
    for (const auto &comando : {std::function<void()>([this] { m_apertura.MnuEdiAPA(); }),
                                std::function<void()>([this] { EXPECT_EQ(m_apertura.HacerAsientoApertura(), 0); })}) {
        m_mensajes.mostrados.clear();
        m_mensajes.detalles.clear();
        comando();
        EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1930")});
        EXPECT_TRUE(m_mensajes.detalles.value(0).contains(QStringLiteral("cceAsientos"), Qt::CaseInsensitive))
            << m_mensajes.detalles.value(0).toStdString();
    }
}

// A write the database fails is told with 1930 and its detail, and leaves nothing written.
TEST_P(Apertura, UnaEscrituraFallidaSeDiceConSuDetalle)
{
    const QString cerradas = QStringLiteral("Select Count(*) From cceCuentas Where CueFechaCerrada Is Not Null");
    const int antes = m_base.Valor(cerradas).toInt();
    ASSERT_GT(antes, 0);
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To historialAparte"));
    m_mensajes.Responder(R::Si); // make it
    m_mensajes.Responder(R::Si); // and open the closed accounts
    m_apertura.MnuEdiAPA();
    ASSERT_EQ(m_mensajes.mostrados.size(), 3);
    EXPECT_EQ(m_mensajes.mostrados[2], QStringLiteral("error: 1930"));
    EXPECT_TRUE(m_mensajes.detalles.value(0).contains(QStringLiteral("cceAsientosHistorial"), Qt::CaseInsensitive))
        << m_mensajes.detalles.value(0).toStdString();
    EXPECT_TRUE(aperturas().isEmpty());
    EXPECT_EQ(m_base.Valor(cerradas).toInt(), antes);
}

TEST_P(Apertura, UnAsientoComunPasaASerElDeAperturaYVuelve1856Y1857)
{
    const QString apertura = m_datos.fechaAsientoApertura.toString(Qt::ISODate);
    const QDate fecha = m_datos.fechaAsientoApertura.addDays(45);
    const qint32 id = asiento(fecha, EstadoAsiento::kBorrador, 3, {{"1.1.01", true, 500}, {"4.1.01", false, 500}});
    const QStringList suyas = lineas(id);
    const int fila = cargar(id);
    const QDateTime s0 = sello(id);

    // On the new-entry row there is no entry to convert.
    m_vista.fila = m_grilla.Filas() - 1;
    m_apertura.ConvertirApertura();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    m_vista.fila = fila;

    // Without the right to change entries nothing is asked nor changed.
    const QString letras = m_datos.letras;
    m_datos.letras = QStringLiteral("A");
    m_apertura.ConvertirApertura();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    m_datos.letras = letras;

    m_mensajes.Responder(R::No);
    m_apertura.ConvertirApertura();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1856")});
    EXPECT_EQ(cabezal(id), QStringLiteral("0|%1|Prueba|3").arg(fecha.toString(Qt::ISODate)));
    EXPECT_EQ(sello(id), s0);

    // Into it: its book, its date, registered; the stamp in whole seconds.
    m_mensajes.Responder(R::Si);
    m_apertura.ConvertirApertura();
    EXPECT_EQ(cabezal(id), QStringLiteral("1|%1|Prueba|94").arg(apertura));
    EXPECT_EQ(lineas(id), suyas);
    const QDateTime s1 = sello(id);
    EXPECT_NE(s1, s0);
    EXPECT_EQ(s1.time().msec(), 0);
    EXPECT_EQ(m_asientos.IdDeFila(fila), id);
    EXPECT_EQ(m_asientos.LibroDeFila(fila), Demo::kLibroPrimeraApertura);
    EXPECT_EQ(m_asientos.EstadoDeFila(fila), EstadoAsiento::kRegistrado);
    EXPECT_TRUE(m_apertura.ExisteAsientoApertura());

    // Back to the default book, same date and state.
    m_mensajes.Responder(R::Si);
    m_apertura.ConvertirApertura();
    EXPECT_EQ(m_mensajes.mostrados,
              (QStringList{QStringLiteral("pregunta: 1856"), QStringLiteral("pregunta: 1856"), QStringLiteral("pregunta: 1857")}));
    EXPECT_EQ(cabezal(id), QStringLiteral("1|%1|Prueba|%2").arg(apertura).arg(Demo::kLibroDiario));
    const QDateTime s2 = sello(id);
    EXPECT_GT(s2, s1);
    EXPECT_EQ(s2.time().msec(), 0);
    EXPECT_EQ(m_asientos.LibroDeFila(fila), Demo::kLibroDiario);
    EXPECT_FALSE(m_apertura.ExisteAsientoApertura());
}

// The demo's closed bank account: closed at the entry's date (1812), or closed only before
// the entry but on or after the opening-balance date (1811). Nothing is written.
TEST_P(Apertura, ConvertirConUnaCuentaCerrada1812Y1811)
{
    const QDate cierre = m_base.conexion().Abrir(QStringLiteral("Select CueFechaCerrada From cceCuentas Where CueCodigo = '1.1.07'"))
                             ->Fecha(QStringLiteral("CueFechaCerrada"));
    ASSERT_GE(cierre, m_datos.fechaAsientoApertura);
    for (const auto &[fecha, error] : {std::pair{cierre.addDays(-10), 1812}, std::pair{cierre.addDays(1), 1811}}) {
        const qint32 id = asiento(fecha, EstadoAsiento::kRegistrado, 4, {{"1.1.07", true, 100}, {"1.1.01", false, 100}});
        cargar(id);
        const QString antes = cabezal(id);
        const QDateTime s = sello(id);
        m_mensajes.mostrados.clear();
        m_mensajes.Responder(R::Si);
        m_apertura.ConvertirApertura();
        EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("pregunta: 1856"), QStringLiteral("error: %1").arg(error)}));
        EXPECT_EQ(cabezal(id), antes);
        EXPECT_EQ(sello(id), s);
    }
    EXPECT_TRUE(aperturas().isEmpty());
}

INSTANCIAR_EN_MOTORES(Apertura);

} // namespace
