// The main mixer's meters: per deck the meters enable button, the RMS value
// of the block being heard, a decibel meter of 9 lamps (4 green, 4 yellow,
// 1 red), a beat lamp, a beat meter of 12 lamps in the deck's two colours, a
// small graph ("Bars": the band values; "Scope": one trace of the band
// groups summed; right click switches) and a beats-per-minute read-out (the
// tempo the deck's track is heard at); and for the program the processor load and the system
// overload lamp.
//
// The decibel meter is a moving bar (LampBar mode 0, at most three lamps per
// update) of f = L / (96.33/√2) − 0.4 for the RMS level L; the beat meter a
// filled bar (mode 1) of the beat value b, and the beat lamp the mix of the
// deck's two colours by b. Only lamps whose state changes are touched, so a
// steady meter costs no painting. Right-click on a beat-meter lamp switches
// the beat meters off or on; on a decibel lamp or an RMS value, the decibel
// meters and RMS values.
//
// The overload lamp shows `pendingTicks` as its caption: green below 1,
// red otherwise. User-interface thread only.
#pragma once

#include <QColor>
#include <QWidget>
#include <array>
#include <functional>
#include <span>

#include "output/laws/LampBar.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class QLabel;

class MixerMeters : public QWidget {
    Q_OBJECT
  public:
    static constexpr int kDecibelLamps = 9;
    static constexpr int kBeatLamps = 12;
    static inline const QColor kGreenOn{40, 255, 60}, kGreenOff{10, 100, 10};
    static inline const QColor kYellowOn{255, 255, 40}, kYellowOff{100, 100, 10};
    static inline const QColor kRedOn{255, 50, 40}, kRedOff{100, 10, 10};

    explicit MixerMeters(QWidget* parent = nullptr);

    void SetDeckColours(int deck, const QColor& main, const QColor& dark);

    // One drawn block of a deck: its RMS level (dB), beat value and current
    // band values (entries 0 … n).
    void ShowDeck(int deck, float rmsDb, float beat, std::span<const double> bands);
    // The deck's small graph: "Bars" or "Scope" (anything else is "Bars").
    void SetGraphType(int deck, const QString& type);
    QString GraphType(int deck) const;
    bool ShowsScope(int deck) const { return scope_[deck]; }
    // The graph shows the scope and is visible: a trace is wanted.
    bool WantsScope(int deck) const;
    // One scope trace of the block being drawn (100 points, 16-bit scale).
    void ShowScope(int deck, std::span<const double> trace);
    // A stopped deck: the RMS text reads "0.0" and the band graph is cleared.
    void ClearDeck(int deck);
    void SetCpuLoad(int percent);
    // The overload lamp after a tick was answered.
    void SetOverloadLamp(bool on, int pendingTicks);
    // The look of the deck's meters enable button (on: the deck's colours).
    void SetMetersEnabledLook(int deck, bool on);

    bool BeatMetersOn() const { return beatMetersOn_; }
    bool DecibelMetersOn() const { return decibelMetersOn_; }
    void SetBeatMetersOn(bool on);
    void SetDecibelMetersOn(bool on);

    // What is shown (tests).
    QString RmsText(int deck) const;
    int DecibelLit(int deck) const { return decibel_[deck].Lit(); }
    int BeatLit(int deck) const { return beat_[deck].Lit(); }
    QColor BeatLedColour(int deck) const;
    CNiButton* EnableButton(int deck) const { return enable_[deck]; }
    CNiButton* DecibelLamp(int deck, int i) const { return decibelLamps_[deck][i]; }
    CNiButton* BeatLamp(int deck, int i) const { return beatLamps_[deck][i]; }
    CNiButton* BeatLed(int deck) const { return beatLed_[deck]; }
    CNiButton* OverloadLamp() const { return overload_; }
    CNiGraph* BandGraph(int deck) const { return graphs_[deck]; }
    QLabel* RmsLabel(int deck) const { return rms_[deck]; }
    QLabel* BpmLabel(int deck) const { return bpm_[deck]; }
    QLabel* CpuLabel() const { return cpuText_; }
    CNiSlide* CpuSlide() const { return cpu_; }
    QString CpuText() const;
    double CpuValue() const;
    QString BpmText(int deck) const;
    // The deck's beats-per-minute read-out: its text ("129.6 BPM").
    void SetBpmText(int deck, const QString& text);

    // The user pressed a deck's meters enable button (its new state).
    std::function<void(int deck, bool on)> onEnableMeters;
    // The user switched a deck's graph type (right click on the graph).
    std::function<void(int deck, const QString& type)> onGraphTypeChanged;
    // A band graph was double-clicked.
    std::function<void(int deck)> onGraphDoubleClicked;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildDeck(int deck);
    void LightBar(int deck, bool beatBar);
    void ShapeGraph(int deck);

    std::array<CNiButton*, 2> enable_{};
    std::array<QLabel*, 2> rms_{};
    std::array<QLabel*, 2> bpm_{};
    std::array<std::array<CNiButton*, kDecibelLamps>, 2> decibelLamps_{};
    std::array<std::array<CNiButton*, kBeatLamps>, 2> beatLamps_{};
    std::array<CNiButton*, 2> beatLed_{};
    std::array<CNiGraph*, 2> graphs_{};
    std::array<LampBar, 2> decibel_{LampBar(kDecibelLamps, 0), LampBar(kDecibelLamps, 0)};
    std::array<LampBar, 2> beat_{LampBar(kBeatLamps, 1), LampBar(kBeatLamps, 1)};
    std::array<std::array<QColor, 2>, 2> colours_{};
    std::array<int, 2> shownBars_{-1, -1};
    std::array<bool, 2> scope_{};
    std::array<int, 2> shownTenths_{};  // the RMS text in tenths of a dB
    std::array<double, 25> bandBuffer_{};
    QLabel* cpuText_ = nullptr;
    CNiSlide* cpu_ = nullptr;
    CNiButton* overload_ = nullptr;
    bool beatMetersOn_ = true;
    bool decibelMetersOn_ = true;
};
