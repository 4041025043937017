#pragma once

#include "entries/modeloasiento.h"

#include <QtGlobal>

class AsientosGrilla;
class ComandosAsiento;
class DatosDocumento;
class Grilla;
class PantallaAsientos;

// The commands "Unificar Tasa de Cambio": one exchange rate for every line of the current
// entry in its first foreign currency. Like the other entry commands they ask and tell
// through the message service and open no window.
class UnificacionTasa
{
public:
    UnificacionTasa(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla, ComandosAsiento &comandos);

    // Asks for one rate for the current entry's first foreign currency and applies it to
    // every line in it, keeping the account currency's amounts (bMonedaCuenta) or the
    // accounting currency's.
    void UnificarTC(bool bMonedaCuenta);
    // Applies a factor (accounting units per unit) to the current entry's lines in moneda
    // and stores a stored entry again. A rate that leaves a complete entry unbalanced is
    // kept only as incomplete, after question 1958 (No: nothing changes). A failure of the
    // store is told with 1934.
    bool AplicarTC(bool bMonedaCuenta, double tasa, qint16 moneda);

    // A line typed at a rate other than the one the entry already uses for its currency: the
    // user keeps the typed rate for every line of that currency (Sí), takes the average over
    // them (No) or keeps the entry's (Cancelar, only this line changes); then the
    // accounting-currency amounts or, after question 1833, the foreign ones are worked out
    // again. The line at filaEdicion is the one being typed. True when the typed or the
    // average rate was taken for the entry's lines (the entry then has changes to store).
    bool ReglaTasas(RegistroLinea &linea, int filaEdicion);

private:
    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    PantallaAsientos &m_pantalla;
    ComandosAsiento &m_comandos;
};
