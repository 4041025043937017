#pragma once

#include <QLineEdit>
#include <QLocale>

// A calculator field: a numeric edit box that accepts a number or a short calculation
// ("1250*1,22", "100+25,5-3") in the field's locale (locale(), the user's unless set), shows
// its value through a mask when it does not have the focus, and keeps a free text tag.
// Each number of the text is read by LeerNumero (currency/mascara.h): "1,5" and "1.5" are
// both 1.5 in every locale, "1.500" is 1500 where "." groups, and a text such as "1.2.3,4"
// is refused, never read as some other number. The keypad's decimal key types the
// locale's decimal mark.
// A refused text stays as typed; the field tells its owner with TextoInvalido() when the
// user leaves it for another control of the window (Return, Enter, Tab, a click), not when
// a message box or a popup takes the focus. Showing a message and bringing the focus back
// is the owner's part.
class CampoCalculadora : public QLineEdit
{
    Q_OBJECT
public:
    explicit CampoCalculadora(const QString &nombre, QWidget *padre = nullptr);

    // The value of the text; 0 when it is no number.
    double Valor() const;
    // Whether the text is a number or a calculation that gives one (an empty text is not).
    bool EsNumeroValido() const;
    // Whether the text is not empty and yet refused: what the owner must not accept.
    bool EsTextoInvalido() const;
    void FijarValor(double valor);
    void Limpiar();
    // The value written by a mask (the plain number for none); empty when the text is empty
    // or no number.
    QString TextoConMascara(const QString &mascara) const;

    void FijarMascara(const QString &mascara);
    QString Mascara() const { return m_mascara; }
    void FijarFondo(const QColor &color);

    QString Tag;

    // Evaluates a number or calculation in the locale; false when it is neither.
    static bool Evaluar(const QString &texto, double &valor, const QLocale &locale = QLocale());

signals:
    // The user left the field, or pressed Return or Enter in it, with a refused text.
    void TextoInvalido();

protected:
    void focusInEvent(QFocusEvent *evento) override;
    void focusOutEvent(QFocusEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;

private:
    void mostrar();

    QString m_mascara;
    bool m_tieneValor = false;
    double m_valor = 0;
    bool m_mostrando = false;
};
