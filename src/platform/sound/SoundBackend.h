// What drives a device's mixer: something that, on its own thread and at the
// device's pace, asks the mixer for the next frames. PortAudio streams and
// the Null device's clock implement it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/sound/SoundStatus.h"
#include "platform/sound/SoundTypes.h"

namespace sound {

class SoundMixer;

class SoundBackend {
  public:
    virtual ~SoundBackend() = default;
    // Starts pulling audio from `mixer` in `format`. Late or missed periods
    // are added to `underruns`. Both must outlive Stop().
    virtual SoundStatus Start(SoundMixer* mixer, std::atomic<std::uint64_t>* underruns) = 0;
    // Stops pulling; when it returns, Mix is no longer running or called.
    virtual void Stop() = 0;
    // True once the stream has ended or failed by itself (not by Stop): the
    // device is gone. Read by the device's service thread.
    virtual bool Failed() const { return false; }
};

// The Null device's clock: a thread that takes `periodFrames` frames every
// period at the format's rate and discards them.
std::unique_ptr<SoundBackend> MakeNullClockBackend(PrimaryFormat format, int periodFrames = 256);

}  // namespace sound
