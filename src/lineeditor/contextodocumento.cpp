#include "contextodocumento.h"

#include "editing/datosdocumento.h"

ContextoLinea ContextoDeDocumento(const DatosDocumento &datos, ServicioBusquedaCuentas &busqueda)
{
    ContextoLinea c;
    c.conexion = datos.conexion();
    c.monedas = &datos.monedas();
    c.mensajes = datos.mensajes;
    c.busqueda = &busqueda;
    c.empresa = datos.idEmpresa();
    c.monedaContabilidad = datos.empresa.monedaContabilidad;
    c.mostrarCodigoCta = datos.empresa.mostrarCodigoCta;
    c.tipoTCComprobantes = datos.empresa.tipoTCComprobantes;
    c.reglas = datos.reglasCotizacion();
    c.texto = datos.texto;
    return c;
}
