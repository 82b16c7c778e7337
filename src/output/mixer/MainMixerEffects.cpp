// The main mixer's share of the deck effects, the device equalizer and the
// deck pan: every operation runs on the main and on the headphones output.
//
//   UWM_APPLY_EFFECT (deck)                 the deck's listed effect
//   UWM_APPLY_EFFECT_PARAMETER (deck, n)    knob n (1 or 2) of the deck
//   UWM_APPLY_PAN (deck)                    the deck's pan
//   UWM_EQ_BAND_GAIN (deck << 16 | band, float bits of the level 0..1)
//   UWM_DEVICE_EQ_BANDS (deck, n)           n device equalizer bands
//   UWM_DEVICE_EQ_ON (deck, 1 / 0)          device equalizer on / off, then
//                                           the effect's knobs again
#include <bit>
#include <cstdint>

#include "deck/CRynDeck.h"
#include "deck/effects/DeckEffectsPanel.h"
#include "output/mixer/CRynMainMixer.h"

LResult CRynMainMixer::OnEffectMessage(Uwm msg, WParam wParam, LParam lParam) {
    const int deck =
        msg == UWM_EQ_BAND_GAIN ? static_cast<int>(wParam >> 16) : static_cast<int>(wParam);
    if (!ValidDeck(static_cast<WParam>(deck)))
        return 0;
    DeckEffectsPanel* panel = decks_[deck] ? &decks_[deck]->Effects() : nullptr;
    auto onBoth = [&](auto&& op) {
        for (CRynAudioOutput* o : {&mainOutput_, headphonesOutput_})
            if (o && (!effectsOnly_ || o == effectsOnly_))
                op(*o, o->Effects(deck), o->ForwardBuffer(deck));
    };
    auto knob = [&](int n) {
        if (!panel)
            return;
        const auto v = static_cast<float>(panel->KnobValue(n));
        onBoth([&](CRynAudioOutput&, DeckEffects& fx, sound::SoundBuffer*) {
            fx.SetEffectParameter(n, v);
        });
    };
    switch (msg) {
        case UWM_APPLY_EFFECT:
            if (panel) {
                const std::string name = panel->EffectName().toStdString();
                onBoth([&](CRynAudioOutput&, DeckEffects& fx, sound::SoundBuffer* b) {
                    fx.SelectEffect(b, name);
                });
            }
            break;
        case UWM_APPLY_EFFECT_PARAMETER:
            knob(static_cast<int>(lParam));
            break;
        case UWM_APPLY_PAN:
            if (panel) {
                const float pan = panel->Pan();
                onBoth([&](CRynAudioOutput& o, DeckEffects&, sound::SoundBuffer*) {
                    o.SetDeckPan(deck, pan);
                });
            }
            break;
        case UWM_EQ_BAND_GAIN: {
            const auto level = std::bit_cast<float>(static_cast<std::uint32_t>(lParam));
            const int band = static_cast<int>(wParam & 0xFFFF);
            onBoth([&](CRynAudioOutput&, DeckEffects& fx, sound::SoundBuffer*) {
                fx.SetBandGain(band, level);
            });
            break;
        }
        case UWM_DEVICE_EQ_BANDS:
            onBoth([&](CRynAudioOutput&, DeckEffects& fx, sound::SoundBuffer* b) {
                fx.SetBandCount(b, static_cast<int>(lParam));
            });
            knob(1);
            knob(2);
            break;
        case UWM_DEVICE_EQ_ON:
            onBoth([&](CRynAudioOutput&, DeckEffects& fx, sound::SoundBuffer* b) {
                fx.SetDeviceEqualizer(b, lParam != 0);
                // Off leaves an empty chain: the chosen effect goes back in.
                if (lParam == 0)
                    fx.SelectEffect(b, fx.EffectName());
            });
            knob(1);
            knob(2);
            break;
        default:
            break;
    }
    return 0;
}

void CRynMainMixer::ApplyDeckEffects(int deck) {
    OnEffectMessage(UWM_APPLY_EFFECT, static_cast<WParam>(deck), 0);
    OnEffectMessage(UWM_APPLY_EFFECT_PARAMETER, static_cast<WParam>(deck), 1);
    OnEffectMessage(UWM_APPLY_EFFECT_PARAMETER, static_cast<WParam>(deck), 2);
    OnEffectMessage(UWM_APPLY_PAN, static_cast<WParam>(deck), 0);
}
