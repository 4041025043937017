// The search dialog alone, driven with the keyboard: the order Enter follows, what is
// refused, and the criteria "Aceptar" and "Cancelar" leave.
#include "comun/basesprueba.h"
#include "comun/busquedaexacta.h"
#include "comun/datosdeprueba.h"
#include "comun/mensajesguionados.h"

#include "editing/datosdocumento.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/campofecha.h"
#include "search/frmfind.h"
#include "store/basedemo.h"

#include <QApplication>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <tuple>

namespace {

class DialogoBusqueda : public ::testing::TestWithParam<Motor>
{
protected:
    DialogoBusqueda()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
        PrepararDatosDocumento(m_datos, m_base.conexion(), m_mensajes);
        m_cuentas.exacta = false; // the account prepared, or none
        crear(true);
    }

    void crear(bool conProyectos)
    {
        frmFind::Listas listas;
        listas.libros = {{QStringLiteral("Diario"), 1}, {QStringLiteral("Ventas"), 7}};
        if (conProyectos) {
            listas.proyectos = *m_datos.LeerProyectos();
            listas.departamentos = *m_datos.LeerDepartamentos();
        }
        m_dialogo = std::make_unique<frmFind>(m_datos, m_cuentas, listas);
        mostrar();
    }

    void mostrar()
    {
        m_dialogo->show();
        QApplication::setActiveWindow(m_dialogo.get());
        QApplication::processEvents();
    }
    template<class T = QWidget>
    T *campo(const char *nombre) const { return m_dialogo->findChild<T *>(QString::fromLatin1(nombre)); }
    // The control with the focus, by name; an editable list's edit box counts as the list.
    QString foco() const
    {
        QWidget *w = QApplication::focusWidget();
        if (w && qobject_cast<QComboBox *>(w->parentWidget()))
            w = w->parentWidget();
        return w ? w->objectName() : QStringLiteral("(nadie)");
    }
    // A key where the focus is; what it queues (a message, the focus sent back) runs too.
    void tecla(Qt::Key k = Qt::Key_Return)
    {
        QTest::keyClick(QApplication::focusWidget(), k);
        QApplication::processEvents();
    }
    // Enter where the focus is; answers where the focus went.
    QString enter()
    {
        tecla();
        return foco();
    }
    void escribir(const char *nombre, const QString &texto)
    {
        QWidget *w = campo(nombre);
        w->setFocus();
        auto *lista = qobject_cast<QComboBox *>(w);
        (lista ? lista->lineEdit() : static_cast<QLineEdit *>(w))->selectAll();
        QTest::keyClick(w, Qt::Key_Delete);
        QTest::keyClicks(w, texto);
    }
    // A click on a control; what it queues runs too.
    void clic(const char *nombre)
    {
        QTest::mouseClick(campo(nombre), Qt::LeftButton);
        QApplication::processEvents();
    }
    void aceptar()
    {
        campo("bfOK")->setFocus();
        tecla();
    }
    const CriteriosBusqueda &criterios() const { return m_dialogo->criterios; }
    std::tuple<qint32, int, int> cuenta() const { return {criterios().prmCta, criterios().prmPry, criterios().prmDep}; }

    BaseDePrueba m_base;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_cuentas;
    DatosDocumento m_datos;
    std::unique_ptr<frmFind> m_dialogo;
};

TEST_P(DialogoBusqueda, SinCriterioNoHayBusquedaNiConUnaLeyendaDeBlancosOSinEstado)
{
    aceptar();
    EXPECT_FALSE(m_dialogo->isVisible());
    EXPECT_FALSE(criterios().FindOK);

    mostrar();
    escribir("tLeyenda", QStringLiteral("   "));
    aceptar();
    EXPECT_FALSE(criterios().FindOK);
    EXPECT_TRUE(criterios().prmLeyenda.isEmpty());

    // The list starts with no state (above: none), the third is the registered one (3); Delete
    // leaves the list with none again.
    mostrar();
    campo("cfEstado")->setFocus();
    for (int i = 0; i < 3; ++i)
        tecla(Qt::Key_Down);
    aceptar();
    EXPECT_TRUE(criterios().FindOK);
    EXPECT_EQ(criterios().prmEstado, 3);
    mostrar();
    campo("cfEstado")->setFocus();
    tecla(Qt::Key_Delete);
    EXPECT_EQ(campo<QComboBox>("cfEstado")->currentIndex(), -1);
    aceptar();
    EXPECT_FALSE(criterios().FindOK);
    EXPECT_EQ(criterios().prmEstado, 0);
}

