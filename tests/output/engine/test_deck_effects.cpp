// A deck's effect chain on one output: the chosen effect, the device
// equalizer's bands in front of it, the knobs and the band levels, on a real
// buffer of the manual-clock Null device.
#include <gtest/gtest.h>

#include "output/engine/DeckEffects.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/effects/EchoEffect.h"

namespace {

using sound::fx::EchoEffect;

struct Rig {
    std::unique_ptr<sound::SoundDevice> device =
        sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual);
    std::unique_ptr<sound::SoundBuffer> forward;
    Rig() { device->CreateBuffer({4704 * 120, 44100}, &forward); }
};

TEST(DeckEffects, NoEffectLeavesAnEmptyChainOrOnlyTheBands) {
    Rig rig;
    DeckEffects fx;
    EXPECT_EQ(fx.EffectName(), "No Effect");
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "Echo"), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 1u);
    ASSERT_NE(fx.Effect(), nullptr);
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "No Effect"), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 0u);
    EXPECT_EQ(fx.Effect(), nullptr);

    ASSERT_EQ(fx.SetDeviceEqualizer(rig.forward.get(), true), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 3u);  // three bands by default
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "Reverb"), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 4u);  // bands, then the effect
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "No Effect"), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 3u);
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "Phaser"), kStatusOk);  // outside the list
    EXPECT_EQ(fx.ChainLength(), 3u);
    EXPECT_EQ(fx.SetEffectParameter(1, 10.0f), kStatusOk);  // nothing to set

    ASSERT_EQ(fx.SetDeviceEqualizer(rig.forward.get(), false), kStatusOk);
    EXPECT_EQ(fx.ChainLength(), 0u);
}

TEST(DeckEffects, BandsSitOnTheLayoutWithTheirStoredLevels) {
    Rig rig;
    DeckEffects fx;
    EXPECT_EQ(fx.SetBandGain(3, 1.0), kStatusNotInitialised);  // only three bands
    ASSERT_EQ(fx.SetBandGain(0, 0.0), kStatusOk);
    ASSERT_EQ(fx.SetDeviceEqualizer(rig.forward.get(), true), kStatusOk);
    ASSERT_EQ(fx.Bands().size(), 3u);
    EXPECT_EQ(fx.Bands()[0]->GetParameters().gain, -15.0f);
    EXPECT_NEAR(fx.BandCentre(1), 1024.0, 1e-3);
    EXPECT_EQ(fx.Bands()[2]->GetParameters().bandwidth, 12.0f);
    ASSERT_EQ(fx.SetBandGain(1, 1.0), kStatusOk);  // live while on
    EXPECT_EQ(fx.Bands()[1]->GetParameters().gain, 15.0f);
    ASSERT_EQ(fx.SetBandGain(1, 0.5), kStatusOk);
    EXPECT_EQ(fx.Bands()[1]->GetParameters().gain, 0.0f);

    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "Echo"), kStatusOk);
    ASSERT_EQ(fx.SetBandCount(rig.forward.get(), 12), kStatusOk);
    EXPECT_TRUE(fx.DeviceEqualizerOn());
    EXPECT_EQ(fx.ChainLength(), 13u);  // 12 bands and the echo
    const double expected[] = {80, 128, 204.8, 327.68};
    for (int k = 0; k < 4; ++k)
        EXPECT_NEAR(fx.BandCentre(k), expected[k], 1e-3) << k;
    EXPECT_EQ(fx.Bands()[0]->GetParameters().gain, -15.0f);  // kept across the count
    EXPECT_EQ(fx.Bands()[5]->GetParameters().bandwidth, 3.0f);
}

TEST(DeckEffects, KnobsSetTheirParametersAndAChoiceWithoutBufferWaits) {
    Rig rig;
    DeckEffects fx;
    ASSERT_EQ(fx.SelectEffect(rig.forward.get(), "Echo"), kStatusOk);
    ASSERT_EQ(fx.SetEffectParameter(2, 750.0f), kStatusOk);
    auto* echo = static_cast<EchoEffect*>(fx.Effect());
    EXPECT_EQ(echo->GetParameters().leftDelay, 750.0f);
    EXPECT_EQ(echo->GetParameters().rightDelay, 750.0f);
    EXPECT_EQ(fx.SetEffectParameter(2, 2500.0f), kStatusInvalidParam);  // beyond the range
    // The effect survives turning the device equalizer on.
    ASSERT_EQ(fx.SetDeviceEqualizer(rig.forward.get(), true), kStatusOk);
    EXPECT_EQ(fx.Effect(), echo);

    DeckEffects waiting;
    EXPECT_EQ(waiting.SelectEffect(nullptr, "Flanger"), kStatusNotInitialised);
    EXPECT_EQ(waiting.EffectName(), "Flanger");
    ASSERT_EQ(waiting.SelectEffect(rig.forward.get(), waiting.EffectName()), kStatusOk);
    EXPECT_EQ(waiting.ChainLength(), 1u);
}

}  // namespace
