#include "deck/turntable/TurntableController.h"

#include "controls/CNiButton.h"
#include "controls/CNiKnob.h"
#include "core/EngineState.h"
#include "deck/turntable/TurntableLaw.h"

TurntableController::TurntableController(int deck, WindowHandle host, DeckSide side)
    : deck_(deck == 1 ? 1 : 0), host_(host), side_(std::move(side)) {}

void TurntableController::Attach(CNiKnob* first, CNiKnob* second, CNiButton* modeButton) {
    knobs_ = {first, second};
    modeButton_ = modeButton;
    SetWriting(writing_);
}

bool TurntableController::IsPlaying() const {
    return Engine().decks[deck_].isPlaying.load() != 0 && (!side_.needleDown || side_.needleDown());
}

int TurntableController::WriteAhead() const {
    return Engine().decks[deck_].writeAheadBlocks.load();
}

void TurntableController::Send(Uwm msg, LParam lParam) {
    SendAppMessage(host_, msg, static_cast<WParam>(deck_), lParam);
}

void TurntableController::SetWriting(bool on) {
    writing_ = on;
    for (CNiKnob* k : knobs_) {
        if (k)
            k->SetPointerColor(on ? kWritingColour : kPausedColour);
    }
}

// ------------------------------------------------------------ buttons

void TurntableController::SetMode(Mode mode) {
    mode_ = mode;
    for (CNiKnob* k : knobs_) {
        if (k)
            k->SetPointerStyle(mode == kDrop ? CNiKnob::kWedge : CNiKnob::kNeedle);
    }
    if (modeButton_)
        modeButton_->SetCaption(mode == kDrop ? QStringLiteral("Drop") : QStringLiteral("Drag"));
    if (mode == kDrop) {
        // No scratch notification thread outlives drag mode.
        DeckSharedState& d = Engine().decks[deck_];
        d.scratchThreadStop.store(1);
        d.scratchNotifyEvent.Set();
    }
}

void TurntableController::SetKnob(int which) {
    activeKnob_ = which == 0 ? 0 : 1;
    for (int i = 0; i < 2; ++i) {
        if (knobs_[i])
            knobs_[i]->setVisible(i == activeKnob_);
    }
    SetMode(mode_);
    Draw();
}

// ------------------------------------------------------------ mouse

void TurntableController::LeftDown() {
    if (!IsPlaying())
        return;
    grabAngle_ = playAngle_;
    grabbed_ = true;
    still_ = false;
    movedSinceTick_ = false;
    if (mode_ == kDrag) {
        scratchTravel_ = 0;
    } else {
        Send(UWM_FORWARD_PLAY, 0);
        hold_ = false;
    }
}

void TurntableController::LeftUp(bool shift) {
    if (!IsPlaying())
        return;
    Release(shift);
    if (side_.applyTempo)
        side_.applyTempo();
}

void TurntableController::KeyboardRelease() {
    if (!IsPlaying())
        return;
    Release(false);
}

void TurntableController::Release(bool shift) {
    const bool loop = shift;
    if (modeButton_)
        modeButton_->setEnabled(!loop);
    if (loop && side_.enableDirection)
        side_.enableDirection(false);
    // Forwards: the reverse switch goes off (the deck handles the change).
    if (side_.setReverse)
        side_.setReverse(false);
    const CNiKnob* knob = ActiveKnob();
    const double a = knob ? turntable::Wrap(knob->Value()) : playAngle_;
    if (mode_ == kDrop && loop) {
        hold_ = true;
        loopAngle_ = a;
        loopPlayAngle_ = playAngle_;
        Send(UWM_START_SCRATCH, turntable::LoopBytes(playAngle_, a));
        Send(UWM_PLAY_SCRATCH, 0);
        grabbed_ = false;
        return;
    }
    if (mode_ == kDrag)
        firstSampleTaken_ = false;
    if (grabbed_) {
        SetWriting(false);
        Send(UWM_SET_FORWARD_POSITION, turntable::AngleInBlocks(a));
        Send(UWM_FORWARD_PLAY, 1);
    }
    grabbed_ = false;
}

