#include "output/mixer/CRynMainMixer.h"

#include <QCloseEvent>
#include <QDebug>
#include <QLabel>
#include <QScreen>
#include <QThread>
#include <QVBoxLayout>

#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "core/Trace.h"
#include "core/WorkerThread.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "deck/source/DeckSource.h"
#include "deck/transport/DeckTransport.h"
#include "deck/turntable/TurntableController.h"
#include "deck/turntable/TurntableLaw.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/MainMixerComponents.h"
#include "output/mixer/MainMixerRecording.h"
#include "output/mixer/MixerMeters.h"
#include "platform/sound/SoundSystem.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"
#include "settings/window/DeviceTable.h"

CRynMainMixer::CRynMainMixer(QWidget* parent)
    : CRynWindow("CRynMainMixer", kTemplateId, parent), notify_(Engine()) {
    setWindowTitle(QStringLiteral("Mixora"));
    panel_ = new MainMixerPanel(&mainOutput_, &Settings(), this);
    deviceNotice_ = new QLabel(this);
    deviceNotice_->setObjectName(QStringLiteral("Main Mixer Device Notice"));
    deviceNotice_->setWordWrap(true);
    deviceNotice_->setStyleSheet(
        QStringLiteral("QLabel { background: rgb(90, 10, 10); color: rgb(255, 220, 200); "
                       "padding: 3px; }"));
    deviceNotice_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(deviceNotice_);
    layout->addWidget(panel_);
    recording_ = new MainMixerRecording(&mainOutput_, &Settings(), this);
    layout->addWidget(recording_);
    windowButtons_ = new MainMixerWindowButtons(this);
    layout->addWidget(windowButtons_);
    meters_ = new MixerMeters(this);
    layout->addWidget(meters_);
    resize(340, 420);
    RegisterMainMixerComponents(*this);
    recording_->Register(Registry(), this);

    mainWatch_.onLost = [this](const std::string& description) { OnMainDeviceLost(description); };
    mainWatch_.onBack = [this](const std::string&) { OnMainDeviceReturned(); };
    mainWatch_.onBuffersRebuilt = [this](int deck) {
        // The deck's rings start again from their first block on both
        // outputs, with its effects, gains, tempo and pans, and are primed
        // from the disc buffer as after a first fill: a needle dropped on
        // the new device is heard at once, not after a lap of the empty ring.
        CRynSoundEngine* engine = mainOutput_.SoundEngine();
        const int rate = engine ? engine->Deck(deck).rate : 0;
        OnDeckMessage(UWM_CREATE_DECK_BUFFERS, deck, rate);
        OnDeckMessage(UWM_PRIME_DECK, deck, 0);
    };
    clock_.start();
    watchTimer_.setInterval(OutputDeviceWatch::kCheckMs);
    connect(&watchTimer_, &QTimer::timeout, this,
            [this] { mainWatch_.Check(static_cast<double>(clock_.elapsed())); });
}

CRynMainMixer::~CRynMainMixer() {
    closing_ = true;
    // Threads still waiting are stopped and joined before the window goes.
    notify_.JoinAll();
    recording_->Stop();  // the file is closed while the main output still exists
    mainOutput_.ReleaseAll();
    if (Engine().mainMixerWindow == Handle())
        Engine().mainMixerWindow = 0;
}

