#pragma once

#include <QCursor>
#include <QGuiApplication>

// Shows the busy pointer for as long as it lives: the length of a command or a lookup.
class Ocupado
{
public:
    Ocupado() { QGuiApplication::setOverrideCursor(QCursor(Qt::BusyCursor)); }
    ~Ocupado() { QGuiApplication::restoreOverrideCursor(); }
    Ocupado(const Ocupado &) = delete;
    Ocupado &operator=(const Ocupado &) = delete;
};
