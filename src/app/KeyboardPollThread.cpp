#include "app/KeyboardPollThread.h"

#include <chrono>
#include <cstdint>
#include <thread>

void RunKeyboardPollThread(SharedEngineState& e, KeySource& keys,
                           const std::atomic<bool>& cancelled) {
    while (e.keyboardThreadRun.load() != 0 && !cancelled.load()) {
        for (KeyCode key : keys.Poll()) {
            if (e.keyboardThreadRun.load() == 0 || cancelled.load())
                return;
            // Sign-extended, so the host reads it back with a cast to int8.
            SendAppMessage(e.mainDialogWindow, UWM_KEY_POLLED,
                           static_cast<WParam>(static_cast<std::intptr_t>(key)), 0);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(kKeyboardPollMs));
    }
}
