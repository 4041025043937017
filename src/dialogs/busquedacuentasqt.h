#pragma once

#include "services/serviciobusquedacuentas.h"

#include <QList>
#include <QString>

// An exact code, or a text that matches one postable account only (code prefix or part of
// the name, case ignored), answers at once; otherwise a dialog lists the company's postable
// accounts, filtered as the user types, with code, name, currency and a closed mark.
class BusquedaCuentasQt final : public ServicioBusquedaCuentas
{
public:
    bool Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &elegida, QWidget *padre) override;

    struct Cuenta
    {
        qint32 id = 0;
        QString codigo;
        QString nombre;
        QString moneda;
        bool cerrada = false;
    };
    // The company's postable accounts, by code.
    static QList<Cuenta> Cuentas(Conexion &conexion, qint32 empresa);
    // The accounts that match a text: an exact code alone, else every code that starts with
    // it and every name that contains it.
    static QList<Cuenta> Coincidencias(const QList<Cuenta> &cuentas, const QString &texto);
};
