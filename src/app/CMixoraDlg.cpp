#include "app/CMixoraDlg.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <cstdio>

#include "app/CMixoraApp.h"
#include "app/CRynKeyboard.h"
#include "app/DiagnosticsPanel.h"
#include "app/HostMenu.h"
#include "app/KeyboardControl.h"
#include "app/KeyboardPollThread.h"
#include "app/ProgressLamp.h"
#include "app/ScreenMode.h"
#include "app/ShellLog.h"
#include "app/StartUpHelp.h"
#include "app/UserGuide.h"
#include "controls/CNiButton.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "core/ServiceThreads.h"
#include "core/Trace.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "deck/transport/DeckTransport.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "help/ToolTipGate.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "settings/window/CRynConfigure.h"
#include "sources/CRynCdAudio.h"

namespace {

int PauseFromEnvironment() {
    bool ok = false;
    const int ms = qEnvironmentVariableIntValue("MIXORA_SHUTDOWN_PAUSE_MS", &ok);
    return ok && ms >= 0 ? ms : CMixoraDlg::kDefaultPauseMs;
}

// The full-screen client area: the primary screen without panels.
QRect FullScreenArea() {
    QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}

QIcon AppIcon() {
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(20, 20, 20));
    p.setPen(QPen(QColor(40, 170, 255), 2));
    p.drawEllipse(2, 2, 28, 28);
    p.setBrush(QColor(255, 160, 30));
    p.setPen(Qt::NoPen);
    p.drawEllipse(12, 12, 8, 8);
    return QIcon(pixmap);
}

void DefaultShowError(const QString& text) {
    std::fprintf(stderr, "%s\n", qPrintable(text));
    QMessageBox::critical(nullptr, QStringLiteral("Mixora"), text);
}

}  // namespace

CMixoraDlg::CMixoraDlg() : CMixoraDlg(Options()) {}

CMixoraDlg::CMixoraDlg(Options options)
    : layers_(std::move(options.layers)),
      keys_(std::move(options.keys)),
      pauseMs_(options.pauseMs >= 0 ? options.pauseMs : PauseFromEnvironment()),
      onEnd_(std::move(options.onEnd)),
      showError_(std::move(options.showError)) {
    if (!layers_)
        layers_ = MakeSystemPlatformLayers();
    if (!keys_)
        keys_ = std::make_unique<CRynKeyboard>();
    if (!onEnd_)
        onEnd_ = [](int code) { QCoreApplication::exit(code); };
    if (!showError_)
        showError_ = DefaultShowError;
    setObjectName(QStringLiteral("CMixoraDlg"));
    setModal(false);
    handle_ = RegisterReceiver(this, this);
    BuildProgressWindow();
}

CMixoraDlg::~CMixoraDlg() {
    // A host that never ran its shutdown (start-up failed, tests) still
    // stops every thread before the windows go.
    SharedEngineState& e = Engine();
    e.keyboardThreadRun.store(0);
    e.tickThreadRun.store(0);
    e.tickWakeEvent.Set();
    for (auto& info : infos_) {
        if (info)
            info->SetMetersOn(false);
    }
    if (mainMixer_) {
        for (int d = 0; d < 2; ++d) {
            for (NotifyKind k : {NotifyKind::Forward, NotifyKind::Reverse, NotifyKind::Scratch}) {
                mainMixer_->Notifications().Stop(k, d);
            }
        }
    }
    JoinStoppedThreads();
    StopGraphsThread();
    // The readers end first: joining them serves their last messages, which
    // the decks hand on to their information windows.
    for (auto& deck : decks_) {
        if (deck)
            deck->Transport().StopAllReaders();
    }
    for (int d = 0; d < 2; ++d) {
        infos_[d].reset();
        equalizers_[d].reset();
        playLists_[d].reset();
    }
    for (auto& deck : decks_)
        deck.reset();
    graph3d_.reset();
    headphones_.reset();
    mainMixer_.reset();
    cdAudio_.reset();
    if (layersUp_)
        layers_->ReleaseSound();
    SetUserGuideHost(nullptr);
    UnregisterReceiver(handle_);
    if (e.mainDialogWindow == handle_)
        e.mainDialogWindow = 0;
}

