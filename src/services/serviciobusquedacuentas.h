#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QString>

class QWidget;

// The account chosen by the user: id, project and department (0 when none).
struct CuentaElegida
{
    qint32 id = 0;
    qint16 proyecto = 0;
    qint16 departamento = 0;
};

// The account-search service: turns what the user typed into an account of the company.
class ServicioBusquedaCuentas
{
public:
    virtual ~ServicioBusquedaCuentas() = default;
    // False when no account was chosen; a failure to read the accounts carries text 0, for
    // the caller to tell with its own text.
    virtual Resultado<bool> Buscar(Conexion &conexion, qint32 empresa, const QString &texto, CuentaElegida &elegida,
                                   QWidget *padre) = 0;
};
