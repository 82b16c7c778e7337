// The headphones device runs on its own clock: how far its copy of a deck is
// from the main device's, and how much to trim its playback frequency.
// Cursors and drifts are bytes in the deck's 564480-byte ring (4 bytes a
// frame); frequencies in Hz; times in seconds.
#pragma once

namespace output {

// Drifts up to this many bytes (about 57 ms at 44100 Hz) are left alone.
constexpr int kDriftToleranceBytes = 10000;

// main − phones, taken the short way round the ring: a difference of more
// than half the ring (282240 bytes) is the other way round.
int ShortWayDrift(int mainCursor, int phonesCursor);

// Whether a drift is big enough to snap the headphones copy: |drift| > 10000.
bool DriftNeedsCorrection(int drift);

// The frequency step that cancels a drift change of `driftChange` bytes over
// `seconds`: trunc(driftChange / (4 · seconds)) frames per second; 0 when
// no time has passed.
int FrequencyTrim(int driftChange, double seconds);

}  // namespace output
