// The equalizer window's controls: building them, wiring their events to the
// window's handlers, and placing them for the band count and the type.
#include <QComboBox>
#include <QLabel>
#include <QResizeEvent>
#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "core/EngineState.h"
#include "dsp/window/CRynEqualizer.h"
#include "dsp/window/CRynEqualizerLaws.h"
#include "settings/CRynSettings.h"

namespace {

// The band-count buttons, in the dialog's order.
constexpr std::array<int, 4> kBandCounts{12, 6, 3, 2};

// Plot heights: the own type draws dB + 96.33 (0 dB at 96.33, 10 dB of
// headroom above); the device staircase reaches twice the 0 dB line.
constexpr double kOwnPlotTop = 106.33;

CNiButton* MakeCommand(QWidget* parent, const QString& caption) {
    auto* b = new CNiButton(parent);
    b->SetCaption(caption);
    b->SetAction(CNiButton::kIndicator);
    return b;
}

CNiButton* MakeSwitch(QWidget* parent, const QString& off, const QString& on, const QColor& led) {
    auto* b = new CNiButton(off, on, parent);
    b->SetStyle(CNiButton::kLedButton);
    b->SetAction(CNiButton::kSwitchWhenPressed);
    b->SetColors(led, QColor(40, 40, 36));
    return b;
}

}  // namespace

CNiButton* CRynEqualizer::BandCountButton(int n) const {
    for (std::size_t i = 0; i < kBandCounts.size(); ++i) {
        if (kBandCounts[i] == n)
            return bandButtons_[i];
    }
    return nullptr;
}

CNiSlide* CRynEqualizer::LevelSlide(int b) const {
    return b >= 0 && b < kLevelSlides ? levels_[b] : nullptr;
}

int CRynEqualizer::SelectedBand() const {
    return static_cast<int>(std::lround(selected_->Value()));
}

void CRynEqualizer::BuildControls() {
    graph_ = new CNiGraph(this);
    graph_->SetXRange(0, eq_window::kPlotPoints - 1);
    graph_->SetYRange(0, kOwnPlotTop);
    graph_->SetGridLines(7, 5);
    graph_->SetPlotCount(kTotalPlot + 1);
    graph_->SetPlotColor(kTotalPlot, QColor(235, 240, 245));
    graph_->SetPlotLineWidth(kTotalPlot, 2);
    graph_->SetCursorCount(2);
    for (int line : {kLowLine, kHighLine}) {
        graph_->SetCursorStyle(line, CNiGraph::kVerticalLine);
        graph_->SetCursorDraggable(line, true);
    }

    onButton_ =
        MakeSwitch(this, QStringLiteral("EQ off"), QStringLiteral("EQ on"), QColor(40, 220, 90));
    antiClip_ = MakeSwitch(this, QStringLiteral("AC off"), QStringLiteral("AC on"), kNoClipColour);

    filterType_ = new QComboBox(this);
    // Sorted, as the list shows them; "Gaussian" designs as "Bartlett" and
    // is not offered.
    filterType_->addItems({QStringLiteral("Bartlett"), QStringLiteral("Blackman"),
                           QStringLiteral("Hamming"), QStringLiteral("Hanning"),
                           QStringLiteral("Rectangular")});
    filterType_->setCurrentText(QStringLiteral("Hanning"));

    for (std::size_t i = 0; i < kBandCounts.size(); ++i)
        bandButtons_[i] = MakeCommand(this, QString::number(kBandCounts[i]));

    taps_ = new CNiSlide(Qt::Horizontal, this);
    taps_->SetAxis(1, dsp::eq::kMaxTaps);
    taps_->SetDiscreteStep(1);
    taps_->SetTickCount(5);
    tapsDisplay_ = MakeCommand(this, QStringLiteral("100"));
    reset_ = MakeCommand(this, QStringLiteral("reset->"));

    for (int b = 0; b < kLevelSlides; ++b) {
        auto* s = new CNiSlide(Qt::Vertical, this);
        s->SetAxis(0.0, 1.0);
        s->SetTickCount(4);
        s->SetPointerCount(2);
        // The second pointer shows the gain anti-clip lets through.
        s->SetPointerStyle(1, CNiSlide::kMarker);
        s->SetPointerInteractive(1, false);
        s->SetPointerColor(1, QColor(235, 240, 245));
        s->SetPointerValue(1, 1.0);
        s->SetFillColor(QColor());
        levels_[b] = s;
    }

    selected_ = new CNiSlide(Qt::Horizontal, this);
    selected_->SetDiscreteStep(1);
    selected_->SetFillColor(QColor());
    isolate_ = MakeCommand(this, QStringLiteral("ISOLATE->"));
}

