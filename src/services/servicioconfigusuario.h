#pragma once

#include "store/conexion.h"

#include <QHash>
#include <QString>

// Per-user settings by section and key (genConfigUsuario). Writes are kept until
// Confirmar(), which stores them all in one transaction. A failure of the database carries
// text 0: the caller tells it with its own text.
class ServicioConfigUsuario
{
public:
    // opciones is the suite's open argument (always 0 here).
    ServicioConfigUsuario(Conexion &conexion, int idUsuario, int opciones = 0);

    // The stored value, or empty text when there is none.
    Resultado<QString> Leer(const QString &seccion, const QString &clave);
    void Escribir(const QString &seccion, const QString &clave, const QString &valor);
    // Nothing is stored when it fails, and the writes stay kept.
    [[nodiscard]] std::optional<Fallo> Confirmar();

private:
    Conexion &m_conexion;
    int m_idUsuario;
    QHash<QPair<QString, QString>, QString> m_pendientes;
};
