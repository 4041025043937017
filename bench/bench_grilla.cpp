// The grid at 100,000 lines: a database of about 25,000 entries (some in dollars), then in
// one run, for a view's SQL (argument 0) and a search's SQL (argument 1: two years, one
// account, an amount range): the rows read in C with every column of the view typed, the
// bare query through Qt SQL reading the columns the grid needs, and the fill of the grid;
// then the order of one entry of 2,000 lines, the first paint of the full grid and its
// scrolling page by page. The goals
// are a fill no slower than the C reading ("veces_c" <= 1.0) and than 1.3 times the bare Qt
// query ("veces_consulta" <= 1.3).
#include "currency/catalogomonedas.h"
#include "entries/asientosgrilla.h"
#include "entries/vistas.h"
#include "grid/vsgrid.h"
#include "search/consultabusqueda.h"
#include "store/conexionqt.h"
#include "store/dialectosql.h"
#include "store/esquema.h"

#include <QApplication>
#include <QImage>
#include <QScrollBar>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>

#include <unistd.h>

#include <sqlite3.h>

namespace {

constexpr int kAsientos = 25000;

// The process's resident memory now, in MiB.
double MemoriaMiB()
{
    QFile f(QStringLiteral("/proc/self/statm"));
    if (!f.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> campos = f.readAll().split(' ');
    return campos.size() > 1 ? campos[1].toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0) : 0;
}
constexpr int kLineasPorAsiento = 4;

struct Banco
{
    QTemporaryDir carpeta;
    QString ruta;
    std::unique_ptr<Conexion> conexion;
    CatalogoMonedas monedas;
    ContextoAsientos ctx;
    QString sql[2];
    double segundosConsulta[2] = {0, 0};
    double segundosC[2] = {0, 0};
};

Banco &banco()
{
    static Banco b = [] {
        Banco x;
        x.ruta = x.carpeta.filePath(QStringLiteral("bench.sqlite"));
        x.conexion = ConexionQt::Abrir(DireccionBD::Leer(x.ruta), true);
        Conexion &c = *x.conexion;
        CrearEsquema(c);
        Transaccion tx(c);
        c.Ejecutar(QStringLiteral("Insert Into genMonedas (MonID, MonSimbolo, MonCotizaEn, MonRedondeo, MonFormatoCotizacion, MonTipo)"
                                  " Values (1, '$', Null, '#,##0.00', '#,##0.000', 1), (2, 'U$S', 1, '#,##0.00', '#,##0.000', 1)"));
        c.Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (1, 'Diario', 0), (2, 'Ventas', 0)"));
        for (int i = 1; i <= 60; ++i)
            c.Ejecutar(QStringLiteral("Insert Into cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueEsCarpeta)"
                                      " Values (?, 1, ?, ?, ?, 0)"),
                       {i, QStringLiteral("%1.%2").arg(i / 10 + 1).arg(i, 2, 10, QLatin1Char('0')),
                        QStringLiteral("Cuenta número %1").arg(i), i % 7 == 0 ? 2 : 1});
        const QDate inicio(2024, 1, 1);
        QStringList asientos;
        QStringList lineas;
        auto volcar = [&] {
            if (!asientos.isEmpty())
                c.Ejecutar(QStringLiteral("Insert Into cceAsientos (AsiID, AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiFechaModificado,"
                                          " AsiLeyenda, AsiTipo) Values ") + asientos.join(QLatin1Char(',')));
            if (!lineas.isEmpty())
                c.Ejecutar(QStringLiteral("Insert Into cceAsientoCuenta (ACuIDAsiento, ACuCuenta, ACuDebe, AcuHaber, ACuImporteMC, ACuOrden)"
                                          " Values ") + lineas.join(QLatin1Char(',')));
            asientos.clear();
            lineas.clear();
        };
        for (int id = 1; id <= kAsientos; ++id) {
            const QString fecha = inicio.addDays(id * 700 / kAsientos).toString(Qt::ISODate);
            asientos << QStringLiteral("(%1, 1, %2, '%3', '%3 10:00:00.000', 'Asiento de prueba %1', %4)")
                            .arg(id).arg(id % 5 == 0 ? 0 : 1).arg(fecha).arg(id % 2 + 1);
            const int cuenta = id % 60 + 1;
            const bool dolares = cuenta % 7 == 0;
            const double importe = 100 + id % 997;
            for (int k = 0; k < kLineasPorAsiento; ++k) {
                const bool debe = k < kLineasPorAsiento / 2;
                const int cta = k == 0 ? cuenta : (cuenta + k * 11) % 60 + 1;
                const bool extranjera = cta % 7 == 0;
                const double mc = importe / 2;
                const double propio = extranjera ? mc / 40 : mc;
                lineas << QStringLiteral("(%1, %2, %3, %4, %5, %6)")
                              .arg(id).arg(cta)
                              .arg(debe ? QString::number(propio, 'f', 4) : QStringLiteral("Null"))
                              .arg(debe ? QStringLiteral("Null") : QString::number(propio, 'f', 4))
                              .arg(mc, 0, 'f', 2).arg(k + 1);
            }
            Q_UNUSED(dolares)
            if (id % 200 == 0)
                volcar();
        }
        volcar();
        tx.Confirmar();

        (void)x.monedas.CargarMonedas(c);
        x.monedas.FijarMonedaContabilidad(1);
        x.ctx.monedas = &x.monedas;
        x.ctx.monedaContabilidad = 1;
        x.ctx.empresa = 1;
        x.ctx.texto = [](int) { return QStringLiteral("Nuevo Asiento"); };
        x.sql[0] = QStringLiteral("Select *") + DesdeAsientos()
              + QStringLiteral(" Where AsiFechaAsiento BetWeen '2024-01-01' And '2025-12-31'"
                               " And AsiEmpresa = 1 And AsiEstado <> 9 Order By AsiFechaAsiento, AsiID");
        CriteriosBusqueda busqueda;
        busqueda.prmFInit = QStringLiteral("2024-01-01");
        busqueda.prmFEnd = QStringLiteral("2025-12-31");
        busqueda.prmCta = 8;
        busqueda.prmImporte = 100;
        busqueda.prmImporte2 = 400;
        if (SqlBusqueda(busqueda, 1, QStringLiteral("'"), QStringLiteral("yyyy-mm-dd"), x.sql[1]))
            std::abort(); // the dates above are valid
        return x;
    }();
    return b;
}

const char *const kColumnas[] = {"AsiID", "AsiEstado", "AsiFechaAsiento", "AsiFechaModificado", "AsiLeyenda", "AsiTipo",
                                 "LibNombre", "AsiUsuarioVerificador", "AcuHaber", "CueMoneda", "CueFechaCerrada",
                                 "CueCodigo", "CueNombre", "ACuDebe", "ACuImporteMC", "ACuOrden", "ACuCuenta",
                                 "ACuProyecto", "ACuDepartamento"};

// (a) The rows in C: every column of every row read with the type the engine holds it in.
void LecturaC(benchmark::State &estado)
{
    Banco &b = banco();
    sqlite3 *base = nullptr;
    if (sqlite3_open_v2(b.ruta.toUtf8().constData(), &base, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
        std::abort();
    const QByteArray sql = AdaptarSQL(b.sql[estado.range(0)], Motor::SQLite).toUtf8();
    qint64 filas = 0;
    QElapsedTimer reloj;
    double total = 0;
    for (auto _ : estado) {
        reloj.start();
        sqlite3_stmt *s = nullptr;
        if (sqlite3_prepare_v2(base, sql.constData(), int(sql.size()), &s, nullptr) != SQLITE_OK)
            std::abort();
        const int columnas = sqlite3_column_count(s);
        filas = 0;
        while (sqlite3_step(s) == SQLITE_ROW) {
            for (int i = 0; i < columnas; ++i) {
                switch (sqlite3_column_type(s, i)) {
                case SQLITE_INTEGER:
                    benchmark::DoNotOptimize(sqlite3_column_int64(s, i));
                    break;
                case SQLITE_FLOAT:
                    benchmark::DoNotOptimize(sqlite3_column_double(s, i));
                    break;
                case SQLITE_NULL:
                    break;
                default:
                    benchmark::DoNotOptimize(sqlite3_column_text(s, i));
                    benchmark::DoNotOptimize(sqlite3_column_bytes(s, i));
                    break;
                }
            }
            ++filas;
        }
        sqlite3_finalize(s);
        total += reloj.nsecsElapsed() / 1e9;
    }
    sqlite3_close(base);
    b.segundosC[estado.range(0)] = total / double(estado.iterations());
    estado.counters["filas"] = double(filas);
}
BENCHMARK(LecturaC)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

// (b) The query alone, through Qt SQL, reading every column the grid needs.
void ConsultaSola(benchmark::State &estado)
{
    Banco &b = banco();
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench-sola"));
    db.setDatabaseName(b.ruta);
    db.open();
    qint64 filas = 0;
    QElapsedTimer reloj;
    double total = 0;
    for (auto _ : estado) {
        reloj.start();
        QSqlQuery q(db);
        q.setForwardOnly(true);
        q.exec(b.sql[estado.range(0)]);
        const QSqlRecord r = q.record();
        int indices[19];
        for (int i = 0; i < 19; ++i)
            indices[i] = r.indexOf(QString::fromLatin1(kColumnas[i]));
        filas = 0;
        while (q.next()) {
            for (int i : indices)
                benchmark::DoNotOptimize(q.value(i));
            ++filas;
        }
        total += reloj.nsecsElapsed() / 1e9;
    }
    b.segundosConsulta[estado.range(0)] = total / double(estado.iterations());
    estado.counters["filas"] = double(filas);
}
BENCHMARK(ConsultaSola)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

// (c) The same SQL into the grid.
void LlenarGrilla(benchmark::State &estado)
{
    Banco &b = banco();
    int filas = 0;
    double total = 0;
    double memoria = 0;
    QElapsedTimer reloj;
    for (auto _ : estado) {
        const double antes = MemoriaMiB();
        Grilla g;
        AsientosGrilla a(g, b.ctx);
        g.FijarRedibujar(false);
        reloj.start();
        a.LlenarGrilla(*b.conexion, b.sql[estado.range(0)], 0);
        total += reloj.nsecsElapsed() / 1e9;
        filas = g.Filas();
        memoria = std::max(memoria, MemoriaMiB() - antes);
    }
    estado.counters["filas_grilla"] = filas;
    estado.counters["memoria_grilla_MiB"] = memoria;
    if (b.segundosConsulta[estado.range(0)] > 0)
        estado.counters["veces_consulta"] = total / double(estado.iterations()) / b.segundosConsulta[estado.range(0)];
    if (b.segundosC[estado.range(0)] > 0)
        estado.counters["veces_c"] = total / double(estado.iterations()) / b.segundosC[estado.range(0)];
}
BENCHMARK(LlenarGrilla)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

// (d) One entry of 2,000 lines put in order.
void OrdenarCuentas2000(benchmark::State &estado)
{
    Banco &b = banco();
    for (auto _ : estado) {
        estado.PauseTiming();
        Grilla g;
        AsientosGrilla a(g, b.ctx);
        g.InsertarFilas(1, 2001);
        a.Cabezal.AsiID = 1;
        a.Cabezal.FilaCabezal = 1;
        a.FilaCabezalAsiento(QString());
        for (int i = 0; i < 2000; ++i) {
            RegistroLinea l;
            l.bEsAlDebe = (i * 7919) % 3 != 0;
            l.lCta = i;
            l.sTextDisplay = QStringLiteral("%1 - Cuenta").arg((i * 7919) % 2000, 4, 10, QLatin1Char('0'));
            l.dImporte = l.dImporteMC = Importe::DesdeDiezmilesimos(qint64(i) * Importe::kEscala);
            l.ACuOrden = qint16(2000 - i);
            a.FilaLineaAsiento(2 + i, l);
        }
        estado.ResumeTiming();
        a.OrdenarCuentas();
    }
}
BENCHMARK(OrdenarCuentas2000)->Unit(benchmark::kMillisecond);

// The grid of the view's 100,000 lines, filled with redraw off, for the views below.
void LlenarVista(Grilla &g)
{
    Banco &b = banco();
    AsientosGrilla a(g, b.ctx);
    g.FijarRedibujar(false);
    a.LlenarGrilla(*b.conexion, b.sql[0], 0);
    g.FijarRedibujar(true);
}

// (e) The first paint of the full grid, in a real widget (offscreen).
void PrimerPintado(benchmark::State &estado)
{
    Grilla g;
    LlenarVista(g);
    for (auto _ : estado) {
        vsGrid vista(g);
        vista.resize(1100, 700);
        vista.show();
        benchmark::DoNotOptimize(vista.grab());
    }
}
BENCHMARK(PrimerPintado)->Unit(benchmark::kMillisecond)->Iterations(3);

// (f) The full grid scrolled from top to bottom a page at a time, each page painted: the
// counter "cuadros_por_segundo" is the pages painted per second (the goal: 60 or more).
void Desplazamiento(benchmark::State &estado)
{
    Grilla g;
    LlenarVista(g);
    vsGrid vista(g);
    vista.resize(1100, 700);
    vista.show();
    QScrollBar *barra = vista.verticalScrollBar();
    QImage lienzo(vista.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    int cuadros = 0;
    double segundos = 0;
    QElapsedTimer reloj;
    for (auto _ : estado) {
        reloj.start();
        for (int v = barra->minimum(); v <= barra->maximum(); v += std::max(1, barra->pageStep())) {
            barra->setValue(v);
            vista.viewport()->render(&lienzo);
            ++cuadros;
        }
        segundos += reloj.nsecsElapsed() / 1e9;
    }
    estado.counters["cuadros_por_segundo"] = segundos > 0 ? cuadros / segundos : 0;
}
BENCHMARK(Desplazamiento)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    banco();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
