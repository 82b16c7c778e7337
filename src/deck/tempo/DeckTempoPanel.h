// DeckTempoPanel: the tempo controls of one deck, embedded in the deck window.
//
// Controls and what they do:
// - tempo slide, -8 … +8 percent (vertical, faster towards the top); stays
//   where it is put; a right-button release sets it to 0.
// - spindle slide, -1 … +1, four percent a unit (horizontal); a temporary
//   push that springs back to 0 whenever the mouse is released on it (any
//   button).
// - arbitrary tempo, whole percent: the up button adds 1 and the down button
//   takes 1 away per left click; a right-button release on either sets it to
//   0. Every press re-applies the tempo, even one that changed nothing.
// - reset toggle: on remembers the tempo slide, sets it to 0 and disables it;
//   off puts the remembered value back and enables the slide again.
// - tempo display: the total change as text, "2.3%", "2.0%", "0.0%".
//
// ApplyTempo() is the one place where the tempo takes effect. It runs from
// the slides' value changes (mouse, keyboard steps, reset toggle alike) and
// from the button presses and right releases. It shows the display text,
// computes the output frequency F = trunc(R × P × 0.01f + R) from the base
// rate R (Hz) and the total change P (percent, ±75), stores F as the deck's
// outputFrequency in the engine state and hands it to onFrequency, where the
// deck window asks the host to set its buffers' playback frequency.
//
// User-interface thread only.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <functional>

#include "core/PcmFormat.h"

class CNiButton;
class CNiSlide;
class QLabel;

class DeckTempoPanel : public QWidget {
    Q_OBJECT
  public:
    // Slide ranges and keyboard steps.
    static constexpr double kTempoRange = 8.0;        // percent, either way
    static constexpr double kSpindleRange = 1.0;      // units of four percent, either way
    static constexpr double kTempoCoarseStep = 0.05;  // tempo slide, keys Q R / U P
    static constexpr double kTempoFineStep = 0.005;   // tempo slide, keys W E / I O
    static constexpr double kSpindleStep = 0.05;      // spindle slide, keys F V

    explicit DeckTempoPanel(QWidget* parent = nullptr);
    ~DeckTempoPanel() override;

    // The deck this panel works for (0 = A, 1 = B): picks the engine-state
    // slot for outputFrequency. Shows
    // the display text; the frequency is left to the first ApplyTempo.
    void Initialise(int deck);
    int DeckIndex() const { return deck_; }

    // Base rate R in Hz: 44100 in CD mode, the decoder's sample rate in File
    // mode. Unset, or answering 0 or less, counts as 44100.
    std::function<int()> baseRate;
    // Receives F (Hz) after every ApplyTempo; the deck posts
    // UWM_SET_FORWARD_FREQUENCY (deck, F) with it.
    std::function<void(int hz)> onFrequency;

    // Recomputes the display and the output frequency from the controls, and
    // stores and hands on the frequency.
    void ApplyTempo();

    // The frequency of the last ApplyTempo, Hz (44100 before the first).
    int OutputFrequency() const { return frequency_; }
    // (tempo + 4 × spindle) × 441 + 44100, without the arbitrary steps and the
    // source's own rate: the headphones mixer's drift reference.
    double NominalRate() const;
    // P = tempo + 4 × spindle + arbitrary, percent, clamped to ±75.
    double TotalPercent() const;
    // The text the tempo display shows.
    QString DisplayText() const;

    double Tempo() const;                         // tempo slide, percent
    double Spindle() const;                       // spindle slide, units of four percent
    int Arbitrary() const { return arbitrary_; }  // whole percent

    // Keyboard: add the step to the slide's value, clamp it to the slide's
    // range and set it; the value change applies the tempo. A tempo step does
    // nothing while the reset toggle holds the slide at 0.
    void StepTempo(double step);
    void StepSpindle(double step);
    // The spindle key is let go: the slide springs back to 0.
    void ReleaseSpindle();

    // The up and down buttons from code (Shift-F / Shift-V on deck A): as a
    // left click. ArbitraryReset is the right-button release.
    void ArbitraryUp();
    void ArbitraryDown();
    void ArbitraryReset();

    // Sets the reset toggle; its change does the work (see above).
    void SetResetTempo(bool on);
    bool ResetTempo() const;

    // The deck's main colour and its dark shade, for pointers, lamps and text.
    void SetDeckColours(const QColor& main, const QColor& dark);

    // The controls, for the deck's layout and for tests.
    CNiSlide* TempoSlide() const { return tempoSlide_; }
    CNiSlide* SpindleSlide() const { return spindleSlide_; }
    CNiButton* UpButton() const { return upButton_; }
    CNiButton* DownButton() const { return downButton_; }
    CNiButton* ResetToggle() const { return resetToggle_; }
    QLabel* Display() const { return display_; }

  private:
    void BuildControls();
    void ConnectControls();
    void ShowDisplayText();
    void OnArbitraryPress(int step, int button);
    void OnArbitraryRelease(int button);
    void OnResetToggled(bool on);
    int BaseRate() const;

    int deck_ = 0;
    int arbitrary_ = 0;             // percent, whole steps of the up/down buttons
    double rememberedTempo_ = 0.0;  // tempo slide while the reset toggle is on
    int frequency_ = kCdRate;       // Hz, last applied

    CNiSlide* tempoSlide_ = nullptr;
    CNiSlide* spindleSlide_ = nullptr;
    CNiButton* upButton_ = nullptr;
    CNiButton* downButton_ = nullptr;
    CNiButton* resetToggle_ = nullptr;
    QLabel* display_ = nullptr;
    QColor main_;
    QColor dark_;
};
