#include "comun/basesprueba.h"
#include "comun/datosdeprueba.h"
#include "comun/hostdeprueba.h"
#include "comun/mensajesguionados.h"
#include "escenario.h"

#include "editing/comandosasiento.h"
#include "editing/unificaciontasa.h"
#include "entries/asientodatos.h"
#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "shell/idioma.h"
#include "shell/lumingasiento.h"
#include "store/basedemo.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A document on the demo company, on either engine, with entries of our own added.
class Grabacion : public ::testing::TestWithParam<Motor>
{
protected:
    Grabacion()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
    }

    std::unique_ptr<lumIngAsiento> abrir(int usuario = Demo::kUsuarioAdministrador)
    {
        return DocumentoIniciado(m_base, m_host, m_mensajes, m_busqueda, m_carpeta, usuario);
    }

    // An entry of "Caja" against "Ventas de mercadería" for an amount, or with the account given.
    qint32 asiento(const QDate &fecha, int estado, double importe, const char *debe = "1.1.01", qint16 libro = 1)
    {
        return GrabarAsientoDePrueba(m_base, qint16(estado), fecha, QStringLiteral("Prueba %1").arg(importe), libro,
                                     {{debe, true, importe}, {"5.3.01", true, 0}, {"4.1.01", false, importe}}, false);
    }

    int estadoEnBase(qint32 id)
    {
        const QVariant estado = m_base.Valor(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = ?"), {id});
        return estado.isValid() ? estado.toInt() : -100;
    }

    int contar(const QString &sql) { return m_base.Valor(sql).toInt(); }

    void mostrarUltimos(lumIngAsiento &doc) { doc.ElegirVista(Vista::kUltimos10); }
    // Puts the grid on the entry's header row, or on its k-th line.
    static void enFila(lumIngAsiento &doc, qint32 id, int k = 0) { doc.grid()->FijarFilaActual(doc.FilaDeAsiento(id) + k); }
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

    BaseDePrueba m_base;
    QTemporaryDir m_carpeta;
    HostDePrueba m_host;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_busqueda;
};

// The views of today and of the last 15 days count from the clock's day, across the ends of
// months and years.
TEST_P(Grabacion, LasVistasDeHoyYDeQuinceDiasCuentanDesdeElDiaDelReloj)
{
    const QList<int> dias{-15, -14, -1, 0, 1};
    for (const QDate hoy : {QDate(2028, 2, 29), QDate(2026, 12, 31), QDate(2025, 2, 28)}) {
        SCOPED_TRACE(hoy.toString(Qt::ISODate).toStdString());
        m_base.reloj()->Fijar(QDateTime(hoy, QTime(12, 0)));
        QList<qint32> ids;
        for (const int d : dias)
            ids << asiento(hoy.addDays(d), 1, 100 + d);
        auto doc = abrir();
        auto vistos = [&](int vista) {
            doc->ElegirVista(vista);
            QList<int> r;
            for (int i = 0; i < ids.size(); ++i)
                if (doc->FilaDeAsiento(ids[i]) > 0)
                    r << dias[i];
            return r;
        };
        EXPECT_EQ(vistos(Vista::kHoy), QList<int>{0});
        EXPECT_EQ(vistos(Vista::kUltimos15Dias), (QList<int>{-14, -1, 0}));
    }
}

TEST_P(Grabacion, RegistrarYVolverABorrador)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-3), 0, 150);
    auto doc = abrir();
    mostrarUltimos(*doc);
    const int fila = doc->FilaDeAsiento(id);
    ASSERT_GT(fila, 0);
    doc->grid()->FijarFilaActual(fila + 1); // a line row of the entry is enough
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(estadoEnBase(id), 1);
    EXPECT_EQ(doc->grilla().Dato(fila, 3).toInt(), 1);
    EXPECT_EQ(doc->grilla().Fila(fila).imagen, QStringLiteral("asiento"));
    doc->comandos().RegistrarAsiento(); // "A borrador"
    EXPECT_EQ(estadoEnBase(id), 0);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
}