void CRynMainMixer::Initialise(WindowHandle host, CRynDeck* deckA, CRynDeck* deckB,
                               CRynHeadphonesMixer* headphones, CRyn3DGraph* graph3d) {
    host_ = host;
    decks_ = {deckA, deckB};
    headphones_ = headphones;
    graph3d_ = graph3d;
    Engine().mainMixerWindow = Handle();
    cycle_.BindOutputs(&mainOutput_, headphones_ ? &headphones_->Output() : cycle_.Headphones());
    if (headphones_) {
        CRynHeadphonesMixer* phones = headphones_;
        cycle_.syncHeadphones = [this, phones](int deck, int cursor, double now, double rate) {
            if (phones->IsActive())
                phones->SyncToMain(deck, cursor, now, rate);
            // The host's diagnostic texts follow the recorded values.
            SendAppMessage(host_, UWM_DIAGNOSTICS, static_cast<WParam>(deck), 0);
        };
        panel_->onCurveChanged = [phones](float c) { phones->SetCurve(c); };
        phones->onDeviceBack = [this, phones] {
            GiveDecksToHeadphones();
            // A device missing at start-up is listed as it is now.
            auto* configure = qobject_cast<CRynConfigure*>(configure_);
            if (configure && phones->Output().Device())
                configure->DeviceFound(1, phones->Output().Device()->Identifier());
        };
        phones->SetCurve(panel_->Curve());
    }
    panel_->onShowPhones = [this](bool show) {
        if (headphones_)
            headphones_->setVisible(show);
    };
    panel_->onShowOptions = [this](bool show) { ShowOptionsWindow(show); };
    for (int d = 0; d < 2; ++d) {
        if (decks_[d])
            panel_->SetDeckColours(d, decks_[d]->Colour(0), decks_[d]->Colour(1));
    }
    panel_->Initialise();
    InitialiseWindowButtons();
    InitialiseMeters();
    InitialiseTempo();
    for (int d = 0; d < 2; ++d) {
        cycle_.BindDeck(d, decks_[d] ? &decks_[d]->Transport() : nullptr);
        // Until the layout asks for a quarter, each deck runs at its user's
        // latency setting.
        const int user = Settings().GetEqLatencyInNotifies(d);
        Engine().decks[d].latencyBlocks.store(user);
        Engine().decks[d].writeAheadBlocks.store(user);
    }
}

void CRynMainMixer::SetHeadphonesOutput(CRynAudioOutput* output) {
    headphonesOutput_ = output;
    cycle_.BindOutputs(&mainOutput_, output);
}

void CRynMainMixer::ChooseHeadphonesDevice(const std::string& identifier) {
    if (!headphones_)
        return;
    if (headphones_->OpenDevice(identifier) && !identifier.empty())
        GiveDecksToHeadphones();
}

void CRynMainMixer::ShowOptionsWindow(bool show) {
    if (!configure_)
        return;
    if (!show) {
        configure_->hide();
        return;
    }
    // 500 by 280 pixels, centred on the screen of the main mixer.
    const QRect area = screen() ? screen()->availableGeometry() : QRect(0, 0, 1024, 768);
    configure_->setGeometry(area.x() + (area.width() - 500) / 2,
                            area.y() + (area.height() - 280) / 2, 500, 280);
    configure_->show();
    configure_->raise();
}

void CRynMainMixer::ShowTitleBars(bool on) {
    std::vector<QWidget*> windows{headphones_, graph3d_};
    for (CRynDeck* deck : decks_) {
        if (!deck)
            continue;
        windows.push_back(deck);
        windows.push_back(deck->Info());
        windows.push_back(deck->Equalizer());
        windows.push_back(deck->PlayListWindow());
    }
    for (QWidget* w : windows) {
        if (!w || w->testAttribute(Qt::WA_DontShowOnScreen) ||
            w->windowFlags().testFlag(Qt::FramelessWindowHint) == !on)
            continue;
        // A change of flags hides the window: its rectangle and visibility
        // are put back.
        const QRect rect = w->geometry();
        const bool shown = w->isVisible();
        w->setWindowFlag(Qt::FramelessWindowHint, !on);
        w->setGeometry(rect);
        if (shown)
            w->show();
    }
}

void CRynMainMixer::LayoutBuilt() {
    buildingLayout_ = false;
    for (int d = 0; d < 2; ++d)
        ChangeLatency(d, WriteAheadTarget::Override::Quarter, true);
    // A headphones device missing at start-up asked for the maximum while
    // the layout was built: the request stands until the device is opened.
    if (headphones_ && headphones_->DeviceLost()) {
        for (int d = 0; d < 2; ++d)
            ChangeLatency(d, WriteAheadTarget::Override::Maximum, true);
    }
    ApplyStoredMeters();
}

