#include "output/engine/DeckEffects.h"

#include <algorithm>

#include "output/engine/CRynSoundEngine.h"

using sound::fx::EffectKind;

EffectKind DeckEffects::Kind() const {
    return sound::fx::EffectKindFromName(name_).value_or(EffectKind::None);
}

SoundStatus DeckEffects::SetChain(sound::SoundBuffer* forward,
                                  std::vector<std::shared_ptr<sound::SoundEffect>> chain) {
    const std::size_t length = chain.size();
    SoundStatus s = forward->SetEffects(chain);
    if (s != kStatusOk) {
        // Refused while playing: stop with the fade-out, try again, restart.
        const bool wasPlaying = forward->IsPlaying();
        CRynSoundEngine::FadeOut(forward);
        s = forward->SetEffects(std::move(chain));
        if (s == kStatusOk && wasPlaying)
            CRynSoundEngine::FadeIn(forward);
    }
    if (s == kStatusOk)
        chainLength_ = length;
    return s;
}

SoundStatus DeckEffects::SelectEffect(sound::SoundBuffer* forward, const std::string& name) {
    name_ = name;
    if (!forward)
        return kStatusNotInitialised;
    if (eqOn_)
        return SetDeviceEqualizer(forward, true);
    bands_.clear();
    effect_.reset();
    effectKind_ = EffectKind::None;
    SoundStatus s = SetChain(forward, {});
    if (s != kStatusOk || Kind() == EffectKind::None)
        return s;
    auto effect = sound::fx::CreateEffect(Kind());
    s = SetChain(forward, {effect});
    if (s == kStatusOk) {
        effect_ = std::move(effect);
        effectKind_ = Kind();
    }
    return s;
}

SoundStatus DeckEffects::SetDeviceEqualizer(sound::SoundBuffer* forward, bool on) {
    eqOn_ = on;
    if (!forward)
        return kStatusNotInitialised;
    if (!on) {
        bands_.clear();
        effect_.reset();
        effectKind_ = EffectKind::None;
        return SetChain(forward, {});
    }
    std::vector<std::shared_ptr<sound::fx::ParamEqEffect>> bands;
    std::vector<std::shared_ptr<sound::SoundEffect>> chain;
    const double bandwidth = sound::fx::DeviceEqBandwidth(bandCount_);
    for (int k = 0; k < bandCount_; ++k) {
        auto band = std::make_shared<sound::fx::ParamEqEffect>();
        const double centre = sound::fx::DeviceEqBandCentre(bandCount_, k);
        band->SetParameters({static_cast<float>(centre), static_cast<float>(bandwidth),
                             static_cast<float>(gainDb_[static_cast<std::size_t>(k)])});
        centre_[static_cast<std::size_t>(k)] = band->GetParameters().centre;
        bands.push_back(band);
        chain.push_back(band);
    }
    // The chosen effect keeps its settings across the rebuild.
    std::shared_ptr<sound::SoundEffect> effect;
    if (Kind() != EffectKind::None)
        effect = effect_ && effectKind_ == Kind() ? effect_ : sound::fx::CreateEffect(Kind());
    if (effect)
        chain.push_back(effect);
    const SoundStatus s = SetChain(forward, std::move(chain));
    if (s == kStatusOk) {
        bands_ = std::move(bands);
        effect_ = std::move(effect);
        effectKind_ = effect_ ? Kind() : EffectKind::None;
    }
    return s;
}

SoundStatus DeckEffects::SetBandGain(int band, double level) {
    if (band < 0 || band >= bandCount_)
        return kStatusNotInitialised;
    gainDb_[static_cast<std::size_t>(band)] = sound::fx::DeviceEqGainDb(level);
    if (!eqOn_ || band >= static_cast<int>(bands_.size()))
        return kStatusOk;
    auto& b = *bands_[static_cast<std::size_t>(band)];
    auto p = b.GetParameters();
    p.gain = static_cast<float>(gainDb_[static_cast<std::size_t>(band)]);
    return b.SetParameters(p);
}

SoundStatus DeckEffects::SetBandCount(sound::SoundBuffer* forward, int n) {
    SetDeviceEqualizer(forward, false);
    bandCount_ = std::clamp(n, 1, sound::fx::kMaxDeviceEqBands);
    return SetDeviceEqualizer(forward, true);
}

SoundStatus DeckEffects::SetEffectParameter(int knob, float value) {
    if (!effect_ || effectKind_ != Kind())
        return kStatusOk;
    return sound::fx::ApplyKnob(*effect_, effectKind_, knob, value);
}