TEST_P(Grabacion, OtroUsuarioGraboAntes)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-3), 0, 150);
    auto doc = abrir();
    mostrarUltimos(*doc);
    AsientoDatos otro(m_base.conexion());
    ASSERT_TRUE(Bien(otro.CargarAsiento(id)));
    otro.Cabezal().Leyenda = QStringLiteral("cambiada por otro");
    ASSERT_TRUE(Bien(otro.Grabar()));

    enFila(*doc, id);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1820)});
    EXPECT_EQ(estadoEnBase(id), 0);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiID = %1 And AsiLeyenda = 'cambiada por otro'").arg(id)), 1);
}

TEST_P(Grabacion, BorradorConFechaFuturaSeAgenda)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(1), 0, 75);
    auto doc = abrir();
    mostrarUltimos(*doc);
    enFila(*doc, id);
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(estadoEnBase(id), 0); // No, then No: untouched
    ASSERT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_TRUE(m_mensajes.mostrados[0].contains(QStringLiteral("posterior a la de hoy")));

    // A template that cannot be stored keeps the entry where it was.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentesLineas Rename To mflFuera"));
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    enFila(*doc, id);
    doc->comandos().RegistrarAsiento();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table mflFuera Rename To genMovimientosFrecuentesLineas"));
    EXPECT_EQ(estadoEnBase(id), 0);
    EXPECT_TRUE(m_mensajes.mostrados.last().startsWith(Dicho("error", 1908))) << m_mensajes.mostrados.last().toStdString();

    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    enFila(*doc, id);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(estadoEnBase(id), -100); // gone for good
    EXPECT_EQ(doc->FilaDeAsiento(id), -1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes Where MFrRecurrencia = 'mensual'")), 1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentesLineas")), 3);
}

// The opening-balance entry goes back to draft and is registered again like any other: being
// the company's one is no reason to refuse it (1837 is for a second one).
TEST_P(Grabacion, ElDeSaldosInicialesVuelveABorradorYSeRegistraDeNuevo)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-3), 1, 50, "1.1.01", Demo::kLibroPrimeraApertura);
    ASSERT_GT(id, 0);
    auto doc = abrir();
    mostrarUltimos(*doc);
    for (const int estado : {0, 1}) {
        enFila(*doc, id);
        doc->comandos().RegistrarAsiento();
        EXPECT_EQ(estadoEnBase(id), estado);
    }
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
}

TEST_P(Grabacion, CuentaCerradaNoSeRegistra)
{
    // "Banco Comercial" was closed in the demo; an entry dated before its closing uses it.
    auto rs = m_base.conexion().Abrir(QStringLiteral("Select CueCodigo, CueFechaCerrada From cceCuentas Where CueFechaCerrada Is Not Null"));
    const QString codigo = rs->Texto(QStringLiteral("CueCodigo"));
    const QDate cierre = rs->Fecha(QStringLiteral("CueFechaCerrada"));
    rs->Cerrar();
    const qint32 id = asiento(cierre.addDays(-1), 0, 10, codigo.toLatin1().constData());
    auto doc = abrir();
    mostrarUltimos(*doc);
    enFila(*doc, id);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1811)});
    EXPECT_EQ(estadoEnBase(id), 0);
}

