#pragma once

#include "editing/datosdocumento.h"

#include <QList>
#include <QString>

#include <utility>

// The frequent entries a user used last (registered, or made from an entry), kept in the
// user's settings as their ids joined by ",", the latest first, at most kMaximo.
class FrecuentesRecientes
{
public:
    static constexpr int kMaximo = 10;

    explicit FrecuentesRecientes(const DatosDocumento &datos);

    // The ids kept; empty when none. Throws ErrorBaseDatos when they cannot be read.
    QList<qint32> Leer() const;
    // Puts an id first; throws ErrorBaseDatos when the settings cannot be read or written,
    // and then leaves the list kept as it was.
    void Agregar(qint32 mfrID);
    // The recent menu's items: the name and id of every kept template that still exists and
    // is not scheduled, in the order kept. Throws ErrorBaseDatos.
    QList<std::pair<QString, qint32>> CargarFrecuentesRecientes() const;

private:
    const DatosDocumento &m_datos;
};
