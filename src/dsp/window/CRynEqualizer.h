// A deck's equalizer window (template 137): the deck's multi-band FIR
// equalizer, with its frequency-response plot, band levels, filter lengths,
// design window, band edges, anti-clip, isolation and on switch.
//
// The window owns the deck's four audible engines (16-bit and float, left
// and right, dsp::StereoEqualizer) and keeps them identical; the deck's
// block routine calls ProcessStereo for every block while the equalizer is
// on and of the program's own type. With the sound device's equalizer
// ("Direct Sound") the window only forwards the user's settings to the main
// mixer as messages and draws a staircase instead of a computed response.
//
// The window is split by concern over several files:
//   CRynEqualizer.cpp          settings, block entry, buttons, type, messages
//   CRynEqualizerControls.cpp  the controls, their wiring and their layout
//   CRynEqualizerBands.cpp     band count, levels, taps, selection, edges
//   CRynEqualizerPlot.cpp      the response curves, the total, the lines
//
// Controls follow the dialog's numbering in their roles: the plot (1029),
// "EQ on" (1021), "AC on" (1022), the filter-type list (1030), the band-count
// buttons 12, 6, 3, 2 (1031-1034), the taps slide (1035) and its display
// (1051), "reset->" (1036), the level slides of bands 0 … 11 (1037-1048), the
// selected-band slide (1049) and "ISOLATE->" (1050).
//
// Everything runs on the user-interface thread: the block routine calls in
// between user events, so a settings change never meets a block half done.
#pragma once

#include <QColor>
#include <QString>
#include <array>
#include <cstdint>

#include "core/CRynWindow.h"
#include "dsp/eq/StereoEqualizer.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class QComboBox;

class CRynEqualizer : public CRynWindow {
    Q_OBJECT
  public:
    static constexpr int kTemplateId = 137;
    static constexpr int kLevelSlides = 12;  // bands the window shows at most
    static constexpr int kTotalPlot = 12;    // plots 0 … 11 are the bands
    static constexpr int kLowLine = 0;       // graph cursor of the low edge
    static constexpr int kHighLine = 1;      // graph cursor of the high edge

    // Window timers.
    static constexpr int kBandsTimer = 1;  // 750 ms once: the delayed 12-band change
    static constexpr int kTapsTimer = 2;   // 100 ms once: the taps slide has settled
    static constexpr int kBandsDelayMs = 750;
    static constexpr int kTapsDelayMs = 100;

    // The anti-clip button's colour after each block while anti-clip is on.
    static inline const QColor kClipColour{196, 10, 20};
    static inline const QColor kNoClipColour{0, 0, 0};

    // Own: the program's FIR equalizer ("Orvane"); Device: the sound
    // device's equalizer effect ("Direct Sound").
    enum class EqType { Own, Device };

    explicit CRynEqualizer(QWidget* parent = nullptr);
    ~CRynEqualizer() override;

    // Start-up: the deck (0 = A, 1 = B) and its window.
    void Initialise(int deck, WindowHandle deckWindow);
    int DeckIndex() const { return deck_; }
    WindowHandle DeckWindow() const { return deckWindow_; }

    // Start-up, called by the host once the windows exist: the stored
    // equalizer type, band count (2, 3 and 6 at once, 12 through the delayed
    // path, anything else ignored), filter type by name, anti-clip and on
    // state ("deckXEQType", "numBandsInEqualizerDeckX", "EqFilterTypeDeckX",
    // "EqClipProtectOnStateDeckX", "EqOnStateDeckX").
    void ApplyStoredSettings();

    // --- The deck's block routine.
    // "EQ on"; the deck runs the equalizer only while this is on and the type
    // is the own one.
    bool IsOn() const;
    bool OwnType() const { return type_ == EqType::Own; }
    // Equalizes the two 1176-sample halves of one block in place (with
    // writeBack), on the pair of engines of that sample type. With anti-clip
    // on, the "AC" button shows red for a block in which a band had to be
    // lowered (black otherwise), and the second pointer of each level slide
    // shows that band's effective gain.
    void ProcessStereo(std::int16_t* left, std::int16_t* right, bool writeBack);
    void ProcessStereo(float* left, float* right, bool writeBack);
    // The deck's arithmetic: the curves are drawn from that type's engines.
    void SetIntegerArithmetic(bool ints);
    bool IntegerArithmetic() const { return ints_; }

