// Gargle: amplitude modulation of the signal by a triangle or square wave
// between 0 and 1 at `rateHz` (1..1000 Hz, whole hertz), the standard gargle
// effect's parameters. Wave shape 0 is the triangle, 1 the square.
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class GargleEffect final : public SoundEffect {
  public:
    enum class Wave { Triangle = 0, Square = 1 };
    struct Parameters {
        int rateHz = 20;
        Wave wave = Wave::Triangle;
    };

    GargleEffect();
    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  private:
    EffectParameters<2> shared_;
    std::uint32_t seen_ = 0;
    double phase_ = 0.0;  // 0..1 of a period
    float rate_ = 20.0f;
    bool square_ = false;
};

}  // namespace sound::fx
