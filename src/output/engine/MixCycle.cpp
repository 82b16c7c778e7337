#include "output/engine/MixCycle.h"

#include <chrono>

#include "deck/transport/MixerDeck.h"
#include "deck/transport/RingTimeline.h"
#include "output/engine/CRynAudioOutput.h"

namespace {

double NowSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

bool ValidDeck(int deck) {
    return deck == 0 || deck == 1;
}

}  // namespace

void MixCycle::BindOutputs(CRynAudioOutput* main, CRynAudioOutput* headphones) {
    main_ = main;
    headphones_ = headphones;
}

void MixCycle::BindDeck(int deck, MixerDeck* mixerDeck) {
    if (ValidDeck(deck))
        decks_[deck] = mixerDeck;
}

template <typename F>
void MixCycle::OnBoth(F&& f) {
    if (main_)
        f(*main_);
    if (headphones_)
        f(*headphones_);
}

void MixCycle::FollowDirection(int deck) {
    MixerDeck* d = decks_[deck];
    if (!d || !main_ || d->IsReverse() == writingReverse_[deck])
        return;
    writingReverse_[deck] = d->IsReverse();
    const int slot = ringtimeline::TurnedWriteSlot(main_->ForwardWriteCursor(deck).blocks,
                                                   d->RingHistoryBlocks(), writingReverse_[deck]);
    OnBoth([&](CRynAudioOutput& o) { o.SetWriteCursors(deck, slot); });
}

void MixCycle::MixStep(int deck, bool catchUp) {
    MixerDeck* d = ValidDeck(deck) ? decks_[deck] : nullptr;
    // A forward notification still on its way after the deck turned to
    // reverse writes nothing.
    if (!d || !main_ || !main_->IsForwardPlaying(deck) || d->IsReverse())
        return;
    FollowDirection(deck);
    const int play = main_->ForwardPlayCursor(deck).bytes;
    if (syncHeadphones)
        syncHeadphones(deck, play, clock ? clock() : NowSeconds(), d->NominalRate());
    d->NoteCursors(main_->ReversePlayCursor(deck).bytes, main_->ReverseWriteCursor(deck).bytes);
    d->NoteForwardCursors(play, main_->ForwardWriteCursor(deck).bytes);

    const int ahead = d->BlocksAhead();
    const int target = Engine().decks[deck].writeAheadBlocks.load();
    if (ahead > target)
        return;
    d->BlockFallsDue();
    if (!d->IsTurning())
        return;
    WriteDeckBlock(deck);
    if (ahead < target && !catchUp)
        WriteDeckBlock(deck);
}

void MixCycle::ReverseStep(int deck) {
    MixerDeck* d = ValidDeck(deck) ? decks_[deck] : nullptr;
    if (!d || !main_ || !d->IsReverse())
        return;
    FollowDirection(deck);
    d->NoteCursors(main_->ReversePlayCursor(deck).bytes, main_->ReverseWriteCursor(deck).bytes);
    // As forwards: the ring is kept written ahead of the reverse play cursor
    // by the deck's write-ahead, one block a notification, two when behind.
    const int ahead = d->BlocksAhead();
    const int target = Engine().decks[deck].writeAheadBlocks.load();
    if (ahead > target || !d->IsTurning())
        return;
    WriteDeckBlock(deck);
    if (ahead < target)
        WriteDeckBlock(deck);
}

void MixCycle::WriteDeckBlock(int deck) {
    MixerDeck* d = ValidDeck(deck) ? decks_[deck] : nullptr;
    if (!d || !main_)
        return;
    FollowDirection(deck);
    const int slot = main_->ForwardWriteCursor(deck).blocks;
    if (d->FillBlock(slot, block_.data()) != 0)
        return;
    const bool reversed = d->IsReverse();
    OnBoth([&](CRynAudioOutput& o) { o.WriteDeckBlock(deck, block_.data(), reversed); });
    ++written_[deck];
}

void MixCycle::PlayForward(int deck, bool play) {
    OnBoth([&](CRynAudioOutput& o) { play ? o.PlayForward(deck) : o.StopForward(deck); });
}

void MixCycle::PlayReverse(int deck, bool play) {
    OnBoth([&](CRynAudioOutput& o) { play ? o.PlayReverse(deck) : o.StopReverse(deck); });
}

void MixCycle::CreateScratch(int deck, int rate, int bytes) {
    OnBoth([&](CRynAudioOutput& o) { o.CreateScratch(deck, rate, bytes); });
}

void MixCycle::PlayScratch(int deck, int offsetBytes) {
    OnBoth([&](CRynAudioOutput& o) { o.PlayScratch(deck, offsetBytes); });
}

int MixCycle::ScratchCursor(int deck) const {
    if (!main_)
        return -1;
    const CRynAudioOutput::Cursor c = main_->ScratchPlayCursor(deck);
    return c.status == kStatusOk ? c.bytes : -1;
}

void MixCycle::SwitchDirection(int deck, bool toForward) {
    OnBoth([&](CRynAudioOutput& o) { o.SwitchDirection(deck, toForward); });
}

void MixCycle::SetReversePosition(int deck, int block) {
    OnBoth([&](CRynAudioOutput& o) { o.SetReversePosition(deck, block); });
}

void MixCycle::SetReverseFrequency(int deck, int hz) {
    OnBoth([&](CRynAudioOutput& o) { o.SetReverseFrequency(deck, hz); });
}

void MixCycle::EndScratch(int deck) {
    OnBoth([&](CRynAudioOutput& o) { o.EndScratch(deck); });
}

void MixCycle::CreateDeckBuffers(int deck, int rate) {
    if (main_)
        main_->CreateDeckBuffers(deck, rate, true);
    if (headphones_)
        headphones_->CreateDeckBuffers(deck, rate, false);
    Engine().decks[deck].mainDeckRate.store(rate);
    // New rings are written forwards from block 0 and hold nothing yet.
    writingReverse_[deck] = false;
    if (decks_[deck])
        decks_[deck]->OnRingsCreated();
}

void MixCycle::SetForwardFrequency(int deck, int hz) {
    OnBoth([&](CRynAudioOutput& o) {
        o.SetForwardFrequency(deck, hz);
        o.SetReverseFrequency(deck, hz);
    });
}

void MixCycle::SetForwardPosition(int deck, int block) {
    OnBoth([&](CRynAudioOutput& o) { o.SetForwardPosition(deck, block); });
}

void MixCycle::AttachHeadphones() {
    if (!main_ || !headphones_ || !headphones_->HasDevice() || !main_->HasDevice())
        return;
    for (int deck = 0; deck < kDeckCount; ++deck) {
        CRynSoundEngine* m = main_->SoundEngine();
        if (!m->Deck(deck).forward)
            continue;
        headphones_->CreateDeckBuffers(deck, m->Deck(deck).rate, false);
        CRynSoundEngine::DeckBuffers& h = headphones_->SoundEngine()->Deck(deck);
        h.forwardWrite = m->Deck(deck).forwardWrite;
        h.reverseWrite = m->Deck(deck).reverseWrite;
        headphones_->SetForwardPositionBytes(deck, main_->ForwardPlayCursor(deck).bytes);
        headphones_->SetForwardFrequency(deck, main_->ForwardFrequency(deck));
        headphones_->SetReverseFrequency(deck, main_->ForwardFrequency(deck));
        if (main_->IsForwardPlaying(deck))
            headphones_->PlayForward(deck);
        if (main_->IsReversePlaying(deck))
            headphones_->PlayReverse(deck);
    }
}
