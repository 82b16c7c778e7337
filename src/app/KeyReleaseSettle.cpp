#include "app/KeyReleaseSettle.h"

KeyReleaseSettle::KeyReleaseSettle(QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    timer_.setInterval(kSettleMs);
    connect(&timer_, &QTimer::timeout, this, &KeyReleaseSettle::Flush);
}

void KeyReleaseSettle::Release(int key, unsigned long long timestamp,
                               std::function<void()> deliver) {
    const auto it = waiting_.find(key);
    if (it != waiting_.end()) {
        // A second release of the same key: the first is real.
        auto first = std::move(it->second.deliver);
        waiting_.erase(it);
        first();
    }
    if (timestamp == 0) {
        deliver();
        return;
    }
    waiting_[key] = Waiting{timestamp, std::move(deliver)};
    timer_.start();
}

bool KeyReleaseSettle::Press(int key, unsigned long long timestamp) {
    const auto it = waiting_.find(key);
    if (it == waiting_.end())
        return false;
    if (timestamp != 0 && it->second.timestamp == timestamp) {
        waiting_.erase(it);
        return true;
    }
    // A new press after a real release: the release goes first.
    auto deliver = std::move(it->second.deliver);
    waiting_.erase(it);
    deliver();
    return false;
}

void KeyReleaseSettle::Flush() {
    timer_.stop();
    auto waiting = std::move(waiting_);
    waiting_.clear();
    for (auto& [key, w] : waiting)
        w.deliver();
}
