#include "deck/graphs/DeckGraphs.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "deck/graphs/GraphValues.h"
#include "settings/CRynSettings.h"

namespace {

constexpr double kTop = dsp::BeatRange::kTop;  // 280000: twice the 16-bit range in 1/1000 dB
const QString kBars = QStringLiteral("Bars");
const QString kScope = QStringLiteral("Scope");
const QString kChart = QStringLiteral("Chart");
constexpr int kChartPoints = 150;

CNiButton* SmallButton(QWidget* parent, const QString& text, bool toggle = false) {
    auto* b = new CNiButton(text, text, parent);
    b->setFixedHeight(18);
    b->setMinimumWidth(26);
    if (!toggle)
        b->SetAction(CNiButton::kSwitchUntilReleased);
    return b;
}

// A command button's caption, whether it is held down or not.
void ShowCaption(CNiButton* b, const QString& text) {
    b->SetOffText(text);
    b->SetOnText(text);
}

}  // namespace

DeckGraphs::DeckGraphs(QWidget* parent) : QWidget(parent) {
    BuildControls();
    autoRange_.setInterval(kAutoRangeMs);
    connect(&autoRange_, &QTimer::timeout, this, [this] { AutoRangeTick(); });
    bands24_.setSingleShot(true);
    bands24_.setInterval(kBands24DelayMs);
    connect(&bands24_, &QTimer::timeout, this, [this] { ApplyBands(24); });
    autoRange_.start();
}

DeckGraphs::~DeckGraphs() = default;

void DeckGraphs::BuildControls() {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    for (int i = 0; i < 2; ++i) {
        graphs_[i] = new CNiGraph(this);
        graphs_[i]->setMinimumSize(120, 70);
        graphs_[i]->SetAxisLabelsVisible(false);
        graphs_[i]->SetGridLines(4, 4);
        graphs_[i]->installEventFilter(this);
        // The two horizontal cursors of the bars are the beat range.
        connect(graphs_[i], &CNiGraph::cursorChanged, this, [this](int c, double, double y) {
            dsp::BeatRange& r = analysis_.Range();
            if (c == 0)
                r.SetCursors(std::clamp(y, 0.0, r.High()), r.High());
            else
                r.SetCursors(r.Low(), std::clamp(y, r.Low(), kTop));
        });
    }
    grid->addWidget(graphs_[0], 0, 0);
    grid->addWidget(graphs_[1], 0, 1);

    range_ = new CNiSlide(Qt::Vertical, this);
    range_->SetAxis(0.0, kTop);
    range_->SetPointerCount(4);
    range_->SetPointerValue(0, 0.0);
    range_->SetPointerValue(1, kTop);
    range_->SetPointerInteractive(2, false);
    range_->SetPointerInteractive(3, false);
    range_->setFixedWidth(28);
    range_->installEventFilter(this);
    grid->addWidget(range_, 0, 2);
    connect(range_, &CNiSlide::pointerValueChanged, this, [this](int index, double v) {
        if (index > 1)
            return;
        if (type_ == kBars)
            Reshape();
        if (onRangePointer)
            onRangePointer(index + 1, v);
    });

    auto* row = new QHBoxLayout;
    row->setSpacing(2);
    typeButton_ = SmallButton(this, kBars);
    typeButton_->setMinimumWidth(48);
    connect(typeButton_, &CNiButton::valueChanged, this, [this](bool on) {
        if (!on)
            return;
        SetGraphType(type_ == kBars ? kScope : type_ == kScope ? kChart : kBars);
    });
    split_ = SmallButton(this, QStringLiteral("1"));
    connect(split_, &CNiButton::valueChanged, this, [this](bool on) {
        if (on)
            SetChannels(channels_ == 1 ? 2 : 1);
    });
    beatMode_ = SmallButton(this, QStringLiteral("Auto"));
    connect(beatMode_, &CNiButton::valueChanged, this, [this](bool on) {
        if (on)
            SetBeatAutomatic(!analysis_.Range().Automatic());
    });
    row->addWidget(typeButton_);
    row->addWidget(split_);
    row->addWidget(beatMode_);
    for (size_t i = 0; i < kBandChoices.size(); ++i) {
        bandButtons_[i] = SmallButton(this, QString::number(kBandChoices[i]));
        const int n = kBandChoices[i];
        connect(bandButtons_[i], &CNiButton::valueChanged, this, [this, n](bool on) {
            if (on)
                SetBandsInPlot(n);
        });
        row->addWidget(bandButtons_[i]);
    }
    for (int g = 0; g < 3; ++g) {
        scopeBands_[g] = SmallButton(this, QString::number(g + 1), true);
        scopeBands_[g]->SetValue(true);
        connect(scopeBands_[g], &CNiButton::valueChanged, this, [this, g](bool on) {
            graphs_[0]->SetPlotVisible(g, on);
            graphs_[1]->SetPlotVisible(g, on);
            if (settings_)
                settings_->SetScopeBandOnState(deck_, g, on);
        });
        row->addWidget(scopeBands_[g]);
    }
    sumScope_ = SmallButton(this, QStringLiteral("Σ"), true);
    row->addWidget(sumScope_);
    scopeGain_ = new CNiSlide(Qt::Horizontal, this);
    scopeGain_->SetAxis(0.0, 4.0);
    scopeGain_->SetValue(1.0);
    scopeGain_->setFixedHeight(18);
    scopeGain_->installEventFilter(this);
    connect(scopeGain_, &CNiSlide::valueChanged, this, [this](double v) {
        if (settings_)
            settings_->SetDeckScopeGainSettingName(deck_, static_cast<float>(v));
    });
    scopeTime_ = new CNiSlide(Qt::Horizontal, this);
    scopeTime_->SetAxis(1.0, 10.0);
    scopeTime_->SetValue(3.0);
    scopeTime_->setFixedHeight(18);
    connect(scopeTime_, &CNiSlide::valueChanged, this,
            [this](double v) { analysis_.SetScopeTimeRange(v); });
    row->addWidget(scopeGain_, 1);
    row->addWidget(scopeTime_, 1);
    grid->addLayout(row, 1, 0, 1, 3);
}

