#pragma once

#include <QLineEdit>
#include <QLocale>

// A calculator field: a numeric edit box that accepts a number or a short calculation
// ("1250*1,22", "100+25,5-3") in the user's locale, shows its value through a mask when it
// does not have the focus, and keeps a free text tag.
class CampoCalculadora : public QLineEdit
{
    Q_OBJECT
public:
    explicit CampoCalculadora(const QString &nombre, QWidget *padre = nullptr);

    // The value of the text; 0 when it is no number.
    double Valor() const;
    // Whether the text is a number or a calculation that gives one.
    bool EsNumeroValido() const;
    void FijarValor(double valor);
    void Limpiar();

    void FijarMascara(const QString &mascara);
    QString Mascara() const { return m_mascara; }
    void FijarFondo(const QColor &color);

    QString Tag;

    // Evaluates a number or calculation in the locale; false when it is neither.
    static bool Evaluar(const QString &texto, double &valor, const QLocale &locale = QLocale());

protected:
    void focusInEvent(QFocusEvent *evento) override;
    void focusOutEvent(QFocusEvent *evento) override;

private:
    void mostrar();

    QString m_mascara;
    bool m_tieneValor = false;
    double m_valor = 0;
    bool m_mostrando = false;
};
