#pragma once

#include "criteriosbusqueda.h"

#include <QString>

#include <functional>
#include <memory>

class AsientosGrilla;
class PantallaAsientos;
class QWidget;
class ServicioBusquedaCuentas;
class frmFind;
struct DatosDocumento;

// The search command: shows the search dialog, turns its criteria into the search's SQL
// and loads the matching entries into the grid. The dialog is created on first use and kept
// for the life of this object, so a repeated search uses the last confirmed criteria.
class BusquedaAsientos
{
public:
    enum class Resultado {
        SinCambios, // cancelled, no criterion, or the SQL could not be built (1927 said)
        Cargada,    // the grid shows the result
        Fallida,    // the load failed (1927 said); the grid was emptied
    };

    BusquedaAsientos(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla,
                     ServicioBusquedaCuentas &cuentas, QWidget *dueno);
    ~BusquedaAsientos();

    // With mostrarDialogo the dialog is shown first and a cancelled dialog, or one left
    // without a criterion, changes nothing; without it the criteria of the last confirmed
    // search are used again, so entries stored since then appear.
    Resultado Buscar(bool mostrarDialogo);
    // The dialog, created on first use; its help button calls ayuda.
    frmFind &Dialogo();
    std::function<void()> ayuda;
    QString claveSesion;

private:
    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    PantallaAsientos &m_pantalla;
    ServicioBusquedaCuentas &m_cuentas;
    QWidget *m_dueno;
    std::unique_ptr<frmFind> m_dialogo;
    CriteriosBusqueda m_confirmados; // those of the last search the dialog confirmed
};
