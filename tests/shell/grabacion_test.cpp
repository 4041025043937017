#include "escenario.h"

#include "editing/comandosasiento.h"
#include "editing/comandosasientoentero.h"
#include "editing/unificaciontasa.h"

namespace {

using R = ServicioMensajes::Respuesta;

// The entry commands of the document on entries of our own, shown among the last ten.
class Grabacion : public Escenario
{
protected:
    // An entry of "Caja" against "Ventas de mercadería" for an amount, or with the account given.
    qint32 asiento(const QDate &fecha, int estado, double importe, const char *debe = "1.1.01", qint16 libro = 1)
    {
        return GrabarAsientoDePrueba(m_base, qint16(estado), fecha, QStringLiteral("Prueba %1").arg(importe), libro,
                                     {{debe, true, importe}, {"5.3.01", true, 0}, {"4.1.01", false, importe}}, false);
    }
    qint32 asiento(int dias, int estado, double importe) { return asiento(BaseDePrueba::Hoy().addDays(dias), estado, importe); }

    // The entry's state as stored; -100 when it is not stored.
    int estadoEnBase(qint32 id) { return enBase(id).cabezal.value(0, QStringLiteral("-100")).toInt(); }

    int contar(const QString &sql) { return m_base.Valor(sql).toInt(); }

