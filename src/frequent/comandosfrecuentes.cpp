#include "comandosfrecuentes.h"

#include "movimientosfrecuentes.h"
#include "registrofrecuentes.h"

#include "editing/comandosasiento.h"
#include "editing/frecuentesrecientes.h"
#include "entries/frecuentesdatos.h"

ComandosFrecuentes::ComandosFrecuentes(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos,
                                       ServicioBusquedaCuentas &busqueda, QWidget *padre)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_comandos(comandos)
    , m_busqueda(busqueda)
    , m_padre(padre)
{
}

void ComandosFrecuentes::NuevoFrecuente()
{
    if (!m_datos.conexion())
        return;
    MovimientosFrecuentes dialogo(m_datos, m_busqueda, m_padre);
    const qint32 id = dialogo.Editar(0);
    if (id <= 0)
        return;
    try {
        const auto m = FrecuentesDatos(*m_datos.conexion()).Leer(id);
        if (m && !m->Agendado())
            FrecuentesRecientes(m_datos).Agregar(id);
    } catch (const ErrorBaseDatos &e) {
        m_datos.Error(1908, DetalleError(e.numero(), e.descripcion()));
    }
}

int ComandosFrecuentes::RegistrarFrecuente(qint32 mfrID)
{
    if (!m_datos.conexion())
        return -1;
    RegistroFrecuentes registro(m_datos, m_busqueda, m_padre);
    const QString ids = registro.Registrar(mfrID);
    if (ids.isEmpty())
        return -1;
    try {
        FrecuentesRecientes(m_datos).Agregar(registro.FrecuenteRegistrado());
    } catch (const ErrorBaseDatos &e) {
        m_datos.Error(1912, DetalleError(e.numero(), e.descripcion()));
    }
    Grilla &grilla = m_asientos.grilla();
    const int fila = grilla.Filas() - 1;
    for (const QString &id : ids.split(QLatin1Char(','), Qt::SkipEmptyParts))
        m_comandos.CargarAsiento(id.toInt(), grilla.Filas() - 1);
    return fila;
}

QList<std::pair<QString, qint32>> ComandosFrecuentes::Recientes()
{
    try {
        return FrecuentesRecientes(m_datos).CargarFrecuentesRecientes();
    } catch (const ErrorBaseDatos &e) {
        m_datos.Error(1920, DetalleError(e.numero(), e.descripcion()));
        return {};
    }
}
