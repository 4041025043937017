// The frequent-entry dialogs as a user drives them: a template typed with the keyboard and
// stored, changed, found by name and registered, changed and deleted from the finder.
#include "comun/asientosdeprueba.h"
#include "comun/busquedaexacta.h"
#include "comun/datosdeprueba.h"
#include "comun/dialogos.h"
#include "comun/mensajesguionados.h"
#include "frequent/plantillademo.h"

#include "entries/frecuentesdatos.h"
#include "entries/modeloasiento.h"
#include "frequent/movimientosfrecuentes.h"
#include "frequent/registrofrecuentes.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/campofecha.h"
#include "lineeditor/lumerasiento.h"
#include "services/serviciobusquedacuentas.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

namespace {

class DialogosFrecuentes : public ::testing::Test
{
protected:
    DialogosFrecuentes()
        : m_base(Motor::SQLite, BaseDePrueba::Contenido::Demo)
    {
        PrepararDatosDocumento(m_datos, m_base.conexion(), m_mensajes);
    }

    qint32 plantilla(const QString &nombre, const QList<LineaDePrueba> &lineas, const QDate &agenda = {})
    {
        return PlantillaDemo(m_base, nombre, lineas, agenda);
    }

    QStringList lineas(qint32 id, bool deFrecuente) { return LineasDe(m_base.conexion(), id, deFrecuente); }

    // A date column of the row with that id.
    QDate fecha(const char *sql, qint32 id) { return QDate::fromString(m_base.Valor(QString::fromLatin1(sql), {id}).toString().left(10), Qt::ISODate); }

    template<class T = QWidget>
    static T *hijo(QWidget &d, const char *nombre) { return d.findChild<T *>(QString::fromLatin1(nombre)); }
    static void teclear(QWidget *w, const QString &texto)
    {
        w->setFocus();
        if (auto *e = qobject_cast<QLineEdit *>(w))
            e->selectAll();
        QTest::keyClicks(w, texto);
        QTest::keyClick(w, Qt::Key_Return);
    }
    // Each text typed where the focus is, then Enter.
    static void conEnter(std::initializer_list<const char *> textos)
    {
        for (const char *t : textos) {
            QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(t));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        }
    }
    static QStringList nombres(QWidget &d)
    {
        QStringList r;
        auto *lista = hijo<QTreeWidget>(d, "lvFrecuentes");
        for (int i = 0; i < lista->topLevelItemCount(); ++i)
            r << lista->topLevelItem(i)->text(0);
        return r;
    }

    BaseDePrueba m_base;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_cuentas;
    DatosDocumento m_datos;
};

// Saving asks for what is missing, in order: a name, no line left typed and not taken, a
// line at all. Escape in the line editor drops the line being typed, and only that.
TEST_F(DialogosFrecuentes, UnaPlantillaNuevaSeEscribeConElTecladoYSeGuarda)
{
    MovimientosFrecuentes dialogo(m_datos, m_cuentas);
    qint32 id = -1;
    EXPECT_EQ(ConDialogo<MovimientosFrecuentes>([&] { id = dialogo.Editar(0); },
                                                [&](MovimientosFrecuentes &d) {
                                                    auto *guardar = hijo<QPushButton>(d, "bfOK");
                                                    guardar->click();
                                                    teclear(hijo(d, "tNombre"), QStringLiteral("Alquiler oficina"));
                                                    EXPECT_EQ(QApplication::focusWidget(), hijo(d, "tLeyenda"));
                                                    teclear(hijo(d, "tLeyenda"), QStringLiteral("Alquiler de la oficina"));
                                                    guardar->click();
                                                    // The keyboard alone: the account, Enter, Enter past the
                                                    // other side, the amount, Enter.
                                                    auto *editor = d.findChild<lumERAsiento *>();
                                                    editor->campoCuenta(true)->setFocus();
                                                    conEnter({"5.3.01", "", "1500"});
                                                    EXPECT_EQ(hijo<QLabel>(d, "lDiferencia")->text(), QStringLiteral("Falta 1.500,00 al haber."));
                                                    // A credit line: Enter past the empty debit, the account, Enter,
                                                    // and the missing amount proposed.
                                                    conEnter({"", "1.1.01"});
                                                    EXPECT_EQ(QApplication::focusWidget(), editor->campo(lumERAsiento::kImporte));
                                                    EXPECT_EQ(editor->ImporteCta(), 1500_imp);
                                                    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
                                                    EXPECT_EQ(hijo<QLabel>(d, "lDiferencia")->text(), QStringLiteral("Balanceado."));
                                                    teclear(editor->campoCuenta(true), QStringLiteral("1.1.01"));
                                                    guardar->click();
                                                    ASSERT_EQ(QApplication::focusWidget(), editor->campo(lumERAsiento::kImporte));
                                                    QTest::keyClick(editor->campo(lumERAsiento::kImporte), Qt::Key_Escape);
                                                    EXPECT_TRUE(d.isVisible()); // Escape in the editor is not the dialog's
                                                    guardar->click();
                                                }),
              1);
    EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("advertencia: Escriba el nombre del asiento frecuente."),
                                                 QStringLiteral("advertencia: El asiento frecuente no tiene líneas."),
                                                 QStringLiteral("advertencia: 1955")}));
    ASSERT_GT(id, 0);
    EXPECT_EQ(lineas(id, true), (QStringList{QStringLiteral("5.3.01|D|1500.00"), QStringLiteral("1.1.01|H|1500.00")}));
    // A new template is in the company's default book.
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select MFrNombre || '|' || MFrLeyenda || '|' || Coalesce(MFrRecurrencia, '') || '|' || MFrLibro"
                                          " From genMovimientosFrecuentes Where MFrID = ?"), {id}).toString(),
              QStringLiteral("Alquiler oficina|Alquiler de la oficina||%1").arg(m_datos.empresa.libroPorDefecto));
    EXPECT_EQ(fecha("Select MFrFecha From genMovimientosFrecuentes Where MFrID = ?", id), BaseDePrueba::Hoy());
}