    void mostrarUltimos() { vista(Vista::kUltimos10); }
    // Puts the grid on the entry's header row, or on its k-th line.
    void enFila(qint32 id, int k = 0) { m_doc->grid()->FijarFilaActual(filaDe(id) + k); }
    // The grid on the entry, then the command "Grabar" of its menu.
    void registrar(qint32 id)
    {
        enFila(id);
        m_doc->comandos().RegistrarAsiento();
    }
    void unificar(qint32 id, bool aLaMonedaDeLaCuenta = false)
    {
        enFila(id, 1);
        m_doc->unificacionTasa().UnificarTC(aLaMonedaDeLaCuenta);
    }
    int lineas(qint32 id, const QString &donde = QStringLiteral("1 = 1"))
    {
        return contar(QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = %1 And ").arg(id) + donde);
    }
    // A registered entry of ten days ago with the lines given as they are stored.
    qint32 asientoConLineas(const QString &leyenda, const QList<LineaDatos> &lineas)
    {
        AsientoDatos d(m_base.conexion());
        d.Cabezal() = CabezalDatos{0, Demo::kEmpresa, 1, BaseDePrueba::Hoy().addDays(-10), leyenda, 0};
        d.Lineas() = lineas;
        return IdGrabado(d);
    }
    int conLeyenda(qint32 id, const QString &leyenda)
    {
        return int(ids(QStringLiteral("AsiID = %1 And AsiLeyenda = '%2'").arg(id).arg(leyenda)).size());
    }
};

// The views of today and of the last 15 days count from the clock's day, not the system's,
// and leave out an entry a day outside either end (a leap day: the month ends on it).
TEST_P(Grabacion, LasVistasDeHoyYDeQuinceDiasCuentanDesdeElDiaDelReloj)
{
    const QList<int> dias{-15, -14, -1, 0, 1};
    const QDate hoy(2028, 2, 29);
    m_base.reloj()->Fijar(QDateTime(hoy, QTime(12, 0)));
    QList<qint32> ids;
    for (const int d : dias)
        ids << asiento(hoy.addDays(d), 1, 100 + d);
    reiniciar();
    auto vistos = [&](int v) {
        vista(v);
        QList<int> r;
        for (int i = 0; i < ids.size(); ++i)
            if (filaDe(ids[i]) > 0)
                r << dias[i];
        return r;
    };
    EXPECT_EQ(vistos(Vista::kHoy), QList<int>{0});
    EXPECT_EQ(vistos(Vista::kUltimos15Dias), (QList<int>{-14, -1, 0}));
}

// "Grabar" on one entry: to registered and back to draft, the opening-balance entry as any
// other (1837 is for a second one), nothing over another user's newer write, nothing with
// a closed account; a draft dated after today is scheduled or left; an incomplete entry is
// registered once it balances.
TEST_P(Grabacion, GrabarUnAsiento)
{
    const qint32 id = asiento(-3, 0, 150);
    const qint32 apertura = asiento(BaseDePrueba::Hoy().addDays(-3), 1, 50, "1.1.01", Demo::kLibroPrimeraApertura);
    const qint32 cambiado = asiento(-3, 0, 160);
    // "Banco Comercial" was closed in the demo; an entry dated before its closing uses it.
    auto rs = m_base.conexion().Abrir(QStringLiteral("Select CueCodigo, CueFechaCerrada From cceCuentas Where CueFechaCerrada Is Not Null"));
    const QString codigo = rs->Texto(QStringLiteral("CueCodigo"));
    const QDate cierre = rs->Fecha(QStringLiteral("CueFechaCerrada"));
    rs->Cerrar();
    const qint32 conCerrada = asiento(cierre.addDays(-1), 0, 10, codigo.toLatin1().constData());
    const qint32 futuro = asiento(1, 0, 75);
    const qint32 agendado = asiento(20, 0, 300);
    mostrarUltimos();
    const int fila = filaDe(id);
    ASSERT_GT(fila, 0);
    m_doc->grid()->FijarFilaActual(fila + 1); // a line row of the entry is enough
    m_doc->comandos().RegistrarAsiento();
    EXPECT_EQ(estadoEnBase(id), 1);
    EXPECT_EQ(m_doc->grilla().Dato(fila, 3).toInt(), 1);
    EXPECT_EQ(m_doc->grilla().Imagen(fila), QStringLiteral("asiento"));
    registrar(id); // "A borrador"
    EXPECT_EQ(estadoEnBase(id), 0);
    for (const int estado : {0, 1}) {
        registrar(apertura);
        EXPECT_EQ(estadoEnBase(apertura), estado);
    }
    EXPECT_EQ(m_mensajes.mostrados, QStringList{});

    otroCambia(cambiado, QStringLiteral("cambiada por otro"));
    registrar(cambiado);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1820)});
    EXPECT_EQ(estadoEnBase(cambiado), 0);
    EXPECT_EQ(conLeyenda(cambiado, QStringLiteral("cambiada por otro")), 1);

    m_mensajes.mostrados.clear();
    registrar(conCerrada);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1811)});
    EXPECT_EQ(estadoEnBase(conCerrada), 0);

    // Dated after today: No, then No leaves it untouched.
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(R::No);
    m_mensajes.Responder(R::No);
    registrar(futuro);
    EXPECT_EQ(estadoEnBase(futuro), 0);
    ASSERT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_TRUE(m_mensajes.mostrados[0].contains(QStringLiteral("posterior a la de hoy")));
    // A template that cannot be stored keeps the entry where it was.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentesLineas Rename To mflFuera"));
    m_mensajes.Responder(R::Si);
    registrar(futuro);
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table mflFuera Rename To genMovimientosFrecuentesLineas"));
    EXPECT_EQ(estadoEnBase(futuro), 0);
    EXPECT_TRUE(m_mensajes.mostrados.last().startsWith(Dicho("error", 1908))) << m_mensajes.mostrados.last().toStdString();
    m_mensajes.Responder(R::Si);
    registrar(futuro);
    EXPECT_EQ(estadoEnBase(futuro), -100); // gone for good
    EXPECT_EQ(filaDe(futuro), -1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes Where MFrRecurrencia = 'mensual'")), 1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentesLineas")), 3);

    // Changed by another user after it was shown: scheduling it neither makes the template
    // nor deletes the other user's entry.
    otroCambia(agendado, QStringLiteral("Cambio de la otra usuaria"));
    const int plantillas = contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes"));
    m_mensajes.Responder(R::Si); // 1807: schedule it
    registrar(agendado);
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("error", 1820));
    EXPECT_EQ(conLeyenda(agendado, QStringLiteral("Cambio de la otra usuaria")), 1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes")), plantillas);
    EXPECT_GT(filaDe(agendado), 0);

    // "Grabar" on an incomplete entry registers it once it balances, and only then; a row
    // deletion that makes it balance makes it complete as well.
    m_mensajes.mostrados.clear();
    const qint32 cierra = asiento(-3, 2, 250);
    const qint32 noCierra = asiento(-3, 2, 250);
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientoCuenta Set AcuHaber = 240, ACuImporteMC = 240 Where ACuIDAsiento = ?"
                                              " And AcuHaber Is Not Null"),
                               {noCierra});
    mostrarUltimos();
    registrar(noCierra);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("información", 1952)});
    EXPECT_EQ(estadoEnBase(noCierra), 2);

    registrar(cierra);
    EXPECT_EQ(estadoEnBase(cierra), 1);
    EXPECT_EQ(m_doc->grilla().Dato(filaDe(cierra), 3).toInt(), 1);
    EXPECT_FALSE(m_doc->asientos().EsFilaDiferencia(m_doc->asientos().UltimaFilaAsiento(filaDe(cierra))))
        << "no missing line is proposed any more";

    // An extra line of 10 at the credit of a balanced incomplete entry dated after today:
    // deleting it leaves it balanced, and a draft until its day.
    AsientoDatos d(m_base.conexion());
    ASSERT_TRUE(Bien(d.CargarAsiento(cierra)));
    LineaDatos extra = d.Lineas().last();
    extra.Cuenta = m_base.IdCuenta("5.3.01");
    extra.Importe = extra.ImporteMC = 10_imp;
    extra.Orden = 0;
    d.Lineas().append(extra);
    d.Cabezal().Estado = 2;
    d.Cabezal().Fecha = BaseDePrueba::Hoy().addDays(5);
    ASSERT_TRUE(Bien(d.GrabarTodo()));
    m_doc->comandos().RecargarAsiento(cierra, filaDe(cierra));
    const int filaCierra = filaDe(cierra);
    int filaExtra = -1;
    for (int r = filaCierra + 1; r <= m_doc->asientos().UltimaFilaAsiento(filaCierra); ++r)
        if (m_doc->asientos().LineaDeFila(r).lCta == extra.Cuenta && !m_doc->asientos().LineaDeFila(r).bEsAlDebe)
            filaExtra = r;
    ASSERT_GT(filaExtra, 0);
    m_doc->grid()->FijarFilaActual(filaExtra);
    m_mensajes.Responder(R::Si); // 1805
    m_doc->asientoEntero().EliminarAsiento(true);
    EXPECT_EQ(estadoEnBase(cierra), 0);
}

