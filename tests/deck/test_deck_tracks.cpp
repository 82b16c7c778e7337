// A deck working through its list end to end on the Null device: gapless
// joins, a join into a file at another rate, repositioning, winding, the
// time display, missing files, and a CD image running on into its next
// track.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <algorithm>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/CRynDeck.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/PlayList.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;

namespace {

constexpr std::size_t kFadeSamples = 2 * 1000;  // the needle drop's fade-in

std::int16_t OtherNoise(int frame, int channel) {
    return static_cast<std::int16_t>(testsupport::NoiseSample(frame + 7777, channel) / 2 + 3);
}

QString Fixture(const QString& name) {
    return QDir(testsupport::FixtureDir()).filePath(name);
}

// Samples of `out` from `from` on that differ from `expected` (compared over
// expected's length).
long Mismatches(const std::vector<std::int16_t>& out, const std::vector<std::int16_t>& expected,
                std::size_t from) {
    long bad = 0;
    for (std::size_t i = from; i < expected.size(); ++i)
        bad += i >= out.size() || out[i] != expected[i];
    return bad;
}

}  // namespace

TEST(DeckTracks, TwoFilesJoinWithoutAGapAndTheLastEndsTheDeck) {
    const int framesA = 3 * 44100 + 123;  // ends mid-block
    const int framesB = 2 * 44100;
    auto a = testsupport::WriteWav(Fixture("join-a.wav"), 44100, framesA, testsupport::NoiseSample);
    auto b = testsupport::WriteWav(Fixture("join-b.wav"), 44100, framesB, OtherNoise);
    ASSERT_FALSE(a.empty() || b.empty());

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {Fixture("join-a.wav"), Fixture("join-b.wav")}));
    EXPECT_EQ(deck.TrackNumberText(), "1/2");
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderUntil([&] { return deck.TrackNumberText() == "2/2"; }, 200));
    EXPECT_EQ(deck.TrackNameText(), "join-b");
    EXPECT_LT(deck.ElapsedSeconds(), 0.2);
    rig.RenderUntil([&] { return deck.TrackEnded(); }, 200);
    EXPECT_TRUE(deck.TrackEnded());
    EXPECT_EQ(deck.StartStopButton()->Caption(), "start");

    std::vector<std::int16_t> both = a;
    both.insert(both.end(), b.begin(), b.end());
    EXPECT_EQ(Mismatches(rig.Output(), both, kFadeSamples), 0);
}

TEST(DeckTracks, AFileAtAnotherRateRebuildsTheOutputWhenItIsHeard) {
    auto a =
        testsupport::WriteWav(Fixture("rate-a.wav"), 44100, 2 * 44100, testsupport::NoiseSample);
    auto b = testsupport::WriteWav(Fixture("rate-b.wav"), 48000, 2 * 48000, OtherNoise);
    ASSERT_FALSE(a.empty() || b.empty());

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {Fixture("rate-a.wav"), Fixture("rate-b.wav")}));
    ASSERT_TRUE(rig.Drop(0));
    EXPECT_EQ(rig.Mixer().MainOutput().ForwardFrequency(0), 44100);
    ASSERT_TRUE(rig.RenderUntil([&] { return deck.TrackNumberText() == "2/2"; }, 200));
    // The host stops the deck, builds its buffers at 48000 Hz and starts it.
    ASSERT_TRUE(WaitFor([&] {
        return Engine().decks[0].mainDeckRate.load() == 48000 &&
               rig.Mixer().MainOutput().IsForwardPlaying(0) &&
               rig.Mixer().MainOutput().ForwardFrequency(0) == 48000;
    }));
    EXPECT_EQ(Engine().decks[0].isPlaying.load(), 1);
    EXPECT_EQ(Engine().decks[0].outputFrequency.load(), 48000);
    rig.RenderUntil([&] { return deck.TrackEnded(); }, 200);
    EXPECT_TRUE(deck.TrackEnded());
}

