#include "controls/ControlsGallery.h"

#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QVBoxLayout>
#include <QVector3D>

#include <cmath>
#include <vector>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"
#include "controls/CNiKnob.h"
#include "controls/CNiNumEdit.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"

using namespace control_look;

namespace {

constexpr double kPi = 3.14159265358979323846;
const QColor kDeckA(70, 160, 255);
const QColor kDeckA2(20, 60, 140);
const QColor kDeckB(255, 150, 50);
const QColor kDeckB2(130, 60, 10);

QWidget* Section(const QString& title, QLayout* content, QWidget* parent) {
    auto* box = new QWidget(parent);
    box->setObjectName(QStringLiteral("section"));
    box->setStyleSheet(QStringLiteral(
        "QWidget#section { background: rgb(36,39,45); border: 1px solid rgb(18,19,22);"
        " border-radius: 6px; }"));
    auto* v = new QVBoxLayout(box);
    v->setContentsMargins(8, 6, 8, 8);
    v->setSpacing(6);
    auto* t = new QLabel(title, box);
    t->setStyleSheet(
        QStringLiteral("color: rgb(214,220,228); font-weight: bold; font-size: 10pt;"
                       " background: transparent; border: none;"));
    v->addWidget(t);
    v->addLayout(content, 1);
    return box;
}

// A small picture of a tone arm, drawn here so the gallery needs no files.
QPixmap NeedlePicture(bool down) {
    QPixmap pm(20, 20);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(220, 224, 230), 2.0, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(16, 3), QPointF(down ? 7 : 9, down ? 15 : 11));
    p.setBrush(QColor(220, 224, 230));
    p.drawEllipse(QPointF(16, 3), 2.5, 2.5);
    if (down) {
        p.setPen(QPen(QColor(90, 220, 120), 1.5));
        p.drawLine(QPointF(3, 18), QPointF(12, 18));
    }
    return pm;
}

QLayout* ButtonsSection(QWidget* parent) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(6);

    auto* startStop = new CNiButton(QStringLiteral("start"), QStringLiteral("stop"), parent);
    startStop->SetValue(true);
    auto* drop = new CNiButton(QStringLiteral("drop"), QStringLiteral("lift"), parent);
    drop->SetPicture(NeedlePicture(false));
    auto* reverse = new CNiButton(QStringLiteral("rev"), QStringLiteral("rev"), parent);
    reverse->setEnabled(false);
    auto* rewind = new CNiButton(QStringLiteral("<<"), QStringLiteral("<<"), parent);
    rewind->SetAction(CNiButton::kSwitchUntilReleased);
    auto* ffwd = new CNiButton(QStringLiteral(">>"), QStringLiteral(">>"), parent);
    ffwd->SetAction(CNiButton::kSwitchUntilReleased);
    grid->addWidget(startStop, 0, 0);
    grid->addWidget(drop, 0, 1);
    grid->addWidget(reverse, 0, 2);
    grid->addWidget(rewind, 1, 0);
    grid->addWidget(ffwd, 1, 1);

    auto* eq = new CNiButton(QStringLiteral("EQ off"), QStringLiteral("EQ on"), parent);
    eq->SetStyle(CNiButton::kLedButton);
    eq->SetAction(CNiButton::kSwitchWhenPressed);
    eq->SetValue(true);
    auto* ac = new CNiButton(QStringLiteral("AC off"), QStringLiteral("AC on"), parent);
    ac->SetStyle(CNiButton::kLedButton);
    ac->SetAction(CNiButton::kSwitchWhenPressed);
    ac->SetColors(QColor(196, 10, 20), QColor(0, 0, 0));
    ac->SetValue(true);
    auto* meters = new CNiButton(QStringLiteral("Meters"), QStringLiteral("Meters"), parent);
    meters->SetStyle(CNiButton::kLedButton);
    meters->SetAction(CNiButton::kSwitchWhenPressed);
    meters->SetColors(kDeckA, kDeckA2);
    meters->SetValue(true);
    grid->addWidget(eq, 1, 2);
    grid->addWidget(ac, 2, 0);
    grid->addWidget(meters, 2, 1);

    // A decibel meter: four green, four yellow and one red lamp, six lit.
    auto* bar = new QHBoxLayout;
    bar->setSpacing(2);
    for (int i = 0; i < 9; ++i) {
        auto* lamp = new CNiButton(parent);
        lamp->SetStyle(CNiButton::kSquareLamp);
        if (i < 4)
            lamp->SetColors(QColor(40, 255, 60), QColor(10, 100, 10));
        else if (i < 8)
            lamp->SetColors(QColor(255, 255, 40), QColor(100, 100, 10));
        else
            lamp->SetColors(QColor(255, 50, 40), QColor(100, 10, 10));
        lamp->setFixedSize(14, 10);
        lamp->SetValue(i < 6);
        bar->addWidget(lamp);
    }
    bar->addSpacing(10);
    // Overload lamp with its backlog caption, and a beat lamp between the deck colours.
    auto* overload = new CNiButton(parent);
    overload->SetStyle(CNiButton::kRoundLamp);
    overload->SetCaption(QStringLiteral("0"));
    overload->SetValue(true);
    overload->setFixedSize(20, 20);
    auto* beat = new CNiButton(parent);
    beat->SetStyle(CNiButton::kRoundLamp);
    beat->SetColors(Mix(kDeckA2, kDeckA, 0.8), kDeckA2);
    beat->SetValue(true);
    beat->setFixedSize(20, 20);
    bar->addWidget(overload);
    bar->addWidget(beat);
    bar->addStretch();
    grid->addLayout(bar, 3, 0, 1, 3);

    auto* num = new CNiNumEdit(parent);
    num->SetRange(0, 512);
    num->SetValue(128);
    auto* numRow = new QHBoxLayout;
    numRow->addWidget(Caption(QStringLiteral("taps"), parent));
    numRow->addWidget(num);
    numRow->addStretch();
    grid->addLayout(numRow, 2, 2);
    return grid;
}

