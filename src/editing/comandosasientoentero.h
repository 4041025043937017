#pragma once

#include "editing/comandosasiento.h"

// The entry menu's commands on an entry as a whole: deleting it (or one of its lines),
// copying it, hiding it. Like the other entry commands they act on the entry of the screen's
// current row, ask and tell through the message service, open no window and leave the grid's
// current entry reset.
class ComandosAsientoEntero
{
public:
    ComandosAsientoEntero(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla, ComandosAsiento &comandos);

    // Deletes the current entry (to the trash), or with porFila the current line of it; a
    // row deletion of the header row or of the only line deletes the entry.
    void EliminarAsiento(bool porFila);
    // Stores a copy of the current entry (after question 1806) and shows it last.
    void CopiarAsiento();
    // Takes the current entry's rows from the grid; the store keeps it.
    void OcultarAsiento();

private:
    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    PantallaAsientos &m_pantalla;
    ComandosAsiento &m_comandos;
};
