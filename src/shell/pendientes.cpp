// Command hooks whose work belongs to search, the opening-balance entry and the frequent-entry
// components. Each is called where the document needs it; none does anything yet.
#include "lumingasiento.h"

void lumIngAsiento::BuscarAsientoApertura() {}
void lumIngAsiento::MostrarAvisoApertura() {}
void lumIngAsiento::MostrarBusqueda() {}
void lumIngAsiento::RepetirBusqueda() {}
void lumIngAsiento::AsientoApertura() {}
void lumIngAsiento::NuevoFrecuente() {}
void lumIngAsiento::RegistrarFrecuenteDiferido(qint32) {}
