#include "dialectosql.h"

#include <QList>
#include <QRegularExpression>

namespace {

constexpr QChar kOpaco = u'\x01';

// Length of the quoted text starting at pos (quote included), with doubled quotes inside.
qsizetype largoCitado(const QString &s, qsizetype pos)
{
    const QChar comilla = s.at(pos);
    qsizetype i = pos + 1;
    while (i < s.size()) {
        if (s.at(i) == comilla) {
            if (i + 1 < s.size() && s.at(i + 1) == comilla) {
                i += 2;
                continue;
            }
            return i + 1 - pos;
        }
        ++i;
    }
    return s.size() - pos;
}

// Position of the ')' closing the '(' at pos, or s.size() when it is missing.
qsizetype cierreParentesis(const QString &s, qsizetype pos)
{
    int profundidad = 0;
    for (qsizetype i = pos; i < s.size(); ++i) {
        const QChar c = s.at(i);
        if (c == u'\'' || c == u'"') {
            i += largoCitado(s, i) - 1;
        } else if (c == u'(') {
            ++profundidad;
        } else if (c == u')') {
            if (--profundidad == 0)
                return i;
        }
    }
    return s.size();
}

// Text of one nesting level and a mask of the same length in which literals and the
// insides of parentheses are blotted out, so keyword searches only see this level.
struct Nivel
{
    QString texto;
    QString mascara;

    void agregar(const QString &t, bool opaco)
    {
        texto += t;
        mascara += opaco ? QString(t.size(), kOpaco) : t;
    }
};

QString adaptarNivel(const QString &sql, Motor motor);

Nivel separarNivel(const QString &sql, Motor motor)
{
    Nivel nivel;
    qsizetype i = 0;
    while (i < sql.size()) {
        const QChar c = sql.at(i);
        if (c == u'\'' || c == u'"') {
            const qsizetype n = largoCitado(sql, i);
            nivel.agregar(sql.mid(i, n), true);
            i += n;
        } else if (c == u'(') {
            const qsizetype fin = cierreParentesis(sql, i);
            nivel.agregar(QStringLiteral("("), false);
            nivel.agregar(adaptarNivel(sql.mid(i + 1, fin - i - 1), motor), true);
            if (fin < sql.size())
                nivel.agregar(QStringLiteral(")"), false);
            i = fin + 1;
        } else {
            nivel.agregar(QString(c), false);
            ++i;
        }
    }
    return nivel;
}

// Replaces every match of patron in the visible part of the level.
template <typename Reemplazo>
void reemplazarVisible(Nivel &nivel, const QRegularExpression &patron, Reemplazo nuevo)
{
    Nivel resultado;
    qsizetype desde = 0;
    auto it = patron.globalMatch(nivel.mascara);
    while (it.hasNext()) {
        const auto m = it.next();
        resultado.texto += nivel.texto.mid(desde, m.capturedStart() - desde);
        resultado.mascara += nivel.mascara.mid(desde, m.capturedStart() - desde);
        resultado.agregar(nuevo(m.captured()), false);
        desde = m.capturedEnd();
    }
    resultado.texto += nivel.texto.mid(desde);
    resultado.mascara += nivel.mascara.mid(desde);
    nivel = resultado;
}

const QRegularExpression &patronTop()
{
    static const QRegularExpression top(QStringLiteral("^(\\s*)Select\\s+Top\\s+(\\d+)\\s+"),
                                        QRegularExpression::CaseInsensitiveOption);
    return top;
}

// One select of a level: "Top n" becomes " LIMIT n" at its end. A half of a UNION is wrapped,
// since neither engine takes LIMIT on a bare half; numerar adds the half's number as a column.
QString limitarSelect(const QString &parte, const QString &mascara, bool esMitadDeUnion, bool numerar, int &alias)
{
    const auto m = patronTop().match(mascara);
    if (!m.hasMatch())
        return parte;

    const QString inicio = m.captured(1);
    const QString cantidad = m.captured(2);
    QString resto = parte.mid(m.capturedEnd());
    qsizetype finNucleo = resto.size();
    while (finNucleo > 0 && resto.at(finNucleo - 1).isSpace())
        --finNucleo;
    const QString cola = resto.mid(finNucleo);
    resto.truncate(finNucleo);

    const QString select = QStringLiteral("Select ") + resto + QStringLiteral(" LIMIT ") + cantidad;
    if (!esMitadDeUnion)
        return inicio + select + cola;
    const QString t = QStringLiteral("t") + QString::number(++alias);
    const QString columnas = numerar ? QString::number(alias) + QStringLiteral(" AS MitadUnion, ") + t + QStringLiteral(".*")
                                     : QStringLiteral("*");
    return inicio + QStringLiteral("Select ") + columnas + QStringLiteral(" From (") + select + QStringLiteral(") AS ") + t + cola;
}

QString adaptarNivel(const QString &sql, Motor motor)
{
    Nivel nivel = separarNivel(sql, motor);

    if (motor == Motor::PostgreSQL) {
        static const QRegularExpression like(QStringLiteral("\\bLike\\b"),
                                             QRegularExpression::CaseInsensitiveOption);
        static const QRegularExpression desc(QStringLiteral("\\bDesc\\b(?!\\s+NULLS\\b)"),
                                             QRegularExpression::CaseInsensitiveOption);
        reemplazarVisible(nivel, like, [](const QString &) { return QStringLiteral("ILIKE"); });
        reemplazarVisible(nivel, desc, [](const QString &d) { return d + QStringLiteral(" NULLS LAST"); });
    }

    static const QRegularExpression union_(QStringLiteral("\\bUNION(\\s+ALL)?\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    QList<qsizetype> cortes{0};
    QList<qsizetype> reanudar{0};
    bool todasAll = true;
    auto it = union_.globalMatch(nivel.mascara);
    while (it.hasNext()) {
        const auto m = it.next();
        cortes.append(m.capturedStart());
        reanudar.append(m.capturedEnd());
        todasAll = todasAll && !m.captured(1).isEmpty();
    }
    cortes.append(nivel.texto.size());

    const bool hayUnion = cortes.size() > 2;
    bool todasConTop = hayUnion;
    for (qsizetype k = 0; k + 1 < cortes.size(); ++k)
        todasConTop = todasConTop
                   && patronTop().match(nivel.mascara.mid(reanudar[k], cortes[k + 1] - reanudar[k])).hasMatch();
    // A UNION ALL of limited halves (the latest direct and the latest inverse quotation) is
    // read in the order of its halves. Neither engine promises that order, so it is made
    // explicit: each half carries its number and the whole is sorted by it.
    const bool numerar = todasConTop && todasAll;

    int alias = 0;
    QString resultado;
    for (qsizetype k = 0; k + 1 < cortes.size(); ++k) {
        if (k > 0)
            resultado += nivel.texto.mid(cortes[k], reanudar[k] - cortes[k]);
        const qsizetype a = reanudar[k];
        const qsizetype n = cortes[k + 1] - a;
        resultado += limitarSelect(nivel.texto.mid(a, n), nivel.mascara.mid(a, n), hayUnion, numerar, alias);
    }
    if (numerar)
        return QStringLiteral("Select * From (") + resultado + QStringLiteral(") AS tu Order By MitadUnion");
    return resultado;
}

} // namespace

QString AdaptarSQL(const QString &sql, Motor motor)
{
    return adaptarNivel(sql, motor);
}
