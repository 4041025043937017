#pragma once

#include <QString>

// A failed operation: the catalogue number of the message to show and the error's detail
// line ("number - description"). Operations below the document answer this; only the
// document shows it.
// A rule's refusal names the text that tells it; a failure the operation's caller tells with
// its own text carries 0. deLaBase marks a failure of the database itself (nothing was
// written, and the same operation may work once the database answers again), as against a
// rule refusing it.
struct Fallo
{
    int numeroTexto = 0;
    QString detalle;
    bool deLaBase = false;
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
