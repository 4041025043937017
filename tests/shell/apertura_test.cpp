// The opening-balance entry in the document: the banner that asks for it, the menu command
// that makes it, and the start-up option that asks for it at once.
#include "escenario.h"

#include "editing/sesionedicion.h"

#include <QAccessible>
#include <QFrame>
#include <QLabel>
#include <QTest>

namespace {

using R = ServicioMensajes::Respuesta;

class AperturaEnDocumento : public Escenario
{
protected:
    // Another document of the administrator, with the start-up options given after the usual ones.
    std::unique_ptr<lumIngAsiento> abrirCon(const QString &opciones)
    {
        return DocumentoIniciado(m_base, m_host, m_mensajes, m_busqueda, m_carpeta, Demo::kUsuarioAdministrador, opciones);
    }
    bool conAviso(lumIngAsiento *doc = nullptr)
    {
        doc = doc ? doc : m_doc.get();
        return doc->findChild<QFrame *>(QStringLiteral("picASI"))->isVisibleTo(doc);
    }
    QStringList aperturas(int estado)
    {
        return Columna(m_base.conexion(), QStringLiteral("Select AsiID From cceAsientos Where AsiTipo = 94 And AsiEstado = ?"), {estado});
    }
    // The menu command that makes the opening-balance entry, with yes to both questions.
    void hacer()
    {
        m_mensajes.Responder(R::Si);
        m_mensajes.Responder(R::Si);
        elegir("MnuEdiAPA");
    }
};

// The banner's invitation and its help link are two labels, each read by name; the help
// link opens the entry's help page and the invitation's link makes the entry.
TEST_P(AperturaEnDocumento, ElAvisoTieneSusDosEnlacesEnDosEtiquetas)
{
    ASSERT_TRUE(conAviso());
    auto *invitacion = m_doc->findChild<QLabel *>(QStringLiteral("lMsgASI1"));
    auto *ayuda = m_doc->findChild<QLabel *>(QStringLiteral("lMsgASI2"));
    ASSERT_TRUE(invitacion && ayuda);
    auto nombre = [](QLabel *l) { return QAccessible::queryAccessibleInterface(l)->text(QAccessible::Name); };
    EXPECT_EQ(nombre(ayuda), Idioma::resLoad(153));
    EXPECT_TRUE(nombre(invitacion).startsWith(Idioma::resLoad(150))) << nombre(invitacion).toStdString();
    EXPECT_FALSE(nombre(invitacion).contains(Idioma::resLoad(153)));

    // Clicked during an edit with a line typed: the question comes first, and the link still
    // does what it says.
    m_doc->edicion().NuevoAsiento();
    autoriza()->setCurrentIndex(0);
    editor()->SetFocusCtrl(lumERAsiento::kDebe, 0);
    escribir(editor()->campoCuenta(true), QStringLiteral("1.1.01"));
    enter(editor()->campoCuenta(true));
    escribir(editor()->campo(lumERAsiento::kImporte), QStringLiteral("10"));
    ASSERT_TRUE(m_doc->edicion().LineaSinAceptar());
    m_mensajes.Responder(R::No);
    QTest::mouseClick(ayuda, Qt::LeftButton, {}, ayuda->rect().center());
    EXPECT_EQ(m_mensajes.mostrados.last(), Dicho("pregunta", 1956));
    EXPECT_EQ(m_doc->FilaEdicion(), 0);
    EXPECT_EQ(m_host.comandos.filter(ComandoHost::kAyudaSaldosIniciales).size(), 1) << m_host.comandos.join(u' ').toStdString();
    EXPECT_TRUE(aperturas(1).isEmpty());
    m_mensajes.Responder(R::Si);
    m_mensajes.Responder(R::Si);
    emit invitacion->linkActivated(QStringLiteral("aqui"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return aperturas(1).size() == 1; }, 5000));
    EXPECT_FALSE(conAviso());
}

