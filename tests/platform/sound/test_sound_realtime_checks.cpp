// The sound layer's voice and effect lists are never touched from the audio
// callback: adding, removing or swapping them takes the mixer's lock or
// allocates, so each such entry point aborts, naming itself, on a thread
// marked as the audio thread. The last test plays a real Null device whose
// own clock thread (the stand-in for a sound card's callback) runs an effect
// that sets an event: the program aborts on that thread.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "core/RealtimeDeathTest.h"
#include "core/SyncEvent.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundMixer.h"
#include "platform/sound/SoundVoice.h"

namespace {

using sound::SoundBuffer;
using sound::SoundDevice;

using rttest::OnAudioThread;
using RealtimeChecksSoundDeathTest = rttest::RealtimeDeathTest;

// An effect that does what the audio callback must never do.
class BlockingEffect : public sound::SoundEffect {
  public:
    explicit BlockingEffect(SyncEvent* event) : event_(event) {}
    void Process(float*, int, int) override { event_->Set(); }

  private:
    SyncEvent* event_;
};

TEST_F(RealtimeChecksSoundDeathTest, AddingAndRemovingVoicesAborts) {
    sound::SoundMixer mixer(sound::PrimaryFormat{});
    auto voice = std::make_unique<sound::SoundVoice>(4096, 44100);
    EXPECT_DEATH(OnAudioThread([&] { mixer.AddVoice(std::move(voice)); }),
                 "Mixora: SoundMixer::AddVoice called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&] { mixer.RemoveVoice(nullptr); }),
                 "Mixora: SoundMixer::RemoveVoice called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&] { mixer.Collect(); }),
                 "Mixora: SoundMixer::Collect called from the audio callback");
}

TEST_F(RealtimeChecksSoundDeathTest, CreatingReleasingAndSettingEffectsAborts) {
    auto device = SoundDevice::OpenNull(SoundDevice::NullClock::Manual);
    ASSERT_NE(device, nullptr);
    std::unique_ptr<SoundBuffer> buffer;
    ASSERT_EQ(device->CreateBuffer({4096, 44100}, &buffer), kStatusOk);
    EXPECT_DEATH(OnAudioThread([&] {
                     std::unique_ptr<SoundBuffer> other;
                     device->CreateBuffer({4096, 44100}, &other);
                 }),
                 "Mixora: SoundDevice::CreateBuffer called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&] { buffer.reset(); }),
                 "Mixora: SoundBuffer::~SoundBuffer called from the audio callback");
    EXPECT_DEATH(OnAudioThread([&] { buffer->SetEffects({}); }),
                 "Mixora: SoundBuffer::SetEffects called from the audio callback");
}

TEST_F(RealtimeChecksSoundDeathTest, TheNullDeviceClockIsTheAudioThread) {
    EXPECT_DEATH(
        {
            SyncEvent event;
            auto device = SoundDevice::OpenNull(SoundDevice::NullClock::Realtime);
            std::unique_ptr<SoundBuffer> buffer;
            device->CreateBuffer({4096, 44100}, &buffer);
            buffer->SetEffects({std::make_shared<BlockingEffect>(&event)});
            buffer->Play(true);
            // The clock thread aborts within a period; this only bounds the wait.
            std::this_thread::sleep_for(std::chrono::seconds(10));
        },
        "Mixora: SyncEvent::Set called from the audio callback");
}

}  // namespace