void CMixoraDlg::BuildProgressWindow() {
    progress_ = new QWidget(this);
    auto* column = new QVBoxLayout(progress_);
    column->setContentsMargins(6, 6, 6, 6);
    auto* row = new QHBoxLayout;
    for (auto& lamp : lamps_) {
        lamp = new ProgressLamp(progress_);
        row->addWidget(lamp);
    }
    column->addLayout(row);
    status_ = new QLabel(progress_);
    status_->setObjectName(QStringLiteral("status"));
    QFont small = status_->font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    status_->setFont(small);
    column->addWidget(status_);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(progress_);
    outer->setSizeConstraint(QLayout::SetNoConstraint);
    progress_->hide();
}

void CMixoraDlg::Created(CRynWindow* window) {
    ShellLog(QStringLiteral("create %1 %2")
                 .arg(QString::fromLatin1(window->ClassName()))
                 .arg(window->TemplateId()));
}

bool CMixoraDlg::StartUp() {
    if (started_)
        return true;
    started_ = true;
    SharedEngineState& e = Engine();
    ShellLog(QStringLiteral("start-up"));

    // The host itself: title and icon, then out of sight at the far corner
    // of the screen with no size.
    setWindowTitle(QStringLiteral("Mixora"));
    setWindowIcon(AppIcon());
    QApplication::setWindowIcon(AppIcon());
    const QRect screen = FullScreenArea();
    setMinimumSize(0, 0);
    setGeometry(screen.width(), screen.height(), 0, 0);
    show();
    raise();
    ShellLog(QStringLiteral("host parked off-screen"));

    ShowSplashScreen(this);
    ToolTipGate::Install();

    // The sound and media layers must work, or there is nothing to do.
    const QString problem = CheckPlatformLayers(*layers_);
    if (!problem.isEmpty()) {
        ShellLog(QStringLiteral("platform check failed: ") + problem);
        showError_(problem);
        hide();
        return false;
    }
    layersUp_ = true;
    ShellLog(QStringLiteral("platform layers ready"));

    // Stop flags cleared; every event unsignalled.
    for (DeckSharedState& d : e.decks) {
        d.forwardThreadStop.store(0);
        d.scratchThreadStop.store(0);
        d.forwardReaderRun.store(0);
        d.forwardNotifyEvent.Reset();
        d.reverseNotifyEvent.Reset();
        d.scratchNotifyEvent.Reset();
        d.forwardWakeEvent.Reset();
        d.backwardWakeEvent.Reset();
        d.playListWakeEvent.Reset();
    }
    e.tickWakeEvent.Reset();
    ShellLog(QStringLiteral("events created"));

    e.mainDialogWindow = handle_;
    e.allMinimised.store(0);
    e.pendingTicks.store(0);
    e.graphsThreadRun.store(0);
    e.updateGraphsAndMetersEvent.Set();
    e.helpFilePath = "MixoraHtmlHelp.chm";
    e.toolTipsOn.store(0);
    e.graphsThread = nullptr;

    // Keys of every working window come to the host.
    keyForwarder_.Install();
    keys_->Initialise();  // after the forwarder: it sees every key first
    ShellLog(QStringLiteral("keyboard ready"));

    mainMixer_ = std::make_unique<CRynMainMixer>();
    Created(mainMixer_.get());
    mainMixer_->hide();

    headphones_ = std::make_unique<CRynHeadphonesMixer>();
    Created(headphones_.get());
    headphones_->Initialise(mainMixer_->Handle());

    graph3d_ = std::make_unique<CRyn3DGraph>();
    Created(graph3d_.get());
    graph3d_->Initialise(mainMixer_->Handle());

    // The one CD reader: its drives (and MIXORA_CD_IMAGES disc images) serve
    // both decks, one deck a drive.
    cdAudio_ = std::make_unique<CRynCdAudio>();
    ShellLog(QStringLiteral("cd drives %1").arg(cdAudio_->DriveCount()));

    for (int d = 0; d < 2; ++d) {
        DeckSharedState& shared = e.decks[d];
        shared.deckInfoEvent->Set();  // created signalled
        shared.ResetFields();

        decks_[d] = std::make_unique<CRynDeck>();
        Created(decks_[d].get());
        infos_[d] = std::make_unique<CRynDeckInfo>();
        Created(infos_[d].get());
        infos_[d]->Initialise(decks_[d]->Handle(), d);
        equalizers_[d] = std::make_unique<CRynEqualizer>();
        Created(equalizers_[d].get());
        equalizers_[d]->Initialise(d, decks_[d]->Handle());
        playLists_[d] = std::make_unique<CRynPlayList>();
        Created(playLists_[d].get());
        playLists_[d]->Initialise(decks_[d]->Handle(), d);
        decks_[d]->Initialise(infos_[d].get(), equalizers_[d].get(), playLists_[d].get(),
                              mainMixer_->Handle(), d);
        decks_[d]->SetCdAudio(cdAudio_.get());
    }

    mainMixer_->Initialise(handle_, decks_[0].get(), decks_[1].get(), headphones_.get(),
                           graph3d_.get());
    ShellLog(QStringLiteral("initialise CRynMainMixer"));
    mainMixer_->SetHeadphonesOutput(&headphones_->Output());
    // The configuration window, hidden, opens both sound devices.
    configure_ = std::make_unique<CRynConfigure>();
    Created(configure_.get());
    mainMixer_->SetConfigureWindow(configure_.get());
    configure_->Initialise(mainMixer_->Handle());
    const sound::SoundDevice* device = mainMixer_->MainOutput().Device();
    ShellLog(
        QStringLiteral("main device %1")
            .arg(device ? QString::fromStdString(device->Identifier()) : QStringLiteral("none")));
    const sound::SoundDevice* phones = headphones_->Output().Device();
    ShellLog(
        QStringLiteral("headphones device %1")
            .arg(phones ? QString::fromStdString(phones->Identifier()) : QStringLiteral("none")));

    // Each deck in its stored mode and time display; its equalizer in its
    // stored arithmetic and settings.
    for (int d = 0; d < 2; ++d) {
        decks_[d]->SetDeckMode(Settings().GetDeckMode(d));
        decks_[d]->SetTimeDisplayMode(Settings().GetTimeDisplayMode(d));
        decks_[d]->SetEqNumberType(Settings().GetDeckEQNumberType(d) == 1);
        equalizers_[d]->ApplyStoredSettings();
    }

    const bool low = ChooseLowResolution(screen.width(), screen.height());
    mainMixer_->SetLowResolution(low);
    ShellLog(low ? QStringLiteral("layout low resolution")
                 : QStringLiteral("layout high resolution"));

    for (int d = 0; d < 2; ++d) {
        headphones_->SetDeckColours(d, decks_[d]->Colour(0), decks_[d]->Colour(1));
    }

    keyControl_ = std::make_unique<KeyboardControl>(
        [this] {
            return KeyWindows{mainMixer_.get(),
                              headphones_.get(),
                              {decks_[0].get(), decks_[1].get()},
                              {equalizers_[0].get(), equalizers_[1].get()}};
        },
        *keys_);
    StartServiceThreads();
    ShellLog(QStringLiteral("tick and keyboard threads started"));

    PlaceAndShowWindows(low);
    mainMixer_->Panel().ShowPhonesButton()->SetValue(headphones_->isVisible());
    // The stored cross-fader curve, once every window that follows it is wired.
    mainMixer_->Panel().SetCurveParameter(Settings().GetMainMixerXFaderCurveParameter());
    ShellLog(QStringLiteral("cross-fader curve %1").arg(mainMixer_->Panel().Curve(), 0, 'f', 2));
    mainMixer_->activateWindow();
    mainMixer_->setFocus();
    mainMixer_->LayoutBuilt();
    ShellLog(QStringLiteral("windows shown"));

    diagnostics_ = new DiagnosticsPanel(this);
    hostMenu_ = new HostMenu(mainMixer_.get(), [this] {
        diagnostics_->show();
        diagnostics_->raise();
    });
    ShowTipOfTheDay(mainMixer_.get());

    const QStringList& files = CMixoraApp::CommandLineFiles();
    for (int d = 0; d < 2 && d < files.size(); ++d) {
        ShellLog(QStringLiteral("deck %1 file %2").arg(QChar('A' + d)).arg(files[d]));
        // Files need File mode; the deck's list takes the file, which loads
        // and starts turning (the needle stays up).
        if (decks_[d]->ModeButton()->Caption() != QLatin1String("File"))
            decks_[d]->SetDeckMode(1);
        decks_[d]->OpenFiles({files[d]});
    }

    SetUserGuideHost(this);
    e.appInitialised.store(1);
    ShellLog(QStringLiteral("running"));
    return true;
}

