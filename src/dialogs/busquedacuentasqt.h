#pragma once

#include "services/cuentasdatos.h"
#include "services/serviciobusquedacuentas.h"

#include <QList>
#include <QString>

#include <functional>

// An exact code, or a text that matches one postable account only (code prefix or part of
// the name, case ignored), answers at once; otherwise a dialog lists the company's postable
// accounts, filtered as the user types, with code, name, currency and a closed mark.
class BusquedaCuentasQt final : public ServicioBusquedaCuentas
{
public:
    // texto gives the catalogue text of a number (1000 and up) in the document's language.
    explicit BusquedaCuentasQt(std::function<QString(int)> texto)
        : m_texto(std::move(texto))
    {
    }
    Resultado<bool> Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &elegida, QWidget *padre) override;

    using Cuenta = CuentasDatos::Cuenta;
    // The accounts that match a text: an exact code alone, else every code that starts with
    // it and every name that contains it.
    static QList<Cuenta> Coincidencias(const QList<Cuenta> &cuentas, const QString &texto);

private:
    std::function<QString(int)> m_texto;
};
