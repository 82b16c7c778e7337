// Matching what a deck played against the track it played, frame by frame,
// forwards or backwards: for tests of repositioning, loops and reverse play.
// Output and track are interleaved 16-bit stereo; positions are in frames.
#pragma once

#include <cstdint>
#include <vector>

namespace testsupport {

using Pcm = std::vector<std::int16_t>;

constexpr long kFadeFrames = 2000;  // frames past a start's fade-in (and a stop's tail)

long Frames(const Pcm& pcm);

// Output frame o equals track frame f (both channels; out of range: false).
bool FrameEq(const Pcm& out, long o, const Pcm& track, long f);

// The track frame that output frame `o` plays, searched in [lo, hi]: the one
// from which 64 frames match going forwards (step +1) or backwards (-1); -1
// when none does.
long Align(const Pcm& out, long o, const Pcm& track, long lo, long hi, int step);

// Output frames from `o` on, `count` of them, that do not match the track
// from frame `f` in direction `step`.
long Mismatches(const Pcm& out, long o, const Pcm& track, long f, long count, int step);

}  // namespace testsupport
