// The output's cross fader: its two tables, the gains it remembers, and the
// deck volumes it sets, with and without a device.
#include <gtest/gtest.h>

#include <cmath>

#include "core/EngineState.h"
#include "output/engine/CRynAudioOutput.h"
#include "platform/sound/SoundDevice.h"

namespace {

constexpr float kStep = 1.0f / 99.0f;

TEST(OutputCrossFader, TablesGainsAndVolumes) {
    ResetEngineStateForTest();
    CRynAudioOutput out;
    // No device: the gains start at 1.0 and are still worked out.
    EXPECT_FLOAT_EQ(out.CrossFaderGain(0), 1.0f);
    EXPECT_FLOAT_EQ(out.CrossFaderGain(1), 1.0f);
    const float levels[2] = {1.0f, 0.5f};
    EXPECT_EQ(out.ApplyCrossFader(0.0f, levels), kStatusNotInitialised);
    EXPECT_EQ(out.CrossFaderIndex(), 49);
    EXPECT_FLOAT_EQ(out.CrossFaderGain(0), 49 * kStep);

    // Deck A's table is deck B's reversed; the wedge reaches 1 at the middle.
    out.SetCrossFaderCurve(1.0f);
    const auto& a = out.CrossFaderTable(0);
    const auto& b = out.CrossFaderTable(1);
    for (int k = 0; k < 99; ++k)
        ASSERT_FLOAT_EQ(a[k], b[98 - k]) << k;
    EXPECT_FLOAT_EQ(b[48], 48.0f / 49.5f);
    EXPECT_FLOAT_EQ(b[49], 1.0f);
    // Out-of-range and garbage curve parameters are held to the curve's range.
    out.SetCrossFaderCurve(7.0f);
    EXPECT_FLOAT_EQ(out.CrossFaderCurveParameter(), 1.0f);
    out.SetCrossFaderCurve(std::nanf(""));
    EXPECT_FLOAT_EQ(out.CrossFaderCurveParameter(), 0.0f);
    EXPECT_FLOAT_EQ(out.CrossFaderTable(1)[98], 98 * kStep);

    ASSERT_EQ(
        out.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0),
        kStatusOk);
    ASSERT_EQ(out.CreateDeckBuffers(0, 44100, true), kStatusOk);
    ASSERT_EQ(out.CreateDeckBuffers(1, 44100, true), kStatusOk);
    EXPECT_EQ(out.ApplyCrossFader(1.0f, levels), kStatusOk);
    EXPECT_EQ(out.CrossFaderIndex(), 98);
    EXPECT_EQ(out.SoundEngine()->Deck(0).forward->Volume(), -10000);
    // 98/99 · 0.5 = 0.4949: -2500 + trunc(1237.4).
    EXPECT_EQ(out.SoundEngine()->Deck(1).forward->Volume(), -1263);
    EXPECT_EQ(out.SoundEngine()->Deck(1).reverse->Volume(), -1263);
}

}  // namespace
