#include "frecuentesdeasiento.h"

#include "comandosasiento.h"
#include "frecuentesrecientes.h"

#include "entries/frecuentesdatos.h"
#include "services/ocupado.h"
#include "store/valoressql.h"

FrecuentesDeAsiento::FrecuentesDeAsiento(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_comandos(comandos)
{
}

void FrecuentesDeAsiento::AgendarAsiento()
{
    m_comandos.TomarAsientoDeFilaActual();
    // The entry stays where it is: it is this month's, and the schedule goes on from the
    // next one.
    if (m_asientos.Cabezal.FilaCabezal >= 0 && m_asientos.Cabezal.AsiEstado != EstadoAsiento::kInconcluso)
        CrearMovimientoFrecuente(true, true);
    m_asientos.ResetCabezal();
}

qint32 FrecuentesDeAsiento::CrearMovimientoFrecuente(bool agendar, bool desdeElMesSiguiente)
{
    if (m_asientos.Cabezal.FilaCabezal < 0)
        m_comandos.TomarAsientoDeFilaActual();
    const CabezalAsiento &c = m_asientos.Cabezal;
    if (c.FilaCabezal < 0 || c.AsiEstado == EstadoAsiento::kInconcluso || !m_datos.conexion())
        return 0;
    Ocupado ocupado;
    CabezalDatos cabezal;
    cabezal.Empresa = m_datos.idEmpresa();
    cabezal.Fecha = c.AsiFechaAsiento;
    cabezal.Leyenda = c.AsiLeyenda;
    cabezal.Libro = c.AsiTipo;
    // A system book is the system's: a template of such an entry registers in the
    // company's default book (the first by name without one).
    if (m_datos.librosSistema().EsDelSistema(c.AsiTipo)) {
        // Without its book the template would register nowhere: none is made.
        const auto comun = m_datos.Leido(m_comandos.LibroComun(), 1908);
        if (!comun)
            return 0;
        cabezal.Libro = *comun ? (*comun)->second : qint16(0);
    }
    cabezal.Autoriza = c.AsiUsuarioVerificador;
    cabezal.Usuario = m_datos.usuario;
    QVector<qint16> monedas;
    const QVector<LineaDatos> lineas = m_asientos.LineasParaGrabar(&monedas);
    FrecuentesDatos frecuentes(*m_datos.conexion(), m_datos.texto);
    const QString nombre = cabezal.Leyenda.isEmpty() ? FormatoFechaSuite(cabezal.Fecha, QTime(0, 0), m_datos.formatoFecha) : cabezal.Leyenda;
    qint32 id = 0;
    if (const auto fallo = frecuentes.Crear(cabezal, lineas, monedas, agendar, nombre, desdeElMesSiguiente, id)) {
        m_comandos.DecirRechazo(*fallo, 1908);
        return 0;
    }
    // A frequent entry made to be registered again is one of the user's recent ones.
    if (!agendar) {
        // The template is stored; only the shortcut to it is missing, and the user is told.
        if (const auto fallo = FrecuentesRecientes(m_datos).Agregar(id))
            m_datos.Error(1920, fallo->detalle);
    }
    return id;
}

bool FrecuentesDeAsiento::AgendarEnLugarDelAsiento()
{
    const CabezalAsiento &c = m_asientos.Cabezal;
    const qint32 id = c.AsiID;
    const QDateTime sello = c.AsiFechaModificado;
    if (id <= 0 || !m_datos.conexion())
        return false;
    Ocupado ocupado;
    // The template and the deletion go together: when the entry changed since it was read,
    // neither is kept.
    const auto hecho = EnTransaccion(*m_datos.conexion(), [&] {
        if (CrearMovimientoFrecuente(true) <= 0)
            return false;
        AsientoDatos datos = m_comandos.NuevoAsientoDatos();
        if (const auto fallo = datos.EliminarDefinitivo(id, sello)) {
            m_comandos.DecirRechazo(*fallo, 1921);
            return false;
        }
        return true;
    });
    if (!hecho)
        m_datos.Error(1921, hecho.fallo().detalle);
    if (!hecho || !*hecho)
        return false;
    m_grilla.FijarRedibujar(false);
    m_asientos.QuitarAsientoDeGrilla(id);
    m_grilla.FijarRedibujar(true);
    return true;
}
