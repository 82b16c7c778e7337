#include "deck/CRynDeck.h"

#include <QCloseEvent>

#include "app/EngineState.h"

CRynDeck::CRynDeck(QWidget* parent) : CRynWindow("CRynDeck", kTemplateId, parent) {
    resize(368, 420);
}

CRynDeck::~CRynDeck() {
    DeckSharedState& d = Engine().decks[deck_];
    if (d.deckWindow == Handle())
        d.deckWindow = 0;
}

void CRynDeck::Initialise(CRynDeckInfo* info, CRynEqualizer* equalizer, CRynPlayList* playList,
                          WindowHandle mainMixer, int deck) {
    info_ = info;
    equalizer_ = equalizer;
    playList_ = playList;
    mainMixer_ = mainMixer;
    deck_ = deck == 1 ? 1 : 0;
    Engine().decks[deck_].deckWindow = Handle();
    setWindowTitle(QStringLiteral("Deck %1").arg(QChar('A' + deck_)));
}

QColor CRynDeck::Colour(int which) const {
    // Deck A blue, deck B orange; the second colour is the dark shade.
    static const QColor kColours[2][2] = {{QColor(40, 170, 255), QColor(10, 60, 110)},
                                          {QColor(255, 160, 30), QColor(110, 60, 10)}};
    return kColours[deck_][which == 1 ? 1 : 0];
}

void CRynDeck::Shutdown() {
    Engine().decks[deck_].isPlaying.store(0);
}

void CRynDeck::CloseDecoder() {}

void CRynDeck::OnPrimed() {}

void CRynDeck::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
