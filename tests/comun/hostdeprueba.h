#pragma once

#include "shell/comandoshost.h"

#include <QStringList>

// The document's container in tests: hands over a base address and records every command
// address with its frame.
class HostDePrueba : public ContenedorHost
{
public:
    QString base;
    QStringList comandos;
    QStringList marcos;

    QString BaseHRef() const override { return base; }
    void Navegar(const QString &direccion, const QString &marco) override
    {
        comandos << direccion;
        marcos << marco;
    }
};
