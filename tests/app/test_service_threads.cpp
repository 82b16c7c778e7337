// The service threads (tick, keyboard poll, graphs, deck information) and the
// notification threads, each against a message sink standing in for the
// window it talks to.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <vector>

#include "TestSupport.h"
#include "app/KeyboardPollThread.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "core/ServiceThreads.h"
#include "core/WorkerThread.h"
#include "output/engine/NotifyThreads.h"

namespace {

using testsupport::WaitFor;

struct Received {
    Uwm msg;
    WParam w;
    LParam l;
};

class Recorder : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        std::lock_guard lock(mutex);
        got.push_back({msg, w, l});
        if (msg == UWM_TICK && answerTicks)
            Engine().pendingTicks.fetch_sub(1);
        return 0;
    }
    int Count(Uwm msg) {
        std::lock_guard lock(mutex);
        int n = 0;
        for (const auto& r : got)
            n += r.msg == msg;
        return n;
    }
    std::vector<Received> Got() {
        std::lock_guard lock(mutex);
        return got;
    }
    bool answerTicks = true;
    std::mutex mutex;
    std::vector<Received> got;
};

class ServiceThreads : public ::testing::Test {
  protected:
    void SetUp() override { ResetEngineStateForTest(); }
    void TearDown() override { ResetEngineStateForTest(); }
};

}  // namespace

TEST_F(ServiceThreads, OverloadFollowsTicksTheInterfaceOwes) {
    SharedEngineState& e = Engine();
    Recorder mixer;
    mixer.answerTicks = true;
    e.mainMixerWindow = mixer.Handle();
    e.appInitialised.store(1);
    e.decks[0].isPlaying.store(1);

    // Nothing handled between two ticks: two outstanding set overload.
    TickOnce(e);
    EXPECT_EQ(e.pendingTicks.load(), 1);
    EXPECT_EQ(e.overload.load(), 0);
    TickOnce(e);
    EXPECT_EQ(e.pendingTicks.load(), 2);
    EXPECT_EQ(e.overload.load(), 1);

    // The interface catches up; the next tick clears overload.
    PumpMessages();
    EXPECT_EQ(e.pendingTicks.load(), 0);
    EXPECT_EQ(e.overload.load(), 1);
    TickOnce(e);
    EXPECT_EQ(e.overload.load(), 0);
    PumpMessages();

    // No deck playing: a backlog is no overload.
    e.decks[0].isPlaying.store(0);
    TickOnce(e);
    TickOnce(e);
    EXPECT_EQ(e.overload.load(), 0);
    PumpMessages();

    // A full queue while a deck plays counts as overload, until the next
    // tick finds fewer than two outstanding.
    e.decks[1].isPlaying.store(1);
    FailNextPostsForTest(1);
    TickOnce(e);
    EXPECT_EQ(e.pendingTicks.load(), 0);
    EXPECT_EQ(e.overload.load(), 0);  // set by the failed post, cleared by the count check
    PumpMessages();
}

TEST_F(ServiceThreads, TickThreadPostsOnEveryWakeAndEndsOnItsFlag) {
    SharedEngineState& e = Engine();
    Recorder mixer;
    e.mainMixerWindow = mixer.Handle();
    e.tickThreadRun.store(1);
    WorkerThread tick;
    tick.Start("tick", ThreadPriority::TimeCritical,
               [&e](const std::atomic<bool>& c) { RunTickThread(e, c); });
    e.tickWakeEvent.Set();
    ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_TICK) >= 1; }));
    e.tickThreadRun.store(0);
    e.tickWakeEvent.Set();
    tick.Join();
    EXPECT_TRUE(tick.Finished());
}

TEST_F(ServiceThreads, KeyboardPollSendsHeldKeysInTableOrder) {
    SharedEngineState& e = Engine();
    Recorder host;
    e.mainDialogWindow = host.Handle();
    StubKeySource keys;
    keys.Press('T');
    keys.Press('Q');
    keys.Press(static_cast<KeyCode>(0xBA));  // semicolon, -70
    e.keyboardThreadRun.store(1);
    WorkerThread poll;
    poll.Start("keyboard", ThreadPriority::TimeCritical,
               [&](const std::atomic<bool>& c) { RunKeyboardPollThread(e, keys, c); });
    ASSERT_TRUE(WaitFor([&] { return host.Count(UWM_KEY_POLLED) >= 3; }));
    e.keyboardThreadRun.store(0);
    poll.Join();
    auto got = host.Got();
    ASSERT_GE(got.size(), 3u);
    // Q before T before semicolon, as in the poll table; codes are signed 8-bit.
    EXPECT_EQ(static_cast<std::int8_t>(got[0].w), 'Q');
    EXPECT_EQ(static_cast<std::int8_t>(got[1].w), 'T');
    EXPECT_EQ(static_cast<std::int8_t>(got[2].w), -70);
    EXPECT_GE(keys.PollCount(), 1);
}

