// Speed of the measurements a deck takes of each block: the analysis bank
// alone (band levels of one channel; with and without the scope groups) and
// the whole DeckAnalysis of a stereo block (channel meters, band levels and
// scope traces of both channels), for 3, 12 and 24 bands in plot.
//
// Counter xRealtime = stereo blocks per second / 37.5 (a 1176-frame block
// lasts 26.67 ms), on one core's CPU time. Goal: at least 1000 for 12 float
// bands with meters ("Stereo/bands:12/scope:0", the bars, chart and beat
// lamps; "scope:1" adds the three scope traces the scope display asks for).
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "core/PcmFormat.h"
#include "dsp/AnalysisBank.h"
#include "dsp/DeckAnalysis.h"

namespace {

constexpr int kN = kBlockFrames;
constexpr double kBlocksPerSecond = 44100.0 / kN;

std::vector<float> Noise(unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> d(-12000.0f, 12000.0f);
    std::vector<float> v(kN * 8);
    for (float& x : v)
        x = d(rng);
    return v;
}

void BankOnly(benchmark::State& state) {
    dsp::AnalysisBank bank;
    bank.SetNumberOfBands(static_cast<int>(state.range(0)));
    const bool groups = state.range(1) != 0;
    const std::vector<float> in = Noise(1);
    int i = 0;
    for (auto _ : state) {
        bank.Process(std::span<const float>(in.data() + (i++ % 8) * kN, kN), groups);
        benchmark::DoNotOptimize(bank.BandLevel(0));
    }
    // One channel: a stereo block costs two.
    state.counters["xRealtime"] = benchmark::Counter(1.0 / (2.0 * kBlocksPerSecond),
                                                     benchmark::Counter::kIsIterationInvariantRate);
}

void Stereo(benchmark::State& state) {
    dsp::DeckAnalysis a;
    a.SetBandsInPlot(static_cast<int>(state.range(0)));
    a.SetScopeWanted(dsp::DeckAnalysis::kDeckScope, state.range(1) != 0);
    const std::vector<float> l = Noise(2), r = Noise(3);
    std::vector<std::int16_t> l16(l.size()), r16(r.size());
    for (size_t k = 0; k < l.size(); ++k) {
        l16[k] = static_cast<std::int16_t>(l[k]);
        r16[k] = static_cast<std::int16_t>(r[k]);
    }
    int i = 0;
    for (auto _ : state) {
        const int o = (i % 8) * kN;
        const int slot = i++ % 120;
        a.MeasureChannels(slot, {l16.data() + o, static_cast<size_t>(kN)},
                          {r16.data() + o, static_cast<size_t>(kN)});
        a.AnalyzeBands(slot, {l.data() + o, static_cast<size_t>(kN)},
                       {r.data() + o, static_cast<size_t>(kN)});
        benchmark::DoNotOptimize(a.At(slot));
    }
    state.counters["xRealtime"] =
        benchmark::Counter(1.0 / kBlocksPerSecond, benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(BankOnly)->ArgsProduct({{3, 12, 24}, {0, 1}})->ArgNames({"bands", "groups"});
BENCHMARK(Stereo)->ArgsProduct({{3, 12, 24}, {0, 1}})->ArgNames({"bands", "scope"});

BENCHMARK_MAIN();