void DeckGraphs::Initialise(int deck, CRynSettings* settings, const QColor& main,
                            const QColor& dark) {
    deck_ = deck == 1 ? 1 : 0;
    settings_ = settings;
    main_ = main;
    dark_ = dark;
    range_->SetPointerColor(0, main);
    range_->SetPointerColor(1, main);
    range_->SetPointerColor(2, dark);
    range_->SetPointerColor(3, dark);
    if (settings_) {
        analysis_.SetIntegerValues(settings_->GetUseIntegersForGraphs());
        analysis_.SetTrigger(settings_->GetScopeTriggerOnState());
        analysis_.SetBeatBand(settings_->GetBeatLEDBandIndex());
        analysis_.SetBandsInPlot(settings_->GetNumBandsInPlot(deck_));
        analysis_.Range().SetAutomatic(settings_->GetDeckBeatFindMode(deck_) !=
                                       QStringLiteral("Man"));
        rangeOn_ = settings_->GetDeckGraphRangeEnabled(deck_);
        // A graph shown alone by a double click stays so after a restart.
        graphOn_[0] = graphOn_[1] = settings_->GetDeckGraphEnabled(deck_);
        channels_ = settings_->GetDeckGraphNumChannels(deck_) == 2 ? 2 : 1;
        const QString t = settings_->GetDeckGraphType(deck_);
        type_ = (t == kScope || t == kChart) ? t : kBars;
        scopeGain_->SetValue(settings_->GetDeckScopeGainSettingName(deck_));
        for (int g = 0; g < 3; ++g)
            scopeBands_[g]->SetValue(settings_->GetScopeBandOnState(deck_, g));
    }
    ShowCaption(beatMode_,
                analysis_.Range().Automatic() ? QStringLiteral("Auto") : QStringLiteral("Man"));
    ShowCaption(typeButton_, type_);
    ShowCaption(split_, QString::number(channels_));
    Reshape();
}

