// Two decks mixed on the Null device: a 440 Hz tone on deck A and a 660 Hz
// tone on deck B. The cross fader's ends and centre give each tone the level
// its curve and the gain law promise, and deck A's tempo at +8 % moves its
// tone to 475.2 Hz, as a turntable would.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "output/laws/DeckGainLaw.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundTypes.h"

using testsupport::PlaybackRig;

namespace {

// ffmpeg's sine source is 1/8 of full scale; made stereo from mono, each
// side carries it at the centre mix level of 1/sqrt(2).
constexpr double kToneAmplitude = 32767.0 / 8 * std::numbers::sqrt2 / 2;

// Amplitude of `hz` in the left channel of `out` (interleaved stereo),
// Hann-windowed Goertzel over the last `frames` frames.
double Amplitude(const std::vector<std::int16_t>& out, double hz, int frames) {
    const std::size_t first = out.size() / 2 - static_cast<std::size_t>(frames);
    const double w = 2.0 * std::numbers::pi * hz / 44100.0;
    double re = 0, im = 0, windowSum = 0;
    for (int n = 0; n < frames; ++n) {
        const double hann = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * n / (frames - 1));
        const double x = out[2 * (first + static_cast<std::size_t>(n))] * hann;
        re += x * std::cos(w * n);
        im -= x * std::sin(w * n);
        windowSum += hann;
    }
    return 2.0 * std::hypot(re, im) / windowSum;
}

// The frequency of the strongest component between lo and hi, in 0.05 Hz steps.
double Peak(const std::vector<std::int16_t>& out, double lo, double hi, int frames) {
    double best = lo, bestAmp = -1;
    for (double f = lo; f <= hi; f += 0.05) {
        const double a = Amplitude(out, f, frames);
        if (a > bestAmp) {
            bestAmp = a;
            best = f;
        }
    }
    return best;
}

double Expected(float gain) {
    return kToneAmplitude * sound::VolumeToGain(output::DeckGainToVolume(gain));
}

}  // namespace

TEST(TwoDecksMixed, CrossFaderLevelsAndTempoOnTheOutput) {
    const QString a = testsupport::MakeTone("mix-440.wav", 440, 20);
    const QString b = testsupport::MakeTone("mix-660.wav", 660, 20);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());

    PlaybackRig rig(true);
    MainMixerPanel& panel = rig.Mixer().Panel();
    panel.SetCurveParameter(0.0f);  // the ramp
    ASSERT_TRUE(rig.LoadAndPrime(0, {a}));
    ASSERT_TRUE(rig.LoadAndPrime(1, {b}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.Drop(1));

    const int window = 16384;
    struct Case {
        float fader;
        float gainA, gainB;  // the ramp's table values at the fader's index
    };
    const float t98 = 98 * 0.01010101f, t49 = 49 * 0.01010101f;
    for (const Case& c : {Case{-1.0f, t98, 0.0f}, Case{0.0f, t49, t49}, Case{1.0f, 0.0f, t98}}) {
        SCOPED_TRACE(c.fader);
        panel.SetCrossFader(c.fader);
        ASSERT_TRUE(rig.RenderBlocks(30));
        const double ampA = Amplitude(rig.Output(), 440, window);
        const double ampB = Amplitude(rig.Output(), 660, window);
        EXPECT_NEAR(ampA, Expected(c.gainA), 0.02 * kToneAmplitude);
        EXPECT_NEAR(ampB, Expected(c.gainB), 0.02 * kToneAmplitude);
    }

    // Tempo +8 % on deck A: 44100 Hz becomes 47627 Hz, 440 Hz becomes 475.2 Hz.
    panel.SetCrossFader(-1.0f);
    rig.Deck(0).Tempo().StepTempo(8.0);
    EXPECT_EQ(Engine().decks[0].outputFrequency.load(), 47627);
    ASSERT_TRUE(testsupport::WaitFor(
        [&] { return rig.Mixer().MainOutput().ForwardFrequency(0) == 47627; }));
    ASSERT_TRUE(rig.RenderBlocks(60));
    EXPECT_NEAR(Peak(rig.Output(), 470, 480, 32768), 440.0 * 47627 / 44100, 0.15);
    EXPECT_NEAR(Amplitude(rig.Output(), 475.2, 32768), Expected(t98), 0.03 * kToneAmplitude);
    // Deck B, faded out, stays silent.
    EXPECT_LT(Amplitude(rig.Output(), 660, 32768), 0.001 * kToneAmplitude);
}
