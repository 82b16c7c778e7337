// Cost of each deck effect, and of the device equalizer's twelve bands, on
// one deck: 256-frame periods of music-like noise at 44100 Hz through the
// effect at its start values (the reverb with the longest tail).
//
// Reported: "deck_pct", the share of one core one deck's effect takes in
// real time (100 * CPU seconds / audio seconds), and "both_decks_pct".
// The goal: any one effect on both decks under 1 % of one core.
#include <benchmark/benchmark.h>

#include <time.h>

#include <memory>
#include <vector>

#include "platform/sound/effects/EffectCatalog.h"
#include "platform/sound/effects/ParamEqEffect.h"

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace {

constexpr int kPeriod = 256;

double ThreadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

void Run(benchmark::State& state, std::vector<std::shared_ptr<sound::SoundEffect>> chain) {
#if defined(__SSE__)
    _mm_setcsr(_mm_getcsr() | 0x8040u);  // as the mix runs effects
#endif
    std::vector<float> source(2 * 44100);
    std::uint32_t seed = 1;
    for (float& s : source) {
        seed = seed * 1664525u + 1013904223u;
        s = static_cast<float>(static_cast<std::int32_t>(seed) >> 18);
    }
    std::vector<float> work(2 * kPeriod);
    std::size_t at = 0;
    std::int64_t frames = 0;
    const double cpuStart = ThreadCpuSeconds();
    for (auto _ : state) {
        std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(at), 2 * kPeriod, work.begin());
        at = (at + 2 * kPeriod) % (source.size() - 2 * kPeriod);
        for (auto& e : chain)
            e->Process(work.data(), kPeriod, 44100);
        benchmark::DoNotOptimize(work.data());
        frames += kPeriod;
    }
    const double cpu = ThreadCpuSeconds() - cpuStart;
    const double audioSeconds = static_cast<double>(frames) / 44100.0;
    state.counters["deck_pct"] = 100.0 * cpu / audioSeconds;
    state.counters["both_decks_pct"] = 200.0 * cpu / audioSeconds;
    state.counters["goal_both_pct"] = 1.0;
}

void BM_DeckEffect(benchmark::State& state) {
    const auto& spec = sound::fx::EffectList()[static_cast<std::size_t>(state.range(0))];
    state.SetLabel(spec.name);
    auto effect = sound::fx::CreateEffect(spec.kind);
    if (spec.kind == sound::fx::EffectKind::Reverb)
        sound::fx::ApplyKnob(*effect, spec.kind, 1, 3000.0f);
    Run(state, {effect});
}

void BM_DeviceEqualizerTwelveBands(benchmark::State& state) {
    std::vector<std::shared_ptr<sound::SoundEffect>> chain;
    for (int k = 0; k < 12; ++k) {
        auto band = std::make_shared<sound::fx::ParamEqEffect>();
        band->SetParameters({80.0f * static_cast<float>(1 + k), 3.0f, 6.0f});
        chain.push_back(band);
    }
    Run(state, chain);
}

BENCHMARK(BM_DeckEffect)->DenseRange(1, 7)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DeviceEqualizerTwelveBands)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
