#include "platform/sound/SoundBuffer.h"

#include "core/ThreadRole.h"
#include "platform/sound/SoundMixer.h"
#include "platform/sound/SoundVoice.h"

namespace sound {

SoundBuffer::SoundBuffer(std::shared_ptr<SoundMixer> mixer, SoundVoice* voice)
    : mixer_(std::move(mixer)), voice_(voice) {}

SoundBuffer::~SoundBuffer() {
    AssertNotAudioThread("SoundBuffer::~SoundBuffer");
    mixer_->RemoveVoice(voice_);
}

std::uint32_t SoundBuffer::SizeBytes() const {
    return voice_->Bytes();
}

SoundStatus SoundBuffer::Lock(std::uint32_t offset, std::uint32_t bytes, LockedRegion* region) {
    const std::uint32_t size = voice_->Bytes();
    if (region == nullptr || bytes == 0 || bytes > size || offset >= size)
        return kStatusInvalidParam;
    // The mix's reads of this memory are over before the caller writes it.
    static_cast<void>(voice_->ringRead.load(std::memory_order_acquire));
    std::uint8_t* data = voice_->Data();
    region->first = data + offset;
    if (offset + bytes <= size) {
        region->firstBytes = bytes;
        region->second = nullptr;
        region->secondBytes = 0;
    } else {
        region->firstBytes = size - offset;
        region->second = data;
        region->secondBytes = bytes - region->firstBytes;
    }
    return kStatusOk;
}

SoundStatus SoundBuffer::Unlock(const LockedRegion& region) {
    std::uint8_t* data = voice_->Data();
    const std::uint32_t size = voice_->Bytes();
    if (region.first < data || region.first + region.firstBytes > data + size)
        return kStatusInvalidParam;
    // Publish the written samples: the next mix pass acquires them.
    voice_->ringWritten.fetch_add(1, std::memory_order_release);
    return kStatusOk;
}

SoundStatus SoundBuffer::Play(bool looping, const VolumeEnvelope* attack) {
    voice_->looping.store(looping, std::memory_order_relaxed);
    if (voice_->playing.load(std::memory_order_acquire))
        return kStatusOk;
    voice_->attack.Store(attack);
    voice_->playing.store(true, std::memory_order_release);
    voice_->playSeq.fetch_add(1, std::memory_order_acq_rel);
    return kStatusOk;
}

SoundStatus SoundBuffer::Stop(const VolumeEnvelope* release) {
    if (!voice_->playing.load(std::memory_order_acquire))
        return kStatusOk;
    voice_->release.Store(release);
    voice_->playing.store(false, std::memory_order_release);
    voice_->stopSeq.fetch_add(1, std::memory_order_acq_rel);
    return kStatusOk;
}

std::uint32_t SoundBuffer::Status() const {
    std::uint32_t s = 0;
    if (voice_->playing.load(std::memory_order_acquire)) {
        s |= kBufferPlaying;
        if (voice_->looping.load(std::memory_order_relaxed))
            s |= kBufferLooping;
    }
    return s;
}

SoundStatus SoundBuffer::SetCurrentPosition(std::uint32_t playBytes) {
    if (playBytes >= voice_->Bytes())
        return kStatusInvalidParam;
    const std::int64_t frames = playBytes / kFrameBytes;
    voice_->requestedPosition.store(frames << 32, std::memory_order_release);
    return kStatusOk;
}

SoundStatus SoundBuffer::GetCurrentPosition(std::uint32_t* playBytes,
                                            std::uint32_t* writeBytes) const {
    const std::int64_t requested = voice_->requestedPosition.load(std::memory_order_acquire);
    const std::uint64_t fixed = requested >= 0 ? static_cast<std::uint64_t>(requested)
                                               : voice_->position.load(std::memory_order_acquire);
    const std::uint32_t frames = voice_->Frames();
    const auto play = static_cast<std::uint32_t>(fixed >> 32);
    std::uint32_t lead = 0;
    if (voice_->playing.load(std::memory_order_relaxed))
        lead = voice_->mixLead.load(std::memory_order_relaxed) % frames;
    if (playBytes)
        *playBytes = play * kFrameBytes;
    if (writeBytes)
        *writeBytes = ((play + lead) % frames) * kFrameBytes;
    return kStatusOk;
}

SoundStatus SoundBuffer::SetVolume(std::int32_t volume) {
    if (volume < kVolumeMin || volume > kVolumeMax)
        return kStatusInvalidParam;
    voice_->volume.store(volume, std::memory_order_relaxed);
    return kStatusOk;
}

std::int32_t SoundBuffer::Volume() const {
    return voice_->volume.load(std::memory_order_relaxed);
}

SoundStatus SoundBuffer::SetPan(std::int32_t pan) {
    if (pan < kPanLeft || pan > kPanRight)
        return kStatusInvalidParam;
    voice_->pan.store(pan, std::memory_order_relaxed);
    return kStatusOk;
}

std::int32_t SoundBuffer::Pan() const {
    return voice_->pan.load(std::memory_order_relaxed);
}

SoundStatus SoundBuffer::SetFrequency(std::uint32_t hz) {
    if (hz < kFrequencyMin || hz > kFrequencyMax)
        return kStatusInvalidParam;
    voice_->frequency.store(hz, std::memory_order_relaxed);
    return kStatusOk;
}

std::uint32_t SoundBuffer::Frequency() const {
    return voice_->frequency.load(std::memory_order_relaxed);
}

SoundStatus SoundBuffer::SetNotificationPositions(const NotificationPosition* positions,
                                                  int count) {
    if (IsPlaying())
        return kStatusFail;
    if (count < 0 || count > kMaxNotifications || (count > 0 && positions == nullptr))
        return count > kMaxNotifications ? kStatusOutOfResources : kStatusInvalidParam;
    for (int i = 0; i < count; ++i)
        if (positions[i].offset >= voice_->Bytes() || positions[i].event == nullptr)
            return kStatusInvalidParam;
    // The table is only read by passes that see the buffer playing, but a
    // pass that started before the last Stop may still be reading: shrink the
    // count first, then write the entries, then publish the new count.
    voice_->notifyCount.store(0, std::memory_order_release);
    for (int i = 0; i < count; ++i) {
        voice_->notifyOffset[i].store(positions[i].offset, std::memory_order_relaxed);
        voice_->notifyEvent[i].store(positions[i].event, std::memory_order_relaxed);
        voice_->notifyPending[i].store(0, std::memory_order_relaxed);
    }
    voice_->notifyCount.store(count, std::memory_order_release);
    return kStatusOk;
}

SoundStatus SoundBuffer::SetEffects(std::vector<std::shared_ptr<SoundEffect>> chain) {
    AssertNotAudioThread("SoundBuffer::SetEffects");
    if (chain.size() > static_cast<std::size_t>(kMaxEffects))
        return kStatusOutOfResources;
    for (const auto& e : chain)
        if (!e)
            return kStatusInvalidParam;
    std::unique_ptr<EffectChain> list;
    if (!chain.empty()) {
        list = std::make_unique<EffectChain>();
        list->effects = std::move(chain);
    }
    mixer_->SetEffects(voice_, std::move(list));
    return kStatusOk;
}

}  // namespace sound
