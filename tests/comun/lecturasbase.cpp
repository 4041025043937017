#include "lecturasbase.h"

#include <cmath>

namespace {
// Half away from zero, as amounts are rounded for display.
qint64 redondear(qint64 diezmilesimos, int decimales)
{
    qint64 paso = 1;
    for (int i = decimales; i < 4; ++i)
        paso *= 10;
    const qint64 mitad = paso / 2;
    return diezmilesimos >= 0 ? (diezmilesimos + mitad) / paso : -((-diezmilesimos + mitad) / paso);
}
} // namespace

bool SumasAsiento::Balancea(int decimales) const
{
    return lineasDebe > 0 && lineasHaber > 0 && redondear(debe, decimales) == redondear(haber, decimales);
}

QHash<qint32, SumasAsiento> SumasPorAsiento(Conexion &conexion, qint32 empresa, qint16 estado)
{
    QHash<qint32, SumasAsiento> sumas;
    // An entry without lines comes once, with no line (a null amount).
    auto rs = conexion.Abrir(QStringLiteral("Select AsiID, AcuHaber, ACuImporteMC From cceAsientos LEFT JOIN cceAsientoCuenta"
                                            " ON AsiID = ACuIDAsiento Where AsiEmpresa = ? And AsiEstado = ?"),
                             {empresa, estado});
    const int id = rs->IndiceCampo(QStringLiteral("AsiID"));
    const int haber = rs->IndiceCampo(QStringLiteral("AcuHaber"));
    const int importe = rs->IndiceCampo(QStringLiteral("ACuImporteMC"));
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        SumasAsiento &s = sumas[rs->Campo(id).toInt()];
        if (rs->Campo(importe).isNull())
            continue;
        const qint64 v = std::llround(rs->Campo(importe).toDouble() * 10000.0);
        if (rs->Campo(haber).isNull()) {
            s.debe += v;
            ++s.lineasDebe;
        } else {
            s.haber += v;
            ++s.lineasHaber;
        }
    }
    rs->Cerrar();
    return sumas;
}

QHash<qint32, int> FilasHistorialPorAsiento(Conexion &conexion)
{
    QHash<qint32, int> filas;
    auto rs = conexion.Abrir(QStringLiteral("Select HisAsiento, Count(*) As Filas From cceAsientosHistorial Group By HisAsiento"));
    for (; !rs->Fin(); rs->MoverSiguiente())
        filas.insert(qint32(rs->Entero(QStringLiteral("HisAsiento"))), int(rs->Entero(QStringLiteral("Filas"))));
    rs->Cerrar();
    return filas;
}
