// Distortion: a low-pass before a soft clipper, and a band emphasis after it.
// Parameters, ranges and start values are the standard distortion effect's:
// gain -60..0 dB (-18), edge 0..100 % (15), post-equalizer centre and
// bandwidth 100..8000 Hz (2400 and 2400), pre-low-pass cutoff 100..8000 Hz
// (8000).
//
// Gain is the drive into the clipper: the higher it is, the sooner the wave
// flattens and the richer its harmonics. Edge multiplies the drive (x1 at
// 0 %, x21 at 100 %). The clipper is scaled so a full-scale input comes out
// at full scale whatever the drive (a quiet signal at low gain passes
// nearly unchanged); the band emphasis then mixes in at half.
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/Biquad.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class DistortionEffect final : public SoundEffect {
  public:
    struct Parameters {
        float gain = -18.0f;               // dB
        float edge = 15.0f;                // %
        float postEqCentre = 2400.0f;      // Hz
        float postEqBandwidth = 2400.0f;   // Hz
        float preLowpassCutoff = 8000.0f;  // Hz
    };

    DistortionEffect();
    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  private:
    float Shape(float x, Biquad& post, float& lowpass) const;

    EffectParameters<5> shared_;
    Biquad postLeft_, postRight_;
    float lowLeft_ = 0, lowRight_ = 0;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    float drive_ = 1, ceiling_ = 1, lowpassCoef_ = 1;
};

}  // namespace sound::fx