void TurntableController::RightUp() {
    if (!IsPlaying())
        return;
    if (modeButton_)
        modeButton_->setEnabled(true);
    hold_ = false;  // right click: exit loop
}

void TurntableController::DragUpdate(bool fromTimer) {
    if (!IsPlaying() || !grabbed_)
        return;
    const CNiKnob* knob = ActiveKnob();
    if (!knob)
        return;
    const double value = turntable::Wrap(knob->Value());
    if (side_.platter)
        side_.platter(turntable::AngleInBlocks(value), turntable::ReverseAngleInBlocks(value));
    if (mode_ != kDrag)
        return;
    if (!firstSampleTaken_) {
        lastKnobValue_ = value;
        firstSampleTaken_ = true;
    }
    const double delta = turntable::DragDelta(lastKnobValue_, value);
    if (delta == 0.0 && fromTimer && movedSinceTick_) {
        movedSinceTick_ = false;  // moved within this period: not still yet
    } else if (delta == 0.0) {
        lastKnobValue_ = value;
        if (!still_) {
            // The hand holds the platter: the output it plays stops, once.
            still_ = true;
            Send(direction_ ? UWM_REVERSE_PLAY : UWM_FORWARD_PLAY, 0);
        }
    } else {
        if (still_) {
            scratchTravel_ = 0;
            still_ = false;
            Send(direction_ ? UWM_REVERSE_PLAY : UWM_FORWARD_PLAY, 1);
        }
        scratchTravel_ += delta;
        lastKnobValue_ = value;
        movedSinceTick_ = true;
        if (delta < 0)
            SetWriting(false);
        lastDelta_ = delta;
    }
    if (side_.setReverse) {
        if (lastDelta_ < 0)
            side_.setReverse(true);
        else if (lastDelta_ > 0)
            side_.setReverse(false);
    }
}

// ------------------------------------------------------------ mix cycle

void TurntableController::NoteForwardCursors(int playCursor, int writeCursor) {
    if (grabbed_)
        return;
    previousPlayAngle_ = playAngle_;
    playAngle_ = turntable::AngleOfCursor(playCursor);
    blocksAhead_ = turntable::BlocksAhead(playCursor, writeCursor);
    if (blocksAhead_ < WriteAhead())
        SetWriting(true);
}

void TurntableController::NoteReverseCursors(int playCursor, int writeCursor) {
    reverseAngle_ = turntable::AngleOfCursor(playCursor);
    blocksAhead_ = turntable::BlocksAhead(playCursor, writeCursor);
    if (blocksAhead_ < WriteAhead())
        SetWriting(true);
}

int TurntableController::BytesPlayed() const {
    return turntable::BytesPlayed(previousPlayAngle_, playAngle_);
}

void TurntableController::Draw() {
    if (grabbed_ || Engine().allMinimised.load() != 0)
        return;
    if (CNiKnob* knob = ActiveKnob())
        knob->SetValue(direction_ ? turntable::Wrap(1.0 - reverseAngle_) : playAngle_);
}

void TurntableController::DrawLoop(double angle) {
    if (grabbed_ || !hold_ || Engine().allMinimised.load() != 0)
        return;
    if (CNiKnob* knob = ActiveKnob())
        knob->SetValue(turntable::Wrap(loopAngle_ + angle));
}

void TurntableController::Spin() {
    playAngle_ = turntable::SpinStep(playAngle_, side_.filledSlots ? side_.filledSlots() : 0);
    Draw();
}

void TurntableController::ScratchDone() {
    hold_ = false;
    if (modeButton_)
        modeButton_->setEnabled(true);
    if (side_.enableDirection && IsPlaying())
        side_.enableDirection(true);
}

void TurntableController::Reset() {
    for (CNiKnob* k : knobs_) {
        if (k)
            k->SetValue(0.0);
    }
    grabbed_ = hold_ = firstSampleTaken_ = still_ = false;
    direction_ = false;
    scratchTravel_ = grabAngle_ = lastDelta_ = loopPlayAngle_ = loopAngle_ = 0;
    lastKnobValue_ = previousPlayAngle_ = playAngle_ = reverseAngle_ = 0;
    blocksAhead_ = 0;
    SetWriting(true);
    if (modeButton_)
        modeButton_->setEnabled(true);
}