TEST(DeckTracks, RepositionPlaysFromTheMiddleAndStopLiftsTheNeedleFirst) {
    const int frames = 441000;
    auto pcm =
        testsupport::WriteWav(Fixture("middle.wav"), 44100, frames, testsupport::NoiseSample);
    ASSERT_FALSE(pcm.empty());
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {Fixture("middle.wav")}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(20));

    // The slide released at the middle: the needle lifts, the reader starts
    // again from 5 s, and the needle drops by itself once it is ready.
    deck.ProgressSlide()->SetValue(0.5);
    deck.Reposition(0.5);
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "drop");
    EXPECT_DOUBLE_EQ(deck.ElapsedSeconds(), 5.0);
    ASSERT_TRUE(WaitFor([&] {
        return deck.DropLiftButton()->Caption() == "lift" &&
               rig.Mixer().MainOutput().IsForwardPlaying(0);
    }));
    rig.ClearOutput();
    ASSERT_TRUE(rig.RenderBlocks(40));
    const std::vector<std::int16_t> middle(pcm.begin() + frames,
                                           pcm.begin() + frames + 2 * 40 * 1176);
    EXPECT_EQ(Mismatches(rig.Output(), middle, kFadeSamples), 0);

    // Stopping the turntable with the needle down lifts it first.
    deck.StopTurntable();
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "drop");
    EXPECT_EQ(deck.StartStopButton()->Caption(), "start");
    EXPECT_FALSE(deck.DropLiftButton()->isEnabled());
    ASSERT_TRUE(WaitFor([&] { return !rig.Mixer().MainOutput().IsForwardPlaying(0); }));
    EXPECT_EQ(Engine().decks[0].isPlaying.load(), 0);
    EXPECT_FALSE(deck.Disc().ForwardReaderExists());
}

TEST(DeckTracks, WindTimeDisplayAndMissingFiles) {
    const QString longTone = testsupport::MakeTone("wind-100s.wav", 440, 100, 8000, 1);
    ASSERT_FALSE(longTone.isEmpty());
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {longTone}));
    EXPECT_NEAR(deck.List().CurrentDuration(), 100.0, 0.01);

    // Fast forward held for a second: ten 100 ms ticks of one track second.
    deck.FastForwardButton()->SetValue(true);
    for (int i = 0; i < 10; ++i)
        deck.WindTick();
    EXPECT_NEAR(deck.ProgressValue(), 0.1, 1e-9);
    deck.FastForwardButton()->SetValue(false);
    EXPECT_NEAR(deck.ElapsedSeconds(), 10.0, 1e-6);

    // "Remaining In Track:" at half of a 185.7 s track.
    deck.List().SetCurrentDuration(185.7f);
    deck.SetTimeDisplayMode("Remaining In Track:");
    deck.ProgressSlide()->SetValue(0.5);
    deck.UpdateTimeDisplay();
    EXPECT_EQ(deck.TimeText(), "00:01:33");
    deck.NextTimeDisplayMode();
    EXPECT_EQ(deck.TimeModeCaption(), "Elapsed In List:");

    // An entry whose file has gone.
    deck.List().Add("/nonexistent/gone.wav", "gone", -1.0f, 0);
    ASSERT_TRUE(deck.NextTrack());
    EXPECT_EQ(deck.TrackNameText(), "The file does not exist");
    EXPECT_EQ(deck.LoadTrack(), -1);
}

