#pragma once

#include "store/conexion.h"

#include <QString>

// The permission service over segPermisos and segUsuarios. The session key names the
// logged-in user in the suite; here the user is given when the service is made.
class ServicioPermisos
{
public:
    ServicioPermisos(Conexion &conexion, int idUsuario);

    // The user's permission text for a module of a company ("AMEQ"), empty when none. A
    // failure of the database carries text 0, here and below.
    Resultado<QString> Permisos(const QString &claveSesion, const QString &modulo, qint32 idEmpresa);
    // The users who may authorise entries of the module: records "id|name" joined by "\r".
    Resultado<QString> Autorizadores(const QString &claveSesion, const QString &modulo, qint32 idEmpresa);

private:
    Conexion &m_conexion;
    int m_idUsuario;
};