TEST_P(Grabacion, RegistrarTodosLosBorradores)
{
    // With the company's opening-balance entry made, the other drafts register all the same.
    ASSERT_GT(GrabarAsientoDePrueba(m_base, EstadoAsiento::kRegistrado, BaseDePrueba::Hoy().addDays(-30), QStringLiteral("Saldos"),
                                    Demo::kLibroPrimeraApertura, {{"1.1.01", true, 5}, {"4.1.01", false, 5}}),
              0);
    const qint32 a = asiento(-2, 0, 10);
    const qint32 b = asiento(-1, 0, 20);
    const qint32 futuro = asiento(5, 0, 30);
    mostrarUltimos();
    otroCambia(b, QStringLiteral("Prueba 20"));
    // A user who may only look registers nothing, whatever calls the command.
    auto consulta = Documento(m_host, m_mensajes, m_carpeta, Demo::kUsuarioConsulta);
    consulta->ElegirVista(Vista::kUltimos10);
    consulta->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(a), 0);

    m_doc->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(a), 1);
    EXPECT_EQ(estadoEnBase(b), 0);
    EXPECT_EQ(estadoEnBase(futuro), 0);
    EXPECT_EQ(m_mensajes.mostrados.count(Dicho("advertencia", 1822)), 1);
    // The grid shows what was written, and only that.
    EXPECT_EQ(m_doc->grilla().Dato(filaDe(a), 3).toInt(), 1);
    EXPECT_EQ(m_doc->grilla().Dato(filaDe(a), 4).toDateTime(),
              m_base.Valor(QStringLiteral("Select AsiFechaModificado From cceAsientos Where AsiID = ?"), {a}).toDateTime());
    EXPECT_EQ(m_doc->grilla().Dato(filaDe(b), 3).toInt(), 0);

    // Read again, it is registered too, and with nothing refused nothing is said.
    m_doc->comandos().RecargarAsiento(b, filaDe(b));
    m_mensajes.mostrados.clear();
    m_doc->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(b), 1);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{});

    // A write the database fails is told with its detail, not counted as a refusal.
    const qint32 c = asiento(-1, 0, 5);
    mostrarUltimos();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To historialAparte"));
    m_doc->comandos().RegistrarListados(0);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1913)});
    EXPECT_TRUE(m_mensajes.detalles.value(0).contains(QStringLiteral("cceAsientosHistorial"), Qt::CaseInsensitive))
        << m_mensajes.detalles.value(0).toStdString();
    EXPECT_EQ(estadoEnBase(c), 0);
}

