#pragma once

#include <QtGlobal>

class AsientosGrilla;
class ComandosAsiento;
class DatosDocumento;
class Grilla;

// Frequent entries made from the grid's entries: "Hacer Asiento Frecuente", "Agendar", and
// a draft dated after today scheduled in its own place. Like the other entry commands they
// ask and tell through the message service and open no window.
class FrecuentesDeAsiento
{
public:
    FrecuentesDeAsiento(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos);

    // Makes the current entry a scheduled frequent entry.
    void AgendarAsiento();
    // Makes the current entry (the grid's current row's, when none is taken) a frequent
    // entry, scheduled with agendar; named by its legend or, without one, its date. An
    // unscheduled one becomes the first of the user's recent ones. Answers its MFrID, 0
    // when none was made (an incomplete entry, or a failure: 1908).
    // With desdeElMesSiguiente a scheduled one is first due a month after the entry, which
    // stays as this month's.
    qint32 CrearMovimientoFrecuente(bool agendar, bool desdeElMesSiguiente = false);
    // The current entry (dated in the future) becomes a scheduled frequent entry and is
    // deleted for good, both or neither: refused with 1820 when it changed since it was
    // read. Its rows leave the grid.
    bool AgendarEnLugarDelAsiento();

private:
    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    ComandosAsiento &m_comandos;
};
