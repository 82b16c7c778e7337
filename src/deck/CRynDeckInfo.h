// A deck's information window (template 132): disc buffer and output ring
// meters of one deck. Shell for now: it owns the deck information thread,
// which asks the main mixer for a refresh (UWM_DECK_INFO_UPDATE) whenever the
// deck sets its deckInfoEvent, and at least once a second, while the window's
// meters are on; the meters come with the information window itself.
#pragma once

#include "app/CRynWindow.h"
#include "app/WorkerThread.h"

class CRynDeckInfo : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 132;

    explicit CRynDeckInfo(QWidget* parent = nullptr);
    // Stops and joins the deck information thread.
    ~CRynDeckInfo() override;

    void Initialise(WindowHandle deckWindow, int deck);
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

    // The meters switch: stops the thread, and when `on` starts it again at
    // below-normal priority.
    void SetMetersOn(bool on);
    bool ThreadRunning() const { return thread_.Started() && !thread_.Finished(); }

    // Waits for a stopped thread to end (shutdown).
    void JoinThread();

    // Redraws the meters (UWM_DECK_INFO_UPDATE via the main mixer).
    void Refresh();
    int RefreshCount() const { return refreshes_; }

  protected:
    // The close box hides the window and tells its deck.
    void closeEvent(QCloseEvent* event) override;

  private:
    void StopThread();

    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
    WorkerThread thread_;
    int refreshes_ = 0;
};
