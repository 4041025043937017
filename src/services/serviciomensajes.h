#pragma once

#include "store/fallo.h"

#include <QString>

// The message service: questions, warnings and error displays. Everything the document
// says to the user after start-up goes through here, so tests can answer and listen.
class ServicioMensajes
{
public:
    // AceptarCancelar answers Si for "Aceptar".
    enum class Botones { SiNo, SiNoCancelar, AceptarCancelar };
    enum class Respuesta { Si, No, Cancelar };

    virtual ~ServicioMensajes() = default;

    // The language number of the catalogue in use: button captions follow it.
    virtual void FijarIdioma(int idioma) = 0;
    // Title of every message box (text 1000 of the catalogue).
    virtual void FijarTitulo(const QString &titulo) = 0;
    // What PedirNumero says of a typed text that is no number (catalogue text 1950).
    virtual void FijarTextoNumeroInvalido(const QString &texto) { Q_UNUSED(texto) }

    // A question; an empty titulo uses the application title.
    virtual Respuesta Preguntar(const QString &texto, Botones botones, const QString &titulo = QString()) = 0;
    // A warning: the warning icon and OK.
    virtual void Advertir(const QString &texto) = 0;
    // A piece of information: the information icon and OK.
    virtual void Informar(const QString &texto) = 0;
    // Asks for a number, proposing one; false when the user cancels or leaves it empty.
    virtual bool PedirNumero(const QString &texto, const QString &titulo, double &valor) = 0;
    // An error with its detail line; an empty titulo uses the application title.
    virtual void MostrarError(const QString &texto, const QString &titulo, const QString &detalle) = 0;
};