TEST(DeckTracks, ACdImagePlaysTrackOneIntoTrackTwoWithoutAGap) {
    const testsupport::CdImage image = testsupport::MakeCdImage("deck-cd");
    ASSERT_TRUE(image.ok);
    const std::unique_ptr<CRynCdAudio> owned = testsupport::MakeImageReader(image);
    CRynCdAudio& reader = *owned;

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    deck.SetCdAudio(&reader);
    deck.SetDeckMode(0);
    EXPECT_EQ(deck.ModeButton()->Caption(), "CD");
    EXPECT_EQ(deck.TrackNameText(), "No CD Drive Is Selected");
    QComboBox* chooser = deck.DriveChooser();
    int item = -1;
    for (int i = 1; i < chooser->count(); ++i) {
        if (reader.DriveRoot(chooser->itemData(i).toInt()) == image.cuePath.toStdString())
            item = i;
    }
    ASSERT_GT(item, 0);
    chooser->setCurrentIndex(item);
    deck.SelectDriveItem(item);
    EXPECT_EQ(deck.List().Count(), 4);
    EXPECT_EQ(deck.List().Path(1), "Track 2");
    // The first track loads and the turntable starts by itself.
    ASSERT_TRUE(WaitFor([&] { return deck.Primed(); }, 10000));
    EXPECT_EQ(deck.TrackNameText(), "Track 1");
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderUntil([&] { return deck.TrackNumberText() == "2/4"; }, 200));
    EXPECT_EQ(deck.TrackNameText(), "Track 2");
    ASSERT_TRUE(rig.RenderBlocks(20));

    // Track 1 and the start of track 2, straight from the disc's sectors.
    const int sectors = static_cast<int>(rig.Output().size() * 2 / 2352);
    ASSERT_GT(sectors, image.End(1) - image.Start(1) + 20);
    const std::vector<std::uint8_t> bytes = image.Sectors(image.Start(1), sectors);
    std::vector<std::int16_t> expected(bytes.size() / 2);
    std::memcpy(expected.data(), bytes.data(), bytes.size());
    EXPECT_EQ(Mismatches(rig.Output(), expected, kFadeSamples), 0);

    // A data track is refused.
    deck.List().LoadIndex(3);
    EXPECT_EQ(deck.LoadTrack(), -1);
    EXPECT_EQ(deck.TrackNameText(), "This is a data track.");
    deck.StopTurntable();
}

TEST(DeckTracks, TheDeckWindowRendersToAPicture) {
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    deck.resize(560, 330);
    deck.List().Add("/music/Some Artist - A Track.mp3", "Some Artist - A Track", 185.7f, 0);
    deck.List().LoadIndex(0);
    deck.RefreshTrackInfo();
    deck.ProgressSlide()->SetValue(0.37);
    deck.UpdateTimeDisplay();
    const QImage shot = deck.grab().toImage();
    ASSERT_FALSE(shot.isNull());
    const QString path = QDir(testsupport::FixtureDir()).filePath("../deck-window.png");
    EXPECT_TRUE(shot.save(path));
}

TEST(DeckTracks, ReversePlaysTheHeardSoundBackwardsAndForwardResumes) {
    const int frames = 441000;
    auto pcm =
        testsupport::WriteWav(Fixture("reverse.wav"), 44100, frames, testsupport::NoiseSample);
    ASSERT_FALSE(pcm.empty());
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {Fixture("reverse.wav")}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(60));
    EXPECT_TRUE(deck.DirectionButton()->isEnabled());

    deck.DirectionButton()->SetValue(true);
    EXPECT_TRUE(deck.IsReverse());
    ASSERT_TRUE(WaitFor([&] { return rig.Mixer().MainOutput().IsReversePlaying(0); }));
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    rig.ClearOutput();
    // The reverse ring carries what was heard, frame-reversed, so playing
    // backwards is not silent.
    ASSERT_TRUE(rig.RenderBlocks(20));
    const auto block = rig.Output().begin() + 10 * 2 * kBlockFrames;
    const long nonSilent =
        std::count_if(block, block + 2 * kBlockFrames, [](std::int16_t s) { return s != 0; });
    EXPECT_GT(nonSilent, static_cast<long>(kBlockFrames));

    deck.DirectionButton()->SetValue(false);
    EXPECT_FALSE(deck.IsReverse());
    ASSERT_TRUE(WaitFor([&] { return rig.Mixer().MainOutput().IsForwardPlaying(0); }));
    EXPECT_FALSE(rig.Mixer().MainOutput().IsReversePlaying(0));
    ASSERT_TRUE(rig.RenderBlocks(20));
    deck.StopTurntable();
}
