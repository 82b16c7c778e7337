#include "deck/CRynDeck.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "deck/CRynDeckInfo.h"
#include "deck/DeckComponents.h"
#include "deck/block/DeckBlockWork.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/effects/DeckEffectsPanel.h"
#include "deck/graphs/DeckGraphs.h"
#include "deck/source/DeckSource.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "deck/transport/DeckTransport.h"
#include "deck/turntable/TurntableController.h"
#include "dsp/window/CRynEqualizer.h"
#include "dsp/window/CRynPhaseVocoder.h"
#include "playlist/PlayList.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "sources/CRynFileDecoder.h"

namespace {

const QColor kDisplayText(120, 230, 140);
const QColor kNoticeText(255, 70, 60);

QLabel* MakeDisplay(QWidget* parent, int pointSize) {
    auto* label = new QLabel(parent);
    label->setAutoFillBackground(true);
    QPalette p = label->palette();
    p.setColor(QPalette::Window, QColor(12, 16, 20));
    p.setColor(QPalette::WindowText, kDisplayText);
    label->setPalette(p);
    QFont f = label->font();
    f.setPointSize(pointSize);
    f.setFamily(QStringLiteral("Monospace"));
    label->setFont(f);
    label->setMargin(3);
    label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return label;
}

CNiButton* MakeCommand(QWidget* parent, const QString& caption) {
    auto* b = new CNiButton(parent);
    b->SetCaption(caption);
    b->SetAction(CNiButton::kIndicator);
    return b;
}

CNiButton* MakeLed(QWidget* parent) {
    auto* b = new CNiButton(parent);
    b->SetStyle(CNiButton::kRoundLamp);
    b->SetColors(QColor(200, 200, 20), QColor(50, 50, 40));
    b->setFixedSize(16, 16);
    return b;
}

}  // namespace

CRynDeck::CRynDeck(QWidget* parent) : CRynWindow("CRynDeck", kTemplateId, parent) {
    resize(860, 450);
    decoder_ = std::make_unique<CRynFileDecoder>();
    blockWork_ = std::make_unique<DeckBlockWork>();
    BuildControls();
}

CRynDeck::~CRynDeck() {
    if (transport_)
        transport_->StopAllReaders();
    if (source_)
        source_->Close();
    DeckSharedState& d = Engine().decks[deck_];
    if (d.decoder == decoder_.get())
        d.decoder = nullptr;
    if (d.deckWindow == Handle())
        d.deckWindow = 0;
}

CRynPlayList* CRynDeck::PlayListWindow() const {
    return playList_;
}

void CRynDeck::Initialise(CRynDeckInfo* info, CRynEqualizer* equalizer, CRynPlayList* playList,
                          WindowHandle mainMixer, int deck) {
    info_ = info;
    equalizer_ = equalizer;
    playList_ = playList;
    mainMixer_ = mainMixer;
    deck_ = deck == 1 ? 1 : 0;
    DeckSharedState& shared = Engine().decks[deck_];
    shared.deckWindow = Handle();
    shared.decoder = decoder_.get();
    shared.cdDrive.store(-1);
    setWindowTitle(QStringLiteral("Deck %1").arg(QChar('A' + deck_)));

    if (!playList_)
        ownList_ = std::make_unique<PlayList>();
    source_ = std::make_unique<DeckSource>(deck_, *decoder_, List(), cd_);
    transport_ = std::make_unique<DeckTransport>(deck_, Stats());
    transport_->SetStreamRate([this] { return Rate(); });
    transport_->SetNominalRate([this] { return tempo_->NominalRate(); });
    transport_->SetUnderrunHandler([this] { OnTrackEnded(); });
    transport_->SetEndHeardHandler([this] { OnEndHeard(); });
    Disc().SetSource(source_.get());
    blockWork_->SetEqualizer(equalizer_);
    Disc().SetBlockRoutine(blockWork_.get());
    InitialiseGraphs();
    if (equalizer_) {
        equalizer_->installEventFilter(this);
        showEqualizer_->SetValue(equalizer_->isVisible());
    }
    Disc().SetLedsChanged([this] {
        const CRynDiscBuffer::Leds& l = Disc().GetLeds();
        freshDataLed_->SetValue(l.freshDataLow);
        discLowLed_->SetOnColor(l.discBufferVeryLow ? QColor(200, 20, 20) : QColor(200, 200, 20));
        discLowLed_->SetValue(l.discBufferLow);
        readErrorLed_->SetValue(l.discReadError);
    });
    progress_->SetPointerColor(0, Colour(0));
    tempo_->Initialise(deck_);
    tempo_->SetDeckColours(Colour(0), Colour(1));
    WireControls();
    WireTurntable();
    RegisterDeckComponents(*this);
}

