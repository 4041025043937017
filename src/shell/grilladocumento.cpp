// The document's grid: views, the layout file, the grid events and the selection colours.
#include "lumingasiento.h"

#include "idioma.h"
#include "lumhiperlink.h"
#include "menusdocumento.h"
#include "currency/catalogomonedas.h"
#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "editing/asientoapertura.h"
#include "editing/comandosasiento.h"
#include "editing/comandosasientoentero.h"
#include "editing/sesionedicion.h"
#include "lineeditor/lumerasiento.h"
#include "paneledicion.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QStandardPaths>

void lumIngAsiento::ActualizarContexto()
{
    m_ctx.monedas = &m_datos.monedas();
    m_ctx.monedaContabilidad = m_datos.empresa.monedaContabilidad;
    m_ctx.mostrarCodigoCta = m_datos.empresa.mostrarCodigoCta;
    m_ctx.formatoFecha = m_datos.formatoFecha.isEmpty() ? QStringLiteral("dd/mm/yyyy") : m_datos.formatoFecha;
    m_ctx.texto = m_datos.texto;
    m_ctx.fuente = m_vsGrid->font();
    m_ctx.puntosPorPulgada = m_vsGrid->logicalDpiX();
    m_ctx.anchoClienteTwips = m_vsGrid->AnchoClienteTwips();
    m_ctx.AsiOrder = m_asiOrder;
    m_ctx.empresa = m_datos.idEmpresa();
    m_ctx.delimitadorFecha = m_datos.parametros().delimitadorFecha;
    m_ctx.patronFecha = m_datos.parametros().formatoFecha;
}

void lumIngAsiento::FormatoColumnasImporte()
{
    m_datos.monedas().FijarMonedaContabilidad(m_datos.empresa.monedaContabilidad);
    const QString mascara = m_datos.monedas().DatoMoneda(0, 4).toString();
    m_grilla.FijarFormatoColumna(2, mascara);
    m_grilla.FijarFormatoColumna(3, mascara);
}

QString lumIngAsiento::VistaActual() const
{
    return hlCargar->Tag;
}

void lumIngAsiento::ElegirVista(int vista)
{
    if (vista >= Vista::kPrimerMes) {
        const int i = vista - Vista::kPrimerMes;
        if (i >= m_menus->MnuViewMItem.size())
            return;
        if (!m_menus->MnuViewMItem[i]->data().toDate().isValid())
            CargarMeses();
        m_mesVista = m_menus->MnuViewMItem[i]->data().toDate();
    }
    hlCargar->Tag = QString::number(vista);
    CargarAsientos(QString());
}

void lumIngAsiento::CargarVistaInicial()
{
    hlCargar->Tag = QStringLiteral("0");
    CargarAsientos(QString());
}

void lumIngAsiento::CargarAsientos(const QString &sql)
{
    // The grid is filled anew: an entry being edited is finished first, or nothing happens.
    if (!TerminarEdicion())
        return;
    MostrarVista();
    if (!m_datos.conexion())
        return;
    ActualizarContexto();
    int fila = -1;
    const auto fallo = ::CargarAsientos(m_asientos, *m_datos.conexion(), hlCargar->Tag.toInt(), sql,
                                        m_datos.reloj().Hoy(), m_mesVista, &fila);
    if (fallo)
        m_datos.MostrarFallo(*fallo);
    SeleccionarFila(fila >= 0 ? fila : m_grilla.FilasFijas());
    m_vsGrid->setFocus();
}

void lumIngAsiento::MostrarVista()
{
    const int vista = hlCargar->Tag.toInt();
    for (int i = 0; i < m_menus->MnuVieitem.size(); ++i)
        m_menus->MnuVieitem[i]->setChecked(i == vista);
    for (int i = 0; i < m_menus->MnuViewMItem.size(); ++i)
        m_menus->MnuViewMItem[i]->setChecked(Vista::kPrimerMes + i == vista);
    hlCargar->setText(CaptionVista(vista, m_mesVista, [](int n) { return Idioma::resLoad(n - 1000); }));
    hlCargar->setAccessibleName(hlCargar->text());
}

void lumIngAsiento::CargarMeses()
{
    // Without the closing dates the months are shown without "(cerrado)": the menu's
    // captions are no command, and the failure is not told here.
    QDate menor;
    if (m_datos.conexion())
        menor = MenorFechaCierre(*m_datos.conexion()).value_or(QDate());
    const auto meses = MesesDelMenu(m_datos.reloj().Hoy(), menor, [](int n) { return Idioma::resLoad(n - 1000); });
    for (int i = 0; i < meses.size() && i < m_menus->MnuViewMItem.size(); ++i) {
        QAction *a = m_menus->MnuViewMItem[i];
        a->setText(meses[i].caption);
        a->setData(meses[i].primerDia);
        a->setVisible(true);
    }
}

