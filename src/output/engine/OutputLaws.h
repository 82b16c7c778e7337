// The fixed arithmetic of the output stream: ring geometry, cursor moves,
// the deck gain and pan laws, the start and stop fade curves and the
// frame-reversed block copy. Pure functions, usable from any thread.
#pragma once

#include <array>
#include <cstdint>

#include "core/PcmFormat.h"

namespace output {

// Every deck buffer holds 120 blocks of 4704 bytes (3.2 s at 44100 Hz).
constexpr int kRingBlocks = kOutputRingBlocks;
constexpr int kRingBytes = kOutputRingBytes;                       // 564480
constexpr int kLastBlockOffset = (kRingBlocks - 1) * kBlockBytes;  // 559776

// A fade is 500 volume settings; each is held for two device frames, so a
// start or stop fades over about 23 ms at 44100 Hz without the
// user-interface thread waiting for it.
constexpr int kFadeSteps = 500;
constexpr int kFadeFramesPerStep = 2;
// The scratch copy fades in over its first 100 sample values and out over
// its last 100.
constexpr int kScratchEdgeSamples = 100;

// cursor + delta modulo the ring (bytes; a negative result has 564480 added).
int MoveCursor(int cursor, int delta);

// The reverse buffer's play position mirroring a forward play cursor:
// (119 - trunc(forward / 4704)) * 4704 bytes.
int MirrorPosition(int forwardPlayBytes);

// Deck gain 0..1 to device volume (hundredths of a decibel): 1.0 -> 0,
// <= 0.0001 -> -10000 (silence), else -2500 + trunc(2500 * g).
std::int32_t DeckGainToVolume(float gain);

// Deck pan -1..+1 to device pan: trunc(p * 10000).
std::int32_t DeckPanToDevice(float pan);

// The volumes of a fade-in to `volume`: steps 0..499 are
// trunc((1 - e^(-0.006 i)) * (volume + 10000)) - 10000, and the last entry
// is `volume` itself.
using FadeCurve = std::array<std::int32_t, kFadeSteps + 1>;
FadeCurve FadeInVolumes(std::int32_t volume);
// A fade-out from `volume`: steps trunc(e^(-0.006 i) * (volume + 10000)) - 10000,
// then -10000.
FadeCurve FadeOutVolumes(std::int32_t volume);

// Frame i of `out` is frame 1175 - i of `in`, channels unchanged (one block).
void ReverseBlockFrames(const std::uint8_t* in, std::uint8_t* out);

// Scales the first and last kScratchEdgeSamples sample values of a 16-bit
// buffer linearly in and out (`samples` values in all).
void FadeScratchEdges(std::int16_t* data, int samples);

}  // namespace output
