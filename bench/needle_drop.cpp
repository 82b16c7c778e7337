// Needle drop to first sound: how long after DropNeedle the device plays the
// first non-silent frame of a deck that is turning and primed. Measured on
// the manual-clock Null device: the wall time the program takes to start the
// deck's output (the drop's message to the main mixer and the buffer's
// fade-in start), plus the device time until the first audible frame,
// rendered in 64-frame device periods. Goal: 50 ms or less with the default
// latency; the counter goal_ratio is the measured time over 50 ms.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <vector>

#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundDevice.h"

namespace {

constexpr int kPeriodFrames = 64;

bool PumpUntil(const std::function<bool()>& done, int timeoutMs) {
    QElapsedTimer t;
    t.start();
    while (!done()) {
        if (t.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

QString ToneFile(const QString& dir) {
    const QString path = dir + "/tone.wav";
    const QString cmd = QStringLiteral(
                            "ffmpeg -loglevel error -y -f lavfi -i sine=frequency=440:"
                            "sample_rate=44100:duration=20 -ac 2 '%1'")
                            .arg(path);
    return std::system(cmd.toLocal8Bit().constData()) == 0 ? path : QString();
}

void BM_NeedleDropToFirstSound(benchmark::State& state) {
    QTemporaryDir dir;
    qputenv("MIXORA_CONFIG_DIR", (dir.path() + "/config").toLocal8Bit());
    const QString tone = ToneFile(dir.path());
    if (tone.isEmpty()) {
        state.SkipWithError("ffmpeg could not make the tone");
        return;
    }
    double worst = 0;
    for (auto _ : state) {
        ResetEngineStateForTest();
        auto mixer = std::make_unique<CRynMainMixer>();
        mixer->MainOutput().OpenDevice(
            sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), mixer->Handle());
        auto deck = std::make_unique<CRynDeck>();
        deck->Initialise(nullptr, nullptr, nullptr, mixer->Handle(), 0);
        mixer->Initialise(0, deck.get(), nullptr, nullptr, nullptr);
        deck->OpenFiles({tone});
        if (!PumpUntil([&] { return deck->Primed(); }, 10000)) {
            state.SkipWithError("the deck was not primed");
            break;
        }

        const auto start = std::chrono::steady_clock::now();
        deck->DropNeedle();
        PumpUntil([&] { return mixer->MainOutput().IsForwardPlaying(0); }, 5000);
        const double programSeconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        std::vector<std::int16_t> period(kPeriodFrames * 2);
        int frames = 0;
        bool heard = false;
        while (!heard && frames < 44100) {
            mixer->MainOutput().Device()->Render(kPeriodFrames, period.data());
            for (int i = 0; i < kPeriodFrames && !heard; ++i) {
                heard = period[2 * i] != 0 || period[2 * i + 1] != 0;
                frames += heard ? 0 : 1;
            }
        }
        const double latency = programSeconds + frames / 44100.0;
        worst = std::max(worst, latency);
        state.SetIterationTime(latency);

        deck->Shutdown();
        mixer->Notifications().JoinAll();
        deck.reset();
        mixer.reset();
    }
    state.counters["worst_ms"] = worst * 1000.0;
    state.counters["goal_ratio"] = worst / 0.050;
}

}  // namespace

BENCHMARK(BM_NeedleDropToFirstSound)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
