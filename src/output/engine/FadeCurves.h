// The fades of the output stream: the volumes a deck buffer walks when it
// starts or stops, and the soft edges of the turntable's scratch copy. Pure
// functions, usable from any thread.
#pragma once

#include <array>
#include <cstdint>

namespace output {

// A fade is 500 volume settings; each is held for two device frames, so a
// start or stop fades over about 23 ms at 44100 Hz without the
// user-interface thread waiting for it.
constexpr int kFadeSteps = 500;
constexpr int kFadeFramesPerStep = 2;
// The scratch copy fades in over its first 100 sample values and out over
// its last 100.
constexpr int kScratchEdgeSamples = 100;

// The volumes of a fade-in to `volume`: steps 0..499 are
// trunc((1 - e^(-0.006 i)) * (volume + 10000)) - 10000, and the last entry
// is `volume` itself.
using FadeCurve = std::array<std::int32_t, kFadeSteps + 1>;
FadeCurve FadeInVolumes(std::int32_t volume);
// A fade-out from `volume`: steps trunc(e^(-0.006 i) * (volume + 10000)) - 10000,
// then -10000.
FadeCurve FadeOutVolumes(std::int32_t volume);

// Scales the first and last kScratchEdgeSamples sample values of a 16-bit
// buffer linearly in and out (`samples` values in all).
void FadeScratchEdges(std::int16_t* data, int samples);

}  // namespace output
