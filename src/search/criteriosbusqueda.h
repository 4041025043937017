#pragma once

#include <QString>

// The criteria of an entry search, as the search dialog leaves them. Empty values add
// nothing to the search.
struct CriteriosBusqueda
{
    QString prmKey;              // the session key, for the help page
    bool FindOK = false;         // the user confirmed the dialog with a criterion
    bool prmCriterioAnd = true;  // true: all criteria must hold; false: any may
    QString prmFInit;            // first date, ISO text; empty: none
    QString prmFEnd;             // last date, ISO text; empty: none
    qint16 prmLibro = 0;         // book code; 0 or less: any
    QString prmLeyenda;          // legend prefix, "*" as wildcard; empty: any
    qint32 prmCta = 0;           // account id; below 1: any
    qint16 prmPry = 0;           // the account line's project; kCualquiera: any
    qint16 prmDep = 0;           // the account line's department; kCualquiera: any
    static constexpr qint16 kCualquiera = -1;
    double prmImporte = 0;       // lower amount in the accounting currency; 0: none
    double prmImporte2 = 0;      // upper amount; 0: none
    quint8 prmEstado = 0;        // 0 all but the trash, 1 drafts, 2 incomplete, 3 registered
};
