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
    const auto m = m_datos.Leido(FrecuentesDatos(*m_datos.conexion()).Leer(id), 1908);
    if (!m || !*m || (*m)->Agendado())
        return;
    if (const auto fallo = FrecuentesRecientes(m_datos).Agregar(id))
        m_datos.Error(1908, fallo->detalle);
}

int ComandosFrecuentes::RegistrarFrecuente(qint32 mfrID)
{
    if (!m_datos.conexion())
        return -1;
    RegistroFrecuentes registro(m_datos, m_busqueda, m_padre);
    const QString ids = registro.Registrar(mfrID);
    if (ids.isEmpty())
        return -1;
    if (const auto fallo = FrecuentesRecientes(m_datos).Agregar(registro.FrecuenteRegistrado()))
        m_datos.Error(1912, fallo->detalle);
    Grilla &grilla = m_asientos.grilla();
    const int fila = grilla.Filas() - 1;
    for (const QString &id : ids.split(QLatin1Char(','), Qt::SkipEmptyParts))
        m_comandos.CargarAsiento(id.toInt(), grilla.Filas() - 1);
    return fila;
}

QList<std::pair<QString, qint32>> ComandosFrecuentes::Recientes()
{
    return m_datos.Leido(FrecuentesRecientes(m_datos).CargarFrecuentesRecientes(), 1920).value_or(QList<std::pair<QString, qint32>>());
}
