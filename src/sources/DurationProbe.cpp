#include "sources/DurationProbe.h"

#include "core/EngineState.h"
#include "sources/CRynFileDecoder.h"

DurationProbe::DurationProbe(int deck) : deck_(deck < 0 || deck >= kDeckCount ? 0 : deck) {}

DurationProbe::~DurationProbe() {
    Stop();
}

void DurationProbe::Start() {
    if (thread_.joinable())
        return;
    Engine().decks[deck_].playListThreadRun.store(1);
    thread_ = std::thread([this] { Run(); });
}

void DurationProbe::Stop() {
    if (!thread_.joinable())
        return;
    Engine().decks[deck_].playListThreadRun.store(0);
    Engine().decks[deck_].playListWakeEvent.Set();
    thread_.join();
}

void DurationProbe::SetFileName(const std::string& path) {
    std::lock_guard<std::mutex> lock(nameMutex_);
    fileName_ = path;
}

void DurationProbe::Wake() {
    Engine().decks[deck_].playListWakeEvent.Set();
}

bool DurationProbe::RemovableDrivePlaying() {
    for (auto& deck : Engine().decks) {
        if (deck.decoder && deck.isPlaying.load() != 0 && deck.sourceType.load() == 1 &&
            deck.decoder->IsOnRemovableDrive())
            return true;
    }
    return false;
}

void DurationProbe::Run() {
    DeckSharedState& shared = Engine().decks[deck_];
    for (;;) {
        shared.playListWakeEvent.Wait();
        if (shared.playListThreadRun.load() == 0)
            break;
        if (RemovableDrivePlaying())
            continue;
        std::string name;
        {
            std::lock_guard<std::mutex> lock(nameMutex_);
            name = fileName_;
        }
        {
            CRynFileDecoder decoder;
            if (decoder.Open(name)) {
                result_.store(static_cast<float>(decoder.DurationSeconds()));
                decoder.Close();
            }
        }
        done_.store(1);
    }
}
