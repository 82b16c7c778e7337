// The band-level history behind the 3D plot: scrolling, clearing,
// normalising and the two ways of putting the decks on one surface.
#include <gtest/gtest.h>

#include <vector>

#include "dsp/SpectrumHistory.h"

using dsp::SpectrumHistory;

namespace {

std::vector<double> Levels(int n, double v) {
    return std::vector<double>(static_cast<size_t>(n), v);
}

}  // namespace

TEST(SpectrumHistory, TheEightyFirstRowPushesTheFirstOut) {
    SpectrumHistory h;
    h.SetMaximum(0, 80.0);
    for (int r = 1; r <= 80; ++r)
        h.AddRow(0, Levels(6, r));  // row r normalises to r / 80
    EXPECT_DOUBLE_EQ(h.At(0, 0, 0), 1.0);
    EXPECT_DOUBLE_EQ(h.At(0, 79, 5), 1.0 / 80) << "the first row is the oldest";
    h.AddRow(0, Levels(6, 0.0));
    EXPECT_DOUBLE_EQ(h.At(0, 79, 5), 2.0 / 80) << "the first row is gone";
    EXPECT_DOUBLE_EQ(h.At(0, 1, 0), 1.0);
    EXPECT_DOUBLE_EQ(h.At(0, 0, 0), 0.0);
}

TEST(SpectrumHistory, ALevelAtTheMaximumIsOneAndTheRangeNormalises) {
    SpectrumHistory h;
    EXPECT_DOUBLE_EQ(h.Maximum(1), 280000.0);
    EXPECT_DOUBLE_EQ(h.Minimum(1), 0.0);
    h.AddRow(1, std::vector<double>{280000.0, 140000.0, 0.0});
    EXPECT_EQ(h.Bands(1), 3);
    EXPECT_DOUBLE_EQ(h.At(1, 0, 0), 1.0);
    EXPECT_DOUBLE_EQ(h.At(1, 0, 1), 0.5);
    EXPECT_DOUBLE_EQ(h.At(1, 0, 2), 0.0);
    h.SetMinimum(1, 40000.0);
    h.SetMaximum(1, 90000.0);
    h.AddRow(1, std::vector<double>{90000.0, 65000.0, 40000.0});
    EXPECT_DOUBLE_EQ(h.At(1, 0, 0), 1.0);
    EXPECT_DOUBLE_EQ(h.At(1, 0, 1), 0.5);
    EXPECT_DOUBLE_EQ(h.At(1, 0, 2), 0.0);
    // A closed range draws zeros rather than dividing by zero.
    h.SetMinimum(1, 90000.0);
    h.AddRow(1, std::vector<double>{90000.0, 1.0, 2.0});
    EXPECT_DOUBLE_EQ(h.At(1, 0, 0), 0.0);
}

TEST(SpectrumHistory, TwelveAndSixBandsJoinedAndSideBySide) {
    SpectrumHistory h;
    h.SetMaximum(0, 1.0);
    h.SetMaximum(1, 1.0);
    std::vector<double> a(12), b(6);
    for (int i = 0; i < 12; ++i)
        a[i] = 0.05 * (i + 1);
    for (int i = 0; i < 6; ++i)
        b[i] = 0.9;
    for (int r = 0; r < 3; ++r) {
        h.AddRow(0, a);
        h.AddRow(1, b);
    }
    // Joined: 12 columns, the first 6 the means, the next 6 deck A alone.
    ASSERT_EQ(h.Columns(false), 12);
    auto joined = h.Surface(false);
    ASSERT_EQ(joined.size(), 12u * 80u);
    for (int row : {0, 2}) {
        for (int c = 0; c < 6; ++c)
            EXPECT_DOUBLE_EQ(joined[row * 12 + c], (a[c] + 0.9) * 0.5) << row << " " << c;
        for (int c = 6; c < 12; ++c)
            EXPECT_DOUBLE_EQ(joined[row * 12 + c], a[c]) << row << " " << c;
    }
    EXPECT_DOUBLE_EQ(joined[3 * 12 + 0], 0.0) << "rows not yet filled stay flat";

    // Side by side: 18 columns, deck A's 12 then deck B's 6.
    ASSERT_EQ(h.Columns(true), 18);
    auto sides = h.Surface(true);
    ASSERT_EQ(sides.size(), 18u * 80u);
    for (int c = 0; c < 12; ++c)
        EXPECT_DOUBLE_EQ(sides[18 + c], a[c]);
    for (int c = 12; c < 18; ++c)
        EXPECT_DOUBLE_EQ(sides[18 + c], 0.9);
}

TEST(SpectrumHistory, AClearedDeckIsFlatAndTheOtherKeepsItsRows) {
    SpectrumHistory h;
    for (int r = 0; r < 90; ++r) {
        h.AddRow(0, Levels(6, 200000.0));
        h.AddRow(1, Levels(6, 100000.0));
    }
    h.ClearDeck(0);
    auto sides = h.Surface(true);
    for (int t = 0; t < SpectrumHistory::kRows; ++t) {
        for (int c = 0; c < 6; ++c)
            ASSERT_EQ(sides[t * 12 + c], 0.0) << t << " " << c;
        ASSERT_NEAR(sides[t * 12 + 6], 100000.0 / 280000.0, 1e-12);
    }
}
