#include "saldosiniciales.h"

#include "store/valoressql.h"

#include <QStringList>

#include <cmath>

SaldosIniciales::SaldosIniciales(Conexion &conexion, qint16 libro, qint32 empresa, const QString &delimitador,
                                 const QString &patron)
    : m_conexion(conexion)
    , m_libro(libro)
    , m_empresa(empresa)
    , m_delimitador(delimitador)
    , m_patron(patron)
{
}

Resultado<bool> SaldosIniciales::ExisteAsientoApertura()
{
    return Intentar([&] {
        auto rs = m_conexion.Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiTipo = ") + QString::number(m_libro)
                                   + QStringLiteral(" And AsiEstado = 1 And AsiEmpresa = ") + QString::number(m_empresa));
        const bool existe = !rs->Fin();
        rs->Cerrar();
        return existe;
    });
}

Resultado<qint32> SaldosIniciales::OtroAsientoApertura(qint32 excepto)
{
    return Intentar([&] {
        auto rs = m_conexion.Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiTipo = ? And AsiEstado <> 9 And AsiEmpresa = ?"
                                                  " And AsiID <> ? Order By AsiID"),
                                   {m_libro, m_empresa, excepto});
        const qint32 id = rs->Fin() ? 0 : qint32(rs->Entero(QStringLiteral("AsiID")));
        rs->Cerrar();
        return id;
    });
}

Resultado<QString> SaldosIniciales::CuentasCerradasApertura(const QDate &fechaApertura, quint8 clase, const QString &cuentas)
{
    return Intentar([&] {
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
    });
}

std::optional<Fallo> SaldosIniciales::AbrirCuentas(const QString &cuentas)
{
    return Intentar([&] {
        if (cuentas.isEmpty())
            return;
        m_conexion.Ejecutar(QStringLiteral("Update cceCuentas Set CueSaldo = 0, CueSaldoMConta = 0, CueFechaCerrada = Null Where CueID IN (")
                            + cuentas + QStringLiteral(")"));
    });
}

Resultado<QVector<LineaDatos>> SaldosIniciales::LineasDeSaldos(quint8 clase, qint16 monedaContabilidad, QVector<qint16> *monedas)
{
    return Intentar([&] {
        const QString sql = QStringLiteral("Select cueID, CueSaldo, CueSaldoMConta, CueMoneda, CueFechaCerrada, TCuSigno ")
                          + QStringLiteral(" From cceCuentas, sisTipoCuenta ")
                          + QStringLiteral(" Where CueIDEmpresa = ") + QString::number(m_empresa)
                          + QStringLiteral(" And ((CueSaldo Is Not Null and CueSaldo <> 0)  or (CueSaldoMConta Is Not Null and CueSaldoMConta <> 0))")
                          + QStringLiteral(" And TCuClaseEmpresa = ") + QString::number(clase)
                          + QStringLiteral(" And CueTipo = TCuID And CueEsCarpeta = 0");
        QVector<LineaDatos> lineas;
        auto rs = m_conexion.Abrir(sql);
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            auto numero = [&rs](const char *columna) {
                const QString nombre = QString::fromLatin1(columna);
                return rs->EsNulo(nombre) ? 0.0 : rs->Numero(nombre);
            };
            const Importe saldo = Importe::DesdeDouble(numero("CueSaldo"));
            const Importe saldoMC = Importe::DesdeDouble(numero("CueSaldoMConta"));
            const auto moneda = qint64(numero("CueMoneda"));
            const bool propia = moneda <= 0 || moneda == monedaContabilidad;
            const int signoTipo = numero("TCuSigno") < 0 ? -1 : 1;
            const Importe conSigno = !saldoMC.esCero() ? saldoMC : saldo;
            LineaDatos l;
            l.Cuenta = qint32(rs->Entero(QStringLiteral("cueID")));
            l.AlDebe = (conSigno > Importe() ? 1 : -1) * signoTipo > 0;
            // A foreign balance is never taken as if it were in the accounting currency.
            l.ImporteMC = !saldoMC.esCero() ? saldoMC.abs() : propia ? saldo.abs() : Importe();
            l.Importe = propia ? l.ImporteMC : saldo.abs();
            l.Tasa = l.Importe.esCero() ? 0 : l.ImporteMC.aDouble() / l.Importe.aDouble();
            l.Orden = qint16(lineas.size() + 1);
            lineas.append(l);
            if (monedas)
                monedas->append(propia ? qint16(0) : qint16(moneda));
        }
        rs->Cerrar();
        return lineas;
    });
}
