// The main mixer window (template 141): the centre of the program and the
// receiver of nearly every application message. It holds the two decks, the
// headphones mixer and the 3D graph, starts and stops the decks' notification
// threads, and runs the mix step for each forward notification.
//
// This is the shell of the window: the messages that start and stop threads,
// the mix step with its display pacing and the tick answer are handled here;
// the block work goes to a MixStepSink (bound to the sound engine later) and
// the controls come with the mixer itself. Closing the window ends the
// program: it sends UWM_SHUTDOWN to the host.
#pragma once

#include <array>

#include "app/CRynWindow.h"
#include "app/DisplayPacing.h"
#include "app/NotifyThreads.h"
#include "output/mixer/MixStepSink.h"

class CRynDeck;
class CRynHeadphonesMixer;
class CRyn3DGraph;

class CRynMainMixer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 141;
    // Timers 1 to 8 are the mixer's (catch-up, CPU load, auto-pan, minimise,
    // cross fader, 3D graph, scratch A and B).
    static constexpr int kTimerCount = 8;

    explicit CRynMainMixer(QWidget* parent = nullptr);
    ~CRynMainMixer() override;

    // Start-up: the host window, both decks, the headphones mixer and the 3D
    // graph. Records mainMixerWindow in the engine state.
    void Initialise(WindowHandle host, CRynDeck* deckA, CRynDeck* deckB,
                    CRynHeadphonesMixer* headphones, CRyn3DGraph* graph3d);

    // The layout mode chosen at start-up (sets lowResolution).
    void SetLowResolution(bool low);

    // Where the block work of each step goes; not owned; null restores the
    // sink that does nothing.
    void SetMixStepSink(MixStepSink* sink);

    // Shutdown: kills timers 1 to 8.
    void KillTimers();

    NotifyThreads& Notifications() { return notify_; }
    CRynDeck* Deck(int deck) const { return decks_[deck]; }

    // Drawing passes asked for by the graphs-and-meters thread so far.
    int GraphsUpdates() const { return graphsUpdates_; }
    // Mix steps run so far (forward notifications handled), per deck.
    int MixSteps(int deck) const { return mixSteps_[deck]; }
    // The overload lamp: flipped by every tick.
    bool OverloadLampOn() const { return overloadLampOn_; }

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void MixStep(int deck);
    void ReverseStep(int deck);
    void PaceDisplay();
    void StopDeck(int deck);
    void StopReverse(int deck);
    void OnTick();
    void OnOverloadLampChanged();
    static bool ValidDeck(WParam deck) { return deck < 2; }

    WindowHandle host_ = 0;
    std::array<CRynDeck*, 2> decks_{};
    CRynHeadphonesMixer* headphones_ = nullptr;
    CRyn3DGraph* graph3d_ = nullptr;
    NullMixStepSink nullSink_;
    MixStepSink* sink_ = &nullSink_;
    NotifyThreads notify_;
    DisplayPacing pacing_;
    int graphsUpdates_ = 0;
    std::array<int, 2> mixSteps_{};
    bool overloadLampOn_ = false;
};
