// An effect chosen on deck A is heard on the main output (the Null device,
// through the real decks and mix cycle) and stays when the next track comes
// at another sample rate and the deck's buffers are built again.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/effects/DeckEffectsPanel.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/effects/EchoEffect.h"

using testsupport::PlaybackRig;

namespace {

// Share of the 10 ms windows (441 frames, whole periods of the 1 kHz tone)
// of the last `frames` frames of the left channel that are silent (below a
// twentieth of the loudest window) and loud (above half of it).
std::pair<double, double> Gating(const std::vector<std::int16_t>& out, int frames) {
    const std::size_t first = out.size() / 2 - static_cast<std::size_t>(frames);
    std::vector<double> rms;
    for (int w = 0; w + 441 <= frames; w += 441) {
        double sum = 0;
        for (int i = w; i < w + 441; ++i) {
            const double x = out[2 * (first + static_cast<std::size_t>(i))];
            sum += x * x;
        }
        rms.push_back(std::sqrt(sum / 441));
    }
    const double top = *std::max_element(rms.begin(), rms.end());
    int silent = 0, loud = 0;
    for (double r : rms) {
        silent += r < top / 20;
        loud += r > top / 2;
    }
    return {static_cast<double>(silent) / rms.size(), static_cast<double>(loud) / rms.size()};
}

}  // namespace

TEST(DeckEffectsHeard, GargleOnDeckAIsHeardAndSurvivesANewRate) {
    const QString a = testsupport::MakeTone("fx-a-44100.wav", 1000, 4, 44100);
    const QString b = testsupport::MakeTone("fx-b-48000.wav", 1000, 6, 48000);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {a, b}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(20));
    EXPECT_LT(Gating(rig.Output(), 17640).first, 0.05) << "no effect yet: a steady tone";

    // The user picks the gargle and turns its knobs: 5 Hz, square wave.
    DeckEffectsPanel& panel = deck.Effects();
    ASSERT_TRUE(panel.SelectEffect(QStringLiteral("Gargle")));
    EXPECT_EQ(panel.KnobLabel(1), "rate");
    EXPECT_EQ(panel.KnobText(2), "tri");
    panel.SetKnobValue(1, 5.0);
    panel.SetKnobValue(2, 1.0);
    EXPECT_EQ(panel.KnobText(2), "sqr");
    QCoreApplication::processEvents();  // the posted messages reach the mixer
    DeckEffects& fx = rig.Mixer().MainOutput().Effects(0);
    EXPECT_EQ(fx.EffectName(), "Gargle");
    EXPECT_EQ(fx.ChainLength(), 1u);
    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderBlocks(60));  // 1.6 s
    auto [silent, loud] = Gating(rig.Output(), 44100);
    EXPECT_NEAR(silent, 0.475, 0.06);
    EXPECT_NEAR(loud, 0.5, 0.06);

    // The next track at 48000 Hz: new buffers, the effect applied again.
    ASSERT_TRUE(rig.RenderUntil([&] { return deck.TrackNumberText() == "2/2"; }, 200));
    ASSERT_TRUE(testsupport::WaitFor([&] {
        QCoreApplication::processEvents();
        return rig.Mixer().MainOutput().ForwardFrequency(0) == 48000 &&
               rig.Mixer().MainOutput().IsForwardPlaying(0);
    }));
    // The new ring plays its first lap of silence while the mix cycle
    // fills it again.
    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderUntil(
        [&] {
            const auto& out = rig.Output();
            return std::any_of(out.begin(), out.end(), [](std::int16_t v) { return v > 1000; });
        },
        200));
    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderBlocks(60));
    EXPECT_EQ(fx.ChainLength(), 1u);
    std::tie(silent, loud) = Gating(rig.Output(), 44100);
    EXPECT_NEAR(silent, 0.475, 0.06);
    EXPECT_NEAR(loud, 0.5, 0.06);
}

TEST(DeckEffectsHeard, TheEqualizerWindowsMessagesDriveTheDeviceBands) {
    const QString a = testsupport::MakeTone("fx-a-44100.wav", 1000, 4, 44100);
    ASSERT_FALSE(a.isEmpty());
    PlaybackRig rig;
    ASSERT_TRUE(rig.LoadAndPrime(0, {a}));
    const WindowHandle mixer = rig.Mixer().Handle();
    DeckEffects& fx = rig.Mixer().MainOutput().Effects(0);
    DeckEffectsPanel& panel = rig.Deck(0).Effects();
    ASSERT_TRUE(panel.SelectEffect(QStringLiteral("Echo")));
    panel.SetKnobValue(2, 750.0);
    QCoreApplication::processEvents();
    ASSERT_EQ(fx.ChainLength(), 1u);

    SendAppMessage(mixer, UWM_DEVICE_EQ_ON, 0, 1);
    EXPECT_TRUE(fx.DeviceEqualizerOn());
    EXPECT_EQ(fx.ChainLength(), 4u);  // three bands, then the echo
    const auto level = [](float v) { return static_cast<LParam>(std::bit_cast<std::uint32_t>(v)); };
    SendAppMessage(mixer, UWM_EQ_BAND_GAIN, (0u << 16) | 1u, level(1.0f));
    EXPECT_EQ(fx.Bands()[1]->GetParameters().gain, 15.0f);
    SendAppMessage(mixer, UWM_EQ_BAND_GAIN, (0u << 16) | 2u, level(0.0f));
    EXPECT_EQ(fx.Bands()[2]->GetParameters().gain, -15.0f);
    SendAppMessage(mixer, UWM_DEVICE_EQ_BANDS, 0, 12);
    EXPECT_EQ(fx.ChainLength(), 13u);
    EXPECT_NEAR(fx.BandCentre(2), 204.8, 1e-3);
    EXPECT_EQ(fx.Bands()[1]->GetParameters().gain, 15.0f);  // the stored level stays

    // Off: the bands go, the chosen echo comes back with its knobs.
    SendAppMessage(mixer, UWM_DEVICE_EQ_ON, 0, 0);
    EXPECT_FALSE(fx.DeviceEqualizerOn());
    ASSERT_EQ(fx.ChainLength(), 1u);
    const auto* echo = static_cast<const sound::fx::EchoEffect*>(fx.Effect());
    EXPECT_EQ(echo->GetParameters().leftDelay, 750.0f);
}