    // --- What the user does; the controls' events end here.
    // A band-count button: 2, 3 and 6 at once; 12 after 750 ms.
    void ChooseBandCount(int n);
    // From the configuration window, through the main mixer.
    void SetEqualizerType(EqType type);
    EqType Type() const { return type_; }

    int BandCount() const { return bandCount_; }
    int SelectedBand() const;
    bool TapChangePending() const;

    // The controls (tests and the keyboard move them as the mouse does).
    CNiGraph* Graph() const { return graph_; }
    CNiButton* OnButton() const { return onButton_; }
    CNiButton* AntiClipButton() const { return antiClip_; }
    QComboBox* FilterTypeList() const { return filterType_; }
    // The button for 12, 6, 3 or 2 bands; null for any other count.
    CNiButton* BandCountButton(int n) const;
    CNiSlide* TapsSlide() const { return taps_; }
    CNiButton* TapsDisplay() const { return tapsDisplay_; }
    CNiButton* ResetButton() const { return reset_; }
    CNiSlide* LevelSlide(int b) const;
    CNiSlide* SelectedBandSlide() const { return selected_; }
    CNiButton* IsolateButton() const { return isolate_; }

    dsp::StereoEqualizer& Engines() { return engines_; }
    const dsp::StereoEqualizer& Engines() const { return engines_; }

  protected:
    // The close box hides the window and tells its deck.
    void closeEvent(QCloseEvent* event) override;
    // Activation withdraws the deck's quarter latency, deactivation asks for
    // it again (through the deck).
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void OnWindowTimer(int id) override;

  private:
    // CRynEqualizerControls.cpp
    void BuildControls();
    void WireControls();
    void LayOut();
    void ShowTypeControls();

    // CRynEqualizerBands.cpp
    void SetBandCount(int n, bool resetLevels);
    void DelayedBandCountDue();
    void OnLevelChanged(int b, double value);
    void ApplyLevel(int b, double value, bool draw);
    void SetLevelSlideQuietly(int b, double value);
    void OnTapsChanged();
    void ApplyTapCount();
    void ShowSelectedBand();
    void OnLineDragged(int line, double x);
    void OnFilterTypeChosen(const QString& name);
    void ResetTapCounts();
    void Isolate();
    double RestLevel() const { return type_ == EqType::Own ? 1.0 : 0.5; }

    // CRynEqualizerPlot.cpp
    void DrawBand(int b);
    void DrawTotal();
    void DrawAllBands();
    void ShowEffectiveGains();
    void ShowClipColour(bool clipped);

    template <typename Sample>
    void ProcessStereoOf(Sample* left, Sample* right, bool writeBack);
    void SendToMainMixer(Uwm msg, WParam wParam, LParam lParam, bool post);

    int deck_ = 0;
    WindowHandle deckWindow_ = 0;
    EqType type_ = EqType::Own;
    int bandCount_ = 0;
    bool ints_ = false;
    bool showingBand_ = false;  // the window itself moves the taps slide
    int pendingTapsBand_ = 0;   // the band a settling taps change is for

    dsp::StereoEqualizer engines_;

    CNiGraph* graph_ = nullptr;
    CNiButton* onButton_ = nullptr;
    CNiButton* antiClip_ = nullptr;
    QComboBox* filterType_ = nullptr;
    std::array<CNiButton*, 4> bandButtons_{};  // 12, 6, 3, 2
    CNiSlide* taps_ = nullptr;
    CNiButton* tapsDisplay_ = nullptr;
    CNiButton* reset_ = nullptr;
    std::array<CNiSlide*, kLevelSlides> levels_{};
    CNiSlide* selected_ = nullptr;
    CNiButton* isolate_ = nullptr;
};
