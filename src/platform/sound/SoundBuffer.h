// A looping streaming buffer on a sound device: 16-bit stereo PCM at its own
// playback frequency, mixed by the device with its own volume and pan, with
// position notifications and an effect chain.
//
// Created by SoundDevice::CreateBuffer; destroying the handle releases the
// buffer (the memory is reclaimed once the audio thread has let go of it).
// All calls are made from non-audio threads, one at a time per buffer.
// Units: bytes (positions, sizes; multiples of 4), hundredths of a decibel
// (volume), pan -10000..+10000, frequency in Hz.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/SoundTypes.h"

namespace sound {

class SoundMixer;
class SoundVoice;

class SoundBuffer {
  public:
    SoundBuffer(std::shared_ptr<SoundMixer> mixer, SoundVoice* voice);
    ~SoundBuffer();
    SoundBuffer(const SoundBuffer&) = delete;
    SoundBuffer& operator=(const SoundBuffer&) = delete;

    std::uint32_t SizeBytes() const;

    // Gives write access to `bytes` bytes from `offset`: one span, or two when
    // the range wraps past the end. Writing where the play cursor is about to
    // read is the caller's business, as with any streaming buffer. Unlock
    // publishes what was written to the mix (its next pass reads it whole).
    SoundStatus Lock(std::uint32_t offset, std::uint32_t bytes, LockedRegion* region);
    SoundStatus Unlock(const LockedRegion& region);

    // Starts playing from the current position. `attack`, when given, is the
    // volume envelope of the start (it ends on the buffer's volume). Playing
    // an already playing buffer only updates the looping flag.
    SoundStatus Play(bool looping, const VolumeEnvelope* attack = nullptr);
    // Stops now: the status and the play cursor stop at once. The sound fades
    // out over `release` when given (ending at kVolumeMin), else over 1.5 ms.
    SoundStatus Stop(const VolumeEnvelope* release = nullptr);
    // kBufferPlaying | kBufferLooping bits.
    std::uint32_t Status() const;
    bool IsPlaying() const { return (Status() & kBufferPlaying) != 0; }

    SoundStatus SetCurrentPosition(std::uint32_t playBytes);
    // Play cursor, and the write cursor: the first byte the mixer has not
    // taken yet (equal to the play cursor while stopped).
    SoundStatus GetCurrentPosition(std::uint32_t* playBytes, std::uint32_t* writeBytes) const;

    SoundStatus SetVolume(std::int32_t volume);  // kVolumeMin..kVolumeMax
    std::int32_t Volume() const;
    SoundStatus SetPan(std::int32_t pan);  // kPanLeft..kPanRight
    std::int32_t Pan() const;
    SoundStatus SetFrequency(std::uint32_t hz);  // kFrequencyMin..kFrequencyMax
    std::uint32_t Frequency() const;

    // Replaces the notification list; only while stopped. Offsets < size.
    SoundStatus SetNotificationPositions(const NotificationPosition* positions, int count);

    // Replaces the effect chain (empty: none). The effects run on the audio
    // thread and are kept alive until it has let go of them.
    SoundStatus SetEffects(std::vector<std::shared_ptr<SoundEffect>> chain);

  private:
    std::shared_ptr<SoundMixer> mixer_;
    SoundVoice* voice_;
};

}  // namespace sound
