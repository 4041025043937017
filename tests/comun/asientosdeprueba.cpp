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
    const qint32 id = d.GrabarTodo();
    if (debeGrabarse)
        EXPECT_GT(id, 0) << d.ultimoError().toStdString();
    return id;
}
