// The buffer statistics a deck keeps for its information window, whether or
// not that window is shown: fill counts of the disc rings, the low and very
// low states that drive the reader priority, and the output positions with
// the blocks written ahead and the fresh-data-low state.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "core/PcmFormat.h"

class DeckInfoStats {
  public:
    static constexpr int kForwardSlots = 170;
    static constexpr int kBackwardSlots = 50;
    static constexpr int kRingBlocks = kOutputRingBlocks;

    // The 170 forward fill flags; index 1..170 of the vector holds them.
    void HandInForwardFlags(const std::array<std::atomic<std::int32_t>, kForwardSlots>& flags);
    void HandInBackwardFlags(const std::array<std::atomic<std::int32_t>, kBackwardSlots>& flags);

    // Output slots 0..119 of the forward ring. Blocks ahead = write - play
    // (+120 when write < play), copied to blocksAheadCopy when given.
    void SetForwardPositions(int playSlot, int writeSlot, int latencyBlocks,
                             std::atomic<std::int32_t>* blocksAheadCopy);
    void SetReversePositions(int playSlot, int writeSlot, int latencyBlocks);
    // While the platter is dragged: the platter angle in blocks (0..120,
    // held there) becomes the forward play slot and 120 - angle the reverse
    // play slot. Write slots, blocks ahead and fresh data low stay as they were.
    void SetPlatterPositions(int angleBlocks);

    int ForwardCount() const { return forwardCount_; }
    int BackwardCount() const { return backwardCount_; }
    bool Low() const { return low_; }          // forward count < 127.5
    bool VeryLow() const { return veryLow_; }  // forward count < 85
    bool BackwardLow() const { return backwardLow_; }
    int BlocksAhead() const { return blocksAhead_; }
    bool FreshDataLow() const { return freshDataLow_; }
    int ForwardPlaySlot() const { return forwardPlay_; }
    int ForwardWriteSlot() const { return forwardWrite_; }
    int ReversePlaySlot() const { return reversePlay_; }
    int ReverseWriteSlot() const { return reverseWrite_; }
    const std::array<std::int16_t, kForwardSlots + 1>& ForwardVector() const { return forwardVec_; }
    const std::array<std::int16_t, kBackwardSlots + 1>& BackwardVector() const {
        return backwardVec_;
    }
    void ClearBackwardVector() { backwardVec_.fill(0); }

    // Blocks ahead for a (play, write) pair of slots.
    static int BlocksAheadOf(int playSlot, int writeSlot);
    // 0 <= blocks ahead < latencyBlocks - 1.
    static bool IsFreshDataLow(int blocksAhead, int latencyBlocks);

  private:
    int forwardCount_ = 0;
    int backwardCount_ = 0;
    bool low_ = false;
    bool veryLow_ = false;
    bool backwardLow_ = false;
    int forwardPlay_ = 0, forwardWrite_ = 0, reversePlay_ = 0, reverseWrite_ = 0;
    int blocksAhead_ = 0;
    bool freshDataLow_ = false;
    std::array<std::int16_t, kForwardSlots + 1> forwardVec_{};
    std::array<std::int16_t, kBackwardSlots + 1> backwardVec_{};
};
