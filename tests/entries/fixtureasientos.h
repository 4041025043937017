#pragma once

#include "comun/asientosdeprueba.h"
#include "comun/basesprueba.h"

#include "currency/catalogomonedas.h"
#include "entries/asientodatos.h"
#include "entries/asientosgrilla.h"

#include <QString>
#include <QStringList>

// A small company (1, keeping its books in pesos) to load entries from: pesos (1, "#,##0.00") and dollars (2, amounts
// "#,##0.00", rates "#,##0.000"), accounts 10 Caja ($), 11 Banco U$S, 20 Ventas, 21 Proveedores (closed on 30 June
// 2020), 22 alquileres; books 1 "Diario" and 90 (system).
class DatosAsientos
{
public:
    explicit DatosAsientos(Motor motor);

    Conexion &conexion() { return m_base.conexion(); }
    QVariant Valor(const QString &sql, const QVariantList &valores = {}) { return m_base.Valor(sql, valores); }
    // Rows of a query as "a|b|c", decimals written to the cent, "null" for a null.
    QStringList Filas(const QString &sql, const QVariantList &valores = {});
    // An entry: lines "cuenta:D|H:importe[:importeMC]" separated by ","; answers its id.
    qint32 Asiento(const QDate &fecha, int estado, const QString &lineas, const QString &leyenda = QStringLiteral("Prueba"),
                   QVariant libro = 1);
    // Loads the entry at the end of the grid and makes it the current one.
    void Cargar(qint32 id);

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