void DeckGraphs::SetGraphsOn(bool on) {
    on_ = on;
    if (!on)
        for (CNiGraph* g : graphs_)
            g->Clear();
}

void DeckGraphs::SetGraphOn(int which, bool on) {
    which = which == 1 ? 1 : 0;
    graphOn_[which] = on;
    if (!on)
        graphs_[which]->Clear();
    if (settings_)
        settings_->SetDeckGraphEnabled(deck_, graphOn_[0] || graphOn_[1]);
}

void DeckGraphs::SetGraphType(const QString& type) {
    type_ = (type == kScope || type == kChart) ? type : kBars;
    ShowCaption(typeButton_, type_);
    if (settings_)
        settings_->SetDeckGraphType(deck_, type_);
    Reshape();
}

void DeckGraphs::SetChannels(int n) {
    channels_ = n == 2 ? 2 : 1;
    ShowCaption(split_, QString::number(channels_));
    if (settings_)
        settings_->SetDeckGraphNumChannels(deck_, channels_);
    Reshape();
}

void DeckGraphs::SetBandsInPlot(int n) {
    if (n >= 24) {
        pendingBands_ = 24;
        bands24_.start();
        return;
    }
    bands24_.stop();
    ApplyBands(n);
}

void DeckGraphs::ApplyBands(int n) {
    pendingBands_ = 0;
    analysis_.SetBandsInPlot(n);
    if (settings_)
        settings_->SetNumBandsInPlot(deck_, analysis_.BandsInPlot());
    Reshape();
}

void DeckGraphs::SetBeatAutomatic(bool on) {
    analysis_.Range().SetAutomatic(on);
    ShowCaption(beatMode_, on ? QStringLiteral("Auto") : QStringLiteral("Man"));
    if (settings_)
        settings_->SetDeckBeatFindMode(deck_, on ? QStringLiteral("Auto") : QStringLiteral("Man"));
}

void DeckGraphs::SetGraphRangeEnabled(bool on) {
    rangeOn_ = on;
    range_->SetPointerVisible(2, on);
    range_->SetPointerVisible(3, on);
    if (settings_)
        settings_->SetDeckGraphRangeEnabled(deck_, on);
}

void DeckGraphs::AutoRangeTick() {
    // The range narrows only while the deck plays.
    if (Engine().decks[deck_].isPlaying.load() != 0)
        analysis_.Range().Narrow();
}

void DeckGraphs::Reshape() {
    graphs_[1]->setVisible(channels_ == 2);
    analysis_.SetScopeWanted(dsp::DeckAnalysis::kDeckScope, type_ == kScope);
    const int n = analysis_.BandsInPlot();
    for (CNiGraph* g : graphs_) {
        g->Clear();
        if (type_ == kBars) {
            g->SetPlotCount(1);
            g->SetPlotStyle(0, CNiGraph::kBars);
            g->SetPlotColor(0, main_.isValid() ? main_ : QColor(60, 200, 60));
            g->SetXRange(0, n);
            g->SetXIncrement(0, 1);
            g->SetYRange(range_->PointerValue(0),
                         std::max(range_->PointerValue(0) + 1000, range_->PointerValue(1)));
            g->SetCursorCount(2);
            for (int c = 0; c < 2; ++c) {
                g->SetCursorStyle(c, CNiGraph::kHorizontalLine);
                g->SetCursorColor(c, dark_.isValid() ? dark_.lighter(150) : QColor(Qt::white));
                g->SetCursorVisible(c, true);
                g->SetCursorDraggable(c, true);
            }
        } else if (type_ == kScope) {
            g->SetPlotCount(3);
            for (int p = 0; p < 3; ++p) {
                g->SetPlotStyle(p, CNiGraph::kLines);
                g->SetPlotVisible(p, scopeBands_[p]->Value());
            }
            g->SetXRange(0, dsp::DeckAnalysis::kPoints);
            g->SetXIncrement(0, 1);
            g->SetYRange(-32768, 32767);
            g->SetCursorCount(0);
        } else {
            g->SetPlotCount(2);
            g->SetPlotStyle(0, CNiGraph::kLines);
            g->SetPlotStyle(1, CNiGraph::kLines);
            g->SetPlotColor(0, main_.isValid() ? main_ : QColor(60, 200, 60));
            g->SetPlotColor(1, main_.isValid() ? main_ : QColor(60, 200, 60));
            g->SetChartLength(kChartPoints);
            g->SetXRange(0, kChartPoints);
            g->SetYRange(-1.0, 1.0);
            g->SetCursorCount(0);
        }
    }
}

