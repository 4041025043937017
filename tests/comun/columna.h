#pragma once

#include "store/conexion.h"

#include <QStringList>

// The first column of each row a query gives, as text, in the order it gives them.
inline QStringList Columna(Conexion &conexion, const QString &sql, const QVariantList &valores = {})
{
    QStringList filas;
    for (auto rs = conexion.Abrir(sql, valores); !rs->Fin(); rs->MoverSiguiente())
        filas << rs->Campo(0).toString();
    return filas;
}
