#pragma once

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <functional>

// Runs accion, and answers each modal dialog of type T that comes up meanwhile as usuario
// says; one left open is cancelled (rejected). Answers how many came up. A dialog opened
// from usuario (a nested one) is answered by a ConDialogo called inside it.
template <class T>
int ConDialogo(const std::function<void()> &accion, const std::function<void(T &)> &usuario = {})
{
    int veces = 0;
    bool atendiendo = false;
    QTimer sondeo;
    sondeo.setInterval(5);
    QObject::connect(&sondeo, &QTimer::timeout, [&] {
        auto *d = qobject_cast<T *>(QApplication::activeModalWidget());
        if (atendiendo || !d || !d->isVisible())
            return;
        atendiendo = true;
        ++veces;
        // Keys go where the focus is: the dialog is the active window, as on a screen.
        QApplication::setActiveWindow(d);
        if (usuario)
            usuario(*d);
        if (d->isVisible())
            d->reject();
        atendiendo = false;
    });
    sondeo.start();
    accion();
    return veces;
}
