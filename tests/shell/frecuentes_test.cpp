#include "escenario.h"


#include <QMenu>
#include <QToolButton>

namespace {

// Frequent entries from the document: made from the entry menu, offered in the link's menu
// of recent ones, registered from there after the question.
class FrecuentesEnDocumento : public Escenario
{
protected:

    // An entry of yesterday, Alquileres (5.3.01) against Caja (1.1.01), shown last.
    qint32 asiento(qint16 estado, const QString &leyenda, double debe, double haber)
    {
        return asientoAlFinal(estado, leyenda, {{"5.3.01", true, debe}, {"1.1.01", false, haber}}, Demo::kLibroDiario);
    }

    // Runs an item of the entry menu on the entry's header row; answers the template made, 0
    // when none was.
    qint32 comandoSobre(qint32 asiID, const char *accion)
    {
        const QString ultima = QStringLiteral("Select Max(MFrID) From genMovimientosFrecuentes");
        const qint32 antes = valor(ultima);
        m_doc->grid()->FijarFilaActual(filaDe(asiID));
        m_doc->menus().accion(QString::fromLatin1(accion))->trigger();
        return valor(ultima) > antes ? valor(ultima) : 0;
    }

    qint32 valor(const QString &sql) { return m_base.Valor(sql).toInt(); }

    // The link's menu as the user opens it: its recent items as "name #id".
    QStringList recientes()
    {
        m_doc->findChild<QToolButton *>(QStringLiteral("hlAsientoFrecuente"))->click();
        QStringList r;
        for (QAction *a : m_doc->menus().MnuAFrRecientes)
            r << QStringLiteral("%1 #%2").arg(a->text()).arg(a->data().toInt());
        m_doc->menus().MnuAsientoFrecuente->close();
        return r;
    }

