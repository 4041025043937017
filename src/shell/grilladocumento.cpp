// The document's grid: views, the layout file, the grid events and the selection colours.
#include "lumingasiento.h"

#include "idioma.h"
#include "lumhiperlink.h"
#include "menusdocumento.h"
#include "currency/catalogomonedas.h"
#include "entries/vistas.h"
#include "entries/vsgrid.h"
#include "lineeditor/lumerasiento.h"
#include "services/serviciomensajes.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QStandardPaths>

void lumIngAsiento::ActualizarContexto()
{
    m_ctx.monedas = &Monedas();
    m_ctx.monedaContabilidad = m_empresa.monedaContabilidad;
    m_ctx.mostrarCodigoCta = m_empresa.mostrarCodigoCta;
    m_ctx.formatoFecha = m_formatoFecha.isEmpty() ? QStringLiteral("dd/mm/yyyy") : m_formatoFecha;
    m_ctx.texto = [](int n) { return Idioma::resLoad(n - 1000); };
    m_ctx.fuente = m_vsGrid->font();
    m_ctx.puntosPorPulgada = m_vsGrid->logicalDpiX();
    m_ctx.anchoClienteTwips = m_vsGrid->AnchoClienteTwips();
    m_ctx.AsiOrder = m_asiOrder;
    m_ctx.empresa = EmpresaProceso();
    m_ctx.delimitadorFecha = Parametros().delimitadorFecha;
    m_ctx.patronFecha = Parametros().formatoFecha;
}

void lumIngAsiento::CargarMonedas()
{
    if (ConexionCompartida())
        Monedas().CargarMonedas(*ConexionCompartida());
}

