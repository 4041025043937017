#include "asientosdeprueba.h"

#include "entries/asientodatos.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

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