void CMixoraDlg::StartServiceThreads() {
    SharedEngineState& e = Engine();
    e.tickThreadRun.store(1);
    tickThread_.Start("tick", ThreadPriority::TimeCritical,
                      [&e](const std::atomic<bool>& cancelled) { RunTickThread(e, cancelled); });
    e.keyboardThreadRun.store(1);
    KeySource* keys = keys_.get();
    keyboardThread_.Start("keyboard", ThreadPriority::TimeCritical,
                          [&e, keys](const std::atomic<bool>& cancelled) {
                              RunKeyboardPollThread(e, *keys, cancelled);
                          });
}

void CMixoraDlg::PlaceAndShowWindows(bool low) {
    // The main mixer lays out every window (stored or default rectangles).
    mainMixer_->SetLayoutArea(FullScreenArea());
    mainMixer_->SetLowResolution(low);
    mainMixer_->PlaceWindowsAtStartUp();
}

bool CMixoraDlg::GraphsThreadRunning() const {
    return graphsThread_ && !graphsThread_->Finished();
}

void CMixoraDlg::StartGraphsThread() {
    SharedEngineState& e = Engine();
    if (GraphsThreadRunning() && e.graphsThreadRun.load() != 0)
        return;
    if (graphsThread_) {
        graphsThread_->Cancel();
        retiredGraphsThreads_.push_back(std::move(graphsThread_));
    }
    e.graphsThreadRun.store(1);
    graphsThread_ = std::make_unique<WorkerThread>();
    graphsThread_->Start(
        "graphs", ThreadPriority::Normal,
        [&e](const std::atomic<bool>& cancelled) { RunGraphsThread(e, cancelled); });
    e.graphsThread = graphsThread_.get();
}

