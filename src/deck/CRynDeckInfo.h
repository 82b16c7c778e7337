// A deck's information window (template 132, "Deck A Info" / "Deck B Info"):
// the fill flags of the deck's forward (170 slots) and backward (50 slots)
// disc buffers as two graphs with a level meter each, the play and write
// slots of the forward and reverse output rings (0..120) and the blocks
// written ahead, the "Turn On Deck Meters:" switch and two lamps showing
// whether the deck's forward and backward disc readers run.
//
// The window owns the deck's buffer statistics (DeckInfoStats). The deck
// hands flags and positions into Stats() whatever the window shows; the
// window only draws them on Refresh, and only while its meters are on.
//
// The meters switch owns the deck information thread: while on, the thread
// asks the main mixer for a refresh (UWM_DECK_INFO_UPDATE) whenever the deck
// sets its deckInfoEvent, and at least once a second; the main mixer's
// handler calls Refresh. Everything here runs on the user-interface thread.
#pragma once

#include <array>

#include "core/CRynWindow.h"
#include "core/WorkerThread.h"
#include "deck/disc/DeckInfoStats.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class QLabel;

class CRynDeckInfo : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 132;

    explicit CRynDeckInfo(QWidget* parent = nullptr);
    // Stops and joins the deck information thread.
    ~CRynDeckInfo() override;

    // Sets the deck (0 = A, 1 = B; anything else is A), the title and the
    // window told when this one is closed.
    void Initialise(WindowHandle deckWindow, int deck);
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

    // The deck's buffer statistics, kept whether or not the window is shown.
    DeckInfoStats& Stats() { return stats_; }
    const DeckInfoStats& Stats() const { return stats_; }
    // While the platter is dragged: forward play slot = angle in blocks,
    // reverse play slot = 120 - angle.
    void SetPlatterPositions(int angleBlocks) { stats_.SetPlatterPositions(angleBlocks); }

    // Moves the "Turn On Deck Meters:" switch; its value change does the
    // work: stop the thread, then on: start it again at below-normal
    // priority; off: every meter to 0, the backward vector cleared and both
    // graphs replotted. Setting the value it already has applies it again.
    void SetMetersOn(bool on);
    bool MetersOn() const;
    bool ThreadRunning() const { return thread_.Started() && !thread_.Finished(); }

    // Waits for a stopped thread to end (shutdown).
    void JoinThread();

    // UWM_DECK_INFO_UPDATE via the main mixer. Counted always; with the
    // meters on it copies the statistics into the meters and graphs and the
    // readers' run flags into the two reading lamps.
    void Refresh();
    int RefreshCount() const { return refreshes_; }

    // The "Backward disc reading is on:" lamp, read by the deck before it
    // wakes the backward reader.
    bool BackwardReadingOn() const;
    bool ForwardReadingOn() const;

    // The controls, for keyboard, layout, help and tests.
    CNiGraph* ForwardGraph() const { return forwardGraph_; }
    CNiGraph* BackwardGraph() const { return backwardGraph_; }
    CNiSlide* ForwardLevelMeter() const { return forwardLevel_; }
    CNiSlide* BackwardLevelMeter() const { return backwardLevel_; }
    CNiSlide* ForwardReadMeter() const { return positionMeters_[kForwardRead]; }
    CNiSlide* ForwardWriteMeter() const { return positionMeters_[kForwardWrite]; }
    CNiSlide* BlocksAheadMeter() const { return positionMeters_[kBlocksAhead]; }
    CNiSlide* ReversePlayMeter() const { return positionMeters_[kReversePlay]; }
    CNiSlide* ReverseWriteMeter() const { return positionMeters_[kReverseWrite]; }
    CNiButton* MetersButton() const { return metersButton_; }
    CNiButton* ForwardReadingLed() const { return forwardLed_; }
    CNiButton* BackwardReadingLed() const { return backwardLed_; }

  protected:
    // The close box tells the deck window (UWM_WINDOW_CLOSED, 132, 0) and
    // hides the window.
    void closeEvent(QCloseEvent* event) override;

  private:
    enum PositionMeter {
        kForwardRead,
        kForwardWrite,
        kBlocksAhead,
        kReversePlay,
        kReverseWrite,
        kPositionMeters
    };

    void BuildControls();
    void MetersSwitched(bool on);
    void StopThread();
    void ShowPositions(int forwardRead, int forwardWrite, int ahead, int reversePlay,
                       int reverseWrite);
    void ShowLevels(int forwardCount, int backwardCount);
    void PlotVectors();

    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
    WorkerThread thread_;
    int refreshes_ = 0;
    DeckInfoStats stats_;

    CNiGraph* forwardGraph_ = nullptr;
    CNiGraph* backwardGraph_ = nullptr;
    CNiSlide* forwardLevel_ = nullptr;
    CNiSlide* backwardLevel_ = nullptr;
    QLabel* forwardCountText_ = nullptr;
    QLabel* backwardCountText_ = nullptr;
    std::array<CNiSlide*, kPositionMeters> positionMeters_{};
    std::array<QLabel*, kPositionMeters> positionTexts_{};
    CNiButton* metersButton_ = nullptr;
    CNiButton* forwardLed_ = nullptr;
    CNiButton* backwardLed_ = nullptr;

    // Plot buffers: the flag vectors as doubles, reused by every refresh.
    std::array<double, DeckInfoStats::kForwardSlots + 1> forwardPlot_{};
    std::array<double, DeckInfoStats::kBackwardSlots + 1> backwardPlot_{};
};
