// AntiClipGain: how a band's effective gain answers clipping under anti-clip.
//
// While adding the band at its gain would push the sum out of range, the gain
// is backed off 0.1 at a time (never below 0). After the block it climbs back
// 0.02 towards the band's level, and never above it. Both sample types of the
// equalizer follow this one law; only the test for "the sum clips" differs.
#pragma once

#include <algorithm>

namespace dsp::eq {

constexpr float kAntiClipBackOff = 0.1f;    // gain taken off per trial that clips
constexpr float kAntiClipRecovery = 0.02f;  // gain given back per block

// The gain to play a block with: from gain, backed off while clips(g) is true.
// Sets clipped when it backs off at all (the caller clears it). clips is asked
// once per trial gain, the last time with the gain returned, so a test that
// writes its trial sum leaves the sum of that gain behind.
template <typename ClipsAt>
float BackOffGain(float gain, ClipsAt&& clips, bool& clipped) {
    while (clips(gain)) {
        clipped = true;
        gain = std::max(gain - kAntiClipBackOff, 0.0f);
    }
    return gain;
}

// The gain the next block starts from: up by the recovery step, held at level.
inline float RecoverGain(float gain, float level) {
    if (gain < level)
        gain += kAntiClipRecovery;
    if (gain > level)
        gain = level;
    return gain;
}

}  // namespace dsp::eq
