#pragma once

#include "store/conexion.h"
#include "store/fallo.h"

#include <QList>
#include <QString>

#include <optional>

// The books (genLibros) of the company: the user's own can be added, renamed and removed
// while no entry uses them; the books the system keeps for its own entries are listed but
// cannot be changed. A change that is refused answers a Fallo with the catalogue text that
// says why; one the database failed is marked deLaBase and carries its detail.
class Libros
{
public:
    // The catalogue texts of the refusals.
    static constexpr int kDelSistema = 1969;
    static constexpr int kEnUso = 1970;
    static constexpr int kNombreVacio = 1971;
    static constexpr int kNombreRepetido = 1972;
    static constexpr int kNoExiste = 1973;
    static constexpr int kNoSeGuardo = 1974;

    struct Libro
    {
        qint16 codigo = 0;
        QString nombre;
        bool delSistema = false;
    };

    explicit Libros(Conexion &conexion);

    // A failure to read carries 0: the caller tells it with its own text.
    Resultado<QList<Libro>> Listar();
    // Answers the new book's code.
    Resultado<qint16> Agregar(const QString &nombre);
    std::optional<Fallo> Renombrar(qint16 codigo, const QString &nombre);
    // Whether the book may be removed, before the user is asked; Eliminar checks again.
    std::optional<Fallo> PuedeEliminar(qint16 codigo);
    std::optional<Fallo> Eliminar(qint16 codigo);

private:
    QList<Libro> listar();
    int validarNombre(const QString &nombre, qint16 salvo);
    int modificable(qint16 codigo);
    int eliminable(qint16 codigo);

    Conexion &m_conexion;
};
