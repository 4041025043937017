#pragma once

#include "store/conexion.h"

#include <QHash>

// Readers of what the database holds, for checks that look past the screen. Amounts are
// added up in ten-thousandths, as the columns keep them, never in floating point.

// An entry's lines in the accounting currency (ACuImporteMC), by side.
struct SumasAsiento
{
    qint64 debe = 0;  // ten-thousandths
    qint64 haber = 0; // ten-thousandths
    int lineasDebe = 0;
    int lineasHaber = 0;

    // Whether the two sums, each rounded to that many decimals, are equal and each side
    // has a line.
    bool Balancea(int decimales) const;
};

// The sums of every entry of the company in that state (AsiEstado), by AsiID; an entry
// without lines is there with nothing on either side. Throws ErrorBaseDatos.
QHash<qint32, SumasAsiento> SumasPorAsiento(Conexion &conexion, qint32 empresa, qint16 estado);

// How many history rows (cceAsientosHistorial) each entry has; entries without any are left
// out. Throws ErrorBaseDatos.
QHash<qint32, int> FilasHistorialPorAsiento(Conexion &conexion);
