#include "lineeditor/campocalculadora.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

QLocale LocaleDe(const char *nombre)
{
    return QLatin1String(nombre) == QLatin1String("C") ? QLocale::c() : QLocale(QString::fromLatin1(nombre));
}

// Each number of a calculation is read by the one rule of LeerNumero, in the locale given;
// cases without a locale answer the same in every locale.
TEST(CampoCalculadora, EvaluarLeeCadaNumeroPorLaMismaReglaYFijarValorUsaLaMascara)
{
    const struct
    {
        const char *locale;
        const char *texto;
        bool valido;
        double valor;
    } casos[] = {
        {"", "1250*1,22", true, 1525},      {"", "100+25,5-3", true, 122.5},  {"", "-40", true, -40},
        {"", "10/4", true, 2.5},            {"", "2+3*4", true, 14},          {"", "5*-3", true, -15},
        {"", "10/0", false, 0},             {"", "abc", false, 0},            {"", "", false, 0},
        {"", "5*", false, 0},               {"", "*5", false, 0},             {"", "1,23,4+1", false, 0},
        {"", "2*1.2.3", false, 0},          {"es_UY", "1.250*2", true, 2500}, {"es_UY", "1,250*2", true, 2.5},
        {"en_US", "1,250*2", true, 2500},   {"en_US", "1.250*2", true, 2.5},  {"C", "1,250*2", true, 2500},
    };
    for (const auto &c : casos)
        for (const char *l : {"es_UY", "es_ES", "en_US", "C"}) {
            if (*c.locale && qstrcmp(c.locale, l) != 0)
                continue;
            SCOPED_TRACE(std::string(l) + " \"" + c.texto + "\"");
            double v = 0;
            EXPECT_EQ(CampoCalculadora::Evaluar(QString::fromUtf8(c.texto), v, LocaleDe(l)), c.valido);
            if (c.valido)
                EXPECT_DOUBLE_EQ(v, c.valor);
        }

    // A result too large for a number is refused, not taken as infinite.
    const QString grande(200, u'9');
    double infinito = 0;
    EXPECT_FALSE(CampoCalculadora::Evaluar(grande + u'*' + grande, infinito, QLocale::c()));

    // A value set shows with the mask; an empty field is incomplete, not refused.
    CampoCalculadora campo(QStringLiteral("ocImporte"));
    campo.FijarMascara(QStringLiteral("#,##0.00"));
    campo.FijarValor(1234.5);
    EXPECT_EQ(campo.text(), QStringLiteral("1.234,50"));
    campo.Limpiar();
    EXPECT_FALSE(campo.EsNumeroValido());
    EXPECT_FALSE(campo.EsTextoInvalido());
}

// A field typed into with the keyboard, in a window of its own with a second field to move to.
class CampoEscrito : public ::testing::TestWithParam<const char *>
{
protected:
    CampoEscrito()
    {
        auto *capa = new QVBoxLayout(&m_ventana);
        m_campo = new CampoCalculadora(QStringLiteral("ocImporte"), &m_ventana);
        m_otro = new CampoCalculadora(QStringLiteral("ocTCambio"), &m_ventana);
        capa->addWidget(m_campo);
        capa->addWidget(m_otro);
        m_campo->setLocale(LocaleDe(GetParam()));
        m_campo->FijarMascara(QStringLiteral("#,##0.00"));
        m_ventana.show();
        QApplication::setActiveWindow(&m_ventana);
        m_campo->setFocus();
    }

    // Types the text over whatever the field holds.
    void escribir(const QString &texto)
    {
        m_campo->setFocus();
        m_campo->selectAll();
        QTest::keyClicks(m_campo, texto);
    }

    QWidget m_ventana;
    CampoCalculadora *m_campo = nullptr;
    CampoCalculadora *m_otro = nullptr;
};

