#include "deck/CRynDeckInfo.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "controls/ControlLook.h"
#include "core/EngineState.h"
#include "core/ServiceThreads.h"
#include "deck/DeckInfoComponents.h"

using namespace control_look;

namespace {

constexpr int kRing = DeckInfoStats::kRingBlocks;  // output ring, blocks
const QColor kFlagColour(70, 190, 120);            // filled disc-buffer slots
const QColor kLevelColour(60, 150, 215);
const QColor kPlayColour(235, 200, 70);
const QColor kWriteColour(225, 120, 60);
const QColor kAheadColour(120, 200, 240);
const QColor kLedOn(60, 230, 90);
const QColor kLedOff(20, 70, 30);
// Captions here head the meters and lines: left, like the rest of the text.
constexpr Qt::Alignment kCaptionLeft = Qt::AlignLeft | Qt::AlignVCenter;

// A number beside a meter, wide enough for "170".
QLabel* ReadOut(QWidget* parent) {
    auto* l = new QLabel(QStringLiteral("0"), parent);
    l->setStyleSheet(QStringLiteral("color: rgb(214,220,228); font-size: 9pt;"));
    l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    l->setFixedWidth(l->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
    return l;
}

// A meter: a slide whose one pointer is a bar from 0 the mouse cannot move.
CNiSlide* Meter(Qt::Orientation o, double maximum, const QColor& colour, const QString& name,
                QWidget* parent) {
    auto* m = new CNiSlide(o, parent);
    m->SetAxis(0.0, maximum);
    m->SetPointerStyle(0, CNiSlide::kFill);
    m->SetPointerColor(0, colour);
    m->SetPointerInteractive(0, false);
    m->SetFillColor(QColor());
    m->SetTickCount(o == Qt::Vertical ? 10 : 12);
    m->SetValue(0.0);
    m->setObjectName(name);
    return m;
}

// A graph of one ring's fill flags: one bar per slot at x = 1..slots.
CNiGraph* FlagsGraph(int slotCount, const QString& name, QWidget* parent) {
    auto* g = new CNiGraph(parent);
    g->SetXRange(0.0, slotCount);
    g->SetYRange(0.0, 1.0);
    g->SetXIncrement(0.0, 1.0);
    g->SetPlotStyle(0, CNiGraph::kBars);
    g->SetPlotColor(0, kFlagColour);
    g->SetGridLines(slotCount / 10, 1);
    g->SetAxisLabelsVisible(true);
    g->setObjectName(name);
    return g;
}

CNiButton* ReadingLed(const QString& name, QWidget* parent) {
    auto* led = new CNiButton(parent);
    led->SetStyle(CNiButton::kRoundLamp);
    led->SetColors(kLedOn, kLedOff);
    led->setFixedSize(16, 16);
    led->setObjectName(name);
    return led;
}

}  // namespace

CRynDeckInfo::CRynDeckInfo(QWidget* parent) : CRynWindow("CRynDeckInfo", kTemplateId, parent) {
    BuildControls();
    resize(520, 380);
}

CRynDeckInfo::~CRynDeckInfo() {
    StopThread();
    JoinThread();
}

void CRynDeckInfo::BuildControls() {
    setAutoFillBackground(true);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, PanelColor());
    pal.setColor(QPalette::WindowText, TextColor());
    setPalette(pal);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(10, 8, 10, 10);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);

    // Disc buffers: a graph of the slots' flags, and beside it the level.
    forwardGraph_ =
        FlagsGraph(DeckInfoStats::kForwardSlots, QStringLiteral("discBufferDisplay"), this);
    backwardGraph_ = FlagsGraph(DeckInfoStats::kBackwardSlots,
                                QStringLiteral("backwardDiscBufferDisplay"), this);
    forwardLevel_ = Meter(Qt::Vertical, DeckInfoStats::kForwardSlots, kLevelColour,
                          QStringLiteral("discBufferLevelMeter"), this);
    backwardLevel_ = Meter(Qt::Vertical, DeckInfoStats::kBackwardSlots, kLevelColour,
                           QStringLiteral("backwardDiscBufferLevelMeter"), this);
    forwardCountText_ = ReadOut(this);
    backwardCountText_ = ReadOut(this);
    for (CNiGraph* g : {forwardGraph_, backwardGraph_})
        g->setMinimumSize(360, 90);
    for (CNiSlide* m : {forwardLevel_, backwardLevel_})
        m->setMinimumHeight(90);

    int row = 0;
    grid->addWidget(Caption(QStringLiteral("Forward disc buffer (170 blocks)"), this, kCaptionLeft),
                    row, 0);
    grid->addWidget(forwardCountText_, row, 1);
    grid->addWidget(forwardGraph_, ++row, 0);
    grid->addWidget(forwardLevel_, row, 1, Qt::AlignHCenter);
    grid->addWidget(Caption(QStringLiteral("Backward disc buffer (50 blocks)"), this, kCaptionLeft),
                    ++row, 0);
    grid->addWidget(backwardCountText_, row, 1);
    grid->addWidget(backwardGraph_, ++row, 0);
    grid->addWidget(backwardLevel_, row, 1, Qt::AlignHCenter);
    grid->setRowStretch(1, 1);
    grid->setRowStretch(3, 1);

    // Output ring positions, each a meter 0..120 with its number.
    struct PositionSpec {
        const char* caption;
        const char* name;
        QColor colour;
    };
    const PositionSpec specs[kPositionMeters] = {
        {"Forward read", "forwardReadPosition", kPlayColour},
        {"Forward write", "forwardWritePosition", kWriteColour},
        {"Blocks ahead", "blocksAheadMeter", kAheadColour},
        {"Reverse play", "backwardPlayPosition", kPlayColour},
        {"Reverse write", "backwardWritePosition", kWriteColour},
    };
    auto* positions = new QGridLayout;
    positions->setHorizontalSpacing(8);
    positions->setVerticalSpacing(0);
    for (int i = 0; i < kPositionMeters; ++i) {
        const PositionSpec& s = specs[i];
        positionMeters_[i] =
            Meter(Qt::Horizontal, kRing, s.colour, QString::fromLatin1(s.name), this);
        positionTexts_[i] = ReadOut(this);
        positions->addWidget(Caption(QString::fromLatin1(s.caption), this, kCaptionLeft), i, 0);
        positions->addWidget(positionMeters_[i], i, 1);
        positions->addWidget(positionTexts_[i], i, 2);
    }
    positions->setColumnStretch(1, 1);
    grid->addWidget(
        Caption(QStringLiteral("Output ring positions (120 blocks)"), this, kCaptionLeft), ++row, 0,
        1, 2);
    grid->addLayout(positions, ++row, 0, 1, 2);

    // The meters switch and the readers' lamps.
    metersButton_ = new CNiButton(QStringLiteral("Meters off"), QStringLiteral("Meters on"), this);
    metersButton_->SetStyle(CNiButton::kLedButton);
    metersButton_->SetAction(CNiButton::kSwitchWhenPressed);
    metersButton_->setObjectName(QStringLiteral("turnOnDeckMeters"));
    forwardLed_ = ReadingLed(QStringLiteral("forwardDiscReading"), this);
    backwardLed_ = ReadingLed(QStringLiteral("backwardDiscReading"), this);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(6);
    bottom->addWidget(metersButton_);
    bottom->addStretch(1);
    bottom->addWidget(forwardLed_);
    bottom->addWidget(Caption(QStringLiteral("Forward reading"), this, kCaptionLeft));
    bottom->addSpacing(10);
    bottom->addWidget(backwardLed_);
    bottom->addWidget(Caption(QStringLiteral("Backward reading"), this, kCaptionLeft));
    grid->addLayout(bottom, ++row, 0, 1, 2);

    connect(metersButton_, &CNiButton::valueChanged, this, [this](bool on) { MetersSwitched(on); });
    PlotVectors();
}