QLayout* SlidesSection(QWidget* parent) {
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    // Deck levels, in the deck colours.
    for (int d = 0; d < 2; ++d) {
        auto* level = new CNiSlide(Qt::Vertical, parent);
        level->SetPointerColor(0, d == 0 ? kDeckA : kDeckB);
        level->SetFillColor((d == 0 ? kDeckA : kDeckB).darker(220));
        level->SetValue(d == 0 ? 0.8 : 0.55);
        level->setFixedHeight(170);
        row->addWidget(level);
    }
    row->addSpacing(8);
    // Six equalizer bands: the level and, beside it, the band's effective gain.
    const int n = 6;
    for (int b = 0; b < n; ++b) {
        const double t = 2.0 * b / n - 1.0;
        const QColor band(int(255 * t * t), int(255 - 255 * t * t), int(255.0 * b / n));
        auto* eq = new CNiSlide(Qt::Vertical, parent);
        eq->SetAxis(0.0, 2.0);
        eq->SetPointerCount(2);
        eq->SetPointerColor(0, band);
        eq->SetFillColor(QColor());
        eq->SetPointerStyle(1, CNiSlide::kFill);
        eq->SetPointerColor(1, band.darker(190));
        eq->SetPointerInteractive(1, false);
        eq->SetValue(1.0 + 0.6 * std::sin(b * 1.1));
        eq->SetPointerValue(1, eq->Value() * 0.85);
        eq->setFixedSize(24, 170);
        row->addWidget(eq);
    }
    row->addSpacing(8);
    // Graph range: the user's minimum and maximum, and the current extremes.
    auto* range = new CNiSlide(Qt::Vertical, parent);
    range->SetAxis(0.0, 280000.0);
    range->SetPointerCount(4);
    range->SetPointerStyle(0, CNiSlide::kMarker);
    range->SetPointerColor(0, QColor(80, 190, 245));
    range->SetPointerColor(1, QColor(245, 185, 50));
    range->SetPointerColor(2, QColor(120, 130, 140));
    range->SetPointerColor(3, QColor(120, 130, 140));
    range->SetPointerInteractive(2, false);
    range->SetPointerInteractive(3, false);
    range->SetValue(40000);
    range->SetPointerValue(1, 230000);
    range->SetPointerValue(2, 90000);
    range->SetPointerValue(3, 190000);
    range->setFixedHeight(170);
    row->addWidget(range);

    auto* col = new QVBoxLayout;
    col->addLayout(row);
    auto* fader = new CNiSlide(Qt::Horizontal, parent);
    fader->SetAxis(-1.0, 1.0);
    fader->SetArrowsVisible(true);
    fader->SetArrowStep(1.0);
    fader->SetFillColor(QColor());
    fader->SetValue(-0.35);
    col->addWidget(Caption(QStringLiteral("cross fader"), parent));
    col->addWidget(fader);
    auto* progress = new CNiSlide(Qt::Horizontal, parent);
    progress->SetFillColor(QColor(100, 100, 100));
    progress->SetTickCount(0);
    progress->SetValue(0.42);
    col->addWidget(Caption(QStringLiteral("track progress"), parent));
    col->addWidget(progress);
    return col;
}

