// The turntable's arithmetic: the platter stands for the deck's output ring,
// one revolution = 120 blocks = 564480 bytes = 3.2 s at 44100 Hz, and an
// angle is a fraction 0 <= a < 1 of a revolution (the knob's value).
// Pure functions, any thread.
#pragma once

#include "core/PcmFormat.h"

namespace turntable {

constexpr double kSecondsPerRevolution = 3.2;
constexpr int kRingBlocks = kOutputRingBlocks;  // 120
constexpr int kRingBytes = kOutputRingBytes;    // 564480
constexpr int kDiscSlots = kForwardDiscBlocks;  // 170, the forward disc buffer
constexpr int kSpinPeriodMs = 50;               // timer 13 while the needle is up
constexpr int kDragPeriodMs = 300;              // timer 17 while the needle is down

// Angle of a byte cursor in the ring: cursor / 564480.
double AngleOfCursor(int cursorBytes);

// The knob's angle in output blocks, trunc(a × 120), held to 0 … 119; the
// reverse ring's form is 120 - trunc(a × 120).
int AngleInBlocks(double angle);
int ReverseAngleInBlocks(double angle);

// Blocks written ahead: (write slot - play slot) mod 120, slots = cursor / 4704.
int BlocksAhead(int playCursorBytes, int writeCursorBytes);

// Bytes heard between two play angles: ((now - before), plus 1 when
// negative) × 564480, truncated.
int BytesPlayed(double before, double now);

// A shift-release loop from the released angle round to the play angle:
// distance = play - released (plus 1 when negative), bytes =
// trunc(564480 × distance) rounded down to whole frames.
int LoopBytes(double playAngle, double releasedAngle);

// Where a scratch copy starts in the ring: trunc(position × 564480), rounded
// down to whole frames.
int ScratchOffset(double position);

// The change of a dragged knob the shorter way round: more than half a turn
// forwards counts as the rest backwards and the other way round.
double DragDelta(double previous, double now);

// One 50 ms step of the platter while the needle is up: it turns with the
// fill of the forward disc buffer, at playing speed when full (one turn in
// 3.2 s) and not at all when empty. Returns the new angle, wrapped below 1.
double SpinStep(double angle, int filledSlots);

// angle held to 0 <= a < 1 (whole turns dropped; NaN gives 0).
double Wrap(double angle);

}  // namespace turntable
