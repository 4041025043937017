// Start-up and command hooks whose work belongs to the grid, editing, search, opening
// balance and frequent-entry parts of the document. Each is called where the document
// needs it; none does anything yet.
#include "lumingasiento.h"

void lumIngAsiento::CargarMonedas() {}
void lumIngAsiento::BuscarAsientoApertura() {}
void lumIngAsiento::FormatoColumnasImporte() {}
void lumIngAsiento::CargarVistaInicial() {}
void lumIngAsiento::MostrarAvisoApertura() {}
void lumIngAsiento::CargarDisenoGrilla() {}
void lumIngAsiento::GuardarDisenoGrilla() {}
int lumIngAsiento::FilasDeDatosGrilla() const { return 0; }
void lumIngAsiento::CargarAsientoPendiente(qint32) {}
void lumIngAsiento::SalirEdicion() {}
void lumIngAsiento::NuevoAsiento() {}
void lumIngAsiento::MostrarBusqueda() {}
void lumIngAsiento::RepetirBusqueda() {}
void lumIngAsiento::OrdenarCuentasGrilla() {}
void lumIngAsiento::PrepararMenuVistas() {}
void lumIngAsiento::AsientoApertura() {}
void lumIngAsiento::NuevoFrecuente() {}
void lumIngAsiento::RegistrarFrecuenteDiferido(qint32) {}
