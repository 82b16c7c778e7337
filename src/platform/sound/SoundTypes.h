// Plain types shared by the sound-device layer and its callers: buffer
// descriptions, locked regions, notification positions, volume envelopes,
// the primary format, the 3D listener and device descriptions.
//
// Units used throughout the layer:
//   volume    hundredths of a decibel, 0 = full level, -10000 = silence
//   pan       -10000 = full left, 0 = centre, +10000 = full right; the
//             other channel is attenuated by |pan| hundredths of a decibel
//   frequency playback rate of a buffer in frames per second (Hz)
//   positions byte offsets in a buffer, multiples of 4 (one stereo frame)
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

class SyncEvent;

namespace sound {

constexpr std::int32_t kVolumeMax = 0;
constexpr std::int32_t kVolumeMin = -10000;
constexpr std::int32_t kPanLeft = -10000;
constexpr std::int32_t kPanRight = 10000;
constexpr std::uint32_t kFrequencyMin = 100;     // Hz
constexpr std::uint32_t kFrequencyMax = 200000;  // Hz
constexpr std::uint32_t kFrameBytes = 4;         // 16-bit stereo
constexpr std::uint32_t kMinBufferBytes = 16;    // four frames: the interpolator's reach
constexpr std::uint32_t kMaxBufferBytes = 64u << 20;
constexpr int kMaxNotifications = 256;  // per buffer
constexpr int kMaxEnvelopeSteps = 512;  // per volume envelope
constexpr int kMaxEffects = 16;         // per buffer effect chain (12 equalizer bands + 1)

// Buffer status bits (Status()).
constexpr std::uint32_t kBufferPlaying = 0x1;
constexpr std::uint32_t kBufferLooping = 0x4;

// A streaming buffer: 16-bit stereo PCM at `frequency`, `bytes` long
// (a multiple of 4).
struct BufferDesc {
    std::uint32_t bytes = 0;
    std::uint32_t frequency = 44100;
};

// What Lock hands out: one span, or two when the range wraps past the end.
struct LockedRegion {
    std::uint8_t* first = nullptr;
    std::uint32_t firstBytes = 0;
    std::uint8_t* second = nullptr;
    std::uint32_t secondBytes = 0;
};

// The event is set when the play cursor passes the byte at `offset`. The
// event must outlive the buffer.
struct NotificationPosition {
    std::uint32_t offset = 0;
    SyncEvent* event = nullptr;
};

// A volume automation the mixer walks through on its own thread: `count`
// volumes (hundredths of a decibel), each held for `framesPerStep` device
// frames with the gain moving linearly to the next one.
struct VolumeEnvelope {
    const std::int32_t* volumes = nullptr;
    int count = 0;
    int framesPerStep = 1;
};

// The device's mixing format: stereo 44100 Hz normally, mono 22050 Hz with 3D
// sound. Always 16-bit.
struct PrimaryFormat {
    int channels = 2;
    int rate = 44100;
    int bits = 16;
};

// The listener of 3D sound: its position (as the caller measures it) and the
// left and right gains the mono mix is spread with, which the caller works
// out from the position. The mixer reads the gains on its own thread (a
// change glides over one mix pass); 1.0 and 1.0 put the mono mix on both
// channels unchanged.
struct SoundListener3D {
    std::atomic<float> x{0.0f};
    std::atomic<float> y{0.0f};
    std::atomic<float> z{0.0f};
    std::atomic<float> gainLeft{1.0f};
    std::atomic<float> gainRight{1.0f};
};

// One entry of the device list: what the user reads, and what to pass back
// to open the device. Identifiers stay valid across re-enumeration.
struct SoundDeviceInfo {
    std::string description;
    std::string identifier;
};

// Converts a volume in hundredths of a decibel to an amplitude factor;
// kVolumeMin and below give exactly 0.
float VolumeToGain(std::int32_t volume);
// Left and right factors of a pan value: the far channel is attenuated.
void PanToGains(std::int32_t pan, float* left, float* right);

}  // namespace sound
