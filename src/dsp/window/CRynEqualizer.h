// A deck's equalizer window (template 137): the band sliders of the deck's
// FIR equalizer. Shell for now; the bands come with the equalizer window.
#pragma once

#include "core/CRynWindow.h"

class CRynEqualizer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 137;

    explicit CRynEqualizer(QWidget* parent = nullptr);

    void Initialise(int deck, WindowHandle deckWindow);
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

  protected:
    // The close box hides the window and tells its deck.
    void closeEvent(QCloseEvent* event) override;

  private:
    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
};
