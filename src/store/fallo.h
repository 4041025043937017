#pragma once

#include <QString>

#include <utility>
#include <variant>

// A failed operation: the catalogue number of the message to show and the error's detail
// line ("number - description"). Operations of the data layer answer this (an action as
// std::optional<Fallo>, a read as Resultado<T>); only the commands above show it.
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

// What a read of the data layer answers: the value read, or why it could not be read.
template<class T>
class [[nodiscard]] Resultado
{
public:
    Resultado(T valor)
        : m_valor(std::in_place_index<0>, std::move(valor))
    {
    }
    Resultado(Fallo fallo)
        : m_valor(std::in_place_index<1>, std::move(fallo))
    {
    }

    explicit operator bool() const { return m_valor.index() == 0; }
    T &operator*() & { return std::get<0>(m_valor); }
    const T &operator*() const & { return std::get<0>(m_valor); }
    // From a read's result that is not kept, the value itself: a loop over it owns it.
    T operator*() && { return std::move(std::get<0>(m_valor)); }
    T *operator->() { return &std::get<0>(m_valor); }
    const T *operator->() const { return &std::get<0>(m_valor); }
    const Fallo &fallo() const { return std::get<1>(m_valor); }
    T value_or(T otro) const { return *this ? **this : std::move(otro); }

private:
    std::variant<T, Fallo> m_valor;
};