// Deleting a line or the entry, never a line of a closing entry; copying, hiding; an entry
// another session sent to the trash leaves the grid when it is read again.
TEST_P(Grabacion, EliminarCopiarOcultarYUnificarLaTasa)
{
    const qint32 id = asiento(-2, 1, 40);
    const qint32 cierre = asiento(BaseDePrueba::Hoy().addDays(-2), 1, 40, "1.1.01", Demo::kLibroCierre);
    const qint32 copiado = asiento(-2, 1, 45);
    const qint32 ajeno = asiento(-2, 1, 75);
    mostrarUltimos();
    int fila = filaDe(id);
    // The zero line of "5.3.01": the entry keeps the other two and is read again.
    int linea = -1;
    for (int r = fila + 1; r <= m_doc->asientos().UltimaFilaAsiento(fila); ++r)
        if (m_doc->grilla().Texto(r, 0).startsWith(QStringLiteral("5.3.01")))
            linea = r;
    ASSERT_GT(linea, 0);
    m_doc->grid()->FijarFilaActual(linea);
    m_mensajes.Responder(R::Si);
    m_doc->asientoEntero().EliminarAsiento(true);
    EXPECT_EQ(lineas(id), 2);
    fila = filaDe(id);
    ASSERT_GT(fila, 0);
    EXPECT_EQ(m_doc->asientos().UltimaFilaAsiento(fila) - fila, 2);
    // The whole entry, after its question (asked as on the Delete key).
    enFila(id);
    m_mensajes.Responder(R::Si);
    m_doc->asientoEntero().EliminarAsiento(false);
    EXPECT_EQ(estadoEnBase(id), 9);
    EXPECT_EQ(filaDe(id), -1);
    EXPECT_TRUE(m_doc->grilla().Redibujar()); // the grid is drawn again without it
    // Deleting the row of an entry's header deletes it whole, after the same question.
    const qint32 entero = asiento(-2, 1, 50);
    mostrarUltimos();
    enFila(entero);
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(R::Si);
    m_doc->asientoEntero().EliminarAsiento(true);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("pregunta", 1804)});
    EXPECT_EQ(estadoEnBase(entero), 9);

    m_mensajes.mostrados.clear();
    enFila(cierre, 1);
    m_doc->asientoEntero().EliminarAsiento(true);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("advertencia", 1817)});
    EXPECT_EQ(lineas(cierre), 3);

    const int antes = contar(QStringLiteral("Select Count(*) From cceAsientos"));
    enFila(copiado);
    m_mensajes.Responder(R::Si);
    m_doc->asientoEntero().CopiarAsiento();
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos")), antes + 1);
    const int copia = ultimoId();
    EXPECT_EQ(lineas(copia), 3);
    EXPECT_GT(filaDe(copia), 0);
    // A copy the store cannot write is said, and nothing of it appears.
    const int filas = m_doc->grilla().Filas();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To cceAsientosHistorialFuera"));
    enFila(copiado);
    m_mensajes.Responder(R::Si);
    m_doc->asientoEntero().CopiarAsiento();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorialFuera Rename To cceAsientosHistorial"));
    EXPECT_TRUE(m_mensajes.mostrados.last().startsWith(Dicho("error", 1915))) << m_mensajes.mostrados.last().toStdString();
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos")), antes + 1);
    EXPECT_EQ(m_doc->grilla().Filas(), filas);

    AsientoDatos otro(m_base.conexion());
    ASSERT_TRUE(Bien(otro.CargarAsiento(ajeno)));
    ASSERT_FALSE(Papelera(otro, ajeno, otro.Cabezal().FechaModificado).isEmpty());
    m_doc->comandos().RecargarAsiento(ajeno, filaDe(ajeno));
    EXPECT_EQ(filaDe(ajeno), -1);
    EXPECT_EQ(m_doc->grilla().Filas(), filas - 4); // its header and three lines

    enFila(copiado);
    m_doc->asientoEntero().OcultarAsiento();
    EXPECT_EQ(filaDe(copiado), -1);
    EXPECT_EQ(estadoEnBase(copiado), 1); // only the screen changed
    EXPECT_TRUE(m_doc->grilla().Redibujar());
    mostrarUltimos();
    EXPECT_GT(filaDe(copiado), 0);

    // Unifying the rate of an entry's foreign lines: cancelled, applied, undone; in a currency
    // worth less than a peso; one that unbalances the entry; without quotations.
    m_mensajes.mostrados.clear();
    const qint32 dolares = asientoConLineas(QStringLiteral("Transferencia en dólares"),
                                       {LineaDatos{m_base.IdCuenta("1.1.08"), 0, 0, true, 100_imp, 0, 4000_imp},
                                        LineaDatos{m_base.IdCuenta("1.1.04"), 0, 0, false, 100_imp, 0, 4000_imp}});
    // ¥1000 booked at 250 pesos is "/ 4".
    Conexion &conexion = m_base.conexion();
    conexion.Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonNombre, MonCotizaEn, MonRedondeo, MonFormatoCotizacion,"
                              " MonTipo) Values (6, '¥', 'Yenes', 1, '#,##0', '#,##0.000', 1)"));
    conexion.Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueEsCarpeta, CueTipo)"
                              " Values (9001, 1, '1.1.90', 'Caja en yenes', 6, 0, 1), (9002, 1, '1.1.91', 'Banco en yenes', 6, 0, 1)"));
    const qint32 yenes = asientoConLineas(QStringLiteral("Yenes al banco"), {LineaDatos{9001, 0, 0, true, 1000_imp, 0.25, 250_imp},
                                                                            LineaDatos{9002, 0, 0, false, 1000_imp, 0.25, 250_imp}});
    // Two dollar lines booked at different rates and the exchange difference in pesos.
    const qint32 descuadra = asientoConLineas(QStringLiteral("Dólares con diferencia de cambio"),
                                              {LineaDatos{m_base.IdCuenta("1.1.08"), 0, 0, true, 100_imp, 41, 4100_imp},
                                               LineaDatos{m_base.IdCuenta("1.1.04"), 0, 0, false, 100_imp, 40, 4000_imp},
                                               LineaDatos{m_base.IdCuenta("4.1.01"), 0, 0, false, 100_imp, 1, 100_imp}});
    ASSERT_GT(dolares, 0);
    ASSERT_GT(yenes, 0);
    ASSERT_GT(descuadra, 0);
    mostrarUltimos();

    m_mensajes.ResponderNumero(std::nullopt); // cancelled: nothing changes
    unificar(dolares);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("pedido: Ingrese el valor de la tasa de cambio [Unificar tasa de cambio] ")));
    EXPECT_EQ(lineas(dolares, QStringLiteral("ACuImporteMC = 4000")), 2);
    m_mensajes.ResponderNumero(41);
    unificar(dolares);
    EXPECT_EQ(m_doc->grid()->FilaActual(), filaDe(dolares) + 1); // still on the line it was on
    EXPECT_EQ(lineas(dolares, QStringLiteral("ACuImporteMC = 4100")), 2);
    EXPECT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    // Ctrl+Z on the grid takes the unification back, as a write of its own.
    QTest::keyClick(m_doc->grid(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(lineas(dolares, QStringLiteral("ACuImporteMC = 4000")), 2);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientosHistorial Where HisAsiento = %1 And HisOperacion = 'deshacer'")
                         .arg(dolares)),
              1);

    // The rate of the yen is asked for and applied the same way: "/ 5" makes it 200, never 5000.
    m_mensajes.mostrados.clear();
    m_mensajes.ResponderNumero(5);
    unificar(yenes);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(lineas(yenes, QStringLiteral("ACuImporteMC = 200 And (ACuDebe = 1000 Or AcuHaber = 1000)")), 2);
    // "a la moneda de la cuenta" keeps the pesos: 200 pesos at "/ 8" are ¥1600.
    m_mensajes.ResponderNumero(8);
    unificar(yenes, true);
    EXPECT_EQ(lineas(yenes, QStringLiteral("ACuImporteMC = 200 And (ACuDebe = 1600 Or AcuHaber = 1600)")), 2);

    // One rate for both dollar lines leaves the sides apart. The entry is never stored
    // registered and unbalanced: the user keeps it as it was or takes it as incomplete.
    m_mensajes.mostrados.clear();
    m_mensajes.ResponderNumero(41);
    m_mensajes.Responder(R::No); // keep it as it was
    unificar(descuadra);
    ASSERT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(m_mensajes.mostrados[1].contains(QStringLiteral("no cierra (debe 4.100,00, haber 4.200,00)")))
        << m_mensajes.mostrados[1].toStdString();
    EXPECT_EQ(estadoEnBase(descuadra), 1);
    EXPECT_EQ(lineas(descuadra, QStringLiteral("ACuImporteMC = 4000")), 1);
    EXPECT_EQ(m_doc->grilla().Valor(filaDe(descuadra) + 2, 3), 4000_imp) << "the grid shows the entry as stored";
    m_mensajes.ResponderNumero(41);
    m_mensajes.Responder(R::Si); // incomplete until corrected
    unificar(descuadra);
    EXPECT_EQ(estadoEnBase(descuadra), 2);
    EXPECT_EQ(lineas(descuadra, QStringLiteral("ACuImporteMC = 4100")), 2);
    // Back to the rates that balance: it is complete again.
    m_mensajes.ResponderNumero(40);
    unificar(descuadra);
    EXPECT_EQ(lineas(descuadra, QStringLiteral("ACuImporteMC = 4000")), 2);
    EXPECT_EQ(estadoEnBase(descuadra), 2) << "4000 + 100 against 4000 still does not balance";

    // Quotations that cannot be read are told; no rate is proposed from nothing.
    conexion.Ejecutar(QStringLiteral("Drop Table genCotizacionesMoneda"));
    m_mensajes.mostrados.clear();
    unificar(dolares);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1929)});
    EXPECT_EQ(lineas(dolares, QStringLiteral("ACuImporteMC = 4000")), 2);
}

INSTANCIAR_EN_MOTORES(Grabacion);

} // namespace
