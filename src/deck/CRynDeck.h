// A deck window (template 131): one turntable with its transport. Shell for
// now: it knows its index, its information, equalizer and play list windows
// and the main mixer, and registers itself as the deck's window in the engine
// state; the transport comes with the deck itself.
#pragma once

#include <QColor>

#include "app/CRynWindow.h"

class CRynDeckInfo;
class CRynEqualizer;
class CRynPlayList;

class CRynDeck : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 131;

    explicit CRynDeck(QWidget* parent = nullptr);
    ~CRynDeck() override;

    // Start-up: the deck's windows, the main mixer's window and the deck index
    // (0 = A, 1 = B). Sets the deck's deckWindow in the engine state.
    void Initialise(CRynDeckInfo* info, CRynEqualizer* equalizer, CRynPlayList* playList,
                    WindowHandle mainMixer, int deck);

    int DeckIndex() const { return deck_; }
    WindowHandle MainMixer() const { return mainMixer_; }
    CRynDeckInfo* Info() const { return info_; }
    CRynEqualizer* Equalizer() const { return equalizer_; }
    CRynPlayList* PlayList() const { return playList_; }

    // The deck's two colours: `which` 0 is its main colour, 1 its dark shade.
    QColor Colour(int which) const;

    // Shutdown: the transport stops for good (the needle is lifted).
    void Shutdown();
    // Shutdown: the deck's file decoder is closed.
    void CloseDecoder();
    // The main mixer has written the deck's first blocks (UWM_PRIME_DECK).
    void OnPrimed();

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;

  private:
    int deck_ = 0;
    WindowHandle mainMixer_ = 0;
    CRynDeckInfo* info_ = nullptr;
    CRynEqualizer* equalizer_ = nullptr;
    CRynPlayList* playList_ = nullptr;
};
