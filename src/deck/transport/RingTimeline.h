// The deck's output rings hold one unbroken stretch of the track: each block
// written continues the stretch at one end, the newest end while the deck
// plays forwards and the earliest end while it plays backwards. When the
// direction turns, writing must continue at the other end of the stretch,
// and the source must be read from just past that end. These are the laws
// of that hand-over, in output blocks and source frames. Pure, any thread.
#pragma once

#include <cstdint>

#include "core/PcmFormat.h"

namespace ringtimeline {

// The forward ring's write slot after the direction of writing turns.
// `history` is the stretch's length in blocks (0 … 120). Forwards the stretch
// ends just below the write slot, so reverse writing goes on below its
// earliest block: slot - history - 1. Backwards it starts just above the
// write slot, so forward writing goes on above its newest block:
// slot + history + 1. Slots wrap round the 120-block ring.
int TurnedWriteSlot(int writeSlot, int history, bool toReverse);

// The reverse ring mirrors the forward one: forward slot k is reverse slot 119 - k.
int MirrorSlot(int slot);

// Forwards -> backwards: the source's next forward frame is `head`, `pending`
// blocks read ahead wait in the disc buffer and `history` blocks are in the
// rings: the earliest block of the stretch starts at the frame returned, and
// backward reading delivers the blocks before it.
std::int64_t EarliestFrame(std::int64_t head, int pending, int history);

// Backwards -> forwards: the earliest block delivered starts at `earliest`;
// the stretch runs `history` blocks on from there, and forward reading
// resumes right after it (never before frame 0).
std::int64_t ResumeFrame(std::int64_t earliest, int history);

}  // namespace ringtimeline
