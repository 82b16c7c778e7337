#include "output/engine/CRynSoundEngine.h"

#include <algorithm>
#include <cstring>

#include "output/engine/FadeCurves.h"
#include "output/engine/RingGeometry.h"
#include "platform/sound/SoundSystem.h"

using sound::SoundBuffer;

namespace {

bool ValidDeck(int deck) {
    return deck >= 0 && deck < kDeckCount;
}

// Notifications at the last byte of every block: 4703 + 4704k.
std::array<sound::NotificationPosition, kOutputRingBlocks> BlockEnds(SyncEvent* event) {
    std::array<sound::NotificationPosition, kOutputRingBlocks> list{};
    for (int k = 0; k < kOutputRingBlocks; ++k)
        list[k] = {static_cast<std::uint32_t>(kBlockBytes - 1 + kBlockBytes * k), event};
    return list;
}

void StopIfAny(SoundBuffer* buffer) {
    if (buffer)
        buffer->Stop();
}

// The largest scratch buffer tried when the device keeps answering "too small".
constexpr int kScratchSizeLimit = output::kRingBytes;

}  // namespace

CRynSoundEngine::~CRynSoundEngine() {
    ReleaseAll();
}

SoundStatus CRynSoundEngine::Open(const std::string& deviceId, bool use3D) {
    ReleaseAll();
    device_.reset();
    std::unique_ptr<sound::SoundDevice> device;
    const SoundStatus s = sound::OpenDevice(deviceId, use3D, &device);
    if (s != kStatusOk)
        return s;
    device_ = std::move(device);
    return kStatusOk;
}

SoundStatus CRynSoundEngine::Open(std::unique_ptr<sound::SoundDevice> device) {
    ReleaseAll();
    device_ = std::move(device);
    return device_ ? kStatusOk : kStatusNotInitialised;
}

void CRynSoundEngine::ReleaseDeck(int deck) {
    if (!ValidDeck(deck))
        return;
    DeckBuffers& d = decks_[deck];
    d.scratch.reset();
    d.forward.reset();
    d.reverse.reset();
    d.effects.clear();
    d.scratchBytes = 0;
}

void CRynSoundEngine::ReleaseAll() {
    for (int deck = 0; deck < kDeckCount; ++deck)
        ReleaseDeck(deck);
}

SoundStatus CRynSoundEngine::CreateDeckBuffers(int deck, int rate, bool withNotify) {
    if (!device_ || !ValidDeck(deck))
        return kStatusNotInitialised;
    ReleaseDeck(deck);
    DeckBuffers& d = decks_[deck];
    d.rate = rate;
    const sound::BufferDesc desc{static_cast<std::uint32_t>(output::kRingBytes),
                                 static_cast<std::uint32_t>(rate)};
    std::unique_ptr<SoundBuffer> reverse, forward;
    SoundStatus s = device_->CreateBuffer(desc, &reverse);
    if (s != kStatusOk)
        return s;
    s = device_->CreateBuffer(desc, &forward);
    if (s != kStatusOk)
        return s;

    if (withNotify) {
        DeckSharedState& shared = Engine().decks[deck];
        const auto forwardList = BlockEnds(&shared.forwardNotifyEvent);
        const auto reverseList = BlockEnds(&shared.reverseNotifyEvent);
        s = forward->SetNotificationPositions(forwardList.data(), kOutputRingBlocks);
        if (s != kStatusOk)
            return s;
        s = reverse->SetNotificationPositions(reverseList.data(), kOutputRingBlocks);
        if (s != kStatusOk)
            return s;
    }
    forward->SetCurrentPosition(0);
    reverse->SetCurrentPosition(0);
    d.forward = std::move(forward);
    d.reverse = std::move(reverse);
    d.forwardWrite = 0;
    d.reverseWrite = output::kLastBlockOffset;  // the mirror of forward block 0

    // 120 silent blocks into each ring: both cursors come round to where
    // they began.
    static const PcmBlock kSilence{};
    for (int k = 0; k < kOutputRingBlocks; ++k) {
        WriteForward(deck, kSilence.data(), false);
        WriteReverse(deck, kSilence.data(), false);
    }
    return kStatusOk;
}

