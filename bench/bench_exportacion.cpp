// The command-line export at volume: a database of 25,000 entries / 100,000 lines over two
// years (made by generar_base, or the one named by ASIENTOS_BENCH_BASE), then in one run the
// sqlite3 shell's CSV output of the export's own SQL, and the program exporting the same two
// years to CSV, a workbook and HTML. The goals: the CSV export at most 0.8 times the sqlite3
// shell ("veces_sqlite3") in under 40 MiB ("memoria_MiB"), the workbook and the page within
// 1.5 times the CSV export ("veces_csv"). Each run is a whole process, timed from start to
// exit, its peak memory read from the operating system.
#include "search/consultabusqueda.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace {

struct Banco
{
    QTemporaryDir carpeta;
    QString base;
    QString desde;
    QString hasta;
    QString sql;
    double segundosSqlite = 0;
    double segundosCSV = 0;
};

Banco &banco()
{
    static Banco b = [] {
        Banco x;
        const QByteArray dada = qgetenv("ASIENTOS_BENCH_BASE");
        if (!dada.isEmpty()) {
            x.base = QString::fromLocal8Bit(dada);
        } else {
            x.base = x.carpeta.filePath(QStringLiteral("grande.sqlite"));
            QProcess::execute(QStringLiteral(ASIENTOS_GENERAR_BASE), {x.base});
        }
        // The generator's two years end with the current month.
        const QDate hoy = QDate::currentDate();
        x.hasta = QDate(hoy.year(), hoy.month(), hoy.daysInMonth()).toString(Qt::ISODate);
        x.desde = QDate(hoy.year(), hoy.month(), 1).addMonths(-23).toString(Qt::ISODate);
        CriteriosBusqueda c;
        c.FindOK = true;
        c.prmFInit = x.desde;
        c.prmFEnd = x.hasta;
        if (SqlBusqueda(c, 1, QStringLiteral("'"), QStringLiteral("yyyy-mm-dd"), x.sql))
            std::abort(); // the dates above are valid
        return x;
    }();
    return b;
}

struct Medida
{
    double segundos = 0;
    double memoriaMiB = 0;
    int estado = -1;
};

// Runs a program with its output thrown away; its wall time and peak resident memory.
Medida Correr(const QString &programa, const QStringList &argumentos)
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
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    int estado = 0;
    rusage uso{};
    ::wait4(hijo, &estado, 0, &uso);
    Medida m;
    m.segundos = reloj.nsecsElapsed() / 1e9;
    m.memoriaMiB = uso.ru_maxrss / 1024.0;
    m.estado = WIFEXITED(estado) ? WEXITSTATUS(estado) : -1;
    return m;
}

void Sqlite3CSV(benchmark::State &estado)
{
    Banco &b = banco();
    double total = 0;
    for (auto _ : estado) {
        const Medida m = Correr(QStringLiteral("/usr/bin/sqlite3"), {QStringLiteral("-csv"), b.base, b.sql});
        if (m.estado != 0)
            estado.SkipWithError("sqlite3 falló");
        estado.SetIterationTime(m.segundos);
        total += m.segundos;
    }
    b.segundosSqlite = total / double(estado.iterations());
}
BENCHMARK(Sqlite3CSV)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void Exportar(benchmark::State &estado)
{
    static const char *const kExtensiones[] = {"csv", "xlsx", "htm"};
    Banco &b = banco();
    const QString archivo = b.carpeta.filePath(QStringLiteral("salida.") + QLatin1String(kExtensiones[estado.range(0)]));
    double total = 0;
    double memoria = 0;
    for (auto _ : estado) {
        const Medida m = Correr(QStringLiteral(ASIENTOS_PROGRAMA),
                                {QStringLiteral("--db"), b.base, QStringLiteral("--exportar"), archivo,
                                 QStringLiteral("--desde"), b.desde, QStringLiteral("--hasta"), b.hasta});
        if (m.estado != 0)
            estado.SkipWithError("la exportación falló");
        estado.SetIterationTime(m.segundos);
        total += m.segundos;
        memoria = std::max(memoria, m.memoriaMiB);
    }
    const double media = total / double(estado.iterations());
    if (estado.range(0) == 0)
        b.segundosCSV = media;
    estado.counters["memoria_MiB"] = memoria;
    if (b.segundosSqlite > 0)
        estado.counters["veces_sqlite3"] = media / b.segundosSqlite;
    if (b.segundosCSV > 0)
        estado.counters["veces_csv"] = media / b.segundosCSV;
}
BENCHMARK(Exportar)->Arg(0)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