void CRynDeckInfo::Initialise(WindowHandle deckWindow, int deck) {
    deckWindow_ = deckWindow;
    deck_ = deck == 1 ? 1 : 0;
    setWindowTitle(QStringLiteral("Deck %1 Info").arg(QChar('A' + deck_)));
    RegisterDeckInfoComponents(*this);
}

void CRynDeckInfo::StopThread() {
    DeckSharedState& d = Engine().decks[deck_];
    d.deckInfoThreadRun.store(0);
    d.deckInfoEvent->Set();
}

void CRynDeckInfo::SetMetersOn(bool on) {
    if (metersButton_->Value() != on)
        metersButton_->SetValue(on);  // its value change applies it
    else
        MetersSwitched(on);
}

bool CRynDeckInfo::MetersOn() const {
    return metersButton_->Value();
}

void CRynDeckInfo::MetersSwitched(bool on) {
    StopThread();
    if (!on) {
        ShowPositions(0, 0, 0, 0, 0);
        stats_.ClearBackwardVector();
        PlotVectors();
        ShowLevels(0, 0);
        return;
    }
    JoinThread();
    SharedEngineState& e = Engine();
    e.decks[deck_].deckInfoThreadRun.store(1);
    const int deck = deck_;
    thread_.Start(
        deck == 0 ? "deck-info-A" : "deck-info-B", ThreadPriority::BelowNormal,
        [&e, deck](const std::atomic<bool>& cancelled) { RunDeckInfoThread(e, deck, cancelled); });
    e.decks[deck_].deckInfoThread = &thread_;
}

