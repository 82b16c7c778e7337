#include "output/engine/CRynAudioOutput.h"

#include <algorithm>
#include <chrono>

#include "output/engine/RingGeometry.h"
#include "output/laws/CrossFaderGains.h"
#include "output/laws/DeckGainLaw.h"

namespace {

bool ValidDeck(int deck) {
    return deck >= 0 && deck < kDeckCount;
}

double MonotonicSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

CRynAudioOutput::CRynAudioOutput() = default;
CRynAudioOutput::~CRynAudioOutput() = default;

SoundStatus CRynAudioOutput::OpenDevice(const std::string& deviceName, const std::string& deviceId,
                                        WindowHandle window, bool use3D) {
    if (deviceName.empty())
        return kStatusOk;
    UntapDevice();
    engine_.reset();
    engine_ = std::make_unique<CRynSoundEngine>();
    window_ = window;
    const SoundStatus s = engine_->Open(deviceId, use3D);
    if (s == kStatusOk)
        engine_->Device()->SetMasterGain(masterLeft_, masterRight_);
    TapDevice();
    return s;
}

SoundStatus CRynAudioOutput::OpenDevice(std::unique_ptr<sound::SoundDevice> device,
                                        WindowHandle window) {
    UntapDevice();
    engine_.reset();
    engine_ = std::make_unique<CRynSoundEngine>();
    window_ = window;
    const SoundStatus s = engine_->Open(std::move(device));
    if (s == kStatusOk)
        engine_->Device()->SetMasterGain(masterLeft_, masterRight_);
    TapDevice();
    return s;
}

void CRynAudioOutput::CloseDevice() {
    UntapDevice();
    engine_.reset();
}

void CRynAudioOutput::SetMixTap(sound::MixTap* tap) {
    if (tap == tap_)
        return;
    UntapDevice();
    tap_ = tap;
    TapDevice();
}

void CRynAudioOutput::UntapDevice() {
    if (tap_ && engine_ && engine_->Device())
        engine_->Device()->SetTap(nullptr);
}

void CRynAudioOutput::TapDevice() {
    if (tap_ && engine_ && engine_->Device())
        engine_->Device()->SetTap(tap_);
}

std::unique_ptr<CRynSoundEngine> CRynAudioOutput::DetachEngine() {
    UntapDevice();
    if (engine_)
        engine_->ReleaseAll();
    return std::move(engine_);
}

CRynSoundEngine* CRynAudioOutput::Live(int deck) const {
    if (!ValidDeck(deck) || !engine_ || !engine_->HasDevice())
        return nullptr;
    return engine_.get();
}

sound::SoundBuffer* CRynAudioOutput::Buffer(int deck, Ring ring) const {
    CRynSoundEngine* e = Live(deck);
    if (!e)
        return nullptr;
    const CRynSoundEngine::DeckBuffers& d = e->Deck(deck);
    switch (ring) {
        case kForward:
            return d.forward.get();
        case kReverse:
            return d.reverse.get();
        case kScratch:
            break;
    }
    return d.scratch.get();
}

SoundStatus CRynAudioOutput::CreateDeckBuffers(int deck, int rate, bool withNotify) {
    CRynSoundEngine* e = Live(deck);
    if (!e)
        return kStatusNotInitialised;
    blocksWritten_[deck] = 0;
    lastRateCursor_[deck] = 0;
    return e->CreateDeckBuffers(deck, rate, withNotify);
}

void CRynAudioOutput::ReleaseDeck(int deck) {
    if (CRynSoundEngine* e = Live(deck))
        e->ReleaseDeck(deck);
}

void CRynAudioOutput::ReleaseAll() {
    if (engine_)
        engine_->ReleaseAll();
}

SoundStatus CRynAudioOutput::WriteForward(int deck, const std::uint8_t* block, bool deckReversed) {
    CRynSoundEngine* e = Live(deck);
    if (!e)
        return kStatusNotInitialised;
    const SoundStatus s = e->WriteForward(deck, block, deckReversed);
    if (s == kStatusOk)
        blocksWritten_[deck] += kBlockBytes;
    return s;
}

SoundStatus CRynAudioOutput::WriteReverse(int deck, const std::uint8_t* block, bool deckReversed) {
    CRynSoundEngine* e = Live(deck);
    if (!e)
        return kStatusNotInitialised;
    return e->WriteReverse(deck, block, deckReversed);
}

SoundStatus CRynAudioOutput::WriteDeckBlock(int deck, const std::uint8_t* block,
                                            bool deckReversed) {
    if (!Live(deck))
        return kStatusNotInitialised;
    if (block == nullptr)
        return kStatusInvalidParam;
    const SoundStatus forward = WriteForward(deck, block, deckReversed);
    output::ReverseBlockFrames(block, reversed_.data());
    const SoundStatus reverse = WriteReverse(deck, reversed_.data(), deckReversed);
    return forward != kStatusOk ? forward : reverse;
}

SoundStatus CRynAudioOutput::PlayForward(int deck) {
    return OnEngine(deck, &CRynSoundEngine::PlayForward);
}

SoundStatus CRynAudioOutput::PlayReverse(int deck) {
    return OnEngine(deck, &CRynSoundEngine::PlayReverse);
}

SoundStatus CRynAudioOutput::StopForward(int deck) {
    return OnEngine(deck, &CRynSoundEngine::StopForward);
}

SoundStatus CRynAudioOutput::StopReverse(int deck) {
    return OnEngine(deck, &CRynSoundEngine::StopReverse);
}

SoundStatus CRynAudioOutput::SwitchDirection(int deck, bool toForward) {
    return OnEngine(deck, &CRynSoundEngine::SwitchDirection, toForward);
}

SoundStatus CRynAudioOutput::CreateScratch(int deck, int rate, int bytes) {
    return OnEngine(deck, &CRynSoundEngine::CreateScratch, rate, bytes);
}

SoundStatus CRynAudioOutput::PlayScratch(int deck, int offsetBytes) {
    return OnEngine(deck, &CRynSoundEngine::PlayScratch, offsetBytes);
}

SoundStatus CRynAudioOutput::EndScratch(int deck) {
    return OnEngine(deck, &CRynSoundEngine::EndScratch);
}

SoundStatus CRynAudioOutput::SetDeckGain(int deck, float gain) {
    return OnEngine(deck, &CRynSoundEngine::SetDeckVolume, output::DeckGainToVolume(gain));
}

SoundStatus CRynAudioOutput::SetDeckPan(int deck, float pan) {
    return OnEngine(deck, &CRynSoundEngine::SetDeckDevicePan, output::DeckPanToDevice(pan));
}

SoundStatus CRynAudioOutput::SetFrequency(sound::SoundBuffer* buffer, int hz) {
    return buffer ? buffer->SetFrequency(static_cast<std::uint32_t>(hz)) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::SetForwardFrequency(int deck, int hz) {
    sound::SoundBuffer* forward = Buffer(deck, kForward);
    if (forward)
        requestedFrequency_[deck] = hz;
    return SetFrequency(forward, hz);
}

SoundStatus CRynAudioOutput::SetReverseFrequency(int deck, int hz) {
    return SetFrequency(Buffer(deck, kReverse), hz);
}

SoundStatus CRynAudioOutput::SetScratchFrequency(int deck, int hz) {
    return SetFrequency(Buffer(deck, kScratch), hz);
}

int CRynAudioOutput::ForwardFrequency(int deck) const {
    const sound::SoundBuffer* forward = Buffer(deck, kForward);
    return forward ? static_cast<int>(forward->Frequency()) : 0;
}

SoundStatus CRynAudioOutput::SetForwardPosition(int deck, int blocks) {
    return SetForwardPositionBytes(deck, blocks * kBlockBytes);
}

SoundStatus CRynAudioOutput::SetPosition(sound::SoundBuffer* buffer, int bytes) {
    if (!buffer)
        return kStatusNotInitialised;
    if (bytes < 0)
        return kStatusInvalidParam;
    return buffer->SetCurrentPosition(static_cast<std::uint32_t>(bytes) / 4 * 4);
}

SoundStatus CRynAudioOutput::SetForwardPositionBytes(int deck, int bytes) {
    return SetPosition(Buffer(deck, kForward), bytes);
}

SoundStatus CRynAudioOutput::SetReversePosition(int deck, int blocks) {
    return SetPosition(Buffer(deck, kReverse), blocks * kBlockBytes);
}

CRynAudioOutput::Cursor CRynAudioOutput::Read(const sound::SoundBuffer* buffer) {
    Cursor c;
    if (buffer == nullptr)
        return c;
    std::uint32_t play = 0;
    c.status = buffer->GetCurrentPosition(&play, nullptr);
    c.bytes = static_cast<int>(play);
    c.blocks = c.bytes / kBlockBytes;
    return c;
}

CRynAudioOutput::Cursor CRynAudioOutput::ForwardPlayCursor(int deck) const {
    return Read(Buffer(deck, kForward));
}

CRynAudioOutput::Cursor CRynAudioOutput::ReversePlayCursor(int deck) const {
    return Read(Buffer(deck, kReverse));
}

CRynAudioOutput::Cursor CRynAudioOutput::ScratchPlayCursor(int deck) const {
    return Read(Buffer(deck, kScratch));
}

CRynAudioOutput::Cursor CRynAudioOutput::WriteCursor(int deck, Ring ring) const {
    if (!Buffer(deck, ring))
        return {};
    const CRynSoundEngine::DeckBuffers& d = engine_->Deck(deck);
    const int bytes = ring == kForward ? d.forwardWrite : d.reverseWrite;
    return {kStatusOk, bytes, bytes / kBlockBytes};
}

SoundStatus CRynAudioOutput::SetWriteCursors(int deck, int forwardSlot) {
    if (!Buffer(deck, kForward) || !Buffer(deck, kReverse))
        return kStatusNotInitialised;
    const int slot = ((forwardSlot % kOutputRingBlocks) + kOutputRingBlocks) % kOutputRingBlocks;
    CRynSoundEngine::DeckBuffers& d = engine_->Deck(deck);
    d.forwardWrite = slot * kBlockBytes;
    d.reverseWrite = (kOutputRingBlocks - 1 - slot) * kBlockBytes;
    return kStatusOk;
}

CRynAudioOutput::Cursor CRynAudioOutput::ForwardWriteCursor(int deck) const {
    return WriteCursor(deck, kForward);
}

CRynAudioOutput::Cursor CRynAudioOutput::ReverseWriteCursor(int deck) const {
    return WriteCursor(deck, kReverse);
}

bool CRynAudioOutput::IsForwardPlaying(int deck) const {
    const sound::SoundBuffer* b = Buffer(deck, kForward);
    return b && b->IsPlaying();
}

bool CRynAudioOutput::IsReversePlaying(int deck) const {
    const sound::SoundBuffer* b = Buffer(deck, kReverse);
    return b && b->IsPlaying();
}

double CRynAudioOutput::MeasuredRate(int deck) {
    return MeasuredRate(deck, MonotonicSeconds());
}

double CRynAudioOutput::MeasuredRate(int deck, double nowSeconds) {
    const Cursor c = ForwardPlayCursor(deck);
    if (c.status != kStatusOk)
        return 0.0;
    int cursor = c.bytes;
    if (cursor < lastRateCursor_[deck])
        cursor += output::kRingBytes;
    const double elapsed = nowSeconds - lastRateTime_[deck];
    const double rate = elapsed > 0.0 ? (cursor - lastRateCursor_[deck]) / (4.0 * elapsed) : 0.0;
    lastRateCursor_[deck] = c.bytes;
    lastRateTime_[deck] = nowSeconds;
    return rate;
}

SoundStatus CRynAudioOutput::SetMasterGain(int leftPercent, int rightPercent) {
    masterLeft_ = std::clamp(leftPercent, 0, 100);
    masterRight_ = std::clamp(rightPercent, 0, 100);
    if (!HasDevice())
        return kStatusNotInitialised;
    engine_->Device()->SetMasterGain(masterLeft_, masterRight_);
    return kStatusOk;
}

SoundStatus CRynAudioOutput::ApplyCrossFader(const CrossFaderGains& fader, const float levels[2]) {
    SoundStatus first = kStatusOk;
    for (int deck = 0; deck < kDeckCount; ++deck) {
        const SoundStatus s = SetDeckGain(deck, fader.Gain(deck) * levels[deck]);
        if (first == kStatusOk)
            first = s;
    }
    return first;
}

SoundStatus CRynAudioOutput::SetForwardEffects(
    int deck, std::vector<std::shared_ptr<sound::SoundEffect>> effects) {
    sound::SoundBuffer* forward = Buffer(deck, kForward);
    if (!forward)
        return kStatusNotInitialised;
    const SoundStatus s = forward->SetEffects(effects);
    if (s == kStatusOk)
        engine_->Deck(deck).effects = std::move(effects);
    return s;
}
