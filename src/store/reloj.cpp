#include "reloj.h"

QDateTime Reloj::Ahora() const
{
    if (fijo())
        return m_fijado.addMSecs(m_desde.elapsed());
    const QDateTime t = QDateTime::currentDateTime();
    return QDateTime(t.date(), t.time(), Qt::UTC);
}

void Reloj::Fijar(const QDateTime &momento)
{
    m_fijado = QDateTime(momento.date(), momento.time(), Qt::UTC);
    m_desde.start();
}
