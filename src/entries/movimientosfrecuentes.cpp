#include "movimientosfrecuentes.h"

MovimientosFrecuentes::MovimientosFrecuentes(Conexion &conexion)
    : m_conexion(conexion)
{
}

qint32 MovimientosFrecuentes::Crear(const CabezalDatos &cabezal, const QVector<LineaDatos> &lineas,
                                    const QVector<qint16> &monedas, bool agendar, const QString &nombre)
{
    try {
        Transaccion tx(m_conexion);
        const QVariant sinTexto(QMetaType(QMetaType::QString));
        const qint32 id = qint32(m_conexion.Insertar(
            QStringLiteral("Insert Into genMovimientosFrecuentes (MFrEmpresa, MFrNombre, MFrRecurrencia, MFrFechaProxima, MFrFecha,"
                           " MFrLeyenda, MFrLibro, MFrUsuarioVerificador, MFrUsuario, MFrCreado) Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            {cabezal.Empresa, nombre, agendar ? QVariant(QString::fromLatin1(kRecurrenciaAgendado)) : sinTexto,
             agendar ? Conexion::ValorFecha(cabezal.Fecha) : Conexion::ValorFecha(QDate()), Conexion::ValorFecha(cabezal.Fecha),
             cabezal.Leyenda, cabezal.Libro, cabezal.Autoriza, cabezal.Usuario,
             Conexion::ValorFechaHora(AsientoDatos::SelloNuevo(QDateTime()))},
            QStringLiteral("MFrID")));
        for (int i = 0; i < lineas.size(); ++i) {
            const LineaDatos &l = lineas[i];
            m_conexion.Ejecutar(QStringLiteral("Insert Into genMovimientosFrecuentesLineas (MFLIDMovimiento, MFLOrden, MFLCuenta,"
                                               " MFLProyecto, MFLDepartamento, MFLMoneda, MFLEsDebe, MFLImporte, MFLTasa, MFLImporteMC)"
                                               " Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                                {id, i + 1, l.Cuenta, l.Proyecto, l.Departamento, monedas.value(i), l.AlDebe ? 1 : 0,
                                 l.Importe, l.Tasa, l.ImporteMC});
        }
        tx.Confirmar();
        return id;
    } catch (const ErrorBaseDatos &e) {
        m_error = e.descripcion();
        return 0;
    }
}
