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
    try {
        return leerPapelera();
    } catch (const ErrorBaseDatos &x) {
        m_datos.Error(1916, DetalleError(x.numero(), x.descripcion()));
        return std::nullopt;
    }
}

QList<ComandosRestauracion::EnPapelera> ComandosRestauracion::leerPapelera() const
{
    QList<EnPapelera> lista;
    Conexion &conexion = *m_datos.conexion();
    auto rs = conexion.Abrir(QStringLiteral("Select AsiID, AsiFechaAsiento, AsiLeyenda, AsiFechaEstado, AsiFechaModificado From cceAsientos"
                                            " Where AsiEmpresa = ? And AsiEstado = 9 Order By AsiFechaEstado Desc, AsiID Desc"),
                             {m_datos.idEmpresa()});
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        EnPapelera e;
        e.asiID = qint32(rs->Entero(QStringLiteral("AsiID")));
        e.fecha = rs->Fecha(QStringLiteral("AsiFechaAsiento"));
        e.leyenda = rs->Campo(QStringLiteral("AsiLeyenda")).toString().trimmed();
        e.enviadoEl = rs->FechaHora(QStringLiteral("AsiFechaEstado"));
        e.sello = rs->FechaHora(QStringLiteral("AsiFechaModificado"));
        lista.append(e);
    }
    rs->Cerrar();
    // Who sent each there, and what it was before, is the history's last row of it.
    for (EnPapelera &e : lista) {
        const std::optional<HistorialAsiento::Fila> ultima = HistorialAsiento::Ultimo(conexion, e.asiID);
        if (!ultima
            || (ultima->operacion != QLatin1String(HistorialAsiento::kPapelera)
                && ultima->despues.value(QStringLiteral("Estado")).toInt() != EstadoAsiento::kPapelera))
            continue;
        e.enviadoPor = ultima->nombreUsuario.isEmpty() ? QString::number(ultima->usuario) : ultima->nombreUsuario;
        e.enviadoEl = ultima->momento;
        if (ultima->antes.value(QStringLiteral("Estado")).toInt(EstadoAsiento::kPapelera) != EstadoAsiento::kPapelera)
            e.antes = ultima->antes;
    }
    return lista;
}

bool ComandosRestauracion::RestaurarDePapelera(const EnPapelera &e)
{
    if (!m_datos.TienePermiso(u'E') || !m_datos.conexion())
        return false;
    try {
        AsientoDatos datos = m_comandos.NuevoAsientoDatos();
        QJsonObject version = e.antes;
        if (version.isEmpty()) {
            // No history of how it was: it comes back as a draft, which registers nothing.
            version = HistorialAsiento::LeerGuardado(*m_datos.conexion(), e.asiID);
            version.insert(QStringLiteral("Estado"), EstadoAsiento::kBorrador);
        }
        if (const auto fallo = datos.RestaurarVersion(e.asiID, version, e.sello)) {
            m_comandos.DecirRechazo(*fallo, 1924);
            return false;
        }
        mostrarEnGrilla(e.asiID);
        return true;
    } catch (const ErrorBaseDatos &x) {
        m_datos.Error(1924, DetalleError(x.numero(), x.descripcion()));
        return false;
    }
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
    try {
        if (contenido(HistorialAsiento::LeerGuardado(*m_datos.conexion(), asiID)) == contenido(version)) {
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
        mostrarEnGrilla(asiID);
        return true;
    } catch (const ErrorBaseDatos &x) {
        m_datos.Error(1924, DetalleError(x.numero(), x.descripcion()));
        return false;
    }
}

// The session's last write whose history row exists (a write rolled back left none).
std::optional<ComandosRestauracion::Escritura> ComandosRestauracion::ultimaEscritura()
{
    if (!m_datos.conexion())
        return std::nullopt;
    QList<qint64> &escrituras = m_datos.conexion()->escrituras();
    while (!escrituras.isEmpty()) {
        const std::optional<HistorialAsiento::Fila> fila = HistorialAsiento::LeerFila(*m_datos.conexion(), escrituras.last());
        if (fila) {
            Escritura e;
            e.id = fila->id;
            e.asiID = fila->asiento;
            e.operacion = fila->operacion;
            e.antes = fila->antes;
            e.despues = fila->despues;
            return e;
        }
        escrituras.removeLast();
    }
    return std::nullopt;
}

QString ComandosRestauracion::TextoDeshacer()
{
    const std::optional<Escritura> e = ultimaEscritura();
    if (!e)
        return {};
    QString texto = m_datos.texto(1167);
    texto.replace(QLatin1String("[p1]"), QString::number(e->asiID));
    texto.replace(QLatin1String("[p]"), HistorialAsiento::NombreOperacion(e->operacion).toLower());
    return texto;
}

bool ComandosRestauracion::Deshacer()
{
    if (!m_datos.TienePermiso(u'M') || !m_datos.conexion())
        return false;
    try {
        const std::optional<Escritura> e = ultimaEscritura();
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
        const QDateTime sello = LeerSellos(*m_datos.conexion(), {e->asiID}).value(e->asiID).sello;
        if (contenido(HistorialAsiento::LeerGuardado(*m_datos.conexion(), e->asiID)) != contenido(e->despues)) {
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
        mostrarEnGrilla(e->asiID);
        return true;
    } catch (const ErrorBaseDatos &x) {
        m_datos.Error(1924, DetalleError(x.numero(), x.descripcion()));
        return false;
    }
}

void ComandosRestauracion::mostrarEnGrilla(qint32 asiID)
{
    m_grilla.FijarRedibujar(false);
    int cabezal = m_asientos.FilaDeAsiento(asiID);
    if (cabezal >= 0) {
        m_comandos.RecargarAsiento(asiID, cabezal);
    } else {
        const SelloGuardado guardado = LeerSellos(*m_datos.conexion(), {asiID}).value(asiID);
        if (guardado.existe && guardado.estado != EstadoAsiento::kPapelera) {
            cabezal = m_grilla.Filas() - 1; // before the closing "Nuevo Asiento" row
            m_comandos.CargarAsiento(asiID, cabezal);
        }
    }
    m_grilla.FijarRedibujar(true);
    m_asientos.ResetCabezal();
    if (cabezal >= 0)
        m_pantalla.SeleccionarFila(std::min(cabezal, m_grilla.Filas() - 1));
}
