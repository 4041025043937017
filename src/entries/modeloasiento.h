#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include "currency/importe.h"

// Entry states (AsiEstado).
namespace EstadoAsiento {
constexpr qint16 kNuevo = -1;       // entered here, never stored
constexpr qint16 kBorrador = 0;
constexpr qint16 kRegistrado = 1;
constexpr qint16 kInconcluso = 2;
constexpr qint16 kPapelera = 9;
} // namespace EstadoAsiento

// The header of the current entry: the one being loaded, edited or saved.
struct CabezalAsiento
{
    qint32 AsiID = 0;               // 0: no entry is current
    qint16 AsiEstado = 0;
    QDate AsiFechaAsiento;
    QDateTime AsiFechaModificado;
    qint16 AsiTipo = 0;             // book; 0 = none
    QString AsiLeyenda;
    qint16 AsiUsuarioVerificador = 0;
    int FilaCabezal = -1;           // grid row of the header row (rows go past 32767)
};

// Empties the header: no entry is current.
void ResetCabezal(CabezalAsiento &c, const QDateTime &ahora);

// One line as the grid, the line editor and the storage exchange it.
struct RegistroLinea
{
    bool bEsAlDebe = true;
    qint32 lCta = 0;
    qint16 iPry = 0;
    qint16 iDep = 0;
    qint16 iMon = 0;
    QString sTextDisplay;
    QString dFechaCierre;           // the account's closing date as text; empty when open
    Importe dImporte;               // in the account's currency
    double dTCambio = 0;            // accounting currency per unit; 0 when dImporte is 0
    Importe dImporteMC;             // in the accounting currency
    qint16 ACuOrden = 0;
};

// A line as the container reads it.
struct ValorLinea
{
    qint32 lCta = 0;
    qint16 iPry = 0;
    qint16 iDep = 0;
    qint16 iMon = 0;
    Importe dImporte;
    double dTCambio = 0;
    Importe dImporteMC;
    QString sTextDisplay;
    QDate dFechaCierre;
};

// Picture key of a header row for a state: "borradorgrabar", "borrador", "asiento",
// "inconcluso", or empty for any other state.
QString ClaveImagenEstado(qint16 estado);
// Catalogue text of the state menu item: 1007 for a new entry, 1005 for a draft, 0 (hidden)
// for the others.
int TextoMenuEstado(qint16 estado);

// The account as shown: "code - name" or the name alone.
QString TextoCuenta(const QString &codigo, const QString &nombre, bool mostrarCodigo);
