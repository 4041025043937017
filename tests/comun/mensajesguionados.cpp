#include "mensajesguionados.h"

#include <gtest/gtest.h>

ServicioMensajes::Respuesta MensajesGuionados::Preguntar(const QString &texto, Botones)
{
    mostrados << QStringLiteral("pregunta: ") + texto;
    if (m_respuestas.isEmpty()) {
        ADD_FAILURE() << "pregunta sin respuesta preparada: " << texto.toStdString();
        return Respuesta::No;
    }
    return m_respuestas.takeFirst();
}

void MensajesGuionados::Advertir(const QString &texto)
{
    mostrados << QStringLiteral("advertencia: ") + texto;
}

void MensajesGuionados::MostrarError(const QString &texto, const QString &titulo, const QString &detalle)
{
    mostrados << QStringLiteral("error: ") + texto;
    detalles << detalle;
    titulos << titulo;
}
