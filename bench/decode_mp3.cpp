// Decode speed of a 5-minute MP3 into 4704-byte blocks with the deck's file
// decoder, against the ffmpeg program decoding the same file to nothing
// (`ffmpeg -i FILE -f null -`) in the same run. Prints the ratio
// ffmpeg time / decoder time; the goal is at least 0.9.
//
// The MP3 (music-like: two tones and pink noise, 192 kbit/s) is generated
// into MIXORA_BINARY_DIR/bench_fixtures on first use.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>

#include "sources/CRynFileDecoder.h"

namespace {

constexpr int kSeconds = 300;

std::string Mp3Path() {
    static const std::string path = [] {
        const std::string dir = std::string(MIXORA_BINARY_DIR) + "/bench_fixtures";
        const std::string file = dir + "/decode_5min.mp3";
        if (!std::filesystem::exists(file)) {
            std::filesystem::create_directories(dir);
            const std::string tmp = file + ".part.mp3";
            const std::string cmd =
                "ffmpeg -nostdin -loglevel error -y -filter_complex "
                "\"sine=f=220:d=" +
                std::to_string(kSeconds) + "[a];sine=f=1333:d=" + std::to_string(kSeconds) +
                "[b];anoisesrc=d=" + std::to_string(kSeconds) +
                ":c=pink:a=0.05[c];[a][b][c]amix=inputs=3\" -ac 2 -ar 44100 -c:a libmp3lame "
                "-b:a 192k '" +
                tmp + "'";
            if (std::system(cmd.c_str()) == 0)
                std::filesystem::rename(tmp, file);
        }
        return file;
    }();
    return path;
}

double g_decoderSeconds = std::numeric_limits<double>::max();  // best run
double g_ffmpegSeconds = std::numeric_limits<double>::max();

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void BM_DecoderBlocks(benchmark::State& state) {
    const std::string path = Mp3Path();
    std::uint8_t block[kBlockBytes];
    std::int64_t blocks = 0;
    for (auto _ : state) {
        const double start = Now();
        CRynFileDecoder decoder;
        if (!decoder.Open(path)) {
            state.SkipWithError("cannot open the MP3");
            return;
        }
        int bytes = 0;
        bool end = false;
        blocks = 0;
        while (decoder.ReadBlock(block, bytes, end) == CRynFileDecoder::kOk && !end)
            ++blocks;
        benchmark::DoNotOptimize(block);
        g_decoderSeconds = std::min(g_decoderSeconds, Now() - start);
    }
    state.counters["blocks"] = double(blocks);
    state.counters["x_realtime"] = kSeconds / g_decoderSeconds;
}
BENCHMARK(BM_DecoderBlocks)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

void BM_FfmpegToNull(benchmark::State& state) {
    const std::string cmd = "ffmpeg -nostdin -loglevel error -i '" + Mp3Path() + "' -f null -";
    for (auto _ : state) {
        const double start = Now();
        if (std::system(cmd.c_str()) != 0) {
            state.SkipWithError("ffmpeg failed");
            return;
        }
        g_ffmpegSeconds = std::min(g_ffmpegSeconds, Now() - start);
    }
    state.counters["x_realtime"] = kSeconds / g_ffmpegSeconds;
}
BENCHMARK(BM_FfmpegToNull)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_decoderSeconds < std::numeric_limits<double>::max() &&
        g_ffmpegSeconds < std::numeric_limits<double>::max()) {
        const double ratio = g_ffmpegSeconds / g_decoderSeconds;
        std::printf("decode_mp3: decoder %.3f s, ffmpeg %.3f s, ratio %.2f (goal >= 0.90) %s\n",
                    g_decoderSeconds, g_ffmpegSeconds, ratio, ratio >= 0.9 ? "ok" : "BELOW GOAL");
    }
    return 0;
}
