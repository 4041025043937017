#include "escenario.h"
#include "comun/textoscatalogo.h"

#include "dialogs/serviciomensajesqt.h"
#include "store/esquema.h"

#include <QDir>
#include <QHeaderView>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>

namespace {

class Documento : public ::testing::Test
{
protected:
    Documento()
        : m_base(Motor::SQLite, BaseDePrueba::Contenido::Demo)
    {
    }

    std::unique_ptr<lumIngAsiento> abrir(const QString &parametros, const QString &baseDatos = {})
    {
        m_host.base = QStringLiteral("lumapp://asientos/ingreso.htm?") + parametros;
        EntornoDocumento e;
        e.host = &m_host;
        e.mensajes = &m_mensajes;
        e.ajustes.archivoAjustes = m_carpeta.filePath(QStringLiteral("ajustes.ini"));
        e.ajustes.baseDatos = baseDatos.isNull() ? m_base.direccion() : baseDatos;
        e.ajustes.forzados = m_forzados;
        e.proceso = m_proceso;
        auto doc = std::make_unique<lumIngAsiento>(std::move(e));
        doc->Iniciar();
        return doc;
    }

    // Each test keeps its layout files in its own folder.
    QString usuario(int id) const
    {
        return QStringLiteral("psidusuario=%1|psidempresa=1|psckey=lum01|pskeyinit=%1|pstempdir=%2").arg(id).arg(m_carpeta.path());
    }

    bool habilitado(lumIngAsiento &doc, const char *enlace)
    {
        auto *l = doc.findChild<QToolButton *>(QString::fromLatin1(enlace));
        EXPECT_NE(l, nullptr) << enlace;
        return l && l->isEnabled();
    }

