#include "output/mixer/MixerMeters.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "dsp/ScopeBand.h"

namespace {

CNiButton* Lamp(QWidget* parent, const QColor& on, const QColor& off, int size = 10) {
    auto* b = new CNiButton(parent);
    b->SetStyle(CNiButton::kSquareLamp);
    b->SetAction(CNiButton::kIndicator);
    b->SetColors(on, off);
    b->setFixedSize(size, size);
    return b;
}

QColor Mix(const QColor& a, const QColor& b, double t) {
    t = std::clamp(t, 0.0, 1.0);
    return QColor::fromRgbF(static_cast<float>(a.redF() * (1 - t) + b.redF() * t),
                            static_cast<float>(a.greenF() * (1 - t) + b.greenF() * t),
                            static_cast<float>(a.blueF() * (1 - t) + b.blueF() * t));
}

}  // namespace

MixerMeters::MixerMeters(QWidget* parent) : QWidget(parent) {
    colours_[0] = {QColor(60, 140, 255), QColor(15, 35, 80)};
    colours_[1] = {QColor(255, 140, 40), QColor(80, 40, 10)};
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(4, 2, 4, 2);
    grid->setSpacing(2);
    for (int d = 0; d < 2; ++d) {
        BuildDeck(d);
        auto* row = new QHBoxLayout;
        row->setSpacing(2);
        row->addWidget(enable_[d]);
        row->addWidget(rms_[d]);
        for (CNiButton* l : decibelLamps_[d])
            row->addWidget(l);
        row->addSpacing(4);
        row->addWidget(beatLed_[d]);
        for (CNiButton* l : beatLamps_[d])
            row->addWidget(l);
        row->addWidget(bpm_[d]);
        row->addStretch(1);
        grid->addLayout(row, d, 0);
        grid->addWidget(graphs_[d], d, 1);
    }
    auto* sys = new QHBoxLayout;
    cpuText_ = new QLabel(QStringLiteral("0 %"), this);
    cpu_ = new CNiSlide(Qt::Horizontal, this);
    cpu_->SetAxis(0.0, 100.0);
    cpu_->SetPointerInteractive(0, false);
    cpu_->setFixedHeight(16);
    overload_ = new CNiButton(this);
    overload_->SetStyle(CNiButton::kRoundLamp);
    overload_->SetAction(CNiButton::kIndicator);
    overload_->SetColors(kGreenOn, kGreenOff);
    overload_->SetCaption(QStringLiteral("0"));
    overload_->setFixedSize(20, 20);
    sys->addWidget(new QLabel(QStringLiteral("CPU"), this));
    sys->addWidget(cpuText_);
    sys->addWidget(cpu_, 1);
    sys->addWidget(overload_);
    grid->addLayout(sys, 2, 0, 1, 2);
}

void MixerMeters::BuildDeck(int d) {
    enable_[d] = new CNiButton(QStringLiteral("M"), QStringLiteral("M"), this);
    enable_[d]->setFixedSize(22, 18);
    enable_[d]->SetValue(true);
    connect(enable_[d], &CNiButton::valueChanged, this, [this, d](bool on) {
        if (onEnableMeters)
            onEnableMeters(d, on);
    });
    rms_[d] = new QLabel(QStringLiteral("0.0"), this);
    rms_[d]->setFixedWidth(36);
    rms_[d]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rms_[d]->installEventFilter(this);
    for (int i = 0; i < kDecibelLamps; ++i) {
        CNiButton* l = i < 4   ? Lamp(this, kGreenOn, kGreenOff)
                       : i < 8 ? Lamp(this, kYellowOn, kYellowOff)
                               : Lamp(this, kRedOn, kRedOff);
        l->installEventFilter(this);
        decibelLamps_[d][i] = l;
    }
    beatLed_[d] = Lamp(this, colours_[d][1], colours_[d][1], 14);
    beatLed_[d]->SetStyle(CNiButton::kRoundLamp);
    beatLed_[d]->SetValue(true);
    for (int i = 0; i < kBeatLamps; ++i) {
        CNiButton* l = Lamp(this, colours_[d][0], colours_[d][1], 8);
        l->installEventFilter(this);
        beatLamps_[d][i] = l;
    }
    bpm_[d] = new QLabel(QStringLiteral("--- BPM"), this);
    // Room for "188.8 BPM" so the row does not move as the tempo changes.
    bpm_[d]->setMinimumWidth(bpm_[d]->fontMetrics().horizontalAdvance(QStringLiteral("888.8 BPM")));
    bpm_[d]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    graphs_[d] = new CNiGraph(this);
    graphs_[d]->setFixedSize(90, 36);
    graphs_[d]->SetAxisLabelsVisible(false);
    graphs_[d]->SetGridLines(0, 0);
    graphs_[d]->SetPlotCount(1);
    graphs_[d]->SetPlotStyle(0, CNiGraph::kBars);
    graphs_[d]->SetYRange(0, 280000);
    graphs_[d]->installEventFilter(this);
    ShapeGraph(d);
}