QLayout* KnobsSection(QWidget* parent) {
    auto* row = new QHBoxLayout;
    auto* flat = new CNiKnob(parent);
    flat->SetPointerStyle(CNiKnob::kNeedle);
    flat->SetValue(0.18);
    flat->setFixedSize(130, 130);
    auto* persp = new CNiKnob(parent);
    persp->SetLook(CNiKnob::kPerspective);
    persp->SetPointerStyle(CNiKnob::kWedge);
    persp->SetPointerColor(QColor(100, 10, 10));
    persp->SetLabelColor(QColor(40, 70, 130));
    persp->SetValue(0.63);
    persp->setFixedSize(160, 100);
    auto* small = new CNiKnob(parent);
    small->SetSweep(270);
    small->SetPointerStyle(CNiKnob::kDot);
    small->SetPointerColor(QColor(240, 200, 60));
    small->SetLabelColor(FaceColor());
    small->SetValue(0.7);
    small->setFixedSize(56, 56);
    row->addWidget(flat);
    row->addWidget(persp, 0, Qt::AlignVCenter);
    row->addWidget(small, 0, Qt::AlignVCenter);
    return row;
}

CNiGraph* ScopeGraph(QWidget* parent) {
    auto* g = new CNiGraph(parent);
    g->SetXRange(0, 99);
    g->SetYRange(-1.2, 1.2);
    std::vector<double> y(100);
    for (int plot = 0; plot < 3; ++plot) {
        const double f = 1.0 + plot * 2.3, a = 1.0 / (1 + plot * 0.7);
        for (int i = 0; i < 100; ++i)
            y[i] = a * std::sin(2 * kPi * f * i / 100.0 + plot);
        g->PlotY(plot, y);
    }
    return g;
}

CNiGraph* BarsGraph(QWidget* parent) {
    auto* g = new CNiGraph(parent);
    const int n = 24;
    g->SetXRange(-0.5, n + 0.5);
    g->SetYRange(0, 280000);
    g->SetXIncrement(0, 1);
    g->SetPlotStyle(0, CNiGraph::kBars);
    g->SetPlotColor(0, kDeckA);
    std::vector<double> bars(n + 1, 0.0);
    for (int b = 1; b <= n; ++b)
        bars[b] = 60000 + 150000 * std::exp(-0.08 * b) * (1 + 0.3 * std::sin(b * 1.7));
    g->PlotY(bars);
    g->SetCursorCount(2);
    for (int c = 0; c < 2; ++c) {
        g->SetCursorStyle(c, CNiGraph::kHorizontalLine);
        g->SetCursorColor(c, c == 0 ? QColor(80, 190, 245) : QColor(245, 185, 50));
    }
    g->SetCursorY(0, 70000);
    g->SetCursorY(1, 200000);
    return g;
}

CNiGraph* CurveGraph(QWidget* parent) {
    auto* g = new CNiGraph(parent);
    g->SetXRange(0, 98);
    g->SetYRange(0, 1.01);
    std::vector<double> a(99), b(99);
    for (int i = 0; i < 99; ++i) {
        b[i] = std::pow(i / 99.0, 1.0 / 1.6);
        a[98 - i] = b[i];
    }
    g->PlotY(0, a);
    g->PlotY(1, b);
    g->SetPlotColor(0, kDeckA);
    g->SetPlotColor(1, kDeckB);
    g->SetCursorCount(1);
    g->SetCursorX(0, 32);
    g->SetGridLines(4, 4);
    return g;
}

CNiGraph* ChartGraph(QWidget* parent) {
    auto* g = new CNiGraph(parent);
    g->SetChartLength(120);
    g->SetXRange(0, 119);
    g->SetYRange(-1.05, 1.05);
    g->SetPlotCount(2);
    g->SetPlotColor(0, kDeckB);
    g->SetPlotColor(1, kDeckB2.lighter(150));
    for (int i = 0; i < 160; ++i) {
        const double v = std::pow(std::max(0.0, std::sin(i * 0.21)), 3.0);
        const double pair[2] = {v, -v};
        g->ChartY(pair);
    }
    return g;
}

