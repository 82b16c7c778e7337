// The bodies of the engine's service threads. Each only waits, reads flags and
// sends or posts application messages; the work runs in the receiving
// window's handler on the user-interface thread.
//
// | thread        | waits on                         | time-out | ends when                  |
// | tick          | tickWakeEvent                    | 500 ms   | tickThreadRun is 0         |
// | graphs        | "Update Graphs And Meters Event" | 1000 ms  | graphsThreadRun is 0       |
// | deck info     | the deck's deckInfoEvent         | 1000 ms  | the deck's deckInfoThreadRun is 0
// |
//
// Every body also ends when its WorkerThread is cancelled. The starter sets
// the run flag before the thread starts, so a stop that follows the start at
// once can never be lost.
#pragma once

#include <atomic>

#include "core/EngineState.h"

constexpr int kTickPeriodMs = 500;
constexpr int kGraphsTimeoutMs = 1000;
constexpr int kDeckInfoTimeoutMs = 1000;

// One tick: posts UWM_TICK to the main mixer and runs the overload check.
// pendingTicks counts ticks posted and not yet answered by the mixer's
// overload lamp; two or more while a deck plays (after start-up) set
// `overload`, fewer than two clear it. A failed post while a deck plays also
// marks overload.
void TickOnce(SharedEngineState& engine);

void RunTickThread(SharedEngineState& engine, const std::atomic<bool>& cancelled);

// Turns every setting of "Update Graphs And Meters Event", and at least one a
// second, into one synchronous UWM_GRAPHS_UPDATE to the main mixer.
void RunGraphsThread(SharedEngineState& engine, const std::atomic<bool>& cancelled);

// Sends UWM_DECK_INFO_UPDATE (deck) to the main mixer whenever the deck's
// information event is set, and at least once a second.
void RunDeckInfoThread(SharedEngineState& engine, int deck, const std::atomic<bool>& cancelled);
