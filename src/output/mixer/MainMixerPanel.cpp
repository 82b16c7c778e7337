#include "output/mixer/MainMixerPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/laws/MasterLine.h"
#include "output/mixer/MixerColumns.h"
#include "settings/CRynSettings.h"

using namespace control_look;

namespace {

// The plots' y axis reaches a little above full gain so 1.0 stays visible.
constexpr double kPlotTop = 1.01;
constexpr double kPlotRight = CrossFaderCurve::kSteps - 1;  // x 0 … 98
// The fader position on the plot's x axis: trunc((x + 1) · 49).
double PlotCursorX(double x) {
    return std::trunc((x + 1.0) * 49.0);
}

const QColor kDefaultMain[2] = {QColor(70, 160, 255), QColor(255, 150, 50)};
const QColor kDefaultDark[2] = {QColor(20, 60, 140), QColor(130, 60, 10)};
const QColor kPictureColour(150, 210, 160);

void PlotTables(CNiGraph* graph, const CrossFaderCurve& curve) {
    for (int deck = 0; deck < 2; ++deck) {
        const auto& t = curve.Table(deck);
        QVector<double> y(t.begin(), t.end());
        graph->PlotY(deck, y);
    }
}

}  // namespace

MainMixerPanel::MainMixerPanel(CRynAudioOutput* main, CRynSettings* settings, QWidget* parent)
    : QWidget(parent), main_(main), settings_(settings) {
    setObjectName(QStringLiteral("MainMixerPanel"));
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    setPalette(pal);

    catchUpTimer_.setSingleShot(true);
    catchUpTimer_.setInterval(kCatchUpMs);
    autoPanTimer_.setInterval(kAutoPanMs);
    reapplyTimer_.setInterval(kReapplyMs);
    levelSaveTimer_.setSingleShot(true);
    levelSaveTimer_.setInterval(kLevelSaveDelayMs);

    BuildControls();
    LayOut();
    SetRanges();
    for (int deck = 0; deck < 2; ++deck)
        SetDeckColours(deck, kDefaultMain[deck], kDefaultDark[deck]);
    // The state the mixer starts in, set before any event is connected.
    crossFader_->SetValue(-1.0);
    autoPanSpeed_->SetValue(kAutoPanStartSpeed);
    DrawCurvePictures();
    RedrawPlot();
    Connect();
}

MainMixerPanel::~MainMixerPanel() {
    StorePendingLevels();
}

