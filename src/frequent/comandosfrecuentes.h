#pragma once

#include <QList>
#include <QString>

#include <utility>

class AsientosGrilla;
class ComandosAsiento;
class DatosDocumento;
class QWidget;
class ServicioBusquedaCuentas;

// The commands of the frequent-entry menu: a new frequent entry typed from scratch, the
// registration of one (found by the user or taken from the recent list) and that list. The
// dialogs open as children of padre; failures are told through the message service.
class ComandosFrecuentes
{
public:
    ComandosFrecuentes(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos,
                       ServicioBusquedaCuentas &busqueda, QWidget *padre);

    // "Crear nuevo": an unscheduled frequent entry made here becomes the first of the
    // user's recent ones.
    void NuevoFrecuente();
    // Registers the frequent entry mfrID, or one the user finds (0), and shows the entries
    // made after the grid's last row. Answers the row of the first of them; -1 when none
    // was made.
    int RegistrarFrecuente(qint32 mfrID);
    // The user's recent frequent entries (name, MFrID); none after a failure to read them
    // was told (1920).
    QList<std::pair<QString, qint32>> Recientes();

private:
    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    ComandosAsiento &m_comandos;
    ServicioBusquedaCuentas &m_busqueda;
    QWidget *m_padre;
};