void MixerMeters::SetDeckColours(int deck, const QColor& main, const QColor& dark) {
    colours_[deck] = {main, dark};
    for (CNiButton* l : beatLamps_[deck])
        l->SetColors(main, dark);
    graphs_[deck]->SetPlotColor(0, main);
    SetMetersEnabledLook(deck, enable_[deck]->Value());
}

void MixerMeters::SetMetersEnabledLook(int deck, bool on) {
    enable_[deck]->SetColors(colours_[deck][0], colours_[deck][1]);
    if (enable_[deck]->Value() != on) {
        const QSignalBlocker quiet(enable_[deck]);
        enable_[deck]->SetValue(on);
    }
}

void MixerMeters::ShowDeck(int deck, float rmsDb, float beat, std::span<const double> bands) {
    if (decibelMetersOn_) {
        // The text is made only when the shown tenth of a decibel changes.
        const int tenths = static_cast<int>(std::lround(rmsDb * 10.0f));
        if (tenths != shownTenths_[deck]) {
            shownTenths_[deck] = tenths;
            rms_[deck]->setText(QString::number(tenths / 10.0, 'f', 1));
        }
        if (decibel_[deck].Update(DecibelBarFraction(rmsDb)))
            LightBar(deck, false);
    }
    const double b = std::max(0.0f, beat);
    const QColor led = Mix(colours_[deck][1], colours_[deck][0], b);
    if (beatLed_[deck]->OnColor() != led)
        beatLed_[deck]->SetOnColor(led);
    if (beatMetersOn_ && beat_[deck].Update(b))
        LightBar(deck, true);
    if (!scope_[deck] && !bands.empty() && !graphs_[deck]->isHidden()) {
        const size_t n = std::min(bands.size(), bandBuffer_.size());
        if (shownBars_[deck] != static_cast<int>(n)) {
            graphs_[deck]->SetXRange(0, static_cast<double>(n - 1));
            shownBars_[deck] = static_cast<int>(n);
        }
        std::copy_n(bands.begin(), n, bandBuffer_.begin());
        graphs_[deck]->PlotY(0, std::span<const double>(bandBuffer_.data(), n));
    }
}

void MixerMeters::SetGraphType(int deck, const QString& type) {
    const bool scope = type == QStringLiteral("Scope");
    if (scope == scope_[deck])
        return;
    scope_[deck] = scope;
    ShapeGraph(deck);
}

QString MixerMeters::GraphType(int deck) const {
    return scope_[deck] ? QStringLiteral("Scope") : QStringLiteral("Bars");
}

bool MixerMeters::WantsScope(int deck) const {
    return scope_[deck] && !graphs_[deck]->isHidden();
}

void MixerMeters::ShapeGraph(int deck) {
    CNiGraph* g = graphs_[deck];
    g->Clear();
    shownBars_[deck] = -1;
    if (scope_[deck]) {
        g->SetPlotStyle(0, CNiGraph::kLines);
        g->SetXRange(0, dsp::ScopeBand::kPoints - 1);
        g->SetYRange(-32768, 32767);
    } else {
        g->SetPlotStyle(0, CNiGraph::kBars);
        g->SetYRange(0, 280000);
    }
}

