// Two accountants on one database, each with a document of their own on a connection of its
// own: what one writes is marked at once in the other's grid and read again when opened,
// racing saves leave one winner, and every write leaves its audit row.
#include "escenario.h"

#include "editing/cambiosajenos.h"
#include "editing/comandosasiento.h"
#include "shell/dialogohistorial.h"
#include "store/conexionqt.h"

#include <QTableWidget>

namespace {

class VariosUsuarios : public Escenario
{
protected:
    // Opens the entry's first line in a document with Enter, as a user does.
    static void abrirEn(lumIngAsiento &doc, qint32 id)
    {
        QApplication::setActiveWindow(&doc);
        doc.grid()->FijarFilaActual(doc.FilaDeAsiento(id));
        doc.grid()->setFocus();
        QTest::keyClick(doc.grid(), Qt::Key_Return);
    }

    // Types the legend over and accepts the line with Enter in the amount.
    static void cambiarLeyendaYAceptar(lumIngAsiento &doc, MensajesGuionados &mensajes, const QString &leyenda)
    {
        escribir(doc.campoLeyenda(), leyenda);
        AceptarLinea(doc, mensajes);
    }

    static QString ayuda(lumIngAsiento &doc, int fila)
    {
        const QAbstractItemModel *m = doc.grid()->model();
        return m->data(m->index(fila - doc.grilla().FilasFijas(), 0), Qt::ToolTipRole).toString();
    }

    qint32 asientoDePrueba()
    {
        const qint32 id = asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Leyenda original"),
                                         {{"1.1.01", true, 250.0}, {"4.1.01", false, 250.0}}, Demo::kLibroDiario);
        EXPECT_FALSE(CargarAsientoEnGrilla(m_otro->asientos(), *m_otro->proceso().conexion, id, m_otro->grilla().Filas() - 1));
        return id;
    }

    QTemporaryDir m_carpetaB;
    HostDePrueba m_hostB;
    MensajesGuionados m_mensajesB;
    std::unique_ptr<lumIngAsiento> m_otro;
};

TEST_P(VariosUsuarios, UnCambioDeOtroSeMarcaSeReleeAlAbrirloYQuedaEnElHistorial)
{
    // The second accountant's document on the same database.
    m_otro = Documento(m_hostB, m_mensajesB, m_carpetaB, Demo::kUsuarioContador);
    ASSERT_EQ(m_otro->estado(), lumIngAsiento::Estado::Listo);
    const qint32 id = asientoDePrueba();
    ASSERT_GT(m_otro->FilaDeAsiento(id), 0);
    ASSERT_EQ(m_otro->grilla().Imagen(m_otro->FilaDeAsiento(id)), QStringLiteral("asiento"));

    // The administrator changes the legend in the first document.
    abrirEn(*m_doc, id);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    cambiarLeyendaYAceptar(*m_doc, m_mensajes, QStringLiteral("Cambiada por el administrador"));
    ASSERT_EQ(m_doc->FilaEdicion(), 0);
    ASSERT_EQ(enBase(id).cabezal.value(2), QStringLiteral("Cambiada por el administrador"));

    // The accountant's grid marks the entry within a poll, saying who changed it.
    ASSERT_TRUE(QTest::qWaitFor([&] {
        const int r = m_otro->FilaDeAsiento(id);
        return r >= 0 && m_otro->grilla().Imagen(r) == QLatin1String(CambiosAjenos::kImagen);
    }, 3 * CambiosAjenos::kIntervaloMs));
    const QString aviso = ayuda(*m_otro, m_otro->FilaDeAsiento(id));
    EXPECT_TRUE(aviso.startsWith(QStringLiteral("Modificado por Administrador el "))) << aviso.toStdString();
    EXPECT_TRUE(ayuda(*m_otro, m_otro->FilaDeAsiento(id) + 1).isEmpty());
    // The administrator's own grid is not marked for its own write.
    EXPECT_EQ(m_doc->grilla().Imagen(filaDe(id)), QStringLiteral("asiento"));

    // Opening it reads it again: the new legend is on screen and the change is not refused.
    abrirEn(*m_otro, id);
    ASSERT_GT(m_otro->FilaEdicion(), 0);
    EXPECT_EQ(m_otro->campoLeyenda()->text(), QStringLiteral("Cambiada por el administrador"));
    cambiarLeyendaYAceptar(*m_otro, m_mensajesB, QStringLiteral("Cambiada por la contadora"));
    EXPECT_EQ(m_otro->FilaEdicion(), 0);
    EXPECT_TRUE(m_mensajesB.mostrados.isEmpty()) << m_mensajesB.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(enBase(id).cabezal.value(2), QStringLiteral("Cambiada por la contadora"));
    // The mark is gone: the picture's tooltip names the state again.
    EXPECT_EQ(ayuda(*m_otro, m_otro->FilaDeAsiento(id)), QStringLiteral("Asiento Registrado"));

    EXPECT_EQ(Operaciones(m_base.conexion(), id, true), (QStringList{QStringLiteral("alta:0"), QStringLiteral("cambio:%1").arg(Demo::kUsuarioAdministrador),
                                            QStringLiteral("cambio:%1").arg(Demo::kUsuarioContador)}));

    // The history, from the entry menu, shows the three writes, oldest first.
    m_otro->grid()->FijarFilaActual(m_otro->FilaDeAsiento(id));
    m_otro->menus().accion(QStringLiteral("MnuEdiHistorial"))->trigger();
    auto *dialogo = m_otro->findChild<DialogoHistorial *>();
    ASSERT_NE(dialogo, nullptr);
    auto *tabla = dialogo->findChild<QTableWidget *>(QStringLiteral("tablaHistorial"));
    ASSERT_EQ(tabla->rowCount(), 3);
    EXPECT_EQ(tabla->item(1, 1)->text(), QStringLiteral("Administrador"));
    EXPECT_EQ(tabla->item(2, 1)->text(), QStringLiteral("Contadora"));
    EXPECT_EQ(tabla->item(2, 2)->text(), QStringLiteral("Cambio"));
    EXPECT_TRUE(tabla->item(2, 3)->text().contains(QStringLiteral("Cambiada por la contadora"))) << tabla->item(2, 3)->text().toStdString();
    dialogo->close();
}

