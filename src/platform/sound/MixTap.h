// A listener on a device's finished mix: the interleaved 16-bit stereo frames
// exactly as they go to the device, after the master gain. The recorder of
// the main output is one.
//
// OnMixed runs on the device's audio thread (or the caller's thread for a
// manual-clock device) inside the mix pass: it must not lock, allocate, log
// or make a system call, and should take well under a millisecond.
#pragma once

#include <cstdint>

namespace sound {

class MixTap {
  public:
    virtual ~MixTap() = default;
    // `frames` frames at `out` (2 * frames values, left then right).
    virtual void OnMixed(const std::int16_t* out, int frames) noexcept = 0;
};

}  // namespace sound
