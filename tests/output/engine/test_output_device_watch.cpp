// The output's watch over its device: a lost device falls back to the Null
// device with the decks' buffers made again at their rates, the owner hears
// of it first, the watch looks for the device every two seconds and opens it
// again when it is listed; the other output is never touched.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QThread>

#include "core/EngineState.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/OutputDeviceWatch.h"
#include "platform/sound/SoundSystem.h"
#include "platform/sound/StallableBackend.h"

namespace {

class OutputDeviceWatchTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetEngineStateForTest();
        ASSERT_EQ(main.OpenDevice(testsupport::StallableDevice("test:card", stalled), 0),
                  kStatusOk);
        ASSERT_EQ(main.CreateDeckBuffers(0, 48000), kStatusOk);
        ASSERT_EQ(other.OpenDevice(testsupport::StallableDevice("test:phones", otherStalled), 0),
                  kStatusOk);
        ASSERT_EQ(other.CreateDeckBuffers(0, 44100), kStatusOk);
        otherDevice = other.Device();

        OutputDeviceWatch::Directory d;
        d.refresh = [this] {
            ++refreshes;
            return true;
        };
        d.listed = [this](const std::string& id) { return listed && id == "test:card"; };
        d.open = [this](const std::string& id, std::unique_ptr<sound::SoundDevice>* device) {
            ++opens;
            *device = testsupport::StallableDevice(id, std::make_shared<std::atomic<bool>>(false));
            return kStatusOk;
        };
        watch = std::make_unique<OutputDeviceWatch>(main, d);
        watch->onLost = [this](const std::string& description) {
            events.push_back("lost " + description + " on " + main.Device()->Identifier());
        };
        watch->onBack = [this](const std::string& description) {
            events.push_back("back " + description + " on " + main.Device()->Identifier());
        };
        watch->onBuffersRebuilt = [this](int deck) {
            events.push_back("rebuilt " + std::to_string(deck) + " at " +
                             std::to_string(main.SoundEngine()->Deck(deck).rate));
        };
        watch->Watch("test:card");
    }

    // Checks every 250 ms of a fake clock while the real device runs, until
    // the watch calls the device lost (true) or 3 s pass.
    bool CheckUntilLost() {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 3000) {
            watch->Check(now);
            if (watch->Lost())
                return true;
            now += OutputDeviceWatch::kCheckMs;
            QThread::msleep(50);
        }
        return false;
    }

    std::shared_ptr<std::atomic<bool>> stalled = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<std::atomic<bool>> otherStalled = std::make_shared<std::atomic<bool>>(false);
    CRynAudioOutput main;
    CRynAudioOutput other;
    sound::SoundDevice* otherDevice = nullptr;
    std::unique_ptr<OutputDeviceWatch> watch;
    std::vector<std::string> events;
    int refreshes = 0;
    int opens = 0;
    bool listed = false;
    double now = 0;
};

TEST_F(OutputDeviceWatchTest, APlayingDeviceIsLeftAlone) {
    for (int i = 0; i < 6; ++i) {
        watch->Check(now);
        now += OutputDeviceWatch::kCheckMs;
        QThread::msleep(100);
    }
    EXPECT_FALSE(watch->Lost());
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(main.Device()->Identifier(), "test:card");
    EXPECT_EQ(refreshes, 0);
}

TEST_F(OutputDeviceWatchTest, ALostDeviceFallsBackToNullAndComesBackWhenListed) {
    stalled->store(true);
    ASSERT_TRUE(CheckUntilLost());
    // The owner heard of it while the old device was still in place; the
    // output then went to the Null device with deck A's buffers at 48000
    // Hz again (deck B had none).
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0], "lost test:card (test card) on test:card");
    EXPECT_EQ(events[1], "rebuilt 0 at 48000");
    EXPECT_EQ(main.Device()->Identifier(), "null");
    EXPECT_EQ(watch->LostDescription(), "test:card (test card)");
    EXPECT_EQ(watch->Losses(), 1);
    ASSERT_NE(main.SoundEngine()->Deck(0).forward, nullptr);
    EXPECT_EQ(main.SoundEngine()->Deck(1).forward, nullptr);

    // Not listed yet: looked for every two seconds, not opened.
    const double lostAt = now;
    watch->Check(lostAt + 1000);
    EXPECT_EQ(refreshes, 0);
    watch->Check(lostAt + OutputDeviceWatch::kRetryMs);
    EXPECT_EQ(refreshes, 1);
    watch->Check(lostAt + OutputDeviceWatch::kRetryMs + 1000);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(opens, 0);
    EXPECT_TRUE(watch->Lost());

    listed = true;
    watch->Check(lostAt + 2 * OutputDeviceWatch::kRetryMs);
    EXPECT_EQ(opens, 1);
    EXPECT_FALSE(watch->Lost());
    EXPECT_EQ(watch->Returns(), 1);
    EXPECT_EQ(main.Device()->Identifier(), "test:card");
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[2], "rebuilt 0 at 48000");
    EXPECT_EQ(events[3], "back test:card (test card) on test:card");

    // The other output kept its device and its buffers throughout.
    EXPECT_EQ(other.Device(), otherDevice);
    EXPECT_NE(other.SoundEngine()->Deck(0).forward, nullptr);
    EXPECT_FALSE(other.Device()->Lost());
}

TEST_F(OutputDeviceWatchTest, NothingIsWatchedForTheNullDeviceOrNoChoice) {
    watch->Watch(sound::kNullDeviceId);
    stalled->store(true);
    EXPECT_FALSE(CheckUntilLost());
    watch->Watch("");
    EXPECT_FALSE(CheckUntilLost());
    EXPECT_TRUE(events.empty());
}

}  // namespace
