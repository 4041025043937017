#include "comun/basesprueba.h"
#include "comun/busquedaexacta.h"
#include "comun/mensajesguionados.h"

#include "currency/catalogomonedas.h"
#include "lineeditor/campocalculadora.h"
#include "lineeditor/lumerasiento.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// Pesos (1), dollars (2) at 40 pesos and yen (3) at 0.25 pesos from 1 March 2026; a peso
// account, a dollar account, one closed on 10 March 2026, a folder, a second peso account
// and a yen account. Messages are shown by their catalogue numbers.
class EditorDeLinea : public ::testing::Test
{
protected:
    EditorDeLinea()
        : m_base(Motor::SQLite, BaseDePrueba::Contenido::Esquema)
    {
        Conexion &c = m_base.conexion();
        c.Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo)"
                                  " Values (1, '$', Null, '#,##0.00', '#,##0.000', 1), (2, 'U$S', 1, '#,##0.00', '#,##0.000', 1),"
                                  " (3, 'Y', 1, '#,##0.00', '#,##0.000', 1)"));
        c.Ejecutar(QStringLiteral("Insert Into genCotizacionesMoneda (CMoFecha, CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoCompra, CMoVenta)"
                                  " Values ('2026-03-01', 2, 1, 1, 40, 41), ('2026-03-01', 3, 1, 1, 0.25, 0.26)"));
        c.Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueFechaCerrada, CueEsCarpeta)"
                                  " Values (10, 1, '1.1.01', 'Caja', Null, Null, 0), (11, 1, '1.1.02', 'Banco U$S', 2, Null, 0),"
                                  " (12, 1, '1.1.03', 'Banco Comercial', 1, '2026-03-10', 0), (13, 1, '1', 'Activo', 0, Null, 1),"
                                  " (14, 1, '4.1.01', 'Ventas', 0, Null, 0), (15, 1, '1.1.05', 'Banco Yenes', 3, Null, 0)"));
        EXPECT_FALSE(m_monedas.CargarMonedas(c));
        m_monedas.FijarMonedaContabilidad(1);

        m_editor = std::make_unique<lumERAsiento>(ContextoLinea{.conexion = &c, .monedas = &m_monedas, .mensajes = &m_mensajes,
                                                                .busqueda = &m_busqueda, .empresa = 1, .monedaContabilidad = 1,
                                                                .tipoTCComprobantes = 1,
                                                                .texto = [](int n) { return QString::number(n); }});
        // A layout where no field covers another, as the document gives it.
        const int lefts[] = {0, 2600, 5200, 5900, 7400, 8600};
        const int widths[] = {2600, 2600, 700, 1500, 1200, 1500};
        for (int i = 0; i < 6; ++i) {
            m_editor->setLeft(i + 1, lefts[i]);
            m_editor->setWidth(i + 1, widths[i]);
        }
        m_editor->resize(720, 30);
        m_editor->setFechaAsiento(QDate(2026, 3, 15));
        QObject::connect(m_editor.get(), &lumERAsiento::EditOK, [this](bool *) { ++m_aceptadas; });
        QObject::connect(m_editor.get(), &lumERAsiento::MonedaResultadoTC, [this](QString *s, QString *o) {
            m_resultado = *s + QLatin1Char(' ') + *o;
        });
        m_editor->show();
        QApplication::setActiveWindow(m_editor.get());
    }

    void escribir(QWidget *campo, const QString &texto)
    {
        campo->setFocus();
        if (auto *e = qobject_cast<QLineEdit *>(campo))
            e->selectAll();
        QTest::keyClicks(campo, texto);
        QTest::keyClick(campo, Qt::Key_Return);
    }

    QLineEdit *debe() const { return m_editor->campoCuenta(true); }
    QLineEdit *haber() const { return m_editor->campoCuenta(false); }
    CampoCalculadora *campo(int c) const { return m_editor->campo(c); }

    BaseDePrueba m_base;
    CatalogoMonedas m_monedas;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_busqueda;
    std::unique_ptr<lumERAsiento> m_editor;
    int m_aceptadas = 0;
    QString m_resultado;
};