void MainMixerPanel::BuildControls() {
    for (int deck = 0; deck < 2; ++deck) {
        levels_[deck] = new CNiSlide(Qt::Vertical, this);
        levels_[deck]->setObjectName(deck == 0 ? QStringLiteral("Main Mixer Deck A Level Slide")
                                               : QStringLiteral("Main Mixer Deck B Level Slide"));
        levels_[deck]->SetPointerStyle(0, CNiSlide::kThumb);
        levels_[deck]->SetTickCount(10);
    }
    crossFader_ = new CNiSlide(Qt::Horizontal, this);
    crossFader_->setObjectName(QStringLiteral("Main Cross Fader"));
    crossFader_->SetPointerStyle(0, CNiSlide::kThumb);
    crossFader_->SetPointerColor(0, TextColor());
    crossFader_->SetFillColor(QColor());
    crossFader_->SetArrowsVisible(true);
    crossFader_->SetArrowStep(1.0);  // halfway across
    crossFader_->SetTickCount(8);

    curveSelector_ = new CNiSlide(Qt::Horizontal, this);
    curveSelector_->setObjectName(QStringLiteral("Main Cross Fader Curve Selector"));
    curveSelector_->SetPointerStyle(0, CNiSlide::kThumb);
    curveSelector_->SetPointerColor(0, kPictureColour);
    curveSelector_->SetFillColor(QColor());
    curveSelector_->SetTickCount(2);

    plot_ = new CNiGraph(this);
    plot_->setObjectName(QStringLiteral("Cross Fader Plot"));
    plot_->SetPlotCount(2);
    plot_->SetCursorCount(1);
    plot_->SetCursorStyle(0, CNiGraph::kVerticalLine);
    plot_->SetCursorColor(0, TextColor());
    plot_->SetCursorDraggable(0, false);
    plot_->SetGridLines(4, 2);

    const QString pictureNames[3] = {QStringLiteral("Cross Fader Curve Selection Ramp"),
                                     QStringLiteral("Cross Fader Curve Selection Logarithmic"),
                                     QStringLiteral("Cross Fader Curve Selection Wedge")};
    for (int i = 0; i < 3; ++i) {
        pictures_[i] = new CNiGraph(this);
        pictures_[i]->setObjectName(pictureNames[i]);
        pictures_[i]->SetPlotCount(2);
        pictures_[i]->SetPlotColor(0, kPictureColour);
        pictures_[i]->SetPlotColor(1, kPictureColour);
        pictures_[i]->SetGridLines(0, 0);
        pictures_[i]->SetCursorCount(0);
        // A picture, not a control: the mouse goes to the panel.
        pictures_[i]->setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    volume_ = new CNiSlide(Qt::Vertical, this);
    volume_->setObjectName(QStringLiteral("Main Volume"));
    volume_->SetPointerStyle(0, CNiSlide::kThumb);
    volume_->SetPointerColor(0, TextColor());
    volume_->SetFillColor(QColor(90, 96, 106));
    volume_->SetTickCount(10);

    balance_ = new CNiSlide(Qt::Horizontal, this);
    balance_->setObjectName(QStringLiteral("Main Mixer Balance Slide"));
    balance_->SetPointerStyle(0, CNiSlide::kThumb);
    balance_->SetPointerColor(0, TextColor());
    balance_->SetFillColor(QColor());
    balance_->SetTickCount(4);

    autoPanButton_ = new CNiButton(QStringLiteral("Auto Pan"), QStringLiteral("Auto Pan"), this);
    autoPanButton_->setObjectName(QStringLiteral("Main Mixer Auto Pan On Button"));
    autoPanButton_->SetStyle(CNiButton::kLedButton);
    autoPanButton_->SetAction(CNiButton::kSwitchWhenPressed);
    autoPanButton_->SetColors(QColor(60, 230, 90), QColor(10, 40, 14));

    const auto showButton = [this](const QString& name) {
        auto* b = new CNiButton(name, name, this);
        b->setObjectName(name);
        b->SetStyle(CNiButton::kLedButton);
        b->SetAction(CNiButton::kSwitchWhenPressed);
        b->SetColors(QColor(60, 230, 90), QColor(10, 40, 14));
        return b;
    };
    showPhones_ = showButton(QStringLiteral("Show Phones Mixer"));
    showOptions_ = showButton(QStringLiteral("Show Options Window"));

    autoPanSpeed_ = new CNiSlide(Qt::Horizontal, this);
    autoPanSpeed_->setObjectName(QStringLiteral("Main Mixer Auto-Pan Speed"));
    autoPanSpeed_->SetPointerStyle(0, CNiSlide::kThumb);
    autoPanSpeed_->SetPointerColor(0, QColor(60, 230, 90));
    autoPanSpeed_->SetFillColor(QColor(20, 70, 30));
    autoPanSpeed_->SetTickCount(4);
}

void MainMixerPanel::LayOut() {
    constexpr int kSlideHeight = 150;
    auto* top = new QHBoxLayout;
    top->setSpacing(4);

    for (int deck = 0; deck < 2; ++deck) {
        top->addLayout(mixer_columns::LevelColumn(
            levels_[deck], kSlideHeight, deck == 0 ? QStringLiteral("A") : QStringLiteral("B"),
            this));
    }

    auto* centre = new QVBoxLayout;
    centre->setSpacing(3);
    plot_->setMinimumSize(150, 70);
    centre->addWidget(plot_, 1);
    auto* pictures = new QHBoxLayout;
    pictures->setSpacing(4);
    // Left to right as the selector runs: logarithmic (-1), ramp (0), wedge (+1).
    for (int i : {kLogPicture, kRampPicture, kWedgePicture}) {
        pictures_[i]->setFixedHeight(30);
        pictures_[i]->setMinimumWidth(40);
        pictures->addWidget(pictures_[i]);
    }
    centre->addLayout(pictures);
    curveSelector_->setFixedHeight(22);
    centre->addWidget(curveSelector_);
    centre->addWidget(Caption(QStringLiteral("curve"), this));
    top->addLayout(centre, 1);

    top->addLayout(
        mixer_columns::LevelColumn(volume_, kSlideHeight, QStringLiteral("volume"), this));

    auto* fader = new QHBoxLayout;
    crossFader_->setFixedHeight(28);
    fader->addWidget(crossFader_);

    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(6);
    bottom->addLayout(mixer_columns::CaptionedSlide(balance_, QStringLiteral("balance"), this), 3);
    autoPanButton_->setFixedHeight(24);
    bottom->addWidget(autoPanButton_, 0, Qt::AlignTop);
    bottom->addLayout(
        mixer_columns::CaptionedSlide(autoPanSpeed_, QStringLiteral("pan speed"), this), 2);

    auto* shows = new QHBoxLayout;
    shows->setSpacing(6);
    for (CNiButton* b : {showPhones_, showOptions_}) {
        b->setFixedHeight(22);
        shows->addWidget(b);
    }

    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(6, 6, 6, 6);
    v->setSpacing(4);
    v->addLayout(top);
    v->addWidget(Caption(QStringLiteral("cross fader"), this));
    v->addLayout(fader);
    v->addLayout(bottom);
    v->addLayout(shows);
}

void MainMixerPanel::Connect() {
    for (int deck = 0; deck < 2; ++deck) {
        CNiSlide* s = levels_[deck];
        connect(s, &CNiSlide::valueChanged, this, [this, deck](double) { OnLevelMoved(deck); });
        connect(s, &CNiSlide::mouseDown, this, [this, deck](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton)
                levelHeld_[deck] = true;
        });
        connect(s, &CNiSlide::mouseUp, this, [this, deck](int button, int, QPoint) {
            if (button == CNiControl::kLeftButton)
                OnLevelReleased(deck);
        });
    }
    connect(crossFader_, &CNiSlide::valueChanged, this, &MainMixerPanel::OnCrossFaderMoved);
    connect(crossFader_, &CNiSlide::mouseUp, this, [this](int button, int, QPoint) {
        if (button != CNiControl::kRightButton)
            return;
        if (crossFader_->Value() == 0.0)
            OnCrossFaderMoved(0.0);  // already centred: still an applied move
        else
            crossFader_->SetValue(0.0);
    });

    connect(curveSelector_, &CNiSlide::valueChanged, this, &MainMixerPanel::OnCurveMoved);
    connect(curveSelector_, &CNiSlide::mouseDown, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kLeftButton)
            curveHeld_ = true;
    });
    connect(curveSelector_, &CNiSlide::mouseUp, this, [this](int button, int, QPoint) {
        if (button != CNiControl::kLeftButton)
            return;
        curveHeld_ = false;
        StoreCurve();
    });

    connect(volume_, &CNiSlide::valueChanged, this, [this](double) { ApplyMasterLine(); });
    connect(balance_, &CNiSlide::valueChanged, this, [this](double) { ApplyMasterLine(); });
    connect(balance_, &CNiSlide::mouseUp, this, [this](int button, int, QPoint) {
        if (button == CNiControl::kRightButton)
            MoveMasterSlide(balance_, 0.0);
    });

    connect(autoPanButton_, &CNiButton::valueChanged, this, &MainMixerPanel::OnAutoPanButton);
    connect(autoPanSpeed_, &CNiSlide::valueChanged, this,
            [this](double v) { autoPan_.SetSpeed(static_cast<float>(v)); });

    connect(showPhones_, &CNiButton::valueChanged, this, [this](bool on) {
        if (onShowPhones)
            onShowPhones(on);
    });
    connect(showOptions_, &CNiButton::valueChanged, this, [this](bool on) {
        if (onShowOptions)
            onShowOptions(on);
    });

    connect(&catchUpTimer_, &QTimer::timeout, this, [this] { catchUp_ = false; });
    connect(&autoPanTimer_, &QTimer::timeout, this, &MainMixerPanel::OnAutoPanTick);
    connect(&reapplyTimer_, &QTimer::timeout, this, &MainMixerPanel::ApplyCrossFader);
    connect(&levelSaveTimer_, &QTimer::timeout, this, &MainMixerPanel::StorePendingLevels);
}