SoundStatus CRynSoundEngine::WriteBlock(SoundBuffer* buffer, int* cursor, int delta,
                                        const std::uint8_t* block) {
    if (buffer == nullptr)
        return kStatusNotInitialised;
    sound::LockedRegion region;
    if (buffer->Lock(static_cast<std::uint32_t>(*cursor), kBlockBytes, &region) != kStatusOk)
        return kStatusArrayLocked;
    // The ring is a whole number of blocks and the cursor sits on a block
    // boundary, so the first region is the whole block.
    std::memcpy(region.first, block, std::min<std::uint32_t>(region.firstBytes, kBlockBytes));
    buffer->Unlock(region);
    *cursor = output::MoveCursor(*cursor, delta);
    return kStatusOk;
}

SoundStatus CRynSoundEngine::WriteForward(int deck, const std::uint8_t* block, bool deckReversed) {
    if (!ValidDeck(deck) || block == nullptr)
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    return WriteBlock(d.forward.get(), &d.forwardWrite, deckReversed ? -kBlockBytes : kBlockBytes,
                      block);
}

SoundStatus CRynSoundEngine::WriteReverse(int deck, const std::uint8_t* block, bool deckReversed) {
    if (!ValidDeck(deck) || block == nullptr)
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    return WriteBlock(d.reverse.get(), &d.reverseWrite, deckReversed ? kBlockBytes : -kBlockBytes,
                      block);
}

SoundStatus CRynSoundEngine::FadeIn(SoundBuffer* buffer) {
    if (buffer == nullptr)
        return kStatusNotInitialised;
    if (buffer->IsPlaying())
        return kStatusNoChange;
    const std::int32_t v = buffer->Volume();
    const output::FadeCurve curve = output::FadeInVolumes(v);
    const sound::VolumeEnvelope envelope{curve.data(), static_cast<int>(curve.size()),
                                         output::kFadeFramesPerStep};
    buffer->SetVolume(sound::kVolumeMin);
    const SoundStatus s = buffer->Play(true, &envelope);
    buffer->SetVolume(v);
    return s;
}

SoundStatus CRynSoundEngine::FadeOut(SoundBuffer* buffer) {
    if (buffer == nullptr)
        return kStatusNotInitialised;
    if (!buffer->IsPlaying())
        return kStatusNoChange;
    const std::int32_t v = buffer->Volume();
    const output::FadeCurve curve = output::FadeOutVolumes(v);
    const sound::VolumeEnvelope envelope{curve.data(), static_cast<int>(curve.size()),
                                         output::kFadeFramesPerStep};
    const SoundStatus s = buffer->Stop(&envelope);
    buffer->SetVolume(v);
    return s;
}

void CRynSoundEngine::MirrorForward(DeckBuffers& d) {
    std::uint32_t play = 0;
    d.forward->GetCurrentPosition(&play, nullptr);
    d.reverse->SetCurrentPosition(static_cast<std::uint32_t>(output::MirrorPosition(play)));
}

SoundStatus CRynSoundEngine::PlayForward(int deck) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    return FadeIn(decks_[deck].forward.get());
}

SoundStatus CRynSoundEngine::PlayReverse(int deck) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    if (!d.forward || !d.reverse)
        return kStatusNotInitialised;
    MirrorForward(d);
    return FadeIn(d.reverse.get());
}

SoundStatus CRynSoundEngine::StopForward(int deck) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    StopIfAny(d.reverse.get());
    StopIfAny(d.scratch.get());
    return FadeOut(d.forward.get());
}

SoundStatus CRynSoundEngine::StopReverse(int deck) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    return FadeOut(decks_[deck].reverse.get());
}

SoundStatus CRynSoundEngine::SwitchDirection(int deck, bool toForward) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    if (toForward) {
        StopIfAny(d.reverse.get());
        if (!d.forward)
            return kStatusNotInitialised;
        return d.forward->Play(true);  // from where it stopped, no fade
    }
    if (!d.reverse || !d.forward)
        return kStatusNotInitialised;
    d.forward->Stop();
    MirrorForward(d);
    return d.reverse->Play(true);
}