TEST_P(DialogoBusqueda, EnterRecorreLosCamposEnSuOrden)
{
    // Without a start date the end is skipped; without an amount, the upper one.
    campo("cfCriterio")->setFocus();
    QStringList recorrido{foco()};
    for (int i = 0; i < 7; ++i)
        recorrido << enter();
    EXPECT_EQ(recorrido, (QStringList{"cfCriterio", "odInicio", "cfLibro", "cfEstado", "tLeyenda", "tCuenta", "ocImporte", "bfOK"}));
    EXPECT_TRUE(m_cuentas.pedidos.isEmpty()); // a blank account is not looked up
    EXPECT_TRUE(m_dialogo->isVisible());

    escribir("odInicio", QStringLiteral("01/03/2026"));
    EXPECT_EQ(enter(), QStringLiteral("odFin"));
    escribir("odFin", QStringLiteral("31/03/2026"));
    EXPECT_EQ(enter(), QStringLiteral("cfLibro"));
    escribir("ocImporte", QStringLiteral("100"));
    EXPECT_EQ(enter(), QStringLiteral("ocImporte2"));
    EXPECT_EQ(enter(), QStringLiteral("bfOK"));
    tecla();
    EXPECT_FALSE(m_dialogo->isVisible());
    EXPECT_EQ(criterios().prmFInit, QStringLiteral("2026-03-01"));
    EXPECT_EQ(criterios().prmFEnd, QStringLiteral("2026-03-31"));
    EXPECT_EQ(criterios().prmImporte, 100);
}

TEST_P(DialogoBusqueda, UnFinAnteriorAlInicioSeRechaza)
{
    escribir("odInicio", QStringLiteral("01/03/2026"));
    escribir("odFin", QStringLiteral("31/03/2026"));
    aceptar();
    ASSERT_TRUE(criterios().FindOK);

    mostrar();
    escribir("odInicio", QStringLiteral("10/03/2026"));
    escribir("odFin", QStringLiteral("05/03/2026"));
    tecla();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: 1849")});
    EXPECT_EQ(foco(), QStringLiteral("odInicio"));
    aceptar();
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_TRUE(m_dialogo->isVisible());
    EXPECT_EQ(criterios().prmFInit, QStringLiteral("2026-03-01"));
    EXPECT_EQ(criterios().prmFEnd, QStringLiteral("2026-03-31"));
}

TEST_P(DialogoBusqueda, ElLibroEscritoDebeSerUnoDeLaLista)
{
    escribir("cfLibro", QStringLiteral("Compras"));
    EXPECT_EQ(enter(), QStringLiteral("cfLibro"));
    EXPECT_EQ(campo<QComboBox>("cfLibro")->lineEdit()->selectedText(), QStringLiteral("Compras"));
    aceptar();
    EXPECT_TRUE(m_dialogo->isVisible());
    campo("tLeyenda")->setFocus(); // moved by the program, not by the user: not held back
    QApplication::processEvents();
    EXPECT_EQ(foco(), QStringLiteral("tLeyenda"));

    escribir("cfLibro", QStringLiteral("VENTAS"));
    EXPECT_EQ(enter(), QStringLiteral("cfEstado"));
    aceptar();
    EXPECT_TRUE(criterios().FindOK);
    EXPECT_EQ(criterios().prmLibro, 7);
    mostrar();
    escribir("cfLibro", QStringLiteral("diario")); // the first of the list
    aceptar();
    EXPECT_EQ(criterios().prmLibro, 1);
}

TEST_P(DialogoBusqueda, CancelarDejaLosCriteriosDelUltimoAceptarYLosCamposComoQuedaron)
{
    escribir("tLeyenda", QStringLiteral("Cobranza"));
    escribir("odInicio", QStringLiteral("01/03/2026"));
    aceptar();
    ASSERT_TRUE(criterios().FindOK);

    mostrar();
    escribir("tLeyenda", QStringLiteral("Otra"));
    escribir("odInicio", QStringLiteral("02/04/2026"));
    campo<QComboBox>("cfEstado")->setCurrentIndex(2);
    escribir("ocImporte", QStringLiteral("50"));
    tecla(Qt::Key_Escape);
    EXPECT_FALSE(m_dialogo->isVisible());
    EXPECT_FALSE(criterios().FindOK);
    EXPECT_EQ(criterios().prmLeyenda, QStringLiteral("Cobranza"));
    EXPECT_EQ(criterios().prmFInit, QStringLiteral("2026-03-01"));
    EXPECT_EQ(criterios().prmEstado, 0);
    EXPECT_EQ(criterios().prmImporte, 0);
    mostrar();
    EXPECT_EQ(campo<QLineEdit>("tLeyenda")->text(), QStringLiteral("Otra"));
    EXPECT_EQ(campo<CampoFecha>("odInicio")->date(), QDate(2026, 4, 2));
    EXPECT_EQ(campo<QComboBox>("cfEstado")->currentText(), QStringLiteral("Normal"));
    EXPECT_EQ(campo<CampoCalculadora>("ocImporte")->Valor(), 50);
}