TEST_P(Grabacion, RegistrarTodosLosBorradores)
{
    // With the company's opening-balance entry made, the other drafts register all the same.
    ASSERT_GT(GrabarAsientoDePrueba(m_base, EstadoAsiento::kRegistrado, BaseDePrueba::Hoy().addDays(-30), QStringLiteral("Saldos"),
                                    Demo::kLibroPrimeraApertura, {{"1.1.01", true, 5}, {"4.1.01", false, 5}}),
              0);
    const qint32 a = asiento(BaseDePrueba::Hoy().addDays(-2), 0, 10);
    const qint32 b = asiento(BaseDePrueba::Hoy().addDays(-1), 0, 20);
    const qint32 futuro = asiento(BaseDePrueba::Hoy().addDays(5), 0, 30);
    auto doc = abrir();
    mostrarUltimos(*doc);
    AsientoDatos otro(m_base.conexion());
    ASSERT_TRUE(Bien(otro.CargarAsiento(b)));
    ASSERT_TRUE(Bien(otro.Grabar()));
    // A user who may only look registers nothing, whatever calls the command.
    auto consulta = abrir(Demo::kUsuarioConsulta);
    mostrarUltimos(*consulta);
    consulta->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(a), 0);

    doc->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(a), 1);
    EXPECT_EQ(estadoEnBase(b), 0);
    EXPECT_EQ(estadoEnBase(futuro), 0);
    EXPECT_EQ(m_mensajes.mostrados.count(Dicho("advertencia", 1822)), 1);
    // The grid shows what was written, and only that.
    EXPECT_EQ(doc->grilla().Dato(doc->FilaDeAsiento(a), 3).toInt(), 1);
    EXPECT_EQ(doc->grilla().Dato(doc->FilaDeAsiento(a), 4).toDateTime(),
              m_base.Valor(QStringLiteral("Select AsiFechaModificado From cceAsientos Where AsiID = ?"), {a}).toDateTime());
    EXPECT_EQ(doc->grilla().Dato(doc->FilaDeAsiento(b), 3).toInt(), 0);

    // Read again, it is registered too, and with nothing refused nothing is said.
    doc->comandos().RecargarAsiento(b, doc->FilaDeAsiento(b));
    m_mensajes.mostrados.clear();
    doc->comandos().RegistrarListados(0);
    EXPECT_EQ(estadoEnBase(b), 1);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // A write the database fails is told with its detail, not counted as a refusal.
    const qint32 c = asiento(BaseDePrueba::Hoy().addDays(-1), 0, 5);
    mostrarUltimos(*doc);
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To historialAparte"));
    doc->comandos().RegistrarListados(0);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1913)});
    EXPECT_TRUE(m_mensajes.detalles.value(0).contains(QStringLiteral("cceAsientosHistorial"), Qt::CaseInsensitive))
        << m_mensajes.detalles.value(0).toStdString();
    EXPECT_EQ(estadoEnBase(c), 0);
}

TEST_P(Grabacion, EliminarAsientoYFila)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-2), 1, 40);
    auto doc = abrir();
    mostrarUltimos(*doc);
    int fila = doc->FilaDeAsiento(id);
    // The zero line of "5.3.01": the entry keeps the other two and is read again.
    int linea = -1;
    for (int r = fila + 1; r <= doc->asientos().UltimaFilaAsiento(fila); ++r)
        if (doc->grilla().Texto(r, 0).startsWith(QStringLiteral("5.3.01")))
            linea = r;
    ASSERT_GT(linea, 0);
    doc->grid()->FijarFilaActual(linea);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    doc->comandos().EliminarAsiento(true);
    EXPECT_EQ(lineas(id), 2);
    fila = doc->FilaDeAsiento(id);
    ASSERT_GT(fila, 0);
    EXPECT_EQ(doc->asientos().UltimaFilaAsiento(fila) - fila, 2);

    // The whole entry goes only when the user says so (1804).
    doc->grid()->FijarFilaActual(fila);
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    doc->comandos().EliminarAsiento(false);
    EXPECT_EQ(estadoEnBase(id), 1);
    EXPECT_EQ(doc->FilaDeAsiento(id), fila);
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("pregunta", 1804));
    doc->grid()->FijarFilaActual(fila);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    doc->comandos().EliminarAsiento(false);
    EXPECT_EQ(estadoEnBase(id), 9);
    EXPECT_EQ(doc->FilaDeAsiento(id), -1);
    EXPECT_TRUE(doc->grilla().Redibujar()); // the grid is drawn again without it
}

