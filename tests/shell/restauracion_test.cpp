#include "escenario.h"

#include "shell/dialogohistorial.h"
#include "shell/dialogopapelera.h"

#include <QPushButton>
#include <QTableWidget>

namespace {

// The ways back, driven as a user does: Delete and its question, the trash window, Ctrl+Z
// on the grid, and a version chosen in the history; each checked against the database.
class Restauracion : public Escenario
{
protected:
    qint32 nuevoAsiento()
    {
        vista(Vista::kPrimerMes);
        return asientoAlFinal(1, QStringLiteral("Compra con flete"), {{"5.1.01", true, 1000}, {"5.2.01", true, 250.5}, {"1.1.01", false, 1250.5}},
                              1);
    }


    // Delete on the row, answering the question.
    void suprimir(int fila, ServicioMensajes::Respuesta respuesta)
    {
        m_doc->grid()->FijarFilaActual(fila);
        m_mensajes.Responder(respuesta);
        QTest::keyClick(m_doc->grid(), Qt::Key_Delete);
    }

    void deshacer() { QTest::keyClick(m_doc->grid(), Qt::Key_Z, Qt::ControlModifier); }

    QStringList operaciones(qint32 id) { return Operaciones(m_base.conexion(), id); }

    // The trash window, opened again from the menu.
    DialogoPapelera *papelera()
    {
        delete m_doc->findChild<DialogoPapelera *>();
        elegir("MnuViePapelera");
        return m_doc->findChild<DialogoPapelera *>();
    }
    // The entry's history from its menu, with its first version chosen.
    DialogoHistorial *historial(qint32 id)
    {
        delete m_doc->findChild<DialogoHistorial *>();
        m_doc->grid()->FijarFilaActual(filaDe(id));
        elegir("MnuEdiHistorial");
        auto *dialogo = m_doc->findChild<DialogoHistorial *>();
        if (dialogo)
            dialogo->findChild<QTableWidget *>(QStringLiteral("tablaHistorial"))->setCurrentCell(0, 0);
        return dialogo;
    }
};

TEST_P(Restauracion, EliminarPreguntaYLaPapeleraLoDevuelveEnteroSiUnaEscrituraPuede)
{
    const qint32 id = nuevoAsiento();
    const AsientoEnBase antes = enBase(id);
    const QStringList filas = filasVistas(id);

    suprimir(filaDe(id), ServicioMensajes::Respuesta::No);
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("pregunta", 1804));
    EXPECT_EQ(enBase(id), antes);
    EXPECT_EQ(filasVistas(id), filas);

    suprimir(filaDe(id), ServicioMensajes::Respuesta::Si);
    EXPECT_EQ(enBase(id).cabezal.value(0), QStringLiteral("9"));
    EXPECT_EQ(filaDe(id), -1);

    DialogoPapelera *dialogo = papelera();
    ASSERT_NE(dialogo, nullptr);
    auto *tabla = dialogo->findChild<QTableWidget *>(QStringLiteral("tablaPapelera"));
    int enLista = -1;
    for (int r = 0; r < tabla->rowCount(); ++r)
        if (tabla->item(r, 1)->text() == QStringLiteral("Compra con flete"))
            enLista = r;
    ASSERT_GE(enLista, 0);
    EXPECT_EQ(tabla->item(enLista, 2)->text(), QStringLiteral("Administrador")) << "who sent it there";
    tabla->setCurrentCell(enLista, 0);
    dialogo->findChild<QPushButton *>(QStringLiteral("botonRestaurar"))->click();

    EXPECT_EQ(enBase(id), antes) << "back whole, registered as it was";
    EXPECT_EQ(filasVistas(id), filas);
    EXPECT_EQ(operaciones(id), (QStringList{QStringLiteral("alta"), QStringLiteral("papelera"), QStringLiteral("restauracion")}));
    for (int r = 0; r < tabla->rowCount(); ++r)
        EXPECT_NE(tabla->item(r, 1)->text(), QStringLiteral("Compra con flete")) << "the list is read again";

    // Deleted for good from the trash, after its question; the history stays.
    suprimir(filaDe(id), ServicioMensajes::Respuesta::Si);
    ASSERT_TRUE(dialogo->Leer());
    tabla->setCurrentCell(0, 0);
    ASSERT_EQ(tabla->item(0, 1)->text(), QStringLiteral("Compra con flete"));
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    dialogo->findChild<QPushButton *>(QStringLiteral("botonEliminarDefinitivo"))->click();
    EXPECT_EQ(enBase(id).cabezal.value(0), QStringLiteral("9"));
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    dialogo->findChild<QPushButton *>(QStringLiteral("botonEliminarDefinitivo"))->click();
    EXPECT_TRUE(enBase(id).cabezal.isEmpty());
    EXPECT_EQ(operaciones(id).last(), QStringLiteral("eliminacion"));