TEST_F(EditorDeLinea, CuentaEnPesosEImporte)
{
    escribir(debe(), QStringLiteral("1.1.01"));
    EXPECT_EQ(debe()->text(), QStringLiteral("1.1.01 - Caja"));
    EXPECT_TRUE(m_editor->CuentaIngresadaAlDebe());
    EXPECT_EQ(m_editor->listaMonedas()->count(), 1);
    EXPECT_EQ(m_editor->listaMonedas()->currentText(), QStringLiteral("$"));
    EXPECT_FALSE(campo(lumERAsiento::kTCambio)->isEnabled());
    EXPECT_EQ(QApplication::focusWidget(), campo(lumERAsiento::kImporte));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("1250*2"));
    EXPECT_EQ(m_aceptadas, 1);
    const ValorLinea v = m_editor->GetValorCuentaDebe();
    EXPECT_EQ(v.lCta, 10);
    EXPECT_EQ(v.iMon, 1);   // CueMoneda Null: the accounting currency
    EXPECT_EQ(v.dImporte, Importe::DesdeDouble(2500));
    EXPECT_DOUBLE_EQ(v.dTCambio, 0);
    EXPECT_EQ(v.dImporteMC, Importe::DesdeDouble(0));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
}

// Where a foreign line's rate comes from (the quotations, or the entry's container) and
// which currency the amount is typed in: the rate is shown as a factor of at least one with
// its operator, and the line hands over its amount, the factor and the accounting amount.
TEST_F(EditorDeLinea, TasaDeUnaLineaEnMonedaExtranjera)
{
    QObject::connect(m_editor.get(), &lumERAsiento::GetTCME, [](qint16 *mon, double *tc) { *tc = *mon == 2 ? 40 : 0.25; });
    const struct
    {
        bool delContenedor; // else from the quotations
        const char *cuenta;
        qint16 moneda;
        bool enPesos;       // the amount typed in pesos
        double tc;
        const char *operador;
        const char *escrito;
        double importe, mc;  // what the line hands over, in the account's currency and in pesos
    } casos[] = {
        {false, "1.1.02", 2, false, 40, "*", "100", 100, 4000},
        {false, "1.1.02", 2, true, 40, "/", "4000", 100, 4000},
        {true, "1.1.02", 2, true, 40, "/", "4000", 100, 4000}, // never "/ 0.025"
        {false, "1.1.05", 3, false, 4, "/", "1000", 1000, 250},
        {false, "1.1.05", 3, true, 4, "*", "250", 1000, 250},
        {true, "1.1.05", 3, false, 4, "/", "1000", 1000, 250},
        {true, "1.1.05", 3, true, 4, "*", "250", 1000, 250},
    };
    for (const auto &k : casos) {
        SCOPED_TRACE(std::string(k.cuenta) + (k.delContenedor ? " contenedor" : " cotizaciones") + (k.enPesos ? " en pesos" : ""));
        m_editor->InitRegistro();
        QComboBox *lista = m_editor->listaMonedas();
        if (k.delContenedor) {
            m_editor->SetCuenta(false, k.moneda == 2 ? 11 : 15, 0, 0, k.moneda, QString::fromLatin1(k.cuenta), QDate());
            m_editor->setMonedaCombo(1);
            m_editor->SetFocusCtrl(lumERAsiento::kImporte, 0); // as the document starts a line
            emit lista->activated(lista->currentIndex());
        } else {
            escribir(haber(), QString::fromLatin1(k.cuenta));
            EXPECT_EQ(m_editor->MonedaCombo(), k.moneda);
            EXPECT_EQ(lista->currentText(), m_monedas.DatoMoneda(k.moneda, 2).toString());
        }
        lista->setCurrentIndex(lista->findData(k.enPesos ? 1 : k.moneda));
        emit lista->activated(lista->currentIndex());
        EXPECT_DOUBLE_EQ(m_editor->ImporteTC(), k.tc);
        EXPECT_EQ(m_editor->Operador(), QString::fromLatin1(k.operador));
        EXPECT_EQ(m_resultado, (k.enPesos ? m_monedas.DatoMoneda(k.moneda, 2).toString() : QStringLiteral("$")) + QLatin1Char(' ')
                                   + QString::fromLatin1(k.operador));
        escribir(campo(lumERAsiento::kImporte), QString::fromLatin1(k.escrito));
        EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(k.enPesos ? k.importe : k.mc)); // the other currency's amount
        const ValorLinea v = m_editor->GetValorCuentaHaber();
        EXPECT_EQ(v.dImporte, Importe::DesdeDouble(k.importe));
        EXPECT_DOUBLE_EQ(v.dTCambio, k.mc / k.importe);
        EXPECT_EQ(v.dImporteMC, Importe::DesdeDouble(k.mc));
    }
}

