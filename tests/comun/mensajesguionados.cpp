#include "mensajesguionados.h"

#include <gtest/gtest.h>

ServicioMensajes::Respuesta MensajesGuionados::Preguntar(const QString &texto, Botones botones, const QString &titulo)
{
    mostrados << QStringLiteral("pregunta: ") + texto;
    titulosPreguntas << titulo;
    if (m_respuestas.isEmpty() && m_alPreguntar)
        return m_alPreguntar(botones);
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

void MensajesGuionados::Informar(const QString &texto)
{
    mostrados << QStringLiteral("información: ") + texto;
}

void MensajesGuionados::MostrarError(const QString &texto, const QString &titulo, const QString &detalle)
{
    mostrados << QStringLiteral("error: ") + texto;
    detalles << detalle;
    titulos << titulo;
}

bool MensajesGuionados::PedirNumero(const QString &texto, const QString &titulo, double &valor)
{
    mostrados << QStringLiteral("pedido: ") + texto + QStringLiteral(" [") + titulo + QStringLiteral("] ")
                     + QString::number(valor, 'f', 3);
    if (m_numeros.isEmpty() && m_alPedirNumero)
        m_numeros.append(m_alPedirNumero());
    const std::optional<double> v = m_numeros.isEmpty() ? std::nullopt : m_numeros.takeFirst();
    if (v)
        valor = *v;
    return v.has_value();
}