void CRynMainMixer::ChangeLatency(int deck, WriteAheadTarget::Override which, bool request) {
    // Requests made while the layout is built do not count; a deck whose
    // turntable plays a loop is never put on a quarter.
    if (buildingLayout_)
        return;
    if (request && which == WriteAheadTarget::Override::Quarter && decks_[deck] &&
        decks_[deck]->Transport().HoldsLoop())
        return;
    WriteAheadTarget& t = targets_[deck];
    const int user = Engine().decks[deck].latencyBlocks.load();
    const std::optional<int> target = request ? t.Request(which, user) : t.Withdraw(which, user);
    // The actual-latency control of the configuration window shows it; its
    // value becomes the deck's write-ahead.
    if (target)
        Engine().decks[deck].writeAheadBlocks.store(*target);
}

LResult CRynMainMixer::AssignDrive(int deck, int drive) {
    if (drive >= 0 && drives_[1 - deck] == drive)
        return 0;  // the other deck holds it
    const bool changed = drives_[deck] != drive;
    drives_[deck] = drive;
    // Both decks' choosers follow: a drive one deck takes leaves the other's.
    if (changed) {
        for (int d = 0; d < 2; ++d)
            PostAppMessageRetry(Handle(), UWM_REFRESH_CD_DRIVES, static_cast<WParam>(d), 0);
    }
    return 1;
}

void CRynMainMixer::SetLowResolution(bool low) {
    Engine().lowResolution.store(low ? 1 : 0);
}

void CRynMainMixer::SetMixStepSink(MixStepSink* sink) {
    sink_ = sink ? sink : &cycle_;
}

void CRynMainMixer::KillTimers() {
    for (int id = 1; id <= kTimerCount; ++id)
        KillWindowTimer(id);
    watchTimer_.stop();
    if (headphones_)
        headphones_->StopDeviceWatch();
    panel_->SetAutoPan(false);
    panel_->StopTimers();
}

void CRynMainMixer::closeEvent(QCloseEvent* event) {
    if (host_ != 0 && IsWindow(host_)) {
        // The host tears everything down, this window included.
        event->ignore();
        SendAppMessage(host_, UWM_SHUTDOWN);
        return;
    }
    CRynWindow::closeEvent(event);
}

void CRynMainMixer::MixStep(int deck) {
    ++mixSteps_[deck];
    sink_->MixStep(deck, panel_->CatchUp());
    PaceDisplay();
}

void CRynMainMixer::ReverseStep(int deck) {
    ++reverseSteps_[deck];
    sink_->ReverseStep(deck);
    PaceDisplay();
}

void CRynMainMixer::PaceDisplay() {
    SharedEngineState& e = Engine();
    const int playing = (e.decks[0].isPlaying.load() != 0) + (e.decks[1].isPlaying.load() != 0);
    const DisplayPacing::Step step = pacing_.OnNotification(playing);
    // The turntable pictures follow the play positions.
    if (step.moveTurntables) {
        for (CRynDeck* d : decks_) {
            if (d && e.decks[d->DeckIndex()].isPlaying.load() != 0)
                d->Turntable().Draw();
        }
    }
    if (step.updateGraphs)
        e.updateGraphsAndMetersEvent.Set();
}

void CRynMainMixer::StartScratch(int deck, int bytes) {
    notify_.Start(NotifyKind::Scratch, deck, Handle());
    // The deck's stream rate: 44100 for a CD, the decoder's in File mode.
    const int rate = decks_[deck] ? decks_[deck]->Source().Rate() : kCdRate;
    sink_->CreateScratch(deck, rate, bytes);
}

void CRynMainMixer::PlayScratch(int deck) {
    const double position = decks_[deck] ? decks_[deck]->Transport().TurntablePosition() : 0.0;
    sink_->PlayScratch(deck, turntable::ScratchOffset(position));
    SetWindowTimer(kScratchTimerA + deck, kScratchTimerPeriodMs);
}

