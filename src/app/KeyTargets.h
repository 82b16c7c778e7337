// What the keys reach in windows that are still being built, gathered in one
// place so each is connected once when its window lands:
//   - the headphones mixer's level, cross-fader and volume slides (Ctrl with
//     T G Y H N B Page Up Page Down);
//   - the equalizer windows' band level slides (A Z S X D C, K , L . ; /);
//   - the turntable's keyboard release (W and O let go);
//   - Home (windows to their default places) and End (full screen), which
//     the main mixer does, and Ctrl+Shift+F5 (write the user guide, UserGuide.h).
// A null slide means the window has no such control (yet): the key does
// nothing. User-interface thread only.
#pragma once

#include "app/KeyMaps.h"

class CNiSlide;
class CRynDeck;
class CRynEqualizer;
class CRynHeadphonesMixer;
class CRynMainMixer;

// The headphones slide a Phones* target moves (null for other targets).
CNiSlide* PhonesSlide(CRynHeadphonesMixer* phones, HeldTarget target, int deck);

// Band `band` (0 … 11) of a deck's equalizer; null outside that range.
CNiSlide* EqualizerBandSlide(CRynEqualizer* equalizer, int band);

// W or O let go: the deck's turntable takes its current position again, as a
// left-button release on the platter without Shift would.
void TurntableKeyRelease(CRynDeck* deck);

// The window commands of Home, End and Ctrl+Shift+F5. False: not done (no
// main mixer; the guide was cancelled or failed).
bool ResetWindowPositions(CRynMainMixer* mixer);
bool ShowFullScreen(CRynMainMixer* mixer);
bool WriteUserGuide();
