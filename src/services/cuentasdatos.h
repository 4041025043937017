#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

// The reads of the company's accounts that the account search, the line editor and the
// entry search make. A failure of the database carries text 0: the caller tells it with its
// own text.
namespace CuentasDatos {

// A postable account as the account search lists it.
struct Cuenta
{
    qint32 id = 0;
    QString codigo;
    QString nombre;
    QString moneda;     // the currency's symbol; empty when the account has none
    bool cerrada = false;
};
// The company's postable accounts, by code.
Resultado<QList<Cuenta>> Imputables(Conexion &conexion, qint32 empresa);

// One account by its id, as a line or the search shows it.
struct Ficha
{
    qint32 id = 0;
    QString codigo;
    QString nombre;
    qint16 moneda = 0;  // 0 when the account has none
    bool cerrada = false;
    QDate cierre;       // the closing date, when cerrada
};
// Any account; none when there is no such account.
Resultado<std::optional<Ficha>> Leer(Conexion &conexion, qint32 id);
// A postable account, with its currency and closing date; none when there is no such
// account or it is a folder.
Resultado<std::optional<Ficha>> LeerImputable(Conexion &conexion, qint32 id);

// The company's account with that code: its id, 0 when there is none, -1 when it is a folder
// of other accounts (which carries no lines).
Resultado<qint32> IdPorCodigo(Conexion &conexion, qint32 empresa, const QString &codigo);

} // namespace CuentasDatos
