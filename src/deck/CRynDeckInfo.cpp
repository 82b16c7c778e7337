#include "deck/CRynDeckInfo.h"

#include <QCloseEvent>

#include "app/EngineState.h"
#include "app/ServiceThreads.h"

CRynDeckInfo::CRynDeckInfo(QWidget* parent) : CRynWindow("CRynDeckInfo", kTemplateId, parent) {
    resize(368, 160);
}

CRynDeckInfo::~CRynDeckInfo() {
    StopThread();
    JoinThread();
}

void CRynDeckInfo::Initialise(WindowHandle deckWindow, int deck) {
    deckWindow_ = deckWindow;
    deck_ = deck == 1 ? 1 : 0;
    setWindowTitle(QStringLiteral("Deck %1 Information").arg(QChar('A' + deck_)));
}

void CRynDeckInfo::StopThread() {
    DeckSharedState& d = Engine().decks[deck_];
    d.deckInfoThreadRun.store(0);
    d.deckInfoEvent->Set();
}

void CRynDeckInfo::SetMetersOn(bool on) {
    StopThread();
    if (!on)
        return;
    JoinThread();
    SharedEngineState& e = Engine();
    e.decks[deck_].deckInfoThreadRun.store(1);
    const int deck = deck_;
    thread_.Start(
        deck == 0 ? "deck-info-A" : "deck-info-B", ThreadPriority::BelowNormal,
        [&e, deck](const std::atomic<bool>& cancelled) { RunDeckInfoThread(e, deck, cancelled); });
    e.decks[deck_].deckInfoThread = &thread_;
}

void CRynDeckInfo::JoinThread() {
    if (!thread_.Started())
        return;
    SyncEvent* event = Engine().decks[deck_].deckInfoEvent.get();
    thread_.Join([event] { event->Set(); });
    if (Engine().decks[deck_].deckInfoThread == &thread_) {
        Engine().decks[deck_].deckInfoThread = nullptr;
    }
}

void CRynDeckInfo::Refresh() {
    ++refreshes_;
}

void CRynDeckInfo::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