CNiGraph* ResponseGraph(QWidget* parent) {
    auto* g = new CNiGraph(parent);
    g->SetXRange(0, 149);
    g->SetYRange(0, 200000);
    g->SetAxisLabelsVisible(true);
    const int n = 6;
    std::vector<double> y(150), total(150, 0.0);
    for (int b = 0; b < n; ++b) {
        const double t = 2.0 * b / n - 1.0;
        const double centre = 12 + b * 25.0, level = 1.0 + 0.6 * std::sin(b * 1.1);
        for (int i = 0; i < 150; ++i) {
            const double d = (i - centre) / 11.0;
            y[i] = 96330 * level * std::exp(-d * d);
            total[i] += y[i];
        }
        g->PlotY(b, y);
        g->SetPlotColor(b, QColor(int(255 * t * t), int(255 - 255 * t * t), int(255.0 * b / n)));
        g->SetPlotLineWidth(b, 1.0);
    }
    g->PlotY(n, total);
    g->SetPlotColor(n, QColor(235, 238, 242));
    g->SetPlotLineWidth(n, 2.0);
    g->SetCursorCount(2);
    g->SetCursorX(0, 50);
    g->SetCursorX(1, 74);
    return g;
}

CNiGraph3D* SurfaceGraph(QWidget* parent) {
    auto* g = new CNiGraph3D(parent);
    const int cols = 24, rows = 80;
    std::vector<double> m(cols * rows);
    for (int r = 0; r < rows; ++r) {
        const double beat = std::pow(std::max(0.0, std::sin(r * 0.35)), 4.0);
        for (int c = 0; c < cols; ++c) {
            const double tilt = std::exp(-0.07 * c);
            m[r * cols + c] = std::clamp(
                0.15 + 0.55 * tilt * (0.6 + 0.4 * beat) + 0.12 * std::sin(c * 0.9 + r * 0.13), 0.0,
                1.0);
        }
    }
    g->PlotSurface(m, cols, rows);
    const QVector3D marks[] = {QVector3D(3, 0, 0.95f), QVector3D(20, 0, 0.4f)};
    g->PlotPoints(marks);
    return g;
}

}  // namespace

QWidget* BuildControlsGallery(QWidget* parent) {
    auto* panel = new QWidget(parent);
    panel->setObjectName(QStringLiteral("controlsGallery"));
    panel->setWindowTitle(QStringLiteral("Mixora instrument controls"));
    panel->setAutoFillBackground(true);
    QPalette pal = panel->palette();
    pal.setColor(QPalette::Window, PanelColor());
    pal.setColor(QPalette::WindowText, TextColor());
    panel->setPalette(pal);

    auto* grid = new QGridLayout(panel);
    grid->setContentsMargins(10, 10, 10, 10);
    grid->setSpacing(10);
    auto* left = new QVBoxLayout;
    left->setSpacing(10);
    left->addWidget(
        Section(QStringLiteral("Buttons, lamps and numbers"), ButtonsSection(panel), panel));
    left->addWidget(
        Section(QStringLiteral("Turntable platters and knob"), KnobsSection(panel), panel));
    grid->addLayout(left, 0, 0);
    grid->addWidget(Section(QStringLiteral("Slides"), SlidesSection(panel), panel), 0, 1);
    auto* surface = new QVBoxLayout;
    auto* g3 = SurfaceGraph(panel);
    g3->setMinimumSize(330, 230);
    surface->addWidget(g3);
    grid->addWidget(Section(QStringLiteral("3D spectrum history"), surface, panel), 0, 2);

    auto* graphs = new QGridLayout;
    graphs->setSpacing(8);
    const auto addGraph = [&](const QString& name, QWidget* g, int r, int c, int rowSpan,
                              int colSpan) {
        auto* v = new QVBoxLayout;
        v->setSpacing(2);
        v->addWidget(Caption(name, panel, Qt::AlignLeft | Qt::AlignVCenter));
        g->setMinimumSize(200, 110);
        v->addWidget(g, 1);
        graphs->addLayout(v, r, c, rowSpan, colSpan);
    };
    addGraph(QStringLiteral("scope"), ScopeGraph(panel), 0, 0, 1, 1);
    addGraph(QStringLiteral("spectrum bars and beat range"), BarsGraph(panel), 0, 1, 1, 1);
    addGraph(QStringLiteral("beat chart"), ChartGraph(panel), 1, 0, 1, 1);
    addGraph(QStringLiteral("cross fader curves"), CurveGraph(panel), 1, 1, 1, 1);
    addGraph(QStringLiteral("equalizer response and band edges"), ResponseGraph(panel), 0, 2, 2, 1);
    graphs->setColumnStretch(2, 2);
    graphs->setColumnStretch(0, 1);
    graphs->setColumnStretch(1, 1);
    grid->addWidget(Section(QStringLiteral("Graphs"), graphs, panel), 1, 0, 1, 3);
    return panel;
}

bool SaveWidgetPng(QWidget* widget, const QString& file) {
    widget->setAttribute(Qt::WA_DontShowOnScreen);
    widget->show();
    widget->adjustSize();
    QApplication::processEvents();
    const QPixmap shot = widget->grab();
    return !shot.isNull() && shot.save(file, "PNG");
}
