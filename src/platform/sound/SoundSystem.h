// The process-wide audio library (PortAudio): quiet initialisation, device
// enumeration and opening devices by identifier.
//
// Identifiers: "null" is the Null device (silent, clocked at the device
// rate); "null:manual" the Null device with the manual clock (tests);
// "pa:<host API>:<device name>" a PortAudio output device (those of the
// JACK host API are played through Mixora's own JACK client, JackBackend.h),
// with "#2", "#3" appended to repeated names. Identifiers survive re-enumeration.
//
// All functions run on non-audio threads; they are serialised internally.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/SoundTypes.h"

namespace sound {

inline constexpr char kNullDeviceId[] = "null";
inline constexpr char kNullManualDeviceId[] = "null:manual";

// Initialises PortAudio if it is not yet (the ALSA host API's complaints
// about missing cards are silenced). Safe to call repeatedly. On failure
// `problem`, when given, gets PortAudio's reason.
SoundStatus InitializeAudioLibrary(std::string* problem = nullptr);
// Terminates and initialises PortAudio again, so that devices and sound
// servers that appeared since (a JACK server) are seen. Refused with
// kStatusFail while a PortAudio device is open.
SoundStatus ReinitializeAudioLibrary();
// Terminates PortAudio (no PortAudio device may be open).
void ShutdownAudioLibrary();

// The Null device first, then every PortAudio device with outputs.
std::vector<SoundDeviceInfo> EnumerateDevices();

// Opens and starts a device. kStatusNoDriver when no device has the
// identifier; *device stays empty on failure.
SoundStatus OpenDevice(const std::string& identifier, bool use3D,
                       std::unique_ptr<SoundDevice>* device);

}  // namespace sound
