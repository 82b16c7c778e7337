// Application messages: the only hand-over between worker threads and windows.
//
// Every window that takes messages registers itself and gets a WindowHandle
// (a small nonzero number, 0 = none). Worker threads hold handles, never
// pointers, so a message to a window that has gone is simply dropped.
//
// "Send" runs the receiver's handler and returns its result. From the
// receiver's own thread it is a direct call; from any other thread the
// message is queued through Qt's event system and the sender blocks until
// the handler has run (or the receiver is destroyed, which answers 0).
// "Post" queues the message and returns at once.
#pragma once

#include <cstdint>

#include "core/UwmList.h"

class QObject;

// Message numbers 0x8001 ... 0x8041, from the one list in UwmList.h.
enum Uwm : std::uint32_t {
#define MIXORA_UWM_ENUM(name, number) name = number,
    MIXORA_UWM_LIST(MIXORA_UWM_ENUM)
#undef MIXORA_UWM_ENUM
};

constexpr std::uint32_t kUwmFirst = 0x8001;
constexpr std::uint32_t kUwmLast = 0x8041;

// The message's name ("UWM_TICK"); "UWM_UNKNOWN" outside the list.
const char* UwmName(std::uint32_t msg);

using WParam = std::uintptr_t;
using LParam = std::intptr_t;
using LResult = std::intptr_t;
using WindowHandle = std::uint32_t;  // 0 = no window

// Implemented by everything that takes application messages.
class MessageReceiver {
  public:
    virtual ~MessageReceiver() = default;
    virtual LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) = 0;
};

// Registers a receiver living on `object`'s thread. Unregister before the
// object dies (CRynWindow and MessageSink do both for you). Unregistering
// answers 0 to every send still waiting for this receiver.
WindowHandle RegisterReceiver(QObject* object, MessageReceiver* receiver);
void UnregisterReceiver(WindowHandle handle);
bool IsWindow(WindowHandle handle);

// Blocks until the handler has run; 0 when the receiver does not exist or
// goes away before handling it.
LResult SendAppMessage(WindowHandle target, Uwm msg, WParam wParam = 0, LParam lParam = 0);

// One attempt to queue; false when the receiver does not exist or the post
// failure hook (tests) says the queue is full.
bool PostAppMessage(WindowHandle target, Uwm msg, WParam wParam = 0, LParam lParam = 0);

// Posts until the post succeeds or the receiver is gone (sleeping 1 ms
// between attempts).
void PostAppMessageRetry(WindowHandle target, Uwm msg, WParam wParam = 0, LParam lParam = 0);

// Tests: make the next `count` posts fail as a full queue would.
void FailNextPostsForTest(int count);

// Runs every queued message and event of the calling thread once (the
// "pump" of shutdown and of WorkerThread::Join).
void PumpMessages(int maxRounds = 1);