void lumIngAsiento::FormatoColumnasImporte()
{
    Monedas().FijarMonedaContabilidad(m_empresa.monedaContabilidad);
    const QString mascara = Monedas().DatoMoneda(0, 4).toString();
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
    MostrarVista();
    if (!ConexionCompartida())
        return;
    ActualizarContexto();
    int fila = -1;
    const auto fallo = ::CargarAsientos(m_asientos, *ConexionCompartida(), hlCargar->Tag.toInt(), sql,
                                        QDate::currentDate(), m_mesVista, &fila);
    if (fallo)
        MostrarFallo(*fallo);
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
    QDate menor;
    try {
        if (ConexionCompartida())
            menor = MenorFechaCierre(*ConexionCompartida());
    } catch (const ErrorBaseDatos &) {
        // Without the closing dates the months are shown without "(cerrado)".
    }
    const auto meses = MesesDelMenu(QDate::currentDate(), menor, [](int n) { return Idioma::resLoad(n - 1000); });
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
    if (QFileInfo::exists(ruta) && m_grilla.Cargar(ruta)) {
        for (int r = m_grilla.FilasFijas(); r < m_grilla.Filas(); ++r)
            if (m_asientos.EsFilaCabezal(r))
                m_asientos.ClaveEstado(r, qint16(m_grilla.Dato(r, 3).toInt()));
        // The captions follow the language in use, not the one of the saved layout.
        m_grilla.FijarEncabezados(Idioma::resLoad(60));
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
    if (m_filaEdicion > 0)
        SalirEdicion();
    QDir().mkpath(QFileInfo(ruta).absolutePath());
    QString error;
    if (!m_grilla.Guardar(ruta, &error))
        qWarning("No se pudo guardar el diseño de la grilla en %s: %s", qPrintable(ruta), qPrintable(error));
}

int lumIngAsiento::FilasDeDatosGrilla() const
{
    return m_grilla.Filas() - m_grilla.FilasFijas();
}

void lumIngAsiento::CargarAsientoPendiente(qint32 idAsiento)
{
    if (!ConexionCompartida())
        return;
    ActualizarContexto();
    if (const auto fallo = CargarAsientoEnGrilla(m_asientos, *ConexionCompartida(), idAsiento, m_grilla.Filas() - 1))
        MostrarFallo(*fallo);
}

void lumIngAsiento::OrdenarCuentasGrilla()
{
    // Reordering moves rows under the open line editor: the edit is finished first.
    if (m_filaEdicion > 0)
        SalirEdicion();
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

void lumIngAsiento::SeleccionarFila(int fila)
{
    if (fila < m_grilla.FilasFijas() || fila >= m_grilla.Filas())
        return;
    m_vsGrid->FijarFilaActual(fila);
    vsGrid_FilaActual();
}

void lumIngAsiento::vsGrid_Click()
{
    if (m_filaEdicion > 0) {
        SalirEdicion();
        return;
    }
    const int fila = m_vsGrid->FilaActual();
    if (fila == m_filaRecordada)
        EntrarEdicion(fila);
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
        *atendida = EliminarConTecla(fila);
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (m_filaEdicion <= 0) {
            const int destino = fila + (tecla == Qt::Key_Up ? -1 : 1);
            if (destino >= m_grilla.FilasFijas() && destino < m_grilla.Filas())
                m_filaRecordada = destino;
        }
        break;
    case Qt::Key_Menu:
        if (m_filaEdicion <= 0) {
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
    if (ascii == 13 || ascii == 27) {
        *atendida = TeclaEdicion(ascii);
        return;
    }
    const int columna = m_vsGrid->currentIndex().column();
    if (m_filaEdicion <= 0 && (columna == 0 || columna == 1) && EntrarEdicion(m_vsGrid->FilaActual())) {
        // The key typed on the grid is the first of the account.
        oraEdit->SetFocusCtrl(columna == 0 ? lumERAsiento::kDebe : lumERAsiento::kHaber, ascii);
        *atendida = true;
    }
}

void lumIngAsiento::vsGrid_MouseDown(Qt::MouseButton boton, const QPoint &posicion)
{
    if (boton != Qt::RightButton)
        return;
    // While a line is open the menu acts on the entry being edited: the row stays.
    const int fila = m_vsGrid->rowAt(posicion.y());
    if (m_filaEdicion > 0)
        SeleccionarFila(m_filaEdicion);
    else if (fila >= 0)
        SeleccionarFila(fila + m_grilla.FilasFijas());
    PrepararMenuEdicion();
    m_menus->MnuEdicion->popup(m_vsGrid->viewport()->mapToGlobal(posicion));
}

void lumIngAsiento::MenuEdicionEnCelda()
{
    PrepararMenuEdicion();
    const QRect celda = m_vsGrid->visualRect(m_vsGrid->currentIndex());
    m_menus->MnuEdicion->popup(m_vsGrid->viewport()->mapToGlobal(celda.bottomLeft()));
}

// The state caption and the save command follow the entry of the current row.
void lumIngAsiento::PrepararMenuEdicion()
{
    const int fila = m_vsGrid->FilaActual();
    const bool hayAsiento = m_asientos.FilaCabezalDe(fila) >= 0;
    const qint16 estado = hayAsiento ? m_asientos.EstadoDeFila(fila) : 0;
    QAction *info = m_menus->accion(QStringLiteral("MnuEdiShowEstado"));
    const int texto = hayAsiento ? TextoMenuEstado(estado) : 0;
    info->setVisible(hayAsiento && estado <= 0);
    info->setText(texto ? Idioma::resLoad(texto - 1000) : QString());
    m_menus->accion(QStringLiteral("MnuEdiLineEstado"))->setVisible(info->isVisible());
    QAction *grabar = m_menus->accion(QStringLiteral("MnuEdiSaveNormal"));
    grabar->setText(Idioma::resLoad(hayAsiento && estado == EstadoAsiento::kRegistrado ? 36 : 23));
}

void lumIngAsiento::vsGrid_FilaActual()
{
    if (!m_asientos.listo)
        return;
    const int fila = m_vsGrid->FilaActual();
    const QColor textoSeleccion = QApplication::palette().color(QPalette::Highlight);
    QColor fondo = QApplication::palette().color(QPalette::ToolTipBase);
    if (m_filaEdicion <= 0) {
        if (fila >= m_grilla.FilasFijas() && fila < m_grilla.Filas() && m_grilla.Dato(fila, 0).toInt() != 0
            && !m_grilla.Dato(fila, 1).isValid())
            fondo = QColor::fromRgba(ColoresGrilla::kSeleccionCabezal);
    } else if (fila == m_grilla.Filas() - 1) {
        fondo = m_vsGrid->palette().color(QPalette::Base);
    }
    m_vsGrid->FijarColoresSeleccion(fondo, textoSeleccion);
}
