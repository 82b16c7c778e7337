#include "deck/transport/DeckTransport.h"

#include <algorithm>

#include "deck/disc/CRynDiscBuffer.h"
#include "deck/disc/DeckBlockSource.h"
#include "deck/disc/DeckInfoStats.h"
#include "deck/transport/RingTimeline.h"
#include "deck/transport/TrackTime.h"
#include "deck/turntable/TurntableController.h"

DeckTransport::DeckTransport(int deck, DeckInfoStats& stats)
    : stats_(stats), disc_(std::make_unique<CRynDiscBuffer>(deck, stats)) {}

DeckTransport::~DeckTransport() {
    StopAllReaders();
}

void DeckTransport::SetStreamRate(std::function<int()> rate) {
    streamRate_ = std::move(rate);
    disc_->SetStreamRate([this] { return Rate(); });
}

int DeckTransport::Rate() const {
    return streamRate_ ? streamRate_() : 44100;
}

// ------------------------------------------------------------ readers

void DeckTransport::StartReading() {
    lastPlayCursor_ = -1;
    // The reader's first fill primes the output again.
    primed_ = false;
    disc_->StartForwardReader();
}

void DeckTransport::StopReading() {
    disc_->SetRunning(false);
    disc_->StopForwardReader();
}

void DeckTransport::StopAllReaders() {
    StopReading();
    disc_->StopBackwardReader();
    disc_->JoinBackwardReader();
}

// ------------------------------------------------------------ reverse

void DeckTransport::SetReverse(bool on) {
    if (on == reverse_)
        return;
    DeckBlockSource* source = disc_->Source();
    reverse_ = on;
    disc_->SetReverse(on);
    if (turntable_)
        turntable_->SetDirection(on);
    if (on) {
        // The blocks read ahead stay unheard: the forward reader stops where
        // it is and backward reading starts before the rings' earliest block.
        const bool rotating = disc_->Running();
        disc_->StopForwardReader();
        if (!source || !rotating)
            return;
        earliestFrame_ = ringtimeline::EarliestFrame(source->PositionFrames(),
                                                     disc_->ForwardFilledCount(), history_);
        source->SeekFrames(std::max<std::int64_t>(earliestFrame_, 0));
        disc_->StartBackwardReader();
        disc_->WakeBackwardReader();
        return;
    }
    disc_->StopBackwardReader();
    disc_->JoinBackwardReader();
    if (!source || !disc_->Running())
        return;
    source->SeekFrames(ringtimeline::ResumeFrame(earliestFrame_, history_));
    disc_->ResumeForwardReader();
}

int DeckTransport::ForwardResumeBlocks() const {
    return (kOutputRingBlocks - 1 - stats_.ReversePlaySlot() + kOutputRingBlocks) %
           kOutputRingBlocks;
}

// ------------------------------------------------------------ time and end of track

double DeckTransport::FollowForwardPlay(double sourceSeconds, double trackSeconds) {
    const int blocks =
        endOfTrackPending_ ? blocksUntilTrackEnd_ : BlocksAhead() + stats_.ForwardCount();
    const double source = endOfTrackPending_ ? trackSeconds : sourceSeconds;
    const double estimate = tracktime::HeardSeconds(source, blocks, Rate());
    elapsedSeconds_ = tracktime::ReconcileElapsed(elapsedSeconds_, estimate);
    return elapsedSeconds_;
}

bool DeckTransport::BeginEndOfTrack() {
    if (endOfTrackPending_)
        return false;
    blocksUntilTrackEnd_ = BlocksAhead() + stats_.ForwardCount();
    endOfTrackPending_ = true;
    return true;
}

// ------------------------------------------------------------ mix cycle

int DeckTransport::FillBlock(int writeBlockIndex, std::uint8_t* dest) {
    const int status = disc_->FillBlock(writeBlockIndex, dest);
    if (status == CRynDiscBuffer::kDelivered) {
        history_ = std::min(history_ + 1, kOutputRingBlocks);
        if (reverse_)
            earliestFrame_ -= kBlockFrames;
    } else if (status == CRynDiscBuffer::kNoBlock && reverse_) {
        ++reverseUnderruns_;
    }
    return status;
}

int DeckTransport::BlocksAhead() const {
    return disc_->BlocksAhead();
}

bool DeckTransport::IsTurning() const {
    return disc_->Running() && (!turntable_ || turntable_->Writing());
}

bool DeckTransport::HoldsLoop() const {
    return turntable_ && turntable_->Holds();
}

double DeckTransport::TurntablePosition() const {
    return turntable_ ? turntable_->ScratchPosition() : 0.0;
}

void DeckTransport::BlockFallsDue() {
    if (endOfTrackPending_)
        --blocksUntilTrackEnd_;
}

double DeckTransport::NominalRate() const {
    return nominalRate_ ? nominalRate_() : MixerDeck::NominalRate();
}

void DeckTransport::NoteCursors(int reversePlayCursor, int reverseWriteCursor) {
    if (turntable_ && reverse_)
        turntable_->NoteReverseCursors(reversePlayCursor, reverseWriteCursor);
    disc_->NoteCursors(reversePlayCursor, reverseWriteCursor);
}

void DeckTransport::NoteForwardCursors(int playCursor, int writeCursor) {
    // The elapsed time counts the bytes played since the last note.
    if (lastPlayCursor_ >= 0 && !reverse_) {
        int played = playCursor - lastPlayCursor_;
        if (played < 0)
            played += kOutputRingBytes;
        elapsedSeconds_ += double(played) / (double(Rate()) * kBytesPerFrame);
    }
    lastPlayCursor_ = playCursor;
    if (turntable_)
        turntable_->NoteForwardCursors(playCursor, writeCursor);
    const bool dragging = turntable_ && turntable_->Grabbed();
    if (!disc_->NoteForwardCursors(playCursor, writeCursor, dragging)) {
        if (onUnderrun_)
            onUnderrun_();
        return;
    }
    if (endOfTrackPending_ && blocksUntilTrackEnd_ <= 0 && onEndHeard_)
        onEndHeard_();
}
