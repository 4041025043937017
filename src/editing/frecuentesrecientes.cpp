#include "frecuentesrecientes.h"

#include "services/servicioconfigusuario.h"

#include <QHash>
#include <QStringList>

namespace {
const QString kClave = QStringLiteral("AsiFrecuentes");
}

FrecuentesRecientes::FrecuentesRecientes(const DatosDocumento &datos)
    : m_datos(datos)
{
}

QList<qint32> FrecuentesRecientes::Leer() const
{
    QList<qint32> ids;
    if (!m_datos.conexion())
        return ids;
    const QString texto = ServicioConfigUsuario(*m_datos.conexion(), m_datos.usuario).Leer(kModuloAsientos, kClave);
    for (const QString &parte : texto.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint32 id = parte.trimmed().toInt(&ok);
        if (ok && id > 0 && !ids.contains(id))
            ids.append(id);
    }
    return ids;
}

void FrecuentesRecientes::Agregar(qint32 mfrID)
{
    if (!m_datos.conexion() || mfrID <= 0)
        return;
    QList<qint32> ids = Leer();
    ids.removeAll(mfrID);
    ids.prepend(mfrID);
    QStringList partes;
    for (int i = 0; i < ids.size() && i < kMaximo; ++i)
        partes << QString::number(ids[i]);
    ServicioConfigUsuario config(*m_datos.conexion(), m_datos.usuario);
    config.Escribir(kModuloAsientos, kClave, partes.join(QLatin1Char(',')));
    config.Confirmar();
}

QList<std::pair<QString, qint32>> FrecuentesRecientes::CargarFrecuentesRecientes() const
{
    QList<std::pair<QString, qint32>> items;
    const QList<qint32> ids = Leer();
    if (ids.isEmpty() || !m_datos.conexion())
        return items;
    QStringList lista;
    for (qint32 id : ids)
        lista << QString::number(id);
    QHash<qint32, QString> nombres;
    auto rs = m_datos.conexion()->Abrir(QStringLiteral("Select MFrID, MFrNombre From genMovimientosFrecuentes ")
                                        + QStringLiteral("Where MFrID IN(") + lista.join(QLatin1Char(','))
                                        + QStringLiteral(") And MFrRecurrencia Is Null And MFrEmpresa = ")
                                        + QString::number(m_datos.idEmpresa()));
    for (; !rs->Fin(); rs->MoverSiguiente())
        nombres.insert(qint32(rs->Entero(QStringLiteral("MFrID"))), rs->Texto(QStringLiteral("MFrNombre")).trimmed());
    for (qint32 id : ids)
        if (nombres.contains(id))
            items.append({nombres.value(id), id});
    return items;
}
