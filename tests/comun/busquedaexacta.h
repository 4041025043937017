#pragma once

#include "dialogs/busquedacuentasqt.h"

// The account search as it answers a text that names one account, without its dialog: the
// code the user types, or a part of one name.
class BusquedaExacta final : public ServicioBusquedaCuentas
{
public:
    bool Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &c, QWidget *) override
    {
        const auto coinciden = BusquedaCuentasQt::Coincidencias(BusquedaCuentasQt::Cuentas(conexion, empresa), texto);
        if (coinciden.size() != 1)
            return false;
        c = {coinciden.first().id, 0, 0};
        return true;
    }
};
