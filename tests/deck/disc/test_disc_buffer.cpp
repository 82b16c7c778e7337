// The disc buffer's readers and FillBlock against a synthetic source, with
// the deck window and the main mixer as message sinks on the test thread.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <vector>

#include "TestSupport.h"
#include "core/CRynWindow.h"
#include "core/EngineState.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/disc/DeckBlockSource.h"

namespace {

// Block k holds the 16-bit value k + 1 in every sample; ends after `blocks`.
class CountingSource : public DeckBlockSource {
  public:
    explicit CountingSource(int blocks, bool fileMode = true) : blocks_(blocks), file_(fileMode) {}
    int ReadBlock(std::uint8_t* dest, bool* endOfStream) override {
        const int k = position_.fetch_add(1);
        ++reads;
        auto* s = reinterpret_cast<std::int16_t*>(dest);
        for (int i = 0; i < kBlockBytes / 2; ++i)
            s[i] = static_cast<std::int16_t>(k < blocks_ ? k + 1 : 0);
        *endOfStream = k + 1 >= blocks_;
        return 0;
    }
    void Rewind(int blocks) override {
        int p = position_.load() - blocks;
        position_.store(p < 0 ? 0 : p);
    }
    bool IsFileMode() const override { return file_; }
    std::atomic<int> reads{0};

  private:
    int blocks_;
    bool file_;
    std::atomic<int> position_{0};
};

class DeckSink : public MessageSink {
  public:
    CRynDiscBuffer* buffer = nullptr;
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        LResult r = 0;
        if (buffer)
            buffer->HandleMessage(msg, w, l, &r);
        return r;
    }
};

class MixerSink : public MessageSink {
  public:
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        got.push_back({msg, w, l});
        return 0;
    }
    struct Msg {
        Uwm msg;
        WParam w;
        LParam l;
    };
    std::vector<Msg> got;
};

class DiscBufferTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Engine().mainMixerWindow = mixer.Handle();
        Engine().mainDialogWindow = host.Handle();
        Engine().decks[0].deckWindow = deckSink.Handle();
        Engine().decks[0].writeAheadBlocks.store(10);
        Engine().decks[0].latencyBlocks.store(10);
        deckSink.buffer = &buffer;
    }
    void TearDown() override {
        buffer.StopForwardReader();
        buffer.StopBackwardReader();
        buffer.JoinBackwardReader();
    }
    // The engine record is renewed before the buffer binds to it.
    struct FreshEngine {
        FreshEngine() { ResetEngineStateForTest(); }
    } freshEngine;
    DeckInfoStats stats;
    CRynDiscBuffer buffer{0, stats};
    DeckSink deckSink;
    MixerSink mixer;
    MixerSink host;
};

int FirstSample(const std::uint8_t* block) {
    std::int16_t v;
    std::memcpy(&v, block, 2);
    return v;
}

}  // namespace

TEST_F(DiscBufferTest, ReaderFillsRingPostsFirstFillAndEndsAtEndOfFile) {
    CountingSource source(400);
    buffer.SetSource(&source);
    buffer.SetStreamRate([] { return 48000; });
    std::uint8_t block[kBlockBytes];

    buffer.StartForwardReader();
    ASSERT_TRUE(testsupport::WaitFor([&] { return mixer.got.size() >= 2; }));
    // First fill: the host builds the deck's buffers at the stream rate, then primes them.
    EXPECT_EQ(mixer.got[0].msg, UWM_CREATE_DECK_BUFFERS);
    EXPECT_EQ(mixer.got[0].w, 0u);
    EXPECT_EQ(mixer.got[0].l, 48000);
    EXPECT_EQ(mixer.got[1].msg, UWM_PRIME_DECK);
    // The first pass fills the whole ring (the notice came after 22 blocks).
    ASSERT_TRUE(testsupport::WaitFor([&] { return source.reads.load() == kForwardDiscBlocks; }));
    EXPECT_EQ(mixer.got.size(), 2u);
    ASSERT_TRUE(testsupport::WaitFor([&] { return stats.ForwardCount() == kForwardDiscBlocks; }));
    EXPECT_FALSE(stats.Low());

    // Blocks come out in order; the reader tops up every ten blocks consumed.
    for (int k = 0; k < 400; ++k) {
        ASSERT_TRUE(testsupport::WaitFor([&] {
            return buffer.FillBlock(k % 120, block) == CRynDiscBuffer::kDelivered;
        })) << "block "
            << k;
        ASSERT_EQ(FirstSample(block), k + 1);
    }
    // The file has ended: the reader stopped by itself and cleared its handle.
    EXPECT_TRUE(testsupport::WaitFor([&] { return !buffer.ForwardReaderExists(); }));
    EXPECT_EQ(buffer.FillBlock(0, block), CRynDiscBuffer::kNoBlock);
    EXPECT_EQ(buffer.DeliveryMarker(0), -1);
    EXPECT_EQ(mixer.got.size(), 2u);  // one first-fill notice per run
}