TEST_P(Grabacion, UnaFilaDeUnAsientoDeCierreNoSeElimina)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-2), 1, 40, "1.1.01", Demo::kLibroCierre);
    auto doc = abrir();
    mostrarUltimos(*doc);
    enFila(*doc, id, 1);
    doc->comandos().EliminarAsiento(true);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("advertencia", 1817)});
    EXPECT_EQ(lineas(id), 3);
}

TEST_P(Grabacion, CopiarYOcultar)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-2), 1, 40);
    auto doc = abrir();
    mostrarUltimos(*doc);
    const int antes = contar(QStringLiteral("Select Count(*) From cceAsientos"));
    enFila(*doc, id);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    doc->comandos().CopiarAsiento();
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos")), antes + 1);
    const int copia = contar(QStringLiteral("Select Max(AsiID) From cceAsientos"));
    EXPECT_EQ(lineas(copia), 3);
    EXPECT_GT(doc->FilaDeAsiento(copia), 0);

    // A copy the store cannot write is said, and nothing of it appears.
    const int filas = doc->grilla().Filas();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To cceAsientosHistorialFuera"));
    enFila(*doc, id);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    doc->comandos().CopiarAsiento();
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientosHistorialFuera Rename To cceAsientosHistorial"));
    EXPECT_TRUE(m_mensajes.mostrados.last().startsWith(Dicho("error", 1915))) << m_mensajes.mostrados.last().toStdString();
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos")), antes + 1);
    EXPECT_EQ(doc->grilla().Filas(), filas);

    enFila(*doc, id);
    doc->comandos().OcultarAsiento();
    EXPECT_EQ(doc->FilaDeAsiento(id), -1);
    EXPECT_EQ(estadoEnBase(id), 1); // only the screen changed
    EXPECT_TRUE(doc->grilla().Redibujar());
    mostrarUltimos(*doc);
    EXPECT_GT(doc->FilaDeAsiento(id), 0);
}

TEST_P(Grabacion, UnificarLaTasaDeLosDolares)
{
    const qint32 id = asientoConLineas(QStringLiteral("Transferencia en dólares"),
                                       {LineaDatos{m_base.IdCuenta("1.1.08"), 0, 0, true, 100_imp, 0, 4000_imp},
                                        LineaDatos{m_base.IdCuenta("1.1.04"), 0, 0, false, 100_imp, 0, 4000_imp}});
    ASSERT_GT(id, 0);
    auto doc = abrir();
    mostrarUltimos(*doc);
    enFila(*doc, id, 1);

    m_mensajes.ResponderNumero(std::nullopt); // cancelled: nothing changes
    doc->unificacionTasa().UnificarTC(false);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("pedido: Ingrese el valor de la tasa de cambio [Unificar tasa de cambio] ")));
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4000")), 2);

    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(41);
    doc->unificacionTasa().UnificarTC(false);
    EXPECT_EQ(doc->grid()->FilaActual(), doc->FilaDeAsiento(id) + 1); // still on the line it was on
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4100")), 2);
    EXPECT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // Ctrl+Z on the grid takes the unification back, as a write of its own.
    QTest::keyClick(doc->grid(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4000")), 2);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientosHistorial Where HisAsiento = %1 And HisOperacion = 'deshacer'").arg(id)), 1);

    // Quotations that cannot be read are told; no rate is proposed from nothing.
    m_base.conexion().Ejecutar(QStringLiteral("Drop Table genCotizacionesMoneda"));
    m_mensajes.mostrados.clear();
    enFila(*doc, id, 1);
    doc->unificacionTasa().UnificarTC(false);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(m_mensajes.mostrados[0], Dicho("error", 1929));
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4000")), 2);
}

