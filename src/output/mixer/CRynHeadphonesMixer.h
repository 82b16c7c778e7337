// The headphones mixer window (template 143): levels, balances and cross
// fader of the cueing output. Shell for now: it knows the main mixer and the
// decks' colours; its controls and output come with the headphones mixer.
#pragma once

#include <QColor>
#include <array>

#include "core/CRynWindow.h"
#include "output/engine/CRynAudioOutput.h"

class CNiSlide;

class CRynHeadphonesMixer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 143;

    explicit CRynHeadphonesMixer(QWidget* parent = nullptr);

    void Initialise(WindowHandle mainMixer);
    WindowHandle MainMixer() const { return mainMixer_; }

    // The two colours of deck `deck` (its plots and pointers are drawn in them).
    void SetDeckColours(int deck, const QColor& first, const QColor& second);
    QColor DeckColour(int deck, int which) const { return colours_[deck][which]; }

    // The headphones output (no device until one is chosen for it).
    CRynAudioOutput& Output() { return output_; }

    // The slides the keys move (Ctrl with the main mixer's keys): the deck
    // levels (0 … 1), the cross fader (-1 … +1) and the volume (0 … 1).
    CNiSlide* DeckLevelSlide(int deck) const { return levels_[deck == 1 ? 1 : 0]; }
    CNiSlide* CrossFaderSlide() const { return crossFader_; }
    CNiSlide* VolumeSlide() const { return volume_; }

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;

  private:
    WindowHandle mainMixer_ = 0;
    std::array<std::array<QColor, 2>, 2> colours_{};
    CRynAudioOutput output_;
    std::array<CNiSlide*, 2> levels_{};
    CNiSlide* crossFader_ = nullptr;
    CNiSlide* volume_ = nullptr;
};
