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

// A refusal carries the catalogue text that says why, and is no failure of the database;
// one the database fails carries the text of a change not saved, and its detail.
TEST_P(GestionDeLibros, AgregarRenombrarYEliminarSoloLosPropiosSinUso)
{
    Libros libros(m_base.conexion());
    auto numero = [](const std::optional<Fallo> &f) { return f ? f->numeroTexto * (f->deLaBase ? -1 : 1) : 0; };
    auto numeroAlAgregar = [&](const QString &nombre) {
        const auto r = libros.Agregar(nombre);
        return r ? 0 : numero(r.fallo());
    };
    const qsizetype antes = libros.Listar()->size();
    const auto codigo = libros.Agregar(QStringLiteral("  Importaciones "));
    ASSERT_TRUE(codigo);
    EXPECT_GT(*codigo, Demo::kLibroPrimeraApertura);
    EXPECT_EQ(libros.Listar()->size(), antes + 1);
    EXPECT_EQ(numeroAlAgregar(QStringLiteral("importaciones")), Libros::kNombreRepetido);
    EXPECT_EQ(numeroAlAgregar(QStringLiteral("   ")), Libros::kNombreVacio);
    EXPECT_EQ(numero(libros.Renombrar(*codigo, QStringLiteral("IMPORTACIONES"))), 0); // its own name, in capitals
    EXPECT_EQ(numero(libros.Renombrar(*codigo, QStringLiteral("Diario"))), Libros::kNombreRepetido);
    EXPECT_EQ(numero(libros.Renombrar(*codigo, QStringLiteral("Importación"))), 0);
    EXPECT_EQ(numero(libros.Renombrar(Demo::kLibroCierre, QStringLiteral("Otro"))), Libros::kDelSistema);
    EXPECT_EQ(numero(libros.Eliminar(Demo::kLibroApertura)), Libros::kDelSistema);
    EXPECT_EQ(numero(libros.PuedeEliminar(Demo::kLibroDiario)), Libros::kEnUso);
    EXPECT_EQ(numero(libros.Eliminar(Demo::kLibroDiario)), Libros::kEnUso);
    EXPECT_EQ(numero(libros.Eliminar(*codigo)), 0);
    EXPECT_EQ(numero(libros.Eliminar(*codigo)), Libros::kNoExiste);
    EXPECT_EQ(numero(libros.Renombrar(*codigo, QStringLiteral("Otro"))), Libros::kNoExiste);
    EXPECT_EQ(libros.Listar()->size(), antes);

    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibros Rename Column LibNombre To LibOtro"));
    EXPECT_EQ(numero(libros.PuedeEliminar(Demo::kLibroDiario)), -Libros::kNoSeGuardo);
    EXPECT_EQ(numeroAlAgregar(QStringLiteral("Compras")), -Libros::kNoSeGuardo);
    const auto leidos = libros.Listar();
    ASSERT_FALSE(leidos);
    EXPECT_EQ(leidos.fallo().numeroTexto, 0); // told by the reader with its own text
    EXPECT_TRUE(leidos.fallo().detalle.contains(QStringLiteral("LibNombre"), Qt::CaseInsensitive));
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
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: texto %1").arg(Libros::kNombreRepetido)});
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
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: texto %1").arg(Libros::kNoExiste)});

    // A book with entries is refused before the question.
    for (int i = 0; i < lista->topLevelItemCount(); ++i)
        if (lista->topLevelItem(i)->data(0, Qt::UserRole).toInt() == Demo::kLibroDiario)
            lista->setCurrentItem(lista->topLevelItem(i));
    mensajes.mostrados.clear();
    EXPECT_EQ(borrar(std::nullopt), 1);
    EXPECT_EQ(mensajes.mostrados, QStringList{QStringLiteral("advertencia: texto %1").arg(Libros::kEnUso)});

    // The database fails the write: the error says why, and the list is read again.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibros Rename Column LibNombre To LibOtro"));
    mensajes.mostrados.clear();
    EXPECT_EQ(tecla(Qt::Key_Insert, QStringLiteral("Compras")), 2);
    EXPECT_EQ(ofrecido, QStringLiteral("Compras"));
    ASSERT_GE(mensajes.mostrados.size(), 1);
    EXPECT_EQ(mensajes.mostrados[0], QStringLiteral("error: texto %1").arg(Libros::kNoSeGuardo));
    EXPECT_TRUE(mensajes.detalles[0].contains(QStringLiteral("LibNombre"), Qt::CaseInsensitive)) << mensajes.detalles[0].toStdString();
    EXPECT_EQ(mensajes.mostrados.value(1), QStringLiteral("error: texto 1932"));
}

INSTANCIAR_EN_MOTORES(GestionDeLibros);

} // namespace