    BaseDePrueba m_base;
    QTemporaryDir m_carpeta;
    HostDePrueba m_host;
    MensajesGuionados m_mensajes;
    QHash<QString, QString> m_forzados;
    std::shared_ptr<Proceso> m_proceso = ProcesoDePrueba(m_base); // the documents of one test share it
};

// The document inside a window, shown the way the program's host shows it, with the real
// message boxes on that window; each box is answered with its default button as soon as it
// is up. Returns the texts of the boxes, in order, once start-up has ended.
QStringList ArrancarMostrando(const EntornoDocumento &base, HostDePrueba &host, lumIngAsiento::Estado &estado)
{
    QMainWindow ventana;
    ServicioMensajesQt mensajes(&ventana);
    EntornoDocumento e = base;
    e.host = &host;
    e.mensajes = &mensajes;
    auto *marco = new QStackedWidget(&ventana);
    ventana.setCentralWidget(marco);
    auto *doc = new lumIngAsiento(std::move(e), marco);
    marco->addWidget(doc);

    QStringList cajas;
    QTimer usuario;
    usuario.setInterval(10);
    QObject::connect(&usuario, &QTimer::timeout, [&cajas] {
        if (auto *caja = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            cajas << caja->text();
            caja->defaultButton()->click();
        }
    });
    usuario.start();

    ventana.resize(900, 600);
    ventana.show();
    (void)QTest::qWaitFor([&] { return doc->estado() == lumIngAsiento::Estado::Listo || !host.comandos.isEmpty(); }, 20000);
    estado = doc->estado();
    return cajas;
}

TEST_F(Documento, AdministradorQuedaListoConTodosLosEnlacesYCadaVistaCargaSusAsientos)
{
    auto doc = abrir(usuario(Demo::kUsuarioAdministrador));
    EXPECT_EQ(doc->estado(), lumIngAsiento::Estado::Listo);
    EXPECT_TRUE(m_host.comandos.isEmpty()) << m_host.comandos.join(QLatin1Char('\n')).toStdString();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
    for (const char *l : {"hlRegistro", "hlAsientoFrecuente", "hlOpSave", "hlFind", "hlCargar"})
        EXPECT_TRUE(habilitado(*doc, l)) << l;
    EXPECT_EQ(doc->datosHost().NombreEmpresa, doc->empresa().NombreEmpresa); // the company row wins
    EXPECT_EQ(m_mensajes.titulo(), QStringLiteral("Ingreso de Asientos"));

    // Entries carry an authoriser in the demo company, which is multi-user.
    auto *autoriza = doc->findChild<QComboBox *>(QStringLiteral("cfAutoriza"));
    ASSERT_NE(autoriza, nullptr);
    EXPECT_FALSE(autoriza->isHidden());
    EXPECT_EQ(autoriza->count(), 2);
    EXPECT_NE(autoriza->findData(Demo::kUsuarioAdministrador), -1);

    // Every entry command is offered, print and export included.
    EXPECT_TRUE(doc->menus().MnuExportar->menuAction()->isVisible());
    for (const char *a : {"MnuPriCnfgPage", "MnuPriPrint", "MnuPriPrevia", "MnuExpExcell", "MnuExpCSV", "MnuExpHtml", "MnuEdiNew", "MnuEdiDel", "MnuEdiDelRow", "MnuEdiAddCta", "MnuEdiSaveNormal", "MnuEdiCopy",
                          "MnuEdiHide", "MnuUnificarTCCta", "MnuUnificarTCMC", "MnuEdiHacerFrecuente",
                          "MnuEdiAgendarAsiento", "MnuEdiLibro", "MnuEdiAPA", "MnuEdiASI", "MnuAFrRegistrar", "MnuAFrNew"})
        EXPECT_TRUE(doc->menus().accion(QString::fromLatin1(a))->isVisible()) << a;
    // The help link goes to its page.
    doc->findChild<QToolButton *>(QStringLiteral("imgHelp"))->click();
    EXPECT_EQ(m_host.comandos, QStringList{QStringLiteral("lumNav:navhelp?Main|asientos\\ingreso_de_asientos.htm")});
    EXPECT_EQ(m_host.marcos, QStringList{QString()});

    // Another document of the user starts on the recent entries; a view chosen is checked in the menu.
    auto otro = abrir(usuario(1));
    EXPECT_EQ(otro->VistaActual(), QStringLiteral("0"));
    EXPECT_EQ(otro->grilla().Texto(1, 0), QStringLiteral("Nuevo Asiento"));

    otro->ElegirVista(1);
    EXPECT_TRUE(otro->menus().MnuVieitem[1]->isChecked());
    EXPECT_FALSE(otro->menus().MnuVieitem[0]->isChecked());
    // The amount columns show the accounting currency's mask.
    EXPECT_EQ(otro->grilla().FormatoColumna(2), QStringLiteral("#,##0.00"));
    // The entry link's menu is made for the current row each time it opens: a registered
    // entry may go back to draft, the new-entry row may only be saved.
    const auto textoGrabar = [&](int fila) {
        otro->grid()->FijarFilaActual(fila);
        QTest::mouseClick(otro->findChild<QWidget *>(QStringLiteral("hlRegistro")), Qt::LeftButton);
        const QString texto = otro->menus().accion(QStringLiteral("MnuEdiSaveNormal"))->text();
        if (QWidget *menu = QApplication::activePopupWidget())
            menu->close();
        return texto;
    };
    const QList<int> cabezales = FilasCabezal(*otro);
    const auto registrado = std::find_if(cabezales.begin(), cabezales.end(), [&](int r) {
        return otro->asientos().EstadoDeFila(r) == EstadoAsiento::kRegistrado;
    });
    ASSERT_NE(registrado, cabezales.end());
    EXPECT_EQ(textoGrabar(*registrado), TextoEspanol(1036));
    EXPECT_EQ(textoGrabar(otro->grilla().Filas() - 1), TextoEspanol(1023));

    // The user's preferences survive a restart; another user keeps their own.
    otro.reset();
    otro = abrir(usuario(1));
    EXPECT_FALSE(otro->AsiSaveB());
    EXPECT_EQ(otro->AsiOrder(), 0);
    EXPECT_TRUE(otro->menus().accion(QStringLiteral("MnuEdiVCod"))->isChecked());
    otro->menus().accion(QStringLiteral("MnuSaveNewBorrador"))->trigger();
    otro->menus().accion(QStringLiteral("MnuEdiVIngreso"))->trigger();
    EXPECT_TRUE(otro->AsiSaveB());
    EXPECT_EQ(otro->AsiOrder(), 1);
    otro.reset();
    otro = abrir(usuario(1));
    EXPECT_TRUE(otro->AsiSaveB());
    EXPECT_EQ(otro->AsiOrder(), 1);
    EXPECT_TRUE(otro->menus().accion(QStringLiteral("MnuSaveNewBorrador"))->isChecked());
    EXPECT_TRUE(otro->menus().accion(QStringLiteral("MnuEdiVIngreso"))->isChecked());
    EXPECT_FALSE(otro->menus().accion(QStringLiteral("MnuEdiVCod"))->isChecked());

    otro.reset();
    EXPECT_FALSE(abrir(usuario(Demo::kUsuarioContador))->AsiSaveB());

    // A company whose entries carry no authoriser shows no list of them.
    m_base.conexion().Ejecutar(QStringLiteral("Update cceEmpresas Set EmpValoresUsuarioYAuroriza = '10'"));
    auto sinAutoriza = abrir(usuario(Demo::kUsuarioAdministrador));
    ASSERT_EQ(sinAutoriza->estado(), lumIngAsiento::Estado::Listo);
    EXPECT_TRUE(sinAutoriza->findChild<QComboBox *>(QStringLiteral("cfAutoriza"))->isHidden());
}

TEST_F(Documento, UsuarioDeConsultaSoloBuscaYCambiaVistaYCadaLetraSusEnlaces)
{
    auto doc = abrir(usuario(Demo::kUsuarioConsulta));
    EXPECT_EQ(doc->estado(), lumIngAsiento::Estado::Listo);
    EXPECT_TRUE(habilitado(*doc, "hlRegistro")) << "the history and printing are there";
    EXPECT_FALSE(habilitado(*doc, "hlAsientoFrecuente"));
    EXPECT_FALSE(habilitado(*doc, "hlOpSave"));
    EXPECT_TRUE(habilitado(*doc, "hlFind"));
    EXPECT_TRUE(habilitado(*doc, "hlCargar"));
    // The pointer over a link underlines it while it can be followed, and leaving takes it off.
    for (const char *l : {"hlFind", "hlOpSave"}) {
        auto *enlace = doc->findChild<QToolButton *>(QString::fromLatin1(l));
        QEnterEvent entra(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QApplication::sendEvent(enlace, &entra);
        EXPECT_EQ(enlace->font().underline(), enlace->isEnabled()) << l;
        QEvent sale(QEvent::Leave);
        QApplication::sendEvent(enlace, &sale);
        EXPECT_FALSE(enlace->font().underline()) << l;
    }

    // The grid's own menu offers no write either: right-click on an entry.
    doc->ElegirVista(Vista::kPrimerMes);
    doc->resize(900, 500);
    QTest::mouseClick(doc->grid()->viewport(), Qt::RightButton, {}, QPoint(20, doc->grid()->rowViewportPosition(1) + 2));
    EXPECT_EQ(doc->grid()->FilaActual(), doc->grilla().FilasFijas() + 1); // the menu is the clicked row's
    doc->grid()->FijarFilaActual(doc->grilla().Filas());                  // no such row: the current one stays
    EXPECT_EQ(doc->grid()->FilaActual(), doc->grilla().FilasFijas() + 1);
    doc->grid()->horizontalHeader()->sectionClicked(0);                   // a caption goes to the first row
    EXPECT_EQ(doc->grid()->FilaActual(), doc->grilla().FilasFijas());
    const QString vista = doc->VistaActual();
    doc->ElegirVista(Vista::kPrimerMes + int(doc->menus().MnuViewMItem.size())); // no such month: the view stays
    EXPECT_EQ(doc->VistaActual(), vista);
    for (const char *a : {"MnuEdiNew", "MnuEdiDel", "MnuEdiDelRow", "MnuEdiAddCta", "MnuEdiSaveNormal", "MnuEdiCopy",
                          "MnuEdiHacerFrecuente", "MnuEdiAgendarAsiento", "MnuEdiLibro", "MnuUnificarTCCta", "MnuEdiAPA",
                          "MnuEdiASI", "MnuEdiDeshacer"})
        EXPECT_FALSE(doc->menus().accion(QString::fromLatin1(a))->isEnabled()) << a;
    EXPECT_TRUE(doc->menus().accion(QStringLiteral("MnuEdiHide"))->isEnabled());
    EXPECT_TRUE(doc->menus().accion(QStringLiteral("MnuEdiHistorial"))->isEnabled());
    doc->menus().MnuEdicion->close();

    // Each letter alone opens its own links; the search and the views come with any of them.
    for (const auto &[letras, frecuentes, grabar] : {std::tuple{"A", true, false}, {"M", false, true}, {"E", false, false}}) {
        SCOPED_TRACE(letras);
        m_base.conexion().Ejecutar(QStringLiteral("Update segPermisos Set PerLetras = ? Where PerUsuario = ?"),
                                   {QString::fromLatin1(letras), Demo::kUsuarioConsulta});
        auto solo = abrir(usuario(Demo::kUsuarioConsulta));
        ASSERT_EQ(solo->estado(), lumIngAsiento::Estado::Listo);
        EXPECT_TRUE(habilitado(*solo, "hlRegistro"));
        EXPECT_EQ(habilitado(*solo, "hlAsientoFrecuente"), frecuentes);
        EXPECT_EQ(habilitado(*solo, "hlOpSave"), grabar);
        EXPECT_TRUE(habilitado(*solo, "hlFind"));
        EXPECT_TRUE(habilitado(*solo, "hlCargar"));
    }
}

TEST_F(Documento, FallasDeArranqueVanAlHostOAUnaCaja)
{
    struct Caso
    {
        QString parametros;
        QString baseDatos;
        QString comando;
    };
    const QString noHay = m_carpeta.filePath(QStringLiteral("no-hay.sqlite"));
    const Caso casos[] = {
        {QString(), {}, QString()}, // nothing asked for: an empty page, nothing said
        {QStringLiteral("psidusuario=1|psidempresa=0"), {},
         QStringLiteral("lumcod:main_Error<prm>[prmErrDesc]:=Error al obtener los parámetros para el ingreso de asientos.</prm>")},
        {usuario(1), noHay,
         QStringLiteral("lumcod:main_Error<prm>[prmErrDesc]:=Error al iniciar la conexión a los datos, error: no existe el archivo ")
             + noHay + QStringLiteral(". Para crear en él la base de datos ejecute «asientos --db ") + noHay
             + QStringLiteral(" --inicializar».</prm>")},
    };
    for (const Caso &c : casos) {
        m_host.comandos.clear();
        auto doc = abrir(c.parametros, c.baseDatos);
        EXPECT_EQ(doc->estado(), lumIngAsiento::Estado::Detenido);
        EXPECT_EQ(m_host.comandos, c.comando.isNull() ? QStringList() : QStringList{c.comando});
    }
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());

    // A user without letters is denied access, in the centre frame.
    m_host.comandos.clear();
    EXPECT_EQ(abrir(usuario(Demo::kUsuarioSinPermisos))->estado(), lumIngAsiento::Estado::Detenido);
    EXPECT_EQ(m_host.comandos, QStringList{QStringLiteral("lumcod:inf_AccesoDenegado<prm>[NombreApp]:=Ingreso de Asientos</prm>")});
    EXPECT_EQ(m_host.marcos.last(), QStringLiteral("centro"));

    // Without the language component the failure text is empty.
    m_forzados.insert(QStringLiteral("LUM01/Idioma"), QStringLiteral("9"));
    m_host.comandos.clear();
    m_mensajes.mostrados.clear();
    EXPECT_EQ(abrir(usuario(1))->EstadoInicio(), 9);
    ASSERT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_TRUE(m_mensajes.mostrados[0].contains(QStringLiteral("LNG_TCO_009.dll")));
    EXPECT_EQ(m_host.comandos, QStringList{QStringLiteral("lumcod:main_Error<prm>[prmErrDesc]:=</prm>")});

    // The message boxes of the start-up, with the window just shown.
    EntornoDocumento e;
    e.ajustes.archivoAjustes = m_carpeta.filePath(QStringLiteral("ajustes.ini"));
    m_host.base = QStringLiteral("lumapp://asientos/ingreso.htm?") + usuario(Demo::kUsuarioAdministrador);
    lumIngAsiento::Estado estado = lumIngAsiento::Estado::Creado;

    // A database with no tables: no box and no access-denied page, but one error for the
    // host that says how to create the tables; nothing is written to the database.
    for (const Motor motor : MotoresDePrueba()) {
        SCOPED_TRACE(NombreMotor(motor).toStdString());
        m_host.comandos.clear();
        BaseDePrueba vacia(motor, BaseDePrueba::Contenido::Vacia);
        e.ajustes.baseDatos = vacia.direccion();
        const QStringList cajasLeidas = ArrancarMostrando(e, m_host, estado);
        EXPECT_NE(estado, lumIngAsiento::Estado::Listo);
        EXPECT_TRUE(cajasLeidas.isEmpty()) << cajasLeidas.join(QLatin1Char('\n')).toStdString();
        ASSERT_EQ(m_host.comandos.size(), 1);
        EXPECT_TRUE(m_host.comandos[0].startsWith(QLatin1String("lumcod:main_Error")));
        EXPECT_TRUE(m_host.comandos[0].contains(QStringLiteral("está vacía"))) << m_host.comandos[0].toStdString();
        EXPECT_TRUE(m_host.comandos[0].contains(QLatin1String("--inicializar")));
        EXPECT_EQ(ExaminarEsquema(vacia.conexion()), EstadoEsquema::Vacia);
    }

    // Without the system parameters the document says so and still gets ready.
    m_host.comandos.clear();
    // The parameters cannot be read (the table is there, its value column is not).
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genParametros Rename Column ParValor To ParOtro"));
    e.ajustes.baseDatos = m_base.direccion();
    const QStringList cajasLeidas = ArrancarMostrando(e, m_host, estado);
    EXPECT_EQ(estado, lumIngAsiento::Estado::Listo);
    ASSERT_FALSE(cajasLeidas.isEmpty());
    EXPECT_EQ(cajasLeidas[0], QStringLiteral("Error al cargar los parámetros del sistema."));
    EXPECT_TRUE(m_host.comandos.isEmpty()) << m_host.comandos.join(QLatin1Char('\n')).toStdString();

    // Nor is a currency list that cannot be read passed over in silence.
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genParametros Rename Column ParOtro To ParValor"));
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genMonedas Rename Column MonRedondeo To MonOtro"));
    const QStringList sinMonedas = ArrancarMostrando(e, m_host, estado);
    EXPECT_TRUE(sinMonedas.contains(QStringLiteral("Error al obtener los parámetros para el ingreso de asientos.")))
        << sinMonedas.join(QLatin1Char('\n')).toStdString();
}



TEST_F(Documento, LaGrillaVuelveComoSeDejoUnDisenoDanadoNoDetieneYElPedidoDeAsiento)
{
    const QString carpeta = m_carpeta.filePath(QStringLiteral("tmp dir"));
    const QString parametros = QStringLiteral("psidusuario=1|psidempresa=1|pskeyinit=1|pstempdir=")
                             + QString(carpeta).replace(QLatin1Char(' '), QLatin1String("%20"));
    int filas = 0;
    static QStringList avisos; // what the program wrote to its log
    avisos.clear();
    const QtMessageHandler anterior = qInstallMessageHandler([](QtMsgType tipo, const QMessageLogContext &, const QString &texto) {
        if (tipo == QtWarningMsg && texto.contains(QStringLiteral("diseño")))
            avisos << texto;
    });
    {
        auto doc = abrir(parametros);
        doc->ElegirVista(2);
        filas = doc->grilla().Filas();
        doc->grilla().FijarAnchoColumna(4, 2345);
    }
    const QString ruta = carpeta + QStringLiteral("/lg1a.tgr");
    ASSERT_TRUE(QFile::exists(ruta));
    EXPECT_TRUE(avisos.isEmpty()) << avisos.join(QLatin1Char('\n')).toStdString(); // saved: nothing to say
    {
        // A layout that cannot be saved (its place is a folder) is told in the log.
        const QString otra = m_carpeta.filePath(QStringLiteral("otra"));
        QDir().mkpath(otra + QStringLiteral("/lg1a.tgr"));
        abrir(QStringLiteral("psidusuario=1|psidempresa=1|pskeyinit=1|pstempdir=") + otra);
    }
    qInstallMessageHandler(anterior);
    EXPECT_EQ(avisos.size(), 2) << avisos.join(QLatin1Char('\n')).toStdString(); // it could neither be read nor saved
    {
        auto doc = abrir(parametros);
        EXPECT_EQ(doc->grilla().Filas(), filas);
        EXPECT_EQ(FilasCabezal(*doc).size(), 10);
        EXPECT_EQ(doc->grilla().AnchoColumna(4), 2345);
        EXPECT_EQ(doc->grilla().Imagen(1).isEmpty(), false);
        // The caption names the view the rows came from.
        EXPECT_EQ(doc->VistaActual(), QStringLiteral("2"));
        EXPECT_EQ(doc->findChild<QToolButton *>(QStringLiteral("hlCargar"))->text(), QStringLiteral("Ver : Últimos 10 ingresados"));
    }
    {
        // An entry asked for at start-up is made current, whether the saved rows hold it or not.
        const qint32 primero = m_base.Valor(QStringLiteral("Select Min(AsiID) From cceAsientos Where AsiEstado <> 9")).toInt();
        const qint32 ultimo = m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos Where AsiEstado <> 9")).toInt();
        for (const qint32 id : {ultimo, primero}) {
            auto doc = abrir(parametros + QStringLiteral("|prmidasi=%1").arg(id));
            const int actual = doc->grid()->FilaActual();
            EXPECT_TRUE(doc->asientos().EsFilaCabezal(actual)) << id;
            EXPECT_EQ(doc->asientos().IdDeFila(actual), id);
            EXPECT_EQ(FilasCabezal(*doc).size(), id == primero ? 11 : 10);
        }
    }
    QFile f(ruta);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.seek(f.size() / 2);
    f.write("dañado");
    f.close();
    auto doc = abrir(parametros);
    EXPECT_EQ(doc->estado(), lumIngAsiento::Estado::Listo);
    EXPECT_EQ(doc->grilla().Filas(), 2);

    // An entry asked for at start-up alone.
    const int pedido = m_base.Valor(QStringLiteral("Select Max(AsiID) From cceAsientos Where AsiEstado = 1")).toInt();
    auto conPedido = abrir(usuario(1) + QStringLiteral("|prmidasi=%1").arg(pedido));
    ASSERT_EQ(FilasCabezal(*conPedido).size(), 1);
    EXPECT_EQ(conPedido->grilla().Dato(1, 0).toInt(), pedido);
    EXPECT_TRUE(conPedido->asientos().EsFilaNuevoAsiento(conPedido->grilla().Filas() - 1));
    // A company left out is the process's.
    auto uno = std::move(conPedido);
    auto dos = abrir(QStringLiteral("psidusuario=2|psckey=lum01"));
    EXPECT_EQ(dos->estado(), lumIngAsiento::Estado::Listo);
    EXPECT_EQ(dos->empresa().NombreEmpresa, uno->empresa().NombreEmpresa);

    // Without a prefix there is no layout file.
    const QString sinPrefijo = m_carpeta.filePath(QStringLiteral("sin"));
    abrir(QStringLiteral("psidusuario=1|psidempresa=1|pstempdir=") + sinPrefijo)->ElegirVista(1);
    EXPECT_FALSE(QDir(sinPrefijo).exists());
}


} // namespace
