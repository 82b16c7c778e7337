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
    Registry().Register(
        showVocoder_, this, QStringLiteral("Show The Phase Vocoder:"),
        QStringLiteral("Shows or hides the deck's phase vocoder window: a picture of how a "
                       "phase vocoder cuts the deck's sound into overlapping frames of 1024 "
                       "samples, shaped by Hann windows placed every 256 samples. The window "
                       "only illustrates; it never changes the sound."),
        QStringLiteral("show phase vocoder"));
    connect(showVocoder_, &CNiButton::valueChanged, this,
            [this](bool on) { vocoder_->setVisible(on); });
    return showVocoder_;
}
