#pragma once

#include "entries/historialasiento.h"

#include <QDialog>

class QPlainTextEdit;
class QTableWidget;

// The history of one entry, read-only: every write, oldest first, with who made it and when;
// the selected write's changes below.
class DialogoHistorial : public QDialog
{
    Q_OBJECT
public:
    DialogoHistorial(qint32 asiID, const QList<HistorialAsiento::Fila> &filas, const QString &formatoFecha,
                     QWidget *padre = nullptr);

    static QString NombreOperacion(const QString &operacion);

private:
    void mostrarDetalle(int fila);

    QList<HistorialAsiento::Fila> m_filas;
    QTableWidget *m_tabla = nullptr;
    QPlainTextEdit *m_detalle = nullptr;
};