// A stored template comes back with its lines; Supr on a line takes it out, and saving
// with a schedule stores the first date. Cancelling a change stores nothing.
TEST_F(DialogosFrecuentes, UnaPlantillaGuardadaSeCambiaYCancelarNoGuardaNada)
{
    const qint32 id = plantilla(QStringLiteral("Luz"), {{"5.3.01", true, 800}, {"1.1.01", false, 500}, {"1.1.02", false, 300}});
    const QDate primera = BaseDePrueba::Hoy().addDays(10);
    MovimientosFrecuentes dialogo(m_datos, m_cuentas);
    qint32 guardado = 0;
    ConDialogo<MovimientosFrecuentes>([&] { guardado = dialogo.Editar(id); }, [&](MovimientosFrecuentes &d) {
        auto *lista = hijo<QTreeWidget>(d, "lvLineas");
        ASSERT_EQ(lista->topLevelItemCount(), 3);
        EXPECT_TRUE(lista->topLevelItem(1)->text(1).startsWith(QStringLiteral("1.1.01")));
        lista->setFocus();
        lista->setCurrentItem(nullptr);
        QTest::keyClick(lista, Qt::Key_Delete); // no line chosen: none goes
        EXPECT_EQ(lista->topLevelItemCount(), 3);
        lista->setCurrentItem(lista->topLevelItem(1));
        QTest::keyClick(lista, Qt::Key_Delete);
        EXPECT_EQ(lista->topLevelItemCount(), 2);
        EXPECT_EQ(hijo<QLabel>(d, "lDiferencia")->text(), QStringLiteral("Falta 500,00 al haber."));
        hijo<QCheckBox>(d, "chkAgendar")->setChecked(true);
        hijo<CampoFecha>(d, "odDesde")->setDate(primera);
        hijo<QPushButton>(d, "bfOK")->click();
    });
    EXPECT_EQ(guardado, id);
    EXPECT_EQ(lineas(id, true), (QStringList{QStringLiteral("5.3.01|D|800.00"), QStringLiteral("1.1.02|H|300.00")}));
    // The lines left are numbered again from 1.
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select Min(MFLOrden) * 10 + Max(MFLOrden) From genMovimientosFrecuentesLineas Where MFLIDMovimiento = ?"),
                           {id}).toInt(),
              12);
    EXPECT_EQ(fecha("Select MFrFechaProxima From genMovimientosFrecuentes Where MFrID = ?", id), primera);

    // Leaving with changes asks first: "No" stays in the dialog, "Yes" drops them.
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);
    ConDialogo<MovimientosFrecuentes>([&] { guardado = dialogo.Editar(id); }, [&](MovimientosFrecuentes &d) {
        auto *lista = hijo<QTreeWidget>(d, "lvLineas");
        lista->setCurrentItem(lista->topLevelItem(0)); // the first line goes too
        QTest::keyClick(lista, Qt::Key_Delete);
        EXPECT_EQ(lista->topLevelItemCount(), 1);
        teclear(hijo(d, "tNombre"), QStringLiteral("Otro nombre"));
        hijo<QPushButton>(d, "bfCancel")->click();
        EXPECT_TRUE(d.isVisible());
        QTest::keyClick(hijo(d, "tNombre"), Qt::Key_Escape);
        EXPECT_FALSE(d.isVisible());
    });
    EXPECT_EQ(m_mensajes.mostrados, (QStringList(2, QStringLiteral("pregunta: 1968"))));
    EXPECT_EQ(guardado, 0);
    EXPECT_EQ(lineas(id, true).size(), 2);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select MFrNombre From genMovimientosFrecuentes Where MFrID = ?"), {id}).toString(), QStringLiteral("Luz"));

    // Unchanged, it closes without a question.
    m_mensajes.mostrados.clear();
    ConDialogo<MovimientosFrecuentes>([&] { guardado = dialogo.Editar(id); },
                                      [&](MovimientosFrecuentes &d) { hijo<QPushButton>(d, "bfCancel")->click(); });
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
}

