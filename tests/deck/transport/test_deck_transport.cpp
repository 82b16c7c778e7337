// The deck's engine side without a window: the cursors the mix cycle reports
// become elapsed time and blocks ahead, the end-of-track countdown, the
// reverse flag and FillBlock's three answers.
#include <gtest/gtest.h>

#include <cstring>

#include "core/EngineState.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/disc/DeckInfoStats.h"
#include "deck/transport/DeckTransport.h"

namespace {

constexpr int kDeck = 0;

// Byte offset of output slot `block` in the 120-block rings.
int At(int block) {
    return block * kBlockBytes;
}

class DeckTransportTest : public ::testing::Test {
  protected:
    // The engine record is renewed before the transport binds to it.
    struct FreshEngine {
        FreshEngine() { ResetEngineStateForTest(); }
        ~FreshEngine() { ResetEngineStateForTest(); }
    } freshEngine;
    DeckInfoStats stats;
    DeckTransport transport{kDeck, stats};
    int underruns = 0;
    int endsHeard = 0;

    void SetUp() override {
        transport.SetStreamRate([] { return 44100; });
        transport.SetUnderrunHandler([this] { ++underruns; });
        transport.SetEndHeardHandler([this] { ++endsHeard; });
    }
};

}  // namespace

TEST_F(DeckTransportTest, CursorNotesBecomeElapsedTimeAndBlocksAhead) {
    // The first note only marks where counting starts.
    transport.NoteForwardCursors(At(0), At(10));
    EXPECT_EQ(transport.ElapsedSeconds(), 0.0);
    EXPECT_EQ(transport.BlocksAhead(), 10);
    EXPECT_EQ(Engine().decks[kDeck].blocksAheadCopy.load(), 10);

    // Five blocks played: 5 x 4704 bytes at 176400 bytes a second.
    transport.NoteForwardCursors(At(5), At(17));
    EXPECT_DOUBLE_EQ(transport.ElapsedSeconds(), 5.0 * kBlockBytes / kBytesPerSecond);
    EXPECT_EQ(transport.BlocksAhead(), 12);

    // Across the end of the ring: 117 blocks more.
    transport.NoteForwardCursors(At(2), At(1));
    EXPECT_DOUBLE_EQ(transport.ElapsedSeconds(), 122.0 * kBlockBytes / kBytesPerSecond);
    EXPECT_EQ(transport.BlocksAhead(), 119);

    // A restarted count skips the next note; a set time is counted on from.
    transport.SetElapsedSeconds(10.0);
    transport.RestartElapsedCount();
    transport.NoteForwardCursors(At(50), At(60));
    EXPECT_DOUBLE_EQ(transport.ElapsedSeconds(), 10.0);

    // At another stream rate the same bytes are less time.
    transport.SetStreamRate([] { return 88200; });
    transport.NoteForwardCursors(At(60), At(70));
    EXPECT_DOUBLE_EQ(transport.ElapsedSeconds(), 10.0 + 10.0 * kBlockBytes / (88200.0 * 4));

    // Playing backwards does not count forward time.
    transport.SetReverse(true);
    transport.NoteForwardCursors(At(80), At(90));
    EXPECT_DOUBLE_EQ(transport.ElapsedSeconds(), 10.0 + 10.0 * kBlockBytes / (88200.0 * 4));
    EXPECT_EQ(underruns, 0);
    EXPECT_EQ(endsHeard, 0);
}

TEST_F(DeckTransportTest, FillBlockAnswersDeliveredNoBlockOrNotTurning) {
    std::uint8_t block[kBlockBytes];
    std::memset(block, 0x55, sizeof block);
    EXPECT_FALSE(transport.IsTurning());
    EXPECT_EQ(transport.FillBlock(0, block), 2);
    EXPECT_EQ(block[0], 0x55);  // nothing written

    transport.Disc().SetRunning(true);
    EXPECT_TRUE(transport.IsTurning());
    EXPECT_EQ(transport.FillBlock(3, block), 1);
    EXPECT_EQ(block[0], 0x55);

    DeckSharedState& shared = Engine().decks[kDeck];
    std::memset(shared.forwardDisc[0].data(), 0x21, kBlockBytes);
    shared.forwardFilled[0].store(1);
    EXPECT_EQ(transport.FillBlock(4, block), 0);
    EXPECT_EQ(block[0], 0x21);
    EXPECT_EQ(block[kBlockBytes - 1], 0x21);
    EXPECT_EQ(shared.forwardFilled[0].load(), 0);  // the slot went back to the reader

    // The slot that found no block is heard: an underrun stops the deck.
    transport.NoteForwardCursors(At(2), At(10));
    EXPECT_EQ(underruns, 0);
    transport.NoteForwardCursors(At(3), At(10));
    EXPECT_EQ(underruns, 1);
    transport.Disc().SetRunning(false);
}

