// Keeps the headphones copy of each deck in step with the main device. The
// main mixer's mix step hands in the main forward play cursor M of the deck;
// the headphones forward cursor H is read, and
//   drift = M − H the short way round the ring (HeadphonesDrift.h);
//   |drift| ≤ 10000 bytes: nothing more;
//   otherwise the headphones forward cursor is moved to M, and from the
//   second correction on its frequency is trimmed by the drift gathered
//   since the previous correction per second, in frames:
//     f += trunc((drift − drift left after the previous correction) / (4 · dt)).
// After a snap the drift left is what the cursors read right after the move
// (0 when the device takes the position exactly), so a device running 0.2 %
// fast is trimmed to the main device's pace at its second correction, and a
// tempo change that resets the frequency is trimmed again the same way.
//
// User-interface thread only (inside the mix step).
#pragma once

#include <array>

#include "core/PcmFormat.h"

class CRynAudioOutput;

class HeadphonesSync {
  public:
    struct Step {
        int drift = 0;              // bytes, M − H the short way round
        bool repositioned = false;  // the headphones cursor was moved to M
        int frequencyChange = 0;    // Hz added to the headphones forward buffer
    };

    // One step for `deck`: main forward play cursor `mainCursor` (bytes) at
    // `nowSeconds`. Without a headphones device H reads 0 and nothing is moved.
    Step SyncToMain(CRynAudioOutput& phones, int deck, int mainCursor, double nowSeconds);

    // New deck buffers start over: no correction made yet.
    void Reset(int deck);

    int Drift(int deck) const { return state_[Clamp(deck)].drift; }
    int Corrections(int deck) const { return state_[Clamp(deck)].corrections; }

  private:
    struct DeckState {
        int drift = 0;
        int corrections = 0;
        double lastTime = 0.0;
        int driftAfterLast = 0;
    };
    static int Clamp(int deck) { return deck == 1 ? 1 : 0; }
    std::array<DeckState, kDeckCount> state_{};
};
