#pragma once

#include "comun/mensajesguionados.h"

#include "shell/lumingasiento.h"

// The company id belongs to the process; each test starts without one.
inline void OlvidarEmpresaDelProceso()
{
    MensajesGuionados callados;
    EntornoDocumento e;
    e.mensajes = &callados;
    lumIngAsiento(std::move(e)).setIDEmpresa(0);
}
