#include "platform/sound/effects/EchoEffect.h"

namespace sound::fx {

EchoEffect::EchoEffect(int lineRate)
    : shared_({50, 50, 500, 500, 0}), left_(2 * lineRate + 1), right_(2 * lineRate + 1) {}

EchoEffect::Parameters EchoEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0], v[1], v[2], v[3], static_cast<int>(v[4])};
}

SoundStatus EchoEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.wetDryMix, 0, 100) || !InRange(p.feedback, 0, 100) ||
        !InRange(p.leftDelay, 1, 2000) || !InRange(p.rightDelay, 1, 2000) ||
        (p.panDelay != 0 && p.panDelay != 1))
        return kStatusInvalidParam;
    shared_.Store(
        {p.wetDryMix, p.feedback, p.leftDelay, p.rightDelay, static_cast<float>(p.panDelay)});
    return kStatusOk;
}

void EchoEffect::Process(float* frames, int frameCount, int sampleRate) {
    std::array<float, 5> v{};
    if (shared_.Fetch(&seen_, &v) || sampleRate != rate_) {
        if (sampleRate != rate_)
            v = shared_.Load();
        rate_ = sampleRate;
        wet_ = v[0] / 100.0f;
        feedback_ = v[1] / 100.0f;
        // In double: 750 ms at 44100 Hz is exactly 33075 frames.
        leftFrames_ = static_cast<float>(static_cast<double>(v[2]) * sampleRate / 1000.0);
        rightFrames_ = static_cast<float>(static_cast<double>(v[3]) * sampleRate / 1000.0);
        swap_ = v[4] >= 0.5f;
    }
    const float dry = 1.0f - wet_;
    for (int k = 0; k < frameCount; ++k) {
        float& l = frames[2 * k];
        float& r = frames[2 * k + 1];
        const float dl = left_.Read(leftFrames_);
        const float dr = right_.Read(rightFrames_);
        // With pan delay each repeat feeds the other side's line.
        left_.Write(l + feedback_ * (swap_ ? dr : dl));
        right_.Write(r + feedback_ * (swap_ ? dl : dr));
        l = dry * l + wet_ * dl;
        r = dry * r + wet_ * dr;
    }
}

}  // namespace sound::fx
