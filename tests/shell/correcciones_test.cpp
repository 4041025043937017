#include "escenario.h"

#include "editing/comandosasiento.h"

namespace {

// Corrections of stored entries that must write exactly what the user did, and nothing
// the user did not.
class Correcciones : public Escenario
{
protected:

    // A registered entry of today with the lines given (account code, debit, MC amount),
    // shown last in the grid.
    qint32 asiento(const QList<std::tuple<const char *, bool, double>> &lineas, qint16 libro = Demo::kLibroDiario)
    {
        return asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Corrección de prueba"), lineas, libro);
    }
};

TEST_P(Correcciones, LeyendaLineaYCuentasCerradasDeUnAsientoGuardado)
{
    const qint32 id = asiento({{"5.3.01", true, 1200}, {"1.1.01", false, 1200}});
    const AsientoEnBase antes = enBase(id);
    abrir(filaDe(id));
    escribir(m_doc->campoLeyenda(), QStringLiteral("Alquiler de diciembre"));
    escape(m_doc->campoLeyenda());
    ASSERT_EQ(m_doc->FilaEdicion(), 0);
    AsientoEnBase despues = enBase(id);
    EXPECT_EQ(despues.cabezal[2], QStringLiteral("Alquiler de diciembre"));
    despues.cabezal[2] = antes.cabezal[2];
    EXPECT_EQ(despues, antes); // only the legend changed
    EXPECT_TRUE(filasVistas(id).first().contains(QStringLiteral("Alquiler de diciembre")));

    // Opened and left again without a change: nothing is written, not even the stamp, and
    // an entry without a book is not given the book only proposed.
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiTipo = Null Where AsiID = ?"), {id});
    m_doc->comandos().RecargarAsiento(id, filaDe(id));
    const AsientoEnBase sinLibro = enBase(id);
    abrir(filaDe(id));
    EXPECT_EQ(m_doc->listaLibros()->currentData().toInt(), Demo::kLibroDiario); // proposed
    escape(m_doc->campoFecha());
    ASSERT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(enBase(id), sinLibro);
    EXPECT_EQ(enBase(id).sello, sinLibro.sello);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // Two lines of one account, one on each side: the row chosen is the one that goes.
    const qint32 tres = asiento({{"1.1.01", true, 10}, {"1.1.01", false, 3}, {"4.1.01", false, 7}});
    int linea = -1;
    for (int r = filaDe(tres) + 1; r <= m_doc->asientos().UltimaFilaAsiento(filaDe(tres)); ++r) {
        const RegistroLinea l = m_doc->asientos().LineaDeFila(r);
        if (!l.bEsAlDebe && l.dImporteMC == 3_imp)
            linea = r;
    }
    ASSERT_GT(linea, 0);
    m_doc->grid()->FijarFilaActual(linea);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    QTest::keyClick(m_doc->grid(), Qt::Key_Delete);
    const AsientoEnBase quedan = enBase(tres);
    ASSERT_EQ(quedan.lineas.size(), 2);
    EXPECT_EQ(quedan.lineas[0].mid(0, 4), (QStringList{QStringLiteral("1.1.01"), QStringLiteral("D"), QStringLiteral("10"), QStringLiteral("10")}));
    EXPECT_EQ(quedan.lineas[1].mid(0, 4), (QStringList{QStringLiteral("4.1.01"), QStringLiteral("H"), QStringLiteral("7"), QStringLiteral("7")}));
    // 10 against 7 no longer balances: incomplete, and "Grabar" cannot register it.
    EXPECT_EQ(quedan.cabezal[0], QStringLiteral("2"));
    m_doc->grid()->FijarFilaActual(filaDe(tres));
    m_mensajes.mostrados.clear();
    elegir("MnuEdiSaveNormal");
    EXPECT_EQ(enBase(tres).cabezal[0], QStringLiteral("2"));
    ASSERT_EQ(m_mensajes.mostrados.size(), 1); // and the user is told why
    EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("información: El asiento está incompleto")));

    // An entry dated on the day an account of it closed: it cannot change.
    const qint32 cerrado = asiento({{"5.3.01", true, 500}, {"1.1.01", false, 500}});
    m_base.conexion().Ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
                               {Conexion::ValorFecha(BaseDePrueba::Hoy().addDays(-1)), m_base.IdCuenta("1.1.01")});
    m_doc->comandos().RecargarAsiento(cerrado, filaDe(cerrado));
    const AsientoEnBase antesCerrado = enBase(cerrado);
    abrir(filaDe(cerrado) + 1); // the line of the open account
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    escribir(m_doc->campoLeyenda(), QStringLiteral("Otra leyenda"));
    escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("600"));
    enter(editor()->campo(lumERAsiento::kImporte));
    if (foco() == autoriza()) {
        autoriza()->setCurrentIndex(0);
        enter(editor()->campo(lumERAsiento::kImporte));
    }
    EXPECT_TRUE(m_mensajes.mostrados.contains(Dicho("error", 1811)))
        << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    if (m_doc->FilaEdicion() > 0)
        escape(foco());
    EXPECT_EQ(enBase(cerrado), antesCerrado);
    EXPECT_EQ(enBase(cerrado).sello, antesCerrado.sello);

    // An account closed in the entry above, in the grid, does not keep this one from moving to
    // an earlier day: only the entry's own lines count.
    m_mensajes.mostrados.clear();
    m_base.conexion().Ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
                               {Conexion::ValorFecha(BaseDePrueba::Hoy().addDays(-10)), m_base.IdCuenta("1.1.01")});
    asiento({{"5.3.01", true, 70}, {"1.1.01", false, 70}});
    const qint32 abajo = asiento({{"5.3.01", true, 80}, {"4.1.01", false, 80}});
    abrir(filaDe(abajo));
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_doc->campoFecha()->setDate(BaseDePrueba::Hoy().addDays(-20));
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    autoriza()->setCurrentIndex(0);
    enter(editor()->campo(lumERAsiento::kImporte));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(enBase(abajo).cabezal.value(1), BaseDePrueba::Hoy().addDays(-20).toString(Qt::ISODate));
}

