#include "deck/transport/RingTimeline.h"

#include <algorithm>

namespace ringtimeline {

namespace {

int WrapSlot(int slot) {
    slot %= kOutputRingBlocks;
    return slot < 0 ? slot + kOutputRingBlocks : slot;
}

}  // namespace

int TurnedWriteSlot(int writeSlot, int history, bool toReverse) {
    const int h = std::clamp(history, 0, kOutputRingBlocks);
    return WrapSlot(toReverse ? writeSlot - h - 1 : writeSlot + h + 1);
}

int MirrorSlot(int slot) {
    return kOutputRingBlocks - 1 - WrapSlot(slot);
}

std::int64_t EarliestFrame(std::int64_t head, int pending, int history) {
    return head - std::int64_t(std::max(pending, 0) + std::max(history, 0)) * kBlockFrames;
}

std::int64_t ResumeFrame(std::int64_t earliest, int history) {
    return std::max<std::int64_t>(earliest + std::int64_t(std::max(history, 0)) * kBlockFrames, 0);
}

}  // namespace ringtimeline
