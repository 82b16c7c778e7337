// Cost of the software mixer: 2, 6 and 12 looping buffers playing at a
// frequency other than the device rate (so every frame is interpolated),
// with volume and pan, on the manual-clock Null device.
//
// Reported: ns per output frame and "cpu_pct", the share of one core the mix
// takes in real time (100 * CPU seconds / audio seconds). The goal: 12
// buffers (two decks x forward, reverse and scratch on two devices) under
// 1 % of one core.
#include <benchmark/benchmark.h>

#include <time.h>

#include <memory>
#include <vector>

#include "platform/sound/SoundDevice.h"

namespace {

constexpr int kPeriod = 256;  // frames per pass, a typical device period

// CPU time of this thread: the machine may be shared, so wall time would
// count other processes' work.
double ThreadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

void BM_MixPlayingBuffers(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    auto device = sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual);
    std::vector<std::unique_ptr<sound::SoundBuffer>> buffers;
    std::uint32_t seed = 1;
    for (int i = 0; i < count; ++i) {
        std::unique_ptr<sound::SoundBuffer> b;
        device->CreateBuffer({564480, 44100}, &b);
        sound::LockedRegion r;
        b->Lock(0, b->SizeBytes(), &r);
        auto* s = reinterpret_cast<std::int16_t*>(r.first);
        for (std::uint32_t k = 0; k < r.firstBytes / 2; ++k) {
            seed = seed * 1664525u + 1013904223u;
            s[k] = static_cast<std::int16_t>(seed >> 18);
        }
        b->Unlock(r);
        b->SetFrequency(44100 + 331 * (i + 1));  // tempo +0.75 % .. +9 %
        b->SetVolume(-600);
        b->SetPan(-3000 + 500 * i);
        b->Play(true);
        buffers.push_back(std::move(b));
    }
    std::vector<std::int16_t> out(2 * kPeriod);
    device->Render(kPeriod, out.data());  // past the start ramps
    std::int64_t frames = 0;
    const double cpuStart = ThreadCpuSeconds();
    for (auto _ : state) {
        device->Render(kPeriod, out.data());
        benchmark::DoNotOptimize(out.data());
        frames += kPeriod;
    }
    const double cpu = ThreadCpuSeconds() - cpuStart;
    const double audioSeconds = static_cast<double>(frames) / 44100.0;
    state.counters["ns_per_frame"] = 1e9 * cpu / static_cast<double>(frames);
    state.counters["cpu_pct"] = 100.0 * cpu / audioSeconds;
    state.SetItemsProcessed(frames);
}

BENCHMARK(BM_MixPlayingBuffers)->Arg(2)->Arg(6)->Arg(12)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
