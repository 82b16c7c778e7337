// Compressor: lowers the level above the threshold by the ratio, with a
// peak detector that follows rises over the attack time and falls over the
// release time, a look-ahead (pre-delay) and an output gain. Parameters,
// ranges and start values are the standard compressor effect's: gain
// -60..60 dB (0), attack 0.01..500 ms (10), release 50..3000 ms (200),
// threshold -60..0 dB of full scale (-20), ratio 1..100 (3), pre-delay
// 0..4 ms (4).
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/DelayLine.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class CompressorEffect final : public SoundEffect {
  public:
    struct Parameters {
        float gain = 0.0f;         // dB
        float attack = 10.0f;      // ms
        float release = 200.0f;    // ms
        float threshold = -20.0f;  // dB of full scale
        float ratio = 3.0f;
        float predelay = 4.0f;  // ms
    };

    explicit CompressorEffect(int lineRate = kEffectLineRate);
    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  private:
    EffectParameters<6> shared_;
    DelayLine left_, right_;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    float makeUp_ = 1, attackCoef_ = 1, releaseCoef_ = 1, thresholdDb_ = -20, slope_ = 0;
    float delayFrames_ = 1;
    float envelope_ = 0;  // detected peak, full scale = 1
};

}  // namespace sound::fx
