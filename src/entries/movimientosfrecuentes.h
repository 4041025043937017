#pragma once

#include "asientodatos.h"

#include "store/conexion.h"

// Frequent entries (templates) in genMovimientosFrecuentes and their lines. A scheduled one
// carries a recurrence; it is stored as "mensual" with the entry's date as its next date:
// the entry comes back every month from that date on.
class MovimientosFrecuentes
{
public:
    static constexpr const char *kRecurrenciaAgendado = "mensual";

    explicit MovimientosFrecuentes(Conexion &conexion);

    // Stores a template from an entry's header and lines (in their order), in one
    // transaction; answers its MFrID, 0 on failure.
    qint32 Crear(const CabezalDatos &cabezal, const QVector<LineaDatos> &lineas, const QVector<qint16> &monedas,
                 bool agendar, const QString &nombre);
    QString ultimoError() const { return m_error; }

private:
    Conexion &m_conexion;
    QString m_error;
};
