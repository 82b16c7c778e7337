#include "app/KeyTargets.h"

#include "app/UserGuide.h"

#include "deck/CRynDeck.h"
#include "deck/turntable/TurntableController.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"

CNiSlide* PhonesSlide(CRynHeadphonesMixer* phones, HeldTarget target, int deck) {
    if (!phones)
        return nullptr;
    switch (target) {
        case HeldTarget::PhonesLevel:
            return phones->LevelSlide(deck);
        case HeldTarget::PhonesCrossFader:
            return phones->CrossFaderSlide();
        case HeldTarget::PhonesVolume:
            return phones->VolumeSlide();
        default:
            return nullptr;
    }
}

CNiSlide* EqualizerBandSlide(CRynEqualizer* equalizer, int band) {
    if (!equalizer || band < 0 || band > 11)
        return nullptr;
    return equalizer->LevelSlide(band);
}

void TurntableKeyRelease(CRynDeck* deck) {
    // The platter takes its current position again, as a left release
    // without Shift would.
    if (deck)
        deck->Turntable().KeyboardRelease();
}

bool ResetWindowPositions(CRynMainMixer* mixer) {
    if (!mixer)
        return false;
    mixer->ResetWindowPositions();
    return true;
}

bool ShowFullScreen(CRynMainMixer* mixer) {
    if (!mixer)
        return false;
    mixer->ShowFullScreen();
    return true;
}

bool WriteUserGuide() {
    return AskAndWriteUserGuide();
}
