// Equalizer engine speed: stereo blocks per second for 3, 12 and 24 bands
// (default tap counts and 500 taps each), 16-bit and float, with and without
// anti-clip, on one core.
//
// Counters: xRealtime = blocks per second / 37.5 (a 1176-frame block lasts
// 26.67 ms); ofPeak = the direct-form multiply-adds of those blocks (2 channels
// × 1176 × Σ taps) per second as a fraction of this machine's peak float
// multiply-add rate, which the bench measures first with a tight FMA loop. The
// float engine without anti-clip does far less work than the direct form (one
// combined filter by FFT), so its ofPeak can exceed 1; so can the 16-bit engine's,
// whose integer kernel does 16 multiply-adds per instruction. The "+meters" cases also
// read every band's level each block, as the spectrum bars do.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "dsp/eq/EqualizerEngine.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

// Seconds of CPU time of this thread (the benchmark counters use CPU time too,
// so a busy machine does not skew the ratio).
double ThreadSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return ts.tv_sec + ts.tv_nsec * 1e-9;
}

constexpr int kN = dsp::eq::kBlockLength;
constexpr double kBlocksPerSecond = 44100.0 / kN;  // 37.5

// Peak multiply-adds per second of one core: ten independent 8-lane FMA
// chains (enough to cover the FMA latency on current processors).
#if defined(__x86_64__)
__attribute__((target("avx2,fma"))) double PeakMacsAvx2(long iterations) {
    __m256 a[10];
    for (int i = 0; i < 10; ++i)
        a[i] = _mm256_set1_ps(0.001f * i);
    const __m256 x = _mm256_set1_ps(0.999999f), y = _mm256_set1_ps(1e-7f);
    const double t0 = ThreadSeconds();
    for (long n = 0; n < iterations; ++n)
        for (int i = 0; i < 10; ++i)
            a[i] = _mm256_fmadd_ps(a[i], x, y);
    const double s = ThreadSeconds() - t0;
    float sink = 0;
    for (int i = 0; i < 10; ++i)
        sink += _mm256_cvtss_f32(a[i]);
    benchmark::DoNotOptimize(sink);
    return iterations * 10.0 * 8.0 / s;
}
#endif

double PeakMacsPortable(long iterations) {
    float a[16];
    for (int i = 0; i < 16; ++i)
        a[i] = 0.001f * i;
    const double t0 = ThreadSeconds();
    for (long n = 0; n < iterations; ++n)
        for (int i = 0; i < 16; ++i)
            a[i] = a[i] * 0.999999f + 1e-7f;
    const double s = ThreadSeconds() - t0;
    benchmark::DoNotOptimize(a);
    return iterations * 16.0 / s;
}

double PeakMacsPerSecond() {
    double best = 0;
    for (int run = 0; run < 3; ++run) {
#if defined(__x86_64__)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
            best = std::max(best, PeakMacsAvx2(20'000'000));
            continue;
        }
#endif
        best = std::max(best, PeakMacsPortable(20'000'000));
    }
    return best;
}

double g_peak = 1.0;

template <typename S>
void RunEngines(benchmark::State& state, int bands, bool allLong, bool antiClip, bool meters) {
    dsp::EqualizerEngine<S> left, right;
    double tapSum = 0;
    for (auto* e : {&left, &right}) {
        e->SetWindowType("Hamming");
        e->SetNumberOfBands(bands);
        for (int b = 0; b < bands; ++b) {
            if (allLong)
                e->SetTapCount(b, 500);
            e->SetLevel(b, 0.5f + 0.5f * (b % 2));
        }
    }
    for (int b = 0; b < bands; ++b)
        tapSum += left.TapCount(b);
    // Eight blocks of noise at about −6 dB, cycled.
    std::mt19937 rng(1);
    std::uniform_real_distribution<float> noise(-16000.0f, 16000.0f);
    std::vector<std::vector<S>> blocks(8, std::vector<S>(kN));
    for (auto& blk : blocks)
        for (auto& v : blk)
            v = static_cast<S>(noise(rng));
    std::vector<S> l(kN), r(kN);
    size_t i = 0;
    float level = 0;
    for (auto _ : state) {
        const auto& src = blocks[i++ % blocks.size()];
        std::copy(src.begin(), src.end(), l.begin());
        std::copy(src.rbegin(), src.rend(), r.begin());
        bool clipped = false;
        left.ProcessBlock(l.data(), true, antiClip, clipped);
        right.ProcessBlock(r.data(), true, antiClip, clipped);
        if (meters)
            for (int b = 0; b < bands; ++b)
                level += left.BandRmsMilliDb(b) + right.BandRmsMilliDb(b);
        benchmark::DoNotOptimize(l.data());
        benchmark::DoNotOptimize(r.data());
    }
    benchmark::DoNotOptimize(level);
    state.counters["xRealtime"] =
        benchmark::Counter(1.0 / kBlocksPerSecond, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["ofPeak"] = benchmark::Counter(2.0 * kN * tapSum / g_peak,
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

int main(int argc, char** argv) {
    g_peak = PeakMacsPerSecond();
    std::printf("peak float multiply-add rate (one core): %.1f G/s\n", g_peak / 1e9);
    std::printf("real time: %.1f stereo blocks/s; goal: float, 12 bands, default taps >= 200x\n",
                kBlocksPerSecond);
    for (int bands : {3, 12, 24}) {
        for (bool allLong : {false, true}) {
            for (bool antiClip : {false, true}) {
                const std::string tail = std::to_string(bands) + " bands/" +
                                         (allLong ? "500 taps" : "default taps") +
                                         (antiClip ? "/anti-clip" : "/plain");
                benchmark::RegisterBenchmark(("float/" + tail).c_str(), [=](benchmark::State& s) {
                    RunEngines<float>(s, bands, allLong, antiClip, false);
                });
                benchmark::RegisterBenchmark(("int16/" + tail).c_str(), [=](benchmark::State& s) {
                    RunEngines<int16_t>(s, bands, allLong, antiClip, false);
                });
                if (!antiClip)
                    benchmark::RegisterBenchmark(
                        ("float/" + tail + "+meters").c_str(), [=](benchmark::State& s) {
                            RunEngines<float>(s, bands, allLong, false, true);
                        });
            }
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
