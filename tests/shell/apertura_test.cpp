// The opening-balance entry in the document: the banner that asks for it, the menu command
// that makes it, and the start-up option that asks for it at once.
#include "escenario.h"

#include "editing/sesionedicion.h"

#include <QFrame>

namespace {

using R = ServicioMensajes::Respuesta;

class AperturaEnDocumento : public ::testing::TestWithParam<Motor>
{
protected:
    AperturaEnDocumento()
        : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
    {
    }

    // The document on the demo company, with the start-up options given after the usual ones.
    std::unique_ptr<lumIngAsiento> abrir(const QString &opciones = {})
    {
        return DocumentoIniciado(m_base, m_host, m_mensajes, m_busqueda, m_carpeta, Demo::kUsuarioAdministrador, opciones);
    }
    static bool conAviso(lumIngAsiento &doc) { return doc.findChild<QFrame *>(QStringLiteral("picASI"))->isVisibleTo(&doc); }

    int contar(const QString &sql, const QVariantList &valores = {}) { return m_base.Valor(sql, valores).toInt(); }
    QStringList aperturas(int estado)
    {
        return Columna(m_base.conexion(), QStringLiteral("Select AsiID From cceAsientos Where AsiTipo = 94 And AsiEstado = ?"), {estado});
    }
    // The menu command that makes the opening-balance entry, with yes to both questions.
    void hacer(lumIngAsiento &doc)
    {
        m_mensajes.Responder(R::Si);
        m_mensajes.Responder(R::Si);
        doc.menus().accion(QStringLiteral("MnuEdiAPA"))->trigger();
    }
    // A balanced entry of the opening-balance book, written straight to the store; its id.
    qint32 apertura(qint16 estado)
    {
        return GrabarAsientoDePrueba(m_base, estado, QDate(2024, 1, 1), QStringLiteral("Saldos"), Demo::kLibroPrimeraApertura,
                                     {{"1.1.01", true, 10}, {"3.1.01", false, 10}});
    }

