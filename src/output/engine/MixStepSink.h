// The block work the main mixer hands on at each step of the mix cycle: the
// deck's next block to both output devices, and the transport of the deck
// buffers. The main mixer's own MixCycle does it on the real devices (an
// output it lacks is skipped); shell tests put a counting sink in its place.
// All calls come on the user-interface thread.
#pragma once

class MixStepSink {
  public:
    virtual ~MixStepSink() = default;

    // One block of deck `deck` (0 = A, 1 = B): FillBlock from the deck, then
    // the block to the forward buffers and its frame-reversed copy to the
    // reverse buffers of both devices.
    virtual void WriteDeckBlock(int deck) = 0;

    // The whole mix step on a forward notification of deck `deck`; the
    // catch-up switch limits it to one block. By default: one block.
    virtual void MixStep(int deck, bool /*catchUp*/) { WriteDeckBlock(deck); }

    // The deck's first blocks after a first fill (UWM_PRIME_DECK): its
    // output stopped, then `blocks` blocks written.
    virtual void Prime(int deck, int blocks) {
        PlayForward(deck, false);
        for (int i = 0; i < blocks; ++i)
            WriteDeckBlock(deck);
    }

    // The reverse step on UWM_REVERSE_NOTIFY.
    virtual void ReverseStep(int /*deck*/) {}

    // Forward and reverse buffers of the deck start (true) or stop (false) on
    // both devices.
    virtual void PlayForward(int /*deck*/, bool /*play*/) {}
    virtual void PlayReverse(int /*deck*/, bool /*play*/) {}

    // Scratch buffer of `bytes` bytes created on both devices at `rate` Hz;
    // played looping from `offsetBytes` of the forward ring; ended again.
    virtual void CreateScratch(int /*deck*/, int /*rate*/, int /*bytes*/) {}
    virtual void PlayScratch(int /*deck*/, int /*offsetBytes*/) {}
    virtual void EndScratch(int /*deck*/) {}
    // The scratch buffer's play cursor on the main device, bytes (-1: none).
    virtual int ScratchCursor(int /*deck*/) const { return -1; }

    // SwitchDirection on both devices (true: to forwards); the reverse
    // ring's play position in blocks and its playback frequency.
    virtual void SwitchDirection(int /*deck*/, bool /*toForward*/) {}
    virtual void SetReversePosition(int /*deck*/, int /*block*/) {}
    virtual void SetReverseFrequency(int /*deck*/, int /*hz*/) {}

    // New deck buffers at `rate` (UWM_CREATE_DECK_BUFFERS); tempo as the
    // buffers' playback frequency; the forward play position in blocks.
    virtual void CreateDeckBuffers(int /*deck*/, int /*rate*/) {}
    virtual void SetForwardFrequency(int /*deck*/, int /*hz*/) {}
    virtual void SetForwardPosition(int /*deck*/, int /*block*/) {}
};