// A screen reader is told what the line holds as it is typed, as the grid tells a stored
// line: side and account, the amount in its currency, and a foreign line's rate and
// converted amount; nothing on an empty line.
TEST_F(EditorDeLinea, LaLineaDiceLoQueTiene)
{
    EXPECT_EQ(m_editor->accessibleDescription(), QString());
    escribir(debe(), QStringLiteral("1.1.01"));
    EXPECT_EQ(m_editor->accessibleDescription(), QStringLiteral("1069 1.1.01 - Caja"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("2500"));
    EXPECT_EQ(m_editor->accessibleDescription(), QStringLiteral("1069 1.1.01 - Caja, %1 $").arg(QLocale().toString(2500.0, 'f', 2)));

    m_editor->InitRegistro();
    EXPECT_EQ(m_editor->accessibleDescription(), QString());
    escribir(haber(), QStringLiteral("1.1.02"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    EXPECT_EQ(m_editor->accessibleDescription(),
              QStringLiteral("1070 1.1.02 - Banco U$S, %1 U$S, 1063 * %2, %3 $")
                  .arg(QLocale().toString(100.0, 'f', 2), QLocale().toString(40.0, 'f', 3), QLocale().toString(4000.0, 'f', 2)));
}

// An amount typed past its currency's cents is valued as the line keeps it.
TEST_F(EditorDeLinea, ElImporteConMasDecimalesSeValuaComoSeGuarda)
{
    m_editor->InitRegistro();
    escribir(haber(), QStringLiteral("1.1.02"));
    ASSERT_DOUBLE_EQ(m_editor->ImporteTC(), 40);
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100") + campo(lumERAsiento::kImporte)->locale().decimalPoint() + QStringLiteral("555"));
    // The dollars are rounded to the cent where the line is stored; the pesos already are.
    const ValorLinea v = m_editor->GetValorCuentaHaber();
    EXPECT_EQ(v.dImporteMC, Importe::DesdeDouble(4022.40));
    EXPECT_DOUBLE_EQ(v.dTCambio, 40);
}

// Quotations that cannot be read are told with the database's detail, and the rate is left
// to be typed: not a 1 that would price a dollar at a peso.
TEST_F(EditorDeLinea, CotizacionesIlegiblesSeDicenYNoDanTasa)
{
    m_base.conexion().Ejecutar(QStringLiteral("Drop Table genCotizacionesMoneda"));
    m_editor->InitRegistro();
    escribir(haber(), QStringLiteral("1.1.02"));
    EXPECT_EQ(m_editor->MonedaCombo(), 2);
    EXPECT_DOUBLE_EQ(m_editor->ImporteTC(), 0);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(m_mensajes.mostrados[0], QStringLiteral("error: 1929"));
    EXPECT_TRUE(m_mensajes.detalles[0].contains(QStringLiteral("genCotizacionesMoneda"), Qt::CaseInsensitive))
        << m_mensajes.detalles[0].toStdString();
    // Without a rate the line is not accepted; with one typed it is.
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    EXPECT_EQ(m_aceptadas, 0);
    EXPECT_EQ(m_mensajes.mostrados.value(1), QStringLiteral("advertencia: 1851"));
    escribir(campo(lumERAsiento::kTCambio), QStringLiteral("40"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    EXPECT_EQ(m_aceptadas, 1) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(m_editor->GetValorCuentaHaber().dImporteMC, Importe::DesdeDouble(4000));
}

TEST_F(EditorDeLinea, CuentasRechazadas)
{
    // Closed on 10 March: refused for an entry of that day, taken for the day after. A popup
    // taking the focus is no leaving the box: nothing is looked up then.
    m_editor->setFechaAsiento(QDate(2026, 3, 10));
    debe()->setFocus();
    QTest::keyClicks(debe(), QStringLiteral("1.1.03"));
    QFocusEvent emergente(QEvent::FocusOut, Qt::PopupFocusReason);
    QApplication::sendEvent(debe(), &emergente);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());
    QTest::keyClick(debe(), Qt::Key_Return);
    EXPECT_FALSE(m_editor->CuentaIngresadaAlDebe());
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: 1854")});
    EXPECT_EQ(QApplication::focusWidget(), debe());
    // Leaving the box for another one looks the account up as Enter does.
    QFocusEvent saliendo(QEvent::FocusOut, Qt::MouseFocusReason);
    QApplication::sendEvent(debe(), &saliendo);
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_EQ(m_mensajes.mostrados.last(), QStringLiteral("advertencia: 1854"));
    EXPECT_EQ(QApplication::focusWidget(), debe());
    m_editor->setFechaAsiento(QDate(2026, 3, 11));
    escribir(debe(), QStringLiteral("1.1.03"));
    EXPECT_TRUE(m_editor->CuentaIngresadaAlDebe());

    // A folder is never taken, whatever the search answers.
    m_editor->InitRegistro();
    m_busqueda.respuesta = {13, 0, 0};
    escribir(debe(), QStringLiteral("Activo"));
    EXPECT_FALSE(m_editor->CuentaIngresadaAlDebe());
    EXPECT_EQ(QApplication::focusWidget(), debe()) << "the box keeps the focus until an account is taken";
}

TEST_F(EditorDeLinea, LaMismaCuentaEnAmbosLados)
{
    m_editor->setPermitirDosCtas(true);
    escribir(debe(), QStringLiteral("1.1.01"));
    EXPECT_EQ(QApplication::focusWidget(), haber()); // two accounts allowed: on to the credit side
    escribir(haber(), QStringLiteral("1.1.01"));
    EXPECT_FALSE(m_editor->CuentaIngresadaAlHaber());
    EXPECT_EQ(QApplication::focusWidget(), haber()); // refused: the focus stays to type another

    m_editor->SetCuenta(false, 10, 0, 0, 1, QStringLiteral("1.1.01 - Caja"), QDate());
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("5"));
    EXPECT_EQ(m_mensajes.mostrados.last(), QStringLiteral("advertencia: 1852"));
    EXPECT_EQ(QApplication::focusWidget(), debe());
    EXPECT_EQ(m_aceptadas, 0);

    m_editor->setPermitirDosCtas(false);
    m_editor->SetCuenta(false, 14, 0, 0, 1, QStringLiteral("4.1.01 - Ventas"), QDate());
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("5"));
    EXPECT_EQ(m_mensajes.mostrados.last(), QStringLiteral("advertencia: 1850"));
    int ctrl = -1;
    EXPECT_FALSE(m_editor->ValidateCtrl(ctrl));
    EXPECT_EQ(ctrl, 1);
    m_editor->setPermitirDosCtas(true);
    EXPECT_TRUE(m_editor->ValidateCtrl(ctrl));
    EXPECT_EQ(ctrl, 0);
}

// What the line refuses when Enter is pressed on the amount: no account (1851, back to the
// debit account), no amount (1851), a text that is no number as LeerNumero reads it (1950)
// or an amount too big (1937), each with the focus on the amount; none is taken.
TEST_F(EditorDeLinea, LoQueLaLineaRechaza)
{
    escribir(debe(), QString());
    EXPECT_EQ(QApplication::focusWidget(), haber()); // Enter in an empty debit box
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("5"));
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: 1851")});
    EXPECT_EQ(QApplication::focusWidget(), debe());

    escribir(debe(), QStringLiteral("1.1.01"));
    for (const auto &[texto, numero] : {std::pair{"", 1851}, {"x", 1950}, {"1.2.3,4", 1950}, {"1,23,4", 1950}, {"0.500", 1950},
                                        {"1500.505", 1950}, {"999999999999999999", 1937}}) {
        SCOPED_TRACE(texto);
        m_mensajes.mostrados.clear();
        campo(lumERAsiento::kImporte)->clear();
        escribir(campo(lumERAsiento::kImporte), QString::fromLatin1(texto));
        EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("advertencia: %1").arg(numero)});
        EXPECT_EQ(QApplication::focusWidget(), campo(lumERAsiento::kImporte));
        EXPECT_EQ(campo(lumERAsiento::kImporte)->text(), QString::fromLatin1(texto));
    }
    EXPECT_EQ(m_aceptadas, 0);
}

