#include "campocalculadora.h"

#include "currency/mascara.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include <cmath>

CampoCalculadora::CampoCalculadora(const QString &nombre, QWidget *padre)
    : QLineEdit(padre)
{
    setObjectName(nombre);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (!m_mostrando)
            m_tieneValor = false;
    });
}

bool CampoCalculadora::Evaluar(const QString &texto, double &valor, const QLocale &locale)
{
    // Numbers joined by + - * /, multiplication and division first; a leading sign is allowed.
    const QString t = texto.trimmed();
    if (t.isEmpty())
        return false;
    QList<double> terminos;
    QList<QChar> operadores;
    QString numero;
    auto cerrar = [&]() {
        double v = 0;
        if (numero.isEmpty() || !LeerNumero(numero, v, locale))
            return false;
        terminos << v;
        numero.clear();
        return true;
    };
    for (qsizetype i = 0; i < t.size(); ++i) {
        const QChar c = t.at(i);
        const bool signo = (c == u'-' || c == u'+') && numero.trimmed().isEmpty();
        if ((c == u'+' || c == u'-' || c == u'*' || c == u'/') && !signo) {
            if (!cerrar())
                return false;
            operadores << c;
        } else if (c == u'+') {
            continue;
        } else {
            numero += c;
        }
    }
    if (!cerrar())
        return false;
    // Multiplications and divisions, then sums, left to right.
    for (qsizetype i = 0; i < operadores.size();) {
        if (operadores[i] == u'*' || operadores[i] == u'/') {
            if (operadores[i] == u'/' && terminos[i + 1] == 0)
                return false;
            terminos[i] = operadores[i] == u'*' ? terminos[i] * terminos[i + 1] : terminos[i] / terminos[i + 1];
            terminos.removeAt(i + 1);
            operadores.removeAt(i);
        } else {
            ++i;
        }
    }
    double resultado = terminos[0];
    for (qsizetype i = 0; i < operadores.size(); ++i)
        resultado += operadores[i] == u'+' ? terminos[i + 1] : -terminos[i + 1];
    if (!std::isfinite(resultado))
        return false;
    valor = resultado;
    return true;
}

bool CampoCalculadora::EsNumeroValido() const
{
    if (m_tieneValor)
        return true;
    double v = 0;
    return Evaluar(text(), v, locale());
}

bool CampoCalculadora::EsTextoInvalido() const
{
    return !text().trimmed().isEmpty() && !EsNumeroValido();
}

double CampoCalculadora::Valor() const
{
    if (m_tieneValor)
        return m_valor;
    double v = 0;
    return Evaluar(text(), v, locale()) ? v : 0.0;
}

void CampoCalculadora::FijarValor(double valor)
{
    m_valor = valor;
    m_tieneValor = true;
    mostrar();
}

void CampoCalculadora::Limpiar()
{
    m_tieneValor = false;
    m_valor = 0;
    m_mostrando = true;
    clear();
    m_mostrando = false;
}

void CampoCalculadora::FijarMascara(const QString &mascara)
{
    m_mascara = mascara;
    if (m_tieneValor)
        mostrar();
}

void CampoCalculadora::FijarFondo(const QColor &color)
{
    QPalette p = palette();
    p.setColor(QPalette::Base, color);
    setPalette(p);
}

QString CampoCalculadora::TextoConMascara(const QString &mascara) const
{
    if (!EsNumeroValido())
        return {};
    return mascara.isEmpty() ? ::Mascara(QString()).FormatearNumero(Valor(), locale()) : ::Mascara(mascara).Formatear(Valor(), locale());
}

void CampoCalculadora::mostrar()
{
    // With the focus the field shows the plain number to edit; without it, the mask.
    const QLocale l = locale();
    const QString texto = hasFocus() || m_mascara.isEmpty() ? ::Mascara(QString()).FormatearNumero(m_valor, l)
                                                            : ::Mascara(m_mascara).Formatear(m_valor, l);
    m_mostrando = true;
    setText(texto);
    m_mostrando = false;
}

void CampoCalculadora::focusInEvent(QFocusEvent *evento)
{
    if (!text().isEmpty() && EsNumeroValido()) {
        const double v = Valor();
        m_valor = v;
        m_tieneValor = true;
        mostrar();
    }
    QLineEdit::focusInEvent(evento);
    selectAll();
}

void CampoCalculadora::focusOutEvent(QFocusEvent *evento)
{
    QLineEdit::focusOutEvent(evento);
    if (!text().isEmpty() && EsNumeroValido()) {
        m_valor = Valor();
        m_tieneValor = true;
        mostrar();
    } else if (EsTextoInvalido() && evento->reason() != Qt::PopupFocusReason
               && evento->reason() != Qt::ActiveWindowFocusReason) {
        emit TextoInvalido();
    }
}

void CampoCalculadora::keyPressEvent(QKeyEvent *evento)
{
    // The keypad's decimal key sends "." or "," by the keyboard's layout; the number wants
    // the locale's mark.
    if ((evento->modifiers() & Qt::KeypadModifier) && (evento->key() == Qt::Key_Period || evento->key() == Qt::Key_Comma)) {
        insert(locale().decimalPoint());
        evento->accept();
        return;
    }
    const bool fin = evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter;
    QLineEdit::keyPressEvent(evento);
    if (fin && EsTextoInvalido())
        emit TextoInvalido();
}
