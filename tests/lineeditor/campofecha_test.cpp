#include "comun/basesprueba.h"
#include "lineeditor/campofecha.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
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

TEST_F(CampoFechaVentana, LeeLaFechaEscritaEntera)
{
    struct Caso
    {
        const char *formato;
        QDate mostrada;
        const char *texto;
        QDate esperada;
    };
    const QDate fin2025(2025, 12, 31);
    const Caso casos[] = {
        // A day the month shown lacks is not cut to that month's last day.
        {"dd/MM/yyyy", kNoviembre, "31/12/2025", fin2025},
        {"dd/MM/yyyy", kNoviembre, "31 12 2025", fin2025},
        {"dd/MM/yyyy", kNoviembre, "31-12-2025", fin2025},
        {"dd/MM/yyyy", kNoviembre, "31.12.2025", fin2025},
        {"dd/MM/yyyy", kNoviembre, "31122025", fin2025},
        {"dd/MM/yyyy", kNoviembre, "311225", fin2025},
        {"dd/MM/yyyy", kNoviembre, "1/2/26", QDate(2026, 2, 1)},
        {"dd/MM/yyyy", kNoviembre, "5/3/99", QDate(2099, 3, 5)},
        {"dd/MM/yyyy", kNoviembre, "  7 / 8 / 2026 ", QDate(2026, 8, 7)},
        {"dd/MM/yyyy", kNoviembre, "31/12", fin2025},
        {"dd/MM/yyyy", kNoviembre, "3112", fin2025},
        // Without a year the year shown is used: 29 February exists in 2024 only.
        {"dd/MM/yyyy", QDate(2024, 3, 1), "29/2", QDate(2024, 2, 29)},
        {"MM/dd/yyyy", kNoviembre, "12/31/2025", fin2025},
        {"MM/dd/yyyy", kNoviembre, "12-31-25", fin2025},
        {"MM/dd/yyyy", kNoviembre, "12312025", fin2025},
        {"MM/dd/yyyy", kNoviembre, "123125", fin2025},
        {"MM/dd/yyyy", kNoviembre, "2/1", QDate(2025, 2, 1)},
        {"yyyy-MM-dd", kNoviembre, "2025-12-31", fin2025},
        {"yyyy-MM-dd", kNoviembre, "20251231", fin2025},
        {"dd/MM/yy", kNoviembre, "31/12/25", fin2025},
    };
    for (const Caso &c : casos) {
        const QString texto = QString::fromUtf8(c.texto);
        escribir(QString::fromLatin1(c.formato), c.mostrada, texto);
        QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        EXPECT_TRUE(m_campo->Aceptar()) << c.formato << " " << c.texto;
        EXPECT_EQ(m_campo->date(), c.esperada) << c.formato << " " << c.texto;
        EXPECT_EQ(m_campo->text(), c.esperada.toString(QString::fromLatin1(c.formato))) << c.texto;
        EXPECT_EQ(cambios.count(), c.esperada != c.mostrada ? 1 : 0) << c.texto;
        EXPECT_EQ(rechazos.count(), 0) << c.texto;
    }
}

