// The deck's time display, wind and heard-position arithmetic.
#include <gtest/gtest.h>

#include "deck/transport/TrackTime.h"

using namespace tracktime;

TEST(TrackTime, DisplayModesAndFormat) {
    const std::vector<double> lengths = {100.0, 185.7, 60.0};
    EXPECT_EQ(FormatHms(DisplayedSeconds(kRemainingInTrack, 0.5, lengths, 1)), "00:01:33");
    EXPECT_EQ(DisplayedSeconds(kElapsedInTrack, 0.5, lengths, 1), 92);
    EXPECT_EQ(DisplayedSeconds(kElapsedInList, 0.5, lengths, 1), 192);
    EXPECT_EQ(DisplayedSeconds(kRemainingInList, 0.5, lengths, 1), 345 - 192 + 0);
    EXPECT_EQ(FormatHms(3 * 3600 + 4 * 60 + 5), "03:04:05");
    EXPECT_EQ(NextMode(kElapsedInTrack), kRemainingInTrack);
    EXPECT_EQ(NextMode(kRemainingInList), kElapsedInTrack);
    EXPECT_EQ(NextMode("garbage"), kElapsedInTrack);
}

TEST(TrackTime, WindAndHeardPosition) {
    double slide = 0.0;
    for (int tick = 0; tick < 10; ++tick)
        slide += WindStep(100.0);  // one second held
    EXPECT_NEAR(slide, 0.1, 1e-12);
    // 75 blocks at 44100 Hz are exactly two seconds.
    EXPECT_DOUBLE_EQ(HeardSeconds(10.0, 75, 44100), 8.0);
    EXPECT_EQ(ReconcileElapsed(20.0, 23.9), 20.0);
    EXPECT_EQ(ReconcileElapsed(20.0, 24.1), 24.1);
    EXPECT_EQ(ReconcileElapsed(20.0, 15.9), 15.9);
}
