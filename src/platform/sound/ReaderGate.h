// Safe reclaim of objects shared with the audio thread, without locks.
//
// A reader (the mix, the notification service) brackets each pass over the
// shared tables with Enter() and Leave(); the counter is odd while inside.
// A writer that has unpublished an object takes Snapshot() afterwards: the
// object may be freed once Passed(snapshot) is true, because every pass that
// could still hold the old pointer has then ended (all operations are
// sequentially consistent, so a pass that starts after the snapshot sees the
// object unpublished).
#pragma once

#include <atomic>
#include <cstdint>

namespace sound {

class ReaderGate {
  public:
    void Enter() { epoch_.fetch_add(1); }
    void Leave() { epoch_.fetch_add(1); }
    std::uint64_t Snapshot() const { return epoch_.load(); }
    bool Passed(std::uint64_t snapshot) const {
        return (snapshot & 1u) == 0 || epoch_.load() != snapshot;
    }

  private:
    std::atomic<std::uint64_t> epoch_{0};
};

}  // namespace sound
