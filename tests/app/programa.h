#pragma once

#include <QProcess>
#include <QStringList>

// What the program answered: its exit status (-1 when it crashed) and what it wrote.
struct Salida
{
    int estado = -1;
    QString salida;
    QString errores;
};

// Runs the program as a user runs it from a terminal without a display, in the Spanish
// locale (or locale, "C" for none), with home as its home folder. antes runs it (as another
// user, say); programa is a copy of it that user may reach.
inline Salida Correr(const QStringList &argumentos, const QString &home, const QStringList &antes = {},
                     const QString &programa = QStringLiteral(ASIENTOS_PROGRAMA),
                     const QString &locale = QStringLiteral("es_UY.UTF-8"))
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("LC_ALL"), locale);
    env.remove(QStringLiteral("LANG"));
    env.remove(QStringLiteral("LANGUAGE"));
    env.remove(QStringLiteral("QT_QPA_PLATFORM")); // nothing here may need a display
    env.remove(QStringLiteral("DISPLAY"));
    p.setProcessEnvironment(env);
    const QStringList todo = antes + QStringList{programa} + argumentos;
    p.start(todo.first(), todo.mid(1));
    p.waitForFinished(120000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}
