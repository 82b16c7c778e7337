// The tempo a deck is heard at, and the read-out's text.
#include <gtest/gtest.h>

#include "output/laws/HeardTempo.h"

TEST(HeardTempo, TrackTempoTimesPlaybackRate) {
    // +8 % on a 44100 Hz track: F = trunc(44100 x 8 x 0.01 + 44100) = 47628.
    EXPECT_EQ(TempoReadout(HeardTempo(120.0, 47628, 44100)), "129.6 BPM");
    EXPECT_EQ(TempoReadout(HeardTempo(128.0, 44100, 44100)), "128.0 BPM");
    // A 48000 Hz track at its own speed.
    EXPECT_DOUBLE_EQ(HeardTempo(174.0, 48000, 48000), 174.0);
    // -8 % at 48000 Hz: 44160 Hz.
    EXPECT_NEAR(HeardTempo(100.0, 44160, 48000), 92.0, 1e-9);
    // A missing rate counts as 44100 Hz.
    EXPECT_DOUBLE_EQ(HeardTempo(120.0, 0, 0), 120.0);
}

TEST(HeardTempo, UnknownTempoReadsDashes) {
    EXPECT_EQ(HeardTempo(0.0, 47628, 44100), 0.0);
    EXPECT_EQ(TempoReadout(0.0), "--- BPM");
    EXPECT_EQ(TempoReadout(-1.0), "--- BPM");
    EXPECT_EQ(TempoReadout(87.46), "87.5 BPM");
}
