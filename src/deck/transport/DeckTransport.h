// The engine side of one deck: what the main mixer's mix cycle asks of it
// and tells it (the MixerDeck contract), over the deck's disc buffer. It
// keeps the count of elapsed time from the cursors the cycle reports, the
// countdown of blocks until the end of a track is heard, the reverse flag
// and whether the deck's output has been primed.
//
// The deck window owns one transport: it tells the transport what the user
// did (start and stop reading, reverse, a new position) and draws what the
// transport reports. The transport reports two events back through the
// handlers the window installs: a block heard that was never delivered (the
// deck stops as at the end of its track) and the end of a track heard.
//
// Everything runs on the user-interface thread, as the mix cycle does; the
// disc buffer's readers are its own threads.
#pragma once

#include <functional>
#include <memory>

#include "core/PcmFormat.h"
#include "deck/transport/MixerDeck.h"

class CRynDiscBuffer;
class DeckInfoStats;
class TurntableController;

class DeckTransport : public MixerDeck {
  public:
    // Deck 0 (A) or 1 (B); `stats` are the deck's buffer statistics (its
    // information window's), which outlive the transport.
    DeckTransport(int deck, DeckInfoStats& stats);
    // Every reader is stopped and joined.
    ~DeckTransport() override;
    DeckTransport(const DeckTransport&) = delete;
    DeckTransport& operator=(const DeckTransport&) = delete;

    CRynDiscBuffer& Disc() { return *disc_; }
    const CRynDiscBuffer& Disc() const { return *disc_; }

    // --- Wiring, before the readers run.
    // The source's stream rate in Hz (44100 for a CD): elapsed time is counted
    // at it, and the first fill hands it to the host.
    void SetStreamRate(std::function<int()> rate);
    // (tempo + 4 × spindle) × 441 + 44100 Hz, from the deck's tempo.
    void SetNominalRate(std::function<double()> rate) { nominalRate_ = std::move(rate); }
    // A block now heard was never delivered.
    void SetUnderrunHandler(std::function<void()> handler) { onUnderrun_ = std::move(handler); }
    // The countdown after an end of track has run out: its end is heard.
    void SetEndHeardHandler(std::function<void()> handler) { onEndHeard_ = std::move(handler); }

    // --- The readers.
    // The turntable turns: the elapsed count starts afresh and the forward
    // reader starts.
    void StartReading();
    // The turntable stops: FillBlock answers 2 and the forward reader ends.
    void StopReading();
    // StopReading, and the backward reader is stopped and joined too.
    void StopAllReaders();

    // The deck's turntable: its writing flag is IsTurning, its hold flag
    // HoldsLoop; it follows the cursors. Not owned; null: always writing.
    void SetTurntable(TurntableController* turntable) { turntable_ = turntable; }

    // --- Reverse. On: the forward reader stops, the source goes back to just
    // before the earliest block in the output rings and the backward reader
    // feeds the disc buffer's backward ring from there, so reverse play goes
    // on through the track to its start. Off: the backward reader is stopped
    // and joined, the source goes to just after the newest block in the rings
    // and, while the turntable turns, the forward reader resumes from there
    // without rebuilding the output.
    void SetReverse(bool on);
    // Where forward play resumes after reverse play: blocks into the forward
    // output ring, from the reverse play slot.
    int ForwardResumeBlocks() const;

    // --- Elapsed time in the track, seconds.
    double ElapsedSeconds() const { return elapsedSeconds_; }
    void SetElapsedSeconds(double seconds) { elapsedSeconds_ = seconds; }
    // The next forward cursor note starts the count afresh (the output was
    // rebuilt or moved).
    void RestartElapsedCount() { lastPlayCursor_ = -1; }
    // While playing forwards: what has been heard of a track of `trackSeconds`
    // whose source has read `sourceSeconds` (all of it once its end is
    // pending), less what is still buffered; the elapsed count follows it
    // when it is more than 4 s away. Returns the elapsed seconds.
    double FollowForwardPlay(double sourceSeconds, double trackSeconds);

    // --- End of track: the source has delivered its last block.
    // Starts the countdown over the blocks still to be heard (written ahead
    // and waiting in the disc buffer); false when one is already running.
    bool BeginEndOfTrack();
    void CancelEndOfTrack() { endOfTrackPending_ = false; }
    bool EndOfTrackPending() const { return endOfTrackPending_; }
    int BlocksUntilTrackEnd() const { return blocksUntilTrackEnd_; }

    // The host has primed the deck's output after the first fill of the
    // reader's present run (cleared when the reader starts).
    bool Primed() const { return primed_; }

    // --- MixerDeck
    int FillBlock(int writeBlockIndex, std::uint8_t* dest) override;
    int BlocksAhead() const override;
    void NoteForwardCursors(int playCursor, int writeCursor) override;
    void NoteCursors(int reversePlayCursor, int reverseWriteCursor) override;
    bool IsReverse() const override { return reverse_; }
    bool IsTurning() const override;
    void BlockFallsDue() override;
    void OnPrimed() override { primed_ = true; }
    double NominalRate() const override;
    bool HoldsLoop() const override;
    double TurntablePosition() const override;
    void OnRingsCreated() override { history_ = 0; }
    int RingHistoryBlocks() const override { return history_; }
    // Reverse play: blocks the backward ring could not deliver when asked.
    int ReverseUnderruns() const { return reverseUnderruns_; }

  private:
    int Rate() const;

    DeckInfoStats& stats_;
    std::unique_ptr<CRynDiscBuffer> disc_;
    std::function<int()> streamRate_;
    std::function<double()> nominalRate_;
    std::function<void()> onUnderrun_;
    std::function<void()> onEndHeard_;

    bool reverse_ = false;
    double elapsedSeconds_ = 0;
    int lastPlayCursor_ = -1;  // bytes, for the elapsed count; -1: count afresh
    bool endOfTrackPending_ = false;
    int blocksUntilTrackEnd_ = 0;
    bool primed_ = false;
    TurntableController* turntable_ = nullptr;
    int history_ = 0;                 // blocks of the stretch in the rings, 0 … 120
    std::int64_t earliestFrame_ = 0;  // reverse: source frame of the earliest block delivered
    int reverseUnderruns_ = 0;
};
