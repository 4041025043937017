// The document's print and export commands: the grid as it is shown, handed to the
// print-preview view or written to a file the user picks.
#include "lumingasiento.h"

#include "idioma.h"
#include "menusdocumento.h"
#include "pvprevia.h"
#include "editing/sesion.h"
#include "editing/sesionedicion.h"
#include "grid/vsgrid.h"
#include "export/exportacion.h"
#include "export/impresiongrilla.h"
#include "services/serviciomensajes.h"

#include <QAction>
#include <QLabel>

void lumIngAsiento::conectarSalidas()
{
    m_pvPrevia = new pvPrevia(this, [this](int n) { return m_datos.texto(n); });
    m_impresion = std::make_unique<ImpresionGrilla>(m_grilla, *m_pvPrevia, [this] { m_vsGrid->setFocus(); },
                                                    m_vsGrid->logicalDpiX());

    auto alElegir = [this](const char *accion, auto funcion) {
        connect(m_menus->accion(QString::fromLatin1(accion)), &QAction::triggered, this, [this, funcion] {
            // A line being typed is finished first, so what is printed is what is stored.
            if (!TerminarEdicion())
                return;
            // Printing lays the grid out for paper and back, which lets go of the current
            // row: the user comes back to the row they were on.
            const int fila = m_vsGrid->FilaActual();
            funcion();
            if (fila >= m_grilla.FilasFijas() && fila < m_grilla.Filas() && m_vsGrid->FilaActual() != fila)
                m_vsGrid->FijarFilaActual(fila);
        });
    };
    alElegir("MnuPriPrevia", [this] { m_impresion->MnuPriPrevia(lbTitle->text(), m_datos.empresa.NombreEmpresa); });
    alElegir("MnuPriPrint", [this] { m_impresion->MnuPriPrint(lbTitle->text(), m_datos.empresa.NombreEmpresa); });
    alElegir("MnuPriCnfgPage", [this] { m_impresion->MnuPriCnfgPage(); });
    alElegir("MnuExpExcell", [this] { exportacion().MnuExpExcell(GrillaMostrada()); });
    alElegir("MnuExpCSV", [this] { exportacion().MnuExpCSV(GrillaMostrada()); });
    alElegir("MnuExpHtml", [this] { exportacion().MnuExpHtml(GrillaMostrada()); });
}

void lumIngAsiento::FijarSelectorArchivo(SelectorArchivo *selector)
{
    m_entorno.selectorArchivo = selector;
    m_exportacion.reset();
}

GrillaEnPantalla lumIngAsiento::GrillaMostrada() const
{
    GrillaEnPantalla g;
    g.grilla = const_cast<Grilla *>(&m_grilla);
    g.titulo = lbTitle->text();
    g.puntosPorPulgada = m_vsGrid->logicalDpiX();
    g.anchoControlTwips = m_vsGrid->AnchoClienteTwips();
    return g;
}

ExportacionGrilla &lumIngAsiento::exportacion()
{
    // Made on first use, once the session is known; it keeps its export folder from then on.
    if (!m_exportacion) {
        SelectorArchivo *selector = m_entorno.selectorArchivo;
        if (!selector) {
            m_selectorPropio = std::make_unique<SelectorArchivoQt>(this);
            selector = m_selectorPropio.get();
        }
        EntornoExportacion e;
        e.texto = m_datos.texto;
        e.error = [this](int numero, const QString &detalle) { m_datos.Error(numero, detalle); };
        e.informar = [this](const QString &texto) { m_datos.mensajes->Informar(texto); };
        e.confirmar = [this](const QString &texto) {
            return m_datos.mensajes->Preguntar(texto, ServicioMensajes::Botones::SiNo) == ServicioMensajes::Respuesta::Si;
        };
        e.selector = selector;
        e.carpetaDatos = ServicioConexion(m_entorno.ajustes).LeerAjuste(QStringLiteral("CarpetaDatos"));
        e.formatoFecha = m_datos.formatoFecha;
        e.empresa = m_datos.empresa.NombreEmpresa;
        e.edicion = NombreEdicion(m_host.ClaveSesion);
        e.reloj = m_datos.proceso->reloj;
        m_exportacion = std::make_unique<ExportacionGrilla>(std::move(e));
    }
    return *m_exportacion;
}
