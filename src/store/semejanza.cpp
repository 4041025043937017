#include "semejanza.h"

#include <sqlite3.h>

#include <QByteArray>

namespace {

bool coincide(QStringView p, QStringView t, QChar escape)
{
    qsizetype i = 0, j = 0;
    qsizetype comodin = -1; // the last "%" met, to go back to on a mismatch
    qsizetype desde = 0;    // where the text stood when it was met
    while (j < t.size()) {
        if (i < p.size()) {
            const QChar c = p[i];
            if (!escape.isNull() && c == escape && i + 1 < p.size()) {
                if (p[i + 1] == t[j]) {
                    i += 2;
                    ++j;
                    continue;
                }
            } else if (c == u'%') {
                comodin = i++;
                desde = j;
                continue;
            } else if (c == u'_' || c == t[j]) {
                ++i;
                ++j;
                continue;
            }
        }
        if (comodin < 0)
            return false;
        i = comodin + 1;
        j = ++desde;
    }
    while (i < p.size() && p[i] == u'%')
        ++i;
    return i == p.size();
}

QString texto(sqlite3_value *valor)
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(valor));
    return QString::fromUtf8(bytes, sqlite3_value_bytes(valor));
}

// like(patron, texto[, escape]): "texto LIKE patron [ESCAPE escape]" as SQLite calls it.
void like(sqlite3_context *contexto, int argumentos, sqlite3_value **valores)
{
    for (int k = 0; k < argumentos; ++k) {
        if (sqlite3_value_type(valores[k]) == SQLITE_NULL) {
            sqlite3_result_null(contexto);
            return;
        }
    }
    QChar escape;
    if (argumentos == 3) {
        const QString e = texto(valores[2]);
        if (e.size() != 1) {
            sqlite3_result_error(contexto, "ESCAPE expression must be a single character", -1);
            return;
        }
        escape = e.at(0).toCaseFolded();
    }
    sqlite3_result_int(contexto, CoincideLike(texto(valores[0]), texto(valores[1]), escape) ? 1 : 0);
}

} // namespace

bool CoincideLike(const QString &patron, const QString &texto, QChar escape)
{
    return coincide(patron.toCaseFolded(), texto.toCaseFolded(), escape.isNull() ? escape : escape.toCaseFolded());
}

bool RegistrarLikeSinMayusculas(const QVariant &manejador)
{
    if (!manejador.isValid() || qstrcmp(manejador.typeName(), "sqlite3*") != 0)
        return false;
    sqlite3 *base = *static_cast<sqlite3 *const *>(manejador.constData());
    if (!base)
        return false;
    const int banderas = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    return sqlite3_create_function_v2(base, "like", 2, banderas, nullptr, like, nullptr, nullptr, nullptr) == SQLITE_OK
        && sqlite3_create_function_v2(base, "like", 3, banderas, nullptr, like, nullptr, nullptr, nullptr) == SQLITE_OK;
}
