// The per-deck notification threads: forward, reverse and scratch. Each waits
// (without time-out) on its deck's notify event, which the sound device sets
// when its play cursor passes a block boundary, and sends the main mixer the
// matching message synchronously, so one mix step runs per boundary:
//
//   forward: UWM_FORWARD_NOTIFY, only while the deck's isPlaying is set
//   reverse: UWM_REVERSE_NOTIFY, always
//   scratch: UWM_SCRATCH_DONE,   only while the deck's isPlaying is set
//
// A thread ends when its stop flag (forwardThreadStop ...) is set and its event
// is set; a stopped thread never sends again. The main mixer owns one
// NotifyThreads and starts and stops the threads from its message handlers
// (user-interface thread only).
#pragma once

#include <array>
#include <atomic>
#include <memory>

#include "core/EngineState.h"
#include "core/WorkerThread.h"

enum class NotifyKind { Forward = 0, Reverse = 1, Scratch = 2 };

// The deck's event, stop flag and message for one kind of notification thread.
SyncEvent& NotifyEvent(DeckSharedState& deck, NotifyKind kind);
std::atomic<std::int32_t>& NotifyStopFlag(DeckSharedState& deck, NotifyKind kind);
Uwm NotifyMessage(NotifyKind kind);

// The body of one notification thread (exposed for tests).
void RunNotifyThread(SharedEngineState& engine, NotifyKind kind, int deck, WindowHandle target,
                     const std::atomic<bool>& cancelled);

class NotifyThreads {
  public:
    explicit NotifyThreads(SharedEngineState& engine) : engine_(engine) {}
    ~NotifyThreads();

    // Clears the stop flag and starts the thread sending to `target`. A thread
    // of the same kind and deck still running is cancelled and joined first
    // (its event set, this thread's messages pumped meanwhile) and the event
    // cleared of those wake-ups, so two threads never share one event.
    void Start(NotifyKind kind, int deck, WindowHandle target);

    // Sets the stop flag, then the event, so a waiting thread wakes and ends.
    void Stop(NotifyKind kind, int deck);

    // True while a started thread of this kind and deck has not ended.
    bool Running(NotifyKind kind, int deck) const;

    // Waits for every thread to end, setting its event again and pumping the
    // user-interface thread's messages meanwhile. Threads not stopped are
    // cancelled here.
    void JoinAll();

  private:
    SharedEngineState& engine_;
    std::array<std::array<std::unique_ptr<WorkerThread>, kDeckCount>, 3> current_{};

    void Finish(NotifyKind kind, int deck);
};
