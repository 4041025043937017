#include "serviciopermisos.h"

ServicioPermisos::ServicioPermisos(Conexion &conexion, int idUsuario)
    : m_conexion(conexion)
    , m_idUsuario(idUsuario)
{
}

Resultado<QString> ServicioPermisos::Permisos(const QString &claveSesion, const QString &modulo, qint32 idEmpresa)
{
    return Intentar([&] {
        Q_UNUSED(claveSesion)
        auto rs = m_conexion.Abrir(QStringLiteral("Select PerLetras From segPermisos"
                                                  " Where PerUsuario = ? And PerEmpresa = ? And PerModulo = ?"),
                                   {m_idUsuario, idEmpresa, modulo});
        const QString letras = rs->Fin() ? QString() : rs->Campo(QStringLiteral("PerLetras")).toString();
        rs->Cerrar();
        return letras;
    });
}

Resultado<QString> ServicioPermisos::Autorizadores(const QString &claveSesion, const QString &modulo, qint32 idEmpresa)
{
    return Intentar([&] {
        Q_UNUSED(claveSesion)
        auto rs = m_conexion.Abrir(QStringLiteral("Select UsuID, UsuNombre From segPermisos"
                                                  " INNER JOIN segUsuarios ON segUsuarios.UsuID = segPermisos.PerUsuario"
                                                  " Where PerEmpresa = ? And PerModulo = ? And PerAutoriza <> 0"
                                                  " Order By UsuNombre"),
                                   {idEmpresa, modulo});
        QStringList registros;
        for (; !rs->Fin(); rs->MoverSiguiente())
            registros << rs->Texto(QStringLiteral("UsuID")) + QLatin1Char('|') + rs->Texto(QStringLiteral("UsuNombre"));
        rs->Cerrar();
        return registros.join(QLatin1Char('\r'));
    });
}