// A currency worth less than the accounting one: ¥1000 booked at 250 pesos is "/ 4". The
// rate is asked for and applied the same way: "/ 5" makes it 200, never 5000.
TEST_P(Grabacion, UnificarLaTasaDeUnaMonedaQueValeMenosQueUnPeso)
{
    Conexion &c = m_base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonNombre, MonCotizaEn, MonRedondeo, MonFormatoCotizacion,"
                              " MonTipo) Values (6, '¥', 'Yenes', 1, '#,##0', '#,##0.000', 1)"));
    c.Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueEsCarpeta, CueTipo)"
                              " Values (9001, 1, '1.1.90', 'Caja en yenes', 6, 0, 1), (9002, 1, '1.1.91', 'Banco en yenes', 6, 0, 1)"));
    const qint32 id = asientoConLineas(QStringLiteral("Yenes al banco"), {LineaDatos{9001, 0, 0, true, 1000_imp, 0.25, 250_imp},
                                                                         LineaDatos{9002, 0, 0, false, 1000_imp, 0.25, 250_imp}});
    ASSERT_GT(id, 0);
    auto doc = abrir();
    mostrarUltimos(*doc);
    ASSERT_GT(doc->FilaDeAsiento(id), 0);
    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(5);
    doc->unificacionTasa().UnificarTC(false);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 200 And (ACuDebe = 1000 Or AcuHaber = 1000)")), 2);

    // "a la moneda de la cuenta" keeps the pesos: 200 pesos at "/ 8" are ¥1600.
    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(8);
    doc->unificacionTasa().UnificarTC(true);
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 200 And (ACuDebe = 1600 Or AcuHaber = 1600)")), 2);
}

// Two dollar lines booked at different rates and the exchange difference in pesos: one rate
// for both leaves the sides apart. The entry is never stored registered and unbalanced:
// the user either keeps it as it was or takes it as incomplete.
TEST_P(Grabacion, UnificarQueDescuadraNuncaDejaUnRegistradoDescuadrado)
{
    AsientoDatos d(m_base.conexion());
    d.Cabezal().Empresa = 1;
    d.Cabezal().Estado = 1;
    d.Cabezal().Fecha = BaseDePrueba::Hoy().addDays(-10);
    d.Cabezal().Leyenda = QStringLiteral("Dólares con diferencia de cambio");
    d.Lineas() = {LineaDatos{m_base.IdCuenta("1.1.08"), 0, 0, true, 100_imp, 41, 4100_imp}, LineaDatos{m_base.IdCuenta("1.1.04"), 0, 0, false, 100_imp, 40, 4000_imp},
                  LineaDatos{m_base.IdCuenta("4.1.01"), 0, 0, false, 100_imp, 1, 100_imp}};
    const qint32 id = IdGrabado(d);
    ASSERT_GT(id, 0);
    auto doc = abrir();
    mostrarUltimos(*doc);

    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(41);
    m_mensajes.Responder(ServicioMensajes::Respuesta::No); // keep it as it was
    doc->unificacionTasa().UnificarTC(false);
    ASSERT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(m_mensajes.mostrados[1].contains(QStringLiteral("no cierra (debe 4.100,00, haber 4.200,00)")))
        << m_mensajes.mostrados[1].toStdString();
    EXPECT_EQ(estadoEnBase(id), 1);
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4000")), 1);
    EXPECT_EQ(doc->grilla().Valor(doc->FilaDeAsiento(id) + 2, 3), 4000_imp) << "the grid shows the entry as stored";

    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(41);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si); // incomplete until corrected
    doc->unificacionTasa().UnificarTC(false);
    EXPECT_EQ(estadoEnBase(id), 2);
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4100")), 2);

    // Back to the rates that balance: it is complete again.
    enFila(*doc, id, 1);
    m_mensajes.ResponderNumero(40);
    doc->unificacionTasa().UnificarTC(false);
    EXPECT_EQ(lineas(id, QStringLiteral("ACuImporteMC = 4000")), 2);
    EXPECT_EQ(estadoEnBase(id), 2) << "4000 + 100 against 4000 still does not balance";
}

