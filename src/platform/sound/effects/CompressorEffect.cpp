#include "platform/sound/effects/CompressorEffect.h"

#include <algorithm>
#include <cmath>

namespace sound::fx {

namespace {
constexpr float kFullScale = 32768.0f;  // the mix's 16-bit scale

// One-pole smoothing coefficient reaching 1 - 1/e in `ms` milliseconds.
float Coefficient(float ms, int rate) {
    return 1.0f - std::exp(-1.0f / (ms * 0.001f * static_cast<float>(rate)));
}
}  // namespace

CompressorEffect::CompressorEffect(int lineRate)
    : shared_({0, 10, 200, -20, 3, 4}),
      left_(static_cast<int>(0.004f * static_cast<float>(lineRate)) + 4),
      right_(static_cast<int>(0.004f * static_cast<float>(lineRate)) + 4) {}

CompressorEffect::Parameters CompressorEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0], v[1], v[2], v[3], v[4], v[5]};
}

SoundStatus CompressorEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.gain, -60, 60) || !InRange(p.attack, 0.01f, 500) ||
        !InRange(p.release, 50, 3000) || !InRange(p.threshold, -60, 0) ||
        !InRange(p.ratio, 1, 100) || !InRange(p.predelay, 0, 4))
        return kStatusInvalidParam;
    shared_.Store({p.gain, p.attack, p.release, p.threshold, p.ratio, p.predelay});
    return kStatusOk;
}

void CompressorEffect::Process(float* frames, int frameCount, int sampleRate) {
    std::array<float, 6> v{};
    if (shared_.Fetch(&seen_, &v) || sampleRate != rate_) {
        v = shared_.Load();
        rate_ = sampleRate;
        makeUp_ = std::pow(10.0f, v[0] / 20.0f);
        attackCoef_ = Coefficient(v[1], sampleRate);
        releaseCoef_ = Coefficient(v[2], sampleRate);
        thresholdDb_ = v[3];
        slope_ = 1.0f - 1.0f / v[4];
        delayFrames_ = static_cast<float>(static_cast<double>(v[5]) * sampleRate / 1000.0);
    }
    for (int k = 0; k < frameCount; ++k) {
        float& l = frames[2 * k];
        float& r = frames[2 * k + 1];
        // Both channels share one detector so the stereo image holds.
        const float peak = std::max(std::fabs(l), std::fabs(r)) / kFullScale;
        envelope_ += (peak > envelope_ ? attackCoef_ : releaseCoef_) * (peak - envelope_);
        float gain = makeUp_;
        if (envelope_ > 1e-6f) {
            const float overDb = 20.0f * std::log10(envelope_) - thresholdDb_;
            if (overDb > 0.0f)
                gain *= std::pow(10.0f, -overDb * slope_ / 20.0f);
        }
        // The audio is delayed by the pre-delay: the detector looks ahead.
        left_.Write(l);
        right_.Write(r);
        const float dl = delayFrames_ >= 1.0f ? left_.Read(delayFrames_) : l;
        const float dr = delayFrames_ >= 1.0f ? right_.Read(delayFrames_) : r;
        l = dl * gain;
        r = dr * gain;
    }
}

}  // namespace sound::fx
