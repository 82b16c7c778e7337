// The deck window's platter: the turntable panel beside the tempo controls,
// what its controller asks of the deck, and timers 13 (spin while the
// needle is up) and 17 (drag update while it is down).
#include <QGridLayout>
#include <QSignalBlocker>

#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/transport/DeckTransport.h"
#include "deck/turntable/DeckTurntablePanel.h"

TurntableController& CRynDeck::Turntable() {
    return turntable_->Controller();
}

void CRynDeck::BuildTurntable(QGridLayout* grid) {
    turntable_ = new DeckTurntablePanel(this);
    grid->addWidget(turntable_, 0, 7, 7, 1);
}

void CRynDeck::WireTurntable() {
    TurntableController::DeckSide side;
    side.needleDown = [this] { return NeedleDown(); };
    side.filledSlots = [this] { return Disc().ForwardFilledCount(); };
    side.setReverse = [this](bool on) { direction_->SetValue(on); };
    side.enableDirection = [this](bool on) { direction_->setEnabled(on); };
    side.applyTempo = [this] { ApplyTempo(); };
    side.platter = [this](int blocks, int) {
        if (info_)
            info_->SetPlatterPositions(blocks);
    };
    turntable_->Initialise(deck_, mainMixer_, std::move(side));
    turntable_->Controller().SetDirection(transport_->IsReverse());
    transport_->SetTurntable(&turntable_->Controller());
    // The platter spins with the reader while the needle is up.
    Disc().SetReaderTimerHook([this](bool on) {
        if (on)
            SetWindowTimer(kSpinTimer, 50);
        else
            KillWindowTimer(kSpinTimer);
    });
}

void CRynDeck::SpinTick() {
    if (Rotating() && !NeedleDown())
        Turntable().Spin();
}

void CRynDeck::EndReverseQuietly() {
    if (!transport_->IsReverse())
        return;
    // The host's stop takes the reverse output down with the rest.
    const QSignalBlocker quiet(direction_);
    direction_->SetValue(false);
    transport_->SetReverse(false);
}
