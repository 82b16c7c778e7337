#include "deck/disc/DeckInfoStats.h"

#include <algorithm>

void DeckInfoStats::HandInForwardFlags(
    const std::array<std::atomic<std::int32_t>, kForwardSlots>& flags) {
    int count = 0;
    for (int i = 0; i < kForwardSlots; ++i) {
        const std::int16_t f = flags[i].load(std::memory_order_relaxed) != 0 ? 1 : 0;
        forwardVec_[i + 1] = f;
        count += f;
    }
    forwardCount_ = count;
    // Three quarters full is 127.5 of 170 slots; half full is 85.
    low_ = count < 127.5;
    veryLow_ = count < 85;
}

void DeckInfoStats::HandInBackwardFlags(
    const std::array<std::atomic<std::int32_t>, kBackwardSlots>& flags) {
    int count = 0;
    for (int i = 0; i < kBackwardSlots; ++i) {
        const std::int16_t f = flags[i].load(std::memory_order_relaxed) != 0 ? 1 : 0;
        backwardVec_[i + 1] = f;
        count += f;
    }
    backwardCount_ = count;
    // The backward ring keeps a flag of its own, three quarters of 50, so it
    // never disturbs the forward reader's priority.
    backwardLow_ = count < 37.5;
}

int DeckInfoStats::BlocksAheadOf(int playSlot, int writeSlot) {
    int ahead = writeSlot - playSlot;
    if (writeSlot < playSlot)
        ahead += kRingBlocks;
    return ahead;
}

bool DeckInfoStats::IsFreshDataLow(int blocksAhead, int latencyBlocks) {
    return blocksAhead >= 0 && blocksAhead < latencyBlocks - 1;
}

void DeckInfoStats::SetForwardPositions(int playSlot, int writeSlot, int latencyBlocks,
                                        std::atomic<std::int32_t>* blocksAheadCopy) {
    forwardPlay_ = playSlot;
    forwardWrite_ = writeSlot;
    blocksAhead_ = BlocksAheadOf(playSlot, writeSlot);
    if (blocksAheadCopy)
        blocksAheadCopy->store(blocksAhead_);
    freshDataLow_ = IsFreshDataLow(blocksAhead_, latencyBlocks);
}

void DeckInfoStats::SetReversePositions(int playSlot, int writeSlot, int latencyBlocks) {
    reversePlay_ = playSlot;
    reverseWrite_ = writeSlot;
    blocksAhead_ = BlocksAheadOf(playSlot, writeSlot);
    freshDataLow_ = IsFreshDataLow(blocksAhead_, latencyBlocks);
}

void DeckInfoStats::SetPlatterPositions(int angleBlocks) {
    const int angle = std::clamp(angleBlocks, 0, kRingBlocks);
    forwardPlay_ = angle;
    reversePlay_ = kRingBlocks - angle;
}
