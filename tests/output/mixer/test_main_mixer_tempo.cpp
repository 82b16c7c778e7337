// The main mixer's beats-per-minute read-outs end to end: real decks load
// generated rhythm files, the mixer's tempo worker measures them with aubio,
// the read-out shows the tempo within 0.5 BPM and follows the deck's tempo
// slide, a track loaded again is not measured again, and a file that cannot
// be read leaves the read-out at "--- BPM".
#include <gtest/gtest.h>

#include <QFile>
#include <QLabel>
#include <QThread>

#include "TempoFixtures.h"
#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;

namespace {

// The read-out's number, 0 for "--- BPM".
double Shown(CRynMainMixer& mixer, int deck) {
    return mixer.Meters().BpmText(deck).section(' ', 0, 0).toDouble();
}

bool WaitShown(CRynMainMixer& mixer, int deck) {
    return WaitFor([&] { return Shown(mixer, deck) > 0; }, 60000);
}

}  // namespace

TEST(MainMixerTempo, ReadOutShowsTrackTempoTimesPlaybackRate) {
    const QString click = testsupport::MakeClickTrack("tempo-click-120.wav", 120, 30);
    const QString drums = testsupport::MakeDrumPattern("tempo-drums-174.wav", 174, 30);
    ASSERT_FALSE(click.isEmpty() || drums.isEmpty());
    PlaybackRig rig(true);
    CRynMainMixer& mixer = rig.Mixer();
    EXPECT_EQ(mixer.Meters().BpmText(0), "--- BPM");
    ASSERT_TRUE(rig.LoadAndPrime(0, {click}));
    ASSERT_TRUE(rig.LoadAndPrime(1, {drums}));
    ASSERT_TRUE(WaitShown(mixer, 0));
    ASSERT_TRUE(WaitShown(mixer, 1));
    EXPECT_NEAR(Shown(mixer, 0), 120.0, 0.5) << mixer.Meters().BpmText(0).toStdString();
    EXPECT_NEAR(Shown(mixer, 1), 174.0, 0.5) << mixer.Meters().BpmText(1).toStdString();

    // The tempo slide at +8 %: the read-out follows the deck's frequency.
    rig.Deck(0).Tempo().StepTempo(8.0);
    EXPECT_TRUE(WaitFor([&] { return mixer.Meters().BpmText(0) == "129.6 BPM"; }));
    EXPECT_EQ(mixer.Meters().BpmText(0), "129.6 BPM");
    mixer.resize(900, 420);
    EXPECT_TRUE(mixer.grab().save(QStringLiteral(MIXORA_BINARY_DIR "/main-mixer-tempo.png")));
    rig.Deck(0).Tempo().StepTempo(-8.0);
    EXPECT_TRUE(WaitFor([&] { return Shown(mixer, 0) < 121; }));
    EXPECT_NEAR(Shown(mixer, 0), 120.0, 0.5);

    // The read-out is one of the mixer's registered controls.
    const ComponentRegistry& registry = mixer.Registry();
    bool found = false;
    for (int k = 0; k < registry.Count(); ++k) {
        if (registry.Control(k) == mixer.Meters().BpmLabel(0)) {
            found = true;
            EXPECT_EQ(registry.Title(k), "Deck A Beats Per Minute:");
            EXPECT_TRUE(registry.Description(k).contains("tempo slide"));
            EXPECT_EQ(mixer.Meters().BpmLabel(0)->toolTip(), registry.Label(k));
        }
    }
    EXPECT_TRUE(found);
}

TEST(MainMixerTempo, TrackLoadedAgainIsNotMeasuredAgain) {
    // Files of their own, so that no other test has put them in the cache.
    const QString a = testsupport::MakeClickTrack("tempo-cache-128.wav", 128, 20);
    const QString b = testsupport::MakeClickTrack("tempo-cache-120.wav", 120, 20);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());
    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    ASSERT_TRUE(rig.LoadAndPrime(0, {a}));
    ASSERT_TRUE(WaitShown(mixer, 0));
    EXPECT_NEAR(Shown(mixer, 0), 128.0, 0.5);
    ASSERT_TRUE(rig.LoadAndPrime(0, {b}));
    ASSERT_TRUE(WaitFor([&] { return std::abs(Shown(mixer, 0) - 120.0) < 0.5; }, 60000));
    const int analyses = mixer.TempoService().Analyses();
    EXPECT_EQ(analyses, 2);
    // The first track again: answered from the cache.
    ASSERT_TRUE(rig.LoadAndPrime(0, {a}));
    ASSERT_TRUE(WaitFor([&] { return std::abs(Shown(mixer, 0) - 128.0) < 0.5; }, 60000));
    EXPECT_EQ(mixer.TempoService().Analyses(), analyses);
    EXPECT_GE(mixer.TempoService().CacheHits(), 1);

    // Shutdown stops the worker before the decks go: an answer already on
    // its way to the window thread is dropped, not shown. Asked for the
    // second track (in the cache) with the window thread busy until the
    // answer has been posted.
    const int hits = mixer.TempoService().CacheHits();
    mixer.TempoService().Request(0, b.toStdString());
    for (int i = 0; i < 500 && mixer.TempoService().CacheHits() == hits; ++i)
        QThread::msleep(10);
    ASSERT_GT(mixer.TempoService().CacheHits(), hits);
    QThread::msleep(50);
    mixer.StopTempo();
    EXPECT_FALSE(mixer.TempoService().IsRunning());
    WaitFor([] { return false; }, 200);
    EXPECT_NEAR(Shown(mixer, 0), 128.0, 0.5) << "an answer came after the stop";
}

TEST(MainMixerTempo, UnreadableFileLeavesNoReadOut) {
    const QString click = testsupport::MakeClickTrack("tempo-click-120.wav", 120, 30);
    ASSERT_FALSE(click.isEmpty());
    const QString junk = testsupport::FixtureDir() + "/tempo-junk.wav";
    {
        QFile f(junk);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("RIFF....WAVEfmt junk that decodes to nothing");
    }
    PlaybackRig rig;
    CRynMainMixer& mixer = rig.Mixer();
    ASSERT_TRUE(rig.LoadAndPrime(0, {click}));
    ASSERT_TRUE(WaitShown(mixer, 0));
    // The deck cannot load the junk: the read-out goes back to dashes and
    // stays there.
    rig.Deck(0).OpenFiles({junk});
    EXPECT_TRUE(WaitFor([&] { return mixer.Meters().BpmText(0) == "--- BPM"; }));
    WaitFor([] { return false; }, 500);
    EXPECT_EQ(mixer.Meters().BpmText(0), "--- BPM");
    EXPECT_DOUBLE_EQ(mixer.TrackTempo(0), 0.0);
}
