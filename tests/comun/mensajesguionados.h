#pragma once

#include "services/serviciomensajes.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>

// A message service for tests: answers each question as the test said, in order, and
// records every text shown ("pregunta: ", "advertencia: ", "error: " + text). Once the
// answers given run out, the sources set below answer, when there are any.
class MensajesGuionados final : public ServicioMensajes
{
public:
    void Responder(Respuesta r) { m_respuestas.append(r); }
    // The next number asked for: a value, or cancel when none is given.
    void ResponderNumero(std::optional<double> v) { m_numeros.append(v); }
    // Answers every question and number asked after the prepared ones, as a person might.
    void ResponderSiempre(std::function<Respuesta(Botones)> preguntas, std::function<std::optional<double>()> numeros)
    {
        m_alPreguntar = std::move(preguntas);
        m_alPedirNumero = std::move(numeros);
    }

    void FijarIdioma(int idioma) override { m_idioma = idioma; }
    void FijarTitulo(const QString &titulo) override { m_titulo = titulo; }
    Respuesta Preguntar(const QString &texto, Botones botones, const QString &titulo = QString()) override;
    void Advertir(const QString &texto) override;
    void Informar(const QString &texto) override;
    bool PedirNumero(const QString &texto, const QString &titulo, double &valor) override;
    void MostrarError(const QString &texto, const QString &titulo, const QString &detalle) override;

    QStringList mostrados;
    QStringList detalles;
    QStringList titulos;
    QStringList titulosPreguntas; // each question's own title, empty for the application's
    int idioma() const { return m_idioma; }
    QString titulo() const { return m_titulo; }

private:
    QList<Respuesta> m_respuestas;
    QList<std::optional<double>> m_numeros;
    std::function<Respuesta(Botones)> m_alPreguntar;
    std::function<std::optional<double>()> m_alPedirNumero;
    int m_idioma = 0;
    QString m_titulo;
};
