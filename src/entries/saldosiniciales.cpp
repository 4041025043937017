#include "saldosiniciales.h"

#include "store/valoressql.h"

#include <QStringList>

SaldosIniciales::SaldosIniciales(Conexion &conexion, qint16 libro, qint32 empresa, const QString &delimitador,
                                 const QString &patron)
    : m_conexion(conexion)
    , m_libro(libro)
    , m_empresa(empresa)
    , m_delimitador(delimitador)
    , m_patron(patron)
{
}

bool SaldosIniciales::ExisteAsientoApertura()
{
    auto rs = m_conexion.Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiTipo = ") + QString::number(m_libro)
                               + QStringLiteral(" And AsiEstado = 1 And AsiEmpresa = ") + QString::number(m_empresa));
    const bool existe = !rs->Fin();
    rs->Cerrar();
    return existe;
}

QString SaldosIniciales::CuentasCerradasApertura(const QDate &fechaApertura, quint8 clase, const QString &cuentas)
{
    QString sql = QStringLiteral("Select cueID ") + QStringLiteral(" From cceCuentas,  sisTipoCuenta ")
                + QStringLiteral(" Where CueIDEmpresa = ") + QString::number(m_empresa)
                + QStringLiteral(" And CueFechaCerrada >= ") + FechaSQL(fechaApertura, m_delimitador, m_patron)
                + QStringLiteral(" And TCuClaseEmpresa = ") + QString::number(clase)
                + QStringLiteral(" And CueTipo = TCuID And CueEsCarpeta = 0");
    if (!cuentas.isEmpty())
        sql += QStringLiteral(" And CueID IN (") + cuentas + QStringLiteral(")");
    QStringList ids;
    auto rs = m_conexion.Abrir(sql);
    for (; !rs->Fin(); rs->MoverSiguiente())
        ids << rs->Texto(QStringLiteral("cueID"));
    rs->Cerrar();
    return ids.join(QLatin1Char(','));
}