// Which accounts and balances the entry takes is the store's; here, the banner, the menu and
// the grid.
TEST_P(AperturaEnDocumento, ElMenuLoHaceBorrarloDevuelveElAvisoYUnaLineaAceptadaLoDejaRegistrado)
{
    EXPECT_TRUE(conAviso());
    hacer();
    EXPECT_EQ(m_mensajes.mostrados.filter(QStringLiteral("pregunta: ")).size(), 2) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    const QStringList hechos = aperturas(1);
    ASSERT_EQ(hechos.size(), 1);
    const qint32 id = hechos.first().toInt();

    // Shown as the current entry, a row per line; the banner has gone. Registered and
    // balanced in pesos, it shows no difference row.
    const int fila = filaDe(id);
    ASSERT_GT(fila, 0);
    EXPECT_EQ(m_doc->grid()->FilaActual(), fila);
    const int ultima = m_doc->asientos().UltimaFilaAsiento(fila);
    EXPECT_EQ(ultima - fila, m_base.Valor(QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = ?"), {id}).toInt());
    EXPECT_FALSE(m_doc->asientos().EsFilaDiferencia(ultima)) << m_doc->grilla().Texto(ultima, 3).toStdString();
    EXPECT_FALSE(conAviso());

    // Deleted, it goes to the trash and the banner comes back.
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(R::Si);
    m_doc->grid()->FijarFilaActual(fila);
    elegir("MnuEdiDel");
    EXPECT_EQ(m_mensajes.mostrados.filter(QStringLiteral("error: ")), QStringList{});
    EXPECT_EQ(aperturas(9), hechos);
    EXPECT_EQ(filaDe(id), -1);
    EXPECT_TRUE(conAviso());

    // Made again, its lines are in several currencies: a line accepted as it is must leave it
    // registered, still the opening-balance entry.
    hacer();
    const QStringList otra = aperturas(1);
    ASSERT_EQ(otra.size(), 1);
    ASSERT_TRUE(m_doc->edicion().EntrarEdicion(filaDe(otra.first().toInt()) + 1));
    m_doc->edicion().AceptarLinea();
    m_doc->edicion().SalirEdicion();
    EXPECT_EQ(aperturas(1), otra);
    EXPECT_FALSE(conAviso());
}

// The entry menu offers what can be done on the row: making the opening-balance entry while
// there is none; turning a stored entry into it while there is none, or it into an ordinary
// one; nothing on the new-entry row.
TEST_P(AperturaEnDocumento, ElMenuDeCadaFilaYLaOpcionDeInicioSegunHayaAsiento)
{
    auto estado = [&](int fila) {
        m_doc->grid()->FijarFilaActual(fila);
        m_doc->PrepararMenuEdicion();
        QAction *hacer = m_doc->menus().accion(QStringLiteral("MnuEdiAPA"));
        QAction *convertir = m_doc->menus().accion(QStringLiteral("MnuEdiASI"));
        return QStringLiteral("%1|%2|%3").arg(hacer->isEnabled()).arg(convertir->text()).arg(convertir->isEnabled());
    };
    const QString aApertura = Idioma::resLoad(33);
    vista(Vista::kUltimos5);
    const int comun = m_doc->grilla().FilasFijas();
    ASSERT_TRUE(m_doc->asientos().EsFilaCabezal(comun));
    const int nuevo = m_doc->grilla().Filas() - 1;
    EXPECT_EQ(estado(comun), QStringLiteral("1|%1|1").arg(aApertura));
    EXPECT_EQ(estado(nuevo), QStringLiteral("1|%1|0").arg(aApertura));

    // The start-up option asks for the entry only while the company has none; an incomplete
    // entry of that book is no opening-balance entry yet.
    EXPECT_EQ(m_doc->ComandoDiferido(), QString());
    EXPECT_EQ(abrirCon(QStringLiteral("|pshacerasi=si"))->ComandoDiferido(), QStringLiteral("1"));
    const qint32 id = GrabarAsientoDePrueba(m_base, EstadoAsiento::kInconcluso, QDate(2024, 1, 1), QStringLiteral("Saldos"),
                                            Demo::kLibroPrimeraApertura, {{"1.1.01", true, 10}, {"3.1.01", false, 10}});
    EXPECT_EQ(abrirCon(QStringLiteral("|pshacerasi=si"))->ComandoDiferido(), QStringLiteral("1"));
    AsientoDatos registrar(m_base.conexion());
    ASSERT_TRUE(Bien(registrar.CargarAsiento(id)));
    registrar.Cabezal().Estado = EstadoAsiento::kRegistrado;
    ASSERT_TRUE(Bien(registrar.Grabar()));
    auto conAsiento = abrirCon(QStringLiteral("|pshacerasi=si"));
    EXPECT_EQ(conAsiento->ComandoDiferido(), QString());
    EXPECT_FALSE(conAviso(conAsiento.get()));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());

    // Made, the menu only turns it into an ordinary entry.
    ASSERT_TRUE(mostrarAlFinal(id));
    EXPECT_EQ(estado(filaDe(id)), QStringLiteral("0|%1|1").arg(Idioma::resLoad(34)));
    EXPECT_EQ(estado(comun), QStringLiteral("0|%1|0").arg(aApertura));
}

INSTANCIAR_EN_MOTORES(AperturaEnDocumento);

} // namespace
