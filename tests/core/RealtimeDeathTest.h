// Shared by the death tests of the audio-thread checks: a fixture that runs
// each death test in a freshly started copy of the test program
// ("threadsafe" style) and skips when the checks are compiled out, and a
// helper that makes a call on a thread marked as the audio thread.
#pragma once

#include <gtest/gtest.h>

#include <thread>

#include "core/ThreadRole.h"

namespace rttest {

// Runs `call` on a new thread marked as the audio thread and waits for it.
template <typename F>
void OnAudioThread(F call) {
    std::thread t([&call] {
        MarkAudioThread();
        call();
    });
    t.join();
}

class RealtimeDeathTest : public ::testing::Test {
  protected:
    void SetUp() override {
#if !(defined(MIXORA_RT_CHECKS) && MIXORA_RT_CHECKS)
        GTEST_SKIP() << "built without MIXORA_RT_CHECKS: the checks compile to nothing";
#endif
        GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

}  // namespace rttest
