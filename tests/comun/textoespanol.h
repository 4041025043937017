#pragma once

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QString>

// The Spanish catalogue's text of a number, as the file holds it (escapes such as \r are left as
// written; few of the screens' own words, from 2000 on, have any).
inline QString TextoEspanol(int numero)
{
    static const QHash<int, QString> textos = [] {
        QHash<int, QString> t;
        // The catalogue lies in the sources' resources, two folders above the tests' helper script.
        QFile f(QFileInfo(QStringLiteral(ASIENTOS_LEER_ARCHIVO)).absolutePath() + QStringLiteral("/../../resources/lang/LNG_TCO_001.txt"));
        if (f.open(QIODevice::ReadOnly))
            for (const QString &linea : QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'))) {
                const qsizetype tab = linea.indexOf(QLatin1Char('\t'));
                if (tab > 0)
                    t.insert(linea.left(tab).toInt(), linea.mid(tab + 1));
            }
        return t;
    }();
    return textos.value(numero);
}
