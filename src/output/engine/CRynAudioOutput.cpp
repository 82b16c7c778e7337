#include "output/engine/CRynAudioOutput.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "output/engine/RingGeometry.h"
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
    engine_.reset();
    engine_ = std::make_unique<CRynSoundEngine>();
    window_ = window;
    const SoundStatus s = engine_->Open(deviceId, use3D);
    if (s == kStatusOk)
        engine_->Device()->SetMasterGain(masterLeft_, masterRight_);
    return s;
}

SoundStatus CRynAudioOutput::OpenDevice(std::unique_ptr<sound::SoundDevice> device,
                                        WindowHandle window) {
    engine_.reset();
    engine_ = std::make_unique<CRynSoundEngine>();
    window_ = window;
    const SoundStatus s = engine_->Open(std::move(device));
    if (s == kStatusOk)
        engine_->Device()->SetMasterGain(masterLeft_, masterRight_);
    return s;
}

void CRynAudioOutput::CloseDevice() {
    engine_.reset();
}

CRynSoundEngine* CRynAudioOutput::Live(int deck) const {
    if (!ValidDeck(deck) || !engine_ || !engine_->HasDevice())
        return nullptr;
    return engine_.get();
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
    CRynSoundEngine* e = Live(deck);
    return e ? e->PlayForward(deck) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::PlayReverse(int deck) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->PlayReverse(deck) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::StopForward(int deck) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->StopForward(deck) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::StopReverse(int deck) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->StopReverse(deck) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::SwitchDirection(int deck, bool toForward) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->SwitchDirection(deck, toForward) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::CreateScratch(int deck, int rate, int bytes) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->CreateScratch(deck, rate, bytes) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::PlayScratch(int deck, int offsetBytes) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->PlayScratch(deck, offsetBytes) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::EndScratch(int deck) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->EndScratch(deck) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::SetDeckGain(int deck, float gain) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->SetDeckVolume(deck, output::DeckGainToVolume(gain)) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::SetDeckPan(int deck, float pan) {
    CRynSoundEngine* e = Live(deck);
    return e ? e->SetDeckDevicePan(deck, output::DeckPanToDevice(pan)) : kStatusNotInitialised;
}

SoundStatus CRynAudioOutput::SetForwardFrequency(int deck, int hz) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).forward)
        return kStatusNotInitialised;
    requestedFrequency_[deck] = hz;
    return e->Deck(deck).forward->SetFrequency(static_cast<std::uint32_t>(hz));
}

SoundStatus CRynAudioOutput::SetReverseFrequency(int deck, int hz) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).reverse)
        return kStatusNotInitialised;
    return e->Deck(deck).reverse->SetFrequency(static_cast<std::uint32_t>(hz));
}

SoundStatus CRynAudioOutput::SetScratchFrequency(int deck, int hz) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).scratch)
        return kStatusNotInitialised;
    return e->Deck(deck).scratch->SetFrequency(static_cast<std::uint32_t>(hz));
}

int CRynAudioOutput::ForwardFrequency(int deck) const {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).forward)
        return 0;
    return static_cast<int>(e->Deck(deck).forward->Frequency());
}

SoundStatus CRynAudioOutput::SetForwardPosition(int deck, int blocks) {
    return SetForwardPositionBytes(deck, blocks * kBlockBytes);
}

SoundStatus CRynAudioOutput::SetForwardPositionBytes(int deck, int bytes) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).forward)
        return kStatusNotInitialised;
    if (bytes < 0)
        return kStatusInvalidParam;
    return e->Deck(deck).forward->SetCurrentPosition(static_cast<std::uint32_t>(bytes) / 4 * 4);
}

SoundStatus CRynAudioOutput::SetReversePosition(int deck, int blocks) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).reverse)
        return kStatusNotInitialised;
    if (blocks < 0)
        return kStatusInvalidParam;
    return e->Deck(deck).reverse->SetCurrentPosition(
        static_cast<std::uint32_t>(blocks * kBlockBytes));
}

CRynAudioOutput::Cursor CRynAudioOutput::Read(const sound::SoundBuffer* buffer, bool write) const {
    Cursor c;
    if (buffer == nullptr)
        return c;
    std::uint32_t play = 0, ahead = 0;
    c.status = buffer->GetCurrentPosition(&play, &ahead);
    c.bytes = static_cast<int>(write ? ahead : play);
    c.blocks = c.bytes / kBlockBytes;
    return c;
}

CRynAudioOutput::Cursor CRynAudioOutput::ForwardPlayCursor(int deck) const {
    CRynSoundEngine* e = Live(deck);
    return e ? Read(e->Deck(deck).forward.get(), false) : Cursor{};
}

CRynAudioOutput::Cursor CRynAudioOutput::ReversePlayCursor(int deck) const {
    CRynSoundEngine* e = Live(deck);
    return e ? Read(e->Deck(deck).reverse.get(), false) : Cursor{};
}

CRynAudioOutput::Cursor CRynAudioOutput::ScratchPlayCursor(int deck) const {
    CRynSoundEngine* e = Live(deck);
    return e ? Read(e->Deck(deck).scratch.get(), false) : Cursor{};
}

CRynAudioOutput::Cursor CRynAudioOutput::ForwardWriteCursor(int deck) const {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).forward)
        return {};
    const int bytes = e->Deck(deck).forwardWrite;
    return {kStatusOk, bytes, bytes / kBlockBytes};
}

CRynAudioOutput::Cursor CRynAudioOutput::ReverseWriteCursor(int deck) const {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).reverse)
        return {};
    const int bytes = e->Deck(deck).reverseWrite;
    return {kStatusOk, bytes, bytes / kBlockBytes};
}

bool CRynAudioOutput::IsForwardPlaying(int deck) const {
    CRynSoundEngine* e = Live(deck);
    return e && e->Deck(deck).forward && e->Deck(deck).forward->IsPlaying();
}

bool CRynAudioOutput::IsReversePlaying(int deck) const {
    CRynSoundEngine* e = Live(deck);
    return e && e->Deck(deck).reverse && e->Deck(deck).reverse->IsPlaying();
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

void CRynAudioOutput::SetCrossFaderCurve(float c) {
    // Outside -1 … +1 the wedge would have no width; garbage reads as the ramp.
    curveParameter_ = std::isfinite(c) ? std::clamp(c, -1.0f, 1.0f) : 0.0f;
    crossFader_.SetCurve(curveParameter_);
}

SoundStatus CRynAudioOutput::ApplyCrossFader(float position, const float levels[2]) {
    if (!std::isfinite(position))
        position = 0.0f;
    const int k = CrossFaderCurve::Index(static_cast<double>(position));
    crossFaderIndex_ = k;
    SoundStatus first = kStatusOk;
    for (int deck = 0; deck < kDeckCount; ++deck) {
        const float g = crossFader_.Table(deck)[k];
        crossFaderGain_[deck] = g;
        const SoundStatus s = SetDeckGain(deck, g * levels[deck]);
        if (first == kStatusOk)
            first = s;
    }
    return first;
}

SoundStatus CRynAudioOutput::SetForwardEffects(
    int deck, std::vector<std::shared_ptr<sound::SoundEffect>> effects) {
    CRynSoundEngine* e = Live(deck);
    if (!e || !e->Deck(deck).forward)
        return kStatusNotInitialised;
    const SoundStatus s = e->Deck(deck).forward->SetEffects(effects);
    if (s == kStatusOk)
        e->Deck(deck).effects = std::move(effects);
    return s;
}
