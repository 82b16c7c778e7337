// The host's shutdown: on screen as a small progress window, it stops the
// threads, the decks, the timers, the sound library and the windows in that
// order, lighting one lamp a step, with a pump and a pause after each.
#include <QCloseEvent>
#include <chrono>
#include <thread>

#include "app/CMixoraDlg.h"
#include "app/ProgressLamp.h"
#include "app/ShellLog.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/window/CRynConfigure.h"
#include "sources/CRynCdAudio.h"

void CMixoraDlg::reject() {
    Shutdown();
}

void CMixoraDlg::closeEvent(QCloseEvent* event) {
    event->ignore();
    Shutdown();
}

void CMixoraDlg::ShutdownStep(int lamp, const QString& text) {
    if (lamp >= 1 && lamp <= 5)
        lamps_[lamp - 1]->SetLit(true);
    status_->setText(text);
    status_->repaint();
    if (lamp >= 1) {
        ShellLog(QStringLiteral("shutdown lamp %1: %2").arg(lamp).arg(text));
    } else {
        ShellLog(QStringLiteral("shutdown status: %1").arg(text));
    }
}

void CMixoraDlg::Pause() {
    if (pauseMs_ > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs_));
}

void CMixoraDlg::PumpAndPause() {
    // Lets threads blocked in a send to a window finish it.
    PumpMessages(1000);
    Pause();
}

void CMixoraDlg::Shutdown() {
    if (shuttingDown_)
        return;
    shuttingDown_ = true;
    SharedEngineState& e = Engine();
    ShellLog(QStringLiteral("shutdown"));
    if (mainMixer_)
        mainMixer_->StoreWindowPositions();

    // On screen as the progress window.
    progress_->show();
    showNormal();
    setGeometry(100, 100, 150, 100);
    show();
    raise();

    ShutdownStep(1, QStringLiteral("Stopping Threads."));
    e.keyboardThreadRun.store(0);
    for (NotifyKind kind : {NotifyKind::Forward, NotifyKind::Reverse, NotifyKind::Scratch}) {
        for (int d = 0; d < 2; ++d) {
            if (mainMixer_) {
                mainMixer_->Notifications().Stop(kind, d);
            } else {
                NotifyStopFlag(e.decks[d], kind).store(1);
                NotifyEvent(e.decks[d], kind).Set();
            }
        }
    }
    e.tickThreadRun.store(0);
    e.tickWakeEvent.Set();
    StopGraphsThreadIfMetersOff();
    if (mainMixer_)
        mainMixer_->StopTempo();

    ShutdownStep(2, QStringLiteral("Destroying Decks"));
    for (int d = 0; d < 2; ++d) {
        DeckSharedState& shared = e.decks[d];
        if (playLists_[d])
            playLists_[d]->StopPlayList();
        shared.deckInfoThreadRun.store(0);
        shared.deckInfoEvent->Set();
        shared.playListThreadRun.store(0);
        shared.playListWakeEvent.Set();
        if (decks_[d]) {
            decks_[d]->Shutdown();
            decks_[d]->CloseDecoder();
        }
    }
    PumpAndPause();
    // Beyond the pause: every stopped thread has ended before anything it
    // might touch goes away.
    JoinStoppedThreads();

    ShutdownStep(3, QStringLiteral("Stopping Timers"));
    if (mainMixer_)
        mainMixer_->KillTimers();
    PumpAndPause();

    ShutdownStep(4, QStringLiteral("Killing COM."));
    // Every device closes before the sound library goes.
    if (mainMixer_)
        mainMixer_->MainOutput().CloseDevice();
    if (headphones_)
        headphones_->Output().CloseDevice();
    if (layersUp_) {
        layers_->ReleaseSound();
        layersUp_ = false;
    }
    PumpAndPause();

    ShutdownStep(5, QStringLiteral("Destroying Deck Components."));
    // The graphs thread asks the main mixer to draw the decks: it ends before
    // any deck or the mixer goes.
    StopGraphsThread();
    // Each deck's information, equalizer and play list windows, then the
    // decks. The decks' timers and readers stopped in step 2, so nothing of
    // theirs reads a play list any more.
    for (int d = 0; d < 2; ++d) {
        infos_[d].reset();
        equalizers_[d].reset();
        playLists_[d].reset();
    }
    PumpAndPause();
    for (auto& deck : decks_)
        deck.reset();
    PumpAndPause();

    ShutdownStep(0, QStringLiteral("Destroying Mixer"));
    graph3d_.reset();
    configure_.reset();
    headphones_.reset();
    mainMixer_.reset();
    cdAudio_.reset();
    Pause();

    keyForwarder_.Uninstall();
    ShellLog(QStringLiteral("events closed"));
    PumpMessages();
    Pause();
    ShellLog(QStringLiteral("exit 0"));
    onEnd_(0);
}