// The finder lists the templates whose name holds what is typed; Enter goes name, list,
// date, and registers: a balanced template as a registered entry at the date typed, an
// unbalanced one, said beforehand, as an incomplete entry.
TEST_F(DialogosFrecuentes, SeBuscaPorNombreYSeRegistraALaFechaElegidaOLaDeSuAgenda)
{
    // Three lines: the entry keeps their order.
    const qint32 alquiler = plantilla(QStringLiteral("Alquiler"), {{"5.3.01", true, 1000}, {"5.2.01", true, 500}, {"1.1.01", false, 1500}});
    const qint32 parcial = plantilla(QStringLiteral("Sueldos parcial"), {{"5.2.01", true, 900}, {"1.1.01", false, 400}});
    const QDate dia = BaseDePrueba::Hoy().addDays(-3);

    RegistroFrecuentes registro(m_datos, m_cuentas);
    QString escritos;
    ConDialogo<RegistroFrecuentes>([&] { escritos = registro.Registrar(0); }, [&](RegistroFrecuentes &d) {
        EXPECT_EQ(nombres(d), (QStringList{QStringLiteral("Alquiler"), QStringLiteral("Sueldos parcial")}));
        teclear(hijo(d, "tBuscar"), QStringLiteral("ALQ"));
        EXPECT_EQ(nombres(d), QStringList{QStringLiteral("Alquiler")});
        EXPECT_EQ(hijo<QTreeWidget>(d, "lvLineas")->topLevelItemCount(), 3);
        EXPECT_TRUE(hijo<QLabel>(d, "lEstado")->text().isEmpty());
        ASSERT_EQ(QApplication::focusWidget(), hijo(d, "lvFrecuentes"));
        QTest::keyClick(hijo(d, "lvFrecuentes"), Qt::Key_Return);
        ASSERT_EQ(QApplication::focusWidget(), hijo(d, "odFecha"));
        hijo<CampoFecha>(d, "odFecha")->setDate(dia);
        QTest::keyClick(hijo(d, "odFecha"), Qt::Key_Return);
    });
    const qint32 asiento = escritos.toInt();
    ASSERT_GT(asiento, 0) << escritos.toStdString();
    EXPECT_EQ(registro.FrecuenteRegistrado(), alquiler);
    EXPECT_EQ(lineas(asiento, false), lineas(alquiler, true));
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = ?"), {asiento}).toInt(), EstadoAsiento::kRegistrado);
    EXPECT_EQ(fecha("Select AsiFechaAsiento From cceAsientos Where AsiID = ?", asiento), dia);

    ConDialogo<RegistroFrecuentes>([&] { escritos = registro.Registrar(0); }, [&](RegistroFrecuentes &d) {
        teclear(hijo(d, "tBuscar"), QStringLiteral("sueldos"));
        EXPECT_EQ(hijo<QLabel>(d, "lEstado")->text(), QStringLiteral("No balancea: quedará incompleto."));
        hijo<QPushButton>(d, "bfOK")->click();
    });
    EXPECT_EQ(registro.FrecuenteRegistrado(), parcial);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = ?"), {escritos.toInt()}).toInt(),
              EstadoAsiento::kInconcluso);

    // Cancelled, nothing is written.
    const QVariant ultimo = m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos"));
    ConDialogo<RegistroFrecuentes>([&] { escritos = registro.Registrar(0); });
    EXPECT_TRUE(escritos.isEmpty());
    EXPECT_EQ(registro.FrecuenteRegistrado(), 0);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos")), ultimo);

    // Registered by its id, a scheduled template is dated at its due date, and its next date
    // moves a month on; one that no longer exists is said, and nothing is written.
    const QDate vence = BaseDePrueba::Hoy().addDays(-5);
    const qint32 id = plantilla(QStringLiteral("Cuota"), {{"5.3.01", true, 50}, {"1.1.01", false, 50}}, vence);
    const qint32 agendado = registro.Registrar(id).toInt();
    ASSERT_GT(agendado, 0);
    EXPECT_EQ(fecha("Select AsiFechaAsiento From cceAsientos Where AsiID = ?", agendado), vence);
    EXPECT_EQ(fecha("Select MFrFechaProxima From genMovimientosFrecuentes Where MFrID = ?", id), vence.addMonths(1));

    m_mensajes.mostrados.clear();
    EXPECT_TRUE(registro.Registrar(id + 100).isEmpty());
    EXPECT_EQ(registro.FrecuenteRegistrado(), 0);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1912")});
}

