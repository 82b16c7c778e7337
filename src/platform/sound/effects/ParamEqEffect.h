// One parametric equalizer band: a peaking filter with its centre
// (80..16000 Hz), bandwidth (1..36 semitones, between the half-gain points)
// and gain (-15..15 dB at the centre), the standard parametric equalizer
// effect's parameters. Start: 8000 Hz, 12 semitones, 0 dB.
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/Biquad.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class ParamEqEffect final : public SoundEffect {
  public:
    static constexpr float kCentreMin = 80.0f, kCentreMax = 16000.0f;  // Hz
    static constexpr float kGainMin = -15.0f, kGainMax = 15.0f;        // dB
    struct Parameters {
        float centre = 8000.0f;   // Hz
        float bandwidth = 12.0f;  // semitones
        float gain = 0.0f;        // dB
    };

    ParamEqEffect();
    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  private:
    EffectParameters<3> shared_;
    Biquad left_, right_;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    bool flat_ = true;
};

}  // namespace sound::fx
