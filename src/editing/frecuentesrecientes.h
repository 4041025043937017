#pragma once

#include "editing/datosdocumento.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

// The frequent entries a user used last (registered, or made from an entry), kept in the
// user's settings as their ids joined by ",", the latest first, at most kMaximo.
class FrecuentesRecientes
{
public:
    static constexpr int kMaximo = 10;

    explicit FrecuentesRecientes(const DatosDocumento &datos);

    // The ids kept; empty when none. A failure to read carries text 0, here and below: the
    // caller tells it with its own text.
    Resultado<QList<qint32>> Leer() const;
    // Puts an id first. When the settings cannot be read or written the list kept stays as
    // it was: a list that could not be read is never written over.
    [[nodiscard]] std::optional<Fallo> Agregar(qint32 mfrID);
    // The recent menu's items: the name and id of every kept template that still exists and
    // is not scheduled, in the order kept.
    Resultado<QList<std::pair<QString, qint32>>> CargarFrecuentesRecientes() const;

private:
    const DatosDocumento &m_datos;
};
