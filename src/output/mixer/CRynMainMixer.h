// The main mixer window (template 141): the centre of the program and the
// receiver of nearly every application message. It holds the two decks, the
// headphones mixer and the 3D graph, starts and stops the decks' notification
// threads, and runs the mix step for each forward notification.
//
// It owns the main output device. The block work of the mix cycle goes to a
// MixStepSink: normally its MixCycle on the main and headphones outputs,
// in shell tests a counting stand-in. It also keeps each deck's write-ahead
// target (latency overrides), which CD drive each deck holds, and answers
// the decks' buffer, tempo and position requests. Closing the window ends
// the program: it sends UWM_SHUTDOWN to the host.
#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <array>
#include <functional>
#include <string>

#include "core/CRynWindow.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/DisplayPacing.h"
#include "output/engine/MixCycle.h"
#include "output/engine/MixStepSink.h"
#include "output/engine/NotifyThreads.h"
#include "output/engine/OutputDeviceWatch.h"
#include "output/engine/WriteAheadTarget.h"
#include "output/mixer/MainMixerPanel.h"

class CRynDeck;
class CRynHeadphonesMixer;
class CRyn3DGraph;
class QLabel;

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
    // mixer's own mix cycle on its devices.
    void SetMixStepSink(MixStepSink* sink);

    CRynAudioOutput& MainOutput() { return mainOutput_; }
    // Deck levels, cross fader and curve, main volume and balance, auto-pan.
    MainMixerPanel& Panel() { return *panel_; }
    MixCycle& Cycle() { return cycle_; }
    // The headphones output the cycle also writes to (null: none).
    void SetHeadphonesOutput(CRynAudioOutput* output);

    // Opens the main device: `identifier` as sound::OpenDevice knows it, ""
    // for the disabled choice. The decks that rotate are stopped first.
    void ChooseMainDevice(const std::string& identifier);
    // The main device's watch: a lost device stops the decks (needles
    // lifted), shows itself in the decks' track displays and on the mixer,
    // and the output plays on the Null device until the chosen device is
    // listed again and reopened.
    OutputDeviceWatch& MainWatch() { return mainWatch_; }
    // The mixer's notice line ("" while the main device plays).
    QString DeviceNoticeText() const;
    // The device chosen at start-up: MIXORA_SOUND_DEVICE, else the stored
    // choice, else the system's default output, else the Null device.
    static std::string StartupDeviceIdentifier();

    // The end of the layout: from now on latency requests count, and each
    // deck whose turntable plays no loop is put on a quarter.
    void LayoutBuilt();
    const WriteAheadTarget& Target(int deck) const { return targets_[deck]; }

    // Called after a deck's buffers were rebuilt (the headphones mix and the
    // deck's pans are applied again there).
    std::function<void(int deck)> onBuffersCreated;

    // The CD drive deck `deck` holds, -1 for none.
    int DriveOf(int deck) const { return drives_[deck]; }

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
    // Deck `deck` (0 or 1) and its message.
    LResult OnDeckMessage(Uwm msg, int deck, LParam lParam);
    // A latency override requested (true) or withdrawn for the deck; the new
    // target, if any, becomes its write-ahead.
    void ChangeLatency(int deck, WriteAheadTarget::Override which, bool request);
    LResult AssignDrive(int deck, int drive);
    void StopReverse(int deck);
    void OnTick();
    void OnOverloadLampChanged();
    void OnMainDeviceLost(const std::string& description);
    void OnMainDeviceBack();
    static bool ValidDeck(WParam deck) { return deck < 2; }

    WindowHandle host_ = 0;
    std::array<CRynDeck*, 2> decks_{};
    CRynHeadphonesMixer* headphones_ = nullptr;
    CRyn3DGraph* graph3d_ = nullptr;
    CRynAudioOutput mainOutput_;
    MixCycle cycle_;
    MixStepSink* sink_ = &cycle_;
    std::array<WriteAheadTarget, 2> targets_{};
    std::array<int, 2> drives_{-1, -1};
    bool buildingLayout_ = true;
    MainMixerPanel* panel_ = nullptr;
    NotifyThreads notify_;
    DisplayPacing pacing_;
    int graphsUpdates_ = 0;
    std::array<int, 2> mixSteps_{};
    bool overloadLampOn_ = false;
    OutputDeviceWatch mainWatch_{mainOutput_};
    QTimer watchTimer_;
    QElapsedTimer clock_;
    QLabel* deviceNotice_ = nullptr;
};
