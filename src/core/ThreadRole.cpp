#include "core/ThreadRole.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {
thread_local bool t_isAudioThread = false;
}  // namespace

void MarkAudioThread() {
    t_isAudioThread = true;
}

bool IsAudioThread() {
    return t_isAudioThread;
}

#if defined(MIXORA_RT_CHECKS) && MIXORA_RT_CHECKS
namespace {
// Writes straight to the descriptor: no stdio buffer, no allocation.
void WriteError(const char* text) {
    std::size_t left = std::strlen(text);
    while (left > 0) {
        const ssize_t n = ::write(STDERR_FILENO, text, left);
        if (n <= 0)
            return;
        text += n;
        left -= static_cast<std::size_t>(n);
    }
}
}  // namespace

void AssertNotAudioThread(const char* entryPoint) {
    if (!t_isAudioThread)
        return;
    WriteError("Mixora: ");
    WriteError(entryPoint);
    WriteError(" called from the audio callback\n");
    std::abort();
}
#endif
