// The 3D graph window: its controls, modes, enable, the "FPS:" read-out and
// the joystick. The surface itself is CRyn3DGraphSurface.cpp.
#include "dsp/window/CRyn3DGraph.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QVBoxLayout>
#include <bit>
#include <cstdint>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiGraph3D.h"
#include "controls/ControlLook.h"
#include "settings/CRynSettings.h"

using namespace control_look;

namespace {

const QString kPlot = QStringLiteral("3D Plot");
const QString kSound = QStringLiteral("3D Sound");
const QString kJoin = QStringLiteral("Join");
const QString kSplit = QStringLiteral("Split");
const QColor kLampOn(60, 230, 90);
const QColor kLampOff(10, 40, 14);

CNiButton* MakeButton(const QString& off, const QString& on, const QString& name, QWidget* parent) {
    auto* b = new CNiButton(off, on, parent);
    b->setObjectName(name);
    b->SetStyle(CNiButton::kPushButton);
    b->SetAction(CNiButton::kSwitchWhenPressed);
    b->SetColors(FaceLightColor(), FaceColor());
    return b;
}

}  // namespace

CRyn3DGraph::CRyn3DGraph(QWidget* parent) : CRynWindow("CRyn3DGraph", kTemplateId, parent) {
    setWindowTitle(QStringLiteral("3D Graph"));
    BuildControls();
    RegisterControls();
    resize(560, 300);
    rateClock_.start();
    ApplyLook();
}

CRyn3DGraph::~CRyn3DGraph() = default;

void CRyn3DGraph::BuildControls() {
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    pal.setColor(QPalette::WindowText, TextColor());
    setPalette(pal);

    surface_ = new CNiGraph3D(this);
    surface_->setObjectName(QStringLiteral("3D Graph"));
    surface_->SetZRange(0.0, 1.0);
    connect(surface_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == 2)
            SetGraphEnabled(!enabled_);
    });
    // A double click shows the 3D graph alone (the main mixer's selection).
    connect(surface_, &CNiControl::doubleClicked, this, [this] {
        if (mainMixer_ != 0)
            SendAppMessage(mainMixer_, UWM_GRAPH_DOUBLE_CLICK, kTemplateId, kSurfaceId);
    });

    positionPlot_ = new CNiGraph(this);
    positionPlot_->setObjectName(QStringLiteral("3D Sound Position"));
    positionPlot_->SetXRange(-joystick::kAxisRange, joystick::kAxisRange);
    positionPlot_->SetYRange(-joystick::kAxisRange, joystick::kAxisRange);
    positionPlot_->SetGridLines(4, 4);
    positionPlot_->SetCursorCount(1);
    positionPlot_->SetCursorStyle(0, CNiGraph::kCrosshair);
    positionPlot_->SetCursorColor(0, QColor(255, 200, 40));
    positionPlot_->SetCursorDraggable(0, false);
    positionPlot_->SetCursorPosition(0, 0.0, 0.0);
    positionPlot_->hide();

    rateLabel_ = new QLabel(QStringLiteral("FPS:"), this);
    rateLabel_->setObjectName(QStringLiteral("Graphs and Meters FPS"));
    rateValue_ = new QLabel(QStringLiteral("0.0"), this);
    rateValue_->setObjectName(QStringLiteral("Graphs and Meters FPS Value"));
    rateValue_->setMinimumWidth(36);

    mode_ = MakeButton(kPlot, kSound, QStringLiteral("3D Mode"), this);
    sound3D_ = MakeButton(QStringLiteral("3D Sound On"), QStringLiteral("3D Sound On"),
                          QStringLiteral("3D Sound On"), this);
    sound3D_->SetStyle(CNiButton::kLedButton);
    sound3D_->SetColors(kLampOn, kLampOff);
    split_ = MakeButton(kSplit, kJoin, QStringLiteral("3D Split Or Join"), this);
    reset_ = MakeButton(QStringLiteral("Reset"), QStringLiteral("Reset"),
                        QStringLiteral("3D Reset View"), this);
    reset_->SetAction(CNiButton::kIndicator);
    flatten_ = MakeButton(QStringLiteral("Flatten"), QStringLiteral("Flatten"),
                          QStringLiteral("3D Flatten View"), this);
    flatten_->SetAction(CNiButton::kIndicator);
    ApplySplitPicture();

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(6, 6, 6, 6);
    grid->setSpacing(4);
    grid->addWidget(surface_, 0, 0);
    grid->addWidget(positionPlot_, 0, 0);
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    for (CNiButton* b : {mode_, sound3D_, split_, reset_, flatten_}) {
        b->setMinimumSize(78, 24);
        column->addWidget(b);
    }
    column->addStretch(1);
    auto* rate = new QHBoxLayout;
    rate->addWidget(rateLabel_);
    rate->addWidget(rateValue_);
    column->addLayout(rate);
    grid->addLayout(column, 0, 1);
    grid->setColumnStretch(0, 1);

    connect(mode_, &CNiButton::valueChanged, this, [this](bool sound) {
        SetSoundMode(sound);
        Settings().SetThreeDGraphMode(sound ? kSound : kPlot);
    });
    connect(sound3D_, &CNiButton::valueChanged, this, [this](bool) {
        if (mainMixer_ != 0)
            SendAppMessage(mainMixer_, UWM_CONFIG_REFRESH, 0, 0);
    });
    connect(split_, &CNiButton::valueChanged, this, [this](bool sideBySide) {
        ApplySplitPicture();
        Settings().SetThreeDGraphJoinOrSplit(sideBySide ? kJoin : kSplit);
        PlotSurface(0);
    });
    connect(reset_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == 1)
            ResetView();
    });
    connect(flatten_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == 1)
            FlattenView();
    });
}