void MainMixerPanel::SetRanges() {
    for (CNiSlide* s : levels_)
        s->SetAxis(0.0, 1.0);
    crossFader_->SetAxis(-1.0, 1.0);
    curveSelector_->SetAxis(-1.0, 1.0);
    volume_->SetAxis(0.0, 1.0);
    balance_->SetAxis(-1.0, 1.0);
    autoPanSpeed_->SetAxis(0.0, kAutoPanMaxSpeed);
    for (CNiGraph* g : {plot_, pictures_[0], pictures_[1], pictures_[2]}) {
        g->SetXRange(0.0, kPlotRight);
        g->SetYRange(0.0, kPlotTop);
        g->SetXIncrement(0.0, 1.0);
    }
}

void MainMixerPanel::Initialise() {
    DrawCurvePictures();
    SetRanges();
    autoPanSpeed_->SetValue(kAutoPanStartSpeed);
    autoPan_.SetSpeed(kAutoPanStartSpeed);
    crossFader_->SetValue(-1.0);
    if (settings_) {
        loading_ = true;
        for (int deck = 0; deck < 2; ++deck)
            levels_[deck]->SetValue(settings_->GetMainDeckLevel(deck));
        loading_ = false;
    }
    RedrawPlot();
    ApplyCrossFader();
    reapplyTimer_.start();
}

