#include "fixtureasientos.h"

#include "entries/vistas.h"

#include <gtest/gtest.h>

DatosAsientos::DatosAsientos(Motor motor)
    : m_base(motor, BaseDePrueba::Contenido::Esquema)
{
    Conexion &c = m_base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo)"
                              " Values (1, '$', Null, '#,##0.00', '#,##0.000', 1), (2, 'U$S', 1, '#,##0.00', '#,##0.000', 1)"));
    c.Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre, EmpMonedaContabilidad) Values (1, 'Prueba', 1)"));
    c.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (1, 'Diario', 0), (90, 'Resumen', 1)"));
    c.Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueFechaCerrada, CueEsCarpeta)"
                              " Values (10, 1, '1.1.01', 'Caja', 1, Null, 0), (11, 1, '1.1.02', 'Banco U$S', 2, Null, 0),"
                              " (20, 1, '4.1.01', 'Ventas', 0, Null, 0), (21, 1, '2.1.01', 'Proveedores', 1, '2020-06-30', 0),"
                              " (22, 1, '5.1.01', 'alquileres', 1, Null, 0)"));
    EXPECT_FALSE(monedas.CargarMonedas(c));
    monedas.FijarMonedaContabilidad(1);
    ctx.monedas = &monedas;
    ctx.monedaContabilidad = 1;
    ctx.mostrarCodigoCta = true;
    ctx.empresa = 1;
    ctx.reloj = m_base.reloj();
    asientos.ResetCabezal();
    ctx.formatoFecha = QStringLiteral("dd/mm/yy");
    ctx.texto = [](int n) { return n == 1110 ? QStringLiteral("Nuevo Asiento") : QStringLiteral("#%1").arg(n); };
    PrepararGrillaAsientos(grilla, QStringLiteral("<Cuenta|<|>Debe|>Haber|>T. Cambio|>Importe M/E"));
    grilla.FijarFormatoColumna(2, QStringLiteral("#,##0.00"));
    grilla.FijarFormatoColumna(3, QStringLiteral("#,##0.00"));
}

qint32 DatosAsientos::Asiento(const QDate &fecha, int estado, const QString &lineas, const QString &leyenda, QVariant libro)
{
    Conexion &c = m_base.conexion();
    const qint64 id = c.Insertar(
        QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiFechaModificado, AsiLeyenda, AsiTipo)"
                       " Values (1, ?, ?, ?, ?, ?)"),
        {estado, Conexion::ValorFecha(fecha), Conexion::ValorFechaHora(QDateTime(fecha, QTime(10, 0, 0, 5))), leyenda,
         libro.isNull() ? QVariant(QMetaType(QMetaType::Int)) : libro},
        QStringLiteral("AsiID"));
    int orden = 0;
    for (const QString &l : lineas.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList p = l.split(QLatin1Char(':'));
        const double importe = p[2].toDouble();
        const double mc = p.size() > 3 ? p[3].toDouble() : importe;
        const bool debe = p[1] == QLatin1String("D");
        const QVariant nulo(QMetaType(QMetaType::Double));
        c.Ejecutar(QStringLiteral("Insert Into cceAsientoCuenta (ACuIDAsiento, ACuCuenta, ACuDebe, AcuHaber, ACuImporteMC, ACuOrden)"
                                  " Values (?, ?, ?, ?, ?, ?)"),
                   {id, p[0].toInt(), debe ? QVariant(importe) : nulo, debe ? nulo : QVariant(importe), mc, ++orden});
    }
    return qint32(id);
}

QStringList DatosAsientos::Filas(const QString &sql, const QVariantList &valores)
{
    QStringList r;
    for (auto rs = conexion().Abrir(sql, valores); !rs->Fin(); rs->MoverSiguiente()) {
        QStringList celdas;
        for (int c = 0; c < rs->CantidadCampos(); ++c) {
            const QVariant v = rs->Campo(c);
            // PostgreSQL hands numeric columns back as text with their scale.
            const bool decimal = v.typeId() == QMetaType::Double || v.toString().contains(QLatin1Char('.'));
            celdas << (v.isNull() ? QStringLiteral("null") : decimal ? QString::number(v.toDouble(), 'f', 2) : v.toString());
        }
        r << celdas.join(QLatin1Char('|'));
    }
    return r;
}

void DatosAsientos::Cargar(qint32 id)
{
    ASSERT_FALSE(CargarAsientoEnGrilla(asientos, conexion(), id, 0));
    for (int r = grilla.FilasFijas(); r < grilla.Filas(); ++r)
        if (asientos.EsFilaCabezal(r) && grilla.Dato(r, 0).toInt() == id)
            return asientos.TomarAsientoDeFila(r);
    ADD_FAILURE() << "entry " << id << " not in the grid";
}

QString FilaComoTexto(const Grilla &g, int fila)
{
    QStringList textos;
    QStringList datos;
    for (int c = 0; c < g.Columnas(); ++c) {
        textos << g.Texto(fila, c).simplified(); // the header padding depends on the font
        const QVariant d = g.Dato(fila, c);
        datos << (d.typeId() == QMetaType::QDateTime ? d.toDateTime().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss.zzz"))
                  : d.typeId() == QMetaType::QDate   ? d.toDate().toString(Qt::ISODate)
                                                     : d.toString());
    }
    return textos.join(QLatin1Char('|')) + QStringLiteral(" #") + datos.join(QLatin1Char('|'));
}
