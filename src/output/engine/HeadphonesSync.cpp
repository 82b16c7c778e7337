#include "output/engine/HeadphonesSync.h"

#include "output/engine/CRynAudioOutput.h"
#include "output/laws/HeadphonesDrift.h"

HeadphonesSync::Step HeadphonesSync::SyncToMain(CRynAudioOutput& phones, int deck, int mainCursor,
                                                double nowSeconds) {
    Step step;
    if (deck != 0 && deck != 1)
        return step;
    DeckState& s = state_[deck];
    const int h = phones.ForwardPlayCursor(deck).bytes;
    step.drift = output::ShortWayDrift(mainCursor, h);
    s.drift = step.drift;
    if (!output::DriftNeedsCorrection(step.drift))
        return step;

    const double dt = nowSeconds - s.lastTime;
    s.lastTime = nowSeconds;
    if (phones.SetForwardPositionBytes(deck, mainCursor) != kStatusOk)
        return step;
    step.repositioned = true;
    if (s.corrections > 0) {
        step.frequencyChange = output::FrequencyTrim(step.drift - s.driftAfterLast, dt);
        if (step.frequencyChange != 0)
            phones.SetForwardFrequency(deck, phones.ForwardFrequency(deck) + step.frequencyChange);
    }
    s.driftAfterLast = output::ShortWayDrift(mainCursor, phones.ForwardPlayCursor(deck).bytes);
    ++s.corrections;
    return step;
}

void HeadphonesSync::Reset(int deck) {
    state_[Clamp(deck)] = DeckState{};
}
