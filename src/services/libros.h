#pragma once

#include "store/conexion.h"

#include <QList>
#include <QString>

// The books (genLibros) of the company: the user's own can be added, renamed and removed
// while no entry uses them; the books the system keeps for its own entries are listed but
// cannot be changed.
class Libros
{
public:
    enum class Resultado { Bien, DelSistema, EnUso, NombreVacio, NombreRepetido, NoExiste, ErrorBase };

    struct Libro
    {
        qint16 codigo = 0;
        QString nombre;
        bool delSistema = false;
    };

    explicit Libros(Conexion &conexion);

    QList<Libro> Listar();
    // Answers the new book's code in codigo.
    Resultado Agregar(const QString &nombre, qint16 &codigo);
    Resultado Renombrar(qint16 codigo, const QString &nombre);
    // Whether the book may be removed, before the user is asked; Eliminar checks again.
    Resultado PuedeEliminar(qint16 codigo);
    Resultado Eliminar(qint16 codigo);
    QString ultimoError() const { return m_error; }

    // The text that tells the user why a change was refused.
    static QString Explicacion(Resultado r);

private:
    Resultado validarNombre(const QString &nombre, qint16 salvo);
    Resultado modificable(qint16 codigo);
    Resultado eliminable(qint16 codigo);

    Conexion &m_conexion;
    QString m_error;
};
