// An effect in a buffer's effect chain.
//
// Process runs on the audio thread, inside the mix: it must not lock,
// allocate, log or make system calls. It works in place on interleaved
// stereo float frames on the 16-bit scale (full scale is +-32768), at the
// device's rate, before the buffer's volume and pan are applied.
#pragma once

namespace sound {

class SoundEffect {
  public:
    virtual ~SoundEffect() = default;
    // frames: interleaved left/right, frameCount frames; sampleRate in Hz.
    virtual void Process(float* frames, int frameCount, int sampleRate) = 0;
};

}  // namespace sound
