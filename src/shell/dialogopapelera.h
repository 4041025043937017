#pragma once

#include "editing/restauraciones.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPushButton;
class QTableWidget;

// The company's trash: the entries sent there, with their date, legend, who sent each and
// when; the selected one is given back ("Restaurar") or deleted for good ("Eliminar
// definitivamente", after a question). The list is read again after each.
class DialogoPapelera : public QDialog
{
    Q_OBJECT
public:
    DialogoPapelera(ComandosRestauracion &comandos, const std::function<QString(int)> &texto, const QString &formatoFecha,
                    QWidget *padre = nullptr);

    // Reads the trash again; false when the store could not be read (the user was told).
    bool Leer();

private:
    const ComandosRestauracion::EnPapelera *elegido() const;
    void actualizarBotones();

    ComandosRestauracion &m_comandos;
    std::function<QString(int)> m_texto;
    QString m_formatoFecha;
    QList<ComandosRestauracion::EnPapelera> m_lista;
    QTableWidget *m_tabla = nullptr;
    QLabel *m_vacia = nullptr;
    QPushButton *m_restaurar = nullptr;
    QPushButton *m_eliminar = nullptr;
};
