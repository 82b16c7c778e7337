// Test support: plays a signal through one effect on a real buffer of the
// manual-clock Null device and returns what the device mixed, and small
// measurements on the result.
#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <numbers>
#include <vector>

#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundEffect.h"

namespace effect_probe {

constexpr int kRate = 44100;

struct Stereo {
    std::vector<float> left, right;
};

// `signal(frame)` gives the left and right sample (16-bit scale) of each of
// `frames` frames. The buffer plays once, at the device rate, at full volume
// and centred, with `effect` in its chain; the device renders 256-frame
// periods, as a sound card asks for them.
inline Stereo PlayThrough(std::shared_ptr<sound::SoundEffect> effect, int frames,
                          const std::function<std::pair<float, float>(int)>& signal) {
    auto device = sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual);
    std::unique_ptr<sound::SoundBuffer> b;
    device->CreateBuffer({static_cast<std::uint32_t>(frames) * 4u, kRate}, &b);
    sound::LockedRegion r;
    b->Lock(0, b->SizeBytes(), &r);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    for (int i = 0; i < frames; ++i) {
        const auto [l, rr] = signal(i);
        s[2 * i] = static_cast<std::int16_t>(std::lround(l));
        s[2 * i + 1] = static_cast<std::int16_t>(std::lround(rr));
    }
    b->Unlock(r);
    if (effect)
        b->SetEffects({effect});
    b->Play(false);
    Stereo out;
    std::vector<std::int16_t> period(512);
    for (int done = 0; done < frames; done += 256) {
        device->Render(256, period.data());
        for (int k = 0; k < 256; ++k) {
            out.left.push_back(period[2 * k]);
            out.right.push_back(period[2 * k + 1]);
        }
    }
    out.left.resize(frames);
    out.right.resize(frames);
    return out;
}

inline double Rms(const std::vector<float>& x, int from, int to) {
    double sum = 0;
    for (int i = from; i < to; ++i)
        sum += static_cast<double>(x[i]) * x[i];
    return std::sqrt(sum / (to - from));
}

// Amplitude of the `hz` component of x[from..to) (a whole number of its
// periods gives an exact answer).
inline double Amplitude(const std::vector<float>& x, int from, int to, double hz) {
    double re = 0, im = 0;
    for (int i = from; i < to; ++i) {
        const double ph = 2 * std::numbers::pi * hz * i / kRate;
        re += x[i] * std::cos(ph);
        im += x[i] * std::sin(ph);
    }
    return 2 * std::hypot(re, im) / (to - from);
}

inline double Db(double ratio) {
    return 20 * std::log10(ratio);
}

}  // namespace effect_probe
