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

class QObject;

// Message numbers 0x8001 ... 0x8041. wParam carries a deck index (0 = A,
// 1 = B) unless the message says otherwise.
enum Uwm : std::uint32_t {
    UWM_CONFIG_REFRESH = 0x8001,
    UWM_RESERVED_8002 = 0x8002,
    UWM_EQ_NUMBER_TYPE = 0x8003,
    UWM_EQ_TYPE = 0x8004,
    UWM_GRAPH_NUMBER_TYPE = 0x8005,
    UWM_SET_DIRECTION = 0x8006,
    UWM_WINDOW_CLOSED = 0x8007,
    UWM_START_SCRATCH = 0x8008,
    UWM_CREATE_DECK_BUFFERS = 0x8009,
    UWM_DIAGNOSTICS = 0x800A,
    UWM_APPLY_PAN = 0x800B,
    UWM_ASSIGN_CD_DRIVE = 0x800C,
    UWM_APPLY_EFFECT = 0x800D,
    UWM_APPLY_EFFECT_PARAMETER = 0x800E,
    UWM_3D_GRAPH_VALUE = 0x800F,
    UWM_FIRST_FILL = 0x8010,  // forward reader -> deck, posted once per run
    UWM_RELEASE_DECK = 0x8011,
    UWM_BACKWARD_FLAGS = 0x8012,  // backward reader -> deck, per block
    UWM_FORWARD_FLAGS = 0x8013,   // forward reader -> deck, per block
    UWM_GRAPHS_PRIORITY = 0x8014,
    UWM_DECK_VALUE = 0x8015,
    UWM_READER_ENDED = 0x8016,  // forward reader -> deck, at its end
    UWM_RESERVED_8017 = 0x8017,
    UWM_END_OF_TRACK = 0x8018,  // decoder or CD reader -> deck
    UWM_LATENCY_MAXIMUM = 0x8019,
    UWM_LATENCY_QUARTER_REQUEST = 0x801A,  // equalizer window -> deck
    UWM_EQ_BAND_GAIN = 0x801B,
    UWM_DEVICE_EQ_BANDS = 0x801C,
    UWM_DEVICE_EQ_ON = 0x801D,
    UWM_SHUTDOWN = 0x801E,
    UWM_SEARCH_ENTER = 0x801F,  // play-list search field's Enter key
    UWM_KEY_POLLED = 0x8020,
    UWM_KEY_DOWN = 0x8021,
    UWM_KEY_UP = 0x8022,
    UWM_GRAPH_DOUBLE_CLICK = 0x8023,
    UWM_MINIMISE_ALL = 0x8024,
    UWM_SET_SOUND_DEVICE = 0x8025,
    UWM_FORWARD_PLAY = 0x8026,
    UWM_REVERSE_PLAY = 0x8027,
    UWM_START_FORWARD_THREAD = 0x8028,
    UWM_START_REVERSE_THREAD = 0x8029,
    UWM_FORWARD_NOTIFY = 0x802A,
    UWM_REVERSE_NOTIFY = 0x802B,
    UWM_SCRATCH_DONE = 0x802C,
    UWM_LOAD_AND_PLAY = 0x802D,  // play list -> deck
    UWM_PRIME_DECK = 0x802E,
    UWM_RESTORE_ALL = 0x802F,
    UWM_REFRESH_CD_DRIVES = 0x8030,
    UWM_LISTENER_POSITION = 0x8031,
    UWM_SET_REVERSE_POSITION = 0x8032,
    UWM_HELP_BUTTONS = 0x8033,
    UWM_SET_FORWARD_POSITION = 0x8034,
    UWM_METERS_THREAD = 0x8035,
    UWM_SET_REVERSE_FREQUENCY = 0x8036,
    UWM_SET_FORWARD_FREQUENCY = 0x8037,
    UWM_TITLE_BARS = 0x8038,
    UWM_PLAY_SCRATCH = 0x8039,
    UWM_STOP_DECK = 0x803A,
    UWM_STOP_REVERSE = 0x803B,
    UWM_TICK = 0x803C,
    UWM_DECK_INFO_UPDATE = 0x803D,
    UWM_GRAPHS_UPDATE = 0x803E,
    UWM_TRACK_NUMBER = 0x803F,  // play list -> deck: refresh the track number
    UWM_TRACK_INFO = 0x8040,    // play list -> deck: refresh the track information
    UWM_LATENCY_QUARTER = 0x8041,
};

constexpr std::uint32_t kUwmFirst = 0x8001;
constexpr std::uint32_t kUwmLast = 0x8041;

// The message's name ("UWM_TICK"), or "UWM_0x8002"-style for reserved numbers.
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
// "pump" of shutdown and of StopForwardReader).
void PumpMessages(int maxRounds = 1);
