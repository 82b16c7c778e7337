// The headphones mixer window (template 143): the disc jockey's cueing mix on
// a second sound device. Every block the mix cycle writes goes to this
// output as well as to the main one; what differs is each deck's level and
// balance, the headphones cross fader and the device's volume.
//
// Each control's change event is the one place where its effect is applied,
// so code and keys move the controls (the setters below) and the window does
// the rest:
//   deck level moved   -> headphones mix applied, level stored as
//                         "phonesDeckXLevel"
//   cross fader moved  -> headphones mix applied (right click: centre)
//   deck balance moved -> that deck's pan on the headphones device
//   volume moved       -> the device's master gain, main-mixer line law,
//                         balance 0
//   Separate Ears on   -> deck A's balance to -1 (left ear), deck B's to +1;
//                 off  -> both balances to 0
// The headphones mix: the cross fader's gains (the same curve family as the
// main mixer's, following its curve selector) times the two levels, as the
// deck gains of the headphones device only.
//
// A device that cannot be opened loses only the headphones sound: the output
// is closed, the volume slide disabled and a message shown; the main device
// is not touched. A device that stops playing (its sound server gone, the
// card unplugged) is noticed by the mixer's device watch within a second:
// the headphones go quiet on the Null device, the status line says so, and
// the chosen device is opened again when it comes back
// (CRynHeadphonesMixerDevice.cpp).
//
// Its two plots show what the headphones hear of each deck, in the deck's
// colour: with one plot both ears, with two the left and the right ear. Each
// plot's type button reads "Bars" (the band values, spread over 24 columns so
// that decks with different band counts share the axis) or "Scope" (one
// trace of the deck's band groups summed). The main mixer's graphs pass draws
// them (DrawDeck) for the block being heard; hidden plots cost nothing.
//
// User-interface thread only.
#pragma once

#include <QColor>
#include <QElapsedTimer>
#include <QString>
#include <QTimer>
#include <array>
#include <functional>
#include <string>

#include "core/CRynWindow.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/HeadphonesSync.h"
#include "output/engine/OutputDeviceWatch.h"
#include "output/laws/CrossFaderGains.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class QLabel;

namespace dsp {
class DeckAnalysis;
}