void CRynDeck::SetCdAudio(CRynCdAudio* cd) {
    cd_ = cd;
    if (playList_)
        playList_->SetCdAudio(cd);  // for the disc's names
    if (source_) {
        // The source is rebuilt around the reader; nothing is loaded yet.
        Disc().SetSource(nullptr);
        source_ = std::make_unique<DeckSource>(deck_, *decoder_, List(), cd_);
        Disc().SetSource(source_.get());
    }
}

CRynDiscBuffer& CRynDeck::Disc() {
    return transport_->Disc();
}

void CRynDeck::SetEqNumberType(bool ints) {
    blockWork_->SetIntegerArithmetic(ints);
    if (equalizer_)
        equalizer_->SetIntegerArithmetic(ints);
}

bool CRynDeck::IsReverse() const {
    return transport_ && transport_->IsReverse();
}

bool CRynDeck::EndOfTrackPending() const {
    return transport_ && transport_->EndOfTrackPending();
}

int CRynDeck::BlocksUntilTrackEnd() const {
    return transport_ ? transport_->BlocksUntilTrackEnd() : 0;
}

double CRynDeck::ElapsedSeconds() const {
    return transport_ ? transport_->ElapsedSeconds() : 0.0;
}

bool CRynDeck::Primed() const {
    return transport_ && transport_->Primed();
}

DeckInfoStats& CRynDeck::Stats() {
    return info_ ? info_->Stats() : ownStats_;
}

PlayList& CRynDeck::List() {
    return playList_ ? playList_->List() : *ownList_;
}

QColor CRynDeck::Colour(int which) const {
    // Deck A blue, deck B orange; the second colour is the dark shade.
    static const QColor kColours[2][2] = {{QColor(40, 170, 255), QColor(10, 60, 110)},
                                          {QColor(255, 160, 30), QColor(110, 60, 10)}};
    return kColours[deck_][which == 1 ? 1 : 0];
}

