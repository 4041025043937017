#include "serviciomensajesqt.h"

#include "currency/mascara.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include <cstdio>

namespace {
enum { kSi, kNo, kCancelar, kAceptar };

// Messages keep the catalogue's carriage returns; a label shows line feeds.
QString paraMostrar(QString texto)
{
    texto.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    texto.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return texto;
}

void escribir(const QString &tipo, const QString &texto)
{
    std::fprintf(stderr, "%s: %s\n", qPrintable(tipo), qPrintable(paraMostrar(texto).replace(QLatin1Char('\n'), QLatin1Char(' '))));
}
} // namespace

ServicioMensajesQt::ServicioMensajesQt(QWidget *padre, bool desatendido)
    : m_padre(padre)
    , m_desatendido(desatendido)
{
}

QString ServicioMensajesQt::boton(int cual) const
{
    static const char *const es[] = {"&Sí", "&No", "Cancelar", "Aceptar"};
    static const char *const en[] = {"&Yes", "&No", "Cancel", "OK"};
    return QString::fromUtf8(m_idioma == 2 ? en[cual] : es[cual]);
}

ServicioMensajes::Respuesta ServicioMensajesQt::Preguntar(const QString &texto, Botones botones, const QString &titulo)
{
    if (m_desatendido) {
        escribir(QStringLiteral("pregunta"), texto);
        return Respuesta::Si;
    }
    QMessageBox caja(QMessageBox::Question, titulo.isEmpty() ? m_titulo : titulo, paraMostrar(texto), QMessageBox::NoButton,
                     m_padre);
    if (botones == Botones::AceptarCancelar) {
        caja.setIcon(QMessageBox::Warning);
        QPushButton *aceptar = caja.addButton(boton(kAceptar), QMessageBox::AcceptRole);
        QPushButton *cancelar = caja.addButton(boton(kCancelar), QMessageBox::RejectRole);
        caja.setEscapeButton(cancelar);
        caja.setDefaultButton(aceptar);
        caja.exec();
        return caja.clickedButton() == aceptar ? Respuesta::Si : Respuesta::Cancelar;
    }
    QPushButton *si = caja.addButton(boton(kSi), QMessageBox::YesRole);
    QPushButton *no = caja.addButton(boton(kNo), QMessageBox::NoRole);
    QPushButton *cancelar = nullptr;
    if (botones == Botones::SiNoCancelar) {
        cancelar = caja.addButton(boton(kCancelar), QMessageBox::RejectRole);
        caja.setEscapeButton(cancelar);
    } else {
        caja.setEscapeButton(no);
    }
    caja.setDefaultButton(si);
    caja.exec();
    if (caja.clickedButton() == si)
        return Respuesta::Si;
    if (cancelar && caja.clickedButton() == cancelar)
        return Respuesta::Cancelar;
    return Respuesta::No;
}

void ServicioMensajesQt::Advertir(const QString &texto)
{
    aviso(QMessageBox::Warning, QStringLiteral("advertencia"), texto);
}

void ServicioMensajesQt::Informar(const QString &texto)
{
    aviso(QMessageBox::Information, QStringLiteral("información"), texto);
}

void ServicioMensajesQt::aviso(int icono, const QString &clase, const QString &texto)
{
    if (m_desatendido) {
        escribir(clase, texto);
        return;
    }
    QMessageBox caja(QMessageBox::Icon(icono), m_titulo, paraMostrar(texto), QMessageBox::NoButton, m_padre);
    caja.setDefaultButton(caja.addButton(boton(kAceptar), QMessageBox::AcceptRole));
    caja.exec();
}

bool ServicioMensajesQt::PedirNumero(const QString &texto, const QString &titulo, double &valor)
{
    if (m_desatendido) {
        escribir(QStringLiteral("pedido"), texto);
        return false;
    }
    // The number is typed as text and read by the amounts' rule (either decimal mark, groups
    // of three only); a text that is no number is refused and asked for again.
    QInputDialog dialogo(m_padre);
    dialogo.setWindowTitle(titulo);
    dialogo.setLabelText(paraMostrar(texto));
    dialogo.setInputMode(QInputDialog::TextInput);
    dialogo.setTextValue(QLocale().toString(valor, 'f', 4));
    dialogo.setOkButtonText(boton(kAceptar));
    dialogo.setCancelButtonText(boton(kCancelar));
    for (;;) {
        if (dialogo.exec() != QDialog::Accepted || dialogo.textValue().trimmed().isEmpty())
            return false;
        double leido = 0;
        if (LeerNumero(dialogo.textValue().trimmed(), leido) && leido >= 0) {
            valor = leido;
            return true;
        }
        if (!m_numeroInvalido.isEmpty())
            Advertir(m_numeroInvalido);
    }
}

void ServicioMensajesQt::MostrarError(const QString &texto, const QString &titulo, const QString &detalle)
{
    if (m_desatendido) {
        escribir(QStringLiteral("error"), texto + QLatin1Char(' ') + detalle);
        return;
    }
    QMessageBox caja(QMessageBox::Critical, titulo.isEmpty() ? m_titulo : titulo, paraMostrar(texto),
                     QMessageBox::NoButton, m_padre);
    caja.setInformativeText(detalle);
    caja.setDefaultButton(caja.addButton(boton(kAceptar), QMessageBox::AcceptRole));
    caja.exec();
}
