#pragma once

#include "editing/sesion.h"
#include "currency/catalogomonedas.h"
#include "store/conexion.h"

#include <memory>

// What every document of one process shares: the company chosen, the clock, the connection
// opened by the first document to start (it reads the same clock), the system parameters
// and the currency catalogue read over it. The host creates one and hands it to each
// document it opens.
struct Proceso
{
    qint32 IDEmpresa = 0;
    std::shared_ptr<Reloj> reloj = std::make_shared<Reloj>();
    std::shared_ptr<Conexion> conexion;
    ParametrosSistema parametros;
    CatalogoMonedas monedas;
};
