// The framing arithmetic of the phase vocoder window: the periodic Hann
// window, where the overlap picture's windows start, and how a window is
// placed on a picture with its outside points dropped.
#include <gtest/gtest.h>

#include <vector>

#include "dsp/AnalysisFraming.h"

namespace fr = dsp::framing;

TEST(AnalysisFraming, TheFixedNumbersFollowFromTheOrder) {
    EXPECT_EQ(fr::kFrameLength, 1024);
    EXPECT_EQ(fr::FrameLength(9), 512);
    EXPECT_EQ(fr::kBins, 513);
    EXPECT_EQ(fr::kHop * 4, fr::kFrameLength);
    EXPECT_EQ(fr::kBlockLength, 1176);
    EXPECT_EQ(fr::kPictureLength, 2048);
    EXPECT_EQ(fr::OverlapStart(1), -1024);
    EXPECT_EQ(fr::OverlapStart(5), 0);
    EXPECT_EQ(fr::OverlapStart(9), 1024);
    EXPECT_EQ(fr::OverlapStart(13), 2048);
    EXPECT_EQ(fr::OverlapStart(15), 2560);
}

TEST(AnalysisFraming, ThePeriodicHannWindowStartsAtZeroPeaksAtHalfAndIsSymmetric) {
    const std::vector<double> w = fr::PeriodicHann(1024);
    ASSERT_EQ(w.size(), 1024u);
    EXPECT_EQ(w[0], 0.0);
    EXPECT_DOUBLE_EQ(w[512], 1.0);
    EXPECT_NEAR(w[256], 0.5, 1e-15);
    // Periodic, not symmetric about its last point: w[j] = w[N - j].
    for (int j = 1; j < 1024; ++j)
        ASSERT_NEAR(w[std::size_t(j)], w[std::size_t(1024 - j)], 1e-15) << j;
    EXPECT_GT(w[1023], 0.0);
    EXPECT_TRUE(fr::PeriodicHann(0).empty());
    EXPECT_TRUE(fr::PeriodicHann(-3).empty());

    // Applied to a signal, it scales each sample.
    std::vector<double> x(8, 3.0);
    fr::ApplyPeriodicHann(x);
    EXPECT_EQ(x[0], 0.0);
    EXPECT_DOUBLE_EQ(x[4], 3.0);
    EXPECT_NEAR(x[2], 1.5, 1e-15);
}

TEST(AnalysisFraming, FourWindowsAQuarterFrameApartAddUpToTwo) {
    for (int n : {8, 64, 1024}) {
        const std::vector<double> w = fr::PeriodicHann(n);
        for (int j = 0; j < n / 4; ++j) {
            double sum = 0.0;
            for (int q = 0; q < 4; ++q)
                sum += w[std::size_t(j + q * n / 4)];
            ASSERT_NEAR(sum, 2.0, 1e-12) << "n " << n << " j " << j;
        }
    }
}

TEST(AnalysisFraming, PlacingAWindowClearsThePictureAndDropsWhatFallsOutside) {
    const std::vector<double> w = {1, 2, 3, 4};
    std::vector<double> picture(6, 9.0);
    fr::PlaceWindow(w, -2, picture);
    EXPECT_EQ(picture, (std::vector<double>{3, 4, 0, 0, 0, 0}));
    fr::PlaceWindow(w, 4, picture);
    EXPECT_EQ(picture, (std::vector<double>{0, 0, 0, 0, 1, 2}));
    fr::PlaceWindow(w, 1, picture);
    EXPECT_EQ(picture, (std::vector<double>{0, 1, 2, 3, 4, 0}));
    // Wholly before or after: all zero.
    for (int start : {-4, -100, 6, 1 << 30}) {
        fr::PlaceWindow(w, start, picture);
        EXPECT_EQ(picture, std::vector<double>(6, 0.0)) << start;
    }
    // A window longer than the picture covers it.
    fr::PlaceWindow(std::vector<double>(10, 1.0), -2, picture);
    EXPECT_EQ(picture, std::vector<double>(6, 1.0));
}
