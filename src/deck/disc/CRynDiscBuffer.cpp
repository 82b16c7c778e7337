#include "deck/disc/CRynDiscBuffer.h"

#include <cstring>

#include "core/ThreadPriority.h"
#include "deck/disc/DeckBlockRoutine.h"
#include "deck/disc/DeckBlockSource.h"

namespace {

ThreadPriority LevelOf(ReaderPriority p) {
    switch (p) {
        case ReaderPriority::BelowNormal:
            return ThreadPriority::BelowNormal;
        case ReaderPriority::AboveNormal:
            return ThreadPriority::AboveNormal;
        case ReaderPriority::TimeCritical:
            return ThreadPriority::TimeCritical;
    }
    return ThreadPriority::Normal;
}

}  // namespace

CRynDiscBuffer::CRynDiscBuffer(int deck, DeckInfoStats& stats)
    : deck_(deck), shared_(Engine().decks[deck]), stats_(stats) {
    watchdog_.setInterval(kWatchdogMs);
    QObject::connect(&watchdog_, &QTimer::timeout, [this] { WatchdogTick(); });
    resumeTimer_.setInterval(kSuspendMs);
    QObject::connect(&resumeTimer_, &QTimer::timeout, [this] { ResumeAfterSuspend(); });
}

CRynDiscBuffer::~CRynDiscBuffer() {
    StopForwardReader();
    StopBackwardReader();
    JoinBackwardReader();
}

// ---------------------------------------------------------------- consumer

int CRynDiscBuffer::FillBlock(int outputSlot, std::uint8_t* dest) {
    if (!running_)
        return kNotRunning;
    std::uint8_t* slot = nullptr;
    if (!reverse_) {
        markers_[outputSlot] = 0;
        if (shared_.forwardFilled[forwardPlay_].load() == 0) {
            // The mixer asks again for the same output slot next time; a block
            // delivered then sets the marker back to 0.
            markers_[outputSlot] = -1;
            return kNoBlock;
        }
        slot = shared_.forwardDisc[forwardPlay_].data();
    } else {
        if (shared_.backwardFilled[backwardPlay_].load() == 0) {
            if (backwardReadingOn_ || shared_.backwardReaderRun.load() != 0)
                shared_.backwardWakeEvent.Set();
            return kNoBlock;
        }
        slot = shared_.backwardDisc[backwardPlay_].data();
    }
    std::memcpy(dest, slot, kBlockBytes);

    if (routine_) {
        const SharedEngineState& engine = Engine();
        bool shortOfData = false;
        for (const DeckSharedState& d : engine.decks) {
            shortOfData |= d.discBufferVeryLow.load() != 0 || d.freshDataLow.load() != 0;
        }
        const bool analysis =
            !shortOfData && shared_.metersOff.load() == 0 && engine.overload.load() == 0;
        routine_->Process(outputSlot, reinterpret_cast<std::int16_t*>(dest), analysis);
    }

    // The slot goes back to its reader, which is woken every ten blocks.
    if (!reverse_) {
        shared_.forwardFilled[forwardPlay_].store(0);
        stats_.HandInForwardFlags(shared_.forwardFilled);
        forwardPlay_ = (forwardPlay_ + 1) % kForwardDiscBlocks;
    } else {
        shared_.backwardFilled[backwardPlay_].store(0);
        stats_.HandInBackwardFlags(shared_.backwardFilled);
        backwardPlay_ = (backwardPlay_ + 1) % kBackwardDiscBlocks;
    }
    if (++consumed_ > kWakeEvery - 1) {
        consumed_ = 0;
        (reverse_ ? shared_.backwardWakeEvent : shared_.forwardWakeEvent).Set();
    }
    return kDelivered;
}