// "Grabar" on an incomplete entry registers it once it balances, and only then; a row
// deletion that makes it balance makes it complete as well.
TEST_P(Grabacion, UnInconclusoQueCierraSeRegistra)
{
    const qint32 cierra = asiento(BaseDePrueba::Hoy().addDays(-3), 2, 250);
    const qint32 noCierra = asiento(BaseDePrueba::Hoy().addDays(-3), 2, 250);
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientoCuenta Set AcuHaber = 240, ACuImporteMC = 240 Where ACuIDAsiento = ?"
                                              " And AcuHaber Is Not Null"),
                               {noCierra});
    auto doc = abrir();
    mostrarUltimos(*doc);
    enFila(*doc, noCierra);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("información: ") + Idioma::resLoad(952)});
    EXPECT_EQ(estadoEnBase(noCierra), 2);

    enFila(*doc, cierra);
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(estadoEnBase(cierra), 1);
    EXPECT_EQ(doc->grilla().Dato(doc->FilaDeAsiento(cierra), 3).toInt(), 1);
    EXPECT_FALSE(doc->asientos().EsFilaDiferencia(doc->asientos().UltimaFilaAsiento(doc->FilaDeAsiento(cierra))))
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
    doc->comandos().RecargarAsiento(cierra, doc->FilaDeAsiento(cierra));
    const int fila = doc->FilaDeAsiento(cierra);
    int filaExtra = -1;
    for (int r = fila + 1; r <= doc->asientos().UltimaFilaAsiento(fila); ++r)
        if (doc->asientos().LineaDeFila(r).lCta == extra.Cuenta && !doc->asientos().LineaDeFila(r).bEsAlDebe)
            filaExtra = r;
    ASSERT_GT(filaExtra, 0);
    doc->grid()->FijarFilaActual(filaExtra);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si); // 1805
    doc->comandos().EliminarAsiento(true);
    EXPECT_EQ(estadoEnBase(cierra), 0);
}

// A draft dated in the future that another user changed after it was shown: choosing
// "Grabar" and scheduling it neither makes the template nor deletes the other user's entry.
TEST_P(Grabacion, AgendarUnaCopiaViejaNoBorraElCambioDeOtro)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(20), 0, 300);
    auto doc = abrir();
    mostrarUltimos(*doc);
    ASSERT_GT(doc->FilaDeAsiento(id), 0);
    AsientoDatos otro(m_base.conexion());
    ASSERT_TRUE(Bien(otro.CargarAsiento(id)));
    otro.Cabezal().Leyenda = QStringLiteral("Cambio de la otra usuaria");
    ASSERT_TRUE(Bien(otro.Grabar()));
    const int plantillas = contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes"));

    enFila(*doc, id);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si); // 1807: schedule it
    doc->comandos().RegistrarAsiento();
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("error", 1820));
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiID = %1 And AsiLeyenda = 'Cambio de la otra usuaria'").arg(id)), 1);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentes")), plantillas);
    EXPECT_GT(doc->FilaDeAsiento(id), 0);
}

// An entry another session sent to the trash leaves the grid when it is read again, instead
// of staying on screen as if it were stored.
TEST_P(Grabacion, UnAsientoQueOtroEnvioALaPapeleraSaleDeLaGrilla)
{
    const qint32 id = asiento(BaseDePrueba::Hoy().addDays(-2), 1, 75);
    auto doc = abrir();
    mostrarUltimos(*doc);
    ASSERT_GT(doc->FilaDeAsiento(id), 0);
    AsientoDatos otro(m_base.conexion());
    ASSERT_TRUE(Bien(otro.CargarAsiento(id)));
    ASSERT_FALSE(Papelera(otro, id, otro.Cabezal().FechaModificado).isEmpty());
    const int filas = doc->grilla().Filas();
    doc->comandos().RecargarAsiento(id, doc->FilaDeAsiento(id));
    EXPECT_EQ(doc->FilaDeAsiento(id), -1);
    EXPECT_EQ(doc->grilla().Filas(), filas - 4); // its header and three lines
}

INSTANCIAR_EN_MOTORES(Grabacion);

} // namespace
