#pragma once

#include "services/serviciomensajes.h"

#include <QPointer>
#include <QWidget>

// Message boxes titled with the application title, with button captions in the language
// of the catalogue. In unattended mode (a screenshot run) nothing is shown: each text is
// written to standard error and every question takes its first button.
class ServicioMensajesQt final : public ServicioMensajes
{
public:
    explicit ServicioMensajesQt(QWidget *padre = nullptr, bool desatendido = false);

    void FijarIdioma(int idioma) override { m_idioma = idioma; }
    void FijarTitulo(const QString &titulo) override { m_titulo = titulo; }
    void FijarTextoNumeroInvalido(const QString &texto) override { m_numeroInvalido = texto; }

    Respuesta Preguntar(const QString &texto, Botones botones, const QString &titulo = QString()) override;
    void Advertir(const QString &texto) override;
    void Informar(const QString &texto) override;
    bool PedirNumero(const QString &texto, const QString &titulo, double &valor) override;
    void MostrarError(const QString &texto, const QString &titulo, const QString &detalle) override;

private:
    QString boton(int cual) const;
    void aviso(int icono, const QString &clase, const QString &texto);

    QPointer<QWidget> m_padre;
    bool m_desatendido = false;
    int m_idioma = 1;
    QString m_titulo = QStringLiteral("Ingreso de Asientos");
    QString m_numeroInvalido;
};
