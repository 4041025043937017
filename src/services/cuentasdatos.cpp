#include "cuentasdatos.h"

#include "store/valoressql.h"

namespace CuentasDatos {

namespace {

Ficha fichaLeida(const Recordset &rs)
{
    Ficha f;
    f.id = qint32(rs.Entero(QStringLiteral("CueID")));
    f.codigo = rs.Texto(QStringLiteral("CueCodigo"));
    f.nombre = rs.Texto(QStringLiteral("CueNombre"));
    return f;
}

} // namespace

Resultado<QList<Cuenta>> Imputables(Conexion &conexion, qint32 empresa)
{
    return Intentar([&] {
        QList<Cuenta> cuentas;
        auto rs = conexion.Abrir(QStringLiteral("Select CueID, CueCodigo, CueNombre, CueFechaCerrada, MonSimbolo"
                                                " From cceCuentas LEFT JOIN genMonedas ON genMonedas.MonID = cceCuentas.CueMoneda"
                                                " Where CueIDEmpresa = ? And CueEsCarpeta = 0 Order By CueCodigo"),
                                 {empresa});
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            Cuenta c;
            c.id = qint32(rs->Entero(QStringLiteral("CueID")));
            c.codigo = rs->Texto(QStringLiteral("CueCodigo")).trimmed();
            c.nombre = rs->Texto(QStringLiteral("CueNombre")).trimmed();
            c.moneda = rs->Campo(QStringLiteral("MonSimbolo")).toString().trimmed();
            c.cerrada = !rs->EsNulo(QStringLiteral("CueFechaCerrada"));
            cuentas << c;
        }
        return cuentas;
    });
}

Resultado<std::optional<Ficha>> Leer(Conexion &conexion, qint32 id)
{
    return Intentar([&]() -> std::optional<Ficha> {
        auto rs = conexion.Abrir(QStringLiteral("Select CueID, CueCodigo, CueNombre From cceCuentas Where CueID = ") + QString::number(id));
        if (rs->Fin())
            return std::nullopt;
        return fichaLeida(*rs);
    });
}

Resultado<std::optional<Ficha>> LeerImputable(Conexion &conexion, qint32 id)
{
    return Intentar([&]() -> std::optional<Ficha> {
        auto rs = conexion.Abrir(QStringLiteral("Select CueID, CueCodigo, CueNombre, CueMoneda, CueFechaCerrada ")
                                 + QStringLiteral(" From cceCuentas Where CueID = ") + NumeroSQL(qint64(id))
                                 + QStringLiteral(" And CueEsCarpeta = 0"));
        if (rs->Fin())
            return std::nullopt;
        Ficha f = fichaLeida(*rs);
        if (!rs->EsNulo(QStringLiteral("CueMoneda")) && rs->Entero(QStringLiteral("CueMoneda")) > 0)
            f.moneda = qint16(rs->Entero(QStringLiteral("CueMoneda")));
        const QVariant cierre = rs->Campo(QStringLiteral("CueFechaCerrada"));
        f.cerrada = !cierre.isNull();
        f.cierre = FechaDeValor(cierre);
        rs->Cerrar();
        return f;
    });
}

Resultado<qint32> IdPorCodigo(Conexion &conexion, qint32 empresa, const QString &codigo)
{
    return Intentar([&]() -> qint32 {
        auto rs = conexion.Abrir(QStringLiteral("Select CueID, CueEsCarpeta From cceCuentas Where CueIDEmpresa = ? And CueCodigo = ?"),
                                 {empresa, codigo});
        if (rs->Fin())
            return 0;
        return rs->Campo(1).toInt() != 0 ? -1 : rs->Campo(0).toInt();
    });
}

} // namespace CuentasDatos