void CMixoraDlg::StopGraphsThreadIfMetersOff() {
    SharedEngineState& e = Engine();
    if (e.decks[0].metersOff.load() == 0 || e.decks[1].metersOff.load() == 0)
        return;
    e.graphsThreadRun.store(0);
    e.updateGraphsAndMetersEvent.Set();
    // Forgotten: it ends by itself and is joined at shutdown.
    if (graphsThread_)
        retiredGraphsThreads_.push_back(std::move(graphsThread_));
    e.graphsThread = nullptr;
}

void CMixoraDlg::StopGraphsThread() {
    SharedEngineState& e = Engine();
    e.graphsThreadRun.store(0);
    e.graphsThread = nullptr;
    if (graphsThread_)
        retiredGraphsThreads_.push_back(std::move(graphsThread_));
    for (auto& t : retiredGraphsThreads_) {
        t->Cancel();
        t->Join([&e] { e.updateGraphsAndMetersEvent.Set(); });
    }
    retiredGraphsThreads_.clear();
}

void CMixoraDlg::JoinStoppedThreads() {
    SharedEngineState& e = Engine();
    keyboardThread_.Join();
    tickThread_.Join([&e] { e.tickWakeEvent.Set(); });
    if (mainMixer_)
        mainMixer_->Notifications().JoinAll();
    for (auto& info : infos_) {
        if (info)
            info->JoinThread();
    }
}