    QStringList lineas(qint32 id, bool deFrecuente = false) { return LineasDe(m_base.conexion(), id, deFrecuente); }
};

TEST_P(FrecuentesEnDocumento, HacerFrecuenteAgendarYRegistrarUnReciente)
{
    const QStringList alComienzo = recientes();
    const qint32 inconcluso = asiento(EstadoAsiento::kInconcluso, QStringLiteral("Sin cuadrar"), 100, 90);
    const qint32 registrado = asiento(EstadoAsiento::kRegistrado, QStringLiteral("Alquiler de oficina"), 1200.5, 1200.5);

    EXPECT_EQ(comandoSobre(inconcluso, "MnuEdiHacerFrecuente"), 0);
    const qint32 frecuente = comandoSobre(registrado, "MnuEdiHacerFrecuente");
    ASSERT_GT(frecuente, 0);
    EXPECT_EQ(lineas(frecuente, true), (QStringList{QStringLiteral("5.3.01|D|1200.50"), QStringLiteral("1.1.01|H|1200.50")}));
    EXPECT_EQ(valor(QStringLiteral("Select Count(*) From genMovimientosFrecuentes Where MFrID = %1 And MFrRecurrencia Is Null"
                                    " And MFrNombre = 'Alquiler de oficina'").arg(frecuente)),
              1);
    EXPECT_EQ(recientes(), QStringList{QStringLiteral("Alquiler de oficina #%1").arg(frecuente)} + alComienzo);

    // Scheduled: the entry stays as this month's, the template is next due a month later,
    // and it is never one of the recent ones.
    const qint32 agendado = comandoSobre(registrado, "MnuEdiAgendarAsiento");
    ASSERT_GT(agendado, 0);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select MFrFechaProxima From genMovimientosFrecuentes Where MFrID = ?"
                                          " And MFrRecurrencia Is Not Null"),
                           {agendado}).toDate(),
              BaseDePrueba::Hoy().addDays(-1).addMonths(1));
    EXPECT_EQ(recientes(), QStringList{QStringLiteral("Alquiler de oficina #%1").arg(frecuente)} + alComienzo);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // A template of an entry in a system book takes the company's default book; when the books
    // cannot be read, none is made and the user is told, rather than one stored without a book.
    const qint32 resumen = asientoAlFinal(EstadoAsiento::kRegistrado, QStringLiteral("Resumen"),
                                          {{"5.3.01", true, 10}, {"1.1.01", false, 10}}, Demo::kLibroResumen);
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibros Rename To librosAparte"));
    EXPECT_EQ(comandoSobre(resumen, "MnuEdiHacerFrecuente"), 0);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("error", 1908)});
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table librosAparte Rename To genLibros"));
    const qint32 deResumen = comandoSobre(resumen, "MnuEdiHacerFrecuente");
    EXPECT_EQ(valor(QStringLiteral("Select MFrLibro From genMovimientosFrecuentes Where MFrID = %1").arg(deResumen)), Demo::kLibroDiario);

    m_mensajes.mostrados.clear();
    const qint32 alquiler = comandoSobre(asiento(EstadoAsiento::kRegistrado, QStringLiteral("Alquiler"), 800, 800), "MnuEdiHacerFrecuente");
    const qint32 sueldos = comandoSobre(asiento(EstadoAsiento::kRegistrado, QStringLiteral("Sueldos"), 55.25, 55.25), "MnuEdiHacerFrecuente");
    ASSERT_GT(alquiler, 0);
    ASSERT_GT(sueldos, 0);
    ASSERT_EQ(recientes().mid(0, 2), (QStringList{QStringLiteral("Sueldos #%1").arg(sueldos), QStringLiteral("Alquiler #%1").arg(alquiler)}));
    auto elegirReciente = [this](qint32 id) {
        recientes();
        for (QAction *a : m_doc->menus().MnuAFrRecientes)
            if (a->data().toInt() == id)
                a->trigger();
    };

    const qint32 ultimo = ultimoId();
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    elegirReciente(alquiler);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{Dicho("pregunta", 1834)});
    EXPECT_TRUE(m_doc->ComandoDiferido().isEmpty()); // nothing left to run later
    EXPECT_EQ(ultimoId(), ultimo);

    const QStringList antes = filasVistas(m_doc->grilla().FilasFijas(), m_doc->grilla().Filas() - 1);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    elegirReciente(alquiler);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_doc->ComandoDiferido().isEmpty(); }, 5000));

    const qint32 nuevo = ultimoId();
    ASSERT_GT(nuevo, ultimo);
    EXPECT_EQ(ids(QStringLiteral("AsiID > %1").arg(ultimo)), QList<qint32>{nuevo});
    EXPECT_EQ(lineas(nuevo), lineas(alquiler, true));

    // The entry comes after every row shown before, only the "Nuevo Asiento" row stays
    // last; it is the current row.
    const int fijas = m_doc->grilla().FilasFijas();
    const int fila = filaDe(nuevo);
    ASSERT_EQ(antes.last(), QStringLiteral("Nuevo Asiento|||||"));
    EXPECT_EQ(fila, fijas + antes.size() - 1);
    EXPECT_EQ(filasVistas(fijas, fila - 1), antes.mid(0, antes.size() - 1));
    EXPECT_EQ(m_doc->asientos().UltimaFilaAsiento(fila), m_doc->grilla().Filas() - 2);
    EXPECT_EQ(filasVistas(m_doc->grilla().Filas() - 1, m_doc->grilla().Filas() - 1), antes.mid(antes.size() - 1));
    EXPECT_EQ(m_doc->grid()->FilaActual(), fila);

    EXPECT_EQ(recientes().mid(0, 2), (QStringList{QStringLiteral("Alquiler #%1").arg(alquiler), QStringLiteral("Sueldos #%1").arg(sueldos)}));
    EXPECT_EQ(m_mensajes.mostrados.size(), 2) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
}

INSTANCIAR_EN_MOTORES(FrecuentesEnDocumento);

} // namespace