class CRynHeadphonesMixer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 143;
    // A headphones cursor that has not moved for this many mix steps while
    // its buffer plays (about a second) means the device has stopped.
    static constexpr int kStalledSteps = 40;

    explicit CRynHeadphonesMixer(QWidget* parent = nullptr);
    ~CRynHeadphonesMixer() override;

    // Start-up: places the controls and restores the two levels and the
    // plot settings.
    void Initialise(WindowHandle mainMixer);
    WindowHandle MainMixer() const { return mainMixer_; }

    // The two colours of deck `deck` (its level pointer is drawn in them).
    void SetDeckColours(int deck, const QColor& first, const QColor& second);
    QColor DeckColour(int deck, int which) const { return colours_[deck][which]; }

    // The headphones output (no device until one is chosen for it).
    CRynAudioOutput& Output() { return output_; }

    // Opens the device `identifier` (sound::EnumerateDevices) for the
    // headphones: volume slide enabled and set from the device, cross fader
    // to 0, mix applied. "" closes the output (volume 0, slide disabled).
    // False when the device could not be opened: the headphones are then off
    // and the message has been shown.
    bool OpenDevice(const std::string& identifier);
    // Takes an opened device (tests: Null devices with their own clock).
    bool OpenDevice(std::unique_ptr<sound::SoundDevice> device);
    // A headphones device is open (its volume slide is enabled).
    bool IsActive() const;

    // The main mixer's curve selector moved: same curve here, mix applied.
    void SetCurve(float c);
    const CrossFaderGains& Gains() const { return gains_; }

    // The headphones mix again (levels and cross fader), and deck `deck`'s
    // headphones balance: new deck buffers carry no settings.
    void ApplyMix();
    void ApplyPan(int deck);

    // The drift correction for `deck` against the main forward play cursor
    // `mainCursor` (bytes) at `nowSeconds`, with the diagnostics recorded in
    // the engine state (drift as 16 bits, the headphones forward frequency,
    // the deck rate). Stops the headphones when their device has stalled.
    HeadphonesSync::Step SyncToMain(int deck, int mainCursor, double nowSeconds, double deckRate);
    HeadphonesSync& Sync() { return sync_; }

    // The graphs pass: deck `deck`'s measurements of `slot` (the block
    // being heard) into the plots shown; nothing while the window is hidden.
    void DrawDeck(int deck, const dsp::DeckAnalysis& analysis, int slot);
    // A deck's graphs on or off (its meters enable); off clears its traces.
    void SetDeckGraphsOn(int deck, bool on);
    // A stopped deck: its traces leave the plots.
    void ClearDeck(int deck);
    // The control ids of the two plots: a double click on one is passed to
    // the main mixer as UWM_GRAPH_DOUBLE_CLICK (template 143, the id).
    static constexpr int kPlotIds[2] = {1061, 1062};
    // One plot on or off when a graph is shown alone (off: cleared and no
    // longer drawn).
    void SetPlotOn(int which, bool on);
    bool PlotOn(int which) const { return plotOn_[which == 1 ? 1 : 0]; }
    // The window is shown with a plot in "Scope": the decks build traces.
    bool WantsScope() const;
    // Plots drawn so far (tests).
    int PlotDraws() const { return plotDraws_; }

    // The keys' setters: they move the controls, whose events do the work.
    void SetLevel(int deck, float level);
    void SetBalance(int deck, float balance);
    void SetCrossFader(float position);
    void SetVolume(float volume);
    void SetSeparateEars(bool on);
    void ToggleSeparateEars();

    float Level(int deck) const;
    float Balance(int deck) const;
    float CrossFader() const;
    float Volume() const;
    bool SeparateEars() const;

    // The controls, for the keys and the tests.
    CNiSlide* LevelSlide(int deck) const { return levels_[deck == 1 ? 1 : 0]; }
    CNiSlide* BalanceSlide(int deck) const { return balances_[deck == 1 ? 1 : 0]; }
    CNiSlide* CrossFaderSlide() const { return crossFader_; }
    CNiSlide* VolumeSlide() const { return volume_; }
    CNiButton* SeparateEarsButton() const { return separateEars_; }
    CNiGraph* Plot(int which) const { return plots_[which == 1 ? 1 : 0]; }
    CNiButton* PlotTypeButton(int which) const { return plotTypes_[which == 1 ? 1 : 0]; }
    CNiButton* PlotCountButton() const { return plotCount_; }
    // The line under the controls: the device in use or what went wrong.
    QString StatusText() const;

    // Shows a problem to the user. Default: a message box that does not block.
    std::function<void(const QString&)> showMessage;

    // --- The device watch (CRynHeadphonesMixerDevice.cpp) ---
    // Watches the device opened by identifier, every
    // OutputDeviceWatch::kCheckMs on a timer of its own; the main output is
    // never touched by it.
    OutputDeviceWatch& DeviceWatch() { return watch_; }
    // The chosen headphones device has stopped playing and is being looked for.
    bool DeviceLost() const { return watch_.Lost(); }
    // The chosen device is not there (a USB card not plugged in when the
    // program starts): the status says so, the headphones play on the Null
    // device and the watch opens the device once it is listed, then hands it
    // the decks (onDeviceBack). `name` is what the settings hold: its
    // description or identifier. The main output is never touched.
    void WaitForDevice(const std::string& name);
    // Shutdown: no more looks at the device (nothing is reopened while the
    // program is torn down).
    void StopDeviceWatch() { watchTimer_.stop(); }
    // The chosen device came back and was opened again (with the volume, the
    // headphones mix and the balances on it): the owner gives it the decks
    // that have buffers on the main device (MixCycle::AttachHeadphones).
    std::function<void()> onDeviceBack;

  protected:
    // The close box hides the window and tells the main mixer.
    void closeEvent(QCloseEvent* event) override;

  private:
    void BuildControls();
    void LayOut();
    void Connect();
    void OnLevelMoved(int deck);
    void OnVolumeMoved();
    void OnSeparateEars(bool on);
    void OnPlotCount(bool two);
    void ShapePlot(int which);  // axes and styles for the plot's type and the count
    bool PlotIsScope(int which) const;
    bool Opened(const QString& name);
    // The headphones are lost: output closed (or, for a device that stopped
    // answering, set aside unclosed), volume off, message shown.
    void Lose(const QString& message, bool stalled = false);
    void NoteStall(int deck);
    void SetUpDeviceWatch();
    // Watches `identifier` from now on ("" or the Null device: nothing).
    void WatchDevice(const std::string& identifier);
    void OnDeviceLost(const std::string& description);
    void OnDeviceBack(const std::string& description);
    // The maximum write-ahead asked of the main mixer (true) or withdrawn.
    void RaiseLatencyWhileLost(bool raise);

    WindowHandle mainMixer_ = 0;
    std::array<std::array<QColor, 2>, 2> colours_{};
    CRynAudioOutput output_;
    OutputDeviceWatch watch_{output_};
    QTimer watchTimer_;
    QElapsedTimer watchClock_;
    bool latencyRaised_ = false;
    // The device being looked for was never opened: when it comes, its own
    // master level is taken as the volume.
    bool neverOpened_ = false;
    // A device that stopped answering: closing it may block until its sound
    // server answers, so it is closed only when another device is chosen or
    // the mixer goes.
    std::unique_ptr<CRynSoundEngine> stalledEngine_;
    CrossFaderGains gains_;
    HeadphonesSync sync_;
    bool loading_ = false;  // levels set from the settings are not stored back
    std::array<int, kDeckCount> lastCursor_{-1, -1};
    std::array<int, kDeckCount> stalled_{};

    std::array<CNiSlide*, 2> levels_{};
    std::array<CNiSlide*, 2> balances_{};
    CNiSlide* crossFader_ = nullptr;
    CNiSlide* volume_ = nullptr;
    CNiButton* separateEars_ = nullptr;
    std::array<CNiGraph*, 2> plots_{};
    std::array<CNiButton*, 2> plotTypes_{};
    CNiButton* plotCount_ = nullptr;
    QLabel* status_ = nullptr;

    // Reused by every draw: 24 band columns plus entry 0, one scope trace.
    static constexpr int kBarColumns = 24;
    std::array<double, kBarColumns + 1> bars_{};
    std::array<double, 100> trace_{};
    std::array<bool, 2> deckOn_{true, true};
    std::array<bool, 2> plotOn_{true, true};
    int plotDraws_ = 0;
};
