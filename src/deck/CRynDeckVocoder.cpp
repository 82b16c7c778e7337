// The deck's phase vocoder window: made hidden while the deck builds its own
// window, shown and hidden only by the deck's "Show The Phase Vocoder:"
// toggle. The toggle follows the window when "OK", "Cancel" or its close box
// hides it (CRynDeck::eventFilter).
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "dsp/window/CRynPhaseVocoder.h"

CNiButton* CRynDeck::BuildPhaseVocoder() {
    vocoder_ = new CRynPhaseVocoder(this);
    vocoder_->Initialise();
    vocoder_->installEventFilter(this);

    showVocoder_ = new CNiButton(QStringLiteral("Show The Phase Vocoder:"),
                                 QStringLiteral("Show The Phase Vocoder:"), this);
    showVocoder_->SetStyle(CNiButton::kLedButton);
    showVocoder_->setObjectName(QStringLiteral("showPhaseVocoder"));
    // Registered with the deck's other toggles (DeckComponents.cpp).
    connect(showVocoder_, &CNiButton::valueChanged, this,
            [this](bool on) { vocoder_->setVisible(on); });
    return showVocoder_;
}
