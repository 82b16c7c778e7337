// The deck's graph display: what the deck's measurements (dsp::DeckAnalysis)
// show for the block being heard, beside the deck's turntable.
//
// Displays, chosen by the graph type button ("Bars" → "Scope" → "Chart",
// stored as deckGraphType): "Bars" the current band values (x 0 … n, entry 0
// stays 0) with the beat range as two horizontal cursors; "Scope" up to three
// band-group traces (each switchable, or one summed trace) times the scope
// gain; "Chart" the beat value as the pair +value, −value. One graph or two
// (left, right): the split/join button shows "1" or "2"
// (deckGraphNumChannels).
//
// The graph range slide has four pointers: 1 and 2 the user's minimum and
// maximum (1/1000 dB; the bars' y axis; each change is reported through
// onRangePointer), 3 and 4, while the range is on (right click toggles it),
// the smallest and largest current band value. The bands-in-plot buttons
// (2, 3, 6, 12, 24; 24 applied 750 ms later) re-create the analysis bands.
// The beat mode button reads "Auto" or "Man"; in "Auto" a 100 ms timer
// narrows the beat range while the deck plays.
//
// Draw(slot) is the whole graph update; it reuses its buffers (no allocation
// per frame) and redraws only the graphs shown. User-interface thread only.
#pragma once

#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>

#include "dsp/DeckAnalysis.h"

class CNiButton;
class CNiGraph;
class CNiSlide;
class CRynSettings;

class DeckGraphs : public QWidget {
    Q_OBJECT
  public:
    static constexpr int kAutoRangeMs = 100;
    static constexpr int kBands24DelayMs = 750;
    static constexpr std::array<int, 5> kBandChoices{2, 3, 6, 12, 24};

    explicit DeckGraphs(QWidget* parent = nullptr);
    ~DeckGraphs() override;

    // Loads the stored choices of deck `deck` (settings may be null: defaults).
    void Initialise(int deck, CRynSettings* settings, const QColor& main, const QColor& dark);

    dsp::DeckAnalysis& Analysis() { return analysis_; }
    const dsp::DeckAnalysis& Analysis() const { return analysis_; }

    // The graph update for the slot being heard.
    void Draw(int slot);
    // Graph updates drawn so far (tests).
    int Draws() const { return draws_; }
    float BeatValue() const { return analysis_.BeatValue(); }

    // Graphs on or off (the meters enable of the deck).
    void SetGraphsOn(bool on);
    // True while the meters are on and at least one of the graphs is shown.
    bool GraphsOn() const { return on_ && (graphOn_[0] || graphOn_[1]); }
    // One graph (0, or 1 the right one of two) on or off, as a double click
    // shows one graph alone; off: cleared and no longer drawn. Stored as
    // deckGraphEnabled (on while either graph is).
    void SetGraphOn(int which, bool on);
    bool GraphOn(int which) const { return on_ && graphOn_[which == 1 ? 1 : 0]; }

    void SetGraphType(const QString& type);  // "Bars", "Scope" or "Chart"
    QString GraphType() const { return type_; }
    void SetChannels(int n);  // 1 or 2
    int Channels() const { return channels_; }
    // 2, 3, 6, 12 now; 24 after 750 ms.
    void SetBandsInPlot(int n);
    void SetBeatAutomatic(bool on);
    void SetGraphRangeEnabled(bool on);
    bool GraphRangeEnabled() const { return rangeOn_; }
    void SetIntegerValues(bool on) { analysis_.SetIntegerValues(on); }
    // One 100 ms tick of the auto range (tests run it directly).
    void AutoRangeTick();

    CNiGraph* Graph(int which) const { return graphs_[which == 1 ? 1 : 0]; }
    CNiSlide* RangeSlide() const { return range_; }
    CNiButton* TypeButton() const { return typeButton_; }
    CNiButton* SplitButton() const { return split_; }
    CNiButton* BeatModeButton() const { return beatMode_; }
    CNiButton* BandsButton(int index) const { return bandButtons_[index]; }
    CNiButton* ScopeBandButton(int g) const { return scopeBands_[g]; }
    CNiButton* SumScopeButton() const { return sumScope_; }
    CNiSlide* ScopeGainSlide() const { return scopeGain_; }
    CNiSlide* ScopeTimeSlide() const { return scopeTime_; }

    // Pointer 1 or 2 of the range slide moved to a value (1/1000 dB).
    std::function<void(int pointer, double value)> onRangePointer;
    // A graph was double-clicked (its index 0 or 1).
    std::function<void(int graph)> onGraphDoubleClicked;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildControls();
    void Reshape();  // axes and plots for the type, channels and bands
    void DrawBars();
    void DrawScope(int slot);
    void DrawChart();
    void ApplyBands(int n);

    int deck_ = 0;
    CRynSettings* settings_ = nullptr;
    dsp::DeckAnalysis analysis_;
    QString type_ = QStringLiteral("Bars");
    int channels_ = 1;
    bool on_ = true;
    std::array<bool, 2> graphOn_{true, true};
    bool rangeOn_ = true;
    int pendingBands_ = 0;
    int draws_ = 0;
    QColor main_, dark_;

    std::array<CNiGraph*, 2> graphs_{};
    CNiSlide* range_ = nullptr;
    CNiButton* typeButton_ = nullptr;
    CNiButton* split_ = nullptr;
    CNiButton* beatMode_ = nullptr;
    std::array<CNiButton*, 5> bandButtons_{};
    std::array<CNiButton*, 3> scopeBands_{};
    CNiButton* sumScope_ = nullptr;
    CNiSlide* scopeGain_ = nullptr;
    CNiSlide* scopeTime_ = nullptr;

    // Buffers reused by every draw.
    std::array<std::array<double, dsp::DeckAnalysis::kMaxBands + 1>, 2> bars_{};
    std::array<double, dsp::DeckAnalysis::kPoints> trace_{};

    QTimer autoRange_;
    QTimer bands24_;
};