void CRyn3DGraph::RegisterControls() {
    ComponentRegistry& r = Registry();
    r.Register(surface_, this, QStringLiteral("3D Graph:"),
               QStringLiteral("Plots the spectrum in 3 Dimensions. The band levels of both decks "
                              "scroll from the front to the back, newest in front. Right-click "
                              "to switch the 3D graph on or off; drag to turn the view."),
               QStringLiteral("3d spectrum"));
    r.Register(positionPlot_, this, QStringLiteral("3D Sound Position:"),
               QStringLiteral("Shows where the joystick puts the listener among the decks' "
                              "sound while 3D sound is on. Moving right brings the decks' sound "
                              "to the left speaker; moving away lowers it."),
               QStringLiteral("3d sound position"));
    r.Register(rateLabel_, this, QStringLiteral("Graphs and Meters FPS:"),
               QStringLiteral("How many times a second the graphs and meters are drawn "
                              "(frames per second)."),
               QStringLiteral("frames per second"));
    r.Register(mode_, this, QStringLiteral("3D Mode:"),
               QStringLiteral("Switches the window between the 3D spectrum plot (\"3D Plot\") and "
                              "the joystick position of the 3D sound (\"3D Sound\")."),
               QStringLiteral("3d plot or 3d sound"));
    r.Register(sound3D_, this, QStringLiteral("3D Sound On:"),
               QStringLiteral("Turns 3D sound on: the main output plays the decks as one mono "
                              "source that the joystick moves between the speakers. Changing "
                              "it opens the main sound device again, which stops the decks."),
               QStringLiteral("3d sound on"));
    r.Register(split_, this, QStringLiteral("Split Or Join:"),
               QStringLiteral("\"Join\" shows the two decks side by side, deck A's bands first; "
                              "\"Split\" joins them into one surface of their mean levels."),
               QStringLiteral("split or join decks"));
    r.Register(reset_, this, QStringLiteral("Reset View:"),
               QStringLiteral("Press this to return the 3D plot to its usual view."),
               QStringLiteral("reset view"));
    r.Register(flatten_, this, QStringLiteral("Flatten View:"),
               QStringLiteral("Press this to orient the view so the 3D plot appears flat."),
               QStringLiteral("flatten view"));
}

void CRyn3DGraph::Initialise(WindowHandle mainMixer) {
    mainMixer_ = mainMixer;
    CRynSettings& s = Settings();
    split_->SetValue(s.GetThreeDGraphJoinOrSplit() == kJoin);
    mode_->SetValue(s.GetThreeDGraphMode() == kSound);
    SetGraphEnabled(s.GetThreeDGraphEnabledState());
}

void CRyn3DGraph::SetGraphEnabled(bool on) {
    const bool changed = on != enabled_;
    enabled_ = on;
    if (changed)
        Settings().SetThreeDGraphEnabledState(on);
    ApplyLook();
}

bool CRyn3DGraph::Plotting() const {
    return enabled_ && isVisible() && !SoundMode();
}

void CRyn3DGraph::ApplyLook() {
    const QColor area = enabled_ && !SoundMode() ? QColor(Qt::black) : QColor(128, 128, 128);
    if (surface_->PlotAreaColor() != area)
        surface_->SetPlotAreaColor(area);
}

bool CRyn3DGraph::SoundMode() const {
    return mode_->Caption() == kSound;
}

void CRyn3DGraph::SetSoundMode(bool sound) {
    if (mode_->Value() != sound) {
        mode_->SetValue(sound);  // comes back here through valueChanged
        return;
    }
    positionPlot_->setVisible(sound);
    surface_->setVisible(!sound);
    if (sound) {
        SetWindowTimer(kPositionTimer, kPositionMs);
    } else {
        KillWindowTimer(kPositionTimer);
        PlotSurface(0);
    }
    ApplyLook();
}

bool CRyn3DGraph::Sound3DOn() const {
    return sound3D_->Value();
}

void CRyn3DGraph::SetSound3DOn(bool on) {
    sound3D_->SetValue(on);
}

void CRyn3DGraph::NoteGraphsPass() {
    ++passes_;
    const qint64 ms = rateClock_.elapsed();
    if (ms < 1000)
        return;
    rate_ = passes_ * 1000.0 / static_cast<double>(ms);
    passes_ = 0;
    rateClock_.restart();
    if (isVisible())
        rateValue_->setText(QString::number(rate_, 'f', 1));
}

void CRyn3DGraph::SetJoystick(std::unique_ptr<joystick::Joystick> joystick) {
    joystick_ = std::move(joystick);
}

void CRyn3DGraph::PollPosition() {
    if (!joystick_)
        joystick_ = joystick::OpenSystemJoystick();
    joystick::Position p;
    if (!joystick_->Poll(&p))
        return;  // no joystick, or acquired again: no reading this time
    position_ = p;
    positionPlot_->SetCursorPosition(0, p.x, p.y);
    if (mainMixer_ != 0)
        PostAppMessageRetry(mainMixer_, UWM_LISTENER_POSITION, FloatParam(float(p.x)),
                            static_cast<LParam>(FloatParam(float(p.y))));
}

WParam CRyn3DGraph::FloatParam(float v) {
    return static_cast<WParam>(std::bit_cast<std::uint32_t>(v));
}

float CRyn3DGraph::ParamFloat(std::uintptr_t bits) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
}

void CRyn3DGraph::OnWindowTimer(int id) {
    if (id == kPositionTimer)
        PollPosition();
}

void CRyn3DGraph::showEvent(QShowEvent* event) {
    CRynWindow::showEvent(event);
    PlotSurface(0);  // what came in while hidden
}

void CRyn3DGraph::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, 0);
}
