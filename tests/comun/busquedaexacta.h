#pragma once

#include "dialogs/busquedacuentasqt.h"

#include <QStringList>

#include <functional>

// The account search as it answers a text that names one account, without its dialog: the
// code the user types, or a part of one name. A test may also have an account of its own
// picked, as if in the dialog, or the dialog cancelled; it reads each text looked up.
class BusquedaExacta final : public ServicioBusquedaCuentas
{
public:
    QStringList pedidos;
    CuentaElegida respuesta;       // picked when it has an id
    bool exacta = true;            // without an account of its own: the exact search, or none
    bool acepta = true;            // false: the dialog was cancelled, with respuesta in view
    std::function<void()> durante; // what runs while the dialog is open

    Resultado<bool> Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &c, QWidget *) override
    {
        pedidos << texto;
        if (durante)
            durante();
        if (respuesta.id > 0 || !exacta) {
            c = respuesta;
            return acepta && respuesta.id > 0;
        }
        const auto cuentas = CuentasDatos::Imputables(conexion, empresa);
        if (!cuentas)
            return cuentas.fallo();
        const auto coinciden = BusquedaCuentasQt::Coincidencias(*cuentas, texto);
        if (coinciden.size() != 1)
            return false;
        c = {coinciden.first().id, 0, 0};
        return true;
    }
};
