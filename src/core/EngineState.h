// The process-wide engine record shared by every window and worker thread.
//
// Worker threads read the 32-bit flags without locks; every write is an
// atomic exchange (store). Window handles are written once during start-up.
// Index 0 is deck A, index 1 is deck B, everywhere.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "core/AppMessages.h"
#include "core/PcmFormat.h"
#include "core/SyncEvent.h"

class CRynFileDecoder;
class CRynKeyboard;
class WorkerThread;

struct DeckSharedState {
    WindowHandle deckWindow = 0;  // target of reader and end-of-stream messages

    std::atomic<std::int32_t> isPlaying{0};       // needle down and the deck is audible
    std::atomic<std::int32_t> sourceType{0};      // 0 = CD mode, 1 = File mode
    std::atomic<std::int32_t> sampleRate{44100};  // stream rate, Hz
    std::atomic<std::int32_t> writeAheadBlocks{0};
    std::atomic<std::int32_t> latencyBlocks{0};
    std::atomic<std::int32_t> metersOff{0};
    std::atomic<std::int32_t> cdDrive{-1};             // -1 = none
    std::atomic<std::int32_t> outputFrequency{44100};  // Hz, after tempo

    // Notification threads: the device signals these at block boundaries.
    SyncEvent forwardNotifyEvent{SyncEvent::Kind::AutoReset, false};
    SyncEvent reverseNotifyEvent{SyncEvent::Kind::AutoReset, false};
    SyncEvent scratchNotifyEvent{SyncEvent::Kind::AutoReset, false};
    std::atomic<std::int32_t> forwardThreadStop{0};
    std::atomic<std::int32_t> reverseThreadStop{0};
    std::atomic<std::int32_t> scratchThreadStop{0};

    // Deck information thread ("Deck65Update Deck Info Event" for deck A).
    std::unique_ptr<SyncEvent> deckInfoEvent;
    std::atomic<std::int32_t> deckInfoThreadRun{0};
    // The running deck information thread, or none. Owned by the deck
    // information window; read and written on the user-interface thread only.
    WorkerThread* deckInfoThread = nullptr;

    // Play-list duration probe wake event.
    SyncEvent playListWakeEvent{SyncEvent::Kind::AutoReset, false};
    std::atomic<std::int32_t> playListThreadRun{0};

    // Disc buffer: slots handed between reader and consumer by their fill
    // flags (1 = holds a block not yet consumed, 0 = free).
    std::array<PcmBlock, kForwardDiscBlocks> forwardDisc{};
    std::array<std::atomic<std::int32_t>, kForwardDiscBlocks> forwardFilled{};
    std::array<PcmBlock, kBackwardDiscBlocks> backwardDisc{};
    std::array<std::atomic<std::int32_t>, kBackwardDiscBlocks> backwardFilled{};
    std::atomic<std::int32_t> forwardReaderRun{0};
    std::atomic<std::int32_t> backwardReaderRun{0};
    SyncEvent forwardWakeEvent{SyncEvent::Kind::AutoReset, false};
    SyncEvent backwardWakeEvent{SyncEvent::Kind::AutoReset, false};
    std::atomic<std::int32_t> forwardReaderWaiting{0};
    std::atomic<std::int32_t> forwardReaderTick{0};
    std::atomic<std::int32_t> discBufferVeryLow{0};
    std::atomic<std::int32_t> freshDataLow{0};
    std::atomic<std::int32_t> blocksAheadCopy{0};

    // Diagnostics shown by the host: headphones drift, headphones buffer
    // frequency, main deck rate.
    std::atomic<std::int32_t> headphonesDrift{0};
    std::atomic<std::int32_t> headphonesFrequency{44100};
    std::atomic<std::int32_t> mainDeckRate{44100};

    CRynFileDecoder* decoder = nullptr;  // owned by the host, constructed with the program

    // Start-up step 17.2: diagnostics and counters back to their start values.
    void ResetFields();
};

struct SharedEngineState {
    WindowHandle mainDialogWindow = 0;  // the host: receives all key messages
    WindowHandle mainMixerWindow = 0;   // tick, deck information and graph messages

    std::atomic<std::int32_t> appInitialised{0};
    std::atomic<std::int32_t> lowResolution{0};
    std::atomic<std::int8_t> allMinimised{0};
    std::atomic<std::int8_t> toolTipsOn{0};
    std::atomic<std::int8_t> scopeTriggerOn{1};  // the scope locks onto rising zero crossings
    std::atomic<std::int32_t> pendingTicks{0};
    std::atomic<std::int32_t> overload{0};
    std::atomic<std::int32_t> tickThreadRun{0};
    std::atomic<std::int32_t> keyboardThreadRun{0};
    std::atomic<std::int32_t> graphsThreadRun{0};

    SyncEvent updateGraphsAndMetersEvent{SyncEvent::Kind::AutoReset, true,
                                         "Update Graphs And Meters Event"};
    SyncEvent tickWakeEvent{SyncEvent::Kind::AutoReset, false};

    // The graphs-and-meters thread while it runs, or none. Owned by the host;
    // user-interface thread only.
    WorkerThread* graphsThread = nullptr;

    std::string helpFilePath;  // "MixoraHtmlHelp.chm"
    CRynKeyboard* keyboard = nullptr;

    std::array<DeckSharedState, kDeckCount> decks;

    // Both decks' isPlaying, for the overload check.
    bool AnyDeckPlaying() const;
};

// The one engine record of the process.
SharedEngineState& Engine();

// The name of a deck's information event: "Deck65Update Deck Info Event".
std::string DeckInfoEventName(int deck);

// Tests: put every field and event back to its start-up value.
void ResetEngineStateForTest();
