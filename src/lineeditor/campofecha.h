#pragma once

#include "store/reloj.h"

#include <QDate>
#include <QLineEdit>

#include <memory>

// A date field: a plain edit box that reads the whole typed date at once when the text is
// accepted, instead of correcting each part while it is typed (a spin-box date edit turns
// "31" typed over a November date into 30 before the month is reached).
//
// Reading: the parts come in the display format's day/month/year order, separated by any
// of "/", "-", ".", space, or as digits only ("31122025", "311225", "3112"). A two-digit
// year means 2000+yy; a missing year is the year of the date shown (today's by the clock
// the field was given, when none).
// A format with month names also takes the name as the display format writes it.
//
// Accepting: on Enter (through Aceptar(), which the owner calls before it moves the focus),
// on Tab or Shift+Tab, and when the focus leaves by any other means except a popup or a
// switch to another window. An accepted text is shown again in the display format.
// A text that is no date is refused: the text stays as typed, date() keeps the last
// accepted value and fechaInvalida() is emitted. A refused Tab keeps the focus in the
// field; a mouse click elsewhere cannot be undone, but the date still does not change.
// The field opens no message: the owner shows it. A handler that opens a dialog should be
// connected with Qt::QueuedConnection, as the refusal may be reported from a focus change.
//
// Up and Down move the date one day forward or back (from the typed date when it reads).
// Enter is not consumed: it goes on to the owner.
class CampoFecha : public QLineEdit
{
    Q_OBJECT
public:
    explicit CampoFecha(std::shared_ptr<const Reloj> reloj, QWidget *padre = nullptr);

    // The last accepted date; null until one is set or accepted.
    QDate date() const { return m_fecha; }
    // Shows the date in the display format and drops any typed text; an invalid date is
    // ignored. Emits dateChanged() when the date differs from the last one.
    void setDate(const QDate &fecha);

    // A field that may hold no date accepts a blank text as none: date() is then null.
    void setPermitirVacia(bool permitir) { m_permitirVacia = permitir; }
    // Drops the date and the text; emits dateChanged() when there was a date.
    void Vaciar();

    // A Qt date format ("dd/MM/yyyy"); it fixes the order of the parts when reading.
    void setDisplayFormat(const QString &formatoQt);
    QString displayFormat() const { return m_formato; }

    // Reads the text now. True when it is the date shown or a new date (then accepted,
    // shown formatted, and dateChanged() emitted); false when refused (fechaInvalida()).
    bool Aceptar();

    // Reads a whole typed date in the order of the Qt format; a null date when the text is
    // no date. A missing year is taken from `referencia`.
    static QDate LeerFecha(const QString &texto, const QString &formatoQt, const QDate &referencia);

signals:
    void dateChanged(const QDate &fecha);
    void fechaInvalida();

protected:
    bool focusNextPrevChild(bool siguiente) override;
    void focusOutEvent(QFocusEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;

private:
    void moverDias(int dias);
    // The date a typed text is read against: the one shown, else today.
    QDate referencia() const;

    std::shared_ptr<const Reloj> m_reloj;
    QDate m_fecha;
    QString m_formato = QStringLiteral("dd/MM/yyyy");
    bool m_permitirVacia = false;
};
