#pragma once

#include "entries/historialasiento.h"

#include <QDialog>

#include <functional>

class QDialogButtonBox;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;

// The history of one entry, read-only: every write, oldest first, with who made it and when;
// the selected write's changes below.
class DialogoHistorial : public QDialog
{
    Q_OBJECT
public:
    // texto gives the catalogue text of a number (1000 and up); libros names the books.
    DialogoHistorial(qint32 asiID, const QList<HistorialAsiento::Fila> &filas, const QString &formatoFecha,
                     std::function<QString(int)> texto, QHash<int, QString> libros = {}, QWidget *padre = nullptr);

    // Offers the selected write's version back, with the button's caption: restaurar writes
    // it and answers whether it did (the dialog then closes). Without it the history is
    // read-only.
    void OfrecerRestaurar(const QString &caption, std::function<bool(const QJsonObject &)> restaurar);

private:
    void mostrarDetalle(int fila);
    bool restaurable(int fila) const;

    QList<HistorialAsiento::Fila> m_filas;
    std::function<QString(int)> m_texto;
    QHash<int, QString> m_libros;
    QTableWidget *m_tabla = nullptr;
    QPlainTextEdit *m_detalle = nullptr;
    QDialogButtonBox *m_botones = nullptr;
    QPushButton *m_restaurar = nullptr;
    std::function<bool(const QJsonObject &)> m_restaurarVersion;
};
