// The keyboard poll thread: reads the held keys and hands each to the host.
// It only polls, sleeps and sends; the host's handler does the work.
#pragma once

#include <atomic>

#include "app/KeySource.h"
#include "core/EngineState.h"

constexpr int kKeyboardPollMs = 30;

// Polls `keys` every 30 ms and sends UWM_KEY_POLLED (wParam: the key code as a
// signed 8-bit value) to the host for each key held, in poll-table order.
// Ends when keyboardThreadRun is 0 or the thread is cancelled.
void RunKeyboardPollThread(SharedEngineState& engine, KeySource& keys,
                           const std::atomic<bool>& cancelled);
