#include "output/engine/NotifyThreads.h"

#include <string>

SyncEvent& NotifyEvent(DeckSharedState& d, NotifyKind kind) {
    switch (kind) {
        case NotifyKind::Forward:
            return d.forwardNotifyEvent;
        case NotifyKind::Reverse:
            return d.reverseNotifyEvent;
        case NotifyKind::Scratch:
            break;
    }
    return d.scratchNotifyEvent;
}

std::atomic<std::int32_t>& NotifyStopFlag(DeckSharedState& d, NotifyKind kind) {
    switch (kind) {
        case NotifyKind::Forward:
            return d.forwardThreadStop;
        case NotifyKind::Reverse:
            return d.reverseThreadStop;
        case NotifyKind::Scratch:
            break;
    }
    return d.scratchThreadStop;
}

Uwm NotifyMessage(NotifyKind kind) {
    switch (kind) {
        case NotifyKind::Forward:
            return UWM_FORWARD_NOTIFY;
        case NotifyKind::Reverse:
            return UWM_REVERSE_NOTIFY;
        case NotifyKind::Scratch:
            break;
    }
    return UWM_SCRATCH_DONE;
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
    static const char* const kNames[] = {"forward", "reverse", "scratch"};
    const std::string name =
        std::string(kNames[static_cast<int>(kind)]) + "-" + static_cast<char>('A' + deck);
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