SoundStatus CRynSoundEngine::CreateScratch(int deck, int rate, int bytes) {
    if (!device_ || !ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    d.scratch.reset();
    d.scratchBytes = 0;
    int size = bytes / 4 * 4;
    if (size <= 0)
        return kStatusUnexpected;
    std::unique_ptr<SoundBuffer> scratch;
    SoundStatus s;
    for (;;) {
        s = device_->CreateBuffer(
            {static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(rate)}, &scratch);
        if (s != kStatusBufferTooSmall || size >= kScratchSizeLimit)
            break;
        size += 100;
    }
    if (s != kStatusOk)
        return s;
    const sound::NotificationPosition start{0, &Engine().decks[deck].scratchNotifyEvent};
    s = scratch->SetNotificationPositions(&start, 1);
    if (s != kStatusOk)
        return s;
    try {
        d.scratchCopy.assign(static_cast<std::size_t>(size) / 2, 0);
    } catch (const std::bad_alloc&) {
        return kStatusOutOfMemory;
    }
    sound::LockedRegion region;
    if (scratch->Lock(0, static_cast<std::uint32_t>(size), &region) == kStatusOk) {
        std::memset(region.first, 0, region.firstBytes);
        scratch->Unlock(region);
    }
    d.scratch = std::move(scratch);
    d.scratchBytes = size;
    return kStatusOk;
}

SoundStatus CRynSoundEngine::PlayScratch(int deck, int offsetBytes) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    if (!d.scratch || !d.forward)
        return kStatusNotInitialised;
    FadeOut(d.forward.get());
    d.scratch->Stop();

    // Copy scratch-size bytes of the forward ring from the offset (both
    // regions when the range wraps).
    const std::uint32_t ring = d.forward->SizeBytes();
    const std::uint32_t bytes = std::min<std::uint32_t>(d.scratchBytes, ring);
    const std::uint32_t offset =
        (static_cast<std::uint32_t>(std::max(offsetBytes, 0)) / 4 * 4) % ring;
    sound::LockedRegion from;
    if (d.forward->Lock(offset, bytes, &from) != kStatusOk)
        return kStatusArrayLocked;
    auto* copy = reinterpret_cast<std::uint8_t*>(d.scratchCopy.data());
    std::memcpy(copy, from.first, from.firstBytes);
    if (from.second)
        std::memcpy(copy + from.firstBytes, from.second, from.secondBytes);
    d.forward->Unlock(from);
    output::FadeScratchEdges(d.scratchCopy.data(), static_cast<int>(bytes / 2));

    sound::LockedRegion to;
    if (d.scratch->Lock(0, bytes, &to) != kStatusOk)
        return kStatusArrayLocked;
    std::memcpy(to.first, copy, to.firstBytes);
    d.scratch->Unlock(to);

    d.scratch->SetVolume(d.forward->Volume());
    d.scratch->SetPan(d.forward->Pan());
    d.scratch->SetCurrentPosition(0);
    return d.scratch->Play(true);
}

SoundStatus CRynSoundEngine::EndScratch(int deck) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    StopIfAny(d.scratch.get());
    d.scratch.reset();
    d.scratchBytes = 0;
    if (!d.forward)
        return kStatusNotInitialised;
    return d.forward->Play(true);
}

template <typename Set>
SoundStatus CRynSoundEngine::SetOnDeckBuffers(int deck, Set set) {
    if (!ValidDeck(deck))
        return kStatusNotInitialised;
    DeckBuffers& d = decks_[deck];
    SoundStatus s = kStatusNotInitialised;
    for (SoundBuffer* b : {d.forward.get(), d.reverse.get(), d.scratch.get()})
        if (b)
            s = set(*b);
    return s;
}

SoundStatus CRynSoundEngine::SetDeckVolume(int deck, std::int32_t volume) {
    return SetOnDeckBuffers(deck, [volume](SoundBuffer& b) { return b.SetVolume(volume); });
}

SoundStatus CRynSoundEngine::SetDeckDevicePan(int deck, std::int32_t pan) {
    return SetOnDeckBuffers(deck, [pan](SoundBuffer& b) { return b.SetPan(pan); });
}