TEST_F(EditorDeLinea, TasaRechazadaYEditorOcultoSinMensaje)
{
    escribir(haber(), QStringLiteral("1.1.02"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    ASSERT_EQ(m_editor->ImporteMC(), 4000_imp);
    m_mensajes.mostrados.clear();
    escribir(campo(lumERAsiento::kTCambio), QStringLiteral("4,1,5"));
    EXPECT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(QApplication::focusWidget(), campo(lumERAsiento::kTCambio));
    EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(4000)); // nothing recomputed from a refused rate

    // Leaving the refused rate for the amount brings the focus back to it.
    campo(lumERAsiento::kImporte)->setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_EQ(QApplication::focusWidget(), campo(lumERAsiento::kTCambio));
    // Enter in the amount with the rate refused: the line is not taken, the rate is refused.
    QTest::keyClick(campo(lumERAsiento::kImporte), Qt::Key_Return);
    EXPECT_EQ(m_mensajes.mostrados.size(), 3);
    EXPECT_EQ(QApplication::focusWidget(), campo(lumERAsiento::kTCambio));
    EXPECT_EQ(m_aceptadas, 1);
    escribir(campo(lumERAsiento::kTCambio), QStringLiteral("41,5"));
    EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(4150));
    EXPECT_EQ(m_mensajes.mostrados.size(), 3);

    // The container hiding the editor while a refused text is in it: no message.
    CampoCalculadora *importe = campo(lumERAsiento::kImporte);
    importe->setFocus();
    importe->selectAll();
    QTest::keyClicks(importe, QStringLiteral("1.2.3"));
    m_editor->hide();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_mensajes.mostrados.size(), 3);
}

