#pragma once

#include "comun/mensajesguionados.h"

#include "shell/lumingasiento.h"