void CRynMainMixer::ScratchDone(int deck) {
    // A loop the deck still holds goes round again.
    if (decks_[deck] && decks_[deck]->Transport().HoldsLoop())
        return;
    KillWindowTimer(kScratchTimerA + deck);
    notify_.Stop(NotifyKind::Scratch, deck);
    sink_->EndScratch(deck);
    if (decks_[deck])
        decks_[deck]->Turntable().ScratchDone();
}

void CRynMainMixer::OnWindowTimer(int id) {
    if (id == kMinimiseTimer) {
        OnMinimiseTimer();
        return;
    }
    if (id == k3DGraphTimer) {
        Show3DGraphNow();
        return;
    }
    if (id == kCpuTimer) {
        ReadCpuLoad();
        return;
    }
    const int deck = id - kScratchTimerA;
    if (deck != 0 && deck != 1) {
        CRynWindow::OnWindowTimer(id);
        return;
    }
    // The platter follows the loop as it plays.
    const int cursor = sink_->ScratchCursor(deck);
    if (cursor >= 0 && decks_[deck])
        decks_[deck]->Turntable().DrawLoop(turntable::AngleOfCursor(cursor));
}

void CRynMainMixer::StopDeck(int deck) {
    Engine().decks[deck].isPlaying.store(0);
    meters_->ClearDeck(deck);
    if (headphones_)
        headphones_->ClearDeck(deck);
    lastDrawn_[deck] = -1;
    notify_.Stop(NotifyKind::Forward, deck);
    notify_.Stop(NotifyKind::Scratch, deck);
    StopReverse(deck);
    sink_->PlayForward(deck, false);
}

void CRynMainMixer::StopReverse(int deck) {
    notify_.Stop(NotifyKind::Reverse, deck);
    sink_->PlayReverse(deck, false);
}

QString CRynMainMixer::DeviceNoticeText() const {
    return deviceNotice_->isHidden() ? QString() : deviceNotice_->text();
}

void CRynMainMixer::OnTick() {
    overloadLampOn_ = !overloadLampOn_;
    OnOverloadLampChanged();
}

