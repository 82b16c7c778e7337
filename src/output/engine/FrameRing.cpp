#include "output/engine/FrameRing.h"

#include <algorithm>
#include <cstring>

FrameRing::FrameRing(std::size_t capacityFrames)
    : capacity_(std::max<std::size_t>(1, capacityFrames)), samples_(2 * capacity_) {}

std::size_t FrameRing::Push(const std::int16_t* in, std::size_t frames) noexcept {
    const std::uint64_t head = head_.load(std::memory_order_relaxed);
    const std::uint64_t tail = tail_.load(std::memory_order_acquire);
    const std::size_t room = capacity_ - static_cast<std::size_t>(head - tail);
    const std::size_t n = std::min(frames, room);
    if (n < frames)
        lost_.fetch_add(frames - n, std::memory_order_relaxed);
    if (n == 0)
        return 0;
    const std::size_t at = static_cast<std::size_t>(head % capacity_);
    const std::size_t first = std::min(n, capacity_ - at);
    std::memcpy(&samples_[2 * at], in, first * 2 * sizeof(std::int16_t));
    if (n > first)
        std::memcpy(&samples_[0], in + 2 * first, (n - first) * 2 * sizeof(std::int16_t));
    head_.store(head + n, std::memory_order_release);
    return n;
}

std::size_t FrameRing::Pop(std::int16_t* out, std::size_t maxFrames) noexcept {
    const std::uint64_t tail = tail_.load(std::memory_order_relaxed);
    const std::uint64_t head = head_.load(std::memory_order_acquire);
    const std::size_t n = std::min(maxFrames, static_cast<std::size_t>(head - tail));
    if (n == 0)
        return 0;
    const std::size_t at = static_cast<std::size_t>(tail % capacity_);
    const std::size_t first = std::min(n, capacity_ - at);
    std::memcpy(out, &samples_[2 * at], first * 2 * sizeof(std::int16_t));
    if (n > first)
        std::memcpy(out + 2 * first, &samples_[0], (n - first) * 2 * sizeof(std::int16_t));
    tail_.store(tail + n, std::memory_order_release);
    return n;
}

std::size_t FrameRing::Waiting() const {
    const std::uint64_t tail = tail_.load(std::memory_order_acquire);
    const std::uint64_t head = head_.load(std::memory_order_acquire);
    return static_cast<std::size_t>(head - tail);
}
