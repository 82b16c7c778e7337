#include "dsp/window/CRynEqualizer.h"

#include <QCloseEvent>

CRynEqualizer::CRynEqualizer(QWidget* parent) : CRynWindow("CRynEqualizer", kTemplateId, parent) {
    resize(360, 240);
}

void CRynEqualizer::Initialise(int deck, WindowHandle deckWindow) {
    deck_ = deck;
    deckWindow_ = deckWindow;
    setWindowTitle(QStringLiteral("Equalizer Deck %1").arg(QChar('A' + deck)));
}

void CRynEqualizer::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}
