// Start-up against a bare Qt window: `asientos --screenshot` on the demo database (a user's
// first sight of the program: the window shown, its grid filled and painted once, saved to a
// PNG) against ventana_desnuda, a main window with a menu bar and an empty table doing the
// same at the same size. Both run offscreen, in turns, as whole processes; each is charged the
// CPU time (user + system) the operating system counts for it. The goal: the program within
// 1.2 times the bare window ("veces_qt_desnudo", the ratio of the medians).
#include "proceso.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>


#include <algorithm>
#include <vector>

namespace {

// Runs a program offscreen with its output thrown away and its data and settings in carpeta.
Medida CorrerEn(const QString &programa, const QStringList &argumentos, const QString &carpeta)
{
    return Correr(programa, argumentos,
                  {{"XDG_DATA_HOME", carpeta.toLocal8Bit() + "/datos"}, {"XDG_CONFIG_HOME", carpeta.toLocal8Bit() + "/config"}});
}

// A PNG's width and height, from its header; 0 x 0 when it is not one.
std::pair<int, int> TamanoPNG(const QString &ruta)
{
    QFile f(ruta);
    if (!f.open(QIODevice::ReadOnly))
        return {0, 0};
    const QByteArray cabeza = f.read(24);
    if (cabeza.size() < 24 || !cabeza.startsWith("\x89PNG"))
        return {0, 0};
    auto entero = [&](int desde) {
        int v = 0;
        for (int i = desde; i < desde + 4; ++i)
            v = (v << 8) | quint8(cabeza.at(i));
        return v;
    };
    return {entero(16), entero(20)};
}

double Mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n == 0 ? 0 : n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

void Arranque(benchmark::State &estado)
{
    QTemporaryDir carpeta;
    // Another build of the program (an older one, say) when ASIENTOS_BENCH_PROGRAMA names it.
    const QByteArray otro = qgetenv("ASIENTOS_BENCH_PROGRAMA");
    const QString programa = otro.isEmpty() ? QStringLiteral(ASIENTOS_PROGRAMA) : QString::fromLocal8Bit(otro);
    const QString imagen = carpeta.filePath(QStringLiteral("asientos.png"));
    const QString imagenDesnuda = carpeta.filePath(QStringLiteral("desnuda.png"));
    // The first run makes the demo database; it is not measured.
    if (CorrerEn(programa, {QStringLiteral("--screenshot"), imagen}, carpeta.path()).estado != 0) {
        estado.SkipWithError("asientos --screenshot falló");
        return;
    }
    const auto [ancho, alto] = TamanoPNG(imagen);
    const QStringList desnuda{imagenDesnuda, QString::number(ancho), QString::number(alto)};
    std::vector<double> nuestro, bare, pared;
    for (auto _ : estado) {
        const Medida d = CorrerEn(QStringLiteral(VENTANA_DESNUDA), desnuda, carpeta.path());
        const Medida a = CorrerEn(programa, {QStringLiteral("--screenshot"), imagen}, carpeta.path());
        if (a.estado != 0 || d.estado != 0)
            estado.SkipWithError("una de las dos ventanas falló");
        estado.SetIterationTime(a.cpuMs / 1e3);
        nuestro.push_back(a.cpuMs);
        bare.push_back(d.cpuMs);
        pared.push_back(a.segundos * 1000);
    }
    if (TamanoPNG(imagenDesnuda) != std::pair{ancho, alto})
        estado.SkipWithError("las imágenes no son del mismo tamaño");
    const double mediana = Mediana(nuestro);
    estado.counters["cpu_ms"] = mediana;
    estado.counters["cpu_ms_min"] = *std::min_element(nuestro.begin(), nuestro.end());
    estado.counters["cpu_ms_max"] = *std::max_element(nuestro.begin(), nuestro.end());
    estado.counters["cpu_ms_qt_desnudo"] = Mediana(bare);
    estado.counters["pared_ms"] = Mediana(pared);
    estado.counters["veces_qt_desnudo"] = mediana / Mediana(bare);
}
BENCHMARK(Arranque)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(15);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
