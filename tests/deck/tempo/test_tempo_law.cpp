// Tempo arithmetic: output frequencies and the display text.
#include <gtest/gtest.h>

#include "deck/tempo/TempoLaw.h"

TEST(TempoLaw, OutputFrequenciesAtCdAndFileRates) {
    using tempo::OutputFrequency;
    using tempo::TotalPercent;
    EXPECT_EQ(OutputFrequency(44100, 0), 44100);
    EXPECT_EQ(OutputFrequency(44100, 1), 44540);
    EXPECT_EQ(OutputFrequency(44100, -1), 43659);
    EXPECT_EQ(OutputFrequency(44100, 8), 47627);
    EXPECT_EQ(OutputFrequency(44100, -8), 40572);
    EXPECT_EQ(OutputFrequency(44100, TotalPercent(8, 1, 0)), 49391);  // both slides at maximum
    EXPECT_EQ(OutputFrequency(44100, TotalPercent(-8, -1, -100)), 11025);
    EXPECT_EQ(OutputFrequency(44100, TotalPercent(8, 1, 100)), 77174);
    EXPECT_EQ(OutputFrequency(48000, 5), 50399);
    EXPECT_EQ(TotalPercent(8, 0, 20), 28);
    EXPECT_EQ(TotalPercent(8, 0, 80), 75);
    EXPECT_DOUBLE_EQ(tempo::NominalRate(1, 0.5), 3 * 441.0 + 44100);
}

TEST(TempoLaw, DisplayText) {
    EXPECT_EQ(tempo::DisplayText(2.349, 0, 0), "2.3%");
    EXPECT_EQ(tempo::DisplayText(2.0, 0, 0), "2.0%");
    EXPECT_EQ(tempo::DisplayText(-3.5, 0, 0), "-3.5%");
    EXPECT_EQ(tempo::DisplayText(-0.04, 0, 0), "0.0%");
    EXPECT_EQ(tempo::DisplayText(0, 0, 0), "0.0%");
    EXPECT_EQ(tempo::DisplayText(8, 1, 80), "75.0%");
}
