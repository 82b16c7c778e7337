// The main mixer's own controls, as one panel the main mixer window embeds:
// the two deck levels, the cross fader with its curve selector, the cross-
// fader plot and the three curve pictures, main volume, balance and auto-pan.
//
// Each control's change event is the one place where its effect is applied,
// so code and keys move the controls (SetValue) and the panel does the rest:
//   deck level moved     -> cross fader applied again
//   cross fader moved    -> catch-up switch set for 200 ms (timer 1), plot
//                           cursor at trunc((x + 1) · 49), cross fader applied
//   curve selector moved -> onCurveChanged(c), c as the curve of Gains(),
//                           plot redrawn, cross fader applied,
//                           c stored as "mainMixerXFaderCurveParameter"
//   volume / balance     -> the main output's master gain (MasterLine.h),
//                           only while the main device is enabled
//   auto-pan on          -> balance saved, timer 3 (100 ms) walks the balance
//                           along sin(phase); off puts the saved balance back
// Timer 5 applies the cross fader again every second. Right clicks centre the
// cross fader and the balance; the cross fader's end arrows move it by 1.0.
//
// The panel owns the cross fader's state (Gains(): curve and position); its
// plot draws the curve from it and the main output takes the deck gains from
// it. The main output may be null or have no device: the controls still move
// and the cross-fader gains are still worked out, nothing reaches a device.
//
// Settings: the deck levels are stored when the mouse lets go of a level
// slide, and half a second after the last move from code or keys (a settings
// write costs a few milliseconds; keys move a level 33 times a second). The
// curve parameter is stored on every change made from code, and on release
// while the mouse drags the selector. The settings must outlive the panel:
// a pending level write is made when the panel is destroyed.
//
// User-interface thread only.
#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>

#include "output/laws/AutoPan.h"
#include "output/laws/CrossFaderGains.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class CRynAudioOutput;
class CRynSettings;

class MainMixerPanel : public QWidget {
    Q_OBJECT
  public:
    // The window's timers (ids as the main mixer numbers them).
    static constexpr int kCatchUpTimer = 1;  // 200 ms, once
    static constexpr int kAutoPanTimer = 3;  // 100 ms while auto-pan is on
    static constexpr int kReapplyTimer = 5;  // 1000 ms
    static constexpr int kCatchUpMs = 200;
    static constexpr int kAutoPanMs = 100;
    static constexpr int kReapplyMs = 1000;
    static constexpr int kLevelSaveDelayMs = 500;      // quiet time before a key move is stored
    static constexpr float kAutoPanStartSpeed = 0.5f;  // cycles per second
    static constexpr double kAutoPanMaxSpeed = 2.0;    // top of the speed slide
    // The curve pictures, in the order of their control ids 1173, 1174, 1175.
    enum CurvePicture { kRampPicture = 0, kLogPicture = 1, kWedgePicture = 2 };

    // Neither pointer is owned; both may be null (see SetMainOutput,
    // SetSettings).
    explicit MainMixerPanel(CRynAudioOutput* main = nullptr, CRynSettings* settings = nullptr,
                            QWidget* parent = nullptr);
    ~MainMixerPanel() override;

    void SetMainOutput(CRynAudioOutput* main) { main_ = main; }
    CRynAudioOutput* MainOutput() const { return main_; }
    void SetSettings(CRynSettings* settings) { settings_ = settings; }

    // Start-up: draws the curve pictures, sets the control ranges, auto-pan
    // speed 0.5 and the cross fader to -1.0, loads both deck levels from the
    // settings, applies the cross fader and starts timer 5.
    void Initialise();

    // The pointer colour and the fill below it of the deck's level slide; the
    // deck's curve in the cross-fader plot takes `main`.
    void SetDeckColours(int deck, const QColor& main, const QColor& dark);

    // Moves Gains() to the fader's position and applies it with the two
    // levels to the main output.
    void ApplyCrossFader();
    // The cross fader's curve and position as last applied, and the deck
    // gains they give.
    const CrossFaderGains& Gains() const { return gains_; }
    // Set by every cross-fader move, cleared 200 ms later: while set, a mix
    // step writes at most one block.
    bool CatchUp() const { return catchUp_; }

    // Moves the curve selector; the whole curve change runs even when the
    // selector already sits at c (start-up loads the stored curve this way).
    void SetCurveParameter(float c);
    // Enables or disables the volume and balance slides together with the
    // writing of the master gain (the main device was chosen or disabled).
    void SetMasterEnabled(bool enabled);
    bool MasterEnabled() const { return masterEnabled_; }
    // Move the slides; the master gain is written again even when the value
    // does not change.
    void SetVolume(float volume);
    void SetBalance(float balance);
    void SetLevel(int deck, float level);
    void SetCrossFader(float position);

