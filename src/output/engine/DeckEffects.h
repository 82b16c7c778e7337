// The effect chain of one deck's forward buffer on one output device: the
// chosen effect ("No Effect", "Chorus", ... from the effect list) and, while
// the device equalizer is on, a row of parametric equalizer bands in front
// of it. The main mixer keeps one per deck on each output and calls the same
// operation on both.
//
// Every chain change goes through SetChain: set the chain; if the buffer
// refuses it, stop the buffer with its fade-out, set it again, and when that
// succeeds start it again with its fade-in (a buffer that was stopped stays
// stopped); a second refusal is returned and the buffer stays stopped.
//
// A call without a forward buffer returns kStatusNotInitialised but still
// records the choice, which the main mixer applies with the next buffers
// (new buffers carry no effects).
//
// User-interface thread only (effects are created here, never on the audio
// thread; the chain reaches the audio thread through the buffer's lock-free
// hand-over).
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "platform/sound/SoundBuffer.h"
#include "platform/sound/effects/DeviceEqualizerLayout.h"
#include "platform/sound/effects/EffectCatalog.h"
#include "platform/sound/effects/ParamEqEffect.h"

class DeckEffects {
  public:
    // Records `name`; with the device equalizer on rebuilds the whole chain
    // (bands, then the effect), else sets an empty chain and then, unless the
    // name is "No Effect", a chain of one new effect of that kind at its
    // start values. A name outside the list leaves an empty chain.
    SoundStatus SelectEffect(sound::SoundBuffer* forward, const std::string& name);
    // Records the flag. Off: an empty chain (the caller puts the effect back
    // with SelectEffect). On: n bands at the layout's centres and bandwidth
    // with their stored gains, then the chosen effect.
    SoundStatus SetDeviceEqualizer(sound::SoundBuffer* forward, bool on);
    // `level` 0..1 for band 0..count-1 (else kStatusNotInitialised): stores
    // level*30-15 dB and, with the equalizer on, sets the band's gain.
    SoundStatus SetBandGain(int band, double level);
    // Equalizer off, n (1..12) bands, equalizer on.
    SoundStatus SetBandCount(sound::SoundBuffer* forward, int n);
    // Knob `knob` (1 or 2) of the current effect to `value` (the knob's own
    // units); nothing for "No Effect" or a name outside the list.
    SoundStatus SetEffectParameter(int knob, float value);

    const std::string& EffectName() const { return name_; }
    bool DeviceEqualizerOn() const { return eqOn_; }
    int BandCount() const { return bandCount_; }
    double BandGainDb(int band) const { return gainDb_[static_cast<std::size_t>(band)]; }
    double BandCentre(int band) const { return centre_[static_cast<std::size_t>(band)]; }
    // The live objects (null / empty when not in the chain).
    sound::SoundEffect* Effect() const { return effect_.get(); }
    const std::vector<std::shared_ptr<sound::fx::ParamEqEffect>>& Bands() const { return bands_; }
    // The chain last set on the buffer.
    std::size_t ChainLength() const { return chainLength_; }

  private:
    SoundStatus SetChain(sound::SoundBuffer* forward,
                         std::vector<std::shared_ptr<sound::SoundEffect>> chain);
    sound::fx::EffectKind Kind() const;

    std::string name_ = "No Effect";
    bool eqOn_ = false;
    int bandCount_ = sound::fx::kDefaultDeviceEqBands;
    std::array<double, sound::fx::kMaxDeviceEqBands> gainDb_{};
    std::array<double, sound::fx::kMaxDeviceEqBands> centre_{};
    std::shared_ptr<sound::SoundEffect> effect_;
    sound::fx::EffectKind effectKind_ = sound::fx::EffectKind::None;
    std::vector<std::shared_ptr<sound::fx::ParamEqEffect>> bands_;
    std::size_t chainLength_ = 0;
};