// A new entry moved to a date on which one of its accounts is closed is not stored when it
// balances (1811): the edit stays open with its lines, nothing is written.
TEST_P(Correcciones, UnNuevoLlevadoAUnDiaConUnaCuentaCerradaNoSeGraba)
{
    const QString codigo = m_base.Valor(QStringLiteral("Select CueCodigo From cceCuentas Where CueFechaCerrada Is Not Null")).toString();
    const QDate cierre = m_base.Valor(QStringLiteral("Select CueFechaCerrada From cceCuentas Where CueCodigo = ?"), {codigo}).toDate();
    ASSERT_FALSE(codigo.isEmpty());
    QTest::keyClick(m_doc->grid(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_doc->campoFecha()->setDate(cierre.addDays(1)); // the account is open after its closing day
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    escribir(m_doc->campoLeyenda(), QStringLiteral("Con cuenta cerrada"));
    autoriza()->setCurrentIndex(0);
    editor()->SetFocusCtrl(lumERAsiento::kDebe, 0);
    escribir(editor()->campoCuenta(true), codigo);
    enter(editor()->campoCuenta(true));
    escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("100"));
    enter(editor()->campo(lumERAsiento::kImporte));
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_doc->campoFecha()->setDate(cierre);
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    enter(editor()->campoCuenta(true));
    escribir(editor()->campoCuenta(false), QStringLiteral("4.1.01"));
    enter(editor()->campoCuenta(false));
    enter(editor()->campo(lumERAsiento::kImporte));
    EXPECT_TRUE(m_mensajes.mostrados.contains(Dicho("error", 1811))) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(ids(QStringLiteral("AsiLeyenda = 'Con cuenta cerrada'")).isEmpty());
}

INSTANCIAR_EN_MOTORES(Correcciones);

} // namespace
