#include "platform/sound/effects/ReverbEffect.h"

#include <cmath>

namespace sound::fx {

namespace {
// Comb and all-pass lengths in ms: mutually prime at 44100 Hz (1116 ... 1617
// and 556, 341 frames), the right channel 0.52 ms (23 frames) longer so the
// two sides do not correlate.
constexpr std::array<float, ReverbEffect::kCombs> kCombMs = {25.31f, 26.94f, 28.96f, 30.75f,
                                                             32.25f, 33.81f, 35.31f, 36.67f};
constexpr std::array<float, ReverbEffect::kAllPasses> kAllPassMs = {12.61f, 7.73f};
constexpr float kStereoSpreadMs = 0.52f;
constexpr float kAllPassGain = 0.5f;
constexpr float kLongestMs = 36.67f + kStereoSpreadMs;

int Frames(float ms, int rate) {
    return static_cast<int>(ms * 0.001f * static_cast<float>(rate)) + 2;
}

template <typename T, std::size_t N>
std::array<T, N> Make(int capacity) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::array<T, N>{((void)I, T(capacity))...};
    }
    (std::make_index_sequence<N>{});
}
}  // namespace

ReverbEffect::Channel::Channel(int lineRate)
    : combs(Make<Comb, kCombs>(Frames(kLongestMs, lineRate))),
      allPasses(Make<AllPass, kAllPasses>(Frames(kAllPassMs[0] + kStereoSpreadMs, lineRate))) {}

float ReverbEffect::Channel::Run(float x) {
    float sum = 0.0f;
    for (Comb& c : combs) {
        const float out = c.line.Read(c.delay);
        // The loop's low-pass: gain g at 0 Hz, g_high at the top of the band.
        c.state = c.b * out + c.a * c.state;
        c.line.Write(x + c.state);
        sum += out;
    }
    float y = sum * (1.0f / kCombs);
    for (AllPass& p : allPasses) {
        const float d = p.line.Read(p.delay);
        const float in = y + kAllPassGain * d;
        p.line.Write(in);
        y = d - kAllPassGain * in;
    }
    return y;
}

ReverbEffect::ReverbEffect(int lineRate)
    : shared_({0, 0, 1000, 0.001f}), left_(lineRate), right_(lineRate) {}

ReverbEffect::Parameters ReverbEffect::GetParameters() const {
    const auto v = shared_.Load();
    return {v[0], v[1], v[2], v[3]};
}

SoundStatus ReverbEffect::SetParameters(const Parameters& p) {
    if (!InRange(p.inGain, -96, 0) || !InRange(p.reverbMix, -96, 0) ||
        !InRange(p.reverbTime, 0.001f, 3000) || !InRange(p.highFreqRatio, 0.001f, 0.999f))
        return kStatusInvalidParam;
    shared_.Store({p.inGain, p.reverbMix, p.reverbTime, p.highFreqRatio});
    return kStatusOk;
}

void ReverbEffect::Update(int sampleRate) {
    std::array<float, 4> v{};
    if (!shared_.Fetch(&seen_, &v) && sampleRate == rate_)
        return;
    v = shared_.Load();
    rate_ = sampleRate;
    inGain_ = std::pow(10.0f, v[0] / 20.0f);
    wetGain_ = std::pow(10.0f, v[1] / 20.0f);
    const double time = v[2] * 0.001;  // s
    for (int ch = 0; ch < 2; ++ch) {
        Channel& c = ch == 0 ? left_ : right_;
        for (int i = 0; i < kCombs; ++i) {
            Comb& comb = c.combs[i];
            const double ms = kCombMs[i] + (ch == 1 ? kStereoSpreadMs : 0.0f);
            comb.delay = static_cast<float>(ms * 0.001 * sampleRate);
            // Loop gains for a 60 dB fall in `time` (low) and ratio x time (high).
            const double seconds = comb.delay / sampleRate;
            const double low = std::pow(10.0, -3.0 * seconds / time);
            const double high = std::pow(10.0, -3.0 * seconds / (time * v[3]));
            const double a = low + high > 1e-30 ? (low - high) / (low + high) : 0.0;
            comb.a = static_cast<float>(a);
            comb.b = static_cast<float>(low * (1.0 - a));
        }
        for (int i = 0; i < kAllPasses; ++i) {
            const float ms = kAllPassMs[i] + (ch == 1 ? kStereoSpreadMs : 0.0f);
            c.allPasses[i].delay = ms * 0.001f * static_cast<float>(sampleRate);
        }
    }
}

void ReverbEffect::Process(float* frames, int frameCount, int sampleRate) {
    Update(sampleRate);
    for (int k = 0; k < frameCount; ++k) {
        const float l = frames[2 * k] * inGain_;
        const float r = frames[2 * k + 1] * inGain_;
        frames[2 * k] = l + wetGain_ * left_.Run(l);
        frames[2 * k + 1] = r + wetGain_ * right_.Run(r);
    }
}

}  // namespace sound::fx
