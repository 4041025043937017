#include "asientosdeprueba.h"

#include "entries/asientodatos.h"
#include "store/basedemo.h"
#include "store/valoressql.h"

#include <gtest/gtest.h>

LineaDatos Linea(qint32 cuenta, bool debe, double importe, double mc, qint16 pry, qint16 dep)
{
    LineaDatos l;
    l.Cuenta = cuenta;
    l.AlDebe = debe;
    l.Importe = Importe::DesdeDouble(importe);
    l.ImporteMC = Importe::DesdeDouble(mc < 0 ? importe : mc);
    l.Tasa = importe != 0 ? l.ImporteMC.aDouble() / importe : 0;
    l.Proyecto = pry;
    l.Departamento = dep;
    return l;
}

QVector<LineaDatos> LineasDePrueba(BaseDePrueba &base, const QList<LineaDePrueba> &lineas)
{
    QVector<LineaDatos> r;
    for (const auto &[codigo, debe, importe] : lineas) {
        LineaDatos l;
        l.Cuenta = base.IdCuenta(codigo);
        l.AlDebe = debe;
        l.Importe = l.ImporteMC = Importe::DesdeDouble(importe);
        l.Tasa = 1;
        l.Orden = qint16(r.size() + 1);
        r << l;
    }
    return r;
}

qint32 GrabarAsientoDePrueba(BaseDePrueba &base, qint16 estado, const QDate &fecha, const QString &leyenda, qint16 libro,
                             const QList<LineaDePrueba> &lineas, bool debeGrabarse)
{
    AsientoDatos d(base.conexion());
    d.Cabezal() = CabezalDatos{0, Demo::kEmpresa, estado, fecha, leyenda, libro};
    d.Lineas() = LineasDePrueba(base, lineas);
    const auto fallo = d.GrabarTodo();
    if (debeGrabarse)
        EXPECT_FALSE(fallo) << Motivo(fallo);
    return fallo ? 0 : d.Cabezal().AsiID;
}

std::string Motivo(const std::optional<Fallo> &fallo)
{
    if (!fallo)
        return {};
    return (QString::number(fallo->numeroTexto) + QStringLiteral(": ") + fallo->detalle).toStdString();
}

::testing::AssertionResult Bien(const std::optional<Fallo> &fallo)
{
    if (!fallo)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << Motivo(fallo);
}

int NumeroDe(const std::optional<Fallo> &fallo)
{
    return fallo ? fallo->numeroTexto : -1;
}

qint32 IdGrabado(AsientoDatos &datos)
{
    return datos.GrabarTodo() ? 0 : datos.Cabezal().AsiID;
}

QString Papelera(AsientoDatos &datos, qint32 asiID, const QDateTime &sello)
{
    QStringList ids;
    return datos.EnviarPapelera(asiID, sello, &ids) ? QString() : ids.join(QLatin1Char(','));
}

QStringList AsientoComoTexto(Conexion &conexion, qint32 id, QString *sello)
{
    auto rs = conexion.Abrir(QStringLiteral("Select * From cceAsientos Where AsiID = ?"), {id});
    if (rs->Fin())
        return {};
    auto texto = [&](const char *campo) {
        const QVariant v = rs->Campo(QString::fromLatin1(campo));
        return v.isNull() ? QStringLiteral("null") : v.toString();
    };
    QStringList a{QStringList{texto("AsiEstado"), rs->Fecha(QStringLiteral("AsiFechaAsiento")).toString(Qt::ISODate), texto("AsiLeyenda"),
                              texto("AsiTipo"), texto("AsiUsuarioVerificador"), texto("AsiVerificado")}.join(u'|')};
    if (sello)
        *sello = rs->FechaHora(QStringLiteral("AsiFechaModificado")).toString(Qt::ISODateWithMs);
    rs->Cerrar();
    rs = conexion.Abrir(QStringLiteral("Select * From cceAsientoCuenta INNER JOIN cceCuentas ON CueID = ACuCuenta"
                                       " Where ACuIDAsiento = ? Order By ACuOrden, CueCodigo"), {id});
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        const bool debe = rs->EsNulo(QStringLiteral("AcuHaber"));
        a << QStringList{texto("CueCodigo"), QString::fromLatin1(debe ? "D" : "H"),
                         NumeroSQL(rs->Numero(QString::fromLatin1(debe ? "ACuDebe" : "AcuHaber"))),
                         NumeroSQL(rs->Numero(QStringLiteral("ACuImporteMC"))), texto("ACuOrden"), texto("ACuProyecto"),
                         texto("ACuDepartamento")}.join(u'|');
    }
    return a;
}

QStringList LineasDe(Conexion &conexion, qint32 id, bool deFrecuente)
{
    const QString sql = deFrecuente ? QStringLiteral("Select CueCodigo, MFLEsDebe, MFLImporteMC From genMovimientosFrecuentesLineas"
                                                     " Inner Join cceCuentas On CueID = MFLCuenta Where MFLIDMovimiento = ? Order By MFLOrden")
                                    : QStringLiteral("Select CueCodigo, Case When AcuHaber Is Null Then 1 Else 0 End, ACuImporteMC"
                                                     " From cceAsientoCuenta Inner Join cceCuentas On CueID = ACuCuenta"
                                                     " Where ACuIDAsiento = ? Order By ACuOrden");
    QStringList r;
    for (auto rs = conexion.Abrir(sql, {id}); !rs->Fin(); rs->MoverSiguiente())
        r << QStringLiteral("%1|%2|%3").arg(rs->Campo(0).toString(), QLatin1String(rs->Campo(1).toInt() ? "D" : "H"),
                                            QString::number(rs->Campo(2).toDouble(), 'f', 2));
    return r;
}