bool CRynDiscBuffer::NoteForwardCursors(int playCursorBytes, int writeCursorBytes, bool dragging) {
    const int playSlot = playCursorBytes / kBlockBytes;
    const int writeSlot = writeCursorBytes / kBlockBytes;
    // The blocks ahead keep the mix cycle writing even while the platter is
    // dragged; only the LEDs and the reader priority wait for the hand.
    stats_.SetForwardPositions(playSlot, writeSlot, shared_.latencyBlocks.load(),
                               &shared_.blocksAheadCopy);
    if (!dragging) {
        bool changed = false;
        // Fresh data low LED follows the information window's state.
        if (leds_.freshDataLow && !stats_.FreshDataLow()) {
            leds_.freshDataLow = false;
            shared_.freshDataLow.store(0);
            changed = true;
        } else if (!leds_.freshDataLow && stats_.FreshDataLow()) {
            leds_.freshDataLow = true;
            shared_.freshDataLow.store(1);
            changed = true;
        }
        // Disc buffer low: the reader goes time-critical while the deck plays.
        if (leds_.discBufferLow && !stats_.Low()) {
            RequestPriority(ReaderPriority::BelowNormal);
            PostAppMessageRetry(Engine().mainMixerWindow, UWM_GRAPHS_PRIORITY, deck_, 0);
            leds_.discBufferLow = false;
            changed = true;
        } else if (!leds_.discBufferLow && stats_.Low() && shared_.isPlaying.load() != 0) {
            if (forwardAlive_) {
                RequestPriority(ReaderPriority::TimeCritical);
                PostAppMessageRetry(Engine().mainMixerWindow, UWM_GRAPHS_PRIORITY, deck_, 1);
                leds_.discBufferLow = true;
                changed = true;
            }
        }
        // Very low: red LED while under half full.
        if (shared_.discBufferVeryLow.load() == 0 && stats_.VeryLow()) {
            if (forwardAlive_) {
                shared_.discBufferVeryLow.store(1);
                leds_.discBufferVeryLow = true;
                changed = true;
            }
        } else if (shared_.discBufferVeryLow.load() != 0 && !stats_.VeryLow()) {
            if (forwardAlive_)
                shared_.discBufferVeryLow.store(0);
            leds_.discBufferVeryLow = false;
            changed = true;
        }
        if (changed)
            NotifyLeds();
    }
    // Underrun: the block now heard was never delivered.
    if (markers_[playSlot % kOutputSlots] == -1) {
        if (forwardAlive_)
            SetReadErrorLed(true);
        return false;
    }
    return true;
}

void CRynDiscBuffer::NoteCursors(int reversePlayBytes, int reverseWriteBytes) {
    stats_.SetReversePositions(reversePlayBytes / kBlockBytes, reverseWriteBytes / kBlockBytes,
                               shared_.latencyBlocks.load());
}

void CRynDiscBuffer::SetReadErrorLed(bool on) {
    if (leds_.discReadError == on)
        return;
    leds_.discReadError = on;
    NotifyLeds();
}

void CRynDiscBuffer::NotifyLeds() {
    if (ledsChanged_)
        ledsChanged_();
}

void CRynDiscBuffer::LowerReaderPriority() {
    RequestPriority(ReaderPriority::BelowNormal);
    PostAppMessageRetry(Engine().mainMixerWindow, UWM_GRAPHS_PRIORITY, deck_, 0);
    shared_.freshDataLow.store(0);
    shared_.discBufferVeryLow.store(0);
    if (leds_.discBufferLow || leds_.freshDataLow || leds_.discBufferVeryLow) {
        leds_.discBufferLow = false;
        leds_.freshDataLow = false;
        leds_.discBufferVeryLow = false;
        NotifyLeds();
    }
}

// ---------------------------------------------------------------- readers

void CRynDiscBuffer::StartForwardReader() {
    announceFirstFill_ = true;
    RunForwardReader();
}

void CRynDiscBuffer::ResumeForwardReader() {
    announceFirstFill_ = false;
    RunForwardReader();
}

void CRynDiscBuffer::RunForwardReader() {
    markers_.fill(0);
    running_ = false;
    StopForwardReader();
    forwardPlay_ = 0;
    running_ = true;
    shared_.forwardReaderRun.store(1);
    forwardAlive_.store(true);
    priority_.store(ReaderPriority::AboveNormal);
    // The reader sets its own priority (ApplyOwnPriority) as it goes.
    forwardReader_.Start(ReaderName("forward"), ThreadPriority::Normal,
                         [this](const std::atomic<bool>&) { ForwardReaderMain(); });
    watchdog_.start();
    if (readerTimerHook_)
        readerTimerHook_(true);
}

