// A deck's disc buffer: the forward reader thread that keeps the 170-block
// forward ring filled from the deck's source, the backward reader with its
// 50-block ring, FillBlock (the mix step's one block per call), the cursor
// checks that drive the deck's three LEDs and the reader's priority, and the
// 300 ms reader watchdog.
//
// Everything here except the reader threads runs on the deck window's
// thread. The readers are worker threads named "deck A forward" and
// "deck A backward" (B for deck B). Readers and consumer share only the rings and fill flags of the
// deck's DeckSharedState: a slot belongs to the reader while its flag is 0
// and to the consumer while it is 1; the reader writes the flag last, the
// consumer clears it first after copying. Readers reach the deck window only
// by messages (per-block messages sent, the first-fill notice posted).
#pragma once

#include <QTimer>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "core/AppMessages.h"
#include "core/EngineState.h"
#include "core/WorkerThread.h"
#include "deck/disc/DeckInfoStats.h"

class DeckBlockRoutine;
class DeckBlockSource;

// Reader thread priorities, low to high.
enum class ReaderPriority { BelowNormal, AboveNormal, TimeCritical };

class CRynDiscBuffer {
  public:
    static constexpr int kOutputSlots = kOutputRingBlocks;  // delivery markers
    static constexpr int kWatchdogMs = 300;                 // timer 6
    static constexpr int kSuspendMs = 200;                  // timer 16
    static constexpr int kWakeEvery = 10;                   // consumed blocks per reader wake

    // FillBlock answers.
    static constexpr int kDelivered = 0;
    static constexpr int kNoBlock = 1;
    static constexpr int kNotRunning = 2;

    struct Leds {
        bool freshDataLow = false;
        bool discBufferLow = false;  // lit while the reader is time-critical
        bool discBufferVeryLow =
            false;                   // the low LED shows red (200,20,20), else yellow (200,200,20)
        bool discReadError = false;  // reader suspended, or an underrun was heard
    };

    CRynDiscBuffer(int deck, DeckInfoStats& stats);
    ~CRynDiscBuffer();
    CRynDiscBuffer(const CRynDiscBuffer&) = delete;
    CRynDiscBuffer& operator=(const CRynDiscBuffer&) = delete;

    // Wiring, set by the deck before the reader runs.
    void SetSource(DeckBlockSource* source) { source_ = source; }
    DeckBlockSource* Source() const { return source_; }
    void SetBlockRoutine(DeckBlockRoutine* routine) { routine_ = routine; }
    // The stream rate handed to the host with the first fill (44100 for a CD).
    void SetStreamRate(std::function<int()> rate) { streamRate_ = std::move(rate); }
    // Called when the reader starts (true) or stops (false): the deck's
    // 50 ms turntable timer follows the reader.
    void SetReaderTimerHook(std::function<void(bool)> hook) { readerTimerHook_ = std::move(hook); }
    // Called whenever an LED changes.
    void SetLedsChanged(std::function<void()> hook) { ledsChanged_ = std::move(hook); }
    // The deck information window's backward-reading switch.
    void SetBackwardReadingOn(bool on) { backwardReadingOn_ = on; }

    // The mix step's block: 0 delivered, 1 none ready, 2 not rotating.
    int FillBlock(int outputSlot, std::uint8_t* dest);
    int BlocksAhead() const { return stats_.BlocksAhead(); }

    // After each forward notification: the device's play and write cursors
    // in bytes. False when the block now heard was never delivered (the
    // deck then stops as at the end of its track).
    bool NoteForwardCursors(int playCursorBytes, int writeCursorBytes, bool dragging = false);
    void NoteCursors(int reversePlayBytes, int reverseWriteBytes);

    void StartForwardReader();
    // As StartForwardReader, for rings that already play (after reverse
    // play): the run announces no first fill, so the output is not rebuilt.
    void ResumeForwardReader();
    // Returns only when the reader has ended, serving the deck window's
    // messages meanwhile (the reader may be blocked sending to it).
    void StopForwardReader();
    // The backward reader waits for its first wake (WakeBackwardReader, or
    // FillBlock finding its ring empty while it runs).
    void StartBackwardReader();
    void WakeBackwardReader();
    void StopBackwardReader();
    // Waits for the backward reader to end (after StopBackwardReader),
    // serving the deck window's messages meanwhile.
    void JoinBackwardReader();

    // The deck window's messages from the readers (first fill, flags, reader
    // ended). True when handled; *result then holds the answer.
    bool HandleMessage(Uwm msg, WParam wParam, LParam lParam, LResult* result);

    // The turntable rotates: FillBlock answers 2 while it does not.
    bool Running() const { return running_; }
    void SetRunning(bool running) { running_ = running; }
    // 0 forwards, 1 reverse.
    void SetReverse(bool reverse) { reverse_ = reverse; }
    bool Reverse() const { return reverse_; }

    void ResetDeliveryMarkers() { markers_.fill(0); }
    int DeliveryMarker(int slot) const { return markers_[slot]; }
    bool ForwardReaderExists() const { return forwardAlive_; }
    bool ReaderSuspended() const { return suspended_; }
    ReaderPriority ForwardReaderPriority() const { return priority_.load(); }
    // The needle was lifted: lowers the reader to below normal, tells the
    // host, and puts out the fresh-data-low and buffer-low LEDs (their flags
    // cleared) until the next needle drop measures again.
    void LowerReaderPriority();
    const Leds& GetLeds() const { return leds_; }
    void SetReadErrorLed(bool on);
    int ConsumedCounter() const { return consumed_; }
    // Filled slots of the forward and backward rings, counted from the flags.
    int ForwardFilledCount() const;
    int BackwardFilledCount() const;
    int ForwardPlayIndex() const { return forwardPlay_; }

    // The watchdog's tick (timer 6) and the end of a suspension (timer 16);
    // public so tests can drive them without waiting.
    void WatchdogTick();
    void ResumeAfterSuspend();

  private:
    void RunForwardReader();
    void ForwardReaderMain();
    void BackwardReaderMain();
    void ParkIfSuspended();
    void RequestPriority(ReaderPriority p);
    void ApplyOwnPriority();
    void NotifyLeds();
    std::string ReaderName(const char* direction) const;

    int deck_;
    DeckSharedState& shared_;
    DeckInfoStats& stats_;
    DeckBlockSource* source_ = nullptr;
    DeckBlockRoutine* routine_ = nullptr;
    std::function<int()> streamRate_;
    std::function<void(bool)> readerTimerHook_;
    std::function<void()> ledsChanged_;

    // Deck-window thread state.
    int forwardPlay_ = 0;   // 0..169
    int backwardPlay_ = 0;  // 0..49
    int consumed_ = 0;      // 0..9
    bool running_ = false;
    bool reverse_ = false;
    bool backwardReadingOn_ = false;
    std::atomic<bool> announceFirstFill_{true};  // set before the reader starts
    std::array<std::int32_t, kOutputSlots> markers_{};
    Leds leds_;

    WorkerThread forwardReader_;
    WorkerThread backwardReader_;
    std::atomic<bool> forwardAlive_{false};  // the handle: cleared by the reader's last message
    std::atomic<ReaderPriority> priority_{ReaderPriority::AboveNormal};
    std::atomic<ReaderPriority> appliedPriority_{ReaderPriority::AboveNormal};

    // Cooperative suspension: the reader parks at its next block boundary.
    std::mutex suspendMutex_;
    std::condition_variable suspendCv_;
    bool suspendRequested_ = false;
    bool suspended_ = false;

    QTimer watchdog_;     // timer 6
    QTimer resumeTimer_;  // timer 16
};
