#include "core/ServiceThreads.h"

#include <chrono>
#include <thread>

namespace {
bool OverloadMayBeSet(const SharedEngineState& e) {
    return e.AnyDeckPlaying() && e.appInitialised.load() != 0 && e.overload.load() == 0;
}
}  // namespace

void TickOnce(SharedEngineState& e) {
    // Counted before the post so the mixer's answer can never run ahead of the
    // count; taken back when the post fails.
    e.pendingTicks.fetch_add(1);
    if (!PostAppMessage(e.mainMixerWindow, UWM_TICK)) {
        e.pendingTicks.fetch_sub(1);
        if (OverloadMayBeSet(e))
            e.overload.store(1);
    }
    if (e.pendingTicks.load() < 2) {
        if (e.overload.load() != 0)
            e.overload.store(0);
    } else if (OverloadMayBeSet(e)) {
        e.overload.store(1);
    }
}

void RunTickThread(SharedEngineState& e, const std::atomic<bool>& cancelled) {
    for (;;) {
        e.tickWakeEvent.Wait(kTickPeriodMs);
        if (e.tickThreadRun.load() == 0 || cancelled.load())
            return;
        TickOnce(e);
    }
}

void RunGraphsThread(SharedEngineState& e, const std::atomic<bool>& cancelled) {
    for (;;) {
        e.updateGraphsAndMetersEvent.Wait(kGraphsTimeoutMs);
        if (e.graphsThreadRun.load() == 0 || cancelled.load())
            return;
        SendAppMessage(e.mainMixerWindow, UWM_GRAPHS_UPDATE);
    }
}

void RunDeckInfoThread(SharedEngineState& e, int deck, const std::atomic<bool>& cancelled) {
    DeckSharedState& d = e.decks[deck];
    for (;;) {
        d.deckInfoEvent->Wait(kDeckInfoTimeoutMs);
        if (d.deckInfoThreadRun.load() == 0 || cancelled.load())
            return;
        SendAppMessage(e.mainMixerWindow, UWM_DECK_INFO_UPDATE, static_cast<WParam>(deck), 0);
    }
}
