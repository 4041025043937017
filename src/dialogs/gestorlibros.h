#pragma once

#include "services/libros.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <optional>

class QTreeWidget;
class QPushButton;
class ServicioMensajes;

// The books manager: a list of the books with Add, Rename and Remove, driven by the keyboard
// (Insert adds, F2 renames, Delete removes). Its questions, refusals and failures go through
// the message service in the catalogue's texts; a failure to read the books is told with text
// 1932.
class GestorLibros : public QDialog
{
    Q_OBJECT
public:
    GestorLibros(Conexion &conexion, ServicioMensajes &mensajes, std::function<QString(int)> texto, QWidget *padre = nullptr);

protected:
    void keyPressEvent(QKeyEvent *evento) override;

private:
    QString texto(int numero) const { return m_texto ? m_texto(numero) : QString(); }
    void cargar(qint16 elegir = 0);
    qint16 codigoActual() const;
    void agregar();
    void renombrar();
    void eliminar();
    void avisar(const std::optional<Fallo> &fallo);
    void actualizarBotones();

    Libros m_libros;
    ServicioMensajes &m_mensajes;
    std::function<QString(int)> m_texto;
    QTreeWidget *m_lista = nullptr;
    QPushButton *m_renombrar = nullptr;
    QPushButton *m_eliminar = nullptr;
};
