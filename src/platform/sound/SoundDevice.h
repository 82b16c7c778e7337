// An open sound device: our software mixer, the backend that drives it
// (a PortAudio stream or the Null device's clock), and the notification
// service thread that turns recorded cursor crossings into events.
//
// Open devices with SoundSystem::OpenDevice (by identifier) or, in tests,
// SoundDevice::OpenNull. A Null device with the manual clock has no threads
// at all: Render() mixes on the calling thread and then sets the events of
// the notifications the rendered span passed, so tests are deterministic.
//
// Buffers may outlive the device object (they keep the mixer alive), but
// they fall silent once the device is destroyed.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "platform/sound/SoundBackend.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/SoundTypes.h"

namespace sound {

class MixTap;
class SoundMixer;

class SoundDevice {
  public:
    enum class NullClock { Realtime, Manual };

    // The Null device: plays nothing, consumes audio at the format's rate
    // (Realtime) or only when Render is called (Manual).
    static std::unique_ptr<SoundDevice> OpenNull(NullClock clock, bool use3D = false);

    // Used by SoundSystem: takes a backend that is not started yet. A null
    // backend means the manual clock.
    SoundDevice(std::string identifier, std::string description, PrimaryFormat format,
                std::unique_ptr<SoundBackend> backend);
    ~SoundDevice();
    SoundDevice(const SoundDevice&) = delete;
    SoundDevice& operator=(const SoundDevice&) = delete;

    // Starts the backend and the notification service.
    SoundStatus Start();

    const std::string& Identifier() const { return identifier_; }
    const std::string& Description() const { return description_; }
    // Stereo 44100 Hz 16-bit, or mono 22050 Hz 16-bit when opened with 3D.
    const PrimaryFormat& Format() const { return format_; }
    // The 3D listener, present only when opened with 3D sound.
    SoundListener3D* Listener() { return listener_; }

    // A silent, stopped buffer at position 0, volume 0, pan 0.
    SoundStatus CreateBuffer(const BufferDesc& desc, std::unique_ptr<SoundBuffer>* buffer);

    // The listener on the finished mix (nullptr: none); see SoundMixer::SetTap.
    void SetTap(MixTap* tap);

    // Gain after the mix, per channel, 0..100 percent of full amplitude (the
    // main mixer's main volume and balance).
    void SetMasterGain(int leftPercent, int rightPercent);

    // The device stopped taking audio: its stream ended or failed by itself,
    // or it has not asked for a frame for kLostAfterMs (the sound server
    // went away, the card was unplugged). Set by the service thread and
    // never cleared: a lost device is closed and opened again. A
    // manual-clock device is never lost.
    static constexpr int kLostAfterMs = 500;
    bool Lost() const { return lost_.load(std::memory_order_relaxed); }

    // Late callbacks and output underflows reported by the backend.
    std::uint64_t UnderrunCount() const { return underruns_.load(std::memory_order_relaxed); }
    std::uint64_t FramesRendered() const;

    bool IsManualClock() const { return backend_ == nullptr; }
    // Manual clock only: mixes `frames` frames into `out` (interleaved
    // 16-bit stereo, 2 * frames values) and then sets the events of the
    // notifications passed. False (nothing done) on a clocked device.
    bool Render(int frames, std::int16_t* out);

  private:
    void ServiceLoop();

    std::string identifier_;
    std::string description_;
    PrimaryFormat format_;
    std::shared_ptr<SoundMixer> mixer_;
    std::unique_ptr<SoundBackend> backend_;
    SoundListener3D* listener_ = nullptr;  // the mixer's, when opened with 3D
    std::atomic<std::uint64_t> underruns_{0};
    std::atomic<bool> serviceRun_{false};
    std::atomic<bool> lost_{false};
    std::thread service_;
    bool started_ = false;
};

// The primary format for a device: stereo 44100 Hz, or mono 22050 Hz with 3D.
PrimaryFormat PrimaryFormatFor(bool use3D);

}  // namespace sound
