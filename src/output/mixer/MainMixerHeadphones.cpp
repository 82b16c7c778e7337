// The main mixer hands the decks to a headphones device that was just opened,
// chosen by the user or back after a loss: each deck with buffers on the main
// device gets them on the headphones too, written from the main write cursor
// on and playing from the main play cursor (MixCycle::AttachHeadphones);
// the deck's effect and its two parameters are set on the new buffers, then
// the headphones mix and the headphones balances. The main output is left
// alone: nothing here touches its buffers.
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"

void CRynMainMixer::GiveDecksToHeadphones() {
    if (!headphones_)
        return;
    cycle_.AttachHeadphones();
    CRynAudioOutput& phones = headphones_->Output();
    effectsOnly_ = &phones;
    for (int d = 0; d < 2; ++d) {
        if (phones.ForwardBuffer(d) == nullptr)
            continue;
        OnEffectMessage(UWM_APPLY_EFFECT, static_cast<WParam>(d), 0);
        OnEffectMessage(UWM_APPLY_EFFECT_PARAMETER, static_cast<WParam>(d), 1);
        OnEffectMessage(UWM_APPLY_EFFECT_PARAMETER, static_cast<WParam>(d), 2);
    }
    effectsOnly_ = nullptr;
    headphones_->ApplyMix();
    for (int d = 0; d < 2; ++d)
        headphones_->ApplyPan(d);
}