TEST_P(DialogoBusqueda, LaCuentaBuscadaEntraConSuProyectoYDepartamento)
{
    const qint32 id = m_base.IdCuenta("1.1.01");
    const QString nombre = m_base.Valor(QStringLiteral("Select CueNombre From cceCuentas Where CueID = ?"), {id}).toString().trimmed();

    // The chooser was cancelled, with an account in view: no account, the dialog stays on it.
    m_cuentas.respuesta = {id, 3, 2};
    m_cuentas.acepta = false;
    escribir("tCuenta", QStringLiteral("caja"));
    aceptar();
    EXPECT_TRUE(m_dialogo->isVisible());
    EXPECT_EQ(foco(), QStringLiteral("tCuenta"));

    m_cuentas.acepta = true;
    m_cuentas.pedidos.clear();
    escribir("tCuenta", QStringLiteral("caja"));
    tecla();
    EXPECT_EQ(m_cuentas.pedidos, QStringList{QStringLiteral("caja")});
    // With an account, Enter goes through its project and department.
    EXPECT_EQ(foco(), QStringLiteral("cfProyecto"));
    EXPECT_EQ(enter(), QStringLiteral("cfDepartamento"));
    EXPECT_EQ(enter(), QStringLiteral("ocImporte"));
    EXPECT_TRUE(campo<QLineEdit>("tCuenta")->text().contains(nombre)) << campo<QLineEdit>("tCuenta")->text().toStdString();
    aceptar();
    EXPECT_EQ(m_cuentas.pedidos.size(), 1); // the account found is not looked up again
    EXPECT_TRUE(criterios().FindOK);
    EXPECT_EQ(cuenta(), std::tuple(id, 3, 2));

    // A blank account is no account, with no project or department.
    mostrar();
    escribir("tCuenta", QString());
    aceptar();
    EXPECT_FALSE(m_dialogo->isVisible());
    EXPECT_EQ(m_cuentas.pedidos.size(), 1);
    EXPECT_FALSE(criterios().FindOK);
    EXPECT_EQ(cuenta(), std::tuple(0, 0, 0));
}

// An account alone finds its lines of every project and department; the lists narrow it to
// one project, or to the lines without a department.
TEST_P(DialogoBusqueda, ProyectoYDepartamentoAcotanLaCuenta)
{
    auto *proyecto = campo<QComboBox>("cfProyecto");
    auto *departamento = campo<QComboBox>("cfDepartamento");
    EXPECT_TRUE(proyecto->isVisible());
    EXPECT_FALSE(proyecto->isEnabled()); // nothing to narrow without an account
    EXPECT_EQ(proyecto->count(), 2 + m_datos.LeerProyectos()->size());

    const qint32 cuentaSueldos = m_base.IdCuenta("5.2.01");
    m_cuentas.respuesta = {cuentaSueldos, 0, 0};
    escribir("tCuenta", QStringLiteral("sueldos"));
    tecla();
    EXPECT_TRUE(proyecto->isEnabled() && departamento->isEnabled());
    aceptar();
    EXPECT_EQ(cuenta(), std::tuple(cuentaSueldos, CriteriosBusqueda::kCualquiera, CriteriosBusqueda::kCualquiera));

    mostrar();
    proyecto->setFocus();
    for (int i = 0; i < 3; ++i)
        tecla(Qt::Key_Down); // "any", "none", then the second project
    departamento->setFocus();
    tecla(Qt::Key_Down);
    aceptar();
    EXPECT_EQ(cuenta(), std::tuple(cuentaSueldos, 2, 0));

    // Books without projects or departments show no lists, and restrict nothing.
    crear(false);
    EXPECT_FALSE(campo("cfProyecto")->isVisible());
    EXPECT_FALSE(campo("lbDepartamento")->isVisible());
    escribir("tCuenta", QStringLiteral("sueldos"));
    EXPECT_EQ(enter(), QStringLiteral("ocImporte"));
    aceptar();
    EXPECT_EQ(cuenta(), std::tuple(cuentaSueldos, CriteriosBusqueda::kCualquiera, CriteriosBusqueda::kCualquiera));
}

