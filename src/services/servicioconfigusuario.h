#pragma once

#include "store/conexion.h"

#include <QHash>
#include <QString>

// Per-user settings by section and key (genConfigUsuario). Writes are kept until
// Confirmar(), which stores them all in one transaction.
class ServicioConfigUsuario
{
public:
    // opciones is the suite's open argument (always 0 here).
    ServicioConfigUsuario(Conexion &conexion, int idUsuario, int opciones = 0);

    // The stored value, or empty text when there is none.
    QString Leer(const QString &seccion, const QString &clave);
    void Escribir(const QString &seccion, const QString &clave, const QString &valor);
    void Confirmar();

private:
    Conexion &m_conexion;
    int m_idUsuario;
    QHash<QPair<QString, QString>, QString> m_pendientes;
};
