#include "frecuentesrecientes.h"

#include "entries/frecuentesdatos.h"
#include "services/servicioconfigusuario.h"

#include <QStringList>

namespace {
const QString kClave = QStringLiteral("AsiFrecuentes");
}

FrecuentesRecientes::FrecuentesRecientes(const DatosDocumento &datos)
    : m_datos(datos)
{
}

Resultado<QList<qint32>> FrecuentesRecientes::Leer() const
{
    QList<qint32> ids;
    if (!m_datos.conexion())
        return ids;
    const auto texto = ServicioConfigUsuario(*m_datos.conexion(), m_datos.usuario).Leer(kModuloAsientos, kClave);
    if (!texto)
        return texto.fallo();
    for (const QString &parte : texto->split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint32 id = parte.trimmed().toInt(&ok);
        if (ok && id > 0 && !ids.contains(id))
            ids.append(id);
    }
    return ids;
}

std::optional<Fallo> FrecuentesRecientes::Agregar(qint32 mfrID)
{
    if (!m_datos.conexion() || mfrID <= 0)
        return std::nullopt;
    auto leidos = Leer();
    if (!leidos)
        return leidos.fallo();
    QList<qint32> &ids = *leidos;
    ids.removeAll(mfrID);
    ids.prepend(mfrID);
    QStringList partes;
    for (int i = 0; i < ids.size() && i < kMaximo; ++i)
        partes << QString::number(ids[i]);
    ServicioConfigUsuario config(*m_datos.conexion(), m_datos.usuario);
    config.Escribir(kModuloAsientos, kClave, partes.join(QLatin1Char(',')));
    return config.Confirmar();
}

Resultado<QList<std::pair<QString, qint32>>> FrecuentesRecientes::CargarFrecuentesRecientes() const
{
    QList<std::pair<QString, qint32>> items;
    const auto ids = Leer();
    if (!ids)
        return ids.fallo();
    if (ids->isEmpty() || !m_datos.conexion())
        return items;
    const auto nombres = FrecuentesDatos(*m_datos.conexion()).NombresSinAgenda(*ids, m_datos.idEmpresa());
    if (!nombres)
        return nombres.fallo();
    for (qint32 id : *ids)
        if (nombres->contains(id))
            items.append({nombres->value(id), id});
    return items;
}