TEST_P(DialogoBusqueda, ImportesLeidosYUnTextoQueNoEsNumeroRechazadoUnaVez)
{
    escribir("ocImporte", QStringLiteral("1250,5"));
    tecla();
    escribir("ocImporte2", QStringLiteral("2000+500"));
    aceptar();
    EXPECT_DOUBLE_EQ(criterios().prmImporte, 1250.5);
    EXPECT_DOUBLE_EQ(criterios().prmImporte2, 2500);

    mostrar();
    escribir("ocImporte", QStringLiteral("12,5x"));
    tecla();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1950")});
    EXPECT_EQ(foco(), QStringLiteral("ocImporte"));
    EXPECT_TRUE(m_dialogo->isVisible());
    // "Aceptar" by its access key, with the focus left in the fields, refuses it as well.
    escribir("ocImporte", QStringLiteral("10"));
    escribir("ocImporte2", QStringLiteral("dos mil"));
    m_mensajes.mostrados.clear();
    campo<QPushButton>("bfOK")->click();
    QApplication::processEvents();
    EXPECT_TRUE(m_dialogo->isVisible());
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1950")});
    EXPECT_EQ(foco(), QStringLiteral("ocImporte2"));
    EXPECT_DOUBLE_EQ(criterios().prmImporte, 1250.5);
}

// Leaving a typed account for another field, by keyboard or mouse, looks it up as Enter
// does; the focus moved by the program (a message, say) does not. A caption's click takes the
// focus to its field.
TEST_P(DialogoBusqueda, DejarLaCuentaConTeclaORatonLaBusca)
{
    escribir("tCuenta", QStringLiteral("caja"));
    campo("tLeyenda")->setFocus();
    QApplication::processEvents();
    EXPECT_TRUE(m_cuentas.pedidos.isEmpty());

    campo("tCuenta")->setFocus();
    tecla(Qt::Key_Backtab);
    EXPECT_EQ(m_cuentas.pedidos, QStringList{QStringLiteral("caja")});
    clic("lbCuenta");
    EXPECT_EQ(foco(), QStringLiteral("tCuenta"));
    EXPECT_EQ(campo<QLineEdit>("tCuenta")->selectedText(), QStringLiteral("caja"));
    clic("tLeyenda");
    EXPECT_EQ(foco(), QStringLiteral("tLeyenda"));
    EXPECT_EQ(m_cuentas.pedidos.size(), 2);

    // The legend's caption selects the legend too; the book's takes the focus to its list.
    escribir("tLeyenda", QStringLiteral("Alquiler*"));
    clic("lbLeyenda");
    EXPECT_EQ(campo<QLineEdit>("tLeyenda")->selectedText(), QStringLiteral("Alquiler*"));
    clic("lbLibro");
    EXPECT_EQ(foco(), QStringLiteral("cfLibro"));

    // "Aceptar" clicked with an account typed looks it up once, while the chooser's own
    // event loop runs what leaving the box queued.
    m_cuentas.pedidos.clear();
    m_cuentas.respuesta = {m_base.IdCuenta("1.1.01"), 0, 0};
    m_cuentas.durante = [] { QApplication::processEvents(); };
    escribir("tCuenta", QStringLiteral("banco"));
    clic("bfOK");
    EXPECT_EQ(m_cuentas.pedidos, QStringList{QStringLiteral("banco")});
    EXPECT_FALSE(m_dialogo->isVisible());
}

// Each Alt key leads to one control only, in either language: the captions' marked letters
// of the dialog as shown (with projects and departments) are all different.
TEST_P(DialogoBusqueda, CadaTeclaAltLlevaAUnSoloControl)
{
    for (int idioma : {1, 2}) {
        m_datos.texto = [idioma](int n) { return TextoEnIdioma(idioma, n); };
        crear(true);
        QHash<QString, QStringList> duenos;
        for (QWidget *w : m_dialogo->findChildren<QWidget *>()) {
            QString texto;
            if (auto *l = qobject_cast<QLabel *>(w))
                texto = l->text();
            else if (auto *b = qobject_cast<QAbstractButton *>(w))
                texto = b->text();
            const QString tecla = QKeySequence::mnemonic(texto).toString();
            if (!tecla.isEmpty() && w->isVisibleTo(m_dialogo.get()))
                duenos[tecla] << w->objectName();
        }
        EXPECT_GE(duenos.size(), 10) << idioma;
        for (auto it = duenos.cbegin(); it != duenos.cend(); ++it)
            EXPECT_EQ(it.value().size(), 1) << "idioma " << idioma << ", " << it.key().toStdString() << ": "
                                            << it.value().join(QStringLiteral(", ")).toStdString();
    }
}

INSTANCIAR_EN_MOTORES(DialogoBusqueda);

} // namespace
