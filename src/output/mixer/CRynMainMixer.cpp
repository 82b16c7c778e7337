#include "output/mixer/CRynMainMixer.h"

#include <QCloseEvent>
#include <QDebug>

#include "app/EngineState.h"
#include "app/WorkerThread.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"

CRynMainMixer::CRynMainMixer(QWidget* parent)
    : CRynWindow("CRynMainMixer", kTemplateId, parent), notify_(Engine()) {
    setWindowTitle(QStringLiteral("Mixora"));
    resize(288, 308);
}

CRynMainMixer::~CRynMainMixer() {
    // Threads still waiting are stopped and joined before the window goes.
    notify_.JoinAll();
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
}

void CRynMainMixer::SetLowResolution(bool low) {
    Engine().lowResolution.store(low ? 1 : 0);
}

void CRynMainMixer::SetMixStepSink(MixStepSink* sink) {
    sink_ = sink ? sink : &nullSink_;
}

void CRynMainMixer::KillTimers() {
    for (int id = 1; id <= kTimerCount; ++id)
        KillWindowTimer(id);
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
    sink_->WriteDeckBlock(deck);
    PaceDisplay();
}

void CRynMainMixer::ReverseStep(int deck) {
    sink_->ReverseStep(deck);
    PaceDisplay();
}

void CRynMainMixer::PaceDisplay() {
    SharedEngineState& e = Engine();
    const int playing = (e.decks[0].isPlaying.load() != 0) + (e.decks[1].isPlaying.load() != 0);
    const DisplayPacing::Step step = pacing_.OnNotification(playing);
    // The turntable pictures follow with the deck's turntable.
    if (step.updateGraphs)
        e.updateGraphsAndMetersEvent.Set();
}

void CRynMainMixer::StopDeck(int deck) {
    Engine().decks[deck].isPlaying.store(0);
    notify_.Stop(NotifyKind::Forward, deck);
    notify_.Stop(NotifyKind::Scratch, deck);
    StopReverse(deck);
    sink_->PlayForward(deck, false);
}

void CRynMainMixer::StopReverse(int deck) {
    notify_.Stop(NotifyKind::Reverse, deck);
    sink_->PlayReverse(deck, false);
}

void CRynMainMixer::OnTick() {
    overloadLampOn_ = !overloadLampOn_;
    OnOverloadLampChanged();
}

void CRynMainMixer::OnOverloadLampChanged() {
    // The lamp answers one tick: the user interface has caught up with it.
    Engine().pendingTicks.fetch_sub(1);
}

LResult CRynMainMixer::OnAppMessage(Uwm msg, WParam wParam, LParam lParam) {
    SharedEngineState& e = Engine();
    const int deck = static_cast<int>(wParam);
    switch (msg) {
        case UWM_START_FORWARD_THREAD:
            if (!ValidDeck(wParam))
                return 0;
            notify_.Start(NotifyKind::Forward, deck, Handle());
            sink_->PlayForward(deck, true);
            e.decks[deck].isPlaying.store(1);
            return 0;
        case UWM_START_REVERSE_THREAD:
            if (!ValidDeck(wParam))
                return 0;
            notify_.Start(NotifyKind::Reverse, deck, Handle());
            sink_->PlayReverse(deck, true);
            return 0;
        case UWM_START_SCRATCH:
            if (!ValidDeck(wParam))
                return 0;
            notify_.Start(NotifyKind::Scratch, deck, Handle());
            sink_->CreateScratch(deck, static_cast<int>(lParam));
            return 0;
        case UWM_FORWARD_NOTIFY:
            if (ValidDeck(wParam))
                MixStep(deck);
            return 0;
        case UWM_REVERSE_NOTIFY:
            if (ValidDeck(wParam))
                ReverseStep(deck);
            return 0;
        case UWM_SCRATCH_DONE:
            if (!ValidDeck(wParam))
                return 0;
            KillWindowTimer(deck == 0 ? 7 : 8);
            e.decks[deck].scratchThreadStop.store(1);
            sink_->EndScratch(deck);
            return 0;
        case UWM_STOP_DECK:
            if (ValidDeck(wParam))
                StopDeck(deck);
            return 0;
        case UWM_STOP_REVERSE:
            if (ValidDeck(wParam))
                StopReverse(deck);
            return 0;
        case UWM_FORWARD_PLAY:
            if (ValidDeck(wParam))
                sink_->PlayForward(deck, lParam != 0);
            return 0;
        case UWM_REVERSE_PLAY:
            if (ValidDeck(wParam))
                sink_->PlayReverse(deck, lParam != 0);
            return 0;
        case UWM_PRIME_DECK:
            if (!ValidDeck(wParam))
                return 0;
            sink_->PlayForward(deck, false);
            for (int i = 0; i < e.decks[deck].writeAheadBlocks.load(); ++i) {
                sink_->WriteDeckBlock(deck);
            }
            if (decks_[deck])
                decks_[deck]->OnPrimed();
            return 0;
        case UWM_TICK:
            OnTick();
            return 0;
        case UWM_GRAPHS_UPDATE:
            ++graphsUpdates_;
            return 0;
        case UWM_DECK_INFO_UPDATE:
            if (ValidDeck(wParam) && decks_[deck] && decks_[deck]->Info()) {
                decks_[deck]->Info()->Refresh();
            }
            return 0;
        case UWM_GRAPHS_PRIORITY:
            if (e.graphsThread) {
                e.graphsThread->SetPriority(lParam == 0 ? ThreadPriority::Normal
                                                        : ThreadPriority::Lowest);
            }
            return 0;
        case UWM_GRAPH_DOUBLE_CLICK:
            return SendAppMessage(host_, msg, wParam, lParam);
        default:
            return CRynWindow::OnAppMessage(msg, wParam, lParam);
    }
}
