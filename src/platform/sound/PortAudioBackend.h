// A PortAudio output stream as a device backend: 16-bit stereo at the
// primary format's rate on one PortAudio device, pulling from the mixer in
// PortAudio's callback.
#pragma once

#include <memory>

#include "platform/sound/SoundBackend.h"

namespace sound {

// PortAudio must be initialised (SoundSystem). deviceIndex is a
// PaDeviceIndex of an output device.
std::unique_ptr<SoundBackend> MakePortAudioBackend(int deviceIndex, PrimaryFormat format);

// How many PortAudio streams are open: PortAudio cannot be re-initialised
// while any is.
int OpenPortAudioStreams();

}  // namespace sound
