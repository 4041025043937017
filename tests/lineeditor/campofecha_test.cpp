#include "comun/basesprueba.h"
#include "lineeditor/campofecha.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The field beside a second edit box in a shown, active window, so Tab and mouse clicks
// move the focus as they do in the document.
class CampoFechaVentana : public ::testing::Test
{
protected:
    void SetUp() override
    {
        auto *capa = new QHBoxLayout(&m_ventana);
        m_campo = new CampoFecha(m_reloj, &m_ventana);
        m_campo->setObjectName(QStringLiteral("odDate"));
        m_otro = new QLineEdit(&m_ventana);
        capa->addWidget(m_campo);
        capa->addWidget(m_otro);
        m_ventana.show();
        QApplication::setActiveWindow(&m_ventana);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_ventana));
    }

    // Gives the field the focus and replaces its text by typing, as the user does.
    void escribir(const QString &formato, const QDate &mostrada, const QString &texto)
    {
        m_campo->setDisplayFormat(formato);
        m_campo->setDate(mostrada);
        m_campo->setFocus(Qt::TabFocusReason);
        m_campo->selectAll();
        QTest::keyClick(m_campo, Qt::Key_Delete);
        QTest::keyClicks(m_campo, texto);
    }

    QWidget *foco() const { return QApplication::focusWidget(); }

    std::shared_ptr<Reloj> m_reloj = BaseDePrueba::RelojFijo();
    QWidget m_ventana;
    CampoFecha *m_campo = nullptr;
    QLineEdit *m_otro = nullptr;
};

const QDate kNoviembre(2025, 11, 15);
const QDate kFin2025(2025, 12, 31);

// Accepted, a typed date is shown formatted and signalled once when it changes; refused (no
// date expected), the text typed and the date shown stay and the refusal is signalled.
TEST_F(CampoFechaVentana, AceptarLeeLaFechaEscritaORechazaLaImposible)
{
    struct Caso
    {
        const char *formato;
        QDate mostrada;
        const char *texto;
        QDate esperada;
    };
    const Caso casos[] = {
        // A day the month shown lacks is not cut to that month's last day.
        {"dd/MM/yyyy", kNoviembre, "31/12/2025", kFin2025}, {"dd/MM/yyyy", kNoviembre, "31-12-2025", kFin2025},
        {"dd/MM/yyyy", kNoviembre, "31.12.2025", kFin2025}, {"dd/MM/yyyy", kNoviembre, "31122025", kFin2025},
        {"dd/MM/yyyy", kNoviembre, "311225", kFin2025},     {"dd/MM/yyyy", kNoviembre, "3112", kFin2025},
        {"dd/MM/yyyy", kNoviembre, "5/3/99", QDate(2099, 3, 5)}, {"dd/MM/yyyy", kNoviembre, "  7 / 8 / 2026 ", QDate(2026, 8, 7)},
        // Without a year the year shown is used: 29 February exists in 2024 only.
        {"dd/MM/yyyy", QDate(2024, 3, 1), "29/2", QDate(2024, 2, 29)}, {"dd/MM/yyyy", kNoviembre, "29/02", {}},
        // The date shown, as shown or typed another way.
        {"dd/MM/yyyy", kNoviembre, "15/11/2025", kNoviembre}, {"dd/MM/yyyy", kNoviembre, "151125", kNoviembre},
        {"MM/dd/yyyy", kNoviembre, "12-31-25", kFin2025},   {"MM/dd/yyyy", kNoviembre, "12312025", kFin2025},
        {"MM/dd/yyyy", kNoviembre, "2/1", QDate(2025, 2, 1)}, {"MM/dd/yyyy", kNoviembre, "31/12/2025", {}},
        {"yyyy-MM-dd", kNoviembre, "20251231", kFin2025},   {"dd/MM/yy", kNoviembre, "31/12/25", kFin2025},
        {"dd/MM/yyyy", kNoviembre, "31/11/2025", {}},       {"dd/MM/yyyy", kNoviembre, "0/1/2026", {}},
        {"dd/MM/yyyy", kNoviembre, "1/13/2026", {}},        {"dd/MM/yyyy", kNoviembre, "1/1/202", {}},
        {"dd/MM/yyyy", kNoviembre, "123/1/2026", {}},       {"dd/MM/yyyy", kNoviembre, "3112202", {}},
        {"dd/MM/yyyy", kNoviembre, "1/2/3/2026", {}},       {"dd/MM/yyyy", kNoviembre, "31", {}},
        {"dd/MM/yyyy", kNoviembre, "abc", {}},              {"dd/MM/yyyy", kNoviembre, "31/12/20x5", {}},
        {"dd/MM/yyyy", kNoviembre, "", {}},
    };
    for (const Caso &c : casos) {
        SCOPED_TRACE(std::string(c.formato) + " \"" + c.texto + "\"");
        const QString texto = QString::fromUtf8(c.texto);
        escribir(QString::fromLatin1(c.formato), c.mostrada, texto);
        QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        const bool valida = c.esperada.isValid();
        EXPECT_EQ(m_campo->Aceptar(), valida);
        EXPECT_EQ(m_campo->date(), valida ? c.esperada : c.mostrada);
        EXPECT_EQ(m_campo->text(), valida ? c.esperada.toString(QString::fromLatin1(c.formato)) : texto);
        EXPECT_EQ(cambios.count(), valida && c.esperada != c.mostrada ? 1 : 0);
        EXPECT_EQ(rechazos.count(), valida ? 0 : 1);
    }
}

