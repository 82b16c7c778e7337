// Cost of redrawing the instrument graphs, the displays fed most often: one 2D
// graph of two 100-point traces (a deck's scope) and one 3D surface of 24 bands
// × 80 rows (the spectrum history). Each iteration hands the graph new data and
// renders the whole widget into an image, as a paint would. Reported per
// redraw in microseconds, with the share of one core it takes at 37 redraws a
// second (one per output block, 26.67 ms).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"

namespace {

constexpr double kRedrawsPerSecond = 37.0;  // 44100 / 1176 blocks a second, rounded

// Processor time of this thread in microseconds: drawing runs on the one
// user-interface thread, and other work on the machine must not count.
double ThreadCpuMicros() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) * 1e6 + double(ts.tv_nsec) * 1e-3;
}

// Counters from the thread's processor time over the timed loop: microseconds
// per redraw, and the share of one core that 37 redraws a second take
// (1.0 = a whole core).
void ReportShare(benchmark::State& state, double elapsedUs) {
    const double us =
        elapsedUs / double(std::max<benchmark::IterationCount>(1, state.iterations()));
    state.counters["us_per_redraw"] = us;
    state.counters["core_share_at_37fps"] = us * kRedrawsPerSecond * 1e-6;
}

void BM_Graph2DTwoTraces(benchmark::State& state) {
    CNiGraph graph;
    graph.resize(240, 120);
    graph.SetXRange(0, 99);
    graph.SetYRange(-1.0, 1.0);
    graph.SetAntialiased(state.range(0) != 0);
    QImage image(graph.size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> a(100), b(100);
    int frame = 0;
    const double start = ThreadCpuMicros();
    for (auto _ : state) {
        for (int i = 0; i < 100; ++i) {
            a[i] = std::sin(0.2 * i + frame * 0.3);
            b[i] = 0.5 * std::sin(0.45 * i - frame * 0.2);
        }
        graph.PlotY(0, a);
        graph.PlotY(1, b);
        graph.render(&image);
        ++frame;
    }
    ReportShare(state, ThreadCpuMicros() - start);
}
BENCHMARK(BM_Graph2DTwoTraces)
    ->Arg(1)
    ->Arg(0)
    ->ArgName("antialiased")
    ->Unit(benchmark::kMicrosecond);

void BM_Graph3DSurface(benchmark::State& state) {
    CNiGraph3D graph;
    graph.resize(330, 230);
    graph.SetAntialiased(state.range(0) != 0);
    QImage image(graph.size(), QImage::Format_ARGB32_Premultiplied);
    const int cols = 24, rows = 80;
    std::vector<double> m(cols * rows);
    int frame = 0;
    const double start = ThreadCpuMicros();
    for (auto _ : state) {
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < cols; ++c)
                m[r * cols + c] = 0.5 + 0.4 * std::sin(c * 0.5 + (r + frame) * 0.3);
        graph.PlotSurface(m, cols, rows);
        graph.render(&image);
        ++frame;
    }
    ReportShare(state, ThreadCpuMicros() - start);
}
BENCHMARK(BM_Graph3DSurface)->Arg(0)->Arg(1)->ArgName("antialiased")->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
