// The output's cross fader: the two tables and the gains of the cross fader's
// state, and the deck volumes the output sets from it, with and without a
// device.
#include <gtest/gtest.h>

#include <cmath>

#include "core/EngineState.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/laws/CrossFaderGains.h"
#include "platform/sound/SoundDevice.h"

namespace {

constexpr float kStep = 1.0f / 99.0f;

TEST(OutputCrossFader, TablesGainsAndVolumes) {
    ResetEngineStateForTest();
    CRynAudioOutput out;
    CrossFaderGains fader;
    // No device: the gains start at 1.0 and are still worked out.
    EXPECT_FLOAT_EQ(fader.Gain(0), 1.0f);
    EXPECT_FLOAT_EQ(fader.Gain(1), 1.0f);
    const float levels[2] = {1.0f, 0.5f};
    fader.MoveTo(0.0f);
    EXPECT_EQ(out.ApplyCrossFader(fader, levels), kStatusNotInitialised);
    EXPECT_EQ(fader.Index(), 49);
    EXPECT_FLOAT_EQ(fader.Gain(0), 49 * kStep);

    // Deck A's table is deck B's reversed; the wedge reaches 1 at the middle.
    fader.SetCurve(1.0f);
    const auto& a = fader.Table(0);
    const auto& b = fader.Table(1);
    for (int k = 0; k < 99; ++k)
        ASSERT_FLOAT_EQ(a[k], b[98 - k]) << k;
    EXPECT_FLOAT_EQ(b[48], 48.0f / 49.5f);
    EXPECT_FLOAT_EQ(b[49], 1.0f);
    // Out-of-range and garbage curve parameters are held to the curve's range.
    fader.SetCurve(7.0f);
    EXPECT_FLOAT_EQ(fader.CurveParameter(), 1.0f);
    fader.SetCurve(std::nanf(""));
    EXPECT_FLOAT_EQ(fader.CurveParameter(), 0.0f);
    EXPECT_FLOAT_EQ(fader.Table(1)[98], 98 * kStep);

    ASSERT_EQ(
        out.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0),
        kStatusOk);
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    ASSERT_EQ(out.CreateDeckBuffers(1, 44100, true), kStatusOk);
    fader.MoveTo(1.0f);
    EXPECT_EQ(out.ApplyCrossFader(fader, levels), kStatusOk);
    EXPECT_EQ(fader.Index(), 98);
    EXPECT_EQ(out.SoundEngine()->Deck(0).forward->Volume(), -10000);
    // 98/99 · 0.5 = 0.4949: -2500 + trunc(1237.4).
    EXPECT_EQ(out.SoundEngine()->Deck(1).forward->Volume(), -1263);
    EXPECT_EQ(out.SoundEngine()->Deck(1).reverse->Volume(), -1263);
}

}  // namespace
