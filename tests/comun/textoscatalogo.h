#pragma once

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QString>

// A catalogue's text of a number (language 1 Spanish, 2 English), as the file holds it
// (escapes such as \r are left as written; few of the screens' own words, from 2000 on,
// have any).
inline QString TextoEnIdioma(int idioma, int numero)
{
    static const QHash<int, QString> textos = [] {
        QHash<int, QString> t;
        // The catalogues lie in the sources' resources, two folders above the tests' helper script.
        for (int i : {1, 2}) {
            QFile f(QFileInfo(QStringLiteral(ASIENTOS_LEER_ARCHIVO)).absolutePath()
                    + QStringLiteral("/../../resources/lang/LNG_TCO_00%1.txt").arg(i));
            if (f.open(QIODevice::ReadOnly))
                for (const QString &linea : QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'))) {
                    const qsizetype tab = linea.indexOf(QLatin1Char('\t'));
                    if (tab > 0)
                        t.insert(i * 100000 + linea.left(tab).toInt(), linea.mid(tab + 1));
                }
        }
        return t;
    }();
    return textos.value(idioma * 100000 + numero);
}

inline QString TextoEspanol(int numero)
{
    return TextoEnIdioma(1, numero);
}