TEST_F(EditorDeLinea, EscribirSobreLaCuentaLaQuitaConSusImportes)
{
    escribir(debe(), QStringLiteral("1.1.02"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    ASSERT_EQ(m_editor->ImporteMC(), 4000_imp);
    debe()->setFocus();
    EXPECT_EQ(debe()->selectedText(), debe()->text()); // a taken account comes back selected whole
    QTest::keyClick(debe(), Qt::Key_Backspace);
    EXPECT_FALSE(m_editor->CuentaIngresadaAlDebe());
    EXPECT_TRUE(campo(lumERAsiento::kImporte)->text().isEmpty());
    EXPECT_TRUE(campo(lumERAsiento::kImporteMC)->text().isEmpty());
    EXPECT_EQ(m_editor->MonedaCombo(), 0);

    // A key the document hands over as it opens the field does the same, on its own side.
    escribir(haber(), QStringLiteral("4.1.01"));
    escribir(debe(), QStringLiteral("1.1.01"));
    m_editor->SetFocusCtrl(lumERAsiento::kDebe, '4');
    EXPECT_EQ(debe()->text(), QStringLiteral("4"));
    EXPECT_FALSE(m_editor->CuentaIngresadaAlDebe());
    EXPECT_TRUE(m_editor->CuentaIngresadaAlHaber());
    // Typing over it leaves the typing where it is, whatever the other side holds.
    escribir(debe(), QStringLiteral("1.1.01"));
    debe()->setFocus();
    QTest::keyClick(debe(), Qt::Key_Backspace);
    EXPECT_EQ(QApplication::focusWidget(), debe());
}

TEST_F(EditorDeLinea, LaDiferenciaSePropone)
{
    m_editor->SetDiferencia(true, 250_imp);
    escribir(debe(), QStringLiteral("1.1.01"));
    EXPECT_EQ(m_editor->ImporteCta(), Importe::DesdeDouble(250));

    m_editor->InitRegistro();
    m_editor->SetDiferencia(false, 4000_imp);
    escribir(haber(), QStringLiteral("1.1.02"));
    EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(4000)); // in dollars the converted amount takes it
    EXPECT_EQ(m_editor->ImporteCta(), Importe::DesdeDouble(100));

    // A converted amount already there is not replaced.
    m_editor->InitRegistro();
    m_editor->SetDiferencia(false, 4000_imp);
    m_editor->setImporteMC(2000_imp);
    escribir(haber(), QStringLiteral("1.1.02"));
    EXPECT_EQ(m_editor->ImporteMC(), 2000_imp);
}

TEST_F(EditorDeLinea, RecalculoDeLaTasaYElUnoPorCiento)
{
    escribir(debe(), QStringLiteral("1.1.02"));
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100"));
    // A change under 1 % keeps the converted amount and moves the rate.
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("100,5"));
    EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(4000));
    EXPECT_DOUBLE_EQ(m_editor->ImporteTC(), 39.801); // 4000 / 100.5, cut to the rate mask
    // A bigger one keeps the rate.
    escribir(campo(lumERAsiento::kImporte), QStringLiteral("200"));
    EXPECT_EQ(m_editor->ImporteMC(), Importe::DesdeDouble(200 * 39.801));
    // The rate typed with more decimals than its mask is cut to it.
    escribir(campo(lumERAsiento::kTCambio), QStringLiteral("38,123456"));
    EXPECT_DOUBLE_EQ(m_editor->ImporteTC(), 38.123);
    // The converted amount is worked out with the rate typed and shown as its mask rounds
    // it: 7624.6912 is 7.624,69.
    EXPECT_EQ(m_editor->ImporteMC(), 7624.69_imp);
    // The converted amount moves the rate.
    escribir(campo(lumERAsiento::kImporteMC), QStringLiteral("8000"));
    EXPECT_DOUBLE_EQ(m_editor->ImporteTC(), 40);
}