TEST_F(DiscBufferTest, WakesReaderEveryTenBlocksAndMarksMissedBlocks) {
    DeckSharedState& s = Engine().decks[0];
    std::uint8_t block[kBlockBytes];
    EXPECT_EQ(buffer.FillBlock(5, block), CRynDiscBuffer::kNotRunning);
    buffer.SetRunning(true);
    for (auto& f : s.forwardFilled)
        f.store(1);
    s.forwardWakeEvent.Reset();
    for (int i = 0; i < 9; ++i)
        ASSERT_EQ(buffer.FillBlock(i, block), 0);
    EXPECT_FALSE(s.forwardWakeEvent.IsSet());
    ASSERT_EQ(buffer.FillBlock(9, block), 0);
    EXPECT_TRUE(s.forwardWakeEvent.Wait(0));
    for (int i = 0; i < 9; ++i)
        ASSERT_EQ(buffer.FillBlock(i, block), 0);
    EXPECT_FALSE(s.forwardWakeEvent.IsSet());

    // A missed block marks its output slot; delivering on the next call for
    // the same slot clears the mark and nothing stops.
    s.forwardFilled[buffer.ForwardPlayIndex()].store(0);
    EXPECT_EQ(buffer.FillBlock(42, block), CRynDiscBuffer::kNoBlock);
    EXPECT_EQ(buffer.DeliveryMarker(42), -1);
    s.forwardFilled[buffer.ForwardPlayIndex()].store(1);
    EXPECT_EQ(buffer.FillBlock(42, block), CRynDiscBuffer::kDelivered);
    EXPECT_EQ(buffer.DeliveryMarker(42), 0);
    EXPECT_TRUE(buffer.NoteForwardCursors(42 * kBlockBytes, 50 * kBlockBytes));

    // Heard while still missing: the deck must stop.
    s.forwardFilled[buffer.ForwardPlayIndex()].store(0);
    EXPECT_EQ(buffer.FillBlock(43, block), CRynDiscBuffer::kNoBlock);
    EXPECT_FALSE(buffer.NoteForwardCursors(43 * kBlockBytes + 100, 50 * kBlockBytes));
}

TEST_F(DiscBufferTest, BackwardPassReadsAtMost26BlocksInReverseSlotOrder) {
    CountingSource source(1000);
    for (int i = 0; i < 600; ++i) {
        bool eos;
        std::uint8_t scratch[kBlockBytes];
        source.ReadBlock(scratch, &eos);  // position the source at block 600
    }
    source.reads.store(0);
    buffer.SetSource(&source);
    buffer.StartBackwardReader();
    DeckSharedState& s = Engine().decks[0];
    s.backwardWakeEvent.Set();
    ASSERT_TRUE(testsupport::WaitFor([&] { return source.reads.load() == 26; }));
    testsupport::WaitFor([] { return false; }, 50);
    EXPECT_EQ(source.reads.load(), 26);
    // Rewound 26 from 600: blocks 574..599 (values 575..600), placed from
    // slot 25 down to slot 0, so increasing slots go back in time.
    EXPECT_EQ(FirstSample(s.backwardDisc[25].data()), 575);
    EXPECT_EQ(FirstSample(s.backwardDisc[0].data()), 600);
    EXPECT_EQ(s.backwardFilled[26].load(), 0);
    buffer.StopBackwardReader();
    buffer.JoinBackwardReader();  // before the source goes
}

