// The equalizer window's drawing laws (band colours, the device staircase)
// and the four engines kept identical by StereoEqualizer.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "dsp/eq/StereoEqualizer.h"
#include "dsp/window/CRynEqualizerLaws.h"

using eq_window::BandColour;
using eq_window::DeviceStaircase;

TEST(EqualizerLaws, BandColoursRunFromRedThroughGreenWithBlueRising) {
    EXPECT_EQ(BandColour(0, 12), QColor(255, 0, 0));
    EXPECT_EQ(BandColour(6, 12), QColor(0, 255, 127));
    // t = 2·3/12 − 1 = −0.5: red 63.75, green 191.25, blue 63.75, truncated.
    EXPECT_EQ(BandColour(3, 12), QColor(63, 191, 63));
    EXPECT_EQ(BandColour(11, 12), QColor(177, 77, 233));
    EXPECT_EQ(BandColour(1, 2), QColor(0, 255, 127));
}

TEST(EqualizerLaws, TheDeviceStaircaseHoldsEachLevelOverItsShareOfThePlot) {
    const std::array<float, 12> levels{0.5f, 1.0f, 0.0f, 0.25f};
    const auto three = DeviceStaircase(levels, 3);
    EXPECT_DOUBLE_EQ(three[0], 0.5 * 192.66);  // the default level on the 0 dB line
    EXPECT_DOUBLE_EQ(three[49], 0.5 * 192.66);
    EXPECT_DOUBLE_EQ(three[50], 1.0 * 192.66);
    EXPECT_DOUBLE_EQ(three[149], 0.0);
    // 150 / 4 = 37 points a band; the last band takes the remainder.
    const auto four = DeviceStaircase(levels, 4);
    EXPECT_DOUBLE_EQ(four[36], 0.5 * 192.66);
    EXPECT_DOUBLE_EQ(four[37], 192.66);
    EXPECT_DOUBLE_EQ(four[148], 0.25 * 192.66);
    EXPECT_DOUBLE_EQ(four[149], 0.25 * 192.66);
}

TEST(StereoEqualizer, AllFourEnginesTakeEverySettingAndEachPairFilters) {
    dsp::StereoEqualizer eq;
    eq.SetWindowType("Blackman");
    eq.SetNumberOfBands(6);
    eq.SetTapCount(2, 77);
    eq.SetCutoffByPlotIndex(3, 0, 60);
    eq.SetLevel(4, 0.25f);
    const dsp::EqualizerEngine16* ints[] = {&eq.Left16(), &eq.Right16()};
    const dsp::EqualizerEngineFloat* floats[] = {&eq.LeftFloat(), &eq.RightFloat()};
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ints[i]->BandCount(), 6);
        EXPECT_EQ(floats[i]->TapCount(2), 77);
        EXPECT_EQ(ints[i]->TapCount(2), 77);
        EXPECT_EQ(ints[i]->WindowType(), dsp::FirWindow::Blackman);
        EXPECT_EQ(floats[i]->CutoffPlotIndex(3, 0), eq.LeftFloat().CutoffPlotIndex(3, 0));
        EXPECT_FLOAT_EQ(ints[i]->Level(4), 0.25f);
        EXPECT_FLOAT_EQ(floats[i]->Level(4), 0.25f);
    }
    eq.ResetTapCounts();
    EXPECT_EQ(eq.Right16().TapCount(2), 162);

    // The float pair filters a float block, the 16-bit pair a 16-bit one;
    // left and right stay apart.
    std::vector<float> left(kBlockFrames, 0.0f), right(kBlockFrames, 0.0f);
    for (int i = 0; i < kBlockFrames; ++i)
        left[i] = static_cast<float>(8000 * std::sin(i * 0.3));
    EXPECT_FALSE(eq.ProcessStereo(left.data(), right.data(), true, false));
    EXPECT_GT(*std::max_element(left.begin(), left.end()), 1000.0f);
    EXPECT_EQ(*std::max_element(right.begin(), right.end()), 0.0f);
    EXPECT_GT(eq.LeftFloat().BandRmsMilliDb(3), 0.0f);
    EXPECT_EQ(eq.Left16().BandRmsMilliDb(3), 0.0f);

    // A clipping block on the right engine alone sets the shared flag.
    std::vector<std::int16_t> l16(kBlockFrames, 0), r16(kBlockFrames, 0);
    std::vector<float> quiet(kBlockFrames, 0.0f), loud(kBlockFrames);
    for (int i = 0; i < kBlockFrames; ++i)
        loud[i] = (i / 100) % 2 ? 32700.0f : -32700.0f;
    EXPECT_TRUE(eq.ProcessStereo(quiet.data(), loud.data(), true, true));
    EXPECT_LT(eq.RightFloat().EffectiveGain(0), eq.RightFloat().Level(0));
    EXPECT_FALSE(eq.ProcessStereo(l16.data(), r16.data(), true, true));
}
