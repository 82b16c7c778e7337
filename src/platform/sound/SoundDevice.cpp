#include "platform/sound/SoundDevice.h"

#include <chrono>
#include <new>

#include "core/ThreadRole.h"
#include "platform/sound/SoundMixer.h"
#include "platform/sound/SoundVoice.h"

namespace sound {

namespace {
// The notification service wakes every 2 ms: a block lasts 26.7 ms, so an
// event is set at most 2 ms after the mixer passed its offset.
constexpr auto kServicePeriod = std::chrono::milliseconds(2);
}  // namespace

PrimaryFormat PrimaryFormatFor(bool use3D) {
    PrimaryFormat f;
    if (use3D) {
        f.channels = 1;
        f.rate = 22050;
    }
    return f;
}

std::unique_ptr<SoundDevice> SoundDevice::OpenNull(NullClock clock, bool use3D) {
    AssertNotAudioThread("SoundDevice::OpenNull");
    const PrimaryFormat format = PrimaryFormatFor(use3D);
    std::unique_ptr<SoundBackend> backend;
    if (clock == NullClock::Realtime)
        backend = MakeNullClockBackend(format);
    auto device = std::make_unique<SoundDevice>(
        clock == NullClock::Realtime ? "null" : "null:manual",
        clock == NullClock::Realtime ? "Null Output (silent)" : "Null Output (manual clock)",
        format, std::move(backend));
    if (device->Start() != kStatusOk)
        return nullptr;
    return device;
}

SoundDevice::SoundDevice(std::string identifier, std::string description, PrimaryFormat format,
                         std::unique_ptr<SoundBackend> backend)
    : identifier_(std::move(identifier)),
      description_(std::move(description)),
      format_(format),
      mixer_(std::make_shared<SoundMixer>(format)),
      backend_(std::move(backend)) {
    if (format.channels == 1)
        listener_ = mixer_->Listener();
}

SoundDevice::~SoundDevice() {
    AssertNotAudioThread("SoundDevice::~SoundDevice");
    if (backend_)
        backend_->Stop();
    serviceRun_.store(false);
    if (service_.joinable())
        service_.join();
    // Buffers still held elsewhere keep the mixer; it is no longer driven.
}

SoundStatus SoundDevice::Start() {
    AssertNotAudioThread("SoundDevice::Start");
    if (started_)
        return kStatusOk;
    if (backend_) {
        const SoundStatus s = backend_->Start(mixer_.get(), &underruns_);
        if (s != kStatusOk)
            return s;
        serviceRun_.store(true);
        service_ = std::thread([this] { ServiceLoop(); });
    }
    started_ = true;
    return kStatusOk;
}

void SoundDevice::ServiceLoop() {
    // The watchdog: the mixer's frame count must move while the backend runs.
    using Clock = std::chrono::steady_clock;
    const auto lostAfter = std::chrono::milliseconds(kLostAfterMs);
    std::uint64_t lastFrames = mixer_->FramesRendered();
    auto lastMove = Clock::now();
    while (serviceRun_.load(std::memory_order_relaxed)) {
        std::this_thread::sleep_for(kServicePeriod);
        mixer_->DispatchNotifications();
        const std::uint64_t frames = mixer_->FramesRendered();
        const auto now = Clock::now();
        if (frames != lastFrames) {
            lastFrames = frames;
            lastMove = now;
        } else if (now - lastMove > lostAfter) {
            lost_.store(true, std::memory_order_relaxed);
        }
        if (backend_->Failed())
            lost_.store(true, std::memory_order_relaxed);
    }
}

SoundStatus SoundDevice::CreateBuffer(const BufferDesc& desc,
                                      std::unique_ptr<SoundBuffer>* buffer) {
    AssertNotAudioThread("SoundDevice::CreateBuffer");
    if (buffer == nullptr)
        return kStatusInvalidParam;
    buffer->reset();
    if (desc.bytes < kMinBufferBytes)
        return kStatusBufferTooSmall;
    if (desc.bytes % kFrameBytes != 0 || desc.bytes > kMaxBufferBytes)
        return kStatusInvalidParam;
    if (desc.frequency < kFrequencyMin || desc.frequency > kFrequencyMax)
        return kStatusInvalidParam;
    std::unique_ptr<SoundVoice> voice;
    try {
        voice = std::make_unique<SoundVoice>(desc.bytes, desc.frequency);
    } catch (const std::bad_alloc&) {
        return kStatusOutOfMemory;
    }
    SoundVoice* raw = voice.get();
    const SoundStatus s = mixer_->AddVoice(std::move(voice));
    if (s != kStatusOk)
        return s;
    *buffer = std::make_unique<SoundBuffer>(mixer_, raw);
    return kStatusOk;
}

void SoundDevice::SetTap(MixTap* tap) {
    mixer_->SetTap(tap);
}

void SoundDevice::SetMasterGain(int leftPercent, int rightPercent) {
    mixer_->SetMasterGain(leftPercent, rightPercent);
}

std::uint64_t SoundDevice::FramesRendered() const {
    return mixer_->FramesRendered();
}

bool SoundDevice::Render(int frames, std::int16_t* out) {
    AssertNotAudioThread("SoundDevice::Render");
    if (backend_ != nullptr || frames < 0 || out == nullptr)
        return false;
    mixer_->Mix(out, frames);
    mixer_->DispatchNotifications();
    mixer_->Collect();
    return true;
}

}  // namespace sound
