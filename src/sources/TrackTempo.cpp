#include "sources/TrackTempo.h"

#include <array>
#include <cstring>

#include "sources/CRynFileDecoder.h"

TrackTempoResult MeasureTrackTempo(const std::string& path, tempo::TempoEstimator& estimator,
                                   const std::atomic<bool>* stop) {
    TrackTempoResult result;
    CRynFileDecoder decoder;
    if (!decoder.Open(path))
        return result;
    const int rate = decoder.SampleRate();
    estimator.Begin(rate);
    std::array<std::uint8_t, kBlockBytes> block{};
    std::array<float, kBlockFrames> mono{};
    std::int64_t frames = 0;
    for (;;) {
        if (stop && stop->load(std::memory_order_relaxed)) {
            result.status = TrackTempoResult::Status::Stopped;
            estimator.Finish();
            return result;
        }
        int bytes = 0;
        bool end = false;
        if (decoder.ReadBlock(block.data(), bytes, end) != CRynFileDecoder::kOk)
            break;
        const int count = bytes / 4;
        for (int i = 0; i < count; ++i) {
            std::int16_t lr[2];
            std::memcpy(lr, block.data() + 4 * i, sizeof lr);
            // (L + R) / 2 on the full scale: 1 / (2 x 32768).
            mono[i] = static_cast<float>(lr[0] + lr[1]) * (1.0f / 65536.0f);
        }
        estimator.Feed(mono.data(), count);
        frames += count;
        if (end || count == 0)
            break;
    }
    decoder.Close();
    result.status = TrackTempoResult::Status::Measured;
    result.seconds = static_cast<double>(frames) / rate;
    result.bpm = estimator.Finish();
    return result;
}
