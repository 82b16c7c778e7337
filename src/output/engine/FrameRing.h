// A lock-free ring of 16-bit stereo frames between exactly one producer (the
// audio thread) and one consumer (a writer thread).
//
// The memory is taken once, in the constructor; Push and Pop neither lock,
// allocate nor call the system. Push stores what fits and counts the rest as
// lost, so a consumer that falls behind loses frames visibly, never
// silently, and the producer never waits. Frames come out in the order they
// went in; a lost span leaves a gap, it is not replayed.
//
// Indices are frame counts since creation (64-bit, never wrapping in
// practice); the slot of frame n is n mod capacity.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

class FrameRing {
  public:
    // `capacityFrames` > 0 frames of two 16-bit samples.
    explicit FrameRing(std::size_t capacityFrames);
    FrameRing(const FrameRing&) = delete;
    FrameRing& operator=(const FrameRing&) = delete;

    // Producer: copies as many of the `frames` frames at `in` as there is
    // room for and counts the others lost. Returns the frames stored.
    std::size_t Push(const std::int16_t* in, std::size_t frames) noexcept;
    // Consumer: moves up to `maxFrames` frames to `out`. Returns the frames
    // taken.
    std::size_t Pop(std::int16_t* out, std::size_t maxFrames) noexcept;

    std::size_t Capacity() const { return capacity_; }
    // Frames waiting for the consumer (either side may ask).
    std::size_t Waiting() const;
    // Frames stored and frames lost by Push since creation.
    std::uint64_t StoredFrames() const { return head_.load(std::memory_order_acquire); }
    std::uint64_t LostFrames() const { return lost_.load(std::memory_order_relaxed); }

  private:
    const std::size_t capacity_;
    std::vector<std::int16_t> samples_;               // 2 * capacity_
    alignas(64) std::atomic<std::uint64_t> head_{0};  // next frame the producer writes
    alignas(64) std::atomic<std::uint64_t> tail_{0};  // next frame the consumer reads
    alignas(64) std::atomic<std::uint64_t> lost_{0};
};
