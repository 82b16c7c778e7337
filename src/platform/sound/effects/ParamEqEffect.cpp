#include "platform/sound/effects/ParamEqEffect.h"

namespace sound::fx {

ParamEqEffect::ParamEqEffect() : shared_({8000, 12, 0}) {}

ParamEqEffect::Parameters ParamEqEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0], v[1], v[2]};
}

SoundStatus ParamEqEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.centre, kCentreMin, kCentreMax) || !InRange(p.bandwidth, 1, 36) ||
        !InRange(p.gain, kGainMin, kGainMax))
        return kStatusInvalidParam;
    shared_.Store({p.centre, p.bandwidth, p.gain});
    return kStatusOk;
}

void ParamEqEffect::Process(float* frames, int frameCount, int sampleRate) {
    std::array<float, 3> v{};
    if (shared_.Fetch(&seen_, &v) || sampleRate != rate_) {
        v = shared_.Load();
        rate_ = sampleRate;
        const auto c = BiquadCoefficients::Peaking(v[0], v[1] / 12.0, v[2], sampleRate);
        left_.Set(c);
        right_.Set(c);
        flat_ = v[2] == 0.0f;
        if (flat_) {
            left_.Reset();
            right_.Reset();
        }
    }
    if (flat_)
        return;  // a band at 0 dB passes the signal unchanged
    for (int k = 0; k < frameCount; ++k) {
        frames[2 * k] = left_.Process(frames[2 * k]);
        frames[2 * k + 1] = right_.Process(frames[2 * k + 1]);
    }
}

}  // namespace sound::fx
