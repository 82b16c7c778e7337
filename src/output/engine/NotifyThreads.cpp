#include "output/engine/NotifyThreads.h"

#include <string>

namespace {

// What ties one kind of thread to its deck, in the order of NotifyKind.
struct NotifyWiring {
    SyncEvent DeckSharedState::*event;
    std::atomic<std::int32_t> DeckSharedState::*stop;
    Uwm message;
    const char* name;  // of the thread, before the deck letter
};

constexpr NotifyWiring kWiring[] = {
    {&DeckSharedState::forwardNotifyEvent, &DeckSharedState::forwardThreadStop, UWM_FORWARD_NOTIFY,
     "forward"},
    {&DeckSharedState::reverseNotifyEvent, &DeckSharedState::reverseThreadStop, UWM_REVERSE_NOTIFY,
     "reverse"},
    {&DeckSharedState::scratchNotifyEvent, &DeckSharedState::scratchThreadStop, UWM_SCRATCH_DONE,
     "scratch"},
};

const NotifyWiring& Wiring(NotifyKind kind) {
    return kWiring[static_cast<int>(kind)];
}

}  // namespace

SyncEvent& NotifyEvent(DeckSharedState& d, NotifyKind kind) {
    return d.*Wiring(kind).event;
}

std::atomic<std::int32_t>& NotifyStopFlag(DeckSharedState& d, NotifyKind kind) {
    return d.*Wiring(kind).stop;
}

Uwm NotifyMessage(NotifyKind kind) {
    return Wiring(kind).message;
}

void RunNotifyThread(SharedEngineState& engine, NotifyKind kind, int deck, WindowHandle target,
                     const std::atomic<bool>& cancelled) {
    DeckSharedState& d = engine.decks[deck];
    SyncEvent& event = NotifyEvent(d, kind);
    std::atomic<std::int32_t>& stop = NotifyStopFlag(d, kind);
    const bool needsPlaying = kind != NotifyKind::Reverse;
    for (;;) {
        event.Wait();
        // The stop flag is looked at before the playing test: a deck stopped
        // while its thread waits has isPlaying cleared too, and the thread
        // must still end.
        if (stop.load() != 0 || cancelled.load())
            return;
        if (needsPlaying && d.isPlaying.load() == 0)
            continue;
        SendAppMessage(target, NotifyMessage(kind), static_cast<WParam>(deck), 0);
        if (stop.load() != 0 || cancelled.load())
            return;
    }
}

NotifyThreads::~NotifyThreads() {
    JoinAll();
}

void NotifyThreads::Finish(NotifyKind kind, int deck) {
    auto& slot = current_[static_cast<int>(kind)][deck];
    if (!slot)
        return;
    if (!slot->Finished() && NotifyStopFlag(engine_.decks[deck], kind).load() == 0) {
        slot->Cancel();
    }
    SyncEvent& event = NotifyEvent(engine_.decks[deck], kind);
    slot->Join([&event] { event.Set(); });
    slot.reset();
}

void NotifyThreads::Start(NotifyKind kind, int deck, WindowHandle target) {
    if (deck < 0 || deck >= kDeckCount)
        return;
    auto& slot = current_[static_cast<int>(kind)][deck];
    if (slot) {
        const bool wasRunning = !slot->Finished();
        Finish(kind, deck);
        // The wake-ups that ended the predecessor are not block boundaries.
        if (wasRunning)
            NotifyEvent(engine_.decks[deck], kind).Reset();
    }
    NotifyStopFlag(engine_.decks[deck], kind).store(0);
    slot = std::make_unique<WorkerThread>();
    const std::string name = std::string(Wiring(kind).name) + "-" + static_cast<char>('A' + deck);
    SharedEngineState& engine = engine_;
    slot->Start(name, ThreadPriority::TimeCritical,
                [&engine, kind, deck, target](const std::atomic<bool>& cancelled) {
                    RunNotifyThread(engine, kind, deck, target, cancelled);
                });
}

void NotifyThreads::Stop(NotifyKind kind, int deck) {
    if (deck < 0 || deck >= kDeckCount)
        return;
    DeckSharedState& d = engine_.decks[deck];
    NotifyStopFlag(d, kind).store(1);
    NotifyEvent(d, kind).Set();
}

bool NotifyThreads::Running(NotifyKind kind, int deck) const {
    const auto& slot = current_[static_cast<int>(kind)][deck];
    return slot && !slot->Finished();
}

void NotifyThreads::JoinAll() {
    for (int k = 0; k < 3; ++k) {
        for (int d = 0; d < kDeckCount; ++d)
            Finish(static_cast<NotifyKind>(k), d);
    }
}
