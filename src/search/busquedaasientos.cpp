#include "busquedaasientos.h"

#include "consultabusqueda.h"
#include "frmfind.h"
#include "editing/datosdocumento.h"
#include "editing/pantalla.h"
#include "entries/vistas.h"


BusquedaAsientos::BusquedaAsientos(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla,
                                   ServicioBusquedaCuentas &cuentas, QWidget *dueno)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_pantalla(pantalla)
    , m_cuentas(cuentas)
    , m_dueno(dueno)
{
}

BusquedaAsientos::~BusquedaAsientos() = default;

frmFind &BusquedaAsientos::Dialogo()
{
    if (!m_dialogo) {
        frmFind::Listas listas;
        // The first list that cannot be read is told, and the later ones are left empty.
        auto leer = [this](const auto &resultado, QList<std::pair<QString, qint16>> &lista) {
            if (resultado)
                lista = *resultado;
            else
                m_datos.Error(1910, resultado.fallo().detalle);
            return bool(resultado);
        };
        if (leer(m_datos.LeerLibros(false), listas.libros) && leer(m_datos.LeerProyectos(), listas.proyectos))
            leer(m_datos.LeerDepartamentos(), listas.departamentos);
        m_dialogo = std::make_unique<frmFind>(m_datos, m_cuentas, listas, m_dueno);
        m_dialogo->ayuda = [this] {
            if (ayuda)
                ayuda();
        };
    }
    return *m_dialogo;
}

BusquedaAsientos::Resultado BusquedaAsientos::Buscar(bool mostrarDialogo)
{
    if (!m_datos.conexion())
        return Resultado::SinCambios;
    frmFind &dialogo = Dialogo();
    dialogo.criterios.prmKey = claveSesion;
    if (mostrarDialogo) {
        dialogo.criterios.FindOK = false;
        dialogo.exec();
        if (!dialogo.criterios.FindOK)
            return Resultado::SinCambios;
        m_confirmados = dialogo.criterios;
    } else if (!m_confirmados.FindOK) {
        return Resultado::SinCambios; // no search was confirmed yet
    }
    QString sql;
    if (const auto fallo = SqlBusqueda(m_confirmados, m_datos.idEmpresa(), m_datos.parametros().delimitadorFecha,
                                       m_datos.parametros().formatoFecha, sql)) {
        m_datos.MostrarFallo(*fallo);
        return Resultado::SinCambios;
    }
    m_pantalla.ActualizarContexto();
    int fila = -1;
    if (const auto fallo = CargarAsientos(m_asientos, *m_datos.conexion(), Vista::kPersonalizada, sql,
                                          m_datos.reloj().Hoy(), QDate(), &fila)) {
        m_datos.Error(1927, fallo->detalle);
        return Resultado::Fallida;
    }
    m_pantalla.SeleccionarFila(fila >= 0 ? fila : m_asientos.grilla().FilasFijas());
    return Resultado::Cargada;
}
