// The 3D sound law: the listener's place among the decks' sound gives the
// left and right speaker gains.
#include <gtest/gtest.h>

#include <cmath>

#include "output/laws/ListenerLaw.h"

using listener_law::GainsAt;

TEST(ListenerLaw, TheCentrePlaysBothSpeakersAtFullLevel) {
    const auto g = GainsAt(0.0f, 0.0f);
    EXPECT_FLOAT_EQ(g.left, 1.0f);
    EXPECT_FLOAT_EQ(g.right, 1.0f);
}

TEST(ListenerLaw, MovingRightPutsTheSoundLeftAndFurtherAway) {
    // (500, −250): pan −0.5 keeps the left ear full and halves the right;
    // the distance √(0.5² + 0.25²) = 0.559 lowers both by 1 / 1.559.
    const auto g = GainsAt(500.0f, -250.0f);
    const float fall = 1.0f / (1.0f + std::sqrt(0.5f * 0.5f + 0.25f * 0.25f));
    EXPECT_NEAR(g.left, fall, 1e-6);
    EXPECT_NEAR(g.right, 0.5f * fall, 1e-6);
    // Mirror image on the other side.
    const auto m = GainsAt(-500.0f, -250.0f);
    EXPECT_FLOAT_EQ(m.left, g.right);
    EXPECT_FLOAT_EQ(m.right, g.left);
}

TEST(ListenerLaw, FullPanSilencesTheFarSpeakerAndFrontOrBackOnlyLowers) {
    const auto g = GainsAt(1000.0f, 0.0f);
    EXPECT_FLOAT_EQ(g.right, 0.0f);
    EXPECT_FLOAT_EQ(g.left, 0.5f);
    // Beyond the range the pan holds at its end.
    EXPECT_FLOAT_EQ(GainsAt(3000.0f, 0.0f).right, 0.0f);
    const auto front = GainsAt(0.0f, 1000.0f);
    const auto back = GainsAt(0.0f, -1000.0f);
    EXPECT_FLOAT_EQ(front.left, front.right);
    EXPECT_FLOAT_EQ(front.left, back.left);
    EXPECT_FLOAT_EQ(front.left, 0.5f);
    // A corner is 7.7 dB down on the near side.
    EXPECT_NEAR(20.0 * std::log10(GainsAt(-1000.0f, 1000.0f).right), -7.66, 0.01);
}
