#include "platform/sound/effects/ModulatedDelayEffect.h"

#include <cmath>
#include <numbers>

namespace sound::fx {

namespace {
// The longest delay is twice the set delay (depth 100 %), plus the
// interpolator's reach.
int LineFrames(float maxDelayMs, int lineRate) {
    return static_cast<int>(2.0f * maxDelayMs * 0.001f * static_cast<float>(lineRate)) + 4;
}

float WaveAt(double phase, bool sine) {
    if (sine)
        return static_cast<float>(std::sin(2.0 * std::numbers::pi * phase));
    // Triangle through 0 rising at phase 0, like the sine.
    const double t = phase - std::floor(phase);
    return static_cast<float>(t < 0.25 ? 4 * t : t < 0.75 ? 2 - 4 * t : 4 * t - 4);
}
}  // namespace

ModulatedDelayEffect::ModulatedDelayEffect(const Parameters& start, float maxDelayMs, int lineRate)
    : maxDelayMs_(maxDelayMs),
      shared_({start.wetDryMix, start.depth, start.feedback, start.frequency,
               static_cast<float>(start.wave), start.delay, static_cast<float>(start.phase)}),
      left_(LineFrames(maxDelayMs, lineRate)),
      right_(LineFrames(maxDelayMs, lineRate)) {}

ModulatedDelayEffect::Parameters ModulatedDelayEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0],
            v[1],
            v[2],
            v[3],
            v[4] >= 0.5f ? Wave::Sine : Wave::Triangle,
            v[5],
            static_cast<int>(v[6])};
}

SoundStatus ModulatedDelayEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.wetDryMix, 0, 100) || !InRange(p.depth, 0, 100) ||
        !InRange(p.feedback, -99, 99) || !InRange(p.frequency, 0, 10) ||
        !InRange(p.delay, 0, maxDelayMs_) || p.phase < 0 || p.phase > 4)
        return kStatusInvalidParam;
    shared_.Store({p.wetDryMix, p.depth, p.feedback, p.frequency, static_cast<float>(p.wave),
                   p.delay, static_cast<float>(p.phase)});
    return kStatusOk;
}

void ModulatedDelayEffect::Update(int sampleRate) {
    std::array<float, 7> v{};
    if (!shared_.Fetch(&seen_, &v) && sampleRate == rate_)
        return;
    v = shared_.Load();
    rate_ = sampleRate;
    wet_ = v[0] / 100.0f;
    depth_ = v[1] / 100.0f;
    feedback_ = v[2] / 100.0f;
    step_ = static_cast<double>(v[3]) / sampleRate;
    sine_ = v[4] >= 0.5f;
    delayFrames_ = static_cast<float>(static_cast<double>(v[5]) * sampleRate / 1000.0);
    offset_ = (static_cast<int>(v[6]) - 2) * 0.25;
}

void ModulatedDelayEffect::Process(float* frames, int frameCount, int sampleRate) {
    Update(sampleRate);
    const float dry = 1.0f - wet_;
    for (int k = 0; k < frameCount; ++k) {
        const float dl = left_.Read(delayFrames_ * (1.0f + depth_ * WaveAt(phase_, sine_)));
        const float dr =
            right_.Read(delayFrames_ * (1.0f + depth_ * WaveAt(phase_ + offset_, sine_)));
        float& l = frames[2 * k];
        float& r = frames[2 * k + 1];
        left_.Write(l + feedback_ * dl);
        right_.Write(r + feedback_ * dr);
        l = dry * l + wet_ * dl;
        r = dry * r + wet_ * dr;
        phase_ += step_;
        if (phase_ >= 1.0)
            phase_ -= 1.0;
    }
}

}  // namespace sound::fx
