// Time to measure a track's tempo (decoding through the file decoder and
// aubio's beat tracker, as the mixer's tempo worker does), per minute of
// audio. The worker runs at the lowest priority beside the decks, so the
// goal is at most 1.0 s per minute of audio on one core: a five-minute
// track is known within seconds of its load.
//
// The track (a 174 BPM drum pattern of 3 minutes, 44100 Hz stereo WAV) is
// generated with sox into MIXORA_BINARY_DIR/bench_fixtures on first use.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>

#include "platform/tempo/TempoEstimator.h"
#include "sources/TrackTempo.h"

namespace {

constexpr int kBeat = 15207;  // samples: 174 BPM at 44100 Hz
constexpr int kBars = 172;    // 4 beats a bar: about 3 minutes

std::string TrackPath() {
    static const std::string path = [] {
        const std::string dir = std::string(MIXORA_BINARY_DIR) + "/bench_fixtures";
        const std::string file = dir + "/tempo_174_3min.wav";
        if (std::filesystem::exists(file))
            return file;
        std::filesystem::create_directories(dir);
        const std::string bar = std::to_string(4 * kBeat) + "s";
        auto layer = [&](const std::string& out, const std::string& sound, int at) {
            return "sox -r 44100 -c 1 -n -b 16 '" + out + "' synth " + sound + " pad " +
                   std::to_string(at) + "s 3 trim 0 " + bar + " 2>/dev/null";
        };
        std::string mix = "sox -m";
        bool ok = true;
        const std::string kick = "0.15 sine 150-50 fade 0 0.15 0.14";
        const std::string snare = "0.1 whitenoise lowpass 5000 fade 0 0.1 0.09";
        const std::string hat = "0.03 whitenoise vol 0.5 highpass 7000 fade 0 0.03 0.025 vol 0.5";
        const std::pair<std::string, int> hits[] = {
            {kick, 0},        {kick, 2 * kBeat},    {snare, kBeat},   {snare, 3 * kBeat},
            {hat, 0},         {hat, kBeat / 2},     {hat, kBeat},     {hat, 3 * kBeat / 2},
            {hat, 2 * kBeat}, {hat, 5 * kBeat / 2}, {hat, 3 * kBeat}, {hat, 7 * kBeat / 2}};
        int n = 0;
        for (const auto& [sound, at] : hits) {
            const std::string out = dir + "/tempo_layer" + std::to_string(n++) + ".wav";
            ok = ok && std::system(layer(out, sound, at).c_str()) == 0;
            mix += " '" + out + "'";
        }
        const std::string barFile = dir + "/tempo_bar.wav";
        const std::string tmp = file + ".part.wav";
        ok = ok && std::system((mix + " '" + barFile + "' norm -3 2>/dev/null").c_str()) == 0 &&
             std::system(
                 ("sox '" + barFile + "' -c 2 '" + tmp + "' repeat " + std::to_string(kBars - 1))
                     .c_str()) == 0;
        if (ok)
            std::filesystem::rename(tmp, file);
        return file;
    }();
    return path;
}

double g_secondsPerMinute = std::numeric_limits<double>::max();  // best run
double g_bpm = 0;

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void BM_TrackTempo(benchmark::State& state) {
    const std::string path = TrackPath();
    for (auto _ : state) {
        auto estimator = tempo::CreateTempoEstimator();
        const double start = Now();
        const TrackTempoResult r = MeasureTrackTempo(path, *estimator);
        const double took = Now() - start;
        if (r.status != TrackTempoResult::Status::Measured || r.seconds <= 0) {
            state.SkipWithError("cannot measure the track");
            return;
        }
        g_bpm = r.bpm;
        g_secondsPerMinute = std::min(g_secondsPerMinute, took / (r.seconds / 60.0));
    }
    state.counters["bpm"] = g_bpm;
    state.counters["s_per_min"] = g_secondsPerMinute;
}
BENCHMARK(BM_TrackTempo)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_secondsPerMinute < std::numeric_limits<double>::max()) {
        std::printf(
            "track_tempo: %.3f s of analysis per minute of audio (goal <= 1.000), %.2f BPM "
            "measured (174 expected) %s\n",
            g_secondsPerMinute, g_bpm, g_secondsPerMinute <= 1.0 ? "ok" : "BELOW GOAL");
    }
    return 0;
}
