#include "lineeditor/campofecha.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QRegularExpression>

#include <array>
#include <utility>

namespace {

enum class Parte { Dia, Mes, Anio };

// The order of day, month and year in a Qt date format. Quoted text and weekday names
// ("ddd", "dddd") are skipped; a part the format lacks goes last, in day-month-year order.
std::array<Parte, 3> OrdenDe(const QString &formato)
{
    std::array<Parte, 3> orden{};
    int n = 0;
    auto agregar = [&](Parte p) {
        for (int i = 0; i < n; ++i)
            if (orden[i] == p)
                return;
        orden[n++] = p;
    };
    bool entreComillas = false;
    for (qsizetype i = 0; i < formato.size();) {
        const QChar c = formato.at(i);
        qsizetype largo = 1;
        while (i + largo < formato.size() && formato.at(i + largo) == c)
            ++largo;
        if (c == u'\'')
            entreComillas = largo % 2 ? !entreComillas : entreComillas;
        else if (!entreComillas && c == u'd' && largo <= 2)
            agregar(Parte::Dia);
        else if (!entreComillas && c == u'M')
            agregar(Parte::Mes);
        else if (!entreComillas && c == u'y')
            agregar(Parte::Anio);
        i += largo;
    }
    for (Parte p : {Parte::Dia, Parte::Mes, Parte::Anio})
        agregar(p);
    return orden;
}

bool SoloDigitos(const QString &texto)
{
    for (QChar c : texto)
        if (c < u'0' || c > u'9')
            return false;
    return !texto.isEmpty();
}

// Cuts a digits-only text into its parts: four digits are day and month, six take a
// two-digit year and eight a four-digit one. Any other length is no date.
QStringList CortarDigitos(const QString &texto, const std::array<Parte, 3> &orden)
{
    const qsizetype largo = texto.size();
    if (largo != 4 && largo != 6 && largo != 8)
        return {};
    QStringList partes;
    qsizetype desde = 0;
    for (Parte p : orden) {
        if (p == Parte::Anio && largo == 4)
            continue;
        const qsizetype n = p == Parte::Anio && largo == 8 ? 4 : 2;
        partes << texto.mid(desde, n);
        desde += n;
    }
    return partes;
}

QString Mostrar(const QDate &fecha, const QString &formato)
{
    return fecha.isValid() ? QLocale().toString(fecha, formato) : QString();
}

} // namespace

CampoFecha::CampoFecha(std::shared_ptr<const Reloj> reloj, QWidget *padre)
    : QLineEdit(padre)
    , m_reloj(std::move(reloj))
{
}

QDate CampoFecha::referencia() const
{
    return m_fecha.isValid() ? m_fecha : m_reloj->Hoy();
}

QDate CampoFecha::LeerFecha(const QString &texto, const QString &formatoQt, const QDate &referencia)
{
    const QString t = texto.trimmed();
    if (t.isEmpty())
        return {};
    const std::array<Parte, 3> orden = OrdenDe(formatoQt);
    static const QRegularExpression separadores(QStringLiteral("[/\\-. ]+"));
    const QStringList partes = SoloDigitos(t) ? CortarDigitos(t, orden) : t.split(separadores);
    if (partes.size() != 2 && partes.size() != 3) {
        // A month written as a name ("31 dic 2025" in a "dd MMM yyyy" format).
        return QLocale().toDate(t, formatoQt);
    }
    int dia = 0, mes = 0;
    int anio = referencia.year();
    qsizetype i = 0;
    for (Parte p : orden) {
        if (p == Parte::Anio && partes.size() == 2)
            continue; // no year typed: the one shown
        const QString &parte = partes.at(i++);
        if (!SoloDigitos(parte))
            return QLocale().toDate(t, formatoQt);
        const int valor = parte.toInt();
        if (p == Parte::Anio) {
            if (parte.size() != 2 && parte.size() != 4)
                return {};
            // A two-digit year is always this century: "25" is 2025, "99" is 2099.
            anio = parte.size() == 2 ? 2000 + valor : valor;
        } else {
            if (parte.size() > 2)
                return {};
            (p == Parte::Dia ? dia : mes) = valor;
        }
    }
    return QDate(anio, mes, dia); // null when the day does not exist in that month
}

void CampoFecha::setDate(const QDate &fecha)
{
    if (!fecha.isValid())
        return;
    const bool cambia = fecha != m_fecha;
    m_fecha = fecha;
    setText(Mostrar(m_fecha, m_formato));
    if (cambia)
        emit dateChanged(m_fecha);
}

void CampoFecha::setDisplayFormat(const QString &formatoQt)
{
    m_formato = formatoQt;
    if (m_fecha.isValid())
        setText(Mostrar(m_fecha, m_formato));
}

void CampoFecha::Vaciar()
{
    const bool cambia = m_fecha.isValid();
    m_fecha = QDate();
    clear();
    if (cambia)
        emit dateChanged(m_fecha);
}

bool CampoFecha::Aceptar()
{
    if (text() == Mostrar(m_fecha, m_formato))
        return true;
    if (m_permitirVacia && text().trimmed().isEmpty()) {
        Vaciar();
        return true;
    }
    const QDate leida = LeerFecha(text(), m_formato, referencia());
    if (!leida.isValid()) {
        emit fechaInvalida();
        return false;
    }
    setDate(leida);
    return true;
}

bool CampoFecha::focusNextPrevChild(bool siguiente)
{
    // Tab and Shift+Tab come here before the focus moves; a refused date keeps it.
    if (hasFocus() && !Aceptar())
        return true;
    return QLineEdit::focusNextPrevChild(siguiente);
}

void CampoFecha::focusOutEvent(QFocusEvent *evento)
{
    // A popup menu or another window takes the focus only for a while: the user has not
    // left the field, and a message shown on refusal would itself take the focus again.
    if (evento->reason() != Qt::PopupFocusReason && evento->reason() != Qt::ActiveWindowFocusReason)
        Aceptar();
    QLineEdit::focusOutEvent(evento);
}

void CampoFecha::keyPressEvent(QKeyEvent *evento)
{
    const bool sinModificador = (evento->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (sinModificador && (evento->key() == Qt::Key_Up || evento->key() == Qt::Key_Down)) {
        moverDias(evento->key() == Qt::Key_Up ? 1 : -1);
        evento->accept();
        return;
    }
    if (evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter)
        Aceptar();
    // The line edit leaves Enter unconsumed, so it still reaches the owner.
    QLineEdit::keyPressEvent(evento);
}

void CampoFecha::moverDias(int dias)
{
    QDate base = LeerFecha(text(), m_formato, referencia());
    if (!base.isValid())
        base = referencia();
    setDate(base.addDays(dias));
}