LResult CRynMainMixer::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    SharedEngineState& e = Engine();
    switch (msg) {
        case UWM_START_FORWARD_THREAD:
        case UWM_START_REVERSE_THREAD:
        case UWM_START_SCRATCH:
        case UWM_PLAY_SCRATCH:
        case UWM_SET_DIRECTION:
        case UWM_SET_REVERSE_POSITION:
        case UWM_SET_REVERSE_FREQUENCY:
        case UWM_FORWARD_NOTIFY:
        case UWM_REVERSE_NOTIFY:
        case UWM_SCRATCH_DONE:
        case UWM_STOP_DECK:
        case UWM_STOP_REVERSE:
        case UWM_FORWARD_PLAY:
        case UWM_REVERSE_PLAY:
        case UWM_PRIME_DECK:
        case UWM_CREATE_DECK_BUFFERS:
        case UWM_SET_FORWARD_FREQUENCY:
        case UWM_SET_FORWARD_POSITION:
        case UWM_LATENCY_QUARTER:
        case UWM_ASSIGN_CD_DRIVE:
        case UWM_DECK_INFO_UPDATE:
        case UWM_EQ_NUMBER_TYPE:
        case UWM_EQ_TYPE:
        case UWM_RELEASE_DECK:
        case UWM_REFRESH_CD_DRIVES:
            return ValidDeck(wParam) ? OnDeckMessage(msg, static_cast<int>(wParam), lParam) : 0;
        case UWM_APPLY_EFFECT:
        case UWM_APPLY_EFFECT_PARAMETER:
        case UWM_APPLY_PAN:
        case UWM_EQ_BAND_GAIN:
        case UWM_DEVICE_EQ_BANDS:
        case UWM_DEVICE_EQ_ON:
            return OnEffectMessage(msg, wParam, lParam);
        case UWM_LATENCY_MAXIMUM:
            for (int d = 0; d < 2; ++d)
                ChangeLatency(d, WriteAheadTarget::Override::Maximum, lParam == 0);
            return 0;
        case UWM_SET_SOUND_DEVICE: {
            // lParam: the chosen item of the configuration window's device
            // table, 0 for the disabled entry, -1 for a stored device that is
            // not listed. MIXORA_SOUND_DEVICE still forces the main device.
            const QByteArray forced = qgetenv("MIXORA_SOUND_DEVICE");
            std::string id = device_table::Identifier(lParam);
            if (wParam == 0 && lParam == device_table::kMissingDeviceItem && forced.isEmpty()) {
                // The stored main device is not there: played silently, looked for.
                WaitForMainDevice(Settings().GetSoundDeviceMain().toStdString());
            } else if (wParam == 0) {
                if (lParam != 0 && !forced.isEmpty())
                    id = forced.toStdString();
                else if (lParam != 0 && id.empty())
                    id = StartupDeviceIdentifier();
                ChooseMainDevice(id);
            } else if (wParam == 1 && lParam == device_table::kMissingDeviceItem) {
                // The stored headphones device is not there: looked for.
                if (headphones_)
                    headphones_->WaitForDevice(Settings().GetSoundDevicePhones().toStdString());
            } else if (wParam == 1) {
                ChooseHeadphonesDevice(id);
            }
            return 0;
        }
        case UWM_GRAPH_NUMBER_TYPE:
            // (1, 0) for floats, (0, 1) for integers.
            SetGraphIntegers(lParam != 0);
            Settings().SetUseIntegersForGraphs(lParam != 0);
            return 0;
        case UWM_TITLE_BARS:
            ShowTitleBars(wParam != 0);
            Settings().SetTitleBarsOnState(wParam != 0);
            return 0;
        case UWM_WINDOW_CLOSED:
            if (wParam == static_cast<WParam>(CRynHeadphonesMixer::kTemplateId))
                panel_->ShowPhonesButton()->SetValue(false);
            else if (wParam == static_cast<WParam>(CRynConfigure::kTemplateId))
                panel_->ShowOptionsButton()->SetValue(false);
            else if (wParam == static_cast<WParam>(SettingsWindow::Deck) && lParam < 2)
                windowButtons_->ShowDeckButton(static_cast<int>(lParam))->SetValue(false);
            else if (wParam == static_cast<WParam>(SettingsWindow::ThreeDGraph))
                windowButtons_->Show3DGraphButton()->SetValue(false);
            return 0;
        case UWM_HELP_BUTTONS:
            ShowHelpButtons(wParam != 0);
            return 0;
        case UWM_TICK:
            OnTick();
            return 0;
        case UWM_GRAPHS_UPDATE:
            DrawGraphsAndMeters();
            return 0;
        case UWM_GRAPHS_PRIORITY:
            if (e.graphsThread) {
                e.graphsThread->SetPriority(lParam == 0 ? ThreadPriority::Normal
                                                        : ThreadPriority::Lowest);
            }
            return 0;
        case UWM_GRAPH_DOUBLE_CLICK:
            return SendAppMessage(host_, msg, wParam, lParam);
        case UWM_3D_GRAPH_VALUE:
        case UWM_LISTENER_POSITION:
        case UWM_CONFIG_REFRESH:
            return On3DGraphMessage(msg, wParam, lParam);
        default:
            return CRynWindow::OnAppMessage(msg, wParam, lParam);
    }
}

