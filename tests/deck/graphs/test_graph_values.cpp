// GraphValues on a measured block: the bars spread over fixed columns keep
// each band's value in its share of the columns, and a scope trace sums only
// the groups its mask lets through.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "deck/graphs/GraphValues.h"

namespace {

// One block of two tones (120 Hz and 5 kHz) on both channels, measured in slot 0.
void Measure(dsp::DeckAnalysis& a, int bands) {
    a.SetBandsInPlot(bands);
    std::vector<float> block(1176);
    for (int pass = 0; pass < 4; ++pass) {
        for (size_t i = 0; i < block.size(); ++i) {
            const double t = static_cast<double>(pass * block.size() + i) / 44100.0;
            block[i] = static_cast<float>(8000.0 * std::sin(2 * std::numbers::pi * 120 * t) +
                                          8000.0 * std::sin(2 * std::numbers::pi * 5000 * t));
        }
        a.AnalyzeBands(0, block, block);
    }
    a.UpdateCurrent(0);
}

}  // namespace

TEST(GraphValues, SpreadBarsGiveEachBandItsShareOfTheColumns) {
    dsp::DeckAnalysis a;
    Measure(a, 3);
    const auto values = a.CurrentValues();
    std::vector<double> out(25, -1.0);
    graph_values::SpreadBars(a, -1, out);
    EXPECT_EQ(out[0], 0.0);
    for (int c = 1; c <= 24; ++c)
        EXPECT_DOUBLE_EQ(out[c], values[1 + (c - 1) / 8]) << "column " << c;
    EXPECT_GT(out[1], 0.0);

    // Fewer columns than bands: the columns sample the bands in order.
    Measure(a, 12);
    std::vector<double> four(5);
    graph_values::SpreadBars(a, 1, four);
    const auto right = a.ChannelValues(1);
    for (int c = 1; c <= 4; ++c)
        EXPECT_DOUBLE_EQ(four[c], right[1 + (c - 1) * 3]);

    std::vector<double> bars(30);
    EXPECT_EQ(graph_values::Bars(a, -1, bars), 13u);
}

TEST(GraphValues, ScopeTraceSumsTheGroupsTheMaskLetsThrough) {
    dsp::DeckAnalysis a;
    Measure(a, 3);  // 3 groups of one band
    const auto& s = a.At(0);
    std::array<double, dsp::DeckAnalysis::kPoints> all{}, low{}, loud{};
    graph_values::ScopeTrace(s, 0, 0, 3, ~0u, 1.0, false, all);
    graph_values::ScopeTrace(s, 0, 0, 3, 0b001u, 1.0, false, low);
    graph_values::ScopeTrace(s, -1, 0, 1, ~0u, 2.0, false, loud);
    double energy = 0.0;
    for (int j = 0; j < dsp::DeckAnalysis::kPoints; ++j) {
        const auto& t = s.channels[0].traces;
        EXPECT_DOUBLE_EQ(all[j], t[0][j] + t[1][j] + t[2][j]);
        EXPECT_DOUBLE_EQ(low[j], t[0][j]);
        // Both channels carry the same block: their mean is either one.
        EXPECT_DOUBLE_EQ(loud[j], 2.0 * t[0][j]);
        energy += std::abs(all[j]);
    }
    EXPECT_GT(energy, 1000.0);
}

TEST(GraphValues, IntegerGraphValuesDrawWholeNumbersEvenWhereChannelsAreAveraged) {
    dsp::DeckAnalysis::Slot s;
    for (int j = 0; j < dsp::DeckAnalysis::kPoints; ++j) {
        s.channels[0].traces[0][j] = j;  // odd sums: their mean has a half
        s.channels[1].traces[0][j] = j + 1;
    }
    std::array<double, dsp::DeckAnalysis::kPoints> floats{}, ints{}, gained{};
    graph_values::ScopeTrace(s, -1, 0, 1, ~0u, 1.0, false, floats);
    graph_values::ScopeTrace(s, -1, 0, 1, ~0u, 1.0, true, ints);
    graph_values::ScopeTrace(s, 0, 0, 1, ~0u, 0.3, true, gained);
    for (int j = 0; j < dsp::DeckAnalysis::kPoints; ++j) {
        EXPECT_DOUBLE_EQ(floats[j], j + 0.5);
        EXPECT_DOUBLE_EQ(ints[j], j);
        EXPECT_DOUBLE_EQ(gained[j], std::trunc(0.3 * j));
    }
}