// A list that cannot be read while the user types is told in the state line, not in a box
// that would take the next keys: what is typed stays, and the list comes back once it can be
// read again.
TEST_F(DialogosFrecuentes, UnaListaIlegibleSeDiceSinTomarLasTeclasYAlAbrirEnUnaCaja)
{
    plantilla(QStringLiteral("Alquiler"), {{"5.3.01", true, 1500}, {"1.1.01", false, 1500}});
    RegistroFrecuentes registro(m_datos, m_cuentas);
    ConDialogo<RegistroFrecuentes>([&] { registro.Registrar(0); }, [&](RegistroFrecuentes &d) {
        ASSERT_EQ(nombres(d), QStringList{QStringLiteral("Alquiler")});
        m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentes Rename To genMovimientosFrecuentesFuera"));
        auto *buscar = hijo<QLineEdit>(d, "tBuscar");
        buscar->setFocus();
        QTest::keyClicks(buscar, QStringLiteral("alq"));
        EXPECT_EQ(buscar->text(), QStringLiteral("alq"));
        EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();
        EXPECT_TRUE(hijo<QLabel>(d, "lEstado")->text().contains(QStringLiteral("genMovimientosFrecuentes")))
            << hijo<QLabel>(d, "lEstado")->text().toStdString();
        m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentesFuera Rename To genMovimientosFrecuentes"));
        QTest::keyClick(buscar, Qt::Key_U);
        EXPECT_EQ(nombres(d), QStringList{QStringLiteral("Alquiler")});
        EXPECT_TRUE(hijo<QLabel>(d, "lEstado")->text().isEmpty());
        EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    });
    // Opened on a list that cannot be read, the finder says so in a box, once.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentes Rename To genMovimientosFrecuentesFuera"));
    ConDialogo<RegistroFrecuentes>([&] { registro.Registrar(0); });
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1912")});
}

// "Modificar" opens the chosen template and the list shows the change; "Eliminar" asks and
// deletes only on yes.
TEST_F(DialogosFrecuentes, DesdeElBuscadorSeModificaYSeEliminaTrasPreguntar)
{
    const qint32 id = plantilla(QStringLiteral("Agua"), {{"5.3.01", true, 100}, {"1.1.01", false, 100}});
    plantilla(QStringLiteral("Gas"), {{"5.3.01", true, 200}, {"1.1.01", false, 200}});
    m_mensajes.Responder(ServicioMensajes::Respuesta::No);
    m_mensajes.Responder(ServicioMensajes::Respuesta::Si);

    RegistroFrecuentes registro(m_datos, m_cuentas);
    ConDialogo<RegistroFrecuentes>([&] { registro.Registrar(0); }, [&](RegistroFrecuentes &d) {
        ASSERT_EQ(nombres(d).value(0), QStringLiteral("Agua"));
        const int editores = ConDialogo<MovimientosFrecuentes>([&] { hijo<QPushButton>(d, "bfModificar")->click(); },
                                                               [&](MovimientosFrecuentes &m) {
                                                                   teclear(hijo(m, "tNombre"), QStringLiteral("Agua corriente"));
                                                                   hijo<QPushButton>(m, "bfOK")->click();
                                                               });
        EXPECT_EQ(editores, 1);
        EXPECT_EQ(nombres(d), (QStringList{QStringLiteral("Agua corriente"), QStringLiteral("Gas")}));
        EXPECT_EQ(hijo<QTreeWidget>(d, "lvFrecuentes")->currentItem()->text(0), QStringLiteral("Agua corriente"));

        hijo<QPushButton>(d, "bfEliminar")->click();
        EXPECT_EQ(nombres(d).size(), 2);
        hijo<QPushButton>(d, "bfEliminar")->click();
        EXPECT_EQ(nombres(d), QStringList{QStringLiteral("Gas")});
        teclear(hijo(d, "tBuscar"), QStringLiteral("ninguno"));
        // nothing chosen: nothing to register, change or delete
        EXPECT_FALSE(hijo<QPushButton>(d, "bfOK")->isEnabled());
        EXPECT_FALSE(hijo<QPushButton>(d, "bfModificar")->isEnabled());
        EXPECT_FALSE(hijo<QPushButton>(d, "bfEliminar")->isEnabled());
    });
    EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("pregunta: ¿Elimina el asiento frecuente «Agua corriente»?"),
                                                 QStringLiteral("pregunta: ¿Elimina el asiento frecuente «Agua corriente»?")}));
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select Count(*) From genMovimientosFrecuentes Where MFrID = ?"), {id}).toInt(), 0);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select Count(*) From genMovimientosFrecuentesLineas Where MFLIDMovimiento = ?"), {id}).toInt(), 0);
}

} // namespace
