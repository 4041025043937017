#pragma once

#include "store/conexion.h"

#include <functional>

#include <QDialog>
#include <QList>
#include <QString>

class QTreeWidget;
class QPushButton;
class ServicioMensajes;

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

// The books manager: a list of the books with Add, Rename and Remove, driven by the keyboard
// (Insert adds, F2 renames, Delete removes). Its questions, refusals and failures go through
// the message service; a failure to read the books is told with catalogue text 1932.
class GestorLibros : public QDialog
{
    Q_OBJECT
public:
    GestorLibros(Conexion &conexion, ServicioMensajes &mensajes, std::function<QString(int)> texto, QWidget *padre = nullptr);

protected:
    void keyPressEvent(QKeyEvent *evento) override;

private:
    void cargar(qint16 elegir = 0);
    qint16 codigoActual() const;
    void agregar();
    void renombrar();
    void eliminar();
    void avisar(Libros::Resultado r);
    void actualizarBotones();

    Libros m_libros;
    ServicioMensajes &m_mensajes;
    std::function<QString(int)> m_texto;
    QTreeWidget *m_lista = nullptr;
    QPushButton *m_renombrar = nullptr;
    QPushButton *m_eliminar = nullptr;
};