TEST_F(ServiceThreads, GraphsAndDeckInfoThreadsTurnEventsIntoSends) {
    SharedEngineState& e = Engine();
    Recorder mixer;
    e.mainMixerWindow = mixer.Handle();

    e.graphsThreadRun.store(1);
    WorkerThread graphs;
    graphs.Start("graphs", ThreadPriority::Normal,
                 [&e](const std::atomic<bool>& c) { RunGraphsThread(e, c); });
    // The event starts signalled: one drawing pass at once.
    ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_GRAPHS_UPDATE) >= 1; }));
    e.updateGraphsAndMetersEvent.Set();
    ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_GRAPHS_UPDATE) >= 2; }));
    e.graphsThreadRun.store(0);
    e.updateGraphsAndMetersEvent.Set();
    graphs.Join();

    DeckSharedState& deckB = e.decks[1];
    deckB.deckInfoThreadRun.store(1);
    WorkerThread info;
    info.Start("deck-info-B", ThreadPriority::BelowNormal,
               [&e](const std::atomic<bool>& c) { RunDeckInfoThread(e, 1, c); });
    ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_DECK_INFO_UPDATE) >= 1; }));
    deckB.deckInfoThreadRun.store(0);
    deckB.deckInfoEvent->Set();
    info.Join();
    for (const auto& r : mixer.Got()) {
        if (r.msg == UWM_DECK_INFO_UPDATE) {
            EXPECT_EQ(r.w, 1u);
        }
    }
}

TEST_F(ServiceThreads, NotificationThreadsSendOnlyWhilePlayingAndEndOnStop) {
    SharedEngineState& e = Engine();
    Recorder mixer;
    DeckSharedState& deckA = e.decks[0];
    {
        NotifyThreads threads(e);
        threads.Start(NotifyKind::Forward, 0, mixer.Handle());
        threads.Start(NotifyKind::Reverse, 0, mixer.Handle());

        // Forward waits for isPlaying; reverse sends regardless.
        deckA.forwardNotifyEvent.Set();
        deckA.reverseNotifyEvent.Set();
        ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_REVERSE_NOTIFY) == 1; }));
        EXPECT_EQ(mixer.Count(UWM_FORWARD_NOTIFY), 0);

        deckA.isPlaying.store(1);
        deckA.forwardNotifyEvent.Set();
        ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_FORWARD_NOTIFY) == 1; }));

        // Stopped while it waits: it ends without a further step.
        threads.Stop(NotifyKind::Forward, 0);
        ASSERT_TRUE(WaitFor([&] { return !threads.Running(NotifyKind::Forward, 0); }));
        deckA.forwardNotifyEvent.Set();
        PumpMessages(5);
        EXPECT_EQ(mixer.Count(UWM_FORWARD_NOTIFY), 1);

        // A restart while the predecessor still waits ends the predecessor:
        // one step per boundary, never two, never none.
        threads.Start(NotifyKind::Reverse, 0, mixer.Handle());
        for (int i = 0; i < 5; ++i) {
            const int before = mixer.Count(UWM_REVERSE_NOTIFY);
            deckA.reverseNotifyEvent.Set();
            ASSERT_TRUE(WaitFor([&] { return mixer.Count(UWM_REVERSE_NOTIFY) == before + 1; }));
            PumpMessages(3);
            EXPECT_EQ(mixer.Count(UWM_REVERSE_NOTIFY), before + 1);
        }
        threads.Stop(NotifyKind::Reverse, 0);
        threads.JoinAll();
        EXPECT_FALSE(threads.Running(NotifyKind::Reverse, 0));
        EXPECT_EQ(deckA.reverseThreadStop.load(), 1);
    }
}

TEST_F(ServiceThreads, JoinServesASendBlockedOnTheInterfaceThread) {
    // A notification thread in the middle of a send when shutdown joins it:
    // the join pumps, the send completes, the thread ends.
    SharedEngineState& e = Engine();
    Recorder mixer;
    NotifyThreads threads(e);
    e.decks[1].isPlaying.store(1);
    threads.Start(NotifyKind::Scratch, 1, mixer.Handle());
    e.decks[1].scratchNotifyEvent.Set();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));  // likely inside the send
    threads.Stop(NotifyKind::Scratch, 1);
    threads.JoinAll();
    EXPECT_FALSE(threads.Running(NotifyKind::Scratch, 1));
    EXPECT_LE(mixer.Count(UWM_SCRATCH_DONE), 1);
}
