#pragma once

#include "comun/basesprueba.h"

#include "currency/catalogomonedas.h"
#include "entries/asientosgrilla.h"

#include <QString>

// A small company (1, keeping its books in pesos) to load entries from: pesos (1, "#,##0.00") and dollars (2, amounts
// "#,##0.00", rates "#,##0.000"), a few accounts, books 1 "Diario" and 90 (system).
class DatosAsientos
{
public:
    explicit DatosAsientos(Motor motor);

    Conexion &conexion() { return m_base.conexion(); }
    // An entry: lines "cuenta:D|H:importe[:importeMC]" separated by ","; answers its id.
    qint32 Asiento(const QDate &fecha, int estado, const QString &lineas, const QString &leyenda = QStringLiteral("Prueba"),
                   QVariant libro = 1);

    CatalogoMonedas monedas;
    ContextoAsientos ctx;
    Grilla grilla;
    AsientosGrilla asientos{grilla, ctx};

private:
    BaseDePrueba m_base;
};

// One grid row as text, so a test compares whole rows: the cells' texts joined by "|",
// then " #" and the hidden data joined by "|".
QString FilaComoTexto(const Grilla &g, int fila);
