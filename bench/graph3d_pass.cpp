// Cost of the 3D graph on the graphs-and-meters pass: per pass both decks'
// 24 band values become new rows, and the surface (48 columns side by side
// × 80 rows) is rebuilt and drawn while the window is shown; hidden, only
// the rows are kept. Reported per pass in microseconds of this thread's
// processor time, with the share of one core at 37 passes a second (one per
// output block). Goal: shown under 0.10 of a core, hidden under 0.001.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

#include "controls/CNiGraph3D.h"
#include "dsp/window/CRyn3DGraph.h"
#include "platform/joystick/Joystick.h"

namespace {

constexpr double kPassesPerSecond = 37.0;  // 44100 / 1176 blocks a second, rounded

double ThreadCpuMicros() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) * 1e6 + double(ts.tv_nsec) * 1e-3;
}

void ReportShare(benchmark::State& state, double elapsedUs) {
    const double us =
        elapsedUs / double(std::max<benchmark::IterationCount>(1, state.iterations()));
    state.counters["us_per_pass"] = us;
    state.counters["core_share_at_37fps"] = us * kPassesPerSecond * 1e-6;
}

void BM_3DGraphPass(benchmark::State& state) {
    const bool shown = state.range(0) != 0;
    CRyn3DGraph graph;
    graph.SetJoystick(std::make_unique<joystick::NullJoystick>());
    graph.SetSideBySide(true);
    graph.SetGraphEnabled(true);
    graph.resize(560, 300);
    if (shown)
        graph.show();
    QImage image(graph.Surface()->size(), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> levels(24);
    int frame = 0;
    const double start = ThreadCpuMicros();
    for (auto _ : state) {
        for (int d = 0; d < 2; ++d) {
            for (int b = 0; b < 24; ++b)
                levels[b] = 140000.0 + 100000.0 * std::sin(b * 0.4 + frame * 0.3 + d);
            graph.AddRow(d, levels, 24);
        }
        graph.PlotSurface(0);
        if (shown)
            graph.Surface()->render(&image);  // the paint the update asks for
        ++frame;
    }
    ReportShare(state, ThreadCpuMicros() - start);
}
BENCHMARK(BM_3DGraphPass)->Arg(1)->Arg(0)->ArgName("shown")->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;  // the window stores its enable: never in the user's settings
    qputenv("MIXORA_CONFIG_DIR", (home.path() + "/config").toLocal8Bit());
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
