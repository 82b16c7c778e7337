#include "core/SyncEvent.h"

#include <chrono>

#include "core/ThreadRole.h"

SyncEvent::SyncEvent(Kind kind, bool initiallySet, std::string name)
    : kind_(kind), name_(std::move(name)), set_(initiallySet) {}

void SyncEvent::Set() {
    AssertNotAudioThread("SyncEvent::Set");
    {
        std::lock_guard lock(mutex_);
        set_ = true;
    }
    if (kind_ == Kind::AutoReset) {
        cv_.notify_one();
    } else {
        cv_.notify_all();
    }
}

void SyncEvent::Reset() {
    AssertNotAudioThread("SyncEvent::Reset");
    std::lock_guard lock(mutex_);
    set_ = false;
}

bool SyncEvent::Wait(int timeoutMs) {
    AssertNotAudioThread("SyncEvent::Wait");
    std::unique_lock lock(mutex_);
    if (timeoutMs < 0) {
        cv_.wait(lock, [this] { return set_; });
    } else if (!cv_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [this] { return set_; })) {
        return false;
    }
    if (kind_ == Kind::AutoReset)
        set_ = false;
    return true;
}

bool SyncEvent::IsSet() const {
    AssertNotAudioThread("SyncEvent::IsSet");
    std::lock_guard lock(mutex_);
    return set_;
}
