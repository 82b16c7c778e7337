// Where the device equalizer's bands sit and what a band level means.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/sound/effects/DeviceEqualizerLayout.h"

namespace {

using namespace sound::fx;

TEST(DeviceEqualizerLayout, ThreeBandsByDefault) {
    EXPECT_DOUBLE_EQ(DeviceEqBandCentre(3, 0), 80.0);
    EXPECT_NEAR(DeviceEqBandCentre(3, 1), 1024.0, 1e-9);
    EXPECT_NEAR(DeviceEqBandCentre(3, 2), 13107.2, 1e-9);
    EXPECT_DOUBLE_EQ(DeviceEqBandwidth(3), 12.0);
}

TEST(DeviceEqualizerLayout, TwelveBandsClimbByOnePointSixAndStopAt16000) {
    EXPECT_DOUBLE_EQ(DeviceEqBandCentre(12, 0), 80.0);
    EXPECT_NEAR(DeviceEqBandCentre(12, 1), 128.0, 1e-9);
    EXPECT_NEAR(DeviceEqBandCentre(12, 2), 204.8, 1e-9);
    for (int k = 0; k < 12; ++k) {
        const double free = 80.0 * std::pow(1.6, k);
        EXPECT_NEAR(DeviceEqBandCentre(12, k), std::min(free, 16000.0), 1e-6) << k;
    }
    EXPECT_DOUBLE_EQ(DeviceEqBandwidth(12), 3.0);
    // Five bands climb by 0.8 * 2^2.4: the fifth (25395 Hz) is held at 16000.
    EXPECT_NEAR(DeviceEqBandCentre(5, 3), 80.0 * std::pow(0.8 * std::pow(2.0, 2.4), 3), 1e-6);
    EXPECT_DOUBLE_EQ(DeviceEqBandCentre(5, 4), 16000.0);
}

TEST(DeviceEqualizerLayout, LevelHalfIsFlat) {
    EXPECT_DOUBLE_EQ(DeviceEqGainDb(0.5), 0.0);
    EXPECT_DOUBLE_EQ(DeviceEqGainDb(0.0), -15.0);
    EXPECT_DOUBLE_EQ(DeviceEqGainDb(1.0), 15.0);
}

}  // namespace
