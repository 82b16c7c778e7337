// The audio callback never blocks: every waiting, locking or allocating
// entry point of the core aborts, naming itself, when a thread marked as the
// audio thread calls it. Each death test runs in a freshly started copy of
// the test program ("threadsafe" style), where one thread marks itself and
// makes the forbidden call.
#include <gtest/gtest.h>

#include <thread>

#include "core/AppMessages.h"
#include "core/RealtimeDeathTest.h"
#include "core/SyncEvent.h"
#include "core/ThreadRole.h"
#include "core/WorkerThread.h"

namespace {

using rttest::OnAudioThread;
using RealtimeChecksDeathTest = rttest::RealtimeDeathTest;

TEST(RealtimeChecks, OnlyTheMarkedThreadIsTheAudioThread) {
    bool marked = false;
    bool before = true;
    std::thread t([&] {
        before = IsAudioThread();
        MarkAudioThread();
        marked = IsAudioThread();
        // Plain reads and atomics stay allowed; only the checked calls abort.
    });
    t.join();
    EXPECT_FALSE(before);
    EXPECT_TRUE(marked);
    EXPECT_FALSE(IsAudioThread());
    // Unmarked threads pass every check.
    SyncEvent e(SyncEvent::Kind::ManualReset);
    e.Set();
    EXPECT_TRUE(e.Wait(0));
}

TEST_F(RealtimeChecksDeathTest, WaitingOnAnEventAborts) {
    EXPECT_DEATH(OnAudioThread([] {
                     SyncEvent e;
                     e.Wait(0);
                 }),
                 "Mixora: SyncEvent::Wait called from the audio callback");
}

TEST_F(RealtimeChecksDeathTest, SettingAnEventAborts) {
    SyncEvent e;
    EXPECT_DEATH(OnAudioThread([&e] { e.Set(); }),
                 "Mixora: SyncEvent::Set called from the audio callback");
}

TEST_F(RealtimeChecksDeathTest, PostingAMessageAborts) {
    EXPECT_DEATH(OnAudioThread([] { PostAppMessage(0, UWM_TICK); }),
                 "Mixora: PostAppMessage called from the audio callback");
    EXPECT_DEATH(OnAudioThread([] { PostAppMessageRetry(0, UWM_TICK); }),
                 "Mixora: PostAppMessageRetry called from the audio callback");
}

TEST_F(RealtimeChecksDeathTest, SendingAMessageAborts) {
    EXPECT_DEATH(OnAudioThread([] { SendAppMessage(0, UWM_TICK); }),
                 "Mixora: SendAppMessage called from the audio callback");
}

TEST_F(RealtimeChecksDeathTest, ReceiversAndThePumpAbort) {
    EXPECT_DEATH(OnAudioThread([] { UnregisterReceiver(0); }),
                 "Mixora: UnregisterReceiver called from the audio callback");
    EXPECT_DEATH(OnAudioThread([] { PumpMessages(); }),
                 "Mixora: PumpMessages called from the audio callback");
}

TEST_F(RealtimeChecksDeathTest, StartingAWorkerThreadAborts) {
    EXPECT_DEATH(OnAudioThread([] {
                     WorkerThread w;
                     w.Start("rt-test", ThreadPriority::Normal, [](const auto&) {});
                 }),
                 "Mixora: WorkerThread::Start called from the audio callback");
}

}  // namespace
