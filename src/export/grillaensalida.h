#pragma once

#include "entries/grilla.h"

// The grid while it is read for paper or a file: redraw off and the closing "new entry"
// row, which is the screen's and not data, left out. Both come back however the output
// ends.
class GrillaEnSalida
{
public:
    explicit GrillaEnSalida(Grilla &g)
        : m_g(g)
        , m_redibujar(g.Redibujar())
        , m_ultima(g.Filas() - 1)
        , m_ultimaOculta(m_ultima >= g.FilasFijas() && g.Fila(m_ultima).oculta)
    {
        m_g.FijarRedibujar(false);
        if (m_ultima >= m_g.FilasFijas())
            m_g.FijarFilaOculta(m_ultima, true);
    }
    ~GrillaEnSalida()
    {
        if (m_ultima >= m_g.FilasFijas())
            m_g.FijarFilaOculta(m_ultima, m_ultimaOculta);
        m_g.FijarRedibujar(m_redibujar);
    }
    GrillaEnSalida(const GrillaEnSalida &) = delete;
    GrillaEnSalida &operator=(const GrillaEnSalida &) = delete;

private:
    Grilla &m_g;
    bool m_redibujar;
    int m_ultima;
    bool m_ultimaOculta;
};
