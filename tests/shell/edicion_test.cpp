#include "escenario.h"

#include "entries/asientodatos.h"
#include "entries/vsgrid.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/lumerasiento.h"
#include "services/serviciobusquedacuentas.h"
#include "editing/sesionedicion.h"
#include "shell/lumingasiento.h"
#include "lineeditor/campofecha.h"
#include "shell/menusdocumento.h"

#include <QAction>
#include "store/basedemo.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class Edicion : public Escenario
{
protected:
    QList<QStringList> lineasEnBase(qint32 id)
    {
        QList<QStringList> l;
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select CueCodigo, ACuDebe, AcuHaber, ACuImporteMC, ACuOrden From cceAsientoCuenta"
                                                         " INNER JOIN cceCuentas ON CueID = ACuCuenta Where ACuIDAsiento = %1"
                                                         " Order By ACuOrden").arg(id));
        for (; !rs->Fin(); rs->MoverSiguiente())
            l << QStringList{rs->Texto(QStringLiteral("CueCodigo")), rs->EsNulo(QStringLiteral("AcuHaber")) ? QStringLiteral("D") : QStringLiteral("H"),
                             QString::number(rs->Numero(QStringLiteral("ACuImporteMC"))), rs->Texto(QStringLiteral("ACuOrden"))};
        return l;
    }
};

TEST_P(Edicion, UnAsientoNuevoSoloConElTeclado)
{
    const qint32 antes = ultimoId();
    QTest::keyClick(m_doc.get(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(foco(), m_doc->campoFecha());
    m_doc->campoFecha()->setDate(BaseDePrueba::Hoy().addDays(-1));
    enter(m_doc->campoFecha());
    EXPECT_EQ(foco(), m_doc->listaLibros());
    enter(m_doc->listaLibros());
    EXPECT_EQ(foco(), m_doc->campoLeyenda());
    escribir(m_doc->campoLeyenda(), QStringLiteral("Venta contado de prueba"));
    QComboBox *autoriza = m_doc->findChild<QComboBox *>(QStringLiteral("cfAutoriza"));
    autoriza->setCurrentIndex(0);
    enter(m_doc->campoLeyenda());
    enter(autoriza);

    lumERAsiento *e = m_doc->editor();
    EXPECT_EQ(foco(), e->campoCuenta(true));
    escribir(e->campoCuenta(true), QStringLiteral("1.1.01"));
    enter(e->campoCuenta(true));
    EXPECT_EQ(foco(), e->campo(lumERAsiento::kImporte));
    escribir(e->campo(lumERAsiento::kImporte), QStringLiteral("100"));
    enter(e->campo(lumERAsiento::kImporte));
    EXPECT_EQ(ultimoId(), antes); // unbalanced: nothing stored yet
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    // The missing 100 is proposed below the line being typed.
    EXPECT_TRUE(m_doc->asientos().EsFilaDiferencia(m_doc->FilaEdicion() + 1));

    // The credit side: Enter in the empty debit box, the account, and the proposed 100.
    EXPECT_EQ(foco(), e->campoCuenta(true));
    enter(e->campoCuenta(true));
    escribir(e->campoCuenta(false), QStringLiteral("4.1.01"));
    enter(e->campoCuenta(false));
    EXPECT_EQ(e->ImporteCta(), Importe::DesdeDouble(100));
    enter(e->campo(lumERAsiento::kImporte));

    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    const qint32 id = ultimoId();
    ASSERT_GT(id, antes);
    auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiEstado, AsiLeyenda, AsiFechaModificado From cceAsientos Where AsiID = %1").arg(id));
    EXPECT_EQ(rs->Entero(QStringLiteral("AsiEstado")), 1);
    EXPECT_EQ(rs->Texto(QStringLiteral("AsiLeyenda")), QStringLiteral("Venta contado de prueba"));
    const QDateTime sello = rs->FechaHora(QStringLiteral("AsiFechaModificado"));
    rs->Cerrar();
    EXPECT_EQ(lineasEnBase(id), (QList<QStringList>{{QStringLiteral("1.1.01"), QStringLiteral("D"), QStringLiteral("100"), QStringLiteral("1")},
                                                     {QStringLiteral("4.1.01"), QStringLiteral("H"), QStringLiteral("100"), QStringLiteral("2")}}));
    // The grid shows it as stored, with its stamp.
    int cabezal = -1;
    for (int r = 1; r < m_doc->grilla().Filas(); ++r)
        if (m_doc->asientos().EsFilaCabezal(r) && m_doc->grilla().Dato(r, 0).toInt() == id)
            cabezal = r;
    ASSERT_GT(cabezal, 0);
    EXPECT_EQ(m_doc->grilla().Dato(cabezal, 4).toDateTime(), sello);
    EXPECT_EQ(m_doc->grilla().Dato(cabezal, 3).toInt(), 1);
    EXPECT_TRUE(m_doc->asientos().EsFilaNuevoAsiento(m_doc->grilla().Filas() - 1));
}

TEST_P(Edicion, BorradoresSiEstaMarcado)
{
    // "Pasar asientos nuevos como borrador".
    m_doc->menus().accion(QStringLiteral("MnuSaveNewBorrador"))->trigger();
    ASSERT_TRUE(m_doc->AsiSaveB());
    m_doc->edicion().NuevoAsiento();
    m_doc->findChild<QComboBox *>(QStringLiteral("cfAutoriza"))->setCurrentIndex(0);
    lumERAsiento *e = m_doc->editor();
    m_doc->editor()->setPermitirDosCtas(true);
    e->SetFocusCtrl(lumERAsiento::kDebe, 0);
    escribir(e->campoCuenta(true), QStringLiteral("1.1.01"));
    enter(e->campoCuenta(true));
    escribir(e->campoCuenta(false), QStringLiteral("4.1.01"));
    enter(e->campoCuenta(false));
    escribir(e->campo(lumERAsiento::kImporte), QStringLiteral("60"));
    enter(e->campo(lumERAsiento::kImporte));
    const qint32 id = ultimoId();
    auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = %1").arg(id));
    EXPECT_EQ(rs->Entero(QStringLiteral("AsiEstado")), 0);
}

INSTANCIAR_EN_MOTORES(Edicion);

} // namespace