TEST_F(DeckTransportTest, EndOfTrackIsHeardWhenTheCountdownRunsOut) {
    // Six blocks written ahead and four waiting in the disc buffer.
    transport.NoteForwardCursors(At(0), At(6));
    DeckSharedState& shared = Engine().decks[kDeck];
    for (int i = 0; i < 4; ++i)
        shared.forwardFilled[i].store(1);
    stats.HandInForwardFlags(shared.forwardFilled);

    transport.BlockFallsDue();  // nothing pending: nothing counted
    EXPECT_FALSE(transport.EndOfTrackPending());
    ASSERT_TRUE(transport.BeginEndOfTrack());
    EXPECT_TRUE(transport.EndOfTrackPending());
    EXPECT_EQ(transport.BlocksUntilTrackEnd(), 10);
    EXPECT_FALSE(transport.BeginEndOfTrack());  // one countdown at a time
    EXPECT_EQ(transport.BlocksUntilTrackEnd(), 10);

    for (int i = 0; i < 9; ++i)
        transport.BlockFallsDue();
    EXPECT_EQ(transport.BlocksUntilTrackEnd(), 1);
    transport.NoteForwardCursors(At(1), At(7));
    EXPECT_EQ(endsHeard, 0);
    transport.BlockFallsDue();
    transport.NoteForwardCursors(At(2), At(8));
    EXPECT_EQ(endsHeard, 1);

    // While the end is pending, the heard time is the whole track less what
    // is still to be heard; cancelled, the countdown stops.
    EXPECT_DOUBLE_EQ(transport.FollowForwardPlay(3.0, 120.0), 120.0);
    transport.CancelEndOfTrack();
    EXPECT_FALSE(transport.EndOfTrackPending());
    transport.BlockFallsDue();
    EXPECT_EQ(transport.BlocksUntilTrackEnd(), 0);
    transport.NoteForwardCursors(At(3), At(9));
    EXPECT_EQ(endsHeard, 1);
}

TEST_F(DeckTransportTest, ReverseFlagFollowsTheUserAndReachesTheDiscBuffer) {
    EXPECT_FALSE(transport.IsReverse());
    transport.SetReverse(true);
    EXPECT_TRUE(transport.IsReverse());
    EXPECT_TRUE(transport.Disc().Reverse());

    // Reverse FillBlock reads the backward ring.
    std::uint8_t block[kBlockBytes];
    transport.Disc().SetRunning(true);
    DeckSharedState& shared = Engine().decks[kDeck];
    EXPECT_EQ(transport.FillBlock(0, block), 1);
    std::memset(shared.backwardDisc[0].data(), 0x42, kBlockBytes);
    shared.backwardFilled[0].store(1);
    EXPECT_EQ(transport.FillBlock(0, block), 0);
    EXPECT_EQ(block[0], 0x42);
    transport.Disc().SetRunning(false);

    // Forward play resumes opposite the reverse play slot.
    transport.NoteCursors(At(10), At(20));
    EXPECT_EQ(stats.ReversePlaySlot(), 10);
    EXPECT_EQ(transport.ForwardResumeBlocks(), 109);

    transport.SetReverse(false);
    EXPECT_FALSE(transport.IsReverse());
    EXPECT_FALSE(transport.Disc().Reverse());
}

TEST_F(DeckTransportTest, PrimedAndNominalRate) {
    EXPECT_FALSE(transport.Primed());
    transport.OnPrimed();
    EXPECT_TRUE(transport.Primed());
    EXPECT_DOUBLE_EQ(transport.NominalRate(), 44100.0);
    transport.SetNominalRate([] { return 46305.0; });
    EXPECT_DOUBLE_EQ(transport.NominalRate(), 46305.0);
    EXPECT_FALSE(transport.HoldsLoop());
}
