#include "services/serviciomensajesqt.h"

#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

// Answers the modal dialogs as they open: each step acts on the active modal widget.
void Guion(QList<std::function<void(QWidget *)>> pasos)
{
    auto *t = new QTimer;
    t->setInterval(20);
    auto resto = std::make_shared<QList<std::function<void(QWidget *)>>>(std::move(pasos));
    QObject::connect(t, &QTimer::timeout, t, [t, resto] {
        QWidget *activo = QApplication::activeModalWidget();
        if (!activo || resto->isEmpty())
            return;
        const auto paso = resto->takeFirst();
        paso(activo);
        if (resto->isEmpty())
            t->deleteLater();
    });
    t->start();
}

void Escribir(QWidget *dialogo, const QString &texto)
{
    auto *campo = dialogo->findChild<QLineEdit *>();
    ASSERT_NE(campo, nullptr);
    campo->selectAll();
    QTest::keyClicks(campo, texto);
    QTest::keyClick(campo, Qt::Key_Return);
}

// The rate prompt reads a typed number by the amounts' rule: "41.5" under es_UY is 41,5,
// never 415; a text that is no number is refused with the catalogue's text and asked again.
TEST(PedirNumero, LeeLaTasaConCualquierMarcaDecimalYRechazaLoQueNoEsNumero)
{
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Uruguay));
    ServicioMensajesQt mensajes;
    mensajes.FijarTextoNumeroInvalido(QStringLiteral("no es un número"));
    QString aviso;
    Guion({[](QWidget *d) { Escribir(d, QStringLiteral("1.2.3,4")); },
           [&aviso](QWidget *caja) {
               if (auto *m = qobject_cast<QMessageBox *>(caja)) {
                   aviso = m->text();
                   m->accept();
               }
           },
           [](QWidget *d) { Escribir(d, QStringLiteral("41.5")); }});
    double valor = 40;
    ASSERT_TRUE(mensajes.PedirNumero(QStringLiteral("Tasa"), QStringLiteral("Unificar"), valor));
    EXPECT_EQ(aviso, QStringLiteral("no es un número"));
    EXPECT_DOUBLE_EQ(valor, 41.5);

    Guion({[](QWidget *d) { Escribir(d, QStringLiteral("1.500")); }});
    ASSERT_TRUE(mensajes.PedirNumero(QStringLiteral("Tasa"), QStringLiteral("Unificar"), valor));
    EXPECT_DOUBLE_EQ(valor, 1500);

    Guion({[](QWidget *d) { qobject_cast<QDialog *>(d)->reject(); }});
    valor = 7;
    EXPECT_FALSE(mensajes.PedirNumero(QStringLiteral("Tasa"), QStringLiteral("Unificar"), valor));
    EXPECT_DOUBLE_EQ(valor, 7);
}

} // namespace