// What is typed is read in the field's locale.
TEST_P(CampoEscrito, LoEscritoSeLeeEnElLocaleDelCampo)
{
    const bool comaDecimal = LocaleDe(GetParam()).decimalPoint() == QLatin1String(",");
    const struct
    {
        QString texto;
        bool valido;
        double valor;
    } casos[] = {
        {QStringLiteral("1.500"), true, comaDecimal ? 1500.0 : 1.5},
        {QStringLiteral("1,500"), true, comaDecimal ? 1.5 : 1500.0},
        {QStringLiteral("1.2.3,4"), false, 0},
    };
    for (const auto &c : casos) {
        SCOPED_TRACE(c.texto.toStdString());
        escribir(c.texto);
        EXPECT_EQ(m_campo->EsNumeroValido(), c.valido);
        EXPECT_EQ(m_campo->EsTextoInvalido(), !c.valido);
        EXPECT_DOUBLE_EQ(m_campo->Valor(), c.valor);
    }
}

TEST_P(CampoEscrito, LaTeclaDecimalDelTecladoNumericoEscribeLaDelLocale)
{
    const QString marca = LocaleDe(GetParam()).decimalPoint();
    for (Qt::Key tecla : {Qt::Key_Period, Qt::Key_Comma}) {
        escribir(QStringLiteral("12"));
        QTest::keyClick(m_campo, tecla, Qt::KeypadModifier);
        QTest::keyClicks(m_campo, QStringLiteral("5"));
        EXPECT_EQ(m_campo->text(), QStringLiteral("12") + marca + QStringLiteral("5"));
        EXPECT_DOUBLE_EQ(m_campo->Valor(), 12.5);
    }
    // The main keyboard's keys type what they say.
    escribir(QStringLiteral("12"));
    QTest::keyClick(m_campo, Qt::Key_Period);
    EXPECT_EQ(m_campo->text(), QStringLiteral("12."));
}

TEST_P(CampoEscrito, UnTextoRechazadoSeAvisaAlSalirYQuedaComoSeEscribio)
{
    QSignalSpy avisos(m_campo, &CampoCalculadora::TextoInvalido);
    escribir(QStringLiteral("1.2.3,4"));
    QTest::keyClick(m_campo, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), m_otro);
    EXPECT_EQ(avisos.count(), 1);
    EXPECT_EQ(m_campo->text(), QStringLiteral("1.2.3,4")); // not replaced by some number

    escribir(QStringLiteral("1,23,4"));
    QTest::keyClick(m_campo, Qt::Key_Return);
    EXPECT_EQ(avisos.count(), 2);

    // A message box or a popup taking the focus is no leaving.
    QFocusEvent ventana(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(m_campo, &ventana);
    QFocusEvent emergente(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(m_campo, &emergente);
    EXPECT_EQ(avisos.count(), 2);

    // An empty field is no refusal; a good number is shown with the mask.
    m_campo->setFocus();
    m_campo->clear();
    QTest::keyClick(m_campo, Qt::Key_Tab);
    escribir(QStringLiteral("1500.5"));
    QTest::keyClick(m_campo, Qt::Key_Tab);
    EXPECT_EQ(avisos.count(), 2);
    const QLocale l = LocaleDe(GetParam());
    EXPECT_EQ(m_campo->text(), QStringLiteral("1") + l.groupSeparator() + QStringLiteral("500") + l.decimalPoint() + QStringLiteral("50"));
    EXPECT_DOUBLE_EQ(m_campo->Valor(), 1500.5);
    // Back in the field, the plain number to edit, which reads back the same.
    m_campo->setFocus();
    EXPECT_EQ(m_campo->text(), QStringLiteral("1500") + l.decimalPoint() + QStringLiteral("5"));
    EXPECT_DOUBLE_EQ(m_campo->Valor(), 1500.5);
}

INSTANTIATE_TEST_SUITE_P(Locales, CampoEscrito, ::testing::Values("es_UY", "es_ES", "en_US", "C"),
                         [](const ::testing::TestParamInfo<const char *> &i) { return std::string(i.param); });

} // namespace
