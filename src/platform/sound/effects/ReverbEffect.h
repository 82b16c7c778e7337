// Reverb: eight parallel feedback combs per channel, each with a low-pass in
// its loop, then two all-pass diffusers. Parameters, ranges and start values
// are the standard waves reverb effect's: input gain -96..0 dB (0), reverb
// mix -96..0 dB (0), reverb time 0.001..3000 ms (1000), high-frequency
// reverb-time ratio 0.001..0.999 (0.001).
//
// Every comb's loop gain is set so the tail falls 60 dB in the reverb time
// at low frequencies and in ratio x reverb time at the top of the band.
// The output is the dry signal plus the reverb at the mix level, both after
// the input gain.
#pragma once

#include <array>

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/DelayLine.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class ReverbEffect final : public SoundEffect {
  public:
    struct Parameters {
        float inGain = 0.0f;           // dB
        float reverbMix = 0.0f;        // dB
        float reverbTime = 1000.0f;    // ms
        float highFreqRatio = 0.001f;  // of the reverb time
    };

    explicit ReverbEffect(int lineRate = kEffectLineRate);
    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

    static constexpr int kCombs = 8;
    static constexpr int kAllPasses = 2;

  private:
    struct Comb {
        explicit Comb(int capacity) : line(capacity) {}
        DelayLine line;
        float delay = 1, a = 0, b = 0, state = 0;
    };
    struct AllPass {
        explicit AllPass(int capacity) : line(capacity) {}
        DelayLine line;
        float delay = 1;
    };
    struct Channel {
        explicit Channel(int lineRate);
        std::array<Comb, kCombs> combs;
        std::array<AllPass, kAllPasses> allPasses;
        float Run(float x);
    };
    void Update(int sampleRate);

    EffectParameters<4> shared_;
    Channel left_, right_;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    float inGain_ = 1, wetGain_ = 1;
};

}  // namespace sound::fx
