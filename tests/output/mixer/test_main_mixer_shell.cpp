// The main mixer's shell: notification threads started and stopped by its
// messages, the mix step with display pacing, and the tick answer, with a
// counting sink in place of the sound engine.
#include <gtest/gtest.h>

#include <array>

#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "core/ServiceThreads.h"
#include "output/mixer/CRynMainMixer.h"

namespace {

using testsupport::WaitFor;

class CountingSink : public MixStepSink {
  public:
    void WriteDeckBlock(int deck) override { ++blocks[deck]; }
    void PlayForward(int deck, bool play) override { forwardPlaying[deck] = play; }
    std::array<int, 2> blocks{};
    std::array<bool, 2> forwardPlaying{};
};

class Host : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam, LParam) override {
        if (msg == UWM_SHUTDOWN)
            ++shutdowns;
        return 0;
    }
    int shutdowns = 0;
};

class MainMixerShell : public ::testing::Test {
  protected:
    void SetUp() override { ResetEngineStateForTest(); }
    void TearDown() override { ResetEngineStateForTest(); }

    // One device block boundary on `deck`; returns once its mix step ran.
    static bool Boundary(CRynMainMixer& mixer, int deck) {
        const int before = mixer.MixSteps(deck);
        Engine().decks[deck].forwardNotifyEvent.Set();
        return WaitFor([&] { return mixer.MixSteps(deck) == before + 1; });
    }
};

}  // namespace

TEST_F(MainMixerShell, DisplayPacingFollowsThePlayingDecks) {
    SharedEngineState& e = Engine();
    Host host;
    CRynMainMixer mixer;
    CountingSink sink;
    mixer.SetMixStepSink(&sink);
    mixer.Initialise(host.Handle(), nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(e.mainMixerWindow, mixer.Handle());
    e.updateGraphsAndMetersEvent.Reset();

    // Deck A alone: every forward notification asks for a drawing pass.
    SendAppMessage(mixer.Handle(), UWM_START_FORWARD_THREAD, 0, 0);
    EXPECT_EQ(e.decks[0].isPlaying.load(), 1);
    EXPECT_TRUE(sink.forwardPlaying[0]);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(Boundary(mixer, 0));
        EXPECT_TRUE(e.updateGraphsAndMetersEvent.Wait(0)) << "notification " << i;
    }
    EXPECT_EQ(sink.blocks[0], 5);

    // Both decks: every fourth notification, counted across both decks.
    SendAppMessage(mixer.Handle(), UWM_START_FORWARD_THREAD, 1, 0);
    std::string pattern;
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(Boundary(mixer, i % 2));
        pattern += e.updateGraphsAndMetersEvent.Wait(0) ? 'G' : '.';
    }
    EXPECT_EQ(pattern, "...G...G");

    // Deck B stops while its thread waits: the thread ends, no further step.
    SendAppMessage(mixer.Handle(), UWM_STOP_DECK, 1, 0);
    EXPECT_EQ(e.decks[1].isPlaying.load(), 0);
    EXPECT_FALSE(sink.forwardPlaying[1]);
    ASSERT_TRUE(WaitFor([&] { return !mixer.Notifications().Running(NotifyKind::Forward, 1); }));
    const int stepsB = mixer.MixSteps(1);
    e.decks[1].forwardNotifyEvent.Set();
    PumpMessages(5);
    EXPECT_EQ(mixer.MixSteps(1), stepsB);

    // Deck A alone again: every notification once more.
    ASSERT_TRUE(Boundary(mixer, 0));
    EXPECT_TRUE(e.updateGraphsAndMetersEvent.Wait(0));
    SendAppMessage(mixer.Handle(), UWM_STOP_DECK, 0, 0);
}

TEST_F(MainMixerShell, TicksAnsweredByTheLampClearOverload) {
    SharedEngineState& e = Engine();
    Host host;
    CRynMainMixer mixer;
    mixer.Initialise(host.Handle(), nullptr, nullptr, nullptr, nullptr);
    e.appInitialised.store(1);
    e.decks[0].isPlaying.store(1);

    // Two ticks while the interface is busy: overload.
    TickOnce(e);
    TickOnce(e);
    EXPECT_EQ(e.overload.load(), 1);
    const bool lamp = mixer.OverloadLampOn();
    // The mixer catches up: each tick flips the lamp and is counted off.
    PumpMessages();
    EXPECT_EQ(e.pendingTicks.load(), 0);
    EXPECT_EQ(mixer.OverloadLampOn(), lamp);  // flipped twice
    TickOnce(e);
    EXPECT_EQ(e.overload.load(), 0);
    PumpMessages();
}

TEST_F(MainMixerShell, ClosingTheMixerAsksTheHostToShutDown) {
    Host host;
    CRynMainMixer mixer;
    mixer.Initialise(host.Handle(), nullptr, nullptr, nullptr, nullptr);
    mixer.show();
    mixer.close();
    EXPECT_EQ(host.shutdowns, 1);
    EXPECT_TRUE(mixer.isVisible());  // the host, not the close box, ends it
}
