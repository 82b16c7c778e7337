// Chorus and flanger: the signal through a delay line whose length a
// low-frequency wave sweeps, with feedback, mixed with the dry signal.
//
// The delay at time t is delay * (1 + depth/100 * w(t)) ms, w the triangle or
// sine wave at `frequency` Hz between -1 and 1; the right channel's wave is
// offset by the phase (-180, -90, 0, 90 or 180 degrees for phase 0..4).
// Feedback (-99..99 %) sends the delayed signal back into the line.
// Parameters, ranges and start values are the standard chorus and flanger
// effects': they differ only in the delay range and their start values.
#pragma once

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/effects/DelayLine.h"
#include "platform/sound/effects/EffectParameters.h"

namespace sound::fx {

class ModulatedDelayEffect : public SoundEffect {
  public:
    enum class Wave { Triangle = 0, Sine = 1 };
    struct Parameters {
        float wetDryMix;  // 0..100 %
        float depth;      // 0..100 %
        float feedback;   // -99..99 %
        float frequency;  // 0..10 Hz
        Wave wave;
        float delay;  // 0..maximum delay, ms
        int phase;    // 0..4: -180, -90, 0, 90, 180 degrees
    };

    Parameters GetParameters() const;
    SoundStatus SetParameters(const Parameters& p);
    void Process(float* frames, int frameCount, int sampleRate) override;

  protected:
    ModulatedDelayEffect(const Parameters& start, float maxDelayMs, int lineRate);

  private:
    void Update(int sampleRate);

    const float maxDelayMs_;
    EffectParameters<7> shared_;
    DelayLine left_, right_;
    std::uint32_t seen_ = 0;
    int rate_ = 0;
    float wet_ = 0, depth_ = 0, feedback_ = 0, delayFrames_ = 0;
    double step_ = 0, phase_ = 0, offset_ = 0;  // in periods
    bool sine_ = true;
};

class ChorusEffect final : public ModulatedDelayEffect {
  public:
    static constexpr float kMaxDelayMs = 20.0f;
    explicit ChorusEffect(int lineRate = kEffectLineRate)
        : ModulatedDelayEffect({50, 10, 25, 1.1f, Wave::Sine, 16, 3}, kMaxDelayMs, lineRate) {}
};

class FlangerEffect final : public ModulatedDelayEffect {
  public:
    static constexpr float kMaxDelayMs = 4.0f;
    explicit FlangerEffect(int lineRate = kEffectLineRate)
        : ModulatedDelayEffect({50, 100, -50, 0.25f, Wave::Sine, 2, 2}, kMaxDelayMs, lineRate) {}
};

}  // namespace sound::fx
