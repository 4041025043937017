#pragma once

#include "comun/basesprueba.h"
#include "comun/textoscatalogo.h"

#include "editing/datosdocumento.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

// A document's session over a test database of the demo company, as a started document
// holds it: parameters, company, currencies, the administrator's rights, the messages of
// the scripted service. Catalogue texts are their numbers, so a test reads which message
// was shown; the words of the screens themselves (2000 and up) are the Spanish ones.
inline void PrepararDatosDocumento(DatosDocumento &datos, Conexion &conexion, ServicioMensajes &mensajes)
{
    auto proceso = std::make_shared<Proceso>();
    proceso->reloj = conexion.relojCompartido();
    proceso->IDEmpresa = Demo::kEmpresa;
    proceso->conexion = std::shared_ptr<Conexion>(&conexion, [](Conexion *) {}); // the database owns it
    bool leida = false;
    EXPECT_FALSE(CargarParametrosSistema(conexion, proceso->parametros));
    EXPECT_FALSE(LeerConfigEmpresa(conexion, Demo::kEmpresa, datos.empresa, leida));
    EXPECT_FALSE(proceso->monedas.CargarMonedas(conexion));
    proceso->monedas.FijarMonedaContabilidad(datos.empresa.monedaContabilidad);
    datos.proceso = proceso;
    datos.mensajes = &mensajes;
    datos.texto = [](int n) { return n >= 2000 ? TextoEspanol(n) : QString::number(n); };
    datos.usuario = Demo::kUsuarioAdministrador;
    datos.letras = QStringLiteral("AMEQ");
    datos.formatoFecha = QStringLiteral("dd/mm/yyyy");
}

// The process a test document starts in: it runs on the test database's clock, which the
// document hands to the connection it opens.
inline std::shared_ptr<Proceso> ProcesoDePrueba(const BaseDePrueba &base)
{
    auto proceso = std::make_shared<Proceso>();
    proceso->reloj = base.reloj();
    return proceso;
}
