#include "playlist/window/CRynPlayList.h"

#include <QCloseEvent>

#include "core/EngineState.h"
#include "playlist/DefaultPlayList.h"

CRynPlayList::CRynPlayList(QWidget* parent) : CRynWindow("CRynPlayList", kTemplateId, parent) {
    resize(360, 300);
}

void CRynPlayList::Initialise(WindowHandle deckWindow, int deck) {
    deckWindow_ = deckWindow;
    deck_ = deck;
    setWindowTitle(QStringLiteral("Play List Deck %1").arg(QChar('A' + deck)));
}

void CRynPlayList::StopPlayList() {
    if (stopped_)
        return;
    stopped_ = true;
    // A list in File mode is kept as the deck's default list.
    if (Engine().decks[deck_].sourceType.load() == 1)
        SaveDefaultList(list_, deck_);
}

void CRynPlayList::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
