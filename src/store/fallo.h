#pragma once

#include <QString>

// A failed operation: the catalogue number of the message to show and the error's detail
// line ("number - description"). Operations below the document answer this; only the
// document shows it.
struct Fallo
{
    int numeroTexto = 0;
    QString detalle;
};

// The detail line of an error display: number, " - ", description.
inline QString DetalleError(int numero, const QString &descripcion)
{
    // An error with no number of its own (one the program raised) shows its text alone.
    if (numero < 0)
        return descripcion;
    return QString::number(numero) + QStringLiteral(" - ") + descripcion;
}

class ErrorBaseDatos;
Fallo FalloDe(int numeroTexto, const ErrorBaseDatos &error);
