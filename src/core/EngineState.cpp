#include "core/EngineState.h"

namespace {
SharedEngineState* g_engine = nullptr;
}

void DeckSharedState::ResetFields() {
    headphonesDrift.store(0);
    headphonesFrequency.store(44100);
    mainDeckRate.store(44100);
    sampleRate.store(44100);
    isPlaying.store(0);
    writeAheadBlocks.store(0);
    latencyBlocks.store(0);
    metersOff.store(0);
    forwardThreadStop.store(0);
    reverseThreadStop.store(0);
    scratchThreadStop.store(0);
    forwardReaderRun.store(0);
    backwardReaderRun.store(0);
    forwardReaderWaiting.store(0);
    forwardReaderTick.store(0);
    discBufferVeryLow.store(0);
    freshDataLow.store(0);
    blocksAheadCopy.store(0);
    outputFrequency.store(44100);
    deckInfoThread = nullptr;
    for (auto& f : forwardFilled)
        f.store(0);
    for (auto& f : backwardFilled)
        f.store(0);
}

bool SharedEngineState::AnyDeckPlaying() const {
    return decks[0].isPlaying.load() != 0 || decks[1].isPlaying.load() != 0;
}

SharedEngineState& Engine() {
    // Allocated once and never freed: worker threads may still read flags
    // while the process ends.
    if (!g_engine) {
        g_engine = new SharedEngineState;
        for (int d = 0; d < kDeckCount; ++d) {
            g_engine->decks[d].deckInfoEvent =
                std::make_unique<SyncEvent>(SyncEvent::Kind::AutoReset, true, DeckInfoEventName(d));
        }
    }
    return *g_engine;
}

std::string DeckInfoEventName(int deck) {
    return "Deck" + std::to_string(static_cast<int>('A') + deck) + "Update Deck Info Event";
}

void ResetEngineStateForTest() {
    delete g_engine;
    g_engine = nullptr;
    Engine();
}
