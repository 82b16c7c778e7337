// A device backend for tests that can be "unplugged": a thread pulls 256
// frames from the mixer every 5 ms until Stall() is called, after which it
// keeps running but takes no more audio (as a stream whose server died), or
// Fail() makes it report itself failed.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/ThreadRole.h"
#include "platform/sound/SoundBackend.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundMixer.h"

namespace testsupport {

class StallableBackend : public sound::SoundBackend {
  public:
    explicit StallableBackend(std::shared_ptr<std::atomic<bool>> stalled,
                              std::shared_ptr<std::atomic<bool>> failed = nullptr)
        : stalled_(std::move(stalled)), failed_(std::move(failed)) {}
    ~StallableBackend() override { Stop(); }

    SoundStatus Start(sound::SoundMixer* mixer, std::atomic<std::uint64_t>*) override {
        run_.store(true);
        thread_ = std::thread([this, mixer] {
            std::vector<std::int16_t> out(512);
            MarkAudioThread();
            while (run_.load()) {
                if (!stalled_->load())
                    mixer->Mix(out.data(), 256);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
        return kStatusOk;
    }
    void Stop() override {
        run_.store(false);
        if (thread_.joinable())
            thread_.join();
    }
    bool Failed() const override { return failed_ && failed_->load(); }

  private:
    std::shared_ptr<std::atomic<bool>> stalled_;
    std::shared_ptr<std::atomic<bool>> failed_;
    std::atomic<bool> run_{false};
    std::thread thread_;
};

// A started device on a StallableBackend.
inline std::unique_ptr<sound::SoundDevice> StallableDevice(
    const std::string& id, std::shared_ptr<std::atomic<bool>> stalled,
    std::shared_ptr<std::atomic<bool>> failed = nullptr) {
    auto device = std::make_unique<sound::SoundDevice>(
        id, id + " (test card)", sound::PrimaryFormatFor(false),
        std::make_unique<StallableBackend>(std::move(stalled), std::move(failed)));
    if (device->Start() != kStatusOk)
        return nullptr;
    return device;
}

}  // namespace testsupport