void CRynDeck::BuildControls() {
    auto* grid = new QGridLayout(this);
    grid->setSpacing(4);
    grid->setContentsMargins(6, 6, 6, 6);

    trackName_ = MakeDisplay(this, 10);
    SetTrackName(QString::fromLatin1(DeckSource::kNoFile));
    trackNumber_ = MakeDisplay(this, 10);
    trackNumber_->setText(QStringLiteral("0/0"));
    trackNumber_->setAlignment(Qt::AlignCenter);
    grid->addWidget(trackName_, 0, 0, 1, 5);
    grid->addWidget(trackNumber_, 0, 5);

    timeMode_ = MakeCommand(this, QString::fromLatin1("Elapsed In Track:"));
    timeDisplay_ = MakeDisplay(this, 14);
    timeDisplay_->setText(QStringLiteral("00:00:00"));
    timeDisplay_->setAlignment(Qt::AlignCenter);
    grid->addWidget(timeMode_, 1, 0, 1, 3);
    grid->addWidget(timeDisplay_, 1, 3, 1, 3);

    progress_ = new CNiSlide(Qt::Horizontal, this);
    progress_->SetAxis(0.0, 1.0);
    progress_->SetFillColor(kProgressGrey);
    grid->addWidget(progress_, 2, 0, 1, 6);

    startStop_ = MakeCommand(this, QStringLiteral("start"));
    dropLift_ = MakeCommand(this, QStringLiteral("drop"));
    direction_ = new CNiButton(QStringLiteral("rev"), QStringLiteral("REV"), this);
    rewind_ = new CNiButton(QStringLiteral("<<"), QStringLiteral("<<"), this);
    rewind_->SetAction(CNiButton::kSwitchUntilReleased);
    fastForward_ = new CNiButton(QStringLiteral(">>"), QStringLiteral(">>"), this);
    fastForward_->SetAction(CNiButton::kSwitchUntilReleased);
    grid->addWidget(startStop_, 3, 0);
    grid->addWidget(dropLift_, 3, 1);
    grid->addWidget(direction_, 3, 2);
    grid->addWidget(rewind_, 3, 3);
    grid->addWidget(fastForward_, 3, 4);

    previous_ = MakeCommand(this, QStringLiteral("|<"));
    next_ = MakeCommand(this, QStringLiteral(">|"));
    eject_ = MakeCommand(this, QStringLiteral("eject"));
    modeButton_ = MakeCommand(this, QStringLiteral("File"));
    grid->addWidget(previous_, 4, 0);
    grid->addWidget(next_, 4, 1);
    grid->addWidget(eject_, 4, 2);
    grid->addWidget(modeButton_, 4, 3);
    errorCorrection_ = new CNiButton(QString(), QString(), this);
    errorCorrection_->setEnabled(false);
    grid->addWidget(errorCorrection_, 4, 4, 1, 2);

    drives_ = new QComboBox(this);
    drives_->setEnabled(false);
    grid->addWidget(drives_, 5, 0, 1, 4);

    freshDataLed_ = MakeLed(this);
    discLowLed_ = MakeLed(this);
    readErrorLed_ = MakeLed(this);
    readErrorLed_->SetColors(QColor(220, 30, 30), QColor(50, 40, 40));
    auto* leds = new QHBoxLayout;
    leds->addWidget(freshDataLed_);
    leds->addWidget(discLowLed_);
    leds->addWidget(readErrorLed_);
    grid->addLayout(leds, 5, 4, 1, 2);

    showEqualizer_ = new CNiButton(QStringLiteral("Show The Equalizer:"),
                                   QStringLiteral("Show The Equalizer:"), this);
    showPlayList_ = new CNiButton(QStringLiteral("Show The Play List:"),
                                  QStringLiteral("Show The Play List:"), this);
    showInfo_ =
        new CNiButton(QStringLiteral("Show Deck Info:"), QStringLiteral("Show Deck Info:"), this);
    for (CNiButton* b : {showEqualizer_, showPlayList_, showInfo_})
        b->SetStyle(CNiButton::kLedButton);
    auto* toggles = new QHBoxLayout;
    for (CNiButton* b : {showEqualizer_, showPlayList_, showInfo_, BuildPhaseVocoder()}) {
        b->setMinimumWidth(b->fontMetrics().horizontalAdvance(b->Caption()) + 34);
        toggles->addWidget(b);
    }
    grid->addLayout(toggles, 7, 0, 1, 7);

    tempo_ = new DeckTempoPanel(this);
    grid->addWidget(tempo_, 0, 6, 7, 1);
    BuildTurntable(grid);

    graphs_ = new DeckGraphs(this);
    grid->addWidget(graphs_, 8, 0, 1, 9);

    // The effect list and its knobs beside the platter.
    effects_ = new DeckEffectsPanel(this);
    grid->addWidget(effects_, 0, 8, 7, 1);

    // A deck starts stopped with its needle up and all transport disabled.
    SetTransportEnabled(false);
    direction_->setEnabled(false);
}