void lumIngAsiento::PrepararMenuVistas()
{
    CargarMeses();
    MostrarVista();
    m_menus->accion(QStringLiteral("MnuViePapelera"))->setEnabled(m_datos.TienePermiso(u'E'));
}

QString lumIngAsiento::RutaDisenoGrilla() const
{
    if (m_host.PrefijoUsuario.isEmpty())
        return {};
    // Without a working folder the layout goes to the user's data folder, never to the root.
    QString carpeta = m_host.CarpetaTemporal;
    if (carpeta.trimmed().isEmpty())
        carpeta = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QString ruta = carpeta + QStringLiteral("\\lg") + m_host.PrefijoUsuario + QStringLiteral("a.tgr");
#ifndef Q_OS_WIN
    // The host hands the folder over with "\" separators; this system uses "/".
    ruta.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
    return ruta;
}

void lumIngAsiento::CargarDisenoGrilla()
{
    const QString ruta = RutaDisenoGrilla();
    if (ruta.isEmpty())
        return;
    m_grilla.FijarRedibujar(false);
    // No file yet is the first start; anything else that is there (a link, even a broken
    // one, or a file that cannot be read) is reported, like a failed save.
    const QFileInfo info(ruta);
    const bool hayArchivo = info.exists() || info.isSymLink();
    QString error;
    const bool cargado = hayArchivo && m_grilla.Cargar(ruta, &error);
    if (hayArchivo && !cargado)
        qWarning("No se pudo leer el diseño de la grilla en %s: %s", qPrintable(ruta), qPrintable(error));
    if (cargado) {
        // The captions and the new-entry row follow the language in use, not the one of the
        // saved layout.
        for (int r = m_grilla.FilasFijas(); r < m_grilla.Filas(); ++r) {
            if (m_asientos.EsFilaCabezal(r))
                m_asientos.ClaveEstado(r, qint16(m_grilla.Dato(r, 3).toInt()));
            else if (m_asientos.EsFilaNuevoAsiento(r))
                m_grilla.FijarTexto(r, 0, m_datos.texto(1110));
        }
        m_grilla.FijarEncabezados(Idioma::resLoad(60));
        // The view caption names what the saved rows came from; a layout that does not
        // say shows its rows as a custom view.
        bool conVista = false;
        const int vista = m_grilla.Dato(0, 0).toInt(&conVista);
        m_mesVista = m_grilla.Dato(0, 1).toDate();
        hlCargar->Tag = QString::number(conVista && vista != Vista::kEnEdicion ? vista : Vista::kPersonalizada);
        MostrarVista();
        m_asientos.listo = true;
        vsGrid_FilaActual();
    }
    m_grilla.FijarRedibujar(true);
    m_vsGrid->AplicarAnchos();
}

void lumIngAsiento::GuardarDisenoGrilla()
{
    const QString ruta = RutaDisenoGrilla();
    if (ruta.isEmpty())
        return;
    if (FilaEdicion() > 0)
        m_edicion->SalirEdicion(SesionEdicion::Salida::Cierre);
    // The view the rows come from travels with them, in the heading row's data.
    const QString vista = hlCargar->Tag.toInt() == Vista::kEnEdicion && !m_vistaAntesDeEditar.isEmpty()
                              ? m_vistaAntesDeEditar
                              : hlCargar->Tag;
    m_grilla.FijarDato(0, 0, vista.toInt());
    m_grilla.FijarDato(0, 1, m_mesVista);
    QDir().mkpath(QFileInfo(ruta).absolutePath());
    QString error;
    if (!m_grilla.Guardar(ruta, &error))
        qWarning("No se pudo guardar el diseño de la grilla en %s: %s", qPrintable(ruta), qPrintable(error));
}

void lumIngAsiento::OrdenarCuentasGrilla()
{
    // Reordering moves rows under the open line editor: the edit is finished first.
    if (!TerminarEdicion())
        return;
    ActualizarContexto();
    m_grilla.FijarRedibujar(false);
    for (int r = m_grilla.FilasFijas(); r < m_grilla.Filas(); ++r) {
        if (!m_asientos.EsFilaCabezal(r))
            continue;
        m_asientos.TomarAsientoDeFila(r);
        m_asientos.OrdenarCuentas();
    }
    m_asientos.ResetCabezal();
    m_grilla.FijarRedibujar(true);
}

int lumIngAsiento::FilaDeAsiento(qint32 id) const
{
    return m_asientos.FilaDeAsiento(id);
}

void lumIngAsiento::SeleccionarFila(int fila)
{
    if (fila < m_grilla.FilasFijas() || fila >= m_grilla.Filas())
        return;
    m_vsGrid->FijarFilaActual(fila);
    vsGrid_FilaActual();
}