    // After the last row of the trash comes back, the row before it is the one chosen, so
    // Enter or a button goes on working without a click.
    m_base.conexion().Ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento In (Select AsiID From cceAsientos Where AsiEstado = 9)"));
    m_base.conexion().Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiEstado = 9"));
    const qint32 primero = nuevoAsiento();
    suprimir(filaDe(primero), ServicioMensajes::Respuesta::Si);
    const qint32 segundo = nuevoAsiento();
    suprimir(filaDe(segundo), ServicioMensajes::Respuesta::Si);
    DialogoPapelera *lista = papelera();
    ASSERT_NE(lista, nullptr);
    auto *filasPapelera = lista->findChild<QTableWidget *>(QStringLiteral("tablaPapelera"));
    auto *restaurar = lista->findChild<QPushButton *>(QStringLiteral("botonRestaurar"));
    ASSERT_EQ(filasPapelera->rowCount(), 2);
    EXPECT_EQ(filasPapelera->currentRow(), 0); // opened, the newest is chosen
    EXPECT_TRUE(restaurar->isEnabled());
    filasPapelera->setCurrentCell(1, 0); // the first one sent, listed last
    QTest::keyClick(filasPapelera, Qt::Key_Return); // Enter gives it back
    EXPECT_EQ(enBase(primero).cabezal.value(0), QStringLiteral("1"));
    ASSERT_EQ(filasPapelera->rowCount(), 1);
    EXPECT_EQ(filasPapelera->currentRow(), 0);
    EXPECT_TRUE(restaurar->isEnabled());

    // Restoring from the trash obeys the rules of any write: another user's opening-balance
    // entry keeps a trashed one out, and an account closed since keeps the entry where it is.
    const qint32 cerrada = nuevoAsiento();
    suprimir(filaDe(cerrada), ServicioMensajes::Respuesta::Si);
    m_base.conexion().Ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
                               {Conexion::ValorFecha(BaseDePrueba::Hoy()), m_base.IdCuenta("5.2.01")});
    DialogoPapelera *ultima = papelera();
    ASSERT_NE(ultima, nullptr);
    auto *tablaUltima = ultima->findChild<QTableWidget *>(QStringLiteral("tablaPapelera"));
    tablaUltima->setCurrentCell(0, 0);
    ASSERT_EQ(tablaUltima->item(0, 1)->text(), QStringLiteral("Compra con flete"));
    ultima->findChild<QPushButton *>(QStringLiteral("botonRestaurar"))->click();
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("error", 1962));
    EXPECT_EQ(enBase(cerrada).cabezal.value(0), QStringLiteral("9"));
    EXPECT_EQ(filaDe(cerrada), -1);
}

