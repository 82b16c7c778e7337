// The Null device's clock: consumes audio at the device rate and plays
// nothing. The thread stands in for a sound card's interrupt, so it marks
// itself as the audio thread; it sleeps only between periods, never inside
// the mix.
#include <chrono>
#include <thread>
#include <vector>

#include "core/ThreadRole.h"
#include "platform/sound/SoundBackend.h"
#include "platform/sound/SoundMixer.h"

namespace sound {

namespace {

class NullClockBackend : public SoundBackend {
  public:
    NullClockBackend(PrimaryFormat format, int periodFrames)
        : format_(format), periodFrames_(periodFrames) {}
    ~NullClockBackend() override { Stop(); }

    SoundStatus Start(SoundMixer* mixer, std::atomic<std::uint64_t>* underruns) override {
        AssertNotAudioThread("NullClockBackend::Start");
        if (thread_.joinable())
            return kStatusOk;
        run_.store(true);
        thread_ = std::thread([this, mixer, underruns] { Loop(mixer, underruns); });
        return kStatusOk;
    }

    void Stop() override {
        AssertNotAudioThread("NullClockBackend::Stop");
        run_.store(false);
        if (thread_.joinable())
            thread_.join();
    }

  private:
    void Loop(SoundMixer* mixer, std::atomic<std::uint64_t>* underruns) {
        using Clock = std::chrono::steady_clock;
        // The period's memory is taken before the thread becomes the audio thread.
        // The mixer always renders stereo, a mono format on both channels.
        std::vector<std::int16_t> out(static_cast<std::size_t>(periodFrames_) * 2);
        MarkAudioThread();
        const auto period = std::chrono::duration_cast<Clock::duration>(
            std::chrono::duration<double>(static_cast<double>(periodFrames_) / format_.rate));
        auto due = Clock::now();
        while (run_.load(std::memory_order_relaxed)) {
            mixer->Mix(out.data(), periodFrames_);
            due += period;
            const auto now = Clock::now();
            if (now > due + period) {
                // More than a period late: count it and drop the lost time.
                underruns->fetch_add(1, std::memory_order_relaxed);
                due = now;
            }
            std::this_thread::sleep_until(due);
        }
    }

    PrimaryFormat format_;
    int periodFrames_;
    std::atomic<bool> run_{false};
    std::thread thread_;
};

}  // namespace

std::unique_ptr<SoundBackend> MakeNullClockBackend(PrimaryFormat format, int periodFrames) {
    return std::make_unique<NullClockBackend>(format, periodFrames);
}

}  // namespace sound
