// Echo: a delay line per channel with feedback, mixed with the dry signal.
// Parameters and ranges are the standard echo effect's: wet/dry mix 0..100 %,
// feedback 0..100 % (the level of each repeat relative to the one before),
// left and right delay 1..2000 ms, pan delay 0/1 (the repeats swap sides).
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/DelayLine.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class EchoEffect final : public SoundEffect {
  public:
    struct Parameters {
        float wetDryMix = 50.0f;    // %
        float feedback = 50.0f;     // %
        float leftDelay = 500.0f;   // ms
        float rightDelay = 500.0f;  // ms
        int panDelay = 0;           // 0 or 1
    };

    explicit EchoEffect(int lineRate = kEffectLineRate);
    Parameters GetParameters() const;
    // kStatusInvalidParam (nothing changed) when a value is out of range.
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  private:
    EffectParameters<5> shared_;
    DelayLine left_, right_;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    float wet_ = 0, feedback_ = 0, leftFrames_ = 1, rightFrames_ = 1;
    bool swap_ = false;
};

}  // namespace sound::fx
