// The platter's arithmetic and the hand-over of the output rings when the
// deck's direction turns.
#include <gtest/gtest.h>

#include <cmath>

#include "deck/transport/RingTimeline.h"
#include "deck/turntable/TurntableLaw.h"

using namespace turntable;

TEST(TurntableLaw, ALoopFromAReleasePastTheTopToThePlayAngle) {
    // Grabbed at play angle 0.1, shift-released at 0.999: 0.101 of a turn.
    EXPECT_EQ(LoopBytes(0.1, 0.999), 57012);
    EXPECT_EQ(57012 % 4, 0);
    // Odd products are cut to whole frames.
    EXPECT_EQ(LoopBytes(0.5, 0.25) % 4, 0);
    EXPECT_EQ(LoopBytes(0.3, 0.3), 0);
    EXPECT_EQ(ScratchOffset(0.999), 563915 / 4 * 4);
}

TEST(TurntableLaw, ADragTakesTheShorterWayRound) {
    EXPECT_NEAR(DragDelta(0.98, 0.02), 0.04, 1e-12);
    EXPECT_NEAR(DragDelta(0.02, 0.98), -0.04, 1e-12);
    EXPECT_NEAR(DragDelta(0.2, 0.3), 0.1, 1e-12);
    EXPECT_EQ(DragDelta(0.4, 0.4), 0.0);
}

TEST(TurntableLaw, ThePlatterSpinsWithTheDiscBuffersFill) {
    EXPECT_EQ(SpinStep(0.3, 0), 0.3);
    const double full = SpinStep(0.0, 170);
    EXPECT_NEAR(full, 0.05 / 3.2, 1e-12);
    EXPECT_NEAR(SpinStep(0.0, 85), full / 2, 1e-12);
    // 64 steps of 50 ms at full fill are one turn: back where it started.
    double a = 0.25;
    for (int i = 0; i < 64; ++i)
        a = SpinStep(a, 170);
    EXPECT_NEAR(a, 0.25, 1e-9);
    EXPECT_LT(SpinStep(0.999, 170), 1.0);
}

TEST(TurntableLaw, AnglesBlocksAndBytes) {
    EXPECT_EQ(AngleInBlocks(0.0), 0);
    EXPECT_EQ(AngleInBlocks(0.5), 60);
    EXPECT_EQ(AngleInBlocks(0.9999), 119);
    EXPECT_EQ(ReverseAngleInBlocks(0.5), 60);
    EXPECT_EQ(ReverseAngleInBlocks(0.0), 120);
    EXPECT_DOUBLE_EQ(AngleOfCursor(564480 / 4), 0.25);
    EXPECT_EQ(BlocksAhead(118 * 4704, 3 * 4704 + 100), 5);
    EXPECT_EQ(BlocksAhead(10 * 4704 + 4703, 10 * 4704), 0);
    EXPECT_EQ(BytesPlayed(0.75, 0.25), 282240);  // across the top
    EXPECT_EQ(BytesPlayed(0.25, 0.5), 141120);
    EXPECT_EQ(Wrap(1.25), 0.25);
    EXPECT_EQ(Wrap(-0.25), 0.75);
    EXPECT_EQ(Wrap(std::nan("")), 0.0);
}

TEST(RingTimeline, WritingContinuesAtTheOtherEndOfTheStretch) {
    // Forwards with a full ring: the stretch ends at slot 39 (write slot 40);
    // backwards, writing goes on just below its earliest block, slot 40, that
    // is at slot 39 again. Back to forwards: just above the newest.
    EXPECT_EQ(ringtimeline::TurnedWriteSlot(40, 120, true), 39);
    EXPECT_EQ(ringtimeline::TurnedWriteSlot(39, 120, false), 40);
    // Ten blocks since the rings were built: the stretch is slots 30..39 and
    // reverse writing starts at 29, past the silence of the rest.
    EXPECT_EQ(ringtimeline::TurnedWriteSlot(40, 10, true), 29);
    EXPECT_EQ(ringtimeline::TurnedWriteSlot(29, 10, false), 40);
    EXPECT_EQ(ringtimeline::TurnedWriteSlot(5, 10, true), 114);
    EXPECT_EQ(ringtimeline::MirrorSlot(0), 119);
    EXPECT_EQ(ringtimeline::MirrorSlot(119), 0);

    // Head at frame 1,000,000 with 170 blocks read ahead and a full ring:
    // the earliest block heard starts 290 blocks back.
    EXPECT_EQ(ringtimeline::EarliestFrame(1000000, 170, 120), 1000000 - 290 * 1176);
    EXPECT_EQ(ringtimeline::ResumeFrame(500000, 120), 500000 + 120 * 1176);
    // Before the track's start the stretch was silence: resume at 0 at least.
    EXPECT_EQ(ringtimeline::ResumeFrame(-200000, 120), 0);
}
