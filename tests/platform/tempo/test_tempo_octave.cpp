// Which octave of a tracked tempo is shown: the range folds, and strong
// half-way attacks double a tempo whose double stays in range.
#include <gtest/gtest.h>

#include "platform/tempo/TempoOctave.h"

using tempo::ChooseOctave;

TEST(TempoOctave, HalfWayAttacksDoubleOnlyWithinTheRange) {
    // A drum-and-bass track tracked on its kicks: the snares between count.
    EXPECT_DOUBLE_EQ(ChooseOctave(87.0, 0.95), 174.0);
    // A half-time groove with only a hi-hat between its beats stays.
    EXPECT_DOUBLE_EQ(ChooseOctave(87.0, 0.3), 87.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(87.0, tempo::kHalfBeatRatio), 174.0);
    // 120 BPM with strong eighths: 240 is out of range, 120 stays.
    EXPECT_DOUBLE_EQ(ChooseOctave(120.0, 1.0), 120.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(99.9, 1.0), 199.8);
    EXPECT_DOUBLE_EQ(ChooseOctave(100.0, 1.0), 100.0);
}

TEST(TempoOctave, OutOfRangeTempoIsFoldedByOctaves) {
    EXPECT_DOUBLE_EQ(ChooseOctave(43.5, 0.0), 87.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(30.0, 0.0), 120.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(348.0, 0.0), 174.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(200.0, 0.0), 100.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(70.0, 0.0), 70.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(0.0, 1.0), 0.0);
    EXPECT_DOUBLE_EQ(ChooseOctave(-5.0, 1.0), 0.0);
}