void MixerMeters::ShowScope(int deck, std::span<const double> trace) {
    if (!scope_[deck] || graphs_[deck]->isHidden())
        return;
    graphs_[deck]->PlotY(0, trace);
}

void MixerMeters::LightBar(int deck, bool beatBar) {
    if (!beatBar) {
        const int lit = decibel_[deck].Lit();
        for (int i = 0; i < kDecibelLamps; ++i)
            decibelLamps_[deck][i]->SetValue(i < lit);
        return;
    }
    const LampBar& bar = beat_[deck];
    for (int i = 0; i < kBeatLamps; ++i) {
        CNiButton* l = beatLamps_[deck][i];
        if (i == bar.Lit() && bar.Partial() > 0.0) {
            l->SetOnColor(Mix(colours_[deck][1], colours_[deck][0], bar.Partial()));
            l->SetValue(true);
        } else {
            if (l->OnColor() != colours_[deck][0])
                l->SetOnColor(colours_[deck][0]);
            l->SetValue(i < bar.Lit());
        }
    }
}

void MixerMeters::ClearDeck(int deck) {
    rms_[deck]->setText(QStringLiteral("0.0"));
    shownTenths_[deck] = 0;
    graphs_[deck]->Clear();
}

void MixerMeters::SetCpuLoad(int percent) {
    cpuText_->setText(QStringLiteral("%1 %").arg(percent));
    cpu_->SetValue(percent);
}

void MixerMeters::SetOverloadLamp(bool on, int pendingTicks) {
    if (pendingTicks < 1)
        overload_->SetColors(kGreenOn, kGreenOff);
    else
        overload_->SetColors(kRedOn, kRedOff);
    overload_->SetCaption(QString::number(pendingTicks));
    overload_->SetValue(on);
}

void MixerMeters::SetBeatMetersOn(bool on) {
    beatMetersOn_ = on;
    if (!on) {
        beat_[0].Update(0.0);
        beat_[1].Update(0.0);
        for (auto& row : beatLamps_)
            for (CNiButton* l : row)
                l->SetValue(false);
    }
}

void MixerMeters::SetDecibelMetersOn(bool on) {
    decibelMetersOn_ = on;
    if (!on) {
        for (int d = 0; d < 2; ++d) {
            rms_[d]->setText(QStringLiteral("0.0"));
            shownTenths_[d] = 0;
            for (CNiButton* l : decibelLamps_[d])
                l->SetValue(false);
        }
    }
}

QString MixerMeters::RmsText(int deck) const {
    return rms_[deck]->text();
}

QColor MixerMeters::BeatLedColour(int deck) const {
    return beatLed_[deck]->OnColor();
}

QString MixerMeters::CpuText() const {
    return cpuText_->text();
}

double MixerMeters::CpuValue() const {
    return cpu_->Value();
}

QString MixerMeters::BpmText(int deck) const {
    return bpm_[deck]->text();
}

void MixerMeters::SetBpmText(int deck, const QString& text) {
    if (bpm_[deck]->text() != text)
        bpm_[deck]->setText(text);
}

bool MixerMeters::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        for (int d = 0; d < 2; ++d) {
            if (std::find(beatLamps_[d].begin(), beatLamps_[d].end(), watched) !=
                beatLamps_[d].end()) {
                SetBeatMetersOn(!beatMetersOn_);
                return true;
            }
            if (watched == graphs_[d]) {
                SetGraphType(d, scope_[d] ? QStringLiteral("Bars") : QStringLiteral("Scope"));
                if (onGraphTypeChanged)
                    onGraphTypeChanged(d, GraphType(d));
                return true;
            }
            if (watched == rms_[d] || std::find(decibelLamps_[d].begin(), decibelLamps_[d].end(),
                                                watched) != decibelLamps_[d].end()) {
                SetDecibelMetersOn(!decibelMetersOn_);
                return true;
            }
        }
    } else if (event->type() == QEvent::MouseButtonDblClick) {
        for (int d = 0; d < 2; ++d)
            if (watched == graphs_[d] && onGraphDoubleClicked)
                onGraphDoubleClicked(d);
    }
    return QWidget::eventFilter(watched, event);
}
