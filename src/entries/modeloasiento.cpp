#include "modeloasiento.h"

void ResetCabezal(CabezalAsiento &c, const QDateTime &ahora)
{
    c.FilaCabezal = -1;
    c.AsiID = 0;
    c.AsiEstado = 0;
    c.AsiFechaAsiento = ahora.date();
    c.AsiFechaModificado = ahora;
    c.AsiTipo = 0;
    c.AsiLeyenda.clear();
    c.AsiUsuarioVerificador = 0;
}

QString ClaveImagenEstado(qint16 estado)
{
    if (estado < 0)
        return QStringLiteral("borradorgrabar");
    switch (estado) {
    case EstadoAsiento::kBorrador:
        return QStringLiteral("borrador");
    case EstadoAsiento::kRegistrado:
        return QStringLiteral("asiento");
    case EstadoAsiento::kInconcluso:
        return QStringLiteral("inconcluso");
    default:
        return {};
    }
}

int TextoMenuEstado(qint16 estado)
{
    if (estado < 0)
        return 1007;
    return estado == EstadoAsiento::kBorrador ? 1005 : 0;
}

QString TextoCuenta(const QString &codigo, const QString &nombre, bool mostrarCodigo)
{
    const QString c = codigo.trimmed();
    const QString n = nombre.trimmed();
    if (!mostrarCodigo || c.isEmpty())
        return n;
    return c + QStringLiteral(" - ") + n;
}
