// Everyday flows driven through the real document with the keyboard, checked both in the
// grid as the user sees it and in the database.
#include "escenario.h"

#include "editing/sesionedicion.h"

namespace {

// Writes an entry of the opening-balance book straight into the database: 1.1.01 against
// 3.1.01 for 5000, in the given state; answers its id.
qint32 AsientoDeSaldosIniciales(BaseDePrueba &base, qint16 estado)
{
    const double credito = estado == EstadoAsiento::kInconcluso ? 4000 : 5000;
    return GrabarAsientoDePrueba(base, estado, QDate(BaseDePrueba::Hoy().year(), 1, 1), QStringLiteral("Asiento de Saldos Iniciales"),
                                 Demo::kLibroPrimeraApertura, {{"1.1.01", true, 5000}, {"3.1.01", false, credito}}, false);
}

class Escenarios : public Escenario
{
protected:
    // A registered opening-balance entry beside the incomplete one: the store no longer lets
    // it be made, so the incomplete one is in the trash meanwhile, as data written before.
    void registradoAlLado(qint32 inconcluso)
    {
        m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = ?"), {inconcluso});
        ASSERT_GT(AsientoDeSaldosIniciales(m_base, EstadoAsiento::kRegistrado), 0);
        m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 2 Where AsiID = ?"), {inconcluso});
    }
};

TEST_P(Escenarios, DiezAsientosConElTecladoLaFechaEscritaYUnaCopiaConUnaCuentaCerrada)
{
    // The first month of the view menu whose entries do not fit in the window.
    for (int mes = 0; mes < Vista::kCantidadMeses; ++mes) {
        vista(Vista::kPrimerMes + mes);
        if (m_doc->grilla().Filas() * m_doc->grid()->rowHeight(0) > 2 * m_doc->grid()->viewport()->height())
            break;
    }
    ASSERT_GT(m_doc->grilla().Filas() * m_doc->grid()->rowHeight(0), 2 * m_doc->grid()->viewport()->height());
    // Another letter with Ctrl starts nothing: only Ctrl+N does.
    QTest::keyClick(m_doc->grid(), Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    const qint32 antes = ultimoId();
    for (int i = 1; i <= 10; ++i)
        nuevoConTeclado(QStringLiteral("Venta %1").arg(i), QStringLiteral("1.1.01"), QStringLiteral("4.1.01"),
                        QStringLiteral("%1").arg(i * 10));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    const QList<qint32> nuevos = ids(QStringLiteral("AsiID > %1").arg(antes));
    ASSERT_EQ(nuevos.size(), 10);
    for (int i = 0; i < 10; ++i) {
        const AsientoEnBase a = enBase(nuevos[i]);
        EXPECT_EQ(a.cabezal.mid(0, 4), (QStringList{QStringLiteral("1"), BaseDePrueba::Hoy().toString(Qt::ISODate),
                                                   QStringLiteral("Venta %1").arg(i + 1), QString::number(Demo::kLibroDiario)}));
        ASSERT_EQ(a.lineas.size(), 2);
        EXPECT_EQ(a.lineas[0].mid(0, 5), (QStringList{QStringLiteral("1.1.01"), QStringLiteral("D"), QString::number((i + 1) * 10),
                                                     QString::number((i + 1) * 10), QStringLiteral("1")}));
        // Each line shows once: the header and two lines.
        const QStringList filas = filasVistas(nuevos[i]);
        ASSERT_EQ(filas.size(), 3) << filas.join(QLatin1Char('\n')).toStdString();
        EXPECT_TRUE(filas[0].contains(QStringLiteral("Venta %1").arg(i + 1)));
        EXPECT_TRUE(filas[0].contains(QStringLiteral("Diario")));
    }
    // The last entry typed is the current row, in view.
    EXPECT_EQ(m_doc->grid()->FilaActual(), filaDe(nuevos.last()));

    // The date is typed whole and left with Tab: the line editor takes it at once, so a dollar
    // account gets that day's rate, not today's.
    QTest::keyClick(m_doc->grid(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(foco(), m_doc->campoFecha());
    // The date shown is selected: what is typed replaces it.
    QApplication::processEvents();
    QTest::keyClicks(m_doc->campoFecha(), QStringLiteral("31 12 2025"));
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    EXPECT_EQ(m_doc->campoFecha()->date(), QDate(2025, 12, 31));
    EXPECT_EQ(editor()->FechaAsiento(), QDate(2025, 12, 31));
    escape(foco());

    // Copying an entry with a closed account tells so and copies nothing.
    m_mensajes.mostrados.clear();
    const QList<qint32> conCerradas = ids(QStringLiteral("AsiEstado = 1 And AsiID In (Select ACuIDAsiento From cceAsientoCuenta"
                                                         " INNER JOIN cceCuentas ON CueID = ACuCuenta"
                                                         " Where CueFechaCerrada >= AsiFechaAsiento)"));
    ASSERT_FALSE(conCerradas.isEmpty());
    const qint32 conCerrada = conCerradas.first();
    ASSERT_TRUE(mostrarAlFinal(conCerrada));
    const qint32 ultimo = ultimoId();
    m_doc->grid()->FijarFilaActual(filaDe(conCerrada));
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    elegir("MnuEdiCopy");
    EXPECT_EQ(m_mensajes.mostrados, (QStringList{Dicho("pregunta", 1806), Dicho("información", 1816)}));
    EXPECT_EQ(m_mensajes.titulosPreguntas, QStringList{QStringLiteral("Copiar Asiento")});
    EXPECT_EQ(ultimoId(), ultimo);
}

// The current row stands out from its pale selection colour: it is framed in the selected
// text's colour, and the rows around it are not.
TEST_P(Escenarios, LaFilaActualSeVeEnmarcada)
{
    const qint32 id = asientoSimple();
    ASSERT_GT(id, 0);
    vsGrid *grid = m_doc->grid();
    const int fila = filaDe(id) + 1 - m_doc->grilla().FilasFijas();
    grid->FijarFilaActual(fila + m_doc->grilla().FilasFijas());
    const QImage imagen = grid->viewport()->grab().toImage();
    const QColor marco = grid->palette().color(QPalette::HighlightedText);
    auto borde = [&](int f, bool arriba) {
        const QRect r = grid->visualRect(grid->model()->index(f, 1));
        return imagen.pixelColor(r.center().x(), arriba ? r.top() : r.bottom()).rgb();
    };
    EXPECT_EQ(borde(fila, true), marco.rgb());
    EXPECT_EQ(borde(fila, false), marco.rgb());
    EXPECT_NE(borde(fila - 1, false), marco.rgb());
    EXPECT_NE(borde(fila + 1, false), marco.rgb());
}

// Tab goes through a new entry's header and on into the line in the order Enter does, and
// Shift+Tab comes back the same way.
TEST_P(Escenarios, TabSigueElOrdenDeEnter)
{
    QTest::keyClick(m_doc->grid(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_EQ(foco(), m_doc->campoFecha());
    // Tab on an empty authoriser list stays there and asks for one, as Enter does.
    QList<QWidget *> conTab{foco()};
    while (conTab.size() < 6 && conTab.last() != editor()->campoCuenta(true)) {
        if (conTab.last() == autoriza()) {
            autoriza()->setCurrentIndex(-1);
            QTest::keyClick(autoriza(), Qt::Key_Tab);
            EXPECT_EQ(foco(), autoriza());
            EXPECT_EQ(m_mensajes.mostrados.value(0), Dicho("advertencia", 1953));
            autoriza()->setCurrentIndex(0);
        }
        QTest::keyClick(conTab.last(), Qt::Key_Tab);
        conTab << foco();
    }
    QList<QWidget *> deVuelta{foco()};
    while (deVuelta.size() < conTab.size()) {
        QTest::keyClick(deVuelta.last(), Qt::Key_Backtab);
        deVuelta << foco();
    }
    std::reverse(deVuelta.begin(), deVuelta.end());
    EXPECT_TRUE(deVuelta == conTab);

    ASSERT_EQ(foco(), m_doc->campoFecha());
    QList<QWidget *> conEnter{foco()};
    while (conEnter.size() < 6 && conEnter.last() != editor()->campoCuenta(true)) {
        if (conEnter.last() == autoriza())
            autoriza()->setCurrentIndex(0);
        enter(conEnter.last());
        conEnter << foco();
    }
    auto nombres = [](const QList<QWidget *> &campos) {
        QStringList n;
        for (QWidget *w : campos)
            n << (w ? w->objectName() : QStringLiteral("-"));
        return n;
    };
    EXPECT_EQ(nombres(conTab), nombres(conEnter));
    EXPECT_EQ(conEnter.last(), editor()->campoCuenta(true));
    EXPECT_GE(conEnter.size(), 4);

    // In the line too: Tab takes the account and goes on to the amount, Shift+Tab comes back,
    // and Tab in the amount takes the line as Enter does; nothing typed is lost on the way.
    lumERAsiento *e = editor();
    escribir(e->campoCuenta(true), QStringLiteral("1.1.01"));
    QTest::keyClick(e->campoCuenta(true), Qt::Key_Tab);
    ASSERT_EQ(foco(), e->campo(lumERAsiento::kImporte));
    QTest::keyClicks(foco(), QStringLiteral("55"));
    QTest::keyClick(foco(), Qt::Key_Backtab);
    EXPECT_EQ(foco(), e->campoCuenta(true));
    QTest::keyClick(foco(), Qt::Key_Tab);
    ASSERT_EQ(foco(), e->campo(lumERAsiento::kImporte));
    EXPECT_EQ(e->campo(lumERAsiento::kImporte)->text(), QStringLiteral("55"));
    QTest::keyClick(foco(), Qt::Key_Tab);
    EXPECT_FALSE(m_doc->edicion().LineaSinAceptar());
    EXPECT_EQ(foco(), e->campoCuenta(true));
    EXPECT_EQ(m_doc->grilla().Texto(m_doc->FilaEdicion() - 1, 2), QStringLiteral("55,00"));
}

TEST_P(Escenarios, AbrirUnAsientoGuardadoYAceptarloSinCambiosNoCambiaNadaSalvoLoEscrito)
{
    const qint32 id = asientoSimple();
    ASSERT_GT(id, 0);
    const AsientoEnBase antes = enBase(id);
    const QStringList filasAntes = filasVistas(id);
    abrir(filaDe(id));
    // The header fields show the stored entry; the focus is on its date.
    EXPECT_EQ(m_doc->campoLeyenda()->text(), antes.cabezal[2]);
    EXPECT_EQ(m_doc->listaLibros()->currentData().toInt(), antes.cabezal[3].toInt());
    EXPECT_EQ(foco(), m_doc->campoFecha());
    EXPECT_TRUE(editorALaVista());
    aceptarLinea();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    AsientoEnBase despues = enBase(id);
    if (antes.cabezal[4] == QLatin1String("0") || antes.cabezal[4] == QLatin1String("null")) {
        EXPECT_EQ(despues.cabezal[4], autoriza()->itemData(0).toString());
        despues.cabezal[4] = antes.cabezal[4];
    }
    EXPECT_EQ(despues, antes);
    EXPECT_NE(despues.sello, antes.sello);
    EXPECT_EQ(filasVistas(id), filasAntes);
    // Escape on the same entry leaves it as it was.
    const AsientoEnBase aceptado = enBase(id);
    abrir(filaDe(id));
    escape(foco());
    EXPECT_EQ(enBase(id), aceptado);
    EXPECT_EQ(enBase(id).sello, aceptado.sello);
    EXPECT_EQ(filasVistas(id), filasAntes);
    // The entry left stays the current row; a single click on it selects, a second opens.
    EXPECT_EQ(m_doc->grid()->FilaActual(), filaDe(id));
    const QRect celda = m_doc->grid()->visualRect(m_doc->grid()->model()->index(filaDe(id) + 1 - m_doc->grilla().FilasFijas(), 0));
    auto clic = [&] { QTest::mouseClick(m_doc->grid()->viewport(), Qt::LeftButton, {}, celda.center()); };
    clic();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    clic();
    EXPECT_GT(m_doc->FilaEdicion(), 0);
    escape(foco());
    clic();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    // A key typed on a line's account opens the line, the key the account's first.
    QTest::keyClick(m_doc->grid(), Qt::Key_9);
    EXPECT_EQ(m_doc->FilaEdicion(), filaDe(id) + 1);
    EXPECT_EQ(editor()->campoCuenta(true)->text(), QStringLiteral("9"));
    escape(foco());

    // A stamp stored without milliseconds ("…10:00:00") is the stamp read: the write goes through.
    const QString sello = QStringLiteral("2026-01-02 10:00:00");
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiFechaModificado = '%1' Where AsiID = %2").arg(sello).arg(id));
    m_doc->grilla().QuitarFilas(filaDe(id), m_doc->asientos().UltimaFilaAsiento(filaDe(id)) - filaDe(id) + 1);
    ASSERT_FALSE(CargarAsientoEnGrilla(m_doc->asientos(), *m_doc->proceso().conexion, id, m_doc->grilla().FilasFijas()));
    abrir(filaDe(id));
    escribir(m_doc->campoLeyenda(), QStringLiteral("Leyenda corregida"));
    aceptarLinea();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(enBase(id).cabezal[2], QStringLiteral("Leyenda corregida"));

    // A verified entry keeps its authoriser: the list is locked; an unverified one's is not.
    const QList<qint32> verificados = ids(QStringLiteral("AsiVerificado In (1, 2) And AsiEstado = 1"));
    const QList<qint32> otros = ids(QStringLiteral("AsiVerificado Is Null And AsiEstado = 1"));
    ASSERT_FALSE(verificados.isEmpty());
    ASSERT_FALSE(otros.isEmpty());
    for (const qint32 otro : {verificados.first(), otros.first()}) {
        ASSERT_TRUE(mostrarAlFinal(otro));
        abrir(filaDe(otro));
        ASSERT_GT(m_doc->FilaEdicion(), 0);
        EXPECT_EQ(autoriza()->isEnabled(), otro != verificados.first()) << "asiento " << otro;
        escape(foco());
    }
}

TEST_P(Escenarios, CambiarImporteFechaLibroYLineasYAgendarUnAsientoGuardado)
{
    const qint32 id = asientoSimple();
    ASSERT_GT(id, 0);
    const AsientoEnBase antes = enBase(id);

    // Both lines to 1.234,50: the first line and then the second.
    abrir(filaDe(id));
    escribir(editor()->campo(lumERAsiento::kImporte), QLocale().toString(1234.5, 'f', 2));
    aceptarLinea();
    ASSERT_GT(m_doc->FilaEdicion(), 0); // unbalanced now: the edit stays open
    escape(foco());
    AsientoEnBase a = enBase(id);
    EXPECT_EQ(a.cabezal[0], QStringLiteral("2")); // left unbalanced: incomplete
    EXPECT_EQ(a.cabezal[2], antes.cabezal[2]);
    abrir(filaDe(id) + 2);
    escribir(editor()->campo(lumERAsiento::kImporte), QLocale().toString(1234.5, 'f', 2));
    aceptarLinea();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    a = enBase(id);
    EXPECT_EQ(a.cabezal[2], antes.cabezal[2]);
    ASSERT_EQ(a.lineas.size(), 2);
    EXPECT_EQ(a.lineas[0][3], QStringLiteral("1234.5"));
    EXPECT_EQ(a.lineas[1][3], QStringLiteral("1234.5"));
    EXPECT_EQ(a.lineas[0][4], antes.lineas[0][4]); // the order of entry is kept
    EXPECT_EQ(filasVistas(id).size(), 3);

    // The date, typed and left with Tab, and the book.
    abrir(filaDe(id));
    const QDate nueva = QDate::fromString(antes.cabezal[1], Qt::ISODate).addDays(-1);
    m_doc->campoFecha()->setDate(nueva);
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    m_doc->listaLibros()->setCurrentIndex(m_doc->listaLibros()->findText(QStringLiteral("Ventas")));
    aceptarLinea();
    a = enBase(id);
    EXPECT_EQ(a.cabezal[1], nueva.toString(Qt::ISODate));
    EXPECT_EQ(a.cabezal[3], QStringLiteral("3"));
    EXPECT_EQ(a.cabezal[2], antes.cabezal[2]);
    EXPECT_TRUE(filasVistas(id).value(0).contains(QStringLiteral("Ventas")));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    const AsientoEnBase cambiado = enBase(id);
    // "Agregar cuenta": a third line, 100 at the debit, leaves the entry unbalanced.
    m_doc->grid()->FijarFilaActual(filaDe(id) + 1);
    elegir("MnuEdiAddCta");
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(editorALaVista());
    escribir(editor()->campoCuenta(true), QStringLiteral("1.1.02"));
    enter(editor()->campoCuenta(true));
    escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("100"));
    aceptarLinea();
    escape(foco());
    a = enBase(id);
    ASSERT_EQ(a.lineas.size(), 3);
    EXPECT_EQ(a.lineas[2][0], QStringLiteral("1.1.02"));
    EXPECT_EQ(a.lineas[2][4], QString::number(cambiado.lineas[1][4].toInt() + 1)); // the next number
    EXPECT_EQ(a.cabezal[0], QStringLiteral("2"));
    EXPECT_EQ(a.cabezal[2], cambiado.cabezal[2]);

    // "Eliminar fila" chosen while a line of a stored entry is open deletes that line, not the
    // entry; chosen on the row of a line not typed yet, it only leaves the edit.
    const qint32 otro = asientoSimple();
    ASSERT_GT(otro, 0);
    const AsientoEnBase antesOtro = enBase(otro);
    abrir(filaDe(otro) + 2); // the second line
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    elegir("MnuEdiDelRow");
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    AsientoEnBase sinLinea = enBase(otro);
    // Not in the trash, and no longer balanced: incomplete, so it cannot stay registered.
    EXPECT_EQ(antesOtro.cabezal[0], QStringLiteral("1"));
    EXPECT_EQ(sinLinea.cabezal[0], QStringLiteral("2"));
    ASSERT_EQ(sinLinea.lineas.size(), 1);
    EXPECT_EQ(sinLinea.lineas[0], antesOtro.lineas[0]);

    m_doc->grid()->FijarFilaActual(filaDe(otro) + 1);
    elegir("MnuEdiAddCta");
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    elegir("MnuEdiDelRow");
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(enBase(otro).lineas, sinLinea.lineas);
    EXPECT_EQ(enBase(otro).cabezal[0], QStringLiteral("2"));

    // Scheduled from a line, the entry does not touch the next one.
    const qint32 agendado = asientoSimple();
    ASSERT_GT(agendado, 0);
    const int filaAgendado = filaDe(agendado);
    const int siguiente = m_doc->asientos().UltimaFilaAsiento(filaAgendado) + 1;
    ASSERT_TRUE(m_doc->asientos().EsFilaCabezal(siguiente));
    const qint32 idSiguiente = m_doc->grilla().Dato(siguiente, 0).toInt();
    const QStringList filasSiguiente = filasVistas(idSiguiente);
    const QString leyenda = enBase(agendado).cabezal[2];

    abrir(filaAgendado);
    m_doc->campoFecha()->setDate(BaseDePrueba::Hoy().addDays(10));
    QTest::keyClick(m_doc->campoFecha(), Qt::Key_Tab);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si); // 1807: schedule it
    aceptarLinea();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_TRUE(enBase(agendado).cabezal.isEmpty()); // turned into a scheduled frequent entry
    EXPECT_EQ(filaDe(agendado), -1);
    EXPECT_EQ(filasVistas(idSiguiente), filasSiguiente);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select MFrNombre From genMovimientosFrecuentes Order By MFrID Desc")).toString(), leyenda);
}

// An incomplete entry of the opening-balance book that comes to balance becomes the
// opening-balance entry, its book kept and not offered for change; with one already there, it
// takes another book after 1836.
TEST_P(Escenarios, UnInconclusoDelLibroDeSaldosInicialesAlCerrar)
{
    for (const bool yaExiste : {false, true}) {
        const qint32 id = AsientoDeSaldosIniciales(m_base, EstadoAsiento::kInconcluso);
        ASSERT_GT(id, 0);
        if (yaExiste) {
            EXPECT_EQ(AsientoDeSaldosIniciales(m_base, EstadoAsiento::kRegistrado), 0);
            ASSERT_NO_FATAL_FAILURE(registradoAlLado(id));
        }
        ASSERT_TRUE(mostrarAlFinal(id));
        abrir(filaDe(id) + 2); // the credit line of 4000
        EXPECT_FALSE(m_doc->listaLibros()->isVisible());
        escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("5000"));
        m_mensajes.mostrados.clear();
        if (yaExiste)
            m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
        aceptarLinea();
        EXPECT_EQ(m_doc->FilaEdicion(), 0);
        const AsientoEnBase a = enBase(id);
        EXPECT_EQ(a.cabezal[0], QStringLiteral("1"));
        if (yaExiste) {
            ASSERT_EQ(m_mensajes.mostrados.size(), 1);
            EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("pregunta: Ya existe el asiento de saldos iniciales")));
            EXPECT_TRUE(m_mensajes.mostrados[0].contains(QStringLiteral("con el libro 'Diario'.")));
            EXPECT_EQ(a.cabezal[3], QString::number(Demo::kLibroDiario));
        } else {
            EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
            EXPECT_EQ(a.cabezal[3], QString::number(Demo::kLibroPrimeraApertura));
            EXPECT_TRUE(filasVistas(id).value(0).contains(QStringLiteral("Primera apertura")));
        }
        escape(m_doc->grid());
        m_mensajes.mostrados.clear();
        // Leaving the opening-balance entry as the only one for the second round.
        if (!yaExiste)
            m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = ?"), {id});
    }
}

// A stamp stored without milliseconds ("…10:00:00") is the stamp read: the write goes through.
// With the opening-balance entry there, one that comes to balance in that book is written
// with another book only when the user says yes, and only when there is one: a "no", or
// books the company has none of, write nothing (1837).
TEST_P(Escenarios, UnSegundoDeSaldosInicialesSinSiOSinOtroLibroNoSeGraba)
{
    const qint32 id = AsientoDeSaldosIniciales(m_base, EstadoAsiento::kInconcluso);
    ASSERT_NO_FATAL_FAILURE(registradoAlLado(id));
    const AsientoEnBase antes = enBase(id);
    for (const bool sinLibros : {false, true}) {
        if (sinLibros)
            m_base.conexion().Ejecutar(QStringLiteral("Delete From genLibros Where LibDelSistema = 0"));
        ASSERT_TRUE(mostrarAlFinal(id));
        abrir(filaDe(id) + 2);
        escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("5000"));
        m_mensajes.mostrados.clear();
        m_mensajes.Responder(ServicioMensajes::Respuesta::No);
        aceptarLinea();
        ASSERT_EQ(m_mensajes.mostrados.size(), 1) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
        EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(sinLibros ? QStringLiteral("error: El asiento de saldos iniciales ya fue realizado.")
                                                                 : QStringLiteral("pregunta: Ya existe el asiento de saldos iniciales")))
            << m_mensajes.mostrados[0].toStdString();
        EXPECT_EQ(enBase(id), antes);
        EXPECT_EQ(enBase(id).sello, antes.sello);
        // Leaving drops what the refused write held, after the question.
        m_mensajes.Responder(ServicioMensajes::Respuesta::No);
        escape(foco());
        EXPECT_EQ(m_doc->FilaEdicion(), 0);
        EXPECT_EQ(enBase(id).sello, antes.sello);
        m_doc->asientos().QuitarAsientoDeGrilla(id);
    }
}

INSTANCIAR_EN_MOTORES(Escenarios);

} // namespace
