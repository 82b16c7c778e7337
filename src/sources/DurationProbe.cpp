#include "sources/DurationProbe.h"

#include "sources/CRynFileDecoder.h"

DurationProbe::DurationProbe(DeckSharedState& deck,
                             const std::array<DeckSharedState, kDeckCount>& allDecks)
    : deck_(deck), allDecks_(allDecks) {}

DurationProbe::~DurationProbe() {
    Stop();
}

void DurationProbe::Start() {
    if (thread_.joinable())
        return;
    deck_.playListThreadRun.store(1);
    thread_ = std::thread([this] { Run(); });
}

void DurationProbe::Stop() {
    if (!thread_.joinable())
        return;
    deck_.playListThreadRun.store(0);
    deck_.playListWakeEvent.Set();
    thread_.join();
}

void DurationProbe::SetFileName(const std::string& path) {
    std::lock_guard<std::mutex> lock(nameMutex_);
    fileName_ = path;
}

void DurationProbe::Wake() {
    deck_.playListWakeEvent.Set();
}

bool DurationProbe::RemovableDrivePlaying() const {
    for (const DeckSharedState& deck : allDecks_) {
        if (deck.decoder && deck.isPlaying.load() != 0 && deck.sourceType.load() == 1 &&
            deck.decoder->IsOnRemovableDrive())
            return true;
    }
    return false;
}

void DurationProbe::Run() {
    for (;;) {
        deck_.playListWakeEvent.Wait();
        if (deck_.playListThreadRun.load() == 0)
            break;
        if (RemovableDrivePlaying())
            continue;
        std::string name;
        {
            std::lock_guard<std::mutex> lock(nameMutex_);
            name = fileName_;
        }
        bool measured = false;
        {
            CRynFileDecoder decoder;
            if (decoder.Open(name)) {
                result_.store(static_cast<float>(decoder.DurationSeconds()));
                decoder.Close();
                measured = true;
            }
        }
        measured_.store(measured ? 1 : 0);
        done_.store(1);
    }
}
