// The mixer meters' laws: the lamp bar, the decibel fraction and the
// processor load from the kernel's counters.
#include <gtest/gtest.h>

#include "output/laws/CpuLoad.h"
#include "output/laws/LampBar.h"

TEST(LampBar, FullScaleLightsAllLampsAndQuietNone) {
    EXPECT_NEAR(DecibelBarFraction(96.33), 1.014, 0.001);
    EXPECT_LT(9 * DecibelBarFraction(27.25), 1.0);  // not one lamp
    EXPECT_GT(DecibelBarFraction(27.3), 0.0);
    LampBar bar(9, 0);
    for (int i = 0; i < 5; ++i)
        bar.Update(DecibelBarFraction(96.33));
    EXPECT_EQ(bar.Lit(), 9);
    for (int i = 0; i < 5; ++i)
        bar.Update(DecibelBarFraction(27.25));
    EXPECT_EQ(bar.Lit(), 0);
}

TEST(LampBar, MovesAtMostThreeLampsPerUpdate) {
    LampBar bar(9, 0);
    EXPECT_TRUE(bar.Update(1.0));
    EXPECT_EQ(bar.Lit(), 3);
    bar.Update(1.0);
    EXPECT_EQ(bar.Lit(), 6);
    bar.Update(1.0);
    EXPECT_EQ(bar.Lit(), 9);
    EXPECT_FALSE(bar.Update(1.0));
    bar.Update(0.5);  // target 4
    EXPECT_EQ(bar.Lit(), 6);
    bar.Update(0.5);
    EXPECT_EQ(bar.Lit(), 4);
    // Mode 1: a filled bar with a partly lit end lamp.
    LampBar filled(12, 1);
    filled.Update(0.5 + 0.5 / 12);
    EXPECT_EQ(filled.Lit(), 6);
    EXPECT_NEAR(filled.Partial(), 0.5, 1e-9);
    filled.Update(2.0);
    EXPECT_EQ(filled.Lit(), 12);
    EXPECT_EQ(filled.Partial(), 0.0);
}

TEST(CpuLoad, LoadFromTwoReadingsOfTheCounters) {
    const auto a = CpuLoad::Parse("cpu  100 0 100 800 0 0 0 0 0 0\ncpu0 1 2 3 4\n");
    const auto b = CpuLoad::Parse("cpu  200 0 200 1400 200 0 0 0 0 0\n");
    ASSERT_TRUE(a.valid);
    EXPECT_EQ(a.total, 1000u);
    EXPECT_EQ(a.idle, 800u);
    // Δtotal 1000, Δidle 800: 100 − 80 + 0.5 → 20.
    EXPECT_EQ(CpuLoad::Load(a, b), 20);
    EXPECT_EQ(CpuLoad::Load(CpuLoad::Counters{}, b), 0);  // first reading
    EXPECT_FALSE(CpuLoad::Parse("intr 1 2 3").valid);
    EXPECT_EQ(CpuLoad::Load(b, b), 0);  // no time passed

    CpuLoad missing("/nonexistent/stat");
    EXPECT_EQ(missing.Read(), 0);
    EXPECT_EQ(missing.Read(), 0);
    CpuLoad real;
    real.Read();
    const int load = real.Read();
    EXPECT_GE(load, 0);
    EXPECT_LE(load, 100);
}
