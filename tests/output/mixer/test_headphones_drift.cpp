// Cueing on a second device whose clock runs 0.2 % fast, end to end: the
// main mixer on a manual Null device rendered at 44100 frames a simulated
// second, the headphones on a second manual Null device rendered 1.002 times
// as many frames, both decks playing tones for 60 simulated seconds through
// the real mix cycle. The headphones copy drifts ahead, is snapped back, and
// from the second snap on runs at the trimmed frequency: the drift stays
// under 10000 bytes and the frequency is within 0.05 % of 44100 / 1.002.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundDevice.h"

using testsupport::PlaybackRig;

TEST(HeadphonesDrift, AFastHeadphonesClockIsTrimmedToTheMainDevice) {
    const QString toneA = testsupport::MakeTone("drift-a.wav", 440, 64);
    const QString toneB = testsupport::MakeTone("drift-b.wav", 660, 64);
    ASSERT_FALSE(toneA.isEmpty());
    ASSERT_FALSE(toneB.isEmpty());

    CRynHeadphonesMixer phones;
    std::vector<QString> shown;
    phones.showMessage = [&](const QString& m) { shown.push_back(m); };
    PlaybackRig rig(true, false, &phones);
    phones.Initialise(rig.Mixer().Handle());
    ASSERT_TRUE(
        phones.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual)));
    sound::SoundDevice* mainDevice = rig.Mixer().MainOutput().Device();
    sound::SoundDevice* phonesDevice = phones.Output().Device();
    // The alignment runs on simulated time: the main device's frames.
    rig.Mixer().Cycle().clock = [mainDevice] {
        return static_cast<double>(mainDevice->FramesRendered()) / 44100.0;
    };

    ASSERT_TRUE(rig.LoadAndPrime(0, {toneA}));
    ASSERT_TRUE(rig.LoadAndPrime(1, {toneB}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.Drop(1));
    ASSERT_TRUE(phones.Output().IsForwardPlaying(0));
    ASSERT_TRUE(phones.Output().IsForwardPlaying(1));

    constexpr double kFast = 1.002;
    constexpr int kSeconds = 60;
    const int blocks = kSeconds * 44100 / kBlockFrames;
    std::vector<std::int16_t> heard(2 * 1200);
    double owed = 0.0;  // headphones frames due but not yet rendered
    int secondAt = -1;
    int worstAfterSecond = 0;
    for (int b = 0; b < blocks; ++b) {
        // Both devices play the same stretch of time before the main
        // device's notification runs the mix step.
        owed += kBlockFrames * kFast;
        const int frames = static_cast<int>(owed);
        owed -= frames;
        ASSERT_TRUE(phonesDevice->Render(frames, heard.data()));
        rig.ClearOutput();
        ASSERT_TRUE(rig.RenderBlocks(1)) << "block " << b;
        if (secondAt < 0 && phones.Sync().Corrections(0) >= 2)
            secondAt = b;
        if (secondAt >= 0 && b > secondAt)
            worstAfterSecond = std::max(worstAfterSecond, std::abs(phones.Sync().Drift(0)));
    }
    ASSERT_GE(secondAt, 0) << "fewer than two corrections in " << kSeconds << " s";
    const double trueRatio = 44100.0 / kFast;
    const int frequency = phones.Output().ForwardFrequency(0);
    std::printf(
        "headphones drift: second correction after %.1f s, worst drift after it %d "
        "bytes, frequency %d Hz (ideal %.1f), deck B %d Hz\n",
        secondAt * kBlockFrames / 44100.0, worstAfterSecond, frequency, trueRatio,
        phones.Output().ForwardFrequency(1));
    EXPECT_LE(worstAfterSecond, 10000);
    EXPECT_NEAR(frequency, trueRatio, trueRatio * 0.0005);
    EXPECT_NEAR(phones.Output().ForwardFrequency(1), trueRatio, trueRatio * 0.0005);
    // The main device keeps its own pace, and nothing went wrong.
    EXPECT_EQ(rig.Mixer().MainOutput().ForwardFrequency(0), 44100);
    EXPECT_TRUE(shown.empty());
    // The headphones still carry the decks' tones.
    int loudest = 0;
    for (std::int16_t v : heard)
        loudest = std::max(loudest, std::abs(static_cast<int>(v)));
    EXPECT_GT(loudest, 1000);
    EXPECT_TRUE(phones.IsActive());
}
