#include "deck/transport/DeckTransport.h"

#include "deck/disc/CRynDiscBuffer.h"
#include "deck/disc/DeckInfoStats.h"
#include "deck/transport/TrackTime.h"

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
    reverse_ = on;
    disc_->SetReverse(on);
    if (!on) {
        disc_->StopBackwardReader();
        disc_->JoinBackwardReader();
    }
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
    return disc_->FillBlock(writeBlockIndex, dest);
}

int DeckTransport::BlocksAhead() const {
    return disc_->BlocksAhead();
}

bool DeckTransport::IsTurning() const {
    return disc_->Running();
}

void DeckTransport::BlockFallsDue() {
    if (endOfTrackPending_)
        --blocksUntilTrackEnd_;
}

double DeckTransport::NominalRate() const {
    return nominalRate_ ? nominalRate_() : MixerDeck::NominalRate();
}

void DeckTransport::NoteCursors(int reversePlayCursor, int reverseWriteCursor) {
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
    if (!disc_->NoteForwardCursors(playCursor, writeCursor)) {
        if (onUnderrun_)
            onUnderrun_();
        return;
    }
    if (endOfTrackPending_ && blocksUntilTrackEnd_ <= 0 && onEndHeard_)
        onEndHeard_();
}
