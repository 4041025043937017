// The books of the company: the rules of what may change, and the manager's dialog driven by
// its keys, its questions answered as a user answers them.
#include "comun/basesprueba.h"
#include "comun/dialogos.h"
#include "comun/mensajesguionados.h"

#include "dialogs/gestorlibros.h"
#include "store/basedemo.h"

#include <QInputDialog>
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
// refusal is said as a warning, a failure of the database as an error with its detail; a
// cancelled question changes nothing. The system's books cannot be chosen for a change. The
// list is read again from the books after each change.
TEST_P(GestionDeLibros, ElDialogoConSusTeclas)
{
    MensajesGuionados mensajes;
    GestorLibros gestor(m_base.conexion(), mensajes, [](int n) { return QStringLiteral("texto %1").arg(n); });
    gestor.show();
    QApplication::setActiveWindow(&gestor);
    auto *lista = gestor.findChild<QTreeWidget *>(QStringLiteral("lstLibros"));
    auto nombreActual = [&] { return lista->currentItem() ? lista->currentItem()->text(1) : QString(); };
    // The dialogs a key brings up: the first gets a name typed, or is left unanswered; one
    // that asks again after a refusal is cancelled, and what it offered is kept.
    QString ofrecido;
    auto tecla = [&](Qt::Key k, const QString &respuesta) {
        int vez = 0;
        ofrecido.clear();
        return ConDialogo<QInputDialog>([&] { QTest::keyClick(&gestor, k); }, [&](QInputDialog &d) {
            if (vez++ > 0) {
                ofrecido = d.textValue();
            } else if (!respuesta.isNull()) {
                d.setTextValue(respuesta);
                d.accept();
            }
        });
    };
    // Delete with the question answered; answers how many messages it brought.
    auto borrar = [&](std::optional<ServicioMensajes::Respuesta> respuesta) {
        const qsizetype antes = mensajes.mostrados.size();
        if (respuesta)
            mensajes.Responder(*respuesta);
        QTest::keyClick(&gestor, Qt::Key_Delete);
        return mensajes.mostrados.size() - antes;
    };
    const int antes = lista->topLevelItemCount();

    EXPECT_EQ(tecla(Qt::Key_Insert, QStringLiteral("Exportaciones")), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Exportaciones"));
    EXPECT_EQ(tecla(Qt::Key_Insert, QStringLiteral("exportaciones")), 2); // asked again with what was typed
    EXPECT_EQ(ofrecido, QStringLiteral("exportaciones"));
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: Ya existe un libro con ese nombre.")});
    EXPECT_EQ(tecla(Qt::Key_Insert, QString()), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);

    EXPECT_EQ(tecla(Qt::Key_F2, QString()), 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Exportaciones"));
    EXPECT_EQ(tecla(Qt::Key_F2, QStringLiteral("Ventas al exterior")), 1);
    EXPECT_EQ(nombreActual(), QStringLiteral("Ventas al exterior"));

    EXPECT_EQ(borrar(ServicioMensajes::Respuesta::No), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes + 1);
    EXPECT_EQ(borrar(ServicioMensajes::Respuesta::Si), 1);
    EXPECT_EQ(lista->topLevelItemCount(), antes);

    for (int i = 0; i < lista->topLevelItemCount(); ++i)
        if (lista->topLevelItem(i)->data(0, Qt::UserRole).toInt() == Demo::kLibroCierre)
            lista->setCurrentItem(lista->topLevelItem(i));
    ASSERT_EQ(lista->currentItem()->data(0, Qt::UserRole).toInt(), Demo::kLibroCierre);
    EXPECT_EQ(tecla(Qt::Key_F2, QStringLiteral("Otro")), 0);
    EXPECT_EQ(borrar(std::nullopt), 0);

    // A book another session removed meanwhile: said once, and its new name is not asked again.
    ASSERT_EQ(tecla(Qt::Key_Insert, QStringLiteral("Temporal")), 1);
    m_base.conexion().Ejecutar(QStringLiteral("Delete From genLibros Where LibNombre = 'Temporal'"));
    mensajes.mostrados.clear();
    EXPECT_EQ(tecla(Qt::Key_F2, QStringLiteral("Otro nombre")), 1);
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: El libro ya no existe.")});

    // A book with entries is refused before the question.
    for (int i = 0; i < lista->topLevelItemCount(); ++i)
        if (lista->topLevelItem(i)->data(0, Qt::UserRole).toInt() == Demo::kLibroDiario)
            lista->setCurrentItem(lista->topLevelItem(i));
    mensajes.mostrados.clear();
    EXPECT_EQ(borrar(std::nullopt), 1);
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: Hay asientos en este libro: no se puede eliminar.")});

    // The database fails the write: the error says why, and the list is read again.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibros Rename Column LibNombre To LibOtro"));
    mensajes.mostrados.clear();
    EXPECT_EQ(tecla(Qt::Key_Insert, QStringLiteral("Compras")), 2);
    EXPECT_EQ(ofrecido, QStringLiteral("Compras"));
    ASSERT_GE(mensajes.mostrados.size(), 1);
    EXPECT_EQ(mensajes.mostrados[0], QStringLiteral("error: No se pudo guardar el cambio."));
    EXPECT_TRUE(mensajes.detalles[0].contains(QStringLiteral("LibNombre"), Qt::CaseInsensitive)) << mensajes.detalles[0].toStdString();
    EXPECT_EQ(mensajes.mostrados.value(1), QStringLiteral("error: texto 1932"));
}

INSTANCIAR_EN_MOTORES(GestionDeLibros);

} // namespace
