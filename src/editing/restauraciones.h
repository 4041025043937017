#pragma once

#include "editing/comandosasiento.h"
#include "editing/datosdocumento.h"
#include "editing/pantalla.h"
#include "entries/asientosgrilla.h"
#include "entries/historialasiento.h"

#include <QDate>
#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

// The ways back: the trash (the company's entries in state 9, given back or deleted for
// good), an earlier version from the history written back, and the undoing of this
// session's writes one at a time. Every write goes through the entry store's one write path,
// so what comes back obeys the rules of any write (the stamp read, the balance of a
// registered entry, one opening-balance entry, closed accounts); a refusal is told and
// changes nothing. The grid follows: an entry given back is shown, one sent away leaves it.
class ComandosRestauracion
{
public:
    ComandosRestauracion(DatosDocumento &datos, ComandosAsiento &comandos, AsientosGrilla &asientos, PantallaAsientos &pantalla);

    // One entry of the trash as the trash window lists it.
    using EnPapelera = HistorialAsiento::EnPapelera;
    // The company's entries in the trash, the last sent first; none, after saying why (1916),
    // when the store cannot be read.
    std::optional<QList<EnPapelera>> Papelera() const;
    // Gives an entry of the trash back as it was before it went there (a draft when the
    // history does not say). False after saying why.
    bool RestaurarDePapelera(const EnPapelera &e);
    // Deletes an entry of the trash for good, after question 1966; its history stays.
    bool EliminarDePapelera(const EnPapelera &e);

    // Writes a version from an entry's history back after question 1964 (1965 instead when
    // the entry already is that version). selloLeido is the
    // entry's stamp when the history was read: another user's later change refuses it (1820).
    bool RestaurarVersion(qint32 asiID, const QJsonObject &version, const QDateTime &selloLeido);

    // What Deshacer would undo, in words ("Deshacer Cambio del asiento 12"); empty when
    // this session has no write left to undo, or when the history cannot be read.
    QString TextoDeshacer();
    // Takes the entry of this session's last write still standing back to how it was before
    // that write (a new entry goes to the trash). Refused with 1820 when someone else changed
    // the entry since, and with 1963 for an entry deleted for good; the write stays to undo.
    bool Deshacer();

private:
    struct Escritura
    {
        qint64 id = 0;
        qint32 asiID = 0;
        QString operacion;
        QJsonObject antes, despues;
    };
    Resultado<std::optional<Escritura>> ultimaEscritura();
    // The grid shows the entry as stored now: read again where it is, added at the end when
    // it was not shown, taken out when it is no longer a live entry. False after telling
    // (1924) that the store could not be read.
    bool mostrarEnGrilla(qint32 asiID);

    DatosDocumento &m_datos;
    ComandosAsiento &m_comandos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    PantallaAsientos &m_pantalla;
};