    float Volume() const;
    float Balance() const;
    float CrossFader() const;
    float Level(int deck) const;
    float Curve() const;

    // Presses the auto-pan button (its event does the work).
    void SetAutoPan(bool on);
    bool AutoPanOn() const;
    float AutoPanSpeed() const { return autoPan_.Speed(); }
    float AutoPanPhase() const { return autoPan_.Phase(); }

    // Tests: run a timer's work now instead of waiting for it.
    void AutoPanTickForTest() { OnAutoPanTick(); }
    // Shutdown: every timer of the panel stops (a waiting level save is kept
    // for the destructor).
    void StopTimers() {
        catchUpTimer_.stop();
        autoPanTimer_.stop();
        reapplyTimer_.stop();
    }
    void FireTimerForTest(int id);
    // Tests: whether a timer is running.
    bool TimerActive(int id) const;

    // The controls, for the keys and the tests.
    CNiSlide* DeckLevelSlide(int deck) const { return levels_[deck == 1 ? 1 : 0]; }
    CNiSlide* CrossFaderSlide() const { return crossFader_; }
    CNiSlide* CurveSelectorSlide() const { return curveSelector_; }
    CNiGraph* CrossFaderPlot() const { return plot_; }
    CNiGraph* CurvePictureGraph(CurvePicture which) const { return pictures_[which]; }
    CNiSlide* VolumeSlide() const { return volume_; }
    CNiSlide* BalanceSlide() const { return balance_; }
    CNiButton* AutoPanButton() const { return autoPanButton_; }
    CNiSlide* AutoPanSpeedSlide() const { return autoPanSpeed_; }
    CNiButton* ShowPhonesButton() const { return showPhones_; }
    CNiButton* ShowOptionsButton() const { return showOptions_; }

    // The curve parameter went to the headphones mixer's curve.
    std::function<void(float)> onCurveChanged;
    // The cross fader moved (after it was applied).
    std::function<void()> onCrossFaderMoved;
    // "Show Phones Mixer" and "Show Options Window" pressed: show or hide.
    std::function<void(bool)> onShowPhones;
    std::function<void(bool)> onShowOptions;

  private:
    void BuildControls();
    void LayOut();
    void Connect();
    void SetRanges();
    void DrawCurvePictures();
    void RedrawPlot();

    void OnLevelMoved(int deck);
    void OnLevelReleased(int deck);
    void OnCrossFaderMoved(double x);
    void OnCurveMoved(double c);
    void OnAutoPanButton(bool on);
    void OnAutoPanTick();
    void ApplyMasterLine();
    // Sets a volume or balance slide; writes the line even when it stays put.
    void MoveMasterSlide(CNiSlide* slide, double value);
    void StoreCurve();
    void StorePendingLevels();
    void StoreLevel(int deck);

    CRynAudioOutput* main_ = nullptr;
    CRynSettings* settings_ = nullptr;

    std::array<CNiSlide*, 2> levels_{};
    CNiSlide* crossFader_ = nullptr;
    CNiSlide* curveSelector_ = nullptr;
    CNiGraph* plot_ = nullptr;
    std::array<CNiGraph*, 3> pictures_{};
    CNiSlide* volume_ = nullptr;
    CNiSlide* balance_ = nullptr;
    CNiButton* autoPanButton_ = nullptr;
    CNiSlide* autoPanSpeed_ = nullptr;
    CNiButton* showPhones_ = nullptr;
    CNiButton* showOptions_ = nullptr;
    std::array<QColor, 2> deckColours_{};

    CrossFaderGains gains_;  // the curve in use, drawn in the plot
    AutoPan autoPan_;
    // AutoPan keeps the saved balance as a float; the slide holds a double,
    // and turning auto-pan off puts back exactly what the slide held.
    double savedBalance_ = 0.0;

    bool catchUp_ = false;
    bool masterEnabled_ = true;
    bool loading_ = false;  // levels set from the settings are not stored back
    std::array<bool, 2> levelHeld_{};
    std::array<bool, 2> levelPending_{};
    bool curveHeld_ = false;

    QTimer catchUpTimer_;  // timer 1
    QTimer autoPanTimer_;  // timer 3
    QTimer reapplyTimer_;  // timer 5
    QTimer levelSaveTimer_;
};
