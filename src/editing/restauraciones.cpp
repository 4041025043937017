#include "restauraciones.h"

#include "entries/historialasiento.h"
#include "services/serviciomensajes.h"
#include "store/fallo.h"

namespace {

// An entry as the history keeps it, without the stamps a write changes by itself.
QJsonObject contenido(QJsonObject version)
{
    version.remove(QStringLiteral("FechaModificado"));
    version.remove(QStringLiteral("FechaEstado"));
    return version;
}

} // namespace

ComandosRestauracion::ComandosRestauracion(DatosDocumento &datos, ComandosAsiento &comandos, AsientosGrilla &asientos,
                                           PantallaAsientos &pantalla)
    : m_datos(datos)
    , m_comandos(comandos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_pantalla(pantalla)
{
}

std::optional<QList<ComandosRestauracion::EnPapelera>> ComandosRestauracion::Papelera() const
{
    if (!m_datos.conexion())
        return std::nullopt;
    auto lista = HistorialAsiento::Papelera(*m_datos.conexion(), m_datos.idEmpresa());
    if (!lista) {
        m_datos.Error(1916, lista.fallo().detalle);
        return std::nullopt;
    }
    return *lista;
}

bool ComandosRestauracion::RestaurarDePapelera(const EnPapelera &e)
{
    if (!m_datos.TienePermiso(u'E') || !m_datos.conexion())
        return false;
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    QJsonObject version = e.antes;
    if (version.isEmpty()) {
        // No history of how it was: it comes back as a draft, which registers nothing.
        const auto guardado = HistorialAsiento::Guardado(*m_datos.conexion(), e.asiID);
        if (!guardado) {
            m_datos.Error(1924, guardado.fallo().detalle);
            return false;
        }
        version = *guardado;
        version.insert(QStringLiteral("Estado"), EstadoAsiento::kBorrador);
    }
    if (const auto fallo = datos.RestaurarVersion(e.asiID, version, e.sello)) {
        m_comandos.DecirRechazo(*fallo, 1924);
        return false;
    }
    return mostrarEnGrilla(e.asiID);
}

bool ComandosRestauracion::EliminarDePapelera(const EnPapelera &e)
{
    if (!m_datos.TienePermiso(u'E') || !m_datos.conexion() || !m_datos.Preguntar(1966))
        return false;
    const auto fallo = m_comandos.NuevoAsientoDatos().EliminarDefinitivo(e.asiID, e.sello);
    if (fallo)
        m_comandos.DecirRechazo(*fallo, 1921);
    return !fallo;
}

bool ComandosRestauracion::RestaurarVersion(qint32 asiID, const QJsonObject &version, const QDateTime &selloLeido)
{
    if (!m_datos.TienePermiso(u'M') || !m_datos.conexion() || version.isEmpty())
        return false;
    const auto guardado = HistorialAsiento::Guardado(*m_datos.conexion(), asiID);
    if (!guardado) {
        m_datos.Error(1924, guardado.fallo().detalle);
        return false;
    }
    if (contenido(*guardado) == contenido(version)) {
        m_datos.Informar(1965);
        return false;
    }
    if (!m_datos.Preguntar(1964))
        return false;
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    if (const auto fallo = datos.RestaurarVersion(asiID, version, selloLeido)) {
        m_comandos.DecirRechazo(*fallo, 1924);
        return false;
    }
    return mostrarEnGrilla(asiID);
}

// The session's last write whose history row exists (a write rolled back left none).
Resultado<std::optional<ComandosRestauracion::Escritura>> ComandosRestauracion::ultimaEscritura()
{
    if (!m_datos.conexion())
        return std::optional<Escritura>();
    QList<qint64> &escrituras = m_datos.conexion()->escrituras();
    while (!escrituras.isEmpty()) {
        const auto fila = HistorialAsiento::LeerFila(*m_datos.conexion(), escrituras.last());
        if (!fila)
            return fila.fallo();
        if (*fila) {
            Escritura e;
            e.id = (*fila)->id;
            e.asiID = (*fila)->asiento;
            e.operacion = (*fila)->operacion;
            e.antes = (*fila)->antes;
            e.despues = (*fila)->despues;
            return std::optional<Escritura>(e);
        }
        escrituras.removeLast();
    }
    return std::optional<Escritura>();
}

QString ComandosRestauracion::TextoDeshacer()
{
    // When the history cannot be read the item is left off; Deshacer says why when asked.
    const auto e = ultimaEscritura();
    if (!e || !*e)
        return {};
    QString texto = m_datos.texto(1167);
    texto.replace(QLatin1String("[p1]"), QString::number((*e)->asiID));
    texto.replace(QLatin1String("[p]"), HistorialAsiento::NombreOperacion((*e)->operacion, m_datos.texto).toLower());
    return texto;
}

bool ComandosRestauracion::Deshacer()
{
    if (!m_datos.TienePermiso(u'M') || !m_datos.conexion())
        return false;
    const auto ultima = ultimaEscritura();
    if (!ultima) {
        m_datos.Error(1924, ultima.fallo().detalle);
        return false;
    }
    const std::optional<Escritura> &e = *ultima;
    if (!e)
        return false;
    if (e->operacion == QLatin1String(HistorialAsiento::kEliminacion)) {
        QString texto = m_datos.texto(1963);
        texto.replace(QLatin1String("[p]"), QString::number(e->asiID));
        m_datos.mensajes->MostrarError(texto, m_datos.texto(1000), QString());
        m_datos.conexion()->escrituras().removeAll(e->id);
        return false;
    }
    // The entry must still be as that write left it (a later write of this session was
    // undone first): then its stamp now is the one the undoing compares.
    const auto sellos = LeerSellos(*m_datos.conexion(), {e->asiID});
    if (!sellos) {
        m_datos.Error(1924, sellos.fallo().detalle);
        return false;
    }
    const QDateTime sello = sellos->value(e->asiID).sello;
    const auto guardado = HistorialAsiento::Guardado(*m_datos.conexion(), e->asiID);
    if (!guardado) {
        m_datos.Error(1924, guardado.fallo().detalle);
        return false;
    }
    if (contenido(*guardado) != contenido(e->despues)) {
        m_datos.Error(1820);
        return false;
    }
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    QList<qint64> &escrituras = m_datos.conexion()->escrituras();
    const qsizetype anotadas = escrituras.size();
    // A write that made the entry is undone by sending the entry to the trash.
    const auto fallo = e->antes.isEmpty() ? datos.EnviarPapelera(e->asiID, sello)
                                          : datos.RestaurarVersion(e->asiID, e->antes, sello, true);
    if (fallo) {
        m_comandos.DecirRechazo(*fallo, 1924);
        return false;
    }
    // The undone write leaves the list, and the undoing is none to undo in turn.
    escrituras.resize(std::min(anotadas, escrituras.size()));
    escrituras.removeAll(e->id);
    return mostrarEnGrilla(e->asiID);
}

bool ComandosRestauracion::mostrarEnGrilla(qint32 asiID)
{
    m_grilla.FijarRedibujar(false);
    int cabezal = m_asientos.FilaDeAsiento(asiID);
    if (cabezal >= 0) {
        m_comandos.RecargarAsiento(asiID, cabezal);
    } else {
        const auto sellos = LeerSellos(*m_datos.conexion(), {asiID});
        if (!sellos) {
            m_grilla.FijarRedibujar(true);
            m_asientos.ResetCabezal();
            m_datos.Error(1924, sellos.fallo().detalle);
            return false;
        }
        const SelloGuardado guardado = sellos->value(asiID);
        if (guardado.existe && guardado.estado != EstadoAsiento::kPapelera) {
            cabezal = m_grilla.Filas() - 1; // before the closing "Nuevo Asiento" row
            m_comandos.CargarAsiento(asiID, cabezal);
        }
    }
    m_grilla.FijarRedibujar(true);
    m_asientos.ResetCabezal();
    if (cabezal >= 0)
        m_pantalla.SeleccionarFila(std::min(cabezal, m_grilla.Filas() - 1));
    return true;
}
