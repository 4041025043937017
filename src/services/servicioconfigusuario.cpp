#include "servicioconfigusuario.h"

ServicioConfigUsuario::ServicioConfigUsuario(Conexion &conexion, int idUsuario, int opciones)
    : m_conexion(conexion)
    , m_idUsuario(idUsuario)
{
    Q_UNUSED(opciones)
}

Resultado<QString> ServicioConfigUsuario::Leer(const QString &seccion, const QString &clave)
{
    return Intentar([&] {
        const auto pendiente = m_pendientes.constFind({seccion, clave});
        if (pendiente != m_pendientes.constEnd())
            return *pendiente;
        auto rs = m_conexion.Abrir(QStringLiteral("Select CfuValor From genConfigUsuario"
                                                  " Where CfuUsuario = ? And CfuSeccion = ? And CfuClave = ?"),
                                   {m_idUsuario, seccion, clave});
        const QString valor = rs->Fin() ? QString() : rs->Campo(QStringLiteral("CfuValor")).toString();
        rs->Cerrar();
        return valor;
    });
}

void ServicioConfigUsuario::Escribir(const QString &seccion, const QString &clave, const QString &valor)
{
    m_pendientes.insert({seccion, clave}, valor);
}

std::optional<Fallo> ServicioConfigUsuario::Confirmar()
{
    return Intentar([&] {
        if (m_pendientes.isEmpty())
            return;
        Transaccion tx(m_conexion);
        for (auto it = m_pendientes.cbegin(); it != m_pendientes.cend(); ++it) {
            const QVariantList clave{m_idUsuario, it.key().first, it.key().second};
            const int cambiadas = m_conexion.Ejecutar(
                QStringLiteral("Update genConfigUsuario Set CfuValor = ?"
                               " Where CfuUsuario = ? And CfuSeccion = ? And CfuClave = ?"),
                QVariantList{it.value()} + clave);
            if (cambiadas == 0)
                m_conexion.Ejecutar(QStringLiteral("Insert Into genConfigUsuario (CfuValor, CfuUsuario, CfuSeccion, CfuClave)"
                                                   " Values (?, ?, ?, ?)"),
                                    QVariantList{it.value()} + clave);
        }
        tx.Confirmar();
        m_pendientes.clear();
    });
}