void MainMixerPanel::DrawCurvePictures() {
    const float c[3] = {0.0f, -1.0f, 1.0f};  // ramp, logarithmic, wedge
    for (int i = 0; i < 3; ++i) {
        CrossFaderCurve curve;
        curve.SetCurve(c[i]);
        PlotTables(pictures_[i], curve);
    }
}

void MainMixerPanel::RedrawPlot() {
    PlotTables(plot_, gains_.Curve());
    plot_->SetCursorX(0, PlotCursorX(crossFader_->Value()));
}

void MainMixerPanel::SetDeckColours(int deck, const QColor& main, const QColor& dark) {
    deck = deck == 1 ? 1 : 0;
    deckColours_[deck] = main;
    levels_[deck]->SetPointerColor(0, main);
    levels_[deck]->SetFillColor(dark);
    plot_->SetPlotColor(deck, main);
}

void MainMixerPanel::ApplyCrossFader() {
    gains_.MoveTo(CrossFader());
    if (!main_)
        return;
    const float levels[2] = {Level(0), Level(1)};
    main_->ApplyCrossFader(gains_, levels);
}

void MainMixerPanel::OnLevelMoved(int deck) {
    ApplyCrossFader();
    if (loading_ || levelHeld_[deck])
        return;
    // A move from code or keys: stored once the moves stop.
    levelPending_[deck] = true;
    levelSaveTimer_.start();
}

void MainMixerPanel::OnLevelReleased(int deck) {
    levelHeld_[deck] = false;
    levelPending_[deck] = false;
    StoreLevel(deck);
}

void MainMixerPanel::StoreLevel(int deck) {
    if (settings_)
        settings_->SetMainDeckLevel(deck, Level(deck));
}

void MainMixerPanel::StorePendingLevels() {
    levelSaveTimer_.stop();
    for (int deck = 0; deck < 2; ++deck) {
        if (levelPending_[deck]) {
            levelPending_[deck] = false;
            StoreLevel(deck);
        }
    }
}

