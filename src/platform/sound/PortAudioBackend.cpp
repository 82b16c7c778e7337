#include "platform/sound/PortAudioBackend.h"

#include <portaudio.h>

#include "core/ThreadRole.h"
#include "platform/sound/SoundMixer.h"

namespace sound {

namespace {

std::atomic<int> g_openStreams{0};

class PortAudioBackend : public SoundBackend {
  public:
    PortAudioBackend(int deviceIndex, PrimaryFormat format)
        : device_(deviceIndex), format_(format) {}
    ~PortAudioBackend() override { Stop(); }

    SoundStatus Start(SoundMixer* mixer, std::atomic<std::uint64_t>* underruns) override {
        AssertNotAudioThread("PortAudioBackend::Start");
        if (stream_ != nullptr)
            return kStatusOk;
        mixer_ = mixer;
        underruns_ = underruns;
        const PaDeviceInfo* info = Pa_GetDeviceInfo(device_);
        if (info == nullptr || info->maxOutputChannels < 1)
            return kStatusNoDriver;
        PaStreamParameters out{};
        out.device = device_;
        out.channelCount = 2;
        out.sampleFormat = paInt16;
        out.suggestedLatency = info->defaultLowOutputLatency;
        PaError err =
            Pa_OpenStream(&stream_, nullptr, &out, format_.rate, paFramesPerBufferUnspecified,
                          paClipOff | paDitherOff, &PortAudioBackend::Callback, this);
        if (err != paNoError) {
            stream_ = nullptr;
            return kStatusFail;
        }
        g_openStreams.fetch_add(1);
        // A stream that ends without our Stop (its device or server went
        // away) reports itself here.
        Pa_SetStreamFinishedCallback(stream_, &PortAudioBackend::Finished);
        stopping_.store(false);
        failed_.store(false);
        err = Pa_StartStream(stream_);
        if (err != paNoError) {
            CloseStream();
            return kStatusFail;
        }
        return kStatusOk;
    }

    void Stop() override {
        AssertNotAudioThread("PortAudioBackend::Stop");
        if (stream_ == nullptr)
            return;
        stopping_.store(true);
        Pa_StopStream(stream_);
        CloseStream();
    }

    bool Failed() const override { return failed_.load(std::memory_order_relaxed); }

  private:
    static void Finished(void* user) {
        auto* self = static_cast<PortAudioBackend*>(user);
        if (!self->stopping_.load())
            self->failed_.store(true);
    }

    void CloseStream() {
        Pa_CloseStream(stream_);
        stream_ = nullptr;
        g_openStreams.fetch_sub(1);
    }

    // The audio callback: no locks, allocation, logging or system calls.
    static int Callback(const void*, void* output, unsigned long frames,
                        const PaStreamCallbackTimeInfo* time, PaStreamCallbackFlags flags,
                        void* user) {
        auto* self = static_cast<PortAudioBackend*>(user);
        MarkAudioThread();
        if (flags & paOutputUnderflow)
            self->underruns_->fetch_add(1, std::memory_order_relaxed);
        // Late detection: the gap since the previous callback is more than
        // twice that callback's length (plus 2 ms of scheduling slack).
        const double now = time != nullptr ? time->currentTime : 0.0;
        if (now > 0.0 && self->lastTime_ > 0.0) {
            const double expected = static_cast<double>(self->lastFrames_) / self->format_.rate;
            if (now - self->lastTime_ > 2.0 * expected + 0.002)
                self->underruns_->fetch_add(1, std::memory_order_relaxed);
        }
        self->lastTime_ = now;
        self->lastFrames_ = frames;
        self->mixer_->Mix(static_cast<std::int16_t*>(output), static_cast<int>(frames));
        return paContinue;
    }

    int device_;
    PrimaryFormat format_;
    PaStream* stream_ = nullptr;
    SoundMixer* mixer_ = nullptr;
    std::atomic<std::uint64_t>* underruns_ = nullptr;
    std::atomic<bool> stopping_{false};
    std::atomic<bool> failed_{false};
    double lastTime_ = 0.0;  // callback thread only
    unsigned long lastFrames_ = 0;
};

}  // namespace

std::unique_ptr<SoundBackend> MakePortAudioBackend(int deviceIndex, PrimaryFormat format) {
    return std::make_unique<PortAudioBackend>(deviceIndex, format);
}

int OpenPortAudioStreams() {
    return g_openStreams.load();
}

}  // namespace sound
