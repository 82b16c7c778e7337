// Settings store costs on the user-interface thread: one read of a stored
// value, the start-up read of every setting, and one write (atomic replace
// with fsync) in the temporary folder. Each prints "of_frame": its wall time
// as a fraction of one 60 Hz display frame (16.7 ms).
#include <benchmark/benchmark.h>

#include <QSize>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>

#include "settings/CRynSettings.h"
#include "settings/SettingsStore.h"

namespace {

constexpr double kFrameSeconds = 1.0 / 60.0;

// Wall time per iteration over one display frame, from the loop's own clock.
void ReportFrameRatio(benchmark::State& state, std::chrono::steady_clock::time_point start) {
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.counters["of_frame"] =
        seconds / static_cast<double>(std::max<benchmark::IterationCount>(state.iterations(), 1)) /
        kFrameSeconds;
}

struct Scratch {
    QTemporaryDir dir;
    SettingsStore store{dir.path() + QStringLiteral("/Mixora.conf"), [](const QString&) {}};
    CRynSettings settings{store, [] { return QSize(1024, 740); }};
    Scratch() { settings.ReadEverySetting(); }
};

void BM_ReadOneSetting(benchmark::State& state) {
    Scratch s;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state)
        benchmark::DoNotOptimize(s.settings.GetTurntableMode(1));
    ReportFrameRatio(state, start);
}
BENCHMARK(BM_ReadOneSetting)->UseRealTime();

void BM_ReadEverySettingAtStartUp(benchmark::State& state) {
    Scratch s;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state)
        s.settings.ReadEverySetting();
    ReportFrameRatio(state, start);
}
BENCHMARK(BM_ReadEverySettingAtStartUp)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_WriteOneSetting(benchmark::State& state) {
    Scratch s;
    float level = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        level += 0.001f;
        s.settings.SetMainDeckLevel(0, level);
    }
    ReportFrameRatio(state, start);
}
BENCHMARK(BM_WriteOneSetting)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
