// A JACK client of Mixora's own as a device backend, for the devices that
// PortAudio lists under its JACK host API. PortAudio's own JACK streams
// cannot be stopped or closed once their server has gone (the stop waits
// for a process thread that no longer runs), so a server that stops under a
// playing program would freeze it; this client notices the server's end
// (Failed) and closes without waiting.
//
// The client is "Mixora", its ports "out_0" and "out_1"; on Start they are
// connected to the input ports of the JACK client the device names
// ("system": the sound card's playback ports). The server's rate must be the
// format's; the mixer's 16-bit frames are handed to JACK as floats.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/sound/SoundBackend.h"

namespace sound {

// `target` is the JACK client whose inputs receive the sound ("system").
std::unique_ptr<SoundBackend> MakeJackBackend(const std::string& target, PrimaryFormat format);

// The JACK clients that take audio in ("system" first), asked of the server
// that runs now ($JACK_DEFAULT_SERVER or the default one) through a short
// probe client; empty when no server runs. Never starts a server.
std::vector<std::string> JackTargets();

// The JACK host API's name, as PortAudio calls it (device identifiers).
inline constexpr char kJackApiName[] = "JACK Audio Connection Kit";

}  // namespace sound