void CRynEqualizer::WireControls() {
    auto leftDown = [this](CNiButton* b, auto&& f) {
        connect(b, &CNiControl::mouseDown, this, [f](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton)
                f();
        });
    };
    for (std::size_t i = 0; i < kBandCounts.size(); ++i) {
        const int n = kBandCounts[i];
        leftDown(bandButtons_[i], [this, n] { ChooseBandCount(n); });
    }
    leftDown(reset_, [this] { ResetTapCounts(); });
    leftDown(isolate_, [this] { Isolate(); });

    connect(onButton_, &CNiButton::valueChanged, this, [this](bool on) {
        if (type_ == EqType::Device)
            SendToMainMixer(UWM_DEVICE_EQ_ON, static_cast<WParam>(deck_), on ? 1 : 0, false);
        Settings().SetEqOnState(deck_, on);
    });
    connect(antiClip_, &CNiButton::valueChanged, this, [this](bool on) {
        if (!on) {
            ShowClipColour(false);
            ShowEffectiveGains();
        }
        Settings().SetEqClipProtectOnState(deck_, on);
    });
    connect(filterType_, &QComboBox::currentIndexChanged, this,
            [this](int) { OnFilterTypeChosen(filterType_->currentText()); });
    connect(taps_, &CNiSlide::valueChanged, this, [this](double) { OnTapsChanged(); });
    connect(selected_, &CNiSlide::valueChanged, this, [this](double) { ShowSelectedBand(); });
    connect(graph_, &CNiGraph::cursorChanged, this,
            [this](int line, double x, double) { OnLineDragged(line, x); });
    for (int b = 0; b < kLevelSlides; ++b) {
        CNiSlide* s = levels_[b];
        connect(s, &CNiSlide::valueChanged, this, [this, b](double v) { OnLevelChanged(b, v); });
        // A right click returns the band to its resting level.
        connect(s, &CNiControl::mouseUp, this, [this, s](int button, int, QPoint pos) {
            if (button == CNiControl::kRightButton && s->rect().contains(pos))
                s->SetValue(RestLevel());
        });
    }
}

void CRynEqualizer::ShowTypeControls() {
    const bool own = type_ == EqType::Own;
    for (QWidget* w :
         std::initializer_list<QWidget*>{antiClip_, filterType_, taps_, tapsDisplay_, reset_})
        w->setVisible(own);
    graph_->SetCursorVisible(kLowLine, own);
    graph_->SetCursorVisible(kHighLine, own);
    graph_->SetYRange(0, own ? kOwnPlotTop : eq_window::kDeviceStairScale);
    for (CNiSlide* s : levels_)
        s->SetPointerVisible(1, own);
    if (own)
        ShowSelectedBand();
}

void CRynEqualizer::resizeEvent(QResizeEvent* event) {
    CRynWindow::resizeEvent(event);
    LayOut();
}

void CRynEqualizer::LayOut() {
    const int margin = 6, gap = 4, row = 24;
    const int w = width() - 2 * margin;
    const int h = height() - 2 * margin;
    int y = margin;

    const int graphHeight = std::max(60, h * 2 / 5);
    graph_->setGeometry(margin, y, w, graphHeight);
    y += graphHeight + gap;

    // The command row: on, anti-clip, filter type, band counts, reset, taps;
    // in a window too narrow for their natural widths all narrow alike.
    const bool own = type_ == EqType::Own;
    const int items = 1 + (own ? 5 : 0) + static_cast<int>(bandButtons_.size());
    const int natural =
        72 + (own ? 72 + 100 + 56 + 40 + 40 : 0) + 28 * static_cast<int>(bandButtons_.size());
    const double f = std::min(1.0, std::max(0, w - gap * (items - 1)) / double(natural));
    int x = margin;
    auto place = [&](QWidget* c, int cw) {
        c->setGeometry(x, y, cw, row);
        x += cw + gap;
    };
    auto narrow = [f](int cw) { return static_cast<int>(cw * f); };
    place(onButton_, narrow(72));
    if (own) {
        place(antiClip_, narrow(72));
        place(filterType_, narrow(100));
    }
    for (CNiButton* b : bandButtons_)
        place(b, narrow(28));
    if (own) {
        place(reset_, narrow(56));
        const int displayWidth = narrow(40);
        const int slideWidth = std::max(narrow(40), margin + w - x - displayWidth - gap);
        place(taps_, slideWidth);
        place(tapsDisplay_, displayWidth);
    }
    y += row + gap;

    // The level slides of the bands in use share the width; the others hide.
    const int bottom = margin + h - row - gap;
    const int n = std::clamp(bandCount_, 1, kLevelSlides);
    const double slot = static_cast<double>(w) / n;
    const int slideWidth = std::clamp(static_cast<int>(slot) - gap, 16, 44);
    for (int b = 0; b < kLevelSlides; ++b) {
        CNiSlide* s = levels_[b];
        if (b >= bandCount_) {
            s->hide();
            continue;
        }
        const int cx = margin + static_cast<int>(slot * b + slot / 2);
        s->setGeometry(cx - slideWidth / 2, y, slideWidth, std::max(30, bottom - y));
        s->show();
    }

    // The selected band and isolation.
    x = margin;
    y = bottom + gap;
    place(isolate_, 80);
    selected_->setGeometry(x, y, margin + w - x, row);
}
