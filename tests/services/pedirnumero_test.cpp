#include "comun/dialogos.h"
#include "dialogs/serviciomensajesqt.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The rate prompt reads a typed number by the amounts' rule: "41.5" under es_UY is 41,5,
// never 415; a text that is no number is refused with the catalogue's text and asked again;
// a cancelled prompt leaves the value as it was.
TEST(MensajesQt, LaTasaSeLeeComoUnImporteYCadaBotonDiceLoSuyo)
{
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Uruguay));
    ServicioMensajesQt mensajes;
    mensajes.FijarTextoNumeroInvalido(QStringLiteral("no es un número"));
    QStringList avisos;
    auto pedir = [&](QStringList escritos, double &valor) {
        bool ok = false;
        ConDialogo<QInputDialog>(
            [&] {
                ConDialogo<QMessageBox>([&] { ok = mensajes.PedirNumero(QStringLiteral("Tasa"), QStringLiteral("Unificar"), valor); },
                                        [&](QMessageBox &m) { avisos << m.text(); });
            },
            [&](QInputDialog &d) {
                if (escritos.isEmpty())
                    return;
                d.setTextValue(escritos.takeFirst());
                d.accept();
            });
        return ok;
    };
    double valor = 40;
    ASSERT_TRUE(pedir({QStringLiteral("1.2.3,4"), QStringLiteral("41.5")}, valor));
    EXPECT_EQ(avisos, QStringList{QStringLiteral("no es un número")});
    EXPECT_DOUBLE_EQ(valor, 41.5);
    ASSERT_TRUE(pedir({QStringLiteral("1.500")}, valor));
    EXPECT_DOUBLE_EQ(valor, 1500);
    valor = 7;
    EXPECT_FALSE(pedir({}, valor));
    EXPECT_DOUBLE_EQ(valor, 7);

    // Each set of buttons answers what the button pressed says: Enter takes the default (Yes,
    // or OK), Escape the way out (No without a Cancel button, else Cancel).
    using B = ServicioMensajes::Botones;
    using R = ServicioMensajes::Respuesta;
    auto preguntar = [&](B botones, Qt::Key tecla) {
        R r = R::Cancelar;
        ConDialogo<QMessageBox>([&] { r = mensajes.Preguntar(QStringLiteral("¿Sigue?"), botones); },
                                [&](QMessageBox &m) { QTest::keyClick(&m, tecla); });
        return r;
    };
    EXPECT_EQ(preguntar(B::AceptarCancelar, Qt::Key_Return), R::Si);
    EXPECT_EQ(preguntar(B::AceptarCancelar, Qt::Key_Escape), R::Cancelar);
    EXPECT_EQ(preguntar(B::SiNo, Qt::Key_Return), R::Si);
    EXPECT_EQ(preguntar(B::SiNo, Qt::Key_Escape), R::No);
    EXPECT_EQ(preguntar(B::SiNoCancelar, Qt::Key_Escape), R::Cancelar);
    EXPECT_EQ(preguntar(B::SiNoCancelar, Qt::Key_N), R::No); // the button's mnemonic
}

} // namespace