void CRynDeckInfo::JoinThread() {
    if (!thread_.Started())
        return;
    SyncEvent* event = Engine().decks[deck_].deckInfoEvent.get();
    thread_.Join([event] { event->Set(); });
    if (Engine().decks[deck_].deckInfoThread == &thread_) {
        Engine().decks[deck_].deckInfoThread = nullptr;
    }
}

void CRynDeckInfo::Refresh() {
    ++refreshes_;
    if (!metersButton_->Value())
        return;
    const DeckSharedState& d = Engine().decks[deck_];
    forwardLed_->SetValue(d.forwardReaderRun.load() != 0);
    backwardLed_->SetValue(d.backwardReaderRun.load() != 0);
    ShowPositions(stats_.ForwardPlaySlot(), stats_.ForwardWriteSlot(), stats_.BlocksAhead(),
                  stats_.ReversePlaySlot(), stats_.ReverseWriteSlot());
    PlotVectors();
    ShowLevels(stats_.ForwardCount(), stats_.BackwardCount());
}

bool CRynDeckInfo::BackwardReadingOn() const {
    return backwardLed_->Value();
}

bool CRynDeckInfo::ForwardReadingOn() const {
    return forwardLed_->Value();
}

void CRynDeckInfo::ShowPositions(int forwardRead, int forwardWrite, int ahead, int reversePlay,
                                 int reverseWrite) {
    const int values[kPositionMeters] = {forwardRead, forwardWrite, ahead, reversePlay,
                                         reverseWrite};
    for (int i = 0; i < kPositionMeters; ++i) {
        positionMeters_[i]->SetValue(values[i]);
        positionTexts_[i]->setText(QString::number(values[i]));
    }
}

void CRynDeckInfo::ShowLevels(int forwardCount, int backwardCount) {
    forwardLevel_->SetValue(forwardCount);
    backwardLevel_->SetValue(backwardCount);
    forwardCountText_->setText(QString::number(forwardCount));
    backwardCountText_->setText(QString::number(backwardCount));
}

void CRynDeckInfo::PlotVectors() {
    const auto& f = stats_.ForwardVector();
    for (std::size_t i = 0; i < f.size(); ++i)
        forwardPlot_[i] = f[i];
    const auto& b = stats_.BackwardVector();
    for (std::size_t i = 0; i < b.size(); ++i)
        backwardPlot_[i] = b[i];
    forwardGraph_->PlotY(0, std::span<const double>(forwardPlot_));
    backwardGraph_->PlotY(0, std::span<const double>(backwardPlot_));
}

void CRynDeckInfo::closeEvent(QCloseEvent* event) {
    event->ignore();
    SendAppMessage(deckWindow_, UWM_WINDOW_CLOSED, kTemplateId, 0);
    hide();
}