TEST_F(CampoFechaVentana, TabSaleSoloConUnaFechaValida)
{
    for (Qt::Key tecla : {Qt::Key_Tab, Qt::Key_Backtab}) {
        escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("31/11/2025"));
        QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        QTest::keyClick(m_campo, tecla);
        EXPECT_EQ(foco(), m_campo) << tecla;
        EXPECT_EQ(rechazos.count(), 1);

        m_campo->selectAll();
        QTest::keyClicks(m_campo, QStringLiteral("31 12 2025"));
        QTest::keyClick(m_campo, tecla);
        EXPECT_EQ(foco(), m_otro) << tecla;
        EXPECT_EQ(m_campo->date(), kFin2025);
        EXPECT_EQ(cambios.count(), 1);
        EXPECT_EQ(rechazos.count(), 1);
    }
}

// Leaving the field reads it; a popup or another window takes the focus only for a while
// (the owner's own message box among them), so a refusal is not reported twice.
TEST_F(CampoFechaVentana, SalirLeeElTextoSalvoHaciaOtraVentanaOMenu)
{
    struct Caso
    {
        Qt::FocusReason razon;
        const char *texto;
        int rechazos;
        QDate fecha;
    };
    const Caso casos[] = {
        {Qt::ActiveWindowFocusReason, "31/11/2025", 0, kNoviembre}, {Qt::PopupFocusReason, "31/11/2025", 0, kNoviembre},
        {Qt::OtherFocusReason, "31/11/2025", 1, kNoviembre},        {Qt::MouseFocusReason, "31/11/2025", 1, kNoviembre},
        {Qt::MouseFocusReason, "31122025", 0, kFin2025},            {Qt::PopupFocusReason, "31122025", 0, kNoviembre},
    };
    for (const Caso &c : casos) {
        SCOPED_TRACE(std::to_string(c.razon) + " " + c.texto);
        escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QString::fromLatin1(c.texto));
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        QFocusEvent salida(QEvent::FocusOut, c.razon);
        QApplication::sendEvent(m_campo, &salida);
        EXPECT_EQ(rechazos.count(), c.rechazos);
        EXPECT_EQ(m_campo->date(), c.fecha);
    }
}

// Enter reads the text; Up and Down move the day.
TEST_F(CampoFechaVentana, EnterLeeYArribaYAbajoCambianElDia)
{
    struct Caso
    {
        const char *texto;
        Qt::Key tecla;
        QDate esperada;
    };
    const Caso casos[] = {
        {"2/1/26", Qt::Key_Return, QDate(2026, 1, 2)},
        {"31/12/2025", Qt::Key_Up, QDate(2026, 1, 1)},
        {"1/3/2024", Qt::Key_Down, QDate(2024, 2, 29)},
        {"15/11/2025", Qt::Key_Down, QDate(2025, 11, 14)},
        // A text that is no date moves from the date shown.
        {"31/11/2025", Qt::Key_Up, QDate(2025, 11, 16)},
    };
    for (const Caso &c : casos) {
        escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QString::fromUtf8(c.texto));
        QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
        QTest::keyClick(m_campo, c.tecla);
        EXPECT_EQ(m_campo->date(), c.esperada) << c.texto;
        EXPECT_EQ(m_campo->text(), c.esperada.toString(QStringLiteral("dd/MM/yyyy"))) << c.texto;
        EXPECT_EQ(cambios.count(), 1) << c.texto;
        EXPECT_EQ(foco(), m_campo);
    }
}

// A field that shows no date reads a date without a year in the clock's year, and Up moves
// from the clock's day.
TEST_F(CampoFechaVentana, SinFechaMostradaLaReferenciaEsElDiaDelRelojYElFormatoElDeSiempre)
{
    m_campo->setPermitirVacia(true);
    m_campo->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    for (const auto &[texto, esperada] : {std::pair{"1/1", QDate(2026, 1, 1)}, {"29/2", QDate()}}) {
        m_campo->Vaciar();
        QTest::keyClicks(m_campo, QString::fromLatin1(texto));
        EXPECT_EQ(m_campo->Aceptar(), esperada.isValid()) << texto;
        EXPECT_EQ(m_campo->date(), esperada) << texto;
    }
    m_campo->Vaciar();
    QTest::keyClick(m_campo, Qt::Key_Up);
    EXPECT_EQ(m_campo->date(), BaseDePrueba::Hoy().addDays(1));

    // A new field shows no date, in the default format; a null date set is ignored.
    CampoFecha campo(m_reloj);
    QSignalSpy cambios(&campo, &CampoFecha::dateChanged);
    EXPECT_TRUE(campo.date().isNull());
    campo.setDate(QDate(2026, 3, 4));
    EXPECT_EQ(campo.text(), QStringLiteral("04/03/2026"));
    campo.setDisplayFormat(QStringLiteral("MM-dd-yy"));
    EXPECT_EQ(campo.text(), QStringLiteral("03-04-26"));
    campo.setDate(QDate(2026, 3, 4));
    campo.setDate(QDate());
    EXPECT_EQ(campo.date(), QDate(2026, 3, 4));
    EXPECT_EQ(cambios.count(), 1);
}

} // namespace
