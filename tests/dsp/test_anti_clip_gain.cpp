// The anti-clip law of the equalizer bands on its own: backing off while the
// sum clips, and climbing back towards the level block by block.
#include <gtest/gtest.h>

#include <vector>

#include "dsp/eq/AntiClipGain.h"

using dsp::eq::BackOffGain;
using dsp::eq::RecoverGain;

TEST(AntiClipGain, BacksOffATenthAtATimeWhileTheSumClips) {
    // The sum clips above a gain of 0.45: 1.0 → 0.9 → … → 0.4 (six trials clip).
    std::vector<float> asked;
    bool clipped = false;
    const float g = BackOffGain(
        1.0f,
        [&](float trial) {
            asked.push_back(trial);
            return trial > 0.45f;
        },
        clipped);
    EXPECT_TRUE(clipped);
    EXPECT_NEAR(g, 0.4f, 1e-6);
    ASSERT_EQ(asked.size(), 7u);
    EXPECT_FLOAT_EQ(asked.front(), 1.0f);
    EXPECT_FLOAT_EQ(asked.back(), g);  // the last trial is the gain kept
}

TEST(AntiClipGain, AGainThatFitsIsKeptAndClippedStaysAsItWas) {
    bool clipped = false;
    EXPECT_FLOAT_EQ(BackOffGain(
                        0.7f, [](float) { return false; }, clipped),
                    0.7f);
    EXPECT_FALSE(clipped);
    clipped = true;  // only the caller clears it
    EXPECT_FLOAT_EQ(BackOffGain(
                        0.7f, [](float) { return false; }, clipped),
                    0.7f);
    EXPECT_TRUE(clipped);
}

TEST(AntiClipGain, NeverBacksOffBelowZero) {
    bool clipped = false;
    const float g = BackOffGain(
        0.15f, [](float trial) { return trial > 0.0f; }, clipped);
    EXPECT_TRUE(clipped);
    EXPECT_EQ(g, 0.0f);
}

TEST(AntiClipGain, RecoversTwoHundredthsABlockUpToTheLevel) {
    EXPECT_FLOAT_EQ(RecoverGain(0.5f, 0.8f), 0.52f);
    EXPECT_FLOAT_EQ(RecoverGain(0.79f, 0.8f), 0.8f);  // held at the level
    EXPECT_FLOAT_EQ(RecoverGain(0.8f, 0.8f), 0.8f);
    EXPECT_FLOAT_EQ(RecoverGain(0.9f, 0.6f), 0.6f);  // a level turned down takes effect at once
    float g = 0.0f;
    for (int block = 0; block < 10; ++block)
        g = RecoverGain(g, 1.0f);
    EXPECT_NEAR(g, 0.2f, 1e-5);
}
