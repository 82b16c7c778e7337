// The first track heard: a file loaded on a deck plays through the real disc
// buffer, mix cycle and sound mixer onto the Null device, sample for sample,
// and the deck stops by itself when the file has been heard.
#include <gtest/gtest.h>

#include <QDir>
#include <algorithm>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"

using testsupport::PlaybackRig;

namespace {

// Index of the first frame of `out` that is not silent, or -1.
long FirstSound(const std::vector<std::int16_t>& out) {
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (out[i] != 0)
            return static_cast<long>(i / 2);
    }
    return -1;
}

}  // namespace

TEST(DeckPlayback, TenSecondFilePlaysBitExactAndTheDeckStopsAtItsEnd) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("noise-10s.wav");
    const int frames = 441000;
    const std::vector<std::int16_t> pcm =
        testsupport::WriteWav(path, 44100, frames, testsupport::NoiseSample);
    ASSERT_FALSE(pcm.empty());

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
    EXPECT_EQ(deck.StartStopButton()->Caption(), "stop");
    EXPECT_EQ(deck.TrackNameText(), "noise-10s");
    EXPECT_EQ(deck.TrackNumberText(), "1/1");

    // Nothing is heard until the needle drops.
    ASSERT_TRUE(rig.RenderBlocks(3));
    EXPECT_EQ(FirstSound(rig.Output()), -1);
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    rig.ClearOutput();

    ASSERT_TRUE(rig.Drop(0));
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "lift");
    const int blocks = frames / kBlockFrames + 40;
    rig.RenderUntil([&] { return deck.TrackEnded(); }, blocks);

    EXPECT_TRUE(deck.TrackEnded());
    EXPECT_EQ(deck.StartStopButton()->Caption(), "start");
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "drop");
    EXPECT_DOUBLE_EQ(deck.ProgressValue(), 1.0);

    // The device starts on the first primed block: output frame i is file
    // frame i. The needle drop fades in over the first 1000 frames (500
    // steps of 2 frames); from there on the file is heard sample for sample.
    const std::vector<std::int16_t>& out = rig.Output();
    const long start = 0;
    ASSERT_GE(out.size(), pcm.size()) << "the deck stopped before the whole file was heard";
    const std::size_t fadeSamples = 2 * 1000;
    EXPECT_NE(FirstSound(out), -1);
    EXPECT_LT(FirstSound(out), 1000);
    long mismatches = 0, firstBad = -1;
    for (std::size_t i = fadeSamples; i < pcm.size(); ++i) {
        if (out[i] != pcm[i]) {
            if (firstBad < 0)
                firstBad = static_cast<long>(i / 2);
            ++mismatches;
        }
    }
    EXPECT_EQ(mismatches, 0) << "first differing frame " << firstBad;
    // During the fade the sound rises towards the file's own level.
    for (std::size_t i = 0; i < fadeSamples; ++i)
        ASSERT_LE(std::abs(out[i]), std::abs(pcm[i]) + 1) << "sample " << i;
    // After the file, silence (the padding of the last block) until the stop.
    EXPECT_TRUE(std::all_of(out.begin() + static_cast<long>(start * 2 + pcm.size()), out.end(),
                            [](std::int16_t s) { return s == 0; }));
    EXPECT_EQ(Engine().decks[0].isPlaying.load(), 0);
}

// A needle dropped at once after loading, before the reader's first fill has
// primed the output (a slow drive, a busy machine), plays the track from its
// start once the output is primed; lifted again before that, nothing plays.
TEST(DeckPlayback, ANeedleDroppedBeforeTheFirstFillPlaysOnceTheOutputIsPrimed) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("noise-early-drop.wav");
    const std::vector<std::int16_t> pcm =
        testsupport::WriteWav(path, 44100, 5 * 44100, testsupport::NoiseSample);
    ASSERT_FALSE(pcm.empty());

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    // No events are served between the load and the drop: the first fill's
    // messages are still queued.
    deck.OpenFiles({path});
    ASSERT_FALSE(deck.Primed());
    deck.DropNeedle();
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "lift");
    ASSERT_TRUE(
        testsupport::WaitFor([&] { return rig.Mixer().MainOutput().IsForwardPlaying(0); }, 5000));
    EXPECT_TRUE(deck.Primed());
    ASSERT_TRUE(rig.RenderBlocks(60));
    const std::vector<std::int16_t>& out = rig.Output();
    ASSERT_GE(out.size(), 2u * 44100);
    long mismatches = 0;
    for (std::size_t i = 2 * 1000; i < 2u * 44100; ++i)
        mismatches += out[i] != pcm[i];
    EXPECT_EQ(mismatches, 0) << "the track is not heard from its start";
    EXPECT_GT(deck.ElapsedSeconds(), 0.0);

    // Loaded again and lifted before the prime: the drop is called off.
    deck.LiftNeedle();
    ASSERT_TRUE(rig.RenderBlocks(3));
    deck.OpenFiles({path});
    ASSERT_FALSE(deck.Primed());
    deck.DropNeedle();
    deck.LiftNeedle();
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "drop");
    ASSERT_TRUE(testsupport::WaitFor([&] { return deck.Primed(); }, 5000));
    testsupport::WaitFor([] { return false; }, 300);  // the primed output stays stopped
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    EXPECT_EQ(Engine().decks[0].isPlaying.load(), 0);
}
