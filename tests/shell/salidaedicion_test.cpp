// Every way out of an edit keeps what was typed, stores it, or asks: driven with the keyboard
// through the real document, checked in the grid and the database.
#include "escenario.h"

#include "editing/sesionedicion.h"

#include <QLabel>

namespace {

using Respuesta = ServicioMensajes::Respuesta;

class SalidaEdicion : public Escenario
{
protected:
    // The question about a typed line (1956), or about a write that was refused (1961).
    static QString pregunta(int numero = 1956) { return Dicho("pregunta", numero); }

    // A new entry with a debit line of "1.1.01" typed and not accepted: no Enter in the amount.
    void lineaSinAceptar(const QString &importe)
    {
        m_doc->edicion().NuevoAsiento();
        ASSERT_GT(m_doc->FilaEdicion(), 0);
        escribir(m_doc->campoLeyenda(), QStringLiteral("Escrito y no aceptado"));
        autoriza()->setCurrentIndex(0);
        lumERAsiento *e = editor();
        e->SetFocusCtrl(lumERAsiento::kDebe, 0);
        escribir(e->campoCuenta(true), QStringLiteral("1.1.01"));
        enter(e->campoCuenta(true));
        escribir(e->campo(lumERAsiento::kImporte), importe);
        ASSERT_TRUE(m_doc->edicion().LineaSinAceptar());
    }
    int guardados(const QString &leyenda)
    {
        return ids(QStringLiteral("AsiLeyenda = '%1'").arg(leyenda)).size();
    }
};

// The status line, which a screen reader follows, says the difference once a line is taken,
// and the entry's state once it is stored.
TEST_P(SalidaEdicion, LaLineaDeEstadoDiceLaDiferenciaYComoQuedo)
{
    auto *estado = m_doc->findChild<QLabel *>(QStringLiteral("lbEstado"));
    ASSERT_NE(estado, nullptr);
    lineaSinAceptar(QStringLiteral("500"));
    // The header is told as typed, before any line is taken.
    QApplication::processEvents();
    EXPECT_TRUE(estado->text().contains(QStringLiteral("Escrito y no aceptado"))) << estado->text().toStdString();
    aceptarLinea();
    QApplication::processEvents();
    EXPECT_TRUE(estado->text().startsWith(QStringLiteral("Diferencia Haber, 500,00 $; "))) << estado->text().toStdString();
    const QString mientras = estado->text();
    // Not stored yet: newly entered, not a draft.
    EXPECT_TRUE(mientras.endsWith(Idioma::resLoad(7))) << mientras.toStdString();
    escape(editor()->campoCuenta(true));
    QApplication::processEvents();
    ASSERT_EQ(guardados(QStringLiteral("Escrito y no aceptado")), 1);
    EXPECT_TRUE(estado->text().endsWith(QStringLiteral("Escrito y no aceptado, Diario, Asiento Incompleto"))) << estado->text().toStdString();
    EXPECT_NE(estado->text(), mientras);
}

// Ctrl+N, a view, the search, closing: each asks first. Cancel goes back with the line as
// typed; Yes stores it (incomplete: it does not balance); No drops it.
TEST_P(SalidaEdicion, UnaLineaEscritaNoSePierdeAlIrseDeOtraManera)
{
    lineaSinAceptar(QStringLiteral("321"));
    m_mensajes.Responder(Respuesta::Cancelar);
    QTest::keyClick(editor()->campo(lumERAsiento::kImporte), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{pregunta()});
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(m_doc->edicion().LineaSinAceptar());
    EXPECT_EQ(editor()->campo(lumERAsiento::kImporte)->text(), QStringLiteral("321"));
    EXPECT_EQ(foco(), editor()->campo(lumERAsiento::kImporte)) << "back where the typing was";

    m_mensajes.Responder(Respuesta::Cancelar);
    vista(Vista::kUltimos10);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_mensajes.Responder(Respuesta::Cancelar);
    EXPECT_FALSE(m_doc->PuedeCerrar());
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(guardados(QStringLiteral("Escrito y no aceptado")), 0);

    // Yes on Ctrl+N: the line is taken, the entry stored, and the next entry begins.
    m_mensajes.Responder(Respuesta::Si);
    QTest::keyClick(editor()->campo(lumERAsiento::kImporte), Qt::Key_N, Qt::ControlModifier);
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_FALSE(m_doc->edicion().LineaSinAceptar());
    const QList<qint32> guardado = ids(QStringLiteral("AsiLeyenda = 'Escrito y no aceptado'"));
    ASSERT_EQ(guardado.size(), 1);
    const AsientoEnBase a = enBase(guardado[0]);
    EXPECT_EQ(a.cabezal[0], QStringLiteral("2"));
    ASSERT_EQ(a.lineas.size(), 1);
    EXPECT_EQ(a.lineas[0][2].toDouble(), 321);
    EXPECT_GT(filaDe(guardado[0]), 0) << "shown as stored";
    escape(foco());

    const int antes = m_mensajes.mostrados.size();
    lineaSinAceptar(QStringLiteral("55"));
    m_mensajes.Responder(Respuesta::No);
    EXPECT_TRUE(m_doc->PuedeCerrar());
    EXPECT_EQ(m_mensajes.mostrados.size(), antes + 1);
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(guardados(QStringLiteral("Escrito y no aceptado")), 1);
}

// Escape asks about a line typed and not accepted, as every other way out does: Cancel goes
// back to it as typed, No drops it (nothing accepted, nothing is stored).
TEST_P(SalidaEdicion, EscapePreguntaYUnaLineaSinImporteSeRechaza)
{
    lineaSinAceptar(QStringLiteral("77"));
    m_mensajes.Responder(Respuesta::Cancelar);
    escape(editor()->campo(lumERAsiento::kImporte));
    EXPECT_EQ(m_mensajes.mostrados, QStringList{pregunta()});
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(editor()->campo(lumERAsiento::kImporte)->text(), QStringLiteral("77"));
    m_mensajes.Responder(Respuesta::No);
    escape(editor()->campo(lumERAsiento::kImporte));
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(guardados(QStringLiteral("Escrito y no aceptado")), 0);
    m_mensajes.mostrados.clear();

    // A line of nothing is refused where it is typed, and nothing is stored for either.
    lineaSinAceptar(QStringLiteral("0"));
    enter(editor()->campo(lumERAsiento::kImporte));
    if (foco() == autoriza())
        enter(foco());
    EXPECT_TRUE(m_mensajes.mostrados.contains(Dicho("advertencia", 1954)))
        << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    // Leaving by a command and saying yes to keep it: the refusal keeps the edit and the line.
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(Respuesta::Si);
    QTest::keyClick(editor()->campo(lumERAsiento::kImporte), Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(m_mensajes.mostrados.value(1), Dicho("advertencia", 1954));
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(m_doc->edicion().LineaSinAceptar());
    m_mensajes.Responder(Respuesta::No);
    escape(foco());
    EXPECT_EQ(guardados(QStringLiteral("Escrito y no aceptado")), 0);
}

// With nobody allowed to authorise, the entries of a company that shows authorisers go
// without one: the empty list asks for nothing, and the entry is stored.
TEST_P(SalidaEdicion, SinNadieQueAutoriceElAsientoSeGraba)
{
    m_base.conexion().Ejecutar(QStringLiteral("Update segPermisos Set PerAutoriza = 0"));
    reiniciar();
    nuevoConTeclado(QStringLiteral("Sin autorizante"), QStringLiteral("1.1.01"), QStringLiteral("4.1.01"), QStringLiteral("125"));
    EXPECT_FALSE(m_mensajes.mostrados.contains(Dicho("advertencia", 1953))) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(guardados(QStringLiteral("Sin autorizante")), 1);
}

// A write refused because another user saved the entry first: leaving asks, going back keeps
// the typed legend on screen, discarding shows the entry as stored.
TEST_P(SalidaEdicion, TrasUnaEscrituraRechazadaLoEscritoQuedaYSinCambiosNoSePregunta)
{
    const qint32 id = asientoSimple();
    ASSERT_GT(id, 0);
    const AsientoEnBase antes = enBase(id);
    const QStringList filasAntes = filasVistas(id);
    abrir(filaDe(id));
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiFechaModificado = ? Where AsiID = ?"),
                               {Conexion::ValorFechaHora(QDateTime(QDate(2030, 1, 1), QTime(1, 2, 3), Qt::UTC)), id});
    escribir(m_doc->campoLeyenda(), QStringLiteral("Leyenda que no se pudo guardar"));
    m_mensajes.Responder(Respuesta::Cancelar); // 1956: back to the edit
    escape(m_doc->campoLeyenda());
    ASSERT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(m_mensajes.mostrados[0], Dicho("error", 1820));
    EXPECT_EQ(m_mensajes.mostrados[1], pregunta(1961));
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(m_doc->campoLeyenda()->text(), QStringLiteral("Leyenda que no se pudo guardar"));

    // Leaving again asks again, without trying the refused write a second time.
    m_mensajes.Responder(Respuesta::No); // discard
    escape(m_doc->campoLeyenda());
    EXPECT_EQ(m_mensajes.mostrados.mid(2), QStringList{pregunta(1961)});
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(enBase(id), antes);
    EXPECT_EQ(filasVistas(id), filasAntes);

    // Opening a stored line and leaving by a command asks nothing when nothing was typed, also
    // on a dollar line booked at another rate than the entry's other dollar lines.
    m_mensajes.mostrados.clear();
    const QList<qint32> conDolares = ids(QStringLiteral("AsiEstado In (0, 1) And AsiID In (Select ACuIDAsiento From cceAsientoCuenta"
                                                        " INNER JOIN cceCuentas ON CueID = ACuCuenta Where CueMoneda = 2"
                                                        " Group By ACuIDAsiento Having Count(*) > 1 And"
                                                        " Min(ACuImporteMC / Nullif(Coalesce(ACuDebe, AcuHaber), 0))"
                                                        " < Max(ACuImporteMC / Nullif(Coalesce(ACuDebe, AcuHaber), 0)) - 0.01)"));
    ASSERT_FALSE(conDolares.isEmpty());
    int vistos = 0;
    for (qint32 cada : conDolares) {
        if (vistos == 6)
            break;
        if (filaDe(cada) < 0)
            EXPECT_TRUE(mostrarAlFinal(cada));
        const int cabezal = filaDe(cada);
        ASSERT_GT(cabezal, 0);
        for (int r = cabezal + 1; r <= m_doc->asientos().UltimaFilaAsiento(cabezal); ++r) {
            if (m_doc->asientos().EsFilaDiferencia(r))
                continue;
            abrir(r);
            ASSERT_GT(m_doc->FilaEdicion(), 0) << "asiento " << cada << " fila " << r;
            EXPECT_FALSE(m_doc->edicion().LineaSinAceptar()) << "asiento " << cada << " fila " << r;
            EXPECT_TRUE(m_doc->TerminarEdicion());
        }
        ++vistos;
    }
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
}

INSTANCIAR_EN_MOTORES(SalidaEdicion);

} // namespace