TEST_F(DiscBufferTest, StopWhileReaderIsBlockedSendingToTheDeck) {
    CountingSource source(100000);
    buffer.SetSource(&source);
    buffer.StartForwardReader();
    // Stop at once: the reader is mid-pass, sending per-block messages to
    // the deck window on this thread; the stop must serve them and return.
    buffer.StopForwardReader();
    EXPECT_FALSE(buffer.ForwardReaderExists());
    const int reads = source.reads.load();
    testsupport::WaitFor([] { return false; }, 30);
    EXPECT_EQ(source.reads.load(), reads);
}

TEST(DeckInfoStats, ThresholdsAndBlocksAhead) {
    ResetEngineStateForTest();
    DeckInfoStats stats;
    std::array<std::atomic<std::int32_t>, kForwardDiscBlocks> flags{};
    auto fill = [&](int n) {
        for (int i = 0; i < kForwardDiscBlocks; ++i)
            flags[i].store(i < n ? 1 : 0);
        stats.HandInForwardFlags(flags);
    };
    fill(127);
    EXPECT_TRUE(stats.Low());
    fill(128);
    EXPECT_FALSE(stats.Low());
    fill(84);
    EXPECT_TRUE(stats.VeryLow());
    fill(85);
    EXPECT_FALSE(stats.VeryLow());
    EXPECT_EQ(stats.ForwardVector()[0], 0);
    EXPECT_EQ(stats.ForwardVector()[85], 1);
    EXPECT_EQ(stats.ForwardVector()[86], 0);

    std::atomic<std::int32_t> copy{0};
    stats.SetForwardPositions(118, 3, 10, &copy);
    EXPECT_EQ(stats.BlocksAhead(), 5);
    EXPECT_EQ(copy.load(), 5);
    stats.SetForwardPositions(0, 8, 10, &copy);  // latency - 2
    EXPECT_TRUE(stats.FreshDataLow());
    stats.SetForwardPositions(0, 9, 10, &copy);  // latency - 1
    EXPECT_FALSE(stats.FreshDataLow());
    EXPECT_FALSE(DeckInfoStats::IsFreshDataLow(-1, 10));
}

TEST_F(DiscBufferTest, FreshDataAndBufferLowLedsFollowTheCursors) {
    DeckSharedState& s = Engine().decks[0];
    s.isPlaying.store(1);
    // Fresh data low at latency - 2 ahead, cleared at latency - 1.
    EXPECT_TRUE(buffer.NoteForwardCursors(0, 8 * kBlockBytes));
    EXPECT_TRUE(buffer.GetLeds().freshDataLow);
    EXPECT_EQ(s.freshDataLow.load(), 1);
    EXPECT_TRUE(buffer.NoteForwardCursors(0, 9 * kBlockBytes));
    EXPECT_FALSE(buffer.GetLeds().freshDataLow);
    EXPECT_EQ(s.freshDataLow.load(), 0);
}

TEST_F(DiscBufferTest, LiftingTheNeedlePutsTheFreshDataAndBufferLedsOut) {
    DeckSharedState& s = Engine().decks[0];
    s.isPlaying.store(1);
    ASSERT_TRUE(buffer.NoteForwardCursors(0, 8 * kBlockBytes));
    ASSERT_TRUE(buffer.GetLeds().freshDataLow);
    int changes = 0;
    buffer.SetLedsChanged([&] { ++changes; });
    buffer.LowerReaderPriority();  // the needle is lifted
    EXPECT_FALSE(buffer.GetLeds().freshDataLow);
    EXPECT_FALSE(buffer.GetLeds().discBufferLow);
    EXPECT_FALSE(buffer.GetLeds().discBufferVeryLow);
    EXPECT_EQ(s.freshDataLow.load(), 0);
    EXPECT_EQ(s.discBufferVeryLow.load(), 0);
    EXPECT_EQ(changes, 1);
    // The next drop measures afresh: still low, the LED lights again.
    EXPECT_TRUE(buffer.NoteForwardCursors(0, 8 * kBlockBytes));
    EXPECT_TRUE(buffer.GetLeds().freshDataLow);
}
