// Command hooks whose work belongs to editing, saving, deleting, search, opening balance
// and frequent entries. Each is called where the document needs it; none does anything yet
// (those that answer a flag answer that nothing was done).
#include "lumingasiento.h"

void lumIngAsiento::BuscarAsientoApertura() {}
void lumIngAsiento::MostrarAvisoApertura() {}
void lumIngAsiento::SalirEdicion() {}
void lumIngAsiento::NuevoAsiento() {}
void lumIngAsiento::MostrarBusqueda() {}
void lumIngAsiento::RepetirBusqueda() {}
void lumIngAsiento::AsientoApertura() {}
void lumIngAsiento::NuevoFrecuente() {}
void lumIngAsiento::RegistrarFrecuenteDiferido(qint32) {}
bool lumIngAsiento::EntrarEdicion(int) { return false; }
bool lumIngAsiento::TeclaEdicion(int) { return false; }
