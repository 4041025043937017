#pragma once

#include <QString>

#include <optional>

// What the host tells the document in its base address.
struct DatosHost
{
    qint16 IDUsuario = 0;
    qint32 IDEmpresa = 0;        // starts as the process-wide value the host may have set
    QString NombreEmpresa;
    QString ClaveSesion;
    QString PrefijoUsuario;
    QString CarpetaTemporal;
    bool PedidoAsientoApertura = false;
    QString SolicitudPendiente;
};

// The query part of a base address: "%3F" (any case) counts as "?", the text after the
// first "?" is taken, and without "?" the whole address.
QString ExtraerParametrosHost(const QString &baseHRef);

// Outcome of reading the parameter string. An error carries the description the start-up
// page shows (a recognised key without "=", a user or company id that is not a number or
// does not fit).
struct LecturaHost
{
    bool exito = false;          // a company id is known afterwards
    QString error;               // non-empty: reading stopped here
};

// Reads "key=value" pairs separated by "|" ("%7C" counts as "|"). Keys are trimmed and
// compared without case; values are taken as written. A pair that carries the marker
// "[prmprm]" (or "%5Bprmprm%5D") is the host's own and never becomes the pending request.
LecturaHost LeerParametrosHost(const QString &parametros, DatosHost &datos);

// The entry id of a pending "prmidasi=N" request, when it is one and N is a number.
std::optional<qint32> IdAsientoPendiente(const QString &solicitud);

// Numbers as the suite converts text: blanks around are allowed, a fraction rounds to
// even, text that is no number or does not fit is an error (its description is returned).
std::optional<qint64> ConvertirEntero(const QString &texto, qint64 minimo, qint64 maximo, QString &error);
