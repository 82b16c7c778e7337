// The main mixer's laws: cross-fader curves, the deck gain and pan laws,
// master line levels, auto-pan.
#include <gtest/gtest.h>

#include <cmath>

#include "output/laws/AutoPan.h"
#include "output/laws/CrossFaderCurve.h"
#include "output/laws/DeckGainLaw.h"
#include "output/laws/MasterLine.h"

TEST(CrossFaderCurve, CurvesAtCentreAndEnds) {
    CrossFaderCurve curve;
    curve.SetCurve(0.0f);  // ramp
    EXPECT_FLOAT_EQ(curve.Gain(0, 0.0), 49 * CrossFaderCurve::kStep);
    EXPECT_FLOAT_EQ(curve.Gain(1, 0.0), 49 * CrossFaderCurve::kStep);
    EXPECT_NEAR(curve.Gain(0, 0.0), 49.0 / 99.0, 1e-6);
    // Fader at -1: all deck A at T[98] = 98/99, deck B silent.
    EXPECT_FLOAT_EQ(curve.Gain(0, -1.0), curve.Base(98));
    EXPECT_NEAR(curve.Gain(0, -1.0), 98.0 / 99.0, 1e-6);
    EXPECT_EQ(curve.Gain(1, -1.0), 0.0f);
    EXPECT_EQ(curve.Gain(0, 1.0), 0.0f);
    EXPECT_FLOAT_EQ(curve.Gain(1, 1.0), curve.Base(98));

    curve.SetCurve(1.0f);  // wedge: full at the middle
    EXPECT_EQ(curve.Gain(0, 0.0), 1.0f);
    EXPECT_EQ(curve.Gain(1, 0.0), 1.0f);

    curve.SetCurve(-1.0f);  // logarithmic: cube root
    EXPECT_NEAR(curve.Gain(0, 0.0), std::cbrt(49.0 / 99.0), 1e-6);
    EXPECT_NEAR(curve.Gain(1, 0.0), 0.791, 1e-3);

    EXPECT_EQ(CrossFaderCurve::Index(0.999), 97);
    EXPECT_EQ(CrossFaderCurve::Index(-1.0), 0);
    EXPECT_EQ(CrossFaderCurve::Index(1.0), 98);
    // Deck A's table is deck B's reversed.
    for (int k = 0; k < 99; ++k)
        EXPECT_EQ(curve.Table(0)[k], curve.Table(1)[98 - k]);
}

TEST(DeckGainLaw, GainAndPanToTheDevice) {
    EXPECT_EQ(output::DeckGainToVolume(1.0f), 0);
    EXPECT_EQ(output::DeckGainToVolume(0.0001f), -10000);
    EXPECT_EQ(output::DeckGainToVolume(0.5f), -1250);
    EXPECT_EQ(output::DeckPanToDevice(0.25f), 2500);
    EXPECT_EQ(output::DeckPanToDevice(-1.0f), -10000);
    EXPECT_EQ(output::DeckPanToDevice(1.0f), 10000);
    EXPECT_EQ(output::DeckPanToDevice(0.0f), 0);
    EXPECT_EQ(output::DeckPanToDevice(3.0f), 10000);  // held to the pan's range
}

TEST(MasterLine, VolumeAndBalance) {
    LinePercent l = MasterLineLevels(0.8, -0.5);
    EXPECT_EQ(l.left, 80);
    EXPECT_EQ(l.right, 40);
    l = MasterLineLevels(0.8, 0.5);
    EXPECT_EQ(l.left, 40);
    EXPECT_EQ(l.right, 80);
    l = MasterLineLevels(1.0, 0.0);
    EXPECT_EQ(l.left, 100);
    EXPECT_EQ(l.right, 100);
    EXPECT_EQ(LineControlValue(40, 0, 65535), 26214);
}

TEST(AutoPan, SineStepsAndExactRestore) {
    AutoPan pan;
    const float saved = -0.3712f;
    pan.TurnOn(saved);
    pan.SetSpeed(0.5f);
    const float first = pan.Step();
    EXPECT_FLOAT_EQ(first, std::sin(0.1f * 0.5f * 6.2831936f));
    for (int i = 0; i < 7; ++i)
        pan.Step();
    EXPECT_EQ(pan.TurnOff(), saved);  // bit for bit
    const float phase = pan.Phase();
    pan.TurnOn(0.0f);  // the phase runs on
    pan.Step();
    EXPECT_GT(pan.Phase(), phase);
}