void CRynDiscBuffer::StopForwardReader() {
    watchdog_.stop();
    if (readerTimerHook_)
        readerTimerHook_(false);
    ResumeAfterSuspend();
    shared_.forwardReaderRun.store(0);
    shared_.forwardWakeEvent.Set();
    // The reader may be blocked in a send to the deck window: the join serves
    // this thread's messages until the reader has ended. Its last message has
    // then cleared the handle, unless it found no window.
    forwardReader_.Join();
    forwardAlive_.store(false);
}

void CRynDiscBuffer::StartBackwardReader() {
    StopBackwardReader();
    JoinBackwardReader();
    // The stop's wake must not start the new reader's first pass.
    shared_.backwardWakeEvent.Reset();
    backwardPlay_ = 0;
    shared_.backwardReaderRun.store(1);
    backwardReader_.Start(ReaderName("backward"), ThreadPriority::Normal,
                          [this](const std::atomic<bool>&) { BackwardReaderMain(); });
}

void CRynDiscBuffer::WakeBackwardReader() {
    shared_.backwardWakeEvent.Set();
}

int CRynDiscBuffer::ForwardFilledCount() const {
    int n = 0;
    for (const auto& f : shared_.forwardFilled)
        n += f.load() != 0 ? 1 : 0;
    return n;
}

int CRynDiscBuffer::BackwardFilledCount() const {
    int n = 0;
    for (const auto& f : shared_.backwardFilled)
        n += f.load() != 0 ? 1 : 0;
    return n;
}

void CRynDiscBuffer::StopBackwardReader() {
    shared_.backwardReaderRun.store(0);
    shared_.backwardWakeEvent.Set();
}

void CRynDiscBuffer::JoinBackwardReader() {
    // The backward reader's sends are served while the join waits.
    backwardReader_.Join();
}

std::string CRynDiscBuffer::ReaderName(const char* direction) const {
    return std::string("deck ") + char('A' + deck_) + ' ' + direction;
}

void CRynDiscBuffer::ForwardReaderMain() {
    DeckSharedState& s = shared_;
    ApplyOwnPriority();
    // The run flag was raised by StartForwardReader before the thread began,
    // so a stop that comes before this line is not lost.
    s.forwardReaderWaiting.store(0);
    s.forwardReaderTick.store(0);
    for (auto& f : s.forwardFilled)
        f.store(0);
    int writeIndex = 0;
    // A resumed run feeds rings that already play: no first fill to announce.
    bool firstFillPosted = !announceFirstFill_;
    const bool fileMode = source_ && source_->IsFileMode();
    bool firstPass = true;

    while (s.forwardReaderRun.load() == 1) {
        s.forwardReaderTick.store(0);
        s.forwardReaderWaiting.store(1);
        // The first pass starts at once; later passes wait for the consumer
        // (it wakes us every ten blocks it takes).
        if (!firstPass)
            s.forwardWakeEvent.Wait();
        firstPass = false;
        s.forwardReaderWaiting.store(0);
        if (s.forwardReaderRun.load() == 0)
            break;

        int count = 0;
        for (const auto& f : s.forwardFilled)
            count += f.load() == 0 ? 1 : 0;
        bool leave = false;
        for (int i = 0; i < count; ++i) {
            if (s.forwardReaderRun.load() == 0) {
                leave = true;
                break;
            }
            ParkIfSuspended();
            ApplyOwnPriority();
            bool endOfStream = false;
            const int status =
                source_ ? source_->ReadBlock(s.forwardDisc[writeIndex].data(), &endOfStream) : -1;
            if (status != 0)
                continue;  // the same slot is tried again
            s.forwardFilled[writeIndex].store(1);
            SendAppMessage(s.deckWindow, UWM_FORWARD_FLAGS, 0, 0);
            if (fileMode && endOfStream) {
                // The last file has ended: make sure output starts even for a
                // track shorter than the first fill.
                if (!firstFillPosted)
                    PostAppMessageRetry(s.deckWindow, UWM_FIRST_FILL, 0, 0);
                leave = true;
                break;
            }
            if (!firstFillPosted && (i == count - 1 || i > s.writeAheadBlocks.load() + 10)) {
                PostAppMessageRetry(s.deckWindow, UWM_FIRST_FILL, 0, 0);
                firstFillPosted = true;
            }
            writeIndex = (writeIndex + 1) % kForwardDiscBlocks;
        }
        s.forwardReaderTick.store(0);
        if (leave)
            break;
    }
    SendAppMessage(s.deckWindow, UWM_READER_ENDED, 0, 0);
}

