// Application messages and events between worker threads and a receiver on
// the test's (user-interface) thread.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/SyncEvent.h"

namespace {

class Recorder : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        last = msg;
        ++count;
        return static_cast<LResult>(w) + l;
    }
    std::atomic<int> count{0};
    std::atomic<std::uint32_t> last{0};
};

}  // namespace

TEST(AppMessages, SendPostAndGoneReceivers) {
    Recorder r;
    // Same thread: a direct call with the handler's result.
    EXPECT_EQ(SendAppMessage(r.Handle(), UWM_TICK, 2, 3), 5);

    // From a worker: blocks until the UI thread has run the handler.
    std::atomic<LResult> answer{-1};
    std::thread worker([&] { answer = SendAppMessage(r.Handle(), UWM_FORWARD_NOTIFY, 40, 2); });
    ASSERT_TRUE(testsupport::WaitFor([&] { return answer.load() != -1; }));
    worker.join();
    EXPECT_EQ(answer.load(), 42);
    EXPECT_EQ(r.last.load(), UWM_FORWARD_NOTIFY);

    // Posts queue until the event loop runs.
    int before = r.count;
    EXPECT_TRUE(PostAppMessage(r.Handle(), UWM_KEY_DOWN, 1, 0));
    EXPECT_EQ(r.count, before);
    PumpMessages();
    EXPECT_EQ(r.count, before + 1);

    // A full queue (simulated) fails one post; the retrying post goes through.
    FailNextPostsForTest(1);
    EXPECT_FALSE(PostAppMessage(r.Handle(), UWM_TICK));
    PostAppMessageRetry(r.Handle(), UWM_TICK);
    PumpMessages();
    EXPECT_EQ(r.count, before + 2);

    // No receiver: sends answer 0 at once, posts fail.
    EXPECT_EQ(SendAppMessage(0, UWM_TICK, 1, 1), 0);
    EXPECT_FALSE(PostAppMessage(9999999, UWM_TICK));
    EXPECT_STREQ(UwmName(UWM_LATENCY_QUARTER), "UWM_LATENCY_QUARTER");
}

TEST(AppMessages, SendToReceiverDestroyedWhileWaiting) {
    auto* r = new Recorder;
    WindowHandle h = r->Handle();
    std::atomic<LResult> answer{-1};
    std::thread worker([&] { answer = SendAppMessage(h, UWM_TICK, 7, 0); });
    // Destroy the receiver before its queue runs: the sender is released with 0.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    delete r;
    worker.join();
    EXPECT_EQ(answer.load(), 0);
}

TEST(SyncEvent, AutoAndManualReset) {
    SyncEvent autoEvent(SyncEvent::Kind::AutoReset, true, "Update Graphs And Meters Event");
    EXPECT_TRUE(autoEvent.Wait(0));
    EXPECT_FALSE(autoEvent.Wait(0));  // cleared by the wait
    SyncEvent manual(SyncEvent::Kind::ManualReset);
    manual.Set();
    EXPECT_TRUE(manual.Wait(0));
    EXPECT_TRUE(manual.Wait(0));  // stays set
    manual.Reset();
    EXPECT_FALSE(manual.Wait(10));

    std::atomic<bool> woke{false};
    std::thread t([&] {
        autoEvent.Wait();
        woke = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(woke);
    autoEvent.Set();
    t.join();
    EXPECT_TRUE(woke);
}