void CRynDeck::WireControls() {
    auto leftDown = [](CNiButton* b, auto&& f) {
        QObject::connect(b, &CNiControl::mouseDown, b, [f](int button, int, QPoint) {
            if (button == 1)
                f();
        });
    };
    leftDown(startStop_, [this] {
        if (startStop_->Caption() == QLatin1String("start"))
            StartTurntable();
        else
            StopTurntable();
    });
    leftDown(dropLift_, [this] {
        if (dropLift_->Caption() == QLatin1String("drop"))
            DropNeedle();
        else if (dropLift_->Caption() == QLatin1String("lift"))
            LiftNeedle();
    });
    leftDown(previous_, [this] { PreviousTrack(); });
    leftDown(next_, [this] { NextTrack(); });
    leftDown(eject_, [this] { Eject(); });
    leftDown(modeButton_, [this] {
        SetDeckMode(modeButton_->Caption() == QLatin1String("CD") ? DeckSource::kFileMode
                                                                  : DeckSource::kCdMode);
    });
    leftDown(timeMode_, [this] { NextTimeDisplayMode(); });
    connect(direction_, &CNiButton::valueChanged, this, [this](bool on) { SetReverse(on); });
    connect(rewind_, &CNiButton::valueChanged, this, [this](bool on) { WindPressed(false, on); });
    connect(fastForward_, &CNiButton::valueChanged, this,
            [this](bool on) { WindPressed(true, on); });
    connect(progress_, &CNiControl::mouseDown, this, [this](int button, int, QPoint) {
        if (button == 1) {
            progressFollowsPlay_ = false;
            StopBlink();
        }
    });
    connect(progress_, &CNiSlide::valueChanged, this, [this](double) {
        if (!progressFollowsPlay_)
            UpdateTimeDisplay();
    });
    connect(progress_, &CNiControl::mouseUp, this, [this](int button, int, QPoint) {
        if (button == 1)
            Reposition(progress_->Value());
    });
    connect(drives_, &QComboBox::activated, this, [this](int index) { SelectDriveItem(index); });
    connect(errorCorrection_, &CNiButton::valueChanged, this,
            [this](bool on) { source_->SetErrorCorrection(on); });
    auto showToggle = [this](CNiButton* b, auto window) {
        connect(b, &CNiButton::valueChanged, this, [window](bool on) {
            if (QWidget* w = window())
                w->setVisible(on);
        });
    };
    showToggle(showEqualizer_, [this] { return static_cast<QWidget*>(equalizer_); });
    showToggle(showPlayList_, [this] { return static_cast<QWidget*>(playList_); });
    showToggle(showInfo_, [this] { return static_cast<QWidget*>(info_); });
    tempo_->baseRate = [this] { return Rate(); };
    tempo_->onFrequency = [this](int hz) {
        PostAppMessageRetry(mainMixer_, UWM_SET_FORWARD_FREQUENCY, deck_, hz);
    };
    effects_->onEffectChanged = [this] { PostAppMessage(mainMixer_, UWM_APPLY_EFFECT, deck_, 0); };
    effects_->onKnobMoved = [this](int n) {
        PostAppMessage(mainMixer_, UWM_APPLY_EFFECT_PARAMETER, deck_, n);
    };
}

void CRynDeck::SetTransportEnabled(bool on) {
    for (CNiButton* b :
         {eject_, startStop_, dropLift_, rewind_, fastForward_, direction_, previous_, next_})
        b->setEnabled(on);
}

void CRynDeck::SetTrackName(const QString& text) {
    trackNameText_ = text;
    if (deviceNotice_.isEmpty())
        trackName_->setText(text);
}

void CRynDeck::SetDeviceNotice(const QString& notice) {
    deviceNotice_ = notice;
    QPalette p = trackName_->palette();
    p.setColor(QPalette::WindowText, notice.isEmpty() ? kDisplayText : kNoticeText);
    trackName_->setPalette(p);
    trackName_->setText(notice.isEmpty() ? trackNameText_ : notice);
}

QString CRynDeck::TrackNameText() const {
    return trackNameText_;
}

QString CRynDeck::TrackDisplayText() const {
    return trackName_->text();
}

QString CRynDeck::TrackNumberText() const {
    return trackNumber_->text();
}

QString CRynDeck::TimeText() const {
    return timeDisplay_->text();
}

QString CRynDeck::TimeModeCaption() const {
    return timeMode_->Caption();
}

double CRynDeck::ProgressValue() const {
    return progress_->Value();
}

QColor CRynDeck::ProgressColour() const {
    return progress_->FillColor();
}

int CRynDeck::Rate() const {
    return source_ ? source_->Rate() : 44100;
}

void CRynDeck::FocusHost() {
    // Keys go to the host through the application's key filter wherever the
    // focus is; the deck only gives up its own focus.
    if (QWidget* w = focusWidget())
        w->clearFocus();
}

void CRynDeck::Shutdown() {
    Engine().decks[deck_].isPlaying.store(0);
    // The deck's windows go before the deck itself: nothing may tick on.
    for (int id : {kBlinkTimer, kRedropTimer, kDriveReopenTimer, kCdStartTimer, kWindTimer,
                   kProgressTimer, kTimeTimer, kFileDialogTimer, kTurntableTimer, kSpinTimer})
        KillWindowTimer(id);
    if (transport_)
        transport_->StopAllReaders();
}

