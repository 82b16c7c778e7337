#include "core/ThreadRole.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>

namespace {
thread_local bool t_isAudioThread = false;
}

void MarkAudioThread() {
    t_isAudioThread = true;
}
bool IsAudioThread() {
    return t_isAudioThread;
}

void AssertNotAudioThread() {
#ifndef NDEBUG
    if (t_isAudioThread) {
        std::fputs("Mixora: blocking call from the audio callback\n", stderr);
        std::abort();
    }
#endif
}