std::vector<QWidget*> CMixoraDlg::WorkingWindows() const {
    std::vector<QWidget*> windows;
    for (QWidget* w :
         std::initializer_list<QWidget*>{mainMixer_.get(), headphones_.get(), graph3d_.get()}) {
        if (w)
            windows.push_back(w);
    }
    for (int d = 0; d < 2; ++d) {
        for (QWidget* w : std::initializer_list<QWidget*>{
                 decks_[d].get(), infos_[d].get(), equalizers_[d].get(), playLists_[d].get()}) {
            if (w)
                windows.push_back(w);
        }
    }
    return windows;
}

void CMixoraDlg::MinimiseAll(bool minimise) {
    // On X11 and Wayland the windows do not follow the host: each goes itself.
    for (QWidget* w : WorkingWindows()) {
        if (!w->isVisible())
            continue;
        if (minimise) {
            w->showMinimized();
        } else if (w->isMinimized()) {
            w->showNormal();
        }
    }
}

LResult CMixoraDlg::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    SharedEngineState& e = Engine();
    switch (msg) {
        case UWM_SHUTDOWN:
            // Run from the event loop, not inside the sender's handler: the
            // shutdown destroys the window that sent it.
            QTimer::singleShot(0, this, [this] { Shutdown(); });
            return 0;
        case UWM_KEY_POLLED:
        case UWM_KEY_DOWN:
        case UWM_KEY_UP:
            if (shuttingDown_)
                return 0;
            if (keyHandler_)
                keyHandler_(msg, wParam, lParam);
            else if (keyControl_)
                keyControl_->Handle(msg, wParam, lParam);
            return 0;
        case UWM_DECK_VALUE:
            if (wParam < 2) {
                deckValues_[wParam] = lParam;
                if (diagnostics_)
                    diagnostics_->DeckValue(static_cast<int>(wParam), lParam);
            }
            return 0;
        case UWM_DIAGNOSTICS:
            // The diagnostic texts follow only while they are on screen.
            if (diagnostics_ && diagnostics_->isVisible())
                diagnostics_->Refresh(static_cast<int>(wParam));
            return 0;
        case UWM_MINIMISE_ALL:
            e.allMinimised.store(1);
            for (int d = 0; d < 2; ++d)
                e.decks[d].metersOff.store(1);
            MinimiseAll(true);
            return 0;
        case UWM_RESTORE_ALL:
            e.allMinimised.store(0);
            MinimiseAll(false);
            // Each deck's meters as the settings hold them.
            for (int d = 0; d < 2; ++d)
                e.decks[d].metersOff.store(Settings().GetMetersEnabled(d) ? 0 : 1);
            return 0;
        case UWM_GRAPHS_PRIORITY:
            // The decks tell the host; the main mixer sets the thread's priority.
            return mainMixer_ ? SendAppMessage(mainMixer_->Handle(), msg, wParam, lParam) : 0;
        case UWM_GRAPH_DOUBLE_CLICK:
            if (mainMixer_)
                mainMixer_->SelectGraphOnly(static_cast<int>(wParam), static_cast<int>(lParam));
            return 0;
        case UWM_METERS_THREAD:
            if (wParam != 0) {
                StartGraphsThread();
            } else {
                StopGraphsThreadIfMetersOff();
            }
            return 0;
        default:
            qCDebug(lcTrace).noquote() << "CMixoraDlg ignores" << UwmName(msg) << wParam << lParam;
            return 0;
    }
}
