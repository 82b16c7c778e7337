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
#include <QRect>
#include <QTimer>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/CRynWindow.h"
#include "deck/tempo/TrackTempoService.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/DisplayPacing.h"
#include "output/engine/MixCycle.h"
#include "output/engine/MixStepSink.h"
#include "output/engine/NotifyThreads.h"
#include "output/engine/OutputDeviceWatch.h"
#include "output/engine/WriteAheadTarget.h"
#include "output/laws/CpuLoad.h"
#include "output/mixer/MainMixerPanel.h"
#include "output/mixer/MainMixerWindowButtons.h"
#include "settings/SettingsNames.h"

class CRynDeck;
class CRynHeadphonesMixer;
class MainMixerRecording;
class CRyn3DGraph;
class MixerMeters;
class QLabel;

class CRynMainMixer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 141;
    // Timers 1 to 8 are the mixer's (catch-up, CPU load, auto-pan, minimise,
    // cross fader, 3D graph, scratch A and B).
    static constexpr int kTimerCount = 8;
    static constexpr int kCpuTimer = 2;  // processor load
    static constexpr int kCpuMs = 1000;
    // The control ids of the mixer's band graphs of deck A and deck B.
    static constexpr int kBandGraphIds[2] = {1186, 1187};

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
    // The "REC" button and the recording of the main output.
    MainMixerRecording& Recording() { return *recording_; }
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
    // The stored main device is not there at start-up (a USB card not
    // plugged in, a JACK server not started): the output plays on the Null
    // device, the mixer and the decks' track displays say the device is
    // missing, and the watch looks for it every two seconds; once listed it
    // is opened as if chosen (MainMixerDevice.cpp). `name` is the stored
    // choice: the device's description or identifier. Choosing a device ends
    // the wait.
    void WaitForMainDevice(const std::string& name);
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
    // deck's pans are applied again before).
    std::function<void(int deck)> onBuffersCreated;

    // Opens the headphones device `identifier` ("" for none) and gives it the
    // decks that already have buffers on the main device, in step with them.
    void ChooseHeadphonesDevice(const std::string& identifier);
    // The configuration window the "Show Options Window" button shows (not
    // owned; null: none).
    void SetConfigureWindow(QWidget* configure) { configure_ = configure; }

    // The CD drive deck `deck` holds, -1 for none.
    int DriveOf(int deck) const { return drives_[deck]; }

    // Shutdown: kills timers 1 to 8 and stops both device watches.
    void KillTimers();

    NotifyThreads& Notifications() { return notify_; }
    CRynDeck* Deck(int deck) const { return decks_[deck]; }

    // Drawing passes asked for by the graphs-and-meters thread so far.
    int GraphsUpdates() const { return graphsUpdates_; }
    // Mix steps run so far (forward notifications handled), per deck.
    int MixSteps(int deck) const { return mixSteps_[deck]; }
    // Reverse steps run so far (reverse notifications handled), per deck.
    int ReverseSteps(int deck) const { return reverseSteps_[deck]; }
    // Scratch timers 7 (deck A) and 8 (deck B): 20 ms while a scratch plays.
    static constexpr int kScratchTimerA = 7;
    static constexpr int kScratchTimerPeriodMs = 20;
    // The overload lamp: flipped by every tick.
    bool OverloadLampOn() const { return overloadLampOn_; }

    // --- Graphs and meters (CRynMainMixerMeters.cpp) ---
    MixerMeters& Meters() { return *meters_; }
    // A deck's graphs and meters on or off: the enable button's look, the
    // deck's graphs, metersOff, and UWM_METERS_THREAD to the host.
    void SetMetersEnabled(int deck, bool on);
    // Each deck's meters as stored (metersEnabledDeckA/B); start-up.
    void ApplyStoredMeters();
    // The drawing pass of UWM_GRAPHS_UPDATE.
    void DrawGraphsAndMeters();
    // The output slot being heard on deck `deck`, -1 without a device.
    int HeardSlot(int deck) const;
    // Blocks drawn on the mixer's meters so far, per deck (tests).
    int MeterDraws(int deck) const { return meterDraws_[deck]; }
    // Double click (template, control id): only that graph stays on, every
    // other is switched off: each deck's graphs one by one, the 3D graph's
    // enable, the mixer's band graphs, the headphones plots, and their
    // settings follow. The same double click again brings them all back (the
    // 3D graph as it was before).
    void SelectGraphOnly(int templateId, int controlId);
    // All graphs store integers (true) or doubles.
    void SetGraphIntegers(bool on);
    void ReadCpuLoad();

    // --- 3D graph and 3D sound (MainMixer3DSound.cpp) ---
    // Opens the main device again with 3D sound on or off; the decks'
    // buffers are made again on it.
    void Switch3DSound(bool on);
    bool Sound3D() const { return sound3D_; }
    // The listener position (−1000 … 1000 each) last received.
    float ListenerX() const { return listenerX_; }
    float ListenerY() const { return listenerY_; }
    // --- Window layout and screen modes (CRynMainMixerWindows.cpp) ---
    // Timer 4: minimise all, 750 ms after the mixer was minimised; timer 6:
    // the 3D graph shows 750 ms after its button went on.
    static constexpr int kMinimiseTimer = 4;
    static constexpr int kMinimiseMs = 750;
    static constexpr int k3DGraphTimer = 6;
    static constexpr int k3DGraphMs = 750;
    // One window of the layout: the window, its record kind and its deck.
    struct LayoutWindow {
        QWidget* window = nullptr;
        SettingsWindow kind = SettingsWindow::MainMixer;
        int deck = 0;
    };
    // Every working window the layout tiles (the mixers, the 3D graph and
    // each deck's four windows), the ones that exist.
    std::vector<LayoutWindow> LayoutWindows() const;
    MainMixerWindowButtons& WindowButtons() { return *windowButtons_; }
    // The full-screen client area the layout tiles: the primary screen
    // without panels, or the area a test gives (an empty one: the screen).
    void SetLayoutArea(const QRect& area) { layoutArea_ = area; }
    QRect LayoutArea() const;
    bool LowResolution() const;
    // Start-up: every window shown as stored (a first run: as full screen
    // shows them), each at its stored rectangle when the user had moved it,
    // else at its default one.
    void PlaceWindowsAtStartUp();
    // Home: the main mixer and each shown deck go to their default
    // rectangles, and so do the decks' information, equalizer and play list
    // windows; the rectangles are stored and the moved flags cleared.
    void ResetWindowPositions();
    // End: both decks and both mixers shown; the decks' other windows and
    // the 3D graph shown in high resolution and hidden in low resolution;
    // then Home.
    void ShowFullScreen();
    // The mode button: the positions are stored, then the other layout is built.
    void SwitchResolution();
    // Every window's rectangle (in the current layout), moved flag and
    // shown flag into the settings. With "Save Window Positions" off the
    // moved flags are cleared instead, so the next start uses the defaults.
    void StoreWindowPositions();
    // UWM_HELP_BUTTONS: the context-help button instead of the minimise and
    // maximise boxes on the main mixer and both decks (on), or back.
    void ShowHelpButtons(bool on);
    // --- Track tempos (MainMixerTempo.cpp) ---
    // Measures each deck's track off the audio path and shows the tempo it is
    // heard at in the deck's read-out and the track's play-list row.
    TrackTempoService& TempoService() { return *tempo_; }
    // Tests: another service (a fixed estimator, a cache of their own),
    // before Initialise; started by Initialise.
    void SetTempoService(std::unique_ptr<TrackTempoService> service);
    // Shutdown, before the decks go: the tempo worker ends, and answers
    // already on their way to the window thread are dropped.
    void StopTempo();
    // The deck's track tempo as measured (0: not known) and as heard now.
    double TrackTempo(int deck) const { return trackBpm_[deck]; }
    double HeardTrackTempo(int deck) const;

    LResult OnAppMessage(Uwm msg, WParam wParam, LParam lParam) override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void OnWindowTimer(int id) override;

  private:
    void MixStep(int deck);
    void ReverseStep(int deck);
    void PaceDisplay();
    void StopDeck(int deck);
    // Deck `deck` (0 or 1) and its message.
    LResult OnDeckMessage(Uwm msg, int deck, LParam lParam);
    // Effects, device equalizer and pan messages (MainMixerEffects.cpp).
    LResult OnEffectMessage(Uwm msg, WParam wParam, LParam lParam);
    // The deck's effect, both its parameters and its pan again, on both
    // outputs (new buffers carry none of them).
    void ApplyDeckEffects(int deck);
    // A latency override requested (true) or withdrawn for the deck; the new
    // target, if any, becomes its write-ahead.
    void ChangeLatency(int deck, WriteAheadTarget::Override which, bool request);
    LResult AssignDrive(int deck, int drive);
    void StopReverse(int deck);
    // The turntable's scratch loop: created at the deck's stream rate,
    // played from the turntable's position, ended when the loop comes round
    // and the deck no longer holds it.
    void StartScratch(int deck, int bytes);
    void PlayScratch(int deck);
    void ScratchDone(int deck);
    void OnTick();
    void OnOverloadLampChanged();
    // UWM_TITLE_BARS: every working window but the main mixer with or
    // without its title bar.
    void ShowTitleBars(bool on);
    void ShowOptionsWindow(bool show);
    void InitialiseWindowButtons();
    void ShowDeck(int deck, bool show);
    void Show3DGraph(bool show);
    void Show3DGraphNow();
    void DeckToDefault(int deck);
    // Shows (or hides) the windows as stored for the current layout.
    void ShowAsStored();
    // Each window of `windows` at its default rectangle (toDefaults), or at
    // its stored one when the user had moved it; the rectangle is stored.
    void PlaceLayoutWindows(const std::vector<LayoutWindow>& windows, bool toDefaults);
    void OnMinimiseTimer();
    void RaiseControlsAboveDisplays();
    void InitialiseMeters();
    void InitialiseTempo();
    // The deck's read-out from its track tempo and its playback rate now.
    void ShowTempo(int deck);
    void OnMainDeviceLost(const std::string& description);
    void OnMainDeviceBack();
    // The watch opened the chosen device (back after a loss, or missing at
    // start-up and now there).
    void OnMainDeviceReturned();
    // The decks stop as if the needles were lifted and show `deckText` in
    // their track displays; the mixer's notice line shows `mixerText`.
    void ShowMainDeviceNotice(const QString& deckText, const QString& mixerText);
    // The volume slide takes the main device's master level; the balance
    // centres (a device chosen or first opened).
    void ShowMasterLevel();
    // A headphones device was opened (chosen, or back after a loss): the
    // decks with buffers on the main device get them on it, in step, with
    // their effects, the headphones mix and balances (MainMixerHeadphones.cpp).
    void GiveDecksToHeadphones();
    static bool ValidDeck(WParam deck) { return deck < 2; }
    LResult On3DGraphMessage(Uwm msg, WParam wParam, LParam lParam);
    // The listener law's gains for the position, on the main device's listener.
    void ApplyListener();
    // A deck's current band values (entries 0 … n) as the 3D graph's next row.
    void Feed3DGraph(int deck, std::span<const double> current);
    void Draw3DGraph();
    // A device that came back opens in stereo: with 3D sound on, it is opened
    // again in 3D once the watch is done with it.
    void Keep3DSound();

    WindowHandle host_ = 0;
    std::array<CRynDeck*, 2> decks_{};
    CRynHeadphonesMixer* headphones_ = nullptr;
    CRyn3DGraph* graph3d_ = nullptr;
    QWidget* configure_ = nullptr;
    CRynAudioOutput mainOutput_;
    CRynAudioOutput* headphonesOutput_ = nullptr;
    // Set while the effect messages are applied to one output only.
    CRynAudioOutput* effectsOnly_ = nullptr;
    MixCycle cycle_;
    MixStepSink* sink_ = &cycle_;
    std::array<WriteAheadTarget, 2> targets_{};
    std::array<int, 2> drives_{-1, -1};
    bool buildingLayout_ = true;
    MainMixerPanel* panel_ = nullptr;
    MainMixerRecording* recording_ = nullptr;
    NotifyThreads notify_;
    // Set first in the destructor: deck messages still queued then (joining
    // the threads pumps them) find the decks and headphones already gone.
    bool closing_ = false;
    DisplayPacing pacing_;
    int graphsUpdates_ = 0;
    std::array<int, 2> mixSteps_{};
    std::array<int, 2> reverseSteps_{};
    bool overloadLampOn_ = false;
    MixerMeters* meters_ = nullptr;
    CpuLoad cpuLoad_;
    std::array<int, 2> lastDrawn_{-1, -1};
    std::array<double, 100> scope_{};  // the small graph's trace, reused by every draw
    std::array<int, 2> meterDraws_{};
    std::pair<int, int> exclusiveGraph_{0, 0};
    bool graph3dBefore_ = false;  // the 3D graph's enable before a graph was shown alone
    std::array<bool, 2> mixerGraphOn_{true, true};  // each deck's band graph not hidden
    OutputDeviceWatch mainWatch_{mainOutput_};
    QTimer watchTimer_;
    QElapsedTimer clock_;
    QLabel* deviceNotice_ = nullptr;
    // The main device being looked for was missing at start-up and was
    // never opened: once it comes it is set up as a device chosen.
    bool mainNeverOpened_ = false;
    bool sound3D_ = false;
    float listenerX_ = 0.0f, listenerY_ = 0.0f;
    bool surfaceFed_ = false;
    MainMixerWindowButtons* windowButtons_ = nullptr;
    QRect layoutArea_;
    // Where the layout last put each window: a window found elsewhere when
    // the positions are stored was moved by the user.
    std::map<const QWidget*, WindowRect> placed_;
    std::unique_ptr<TrackTempoService> tempo_;
    std::array<double, 2> trackBpm_{};
};
