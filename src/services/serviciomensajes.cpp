#include "serviciomensajes.h"

QString DetalleError(int numero, const QString &descripcion)
{
    return QString::number(numero) + QStringLiteral(" - ") + descripcion;
}