TEST_F(CampoFechaVentana, RechazaLaFechaImposibleYConservaLaAnterior)
{
    struct Caso
    {
        const char *formato;
        const char *texto;
    };
    const Caso casos[] = {
        {"dd/MM/yyyy", "31/11/2025"}, {"dd/MM/yyyy", "30/02/2026"}, {"dd/MM/yyyy", "29/02/2025"},
        {"dd/MM/yyyy", "0/1/2026"},   {"dd/MM/yyyy", "1/13/2026"},  {"dd/MM/yyyy", "1/0/2026"},
        {"dd/MM/yyyy", "1/1/202"},    {"dd/MM/yyyy", "123/1/2026"}, {"dd/MM/yyyy", "3112202"},
        {"dd/MM/yyyy", "1/2/3/2026"}, {"dd/MM/yyyy", "31"},         {"dd/MM/yyyy", "abc"},
        {"dd/MM/yyyy", "31/12/20x5"}, {"dd/MM/yyyy", ""},           {"MM/dd/yyyy", "31/12/2025"},
        {"MM/dd/yyyy", "2/30/2026"},  {"MM/dd/yyyy", "13/1/2026"},
    };
    for (const Caso &c : casos) {
        const QString texto = QString::fromUtf8(c.texto);
        escribir(QString::fromLatin1(c.formato), kNoviembre, texto);
        QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        EXPECT_FALSE(m_campo->Aceptar()) << c.formato << " " << c.texto;
        EXPECT_EQ(m_campo->date(), kNoviembre) << c.texto;
        EXPECT_EQ(m_campo->text(), texto);
        EXPECT_EQ(cambios.count(), 0) << c.texto;
        EXPECT_EQ(rechazos.count(), 1) << c.texto;
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
        EXPECT_EQ(m_campo->text(), QStringLiteral("31/11/2025"));
        EXPECT_EQ(m_campo->date(), kNoviembre);
        EXPECT_EQ(rechazos.count(), 1);

        m_campo->selectAll();
        QTest::keyClicks(m_campo, QStringLiteral("31 12 2025"));
        QTest::keyClick(m_campo, tecla);
        EXPECT_EQ(foco(), m_otro) << tecla;
        EXPECT_EQ(m_campo->date(), QDate(2025, 12, 31));
        EXPECT_EQ(m_campo->text(), QStringLiteral("31/12/2025"));
        ASSERT_EQ(cambios.count(), 1);
        EXPECT_EQ(cambios.at(0).at(0).toDate(), QDate(2025, 12, 31));
        EXPECT_EQ(rechazos.count(), 1);
    }
}

TEST_F(CampoFechaVentana, ClicFueraAceptaOInformaElRechazo)
{
    escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("31122025"));
    QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
    QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
    QTest::mouseClick(m_otro, Qt::LeftButton);
    ASSERT_EQ(foco(), m_otro);
    EXPECT_EQ(m_campo->date(), QDate(2025, 12, 31));
    EXPECT_EQ(m_campo->text(), QStringLiteral("31/12/2025"));
    EXPECT_EQ(cambios.count(), 1);

    escribir(QStringLiteral("dd/MM/yyyy"), QDate(2025, 12, 31), QStringLiteral("30/02/2026"));
    QTest::mouseClick(m_otro, Qt::LeftButton);
    EXPECT_EQ(m_campo->date(), QDate(2025, 12, 31));
    EXPECT_EQ(m_campo->text(), QStringLiteral("30/02/2026"));
    EXPECT_EQ(cambios.count(), 1);
    EXPECT_EQ(rechazos.count(), 1);
}

// A popup or another window takes the focus only for a while (the owner's own message box
// among them): the text is not read then, so a refusal is not reported twice.
TEST_F(CampoFechaVentana, OtraVentanaOMenuNoLeenElTexto)
{
    struct Caso
    {
        Qt::FocusReason razon;
        int rechazos;
    };
    const Caso casos[] = {
        {Qt::ActiveWindowFocusReason, 0}, {Qt::PopupFocusReason, 0},
        {Qt::OtherFocusReason, 1},        {Qt::MouseFocusReason, 1},
    };
    for (const Caso &c : casos) {
        escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("31/11/2025"));
        QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
        QFocusEvent salida(QEvent::FocusOut, c.razon);
        QApplication::sendEvent(m_campo, &salida);
        EXPECT_EQ(rechazos.count(), c.rechazos) << c.razon;
        EXPECT_EQ(m_campo->text(), QStringLiteral("31/11/2025"));
        EXPECT_EQ(m_campo->date(), kNoviembre);
    }
}

TEST_F(CampoFechaVentana, SinCambioNoAvisa)
{
    escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("15/11/2025"));
    QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
    EXPECT_TRUE(m_campo->Aceptar());
    QTest::keyClick(m_campo, Qt::Key_Tab);
    EXPECT_EQ(foco(), m_otro);
    m_campo->setFocus(Qt::MouseFocusReason);
    QTest::mouseClick(m_otro, Qt::LeftButton);
    m_campo->setDate(kNoviembre);
    // The same date typed another way is accepted and shown formatted, without a change.
    escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("151125"));
    EXPECT_TRUE(m_campo->Aceptar());
    EXPECT_EQ(m_campo->text(), QStringLiteral("15/11/2025"));
    EXPECT_EQ(cambios.count(), 0);
}