TEST_P(VariosUsuarios, LoQueNoSePuedeEscribirOLeerNoSePierde)
{
    const qint32 id = asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Corta"), {{"1.1.01", true, 10.0}, {"4.1.01", false, 10.0}},
                                     Demo::kLibroDiario);
    // The field takes no more than the column holds, whatever is typed or pasted.
    abrirEn(*m_doc, id);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_doc->campoLeyenda()->setText(QString(300, QLatin1Char('x')));
    EXPECT_EQ(m_doc->campoLeyenda()->text().size(), kLargoLeyenda);
    cambiarLeyendaYAceptar(*m_doc, m_mensajes, QString(300, QLatin1Char('y')));
    EXPECT_EQ(enBase(id).cabezal.value(2), QString(kLargoLeyenda, QLatin1Char('y')));

    // Below the screen, a longer legend is refused whole on both engines.
    AsientoDatos datos(m_base.conexion());
    datos.FijarTextos(TextoEspanol);
    ASSERT_TRUE(Bien(datos.CargarAsiento(id)));
    datos.Cabezal().Leyenda = QString(kLargoLeyenda + 1, QLatin1Char('z'));
    const auto fallo = datos.GrabarTodo();
    EXPECT_TRUE(fallo && fallo->detalle.contains(QStringLiteral("255"))) << Motivo(fallo);
    EXPECT_FALSE(Bien(datos.Grabar()));
    EXPECT_EQ(enBase(id).cabezal.value(2), QString(kLargoLeyenda, QLatin1Char('y')));

    // Reading an entry again when the store cannot be read (the server gone, a table missing)
    // leaves the entry on screen as it was, with the error said once.
    m_mensajes.mostrados.clear();
    const qint32 aLaVista = asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Sigue a la vista"),
                                           {{"1.1.01", true, 10.0}, {"4.1.01", false, 10.0}}, Demo::kLibroDiario);
    const QStringList filasAntes = filasVistas(aLaVista);
    ASSERT_EQ(filasAntes.size(), 3);
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientoCuenta Rename To cceAsientoCuentaFuera"));
    m_doc->comandos().RecargarAsiento(aLaVista, filaDe(aLaVista));
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientoCuentaFuera Rename To cceAsientoCuenta"));
    EXPECT_EQ(filasVistas(aLaVista), filasAntes);
    EXPECT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_TRUE(m_mensajes.mostrados.value(0).startsWith(Dicho("error", 1916)))
        << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // A write that waits too long for another session is refused with a clear message and the
    // edit stays open with what was typed, to be accepted again once the other one is done.
    m_mensajes.mostrados.clear();
    m_mensajes.detalles.clear();
    const qint32 bloqueado = asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Antes del bloqueo"),
                                            {{"1.1.01", true, 10.0}, {"4.1.01", false, 10.0}}, Demo::kLibroDiario);
    abrirEn(*m_doc, bloqueado);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    auto otra = ConexionQt::Abrir(DireccionBD::Leer(m_base.direccion()));
    otra->Comenzar();
    otra->Ejecutar(QStringLiteral("Update cceAsientos Set AsiLeyenda = AsiLeyenda Where AsiID = ?"), {bloqueado});
    cambiarLeyendaYAceptar(*m_doc, m_mensajes, QStringLiteral("Escrita durante el bloqueo"));
    otra->Deshacer();
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(m_mensajes.mostrados[0], Dicho("error", 1924));
    EXPECT_TRUE(m_mensajes.detalles.value(0).startsWith(QStringLiteral("La base de datos está ocupada por otro usuario")))
        << m_mensajes.detalles.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(enBase(bloqueado).cabezal.value(2), QStringLiteral("Antes del bloqueo"));
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(m_doc->campoLeyenda()->text(), QStringLiteral("Escrita durante el bloqueo"));
}

INSTANCIAR_EN_MOTORES(VariosUsuarios);

} // namespace
