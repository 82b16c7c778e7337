#include "playlist/window/CRynPlayList.h"

#include <QCloseEvent>

CRynPlayList::CRynPlayList(QWidget* parent) : CRynWindow("CRynPlayList", kTemplateId, parent) {
    resize(360, 300);
}

void CRynPlayList::Initialise(WindowHandle deckWindow, int deck) {
    deckWindow_ = deckWindow;
    deck_ = deck;
    setWindowTitle(QStringLiteral("Play List Deck %1").arg(QChar('A' + deck)));
}

void CRynPlayList::StopPlayList() {
    stopped_ = true;
}

void CRynPlayList::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
