// The mix cycle on real output devices: for each forward notification of a
// deck, the main mixer's step reads the main device's cursors, tells the
// deck, and keeps the deck's rings filled to its write-ahead target, one
// block a notification and two when it has fallen behind. Every block goes
// to the main output and to the headphones output, forward and
// frame-reversed.
//
// The decks are reached through their MixerDeck contract; either output may
// be missing or have no device (its operations then do nothing). All calls
// come on the user-interface thread.
#pragma once

#include <array>
#include <functional>

#include "core/EngineState.h"
#include "output/engine/MixStepSink.h"

class CRynAudioOutput;
class MixerDeck;

class MixCycle : public MixStepSink {
  public:
    void BindOutputs(CRynAudioOutput* main, CRynAudioOutput* headphones);
    void BindDeck(int deck, MixerDeck* mixerDeck);
    MixerDeck* Deck(int deck) const { return decks_[deck]; }
    CRynAudioOutput* Main() const { return main_; }
    CRynAudioOutput* Headphones() const { return headphones_; }

    // The headphones output aligns its copy of the deck with the main play
    // cursor (bytes) at each step: (deck, cursor, now in seconds, the deck's
    // nominal rate). Not set: nothing is aligned.
    std::function<void(int, int, double, double)> syncHeadphones;
    // The clock of the alignment, seconds; unset: the monotonic clock (tests
    // hand in the simulated time of their devices).
    std::function<double()> clock;

    // A headphones device was just opened: each deck with buffers on the main
    // device gets them on the headphones too, written from the main write
    // cursor on, playing from the main play cursor at the main frequency.
    void AttachHeadphones();

    void MixStep(int deck, bool catchUp) override;
    void ReverseStep(int deck) override;
    void WriteDeckBlock(int deck) override;
    void PlayForward(int deck, bool play) override;
    void PlayReverse(int deck, bool play) override;
    void CreateScratch(int deck, int rate, int bytes) override;
    void PlayScratch(int deck, int offsetBytes) override;
    void EndScratch(int deck) override;
    int ScratchCursor(int deck) const override;
    void SwitchDirection(int deck, bool toForward) override;
    void SetReversePosition(int deck, int block) override;
    void SetReverseFrequency(int deck, int hz) override;
    void CreateDeckBuffers(int deck, int rate) override;
    void SetForwardFrequency(int deck, int hz) override;
    void SetForwardPosition(int deck, int block) override;

    // Blocks written to the devices, per deck (tests and diagnostics).
    long BlocksWritten(int deck) const { return written_[deck]; }

  private:
    template <typename F>
    void OnBoth(F&& f);
    // When the deck's direction has turned since its last write, both write
    // cursors move over the stretch the rings hold, so writing goes on at
    // its other end.
    void FollowDirection(int deck);

    CRynAudioOutput* main_ = nullptr;
    CRynAudioOutput* headphones_ = nullptr;
    std::array<MixerDeck*, kDeckCount> decks_{};
    std::array<long, kDeckCount> written_{};
    std::array<bool, kDeckCount> writingReverse_{};
    PcmBlock block_{};
};