// Stands for the document: on Enter it asks the field to accept, reads the date and
// moves the focus, consuming the key before the field sees it.
class DuenoEnter : public QObject
{
public:
    DuenoEnter(CampoFecha *campo, QWidget *siguiente)
        : m_campo(campo), m_siguiente(siguiente)
    {
    }
    bool eventFilter(QObject *objeto, QEvent *evento) override
    {
        if (objeto != m_campo || evento->type() != QEvent::KeyPress
            || static_cast<QKeyEvent *>(evento)->key() != Qt::Key_Return)
            return false;
        if (m_campo->Aceptar()) {
            leida = m_campo->date();
            m_siguiente->setFocus();
        }
        return true;
    }
    QDate leida;

private:
    CampoFecha *m_campo;
    QWidget *m_siguiente;
};

TEST_F(CampoFechaVentana, EnterAceptaAntesDeQueElDuenoMuevaElFoco)
{
    DuenoEnter dueno(m_campo, m_otro);
    m_campo->installEventFilter(&dueno);
    escribir(QStringLiteral("dd/MM/yyyy"), kNoviembre, QStringLiteral("30/02/2026"));
    QSignalSpy cambios(m_campo, &CampoFecha::dateChanged);
    QSignalSpy rechazos(m_campo, &CampoFecha::fechaInvalida);
    QTest::keyClick(m_campo, Qt::Key_Return);
    EXPECT_EQ(foco(), m_campo);
    EXPECT_EQ(rechazos.count(), 1);

    m_campo->selectAll();
    QTest::keyClicks(m_campo, QStringLiteral("31 12 2025"));
    QTest::keyClick(m_campo, Qt::Key_Return);
    EXPECT_EQ(dueno.leida, QDate(2025, 12, 31));
    EXPECT_EQ(foco(), m_otro);
    EXPECT_EQ(cambios.count(), 1);
    EXPECT_EQ(rechazos.count(), 1);
    m_campo->removeEventFilter(&dueno);

    // With no owner watching, the field accepts on Enter by itself.
    escribir(QStringLiteral("dd/MM/yyyy"), QDate(2025, 12, 31), QStringLiteral("2/1/26"));
    QTest::keyClick(m_campo, Qt::Key_Return);
    EXPECT_EQ(m_campo->date(), QDate(2026, 1, 2));
    EXPECT_EQ(cambios.count(), 2);
}

TEST_F(CampoFechaVentana, ArribaYAbajoCambianElDia)
{
    struct Caso
    {
        const char *texto;
        Qt::Key tecla;
        QDate esperada;
    };
    const Caso casos[] = {
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

// A field that shows no date reads a date without a year in the clock's year, and Up and
// Down move from the clock's day.
TEST_F(CampoFechaVentana, SinFechaMostradaLaReferenciaEsElDiaDelReloj)
{
    struct Caso
    {
        QDate hoy;
        const char *texto; // typed and accepted; none: Up or Down pressed on the empty field
        Qt::Key tecla;
        QDate esperada;    // null: refused
    };
    const Caso casos[] = {
        {QDate(2028, 2, 29), "29/2", Qt::Key_Enter, QDate(2028, 2, 29)},
        {QDate(2025, 2, 28), "29/2", Qt::Key_Enter, QDate()},
        {QDate(2026, 12, 31), "1/1", Qt::Key_Enter, QDate(2026, 1, 1)},
        {QDate(2028, 2, 29), nullptr, Qt::Key_Up, QDate(2028, 3, 1)},
        {QDate(2026, 12, 31), nullptr, Qt::Key_Up, QDate(2027, 1, 1)},
        {QDate(2025, 3, 1), nullptr, Qt::Key_Down, QDate(2025, 2, 28)},
    };
    m_campo->setPermitirVacia(true);
    for (const Caso &c : casos) {
        SCOPED_TRACE(c.hoy.toString(Qt::ISODate).toStdString() + " " + (c.texto ? c.texto : "tecla"));
        m_reloj->Fijar(QDateTime(c.hoy, QTime(12, 0)));
        escribir(QStringLiteral("dd/MM/yyyy"), QDate(), QString());
        m_campo->Vaciar();
        if (c.texto) {
            QTest::keyClicks(m_campo, QString::fromLatin1(c.texto));
            EXPECT_EQ(m_campo->Aceptar(), c.esperada.isValid());
        } else {
            QTest::keyClick(m_campo, c.tecla);
        }
        EXPECT_EQ(m_campo->date(), c.esperada);
    }
}

TEST(CampoFecha, FormatoYFechaMostrada)
{
    CampoFecha campo(BaseDePrueba::RelojFijo());
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
