#pragma once

#include <QtGlobal>

// splitmix64: the same sequence from the same seed on every platform and compiler, so the
// demo and the volume databases come out identical run after run.
class Azar
{
public:
    explicit Azar(quint64 semilla)
        : m_estado(semilla)
    {
    }
    quint64 siguiente()
    {
        quint64 z = (m_estado += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    qint64 entre(qint64 desde, qint64 hasta) { return desde + qint64(siguiente() % quint64(hasta - desde + 1)); }
    bool porCiento(int p) { return entre(0, 99) < p; }

private:
    quint64 m_estado;
};

// Integer division rounding half away from zero; divisor > 0.
inline qint64 DividirRedondeando(qint64 a, qint64 b)
{
    return a >= 0 ? (2 * a + b) / (2 * b) : -((-2 * a + b) / (2 * b));
}