// Places are in twips of the screen; a converted amount field of no width keeps its place.
// Without a database no account is taken.
TEST(EditorDeLineaSinBase, DisenoEnTwipsYNingunaCuenta)
{
    lumERAsiento nuevo{ContextoLinea{}};
    const int x = qRound(3000 * nuevo.logicalDpiX() / 1440.0);
    nuevo.setLeft(lumERAsiento::kImporteMC, 3000);
    EXPECT_EQ(nuevo.campo(lumERAsiento::kImporteMC)->x(), x);
    nuevo.setWidth(lumERAsiento::kImporteMC, 0);
    nuevo.setLeft(lumERAsiento::kImporteMC, 6000);
    EXPECT_EQ(nuevo.campo(lumERAsiento::kImporteMC)->x(), x);

    nuevo.show();
    QApplication::setActiveWindow(&nuevo);
    nuevo.campoCuenta(true)->setFocus();
    QTest::keyClicks(nuevo.campoCuenta(true), QStringLiteral("1.1.01"));
    QTest::keyClick(nuevo.campoCuenta(true), Qt::Key_Return);
    EXPECT_FALSE(nuevo.CuentaIngresadaAlDebe());
    EXPECT_EQ(QApplication::focusWidget(), nuevo.campoCuenta(true));
}

} // namespace