void MainMixerPanel::OnCrossFaderMoved(double x) {
    catchUpTimer_.start();  // restarts a running timer
    catchUp_ = true;
    plot_->SetCursorX(0, PlotCursorX(x));
    ApplyCrossFader();
    if (onCrossFaderMoved)
        onCrossFaderMoved();
}

void MainMixerPanel::OnCurveMoved(double value) {
    const float c = static_cast<float>(value);
    if (onCurveChanged)
        onCurveChanged(c);
    gains_.SetCurve(c);
    RedrawPlot();
    ApplyCrossFader();
    if (!curveHeld_)
        StoreCurve();
}

void MainMixerPanel::StoreCurve() {
    if (settings_)
        settings_->SetMainMixerXFaderCurveParameter(Curve());
}

void MainMixerPanel::SetCurveParameter(float c) {
    if (!std::isfinite(c))
        return;
    c = std::clamp(c, -1.0f, 1.0f);
    if (curveSelector_->Value() == static_cast<double>(c))
        OnCurveMoved(c);
    else
        curveSelector_->SetValue(c);
}

void MainMixerPanel::SetMasterEnabled(bool enabled) {
    masterEnabled_ = enabled;
    volume_->setEnabled(enabled);
    balance_->setEnabled(enabled);
}

void MainMixerPanel::ApplyMasterLine() {
    if (!masterEnabled_ || !main_ || !main_->HasDevice())
        return;
    const LinePercent line = MasterLineLevels(volume_->Value(), balance_->Value());
    main_->SetMasterGain(line.left, line.right);
}

void MainMixerPanel::MoveMasterSlide(CNiSlide* slide, double value) {
    const double before = slide->Value();
    slide->SetValue(value);
    if (slide->Value() == before)
        ApplyMasterLine();  // no event came: write the line anyway
}

void MainMixerPanel::SetVolume(float volume) {
    MoveMasterSlide(volume_, volume);
}

void MainMixerPanel::SetBalance(float balance) {
    MoveMasterSlide(balance_, balance);
}

void MainMixerPanel::SetLevel(int deck, float level) {
    levels_[deck == 1 ? 1 : 0]->SetValue(level);
}

void MainMixerPanel::SetCrossFader(float position) {
    crossFader_->SetValue(position);
}

float MainMixerPanel::Volume() const {
    return static_cast<float>(volume_->Value());
}
float MainMixerPanel::Balance() const {
    return static_cast<float>(balance_->Value());
}
float MainMixerPanel::CrossFader() const {
    return static_cast<float>(crossFader_->Value());
}
float MainMixerPanel::Level(int deck) const {
    return static_cast<float>(levels_[deck == 1 ? 1 : 0]->Value());
}
float MainMixerPanel::Curve() const {
    return static_cast<float>(curveSelector_->Value());
}

void MainMixerPanel::SetAutoPan(bool on) {
    autoPanButton_->SetValue(on);
}

bool MainMixerPanel::AutoPanOn() const {
    return autoPanButton_->Value();
}

void MainMixerPanel::OnAutoPanButton(bool on) {
    if (on) {
        savedBalance_ = balance_->Value();
        autoPan_.TurnOn(static_cast<float>(savedBalance_));
        autoPanTimer_.start();
        return;
    }
    autoPanTimer_.stop();
    MoveMasterSlide(balance_, savedBalance_);
}

void MainMixerPanel::OnAutoPanTick() {
    balance_->SetValue(autoPan_.Step());
}

void MainMixerPanel::FireTimerForTest(int id) {
    switch (id) {
        case kCatchUpTimer:
            catchUpTimer_.stop();
            catchUp_ = false;
            break;
        case kAutoPanTimer:
            OnAutoPanTick();
            break;
        case kReapplyTimer:
            ApplyCrossFader();
            break;
        default:
            break;
    }
}

bool MainMixerPanel::TimerActive(int id) const {
    switch (id) {
        case kCatchUpTimer:
            return catchUpTimer_.isActive();
        case kAutoPanTimer:
            return autoPanTimer_.isActive();
        case kReapplyTimer:
            return reapplyTimer_.isActive();
        default:
            return false;
    }
}
