#include "platform/sound/effects/DistortionEffect.h"

#include <cmath>
#include <numbers>

namespace sound::fx {

namespace {
constexpr float kFullScale = 32768.0f;  // the mix's 16-bit scale
// Drive at gain 0 dB and edge 0 %: a full-scale sine is driven 20 dB into
// the clipper (nearly a square wave); at -60 dB it stays clean.
constexpr float kDriveAtZeroDb = 10.0f;
}  // namespace

DistortionEffect::DistortionEffect() : shared_({-18, 15, 2400, 2400, 8000}) {}

DistortionEffect::Parameters DistortionEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0], v[1], v[2], v[3], v[4]};
}

SoundStatus DistortionEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.gain, -60, 0) || !InRange(p.edge, 0, 100) ||
        !InRange(p.postEqCentre, 100, 8000) || !InRange(p.postEqBandwidth, 100, 8000) ||
        !InRange(p.preLowpassCutoff, 100, 8000))
        return kStatusInvalidParam;
    shared_.Store({p.gain, p.edge, p.postEqCentre, p.postEqBandwidth, p.preLowpassCutoff});
    return kStatusOk;
}

float DistortionEffect::Shape(float x, Biquad& post, float& lowpass) const {
    lowpass += lowpassCoef_ * (x / kFullScale - lowpass);
    const float y = ceiling_ * std::tanh(drive_ * lowpass);
    // The band emphasis adds up to +6 dB around the post-equalizer centre.
    return 0.5f * (y + post.Process(y)) * kFullScale;
}

void DistortionEffect::Process(float* frames, int frameCount, int sampleRate) {
    std::array<float, 5> v{};
    if (shared_.Fetch(&seen_, &v) || sampleRate != rate_) {
        v = shared_.Load();
        rate_ = sampleRate;
        const float gain = std::pow(10.0f, v[0] / 20.0f);
        const float edge = 1.0f + 0.2f * v[1];
        drive_ = kDriveAtZeroDb * gain * edge;
        // Full scale in, full scale out.
        ceiling_ = 1.0f / std::tanh(drive_);
        const auto post = BiquadCoefficients::BandPass(v[2], v[3], sampleRate);
        postLeft_.Set(post);
        postRight_.Set(post);
        lowpassCoef_ = 1.0f - std::exp(-2.0f * std::numbers::pi_v<float> * v[4] /
                                       static_cast<float>(sampleRate));
    }
    for (int k = 0; k < frameCount; ++k) {
        frames[2 * k] = Shape(frames[2 * k], postLeft_, lowLeft_);
        frames[2 * k + 1] = Shape(frames[2 * k + 1], postRight_, lowRight_);
    }
}

}  // namespace sound::fx
