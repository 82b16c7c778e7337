// The decks' block routine: the cost of one mix-step block on both decks,
// through each deck's DeckBlockWork and its real equalizer window (split,
// equalizer with its 12 bands at their default lengths, anti-clip on and
// the window's pointers and clip colour updated, join), on one core.
//
// Counter: xRealtime = seconds of audio both decks get through per second
// of CPU (a 1176-frame block lasts 26.67 ms). Goal: float, 12 bands,
// anti-clip on, both decks >= 50x real time (2 % of a core). For reference
// the same in 16-bit arithmetic, and with the equalizer off (the routine
// then leaves the block alone).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

#include "controls/CNiButton.h"
#include "core/PcmFormat.h"
#include "deck/block/DeckBlockWork.h"
#include "dsp/window/CRynEqualizer.h"

namespace {

constexpr double kBlocksPerSecond = 44100.0 / kBlockFrames;  // 37.5

struct DeckRoutine {
    CRynEqualizer window;
    DeckBlockWork work;
};

std::unique_ptr<DeckRoutine> MakeDeck(int deck, bool ints, bool on) {
    auto d = std::make_unique<DeckRoutine>();
    d->window.Initialise(deck, 0);
    d->window.AntiClipButton()->SetValue(true);
    d->window.OnButton()->SetValue(on);
    // Twelve bands come through the window's delayed path.
    d->window.ChooseBandCount(12);
    QElapsedTimer clock;
    clock.start();
    while (d->window.Engines().BandCount() != 12 && clock.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    d->work.SetEqualizer(&d->window);
    d->work.SetIntegerArithmetic(ints);
    return d;
}

void BothDecks(benchmark::State& state, bool ints, bool on) {
    std::array<std::unique_ptr<DeckRoutine>, 2> decks{MakeDeck(0, ints, on), MakeDeck(1, ints, on)};
    if (decks[0]->window.Engines().BandCount() != 12) {
        state.SkipWithError("the 12-band change did not come");
        return;
    }
    // Eight stereo blocks of noise at about -6 dB, cycled.
    std::mt19937 rng(1);
    std::uniform_int_distribution<int> noise(-16000, 16000);
    std::vector<std::vector<std::int16_t>> blocks(8, std::vector<std::int16_t>(kBlockSamples));
    for (auto& b : blocks) {
        for (auto& v : b)
            v = static_cast<std::int16_t>(noise(rng));
    }
    std::vector<std::int16_t> block(kBlockSamples);
    std::size_t i = 0;
    int slot = 0;
    for (auto _ : state) {
        for (auto& d : decks) {
            block = blocks[i++ % blocks.size()];
            d->work.Process(slot, block.data(), true);
            benchmark::DoNotOptimize(block.data());
        }
        slot = (slot + 1) % kOutputRingBlocks;
    }
    state.counters["xRealtime"] =
        benchmark::Counter(1.0 / kBlocksPerSecond, benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::printf(
        "both decks, one block each per iteration; goal: float, 12 bands, anti-clip "
        ">= 50x real time\n");
    benchmark::RegisterBenchmark("both decks/float/12 bands/anti-clip",
                                 [](benchmark::State& s) { BothDecks(s, false, true); });
    benchmark::RegisterBenchmark("both decks/int16/12 bands/anti-clip",
                                 [](benchmark::State& s) { BothDecks(s, true, true); });
    benchmark::RegisterBenchmark("both decks/equalizer off",
                                 [](benchmark::State& s) { BothDecks(s, false, false); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