    BaseDePrueba m_base;
    QTemporaryDir m_carpeta;
    HostDePrueba m_host;
    MensajesGuionados m_mensajes;
    BusquedaExacta m_busqueda;
};

TEST_P(AperturaEnDocumento, ElMenuLoHaceBorrarloDevuelveElAvisoYUnaLineaAceptadaLoDejaRegistrado)
{
    auto doc = abrir();
    EXPECT_TRUE(conAviso(*doc));
    const QVariant fecha = Conexion::ValorFecha(doc->FechaAsientoApertura());
    // The demo's closed accounts are closed after the opening-balance date: they are opened.
    const QString cerradas = QStringLiteral("Select Count(*) From cceCuentas Where CueFechaCerrada >= ?");
    ASSERT_GT(contar(cerradas, {fecha}), 0);
    const int conSaldo = contar(QStringLiteral("Select Count(*) From cceCuentas Where CueEsCarpeta = 0 And CueIDEmpresa = 1"
                                               " And (CueSaldo <> 0 Or CueSaldoMConta <> 0)"));

    hacer(*doc);
    EXPECT_EQ(m_mensajes.mostrados.filter(QStringLiteral("pregunta: ")).size(), 2) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
    EXPECT_EQ(contar(cerradas, {fecha}), 0);
    const QStringList hechos = aperturas(1);
    ASSERT_EQ(hechos.size(), 1);
    const qint32 id = hechos.first().toInt();
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = ?"), {id}), conSaldo);

    // Shown as the current entry, a row per line; the banner has gone. Registered and
    // balanced in pesos, it shows no difference row.
    const int fila = doc->FilaDeAsiento(id);
    ASSERT_GT(fila, 0);
    EXPECT_EQ(doc->grid()->FilaActual(), fila);
    const int ultima = doc->asientos().UltimaFilaAsiento(fila);
    EXPECT_EQ(ultima - fila - (doc->asientos().EsFilaDiferencia(ultima) ? 1 : 0), conSaldo);
    EXPECT_FALSE(doc->asientos().EsFilaDiferencia(ultima)) << doc->grilla().Texto(ultima, 3).toStdString();
    EXPECT_FALSE(conAviso(*doc));

    // Deleted, it goes to the trash and the banner comes back.
    m_mensajes.mostrados.clear();
    m_mensajes.Responder(R::Si);
    doc->grid()->FijarFilaActual(fila);
    doc->menus().accion(QStringLiteral("MnuEdiDel"))->trigger();
    EXPECT_EQ(m_mensajes.mostrados.filter(QStringLiteral("error: ")), QStringList{});
    EXPECT_EQ(aperturas(9), hechos);
    EXPECT_EQ(doc->FilaDeAsiento(id), -1);
    EXPECT_TRUE(conAviso(*doc));

    // Made again, its lines are in several currencies: a line accepted as it is must leave it
    // registered, still the opening-balance entry.
    hacer(*doc);
    const QStringList otra = aperturas(1);
    ASSERT_EQ(otra.size(), 1);
    ASSERT_TRUE(doc->edicion().EntrarEdicion(doc->FilaDeAsiento(otra.first().toInt()) + 1));
    doc->edicion().AceptarLinea();
    doc->edicion().SalirEdicion();
    EXPECT_EQ(aperturas(1), otra);
    EXPECT_FALSE(conAviso(*doc));
}

// The entry menu offers what can be done on the row: making the opening-balance entry while
// there is none; turning a stored entry into it while there is none, or it into an ordinary
// one; nothing on the new-entry row.
TEST_P(AperturaEnDocumento, ElMenuDeCadaFilaYLaOpcionDeInicioSegunHayaAsiento)
{
    auto doc = abrir();
    auto estado = [&](int fila) {
        doc->grid()->FijarFilaActual(fila);
        doc->PrepararMenuEdicion();
        QAction *hacer = doc->menus().accion(QStringLiteral("MnuEdiAPA"));
        QAction *convertir = doc->menus().accion(QStringLiteral("MnuEdiASI"));
        return QStringLiteral("%1|%2|%3").arg(hacer->isEnabled()).arg(convertir->text()).arg(convertir->isEnabled());
    };
    const QString aApertura = Idioma::resLoad(33);
    doc->ElegirVista(Vista::kUltimos5);
    const int comun = doc->grilla().FilasFijas();
    ASSERT_TRUE(doc->asientos().EsFilaCabezal(comun));
    const int nuevo = doc->grilla().Filas() - 1;
    EXPECT_EQ(estado(comun), QStringLiteral("1|%1|1").arg(aApertura));
    EXPECT_EQ(estado(nuevo), QStringLiteral("1|%1|0").arg(aApertura));

    // The start-up option asks for the entry only while the company has none; an incomplete
    // entry of that book is no opening-balance entry yet.
    EXPECT_EQ(abrir()->ComandoDiferido(), QString());
    EXPECT_EQ(abrir(QStringLiteral("|pshacerasi=si"))->ComandoDiferido(), QStringLiteral("1"));
    const qint32 id = apertura(EstadoAsiento::kInconcluso);
    EXPECT_EQ(abrir(QStringLiteral("|pshacerasi=si"))->ComandoDiferido(), QStringLiteral("1"));
    AsientoDatos registrar(m_base.conexion());
    ASSERT_TRUE(Bien(registrar.CargarAsiento(id)));
    registrar.Cabezal().Estado = EstadoAsiento::kRegistrado;
    ASSERT_TRUE(Bien(registrar.Grabar()));
    auto conAsiento = abrir(QStringLiteral("|pshacerasi=si"));
    EXPECT_EQ(conAsiento->ComandoDiferido(), QString());
    EXPECT_FALSE(conAviso(*conAsiento));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());

    // Made, the menu only turns it into an ordinary entry.
    ASSERT_TRUE(Bien(CargarAsientoEnGrilla(doc->asientos(), *doc->proceso().conexion, id, doc->grilla().Filas() - 1)));
    EXPECT_EQ(estado(doc->FilaDeAsiento(id)), QStringLiteral("0|%1|1").arg(Idioma::resLoad(34)));
    EXPECT_EQ(estado(comun), QStringLiteral("0|%1|0").arg(aApertura));
}

INSTANCIAR_EN_MOTORES(AperturaEnDocumento);

} // namespace
