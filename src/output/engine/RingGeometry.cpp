#include "output/engine/RingGeometry.h"

#include <algorithm>
#include <cstring>

namespace output {

int MoveCursor(int cursor, int delta) {
    int c = (cursor + delta) % kRingBytes;
    if (c < 0)
        c += kRingBytes;
    return c;
}

int MirrorPosition(int forwardPlayBytes) {
    const int block = std::clamp(forwardPlayBytes / kBlockBytes, 0, kRingBlocks - 1);
    return (kRingBlocks - 1 - block) * kBlockBytes;
}

void ReverseBlockFrames(const std::uint8_t* in, std::uint8_t* out) {
    std::uint32_t frames[kBlockFrames];
    std::memcpy(frames, in, kBlockBytes);
    std::reverse(frames, frames + kBlockFrames);
    std::memcpy(out, frames, kBlockBytes);
}

}  // namespace output
