// A deck's equalizer window (template 137): the band sliders of the deck's
// FIR equalizer. Shell for now; the bands come with the equalizer window.
#pragma once

#include "core/CRynWindow.h"

class CNiSlide;

class CRynEqualizer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 137;

    explicit CRynEqualizer(QWidget* parent = nullptr);

    void Initialise(int deck, WindowHandle deckWindow);
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }
    // The level slide of band `band` (0 … 11), which the keys move; none
    // until the bands come with the equalizer window.
    CNiSlide* BandLevelSlide(int band) const {
        (void)band;
        return nullptr;
    }

  protected:
    // The close box hides the window and tells its deck.
    void closeEvent(QCloseEvent* event) override;

  private:
    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
};