LResult CRynMainMixer::OnDeckMessage(Uwm msg, int deck, LParam lParam) {
    if (closing_)
        return 0;
    DeckSharedState& shared = Engine().decks[deck];
    const int value = static_cast<int>(lParam);
    switch (msg) {
        case UWM_START_FORWARD_THREAD:
            notify_.Start(NotifyKind::Forward, deck, Handle());
            sink_->PlayForward(deck, true);
            shared.isPlaying.store(1);
            break;
        case UWM_START_REVERSE_THREAD:
            notify_.Start(NotifyKind::Reverse, deck, Handle());
            sink_->PlayReverse(deck, true);
            break;
        case UWM_START_SCRATCH:
            StartScratch(deck, value);
            break;
        case UWM_PLAY_SCRATCH:
            PlayScratch(deck);
            break;
        case UWM_SET_DIRECTION:
            sink_->SwitchDirection(deck, lParam == 1);
            break;
        case UWM_SET_REVERSE_POSITION:
            sink_->SetReversePosition(deck, value);
            break;
        case UWM_SET_REVERSE_FREQUENCY:
            sink_->SetReverseFrequency(deck, value);
            break;
        case UWM_FORWARD_NOTIFY:
            MixStep(deck);
            break;
        case UWM_REVERSE_NOTIFY:
            ReverseStep(deck);
            break;
        case UWM_SCRATCH_DONE:
            ScratchDone(deck);
            break;
        case UWM_STOP_DECK:
            StopDeck(deck);
            break;
        case UWM_STOP_REVERSE:
            StopReverse(deck);
            break;
        case UWM_FORWARD_PLAY:
            sink_->PlayForward(deck, lParam != 0);
            break;
        case UWM_REVERSE_PLAY:
            sink_->PlayReverse(deck, lParam != 0);
            break;
        case UWM_PRIME_DECK:
            sink_->Prime(deck, shared.writeAheadBlocks.load());
            if (decks_[deck])
                decks_[deck]->Transport().OnPrimed();
            // A needle dropped before the first fill (a slow drive, a busy
            // machine) found no buffers to start: they start now, primed.
            if (shared.isPlaying.load() != 0 && decks_[deck] && !decks_[deck]->IsReverse() &&
                !decks_[deck]->Turntable().Holds())
                sink_->PlayForward(deck, true);
            break;
        case UWM_CREATE_DECK_BUFFERS:
            sink_->CreateDeckBuffers(deck, value > 0 ? value : 44100);
            // New buffers carry no settings: the deck's tempo again (the
            // deck recomputes and sends its frequency).
            ApplyDeckEffects(deck);
            panel_->ApplyCrossFader();
            if (headphones_) {
                headphones_->Sync().Reset(deck);
                headphones_->ApplyMix();
                headphones_->ApplyPan(deck);
            }
            if (decks_[deck])
                decks_[deck]->ApplyTempo();
            if (onBuffersCreated)
                onBuffersCreated(deck);
            break;
        case UWM_SET_FORWARD_FREQUENCY:
            sink_->SetForwardFrequency(deck, value);
            ShowTempo(deck);
            break;
        case UWM_SET_FORWARD_POSITION:
            sink_->SetForwardPosition(deck, value);
            break;
        case UWM_LATENCY_QUARTER:
            ChangeLatency(deck, WriteAheadTarget::Override::Quarter, lParam == 0);
            break;
        case UWM_ASSIGN_CD_DRIVE:
            return AssignDrive(deck, value);
        case UWM_RELEASE_DECK:
            mainOutput_.ReleaseDeck(deck);
            if (CRynAudioOutput* phones = cycle_.Headphones())
                phones->ReleaseDeck(deck);
            break;
        case UWM_REFRESH_CD_DRIVES:
            // Only a deck in CD mode has a drive chooser to fill.
            if (decks_[deck] && decks_[deck]->Source().Mode() == DeckSource::kCdMode)
                decks_[deck]->RefreshDriveList();
            break;
        case UWM_DECK_INFO_UPDATE:
            if (decks_[deck] && decks_[deck]->Info())
                decks_[deck]->Info()->Refresh();
            break;
        case UWM_EQ_NUMBER_TYPE:
            // 1 = "Ints" (16-bit), 0 = "Floats"; applied and stored here.
            if (decks_[deck])
                decks_[deck]->SetEqNumberType(lParam != 0);
            Settings().SetDeckEQNumberType(deck, lParam != 0 ? 1 : 0);
            break;
        case UWM_EQ_TYPE:
            // 1 = the program's own equalizer ("Orvane"), 0 = the device's.
            if (decks_[deck] && decks_[deck]->Equalizer()) {
                decks_[deck]->Equalizer()->SetEqualizerType(
                    lParam != 0 ? CRynEqualizer::EqType::Own : CRynEqualizer::EqType::Device);
            }
            Settings().SetDeckEQType(deck, lParam != 0 ? 1 : 0);
            break;
        default:
            break;
    }
    return 0;
}