void lumIngAsiento::vsGrid_Click()
{
    if (FilaEdicion() > 0) {
        TerminarEdicion();
        return;
    }
    const int fila = m_vsGrid->FilaActual();
    if (fila == m_filaRecordada)
        m_edicion->EntrarEdicion(fila);
    else
        m_filaRecordada = fila;
}

void lumIngAsiento::vsGrid_KeyDown(int tecla, Qt::KeyboardModifiers modificadores, bool *atendida)
{
    if (modificadores & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier))
        return;
    const int fila = m_vsGrid->FilaActual();
    switch (tecla) {
    case Qt::Key_Delete:
        // The whole entry on its header row, the line on any other.
        if (FilaEdicion() <= 0 && m_asientos.FilaCabezalDe(fila) >= 0) {
            m_asientoEntero->EliminarAsiento(!m_asientos.EsFilaCabezal(fila));
            m_apertura->ActualizarExisteApertura();
            *atendida = true;
        }
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (FilaEdicion() <= 0) {
            const int destino = fila + (tecla == Qt::Key_Up ? -1 : 1);
            if (destino >= m_grilla.FilasFijas() && destino < m_grilla.Filas())
                m_filaRecordada = destino;
        }
        break;
    case Qt::Key_Menu:
        if (FilaEdicion() <= 0) {
            MenuEdicionEnCelda();
            *atendida = true;
        }
        break;
    default:
        break;
    }
}

void lumIngAsiento::vsGrid_KeyPress(int ascii, bool *atendida)
{
    if (ascii == 27 && FilaEdicion() > 0) {
        m_edicion->SalirEdicion(SesionEdicion::Salida::Escape);
        *atendida = true;
        return;
    }
    if (ascii == 13 || ascii == 27) {
        *atendida = ascii == 13 && FilaEdicion() <= 0 && m_edicion->EntrarEdicion(m_vsGrid->FilaActual());
        return;
    }
    const int columna = m_vsGrid->currentIndex().column();
    if (FilaEdicion() <= 0 && (columna == 0 || columna == 1) && m_edicion->EntrarEdicion(m_vsGrid->FilaActual())) {
        // The key typed on the grid is the first of the account.
        m_panel->editor()->SetFocusCtrl(columna == 0 ? lumERAsiento::kDebe : lumERAsiento::kHaber, ascii);
        *atendida = true;
    }
}

void lumIngAsiento::vsGrid_MouseDown(Qt::MouseButton boton, const QPoint &posicion)
{
    if (boton != Qt::RightButton)
        return;
    // While a line is open the menu acts on the entry being edited: the row stays.
    const int fila = m_vsGrid->rowAt(posicion.y());
    if (FilaEdicion() > 0)
        SeleccionarFila(FilaEdicion());
    else if (fila >= 0)
        SeleccionarFila(fila + m_grilla.FilasFijas());
    PrepararMenuEdicion();
    m_menus->MnuEdicion->popup(m_vsGrid->viewport()->mapToGlobal(posicion));
}

void lumIngAsiento::vsGrid_FilaActual()
{
    if (!m_asientos.listo)
        return;
    const int fila = m_vsGrid->FilaActual();
    const QColor textoSeleccion = QApplication::palette().color(QPalette::Highlight);
    QColor fondo = QApplication::palette().color(QPalette::ToolTipBase);
    if (FilaEdicion() <= 0) {
        if (fila >= m_grilla.FilasFijas() && fila < m_grilla.Filas() && m_grilla.Dato(fila, 0).toInt() != 0
            && !m_grilla.HayDato(fila, 1))
            fondo = QColor::fromRgba(ColoresGrilla::kSeleccionCabezal);
    } else if (fila == m_grilla.Filas() - 1) {
        fondo = m_vsGrid->palette().color(QPalette::Base);
    }
    m_vsGrid->FijarColoresSeleccion(fondo, textoSeleccion);
}

void lumIngAsiento::MarcarVistaEdicion(bool enEdicion)
{
    m_filaRecordada = -1;
    if (enEdicion) {
        if (m_vistaAntesDeEditar.isEmpty())
            m_vistaAntesDeEditar = hlCargar->Tag;
        hlCargar->Tag = QString::number(Vista::kEnEdicion);
        MostrarVista();
    } else {
        // A write of the edited entry may have made it the opening-balance entry.
        m_apertura->ActualizarExisteApertura();
        if (!m_vistaAntesDeEditar.isEmpty()) {
            hlCargar->Tag = m_vistaAntesDeEditar;
            m_vistaAntesDeEditar.clear();
            MostrarVista();
        }
    }
}