void DeckGraphs::Draw(int slot) {
    analysis_.UpdateCurrent(slot);
    const auto current = analysis_.CurrentValues();
    if (rangeOn_) {
        double lo = kTop, hi = 0.0;
        for (size_t e = 1; e < current.size(); ++e) {
            lo = std::min(lo, current[e]);
            hi = std::max(hi, current[e]);
        }
        range_->SetPointerValue(2, std::clamp(lo, 0.0, kTop));
        range_->SetPointerValue(3, std::clamp(hi, 0.0, kTop));
    }
    if (!on_ || !isVisible() || !(graphOn_[0] || graphOn_[1]))
        return;
    ++draws_;
    if (type_ == kBars)
        DrawBars();
    else if (type_ == kScope)
        DrawScope(slot);
    else
        DrawChart();
}

void DeckGraphs::DrawBars() {
    for (int i = 0; i < channels_; ++i) {
        if (!graphOn_[i])
            continue;
        const size_t n = graph_values::Bars(analysis_, channels_ == 1 ? -1 : i, bars_[i]);
        graphs_[i]->PlotY(0, std::span<const double>(bars_[i].data(), n));
        graphs_[i]->SetCursorY(0, analysis_.Range().Low());
        graphs_[i]->SetCursorY(1, analysis_.Range().High());
    }
}

void DeckGraphs::DrawScope(int slot) {
    const dsp::DeckAnalysis::Slot& s = analysis_.At(slot);
    const int groups = analysis_.Groups().groups;
    const double gain = scopeGain_->Value();
    const bool sum = sumScope_->Value();
    const bool ints = analysis_.IntegerValues();
    unsigned shown = 0;
    for (int g = 0; g < 3; ++g)
        shown |= scopeBands_[g]->Value() ? 1u << g : 0u;
    for (int i = 0; i < channels_; ++i) {
        if (!graphOn_[i])
            continue;
        // One graph: both channels averaged; two: one each.
        const int channel = channels_ == 1 ? -1 : i;
        for (int g = 0; g < 3; ++g) {
            if (sum && g > 0) {
                graphs_[i]->SetPlotVisible(g, false);
                continue;
            }
            if (g >= groups)
                continue;
            if (sum)
                graph_values::ScopeTrace(s, channel, 0, groups, shown, gain, ints, trace_);
            else
                graph_values::ScopeTrace(s, channel, g, g + 1, ~0u, gain, ints, trace_);
            if (!sum)
                graphs_[i]->SetPlotVisible(g, scopeBands_[g]->Value());
            graphs_[i]->PlotY(g, std::span<const double>(trace_));
        }
    }
}

void DeckGraphs::DrawChart() {
    const double b = analysis_.BeatValue();
    const std::array<double, 2> pair{b, -b};
    for (int i = 0; i < channels_; ++i)
        if (graphOn_[i])
            graphs_[i]->ChartY(pair);
}

bool DeckGraphs::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        auto* me = static_cast<QMouseEvent*>(event);
        if (me->button() == Qt::RightButton) {
            if (watched == range_) {
                SetGraphRangeEnabled(!rangeOn_);
                return true;
            }
            if (watched == scopeGain_) {
                scopeGain_->SetValue(1.0);
                return true;
            }
        }
    } else if (event->type() == QEvent::MouseButtonDblClick) {
        for (int i = 0; i < 2; ++i)
            if (watched == graphs_[i] && onGraphDoubleClicked)
                onGraphDoubleClicked(i);
    }
    return QWidget::eventFilter(watched, event);
}
