// The books of the company: the rules of what may change, and the manager's dialog driven by
// its keys, its questions answered as a user answers them.
#include "comun/basesprueba.h"
#include "comun/dialogos.h"

#include "services/gestorlibros.h"
#include "store/basedemo.h"

#include <QAbstractButton>
#include <QInputDialog>
#include <QMessageBox>
#include <QTest>
#include <QTreeWidget>

namespace {

class GestionDeLibros : public ::testing::TestWithParam<Motor>
{
protected:
    BaseDePrueba m_base{GetParam(), BaseDePrueba::Contenido::Demo};
};

TEST_P(GestionDeLibros, AgregarRenombrarYEliminarSoloLosPropiosSinUso)
{
    Libros libros(m_base.conexion());
    const int antes = libros.Listar().size();
    qint16 codigo = 0;
    EXPECT_EQ(libros.Agregar(QStringLiteral("  Importaciones "), codigo), Libros::Resultado::Bien);
    EXPECT_GT(codigo, Demo::kLibroPrimeraApertura);
    EXPECT_EQ(libros.Listar().size(), antes + 1);
    qint16 otro = 0;
    EXPECT_EQ(libros.Agregar(QStringLiteral("importaciones"), otro), Libros::Resultado::NombreRepetido);
    EXPECT_EQ(libros.Agregar(QStringLiteral("   "), otro), Libros::Resultado::NombreVacio);
    EXPECT_EQ(libros.Renombrar(codigo, QStringLiteral("IMPORTACIONES")), Libros::Resultado::Bien); // its own name, in capitals
    EXPECT_EQ(libros.Renombrar(codigo, QStringLiteral("Diario")), Libros::Resultado::NombreRepetido);
    EXPECT_EQ(libros.Renombrar(codigo, QStringLiteral("Importación")), Libros::Resultado::Bien);
    EXPECT_EQ(libros.Renombrar(Demo::kLibroCierre, QStringLiteral("Otro")), Libros::Resultado::DelSistema);
    EXPECT_EQ(libros.Eliminar(Demo::kLibroApertura), Libros::Resultado::DelSistema);
    EXPECT_EQ(libros.Eliminar(Demo::kLibroDiario), Libros::Resultado::EnUso);
    EXPECT_EQ(libros.Eliminar(codigo), Libros::Resultado::Bien);
    EXPECT_EQ(libros.Eliminar(codigo), Libros::Resultado::NoExiste);
    EXPECT_EQ(libros.Renombrar(codigo, QStringLiteral("Otro")), Libros::Resultado::NoExiste);
    EXPECT_EQ(libros.Listar().size(), antes);
}

// Insert asks a name and shows the new book chosen; F2 renames it; Delete asks first. A
// refusal is said in a box; a cancelled question changes nothing. The system's books cannot
// be chosen for a change. The list is read again from the books after each change.
TEST_P(GestionDeLibros, ElDialogoConSusTeclas)
{
    GestorLibros gestor(m_base.conexion());
    gestor.show();
    QApplication::setActiveWindow(&gestor);
    auto *lista = gestor.findChild<QTreeWidget *>(QStringLiteral("lstLibros"));
    auto nombreActual = [&] { return lista->currentItem() ? lista->currentItem()->text(1) : QString(); };
    // The dialogs a key brings up: a name is typed, or the question is left unanswered.
    auto tecla = [&](Qt::Key k, const QString &respuesta) {
        return ConDialogo<QInputDialog>([&] { QTest::keyClick(&gestor, k); }, [&](QInputDialog &d) {
            if (!respuesta.isNull()) {
                d.setTextValue(respuesta);
                d.accept();
            }
        });
    };
    auto borrar = [&](QMessageBox::StandardButton boton) {
        return ConDialogo<QMessageBox>([&] { QTest::keyClick(&gestor, Qt::Key_Delete); }, [&](QMessageBox &m) { m.button(boton)->click(); });
    };
    const int antes = lista->topLevelItemCount();

    EXPECT_EQ(tecla(Qt::Key_Insert, QStringLiteral("Exportaciones")), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Exportaciones"));
    EXPECT_EQ(ConDialogo<QMessageBox>([&] { tecla(Qt::Key_Insert, QStringLiteral("exportaciones")); }), 1);
    EXPECT_EQ(tecla(Qt::Key_Insert, QString()), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);

    EXPECT_EQ(tecla(Qt::Key_F2, QString()), 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Exportaciones"));
    EXPECT_EQ(tecla(Qt::Key_F2, QStringLiteral("Ventas al exterior")), 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Ventas al exterior"));

    EXPECT_EQ(borrar(QMessageBox::No), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);
    EXPECT_EQ(borrar(QMessageBox::Yes), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes);

    for (int i = 0; i < lista->topLevelItemCount(); ++i)
        if (lista->topLevelItem(i)->data(0, Qt::UserRole).toInt() == Demo::kLibroCierre)
            lista->setCurrentItem(lista->topLevelItem(i));
    ASSERT_EQ(lista->currentItem()->data(0, Qt::UserRole).toInt(), Demo::kLibroCierre);
    EXPECT_EQ(tecla(Qt::Key_F2, QStringLiteral("Otro")), 0);
    EXPECT_EQ(borrar(QMessageBox::Yes), 0);
}

INSTANCIAR_EN_MOTORES(GestionDeLibros);

} // namespace