// Ctrl+Z takes back this session's writes one at a time, newest first, and stops there.
TEST_P(Restauracion, DeshacerPasoAPasoYUnAsientoTecleado)
{
    const qint32 id = nuevoAsiento();
    const AsientoEnBase original = enBase(id);
    const QStringList filas = filasVistas(id);

    // A line deleted: the entry no longer balances and is incomplete.
    suprimir(filaDe(id) + 2, ServicioMensajes::Respuesta::Si);
    const AsientoEnBase sinLinea = enBase(id);
    ASSERT_EQ(sinLinea.lineas.size(), 2);
    // Then the whole entry to the trash.
    suprimir(filaDe(id), ServicioMensajes::Respuesta::Si);
    ASSERT_EQ(enBase(id).cabezal.value(0), QStringLiteral("9"));

    m_doc->PrepararMenuEdicion();
    EXPECT_EQ(m_doc->menus().accion(QStringLiteral("MnuEdiDeshacer"))->text(), QStringLiteral("Deshacer a la papelera del asiento %1").arg(id));
    deshacer();
    EXPECT_EQ(enBase(id), sinLinea);
    EXPECT_GE(filaDe(id), 0) << "shown again";
    EXPECT_TRUE(m_doc->grilla().Redibujar()); // and the grid is drawn again
    deshacer();
    EXPECT_EQ(enBase(id), original);
    EXPECT_EQ(filasVistas(id), filas);
    deshacer(); // the entry was made by someone else: nothing more of this session's
    EXPECT_EQ(enBase(id), original);
    m_doc->PrepararMenuEdicion();
    EXPECT_FALSE(m_doc->menus().accion(QStringLiteral("MnuEdiDeshacer"))->isEnabled());
    EXPECT_EQ(operaciones(id), (QStringList{QStringLiteral("alta"), QStringLiteral("cambio"), QStringLiteral("papelera"),
                                            QStringLiteral("deshacer"), QStringLiteral("deshacer")}));

    // An entry typed here and stored goes to the trash with Ctrl+Z; inside an edit Ctrl+Z is the
    // text fields' own and undoes no write.
    vista(Vista::kRecienIngresados);
    nuevoConTeclado(QStringLiteral("Tecleado y deshecho"), QStringLiteral("1.1.01"), QStringLiteral("4.1.01"), QStringLiteral("500"));
    const qint32 tecleado = ultimoId();
    ASSERT_EQ(enBase(tecleado).cabezal.value(2), QStringLiteral("Tecleado y deshecho"));
    ASSERT_EQ(m_doc->FilaEdicion(), 0) << "balanced, it was stored and the edit ended";
    QTest::keyClick(m_doc->grid(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    QTest::keyClick(foco(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(enBase(tecleado).cabezal.value(0), QStringLiteral("1"));
    escape(foco());
    ASSERT_EQ(m_doc->FilaEdicion(), 0);

    deshacer();
    EXPECT_EQ(enBase(tecleado).cabezal.value(0), QStringLiteral("9"));
    EXPECT_EQ(filaDe(tecleado), -1);
    EXPECT_EQ(operaciones(tecleado), (QStringList{QStringLiteral("alta"), QStringLiteral("papelera")}));
    // The undone write leaves the list: nothing of this session is left, and Ctrl+Z says nothing.
    m_doc->PrepararMenuEdicion();
    EXPECT_FALSE(m_doc->menus().accion(QStringLiteral("MnuEdiDeshacer"))->isEnabled());
    const qsizetype dichos = m_mensajes.mostrados.size();
    deshacer();
    EXPECT_EQ(m_mensajes.mostrados.size(), dichos);
    EXPECT_EQ(operaciones(tecleado).size(), 2);
}

// Nothing of another user's newer work is overwritten: undoing over it, or restoring a
// version read before it, is refused with 1820.
TEST_P(Restauracion, NadaPisaElCambioDeOtroUsuario)
{
    const qint32 id = nuevoAsiento();
    suprimir(filaDe(id) + 2, ServicioMensajes::Respuesta::Si);
    otroCambia(id, QStringLiteral("Cambiada por otro"));
    const AsientoEnBase deOtro = enBase(id);
    deshacer();
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("error", 1820));
    EXPECT_EQ(enBase(id), deOtro);

    // The history read now offers the first version back; the last version is the entry as
    // it stands.
    m_doc->grid()->FijarFilaActual(filaDe(id));
    elegir("MnuEdiHistorial");
    DialogoHistorial *dialogo = m_doc->findChild<DialogoHistorial *>();
    ASSERT_NE(dialogo, nullptr);
    auto *restaurar = dialogo->findChild<QPushButton *>(QStringLiteral("botonRestaurarVersion"));
    ASSERT_NE(restaurar, nullptr);
    auto *tabla = dialogo->findChild<QTableWidget *>(QStringLiteral("tablaHistorial"));
    EXPECT_EQ(tabla->currentRow(), tabla->rowCount() - 1); // it opens on the entry as it stands
    EXPECT_FALSE(restaurar->isEnabled());
    tabla->setCurrentCell(0, 0);
    EXPECT_TRUE(restaurar->isEnabled());

    // Another change after the history was read: the version is refused.
    otroCambia(id, QStringLiteral("Cambiada por otro"));
    const AsientoEnBase ultimo = enBase(id);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    restaurar->click();
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("error", 1820));
    EXPECT_EQ(enBase(id), ultimo);

    // Read again, the first version goes back as a new write: the three lines, registered.
    dialogo = historial(id);
    ASSERT_NE(dialogo, nullptr);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    dialogo->findChild<QPushButton *>(QStringLiteral("botonRestaurarVersion"))->click();
    const AsientoEnBase restaurado = enBase(id);
    EXPECT_EQ(restaurado.lineas.size(), 3);
    EXPECT_EQ(restaurado.cabezal.value(0), QStringLiteral("1"));
    EXPECT_EQ(restaurado.cabezal.value(2), QStringLiteral("Compra con flete"));
    EXPECT_EQ(operaciones(id).last(), QStringLiteral("restauracion"));

    // The same version again is the entry as it stands: nothing is written.
    const int escrituras = int(operaciones(id).size());
    dialogo = historial(id);
    ASSERT_NE(dialogo, nullptr);
    dialogo->findChild<QPushButton *>(QStringLiteral("botonRestaurarVersion"))->click();
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("información", 1965));
    EXPECT_EQ(operaciones(id).size(), escrituras);
}

INSTANCIAR_EN_MOTORES(Restauracion);

} // namespace
