// The geometry of a deck's rings on the output device: their size, cursor
// moves round them, the reverse ring's mirror of a forward position and the
// frame-reversed copy of a block. Pure functions, usable from any thread.
#pragma once

#include <cstdint>

#include "core/PcmFormat.h"

namespace output {

// Every deck buffer holds 120 blocks of 4704 bytes (3.2 s at 44100 Hz).
constexpr int kRingBlocks = kOutputRingBlocks;
constexpr int kRingBytes = kOutputRingBytes;                       // 564480
constexpr int kLastBlockOffset = (kRingBlocks - 1) * kBlockBytes;  // 559776

// cursor + delta modulo the ring (bytes; a negative result has 564480 added).
int MoveCursor(int cursor, int delta);

// The reverse buffer's play position mirroring a forward play cursor:
// (119 - trunc(forward / 4704)) * 4704 bytes.
int MirrorPosition(int forwardPlayBytes);

// Frame i of `out` is frame 1175 - i of `in`, channels unchanged (one block).
void ReverseBlockFrames(const std::uint8_t* in, std::uint8_t* out);

}  // namespace output