void CRynDeck::CloseDecoder() {
    decoder_->Close();
}

// ------------------------------------------------------------ tempo

void CRynDeck::ApplyTempo() {
    tempo_->ApplyTempo();
}

// ------------------------------------------------------------ messages

LResult CRynDeck::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    LResult result = 0;
    if (transport_ && Disc().HandleMessage(msg, wParam, lParam, &result))
        return result;
    switch (msg) {
        case UWM_END_OF_TRACK:
            return OnEndOfTrack();
        case UWM_LOAD_AND_PLAY:
            LoadTrack();
            if (!Rotating() && startStop_->isEnabled())
                StartTurntable();
            return 0;
        case UWM_TRACK_NUMBER:
            RefreshTrackNumber();
            return 0;
        case UWM_TRACK_INFO:
            RefreshTrackInfo();
            return 0;
        case UWM_LATENCY_MAXIMUM:
            PostAppMessageRetry(mainMixer_, msg, wParam, lParam);
            return 0;
        case UWM_LATENCY_QUARTER_REQUEST:
            for (int d = 0; d < 2; ++d)
                PostAppMessageRetry(mainMixer_, UWM_LATENCY_QUARTER, d, lParam);
            return 0;
        case UWM_WINDOW_CLOSED:
            if (wParam == 137)
                showEqualizer_->SetValue(false);
            else if (wParam == 144)
                showPlayList_->SetValue(false);
            else if (wParam == 132)
                showInfo_->SetValue(false);
            return 0;
        default:
            return CRynWindow::OnAppMessage(msg, wParam, lParam);
    }
}

void CRynDeck::OnWindowTimer(int id) {
    switch (id) {
        case kBlinkTimer:
            BlinkTick();
            break;
        case kRedropTimer:
            RedropTick();
            break;
        case kDriveReopenTimer:
            DriveReopenTick();
            break;
        case kCdStartTimer:
            CdStartTick();
            break;
        case kWindTimer:
            WindTick();
            break;
        case kProgressTimer:
            ProgressTick();
            break;
        case kTimeTimer:
            UpdateTimeDisplay();
            break;
        case kFileDialogTimer:
            ShowFileDialog();
            break;
        case kSpinTimer:
            SpinTick();
            break;
        case kTurntableTimer:
            Turntable().DragUpdate(true);
            break;
        default:
            break;
    }
}

bool CRynDeck::eventFilter(QObject* watched, QEvent* event) {
    if (equalizer_ && watched == equalizer_ && !event->spontaneous() &&
        (event->type() == QEvent::Show || event->type() == QEvent::Hide)) {
        // Only the toggle moves: the window is already where it shows.
        const QSignalBlocker quiet(showEqualizer_);
        showEqualizer_->SetValue(event->type() == QEvent::Show);
    }
    if (watched == vocoder_ && !event->spontaneous() &&
        (event->type() == QEvent::Show || event->type() == QEvent::Hide)) {
        const QSignalBlocker quiet(showVocoder_);
        showVocoder_->SetValue(event->type() == QEvent::Show);
    }
    return CRynWindow::eventFilter(watched, event);
}

void CRynDeck::closeEvent(QCloseEvent* event) {
    event->ignore();
    for (CNiButton* b : {showEqualizer_, showPlayList_, showInfo_, showVocoder_})
        b->SetValue(false);
    hide();
    PostAppMessageRetry(mainMixer_, UWM_WINDOW_CLOSED, kTemplateId, deck_);
}

void CRynDeck::InitialiseGraphs() {
    graphs_->Initialise(deck_, &Settings(), Colour(0), Colour(1));
    blockWork_->SetAnalysis(&graphs_->Analysis());
    // Pointers 1 and 2 of the graph range slide set the 3D graph's range.
    graphs_->onRangePointer = [this](int pointer, double) {
        if (mainMixer_ != 0)
            PostAppMessageRetry(mainMixer_, UWM_3D_GRAPH_VALUE, deck_, pointer);
    };
    graphs_->onGraphDoubleClicked = [this](int graph) {
        if (mainMixer_ != 0)
            SendAppMessage(mainMixer_, UWM_GRAPH_DOUBLE_CLICK, kTemplateId,
                           GraphControlId(deck_, graph));
    };
}
