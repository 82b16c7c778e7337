#include "platform/sound/effects/GargleEffect.h"

namespace sound::fx {

GargleEffect::GargleEffect() : shared_({20, 0}) {}

GargleEffect::Parameters GargleEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {static_cast<int>(v[0]), v[1] >= 0.5f ? Wave::Square : Wave::Triangle};
}

SoundStatus GargleEffect::SetParameters(const Parameters& p) {
    if (p.rateHz < 1 || p.rateHz > 1000)
        return kStatusInvalidParam;
    shared_.Store({static_cast<float>(p.rateHz), p.wave == Wave::Square ? 1.0f : 0.0f});
    return kStatusOk;
}

void GargleEffect::Process(float* frames, int frameCount, int sampleRate) {
    std::array<float, 2> v{};
    if (shared_.Fetch(&seen_, &v)) {
        rate_ = v[0];
        square_ = v[1] >= 0.5f;
    }
    const double step = static_cast<double>(rate_) / sampleRate;
    for (int k = 0; k < frameCount; ++k) {
        // Both waves start at 1 and reach 0 at half a period.
        const double t = phase_;
        const float m = square_ ? (t < 0.5 ? 1.0f : 0.0f)
                                : static_cast<float>(t < 0.5 ? 1.0 - 2.0 * t : 2.0 * t - 1.0);
        frames[2 * k] *= m;
        frames[2 * k + 1] *= m;
        phase_ += step;
        if (phase_ >= 1.0)
            phase_ -= 1.0;
    }
}

}  // namespace sound::fx
