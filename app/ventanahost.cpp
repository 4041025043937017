#include "ventanahost.h"

#include <QCloseEvent>

#include "dialogs/serviciomensajesqt.h"
#include "shell/idioma.h"
#include "shell/lumingasiento.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QPushButton>
#include <QSettings>
#include <QStackedWidget>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>

namespace {

QString escapar(const QString &texto)
{
    return texto.toHtmlEscaped().replace(QLatin1Char('\r'), QLatin1String("<br>")).replace(QLatin1Char('\n'), QLatin1String("<br>"));
}

QString hoja(const QString &titulo, const QString &cuerpo)
{
    return QStringLiteral("<html><body style=\"margin:24px; font-family:sans-serif;\">"
                          "<h2 style=\"color:#3b4a63;\">%1</h2>%2</body></html>")
        .arg(escapar(titulo), cuerpo);
}

} // namespace

QString VentanaHost::texto(int numero) const
{
    if (Idioma::Actual())
        return Idioma::resLoad(numero - 1000);
    // No document has loaded its language yet: the one asked for at start-up, or Spanish.
    if (m_catalogo.isEmpty()) {
        QFile f(QStringLiteral(":/lang/LNG_TCO_%1.txt").arg(m_idioma == 2 ? 2 : 1, 3, 10, QLatin1Char('0')));
        if (f.open(QIODevice::ReadOnly))
            m_catalogo = ComponenteIdioma::LeerCatalogo(f.readAll());
    }
    return m_catalogo.value(numero);
}

void VentanaHost::AsignarTitulo()
{
    setWindowTitle(texto(2100));
}

VentanaHost::VentanaHost(const OpcionesHost &opciones, const QString &baseDatos, const QString &archivoAjustes,
                         const QString &carpetaDatos, bool desatendido)
    : m_baseHRef(opciones.DireccionBase(carpetaDatos))
    , m_mensajes(std::make_unique<ServicioMensajesQt>(this, desatendido))
    , m_idioma(opciones.idioma)
{
    setObjectName(QStringLiteral("ventanaHost"));
    // The document's language decides the locale and Qt's own texts for the whole program.
    Idioma::AplicarAlElegir(true);
    AsignarTitulo();
    // The window comes back where and as large as the user left it.
    m_archivoAjustes = archivoAjustes;
    if (!restoreGeometry(QSettings(m_archivoAjustes, QSettings::IniFormat).value(kClaveGeometria).toByteArray()))
        resize(1100, 700);

    m_centro = new QStackedWidget(this);
    m_centro->setObjectName(ComandoHost::kMarco);
    setCentralWidget(m_centro);

    EntornoDocumento entorno;
    entorno.host = this;
    entorno.mensajes = m_mensajes.get();
    entorno.proceso = m_proceso;
    entorno.ajustes.archivoAjustes = archivoAjustes;
    entorno.ajustes.baseDatos = baseDatos;
    if (opciones.idioma > 0)
        entorno.ajustes.forzados.insert(QStringLiteral("LUM01/Idioma"), QString::number(opciones.idioma));

    m_documento = new lumIngAsiento(std::move(entorno), m_centro);
    m_centro->addWidget(m_documento);
}

void VentanaHost::closeEvent(QCloseEvent *evento)
{
    if (m_documento && !m_documento->PuedeCerrar()) {
        evento->ignore();
        return;
    }
    QSettings(m_archivoAjustes, QSettings::IniFormat).setValue(kClaveGeometria, saveGeometry());
    QMainWindow::closeEvent(evento);
}

VentanaHost::~VentanaHost()
{
    delete m_documento;
}

QWidget *VentanaHost::paginaActual() const
{
    return m_centro->currentWidget();
}

void VentanaHost::Navegar(const QString &direccion, const QString &marco)
{
    Q_UNUSED(marco)
    // One line per address, even when an error description carries line breaks.
    QString linea = direccion;
    linea.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    std::fprintf(stderr, "%s\n", qPrintable(linea));
    std::fflush(stderr);
    // The document may call from inside its own start-up; replace it only afterwards.
    QTimer::singleShot(0, this, [this, direccion] { actuar(direccion); });
}

void VentanaHost::actuar(const QString &direccion)
{
    switch (ComandoHost::TipoDe(direccion)) {
    case ComandoHost::Tipo::Error:
        MostrarError(ComandoHost::Parametro(direccion));
        break;
    case ComandoHost::Tipo::AccesoDenegado:
        MostrarAccesoDenegado(ComandoHost::Parametro(direccion));
        break;
    case ComandoHost::Tipo::Ayuda:
        MostrarAyuda(ComandoHost::PaginaAyuda(direccion));
        break;
    case ComandoHost::Tipo::Otro:
        break;
    }
}

QTextBrowser *VentanaHost::pagina(const QString &nombre, const QString &html)
{
    auto *p = new QTextBrowser(m_centro);
    p->setObjectName(nombre);
    p->setHtml(html);
    m_centro->addWidget(p);
    m_centro->setCurrentWidget(p);
    return p;
}

void VentanaHost::MostrarError(const QString &descripcion)
{
    const QString cuerpo = QStringLiteral("<p>%1</p>").arg(texto(2101))
                         + (descripcion.isEmpty() ? QString() : QStringLiteral("<p><b>%1</b></p>").arg(escapar(descripcion)));
    QTextBrowser *p = pagina(QStringLiteral("paginaError"), hoja(texto(2102), cuerpo));
    p->setAccessibleName(descripcion.isEmpty() ? texto(2102) : descripcion);
}

void VentanaHost::MostrarAccesoDenegado(const QString &aplicacion)
{
    const QString cuerpo = QStringLiteral("<p>%1</p><p>%2</p>").arg(texto(2103).arg(escapar(aplicacion)), texto(2104));
    QTextBrowser *p = pagina(QStringLiteral("paginaAccesoDenegado"), hoja(texto(2105), cuerpo));
    p->setAccessibleName(texto(2105));
}

void VentanaHost::MostrarAyuda(const QString &archivo)
{
    m_ultimaAyuda = archivo;
    if (!m_visorAyuda) {
        auto *visor = new QDialog(this);
        visor->setObjectName(QStringLiteral("visorAyuda"));
        visor->setWindowTitle(this->texto(1090));
        visor->resize(720, 560);
        auto *texto = new QTextBrowser(visor);
        texto->setObjectName(QStringLiteral("textoAyuda"));
        texto->setSearchPaths({QStringLiteral(":/help")});
        texto->setOpenExternalLinks(false);
        auto *botones = new QDialogButtonBox(QDialogButtonBox::Close, visor);
        botones->button(QDialogButtonBox::Close)->setText(this->texto(1165));
        connect(botones, &QDialogButtonBox::rejected, visor, &QDialog::close);
        auto *capa = new QVBoxLayout(visor);
        capa->addWidget(texto);
        capa->addWidget(botones);
        m_visorAyuda = visor;
    }
    auto *texto = m_visorAyuda->findChild<QTextBrowser *>(QStringLiteral("textoAyuda"));
    // The page in the document's language, or in the one asked for before a document loaded it.
    const QString recurso = ComandoHost::RecursoAyuda(archivo, Idioma::Numero() > 0 ? Idioma::Numero() : m_idioma);
    if (QFile::exists(recurso))
        texto->setSource(QUrl(QStringLiteral("qrc") + recurso));
    else
        texto->setHtml(hoja(this->texto(1090), QStringLiteral("<p>%1</p>").arg(this->texto(2106).arg(escapar(archivo)))));
    m_visorAyuda->show();
    m_visorAyuda->raise();
}
