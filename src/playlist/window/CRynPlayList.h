// A deck's play list window (template 144): the list that feeds the deck.
// Shell for now; the list view comes with the play list window.
#pragma once

#include "core/CRynWindow.h"
#include "playlist/PlayList.h"

class CRynPlayList : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 144;

    explicit CRynPlayList(QWidget* parent = nullptr);

    void Initialise(WindowHandle deckWindow, int deck);
    // The deck's list: the entries the deck loads from.
    PlayList& List() { return list_; }
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

    // Shutdown: the list stops its work (probing, loading) for good; in File
    // mode it is saved as the deck's default list.
    void StopPlayList();
    bool Stopped() const { return stopped_; }

  protected:
    // The close box hides the window and tells its deck.
    void closeEvent(QCloseEvent* event) override;

  private:
    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
    bool stopped_ = false;
    PlayList list_;
};
