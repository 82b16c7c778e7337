// A small event: auto-reset (one waiter released per Set, the event clears
// when a wait returns) or manual-reset (stays set until Reset), optionally
// named. Set and Reset may be called from any thread except the audio
// callback; waits block (never from the audio callback).
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>

class SyncEvent {
  public:
    enum class Kind { AutoReset, ManualReset };
    static constexpr int kInfinite = -1;

    explicit SyncEvent(Kind kind = Kind::AutoReset, bool initiallySet = false,
                       std::string name = {});
    SyncEvent(const SyncEvent&) = delete;
    SyncEvent& operator=(const SyncEvent&) = delete;

    void Set();
    void Reset();
    // Waits up to timeoutMs milliseconds (kInfinite: forever). True when the
    // event was set, false on time-out.
    bool Wait(int timeoutMs = kInfinite);
    // Current state without waiting or clearing.
    bool IsSet() const;

    const std::string& Name() const { return name_; }
    Kind GetKind() const { return kind_; }

  private:
    Kind kind_;
    std::string name_;
    mutable std::mutex mutex_;
    std::condition_variable cv_;
    bool set_;
};