void CRynDiscBuffer::BackwardReaderMain() {
    DeckSharedState& s = shared_;
    for (auto& f : s.backwardFilled)
        f.store(0);
    int base = 0;
    static const PcmBlock kSilence{};
    while (s.backwardReaderRun.load() == 1) {
        s.backwardWakeEvent.Wait();
        if (s.backwardReaderRun.load() == 0)
            break;
        // At most 26 blocks a pass: counting stops once it exceeds 25.
        int n = 0;
        for (const auto& f : s.backwardFilled) {
            if (f.load() == 0 && ++n > 25)
                break;
        }
        // Back over the blocks to read; at the track's start fewer are left,
        // and the slots beyond them get silence.
        const int moved = source_ ? source_->StepBack(n) : 0;
        for (int k = 0; k < n; ++k) {
            // Source order goes into the ring backwards: the first block read
            // lands at base + moved - 1, the last at base.
            const int j = n - 1 - k;
            const int slot = (base + j) % kBackwardDiscBlocks;
            bool endOfStream = false;
            if (j >= moved)
                std::memcpy(s.backwardDisc[slot].data(), kSilence.data(), kBlockBytes);
            else if (source_)
                source_->ReadBlock(s.backwardDisc[slot].data(), &endOfStream);
            if (s.backwardReaderRun.load() == 0)
                return;
            s.backwardFilled[slot].store(1);  // a failed read still marks the slot
            SendAppMessage(s.deckWindow, UWM_BACKWARD_FLAGS, 0, 0);
        }
        if (source_ && moved > 0)
            source_->StepBack(moved);
        base = (base + n) % kBackwardDiscBlocks;
    }
}

bool CRynDiscBuffer::HandleMessage(Uwm msg, WParam, LParam, LResult* result) {
    *result = 0;
    switch (msg) {
        case UWM_FIRST_FILL: {
            RequestPriority(ReaderPriority::BelowNormal);
            const int rate = streamRate_ ? streamRate_() : 44100;
            PostAppMessageRetry(Engine().mainMixerWindow, UWM_CREATE_DECK_BUFFERS, deck_, rate);
            PostAppMessageRetry(Engine().mainMixerWindow, UWM_PRIME_DECK, deck_, 0);
            return true;
        }
        case UWM_FORWARD_FLAGS:
            stats_.HandInForwardFlags(shared_.forwardFilled);
            return true;
        case UWM_BACKWARD_FLAGS:
            stats_.HandInBackwardFlags(shared_.backwardFilled);
            return true;
        case UWM_READER_ENDED:
            forwardAlive_.store(false);
            return true;
        default:
            return false;
    }
}

// ---------------------------------------------------------------- watchdog

void CRynDiscBuffer::WatchdogTick() {
    if (shared_.isPlaying.load() != 0)
        return;
    std::lock_guard lock(suspendMutex_);
    if (!suspended_ && shared_.forwardReaderTick.load() == 1) {
        if (shared_.forwardReaderWaiting.load() == 0 && forwardAlive_) {
            suspendRequested_ = true;
            suspended_ = true;
            resumeTimer_.start();
        } else {
            suspended_ = false;
        }
        leds_.discReadError = suspended_;
        NotifyLeds();
    }
    shared_.forwardReaderTick.store(1);
}

void CRynDiscBuffer::ResumeAfterSuspend() {
    {
        std::lock_guard lock(suspendMutex_);
        const bool was = suspended_;
        suspendRequested_ = false;
        suspended_ = false;
        resumeTimer_.stop();
        if (was && leds_.discReadError) {
            leds_.discReadError = false;
            NotifyLeds();
        }
    }
    suspendCv_.notify_all();
}

void CRynDiscBuffer::ParkIfSuspended() {
    std::unique_lock lock(suspendMutex_);
    suspendCv_.wait(lock,
                    [this] { return !suspendRequested_ || shared_.forwardReaderRun.load() == 0; });
}

void CRynDiscBuffer::RequestPriority(ReaderPriority p) {
    priority_.store(p);
}

void CRynDiscBuffer::ApplyOwnPriority() {
    const ReaderPriority want = priority_.load();
    if (appliedPriority_.load() == want)
        return;
    appliedPriority_.store(want);
    ApplyCurrentThreadPriority(LevelOf(want));
}
