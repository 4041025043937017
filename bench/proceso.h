#pragma once

// A program run as a whole process, with its output thrown away and offscreen, for the
// benches that compare the program with other tools.
#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <utility>
#include <vector>

struct Medida
{
    double segundos = 0;   // wall time from start to exit
    double cpuMs = 0;      // user + system time the operating system counts for it
    double memoriaMiB = 0; // peak resident memory
    int estado = -1;       // exit code; -1 when it did not exit
};

// entorno: variables set for the program alone.
inline Medida Correr(const QString &programa, const QStringList &argumentos,
                     const QList<std::pair<QByteArray, QByteArray>> &entorno = {})
{
    std::vector<QByteArray> partes{programa.toLocal8Bit()};
    for (const QString &a : argumentos)
        partes.push_back(a.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &p : partes)
        argv.push_back(p.data());
    argv.push_back(nullptr);

    QElapsedTimer reloj;
    reloj.start();
    const pid_t hijo = ::fork();
    if (hijo == 0) {
        const int nulo = ::open("/dev/null", O_WRONLY);
        ::dup2(nulo, 1);
        ::dup2(nulo, 2);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        for (const auto &[nombre, valor] : entorno)
            ::setenv(nombre.constData(), valor.constData(), 1);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    int estado = 0;
    rusage uso{};
    ::wait4(hijo, &estado, 0, &uso);
    Medida m;
    m.segundos = reloj.nsecsElapsed() / 1e9;
    m.cpuMs = (uso.ru_utime.tv_sec + uso.ru_stime.tv_sec) * 1e3 + (uso.ru_utime.tv_usec + uso.ru_stime.tv_usec) / 1e3;
    m.memoriaMiB = uso.ru_maxrss / 1024.0;
    m.estado = WIFEXITED(estado) ? WEXITSTATUS(estado) : -1;
    return m;
}
