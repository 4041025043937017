// The command-line export at volume: a database of 25,000 entries / 100,000 lines over two
// years (made by generar_base, or the one named by ASIENTOS_BENCH_BASE), then in one run the
// sqlite3 shell's CSV output of the export's own SQL, and the program exporting the same two
// years to CSV, a workbook and HTML. The goals: the CSV export at most 0.8 times the sqlite3
// shell ("veces_sqlite3") in under 40 MiB ("memoria_MiB"), the workbook and the page within
// 1.5 times the CSV export ("veces_csv"). Each run is a whole process, timed from start to
// exit, its peak memory read from the operating system.
//
// With ASIENTOS_BENCH_PG set to a PostgreSQL database (postgresql://user@host/base...), the same
// two years are copied into a new schema of it ("asientos --copiar-a") and the CSV export from
// there is timed against psql's "\copy (the same SQL) to 'file' csv", the two run one after
// the other in each iteration. The goal: at most 1.2 times psql ("veces_psql"). The schema is
// dropped at the end. ASIENTOS_BENCH_PROGRAMA names another build of the program to time there
// (an earlier one, to compare).
#include "proceso.h"

#include "search/consultabusqueda.h"
#include "store/dialectosql.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>


#include <cstdlib>
#include <utility>
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
    // PostgreSQL: the database as given, its schema holding the copy (dropped at the end),
    // the program's address.
    struct Esquema
    {
        QString base;
        QString nombre;
        ~Esquema();
    } pgEsquema;
    QString pg;
    bool pgListo = false;
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

QString Psql()
{
    return QStringLiteral("/usr/bin/psql");
}

QStringList PsqlArgumentos(const Banco::Esquema &e, const QString &orden)
{
    return {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1"), QStringLiteral("-d"),
            e.base, QStringLiteral("-c"), orden};
}

Banco::Esquema::~Esquema()
{
    if (!nombre.isEmpty())
        Correr(Psql(), PsqlArgumentos(*this, QStringLiteral("DROP SCHEMA IF EXISTS %1 CASCADE").arg(nombre)));
}

// The two years copied into a schema of their own on the server; false when no server was
// given or the copy failed (said in estado).
bool PreparadoPG(benchmark::State &estado)
{
    Banco &b = banco();
    if (b.pgListo)
        return true;
    Banco::Esquema &e = b.pgEsquema;
    e.base = qEnvironmentVariable("ASIENTOS_BENCH_PG");
    if (e.base.isEmpty()) {
        estado.SkipWithError("sin servidor PostgreSQL: ASIENTOS_BENCH_PG=postgresql://usuario@servidor/base");
        return false;
    }
    if (e.nombre.isEmpty()) {
        e.nombre = QStringLiteral("bench_%1").arg(::getpid());
        b.pg = e.base + (e.base.contains(QLatin1Char('?')) ? QStringLiteral("&") : QStringLiteral("?")) + QStringLiteral("schema=") + e.nombre;
        if (Correr(Psql(), PsqlArgumentos(e, QStringLiteral("CREATE SCHEMA ") + e.nombre)).estado != 0
            || Correr(QStringLiteral(ASIENTOS_PROGRAMA), {QStringLiteral("--db"), b.base, QStringLiteral("--copiar-a"), b.pg}).estado != 0
            || Correr(Psql(), PsqlArgumentos(e, QStringLiteral("ANALYZE")), {{"PGOPTIONS", "-c search_path=" + e.nombre.toUtf8()}}).estado
                   != 0) {
            estado.SkipWithError("no se pudo copiar la base de prueba al servidor PostgreSQL");
            return false;
        }
    }
    b.pgListo = true;
    return true;
}

// The export from PostgreSQL and psql's CSV of the SQL the export sends, one after the other
// in every iteration so that both meet the same load of the machine.
void ExportarPG(benchmark::State &estado)
{
    if (!PreparadoPG(estado))
        return;
    Banco &b = banco();
    const QString archivo = b.carpeta.filePath(QStringLiteral("salida_pg.csv"));
    const QString copia = QStringLiteral("\\copy (%1) to '%2' csv").arg(AdaptarSQL(b.sql, Motor::PostgreSQL), b.carpeta.filePath(QStringLiteral("psql.csv")));
    const QList<std::pair<QByteArray, QByteArray>> esquema{{"PGOPTIONS", "-c search_path=" + b.pgEsquema.nombre.toUtf8()}};
    double programa = 0;
    double psql = 0;
    double memoria = 0;
    double menor = 1e9;
    double mayor = 0;
    for (auto _ : estado) {
        const Medida p = Correr(Psql(), PsqlArgumentos(b.pgEsquema, copia), esquema);
        const Medida m = Correr(qEnvironmentVariable("ASIENTOS_BENCH_PROGRAMA", QStringLiteral(ASIENTOS_PROGRAMA)),
                                {QStringLiteral("--db"), b.pg, QStringLiteral("--exportar"), archivo, QStringLiteral("--desde"), b.desde,
                                 QStringLiteral("--hasta"), b.hasta});
        if (p.estado != 0 || m.estado != 0)
            estado.SkipWithError(p.estado != 0 ? "psql falló" : "la exportación falló");
        estado.SetIterationTime(m.segundos);
        programa += m.segundos;
        psql += p.segundos;
        memoria = std::max(memoria, m.memoriaMiB);
        menor = std::min(menor, m.segundos / p.segundos);
        mayor = std::max(mayor, m.segundos / p.segundos);
    }
    // The spread of the ratio between iterations: the machine is shared.
    estado.counters["veces_min"] = menor;
    estado.counters["veces_max"] = mayor;
    estado.counters["psql_ms"] = 1000 * psql / double(estado.iterations());
    estado.counters["memoria_MiB"] = memoria;
    if (psql > 0)
        estado.counters["veces_psql"] = programa / psql;
}
BENCHMARK(ExportarPG)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
