// The play lists' duration probes (held back while a deck plays from a
// removable drive) and the one list of accepted audio formats.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "TestSupport.h"
#include "core/EngineState.h"
#include "platform/media/MediaFixtures.h"
#include "sources/AudioFormats.h"
#include "sources/CRynFileDecoder.h"
#include "sources/DurationProbe.h"

TEST(DurationProbe, MeasuresFilesAndReportsDone) {
    ResetEngineStateForTest();
    const QString mp3 =
        testsupport::MakeTone("dp_tone.mp3", 800, 3, 44100, 2, {"-c:a", "libmp3lame"});
    const QString ogg =
        testsupport::MakeTone("dp_tone.ogg", 800, 7.5, 44100, 2, {"-c:a", "libvorbis"});
    DurationProbe probe(Engine().decks[1], Engine().decks);
    probe.Start();
    EXPECT_EQ(Engine().decks[1].playListThreadRun.load(), 1);
    EXPECT_EQ(probe.Result(), -1.0f);

    probe.Request(mp3.toStdString());
    ASSERT_TRUE(testsupport::WaitFor([&] { return probe.IsDone(); }));
    EXPECT_NEAR(probe.Result(), 3.0, 0.1);
    EXPECT_TRUE(probe.Measured());
    probe.ClearDone();

    probe.Request(ogg.toStdString());
    ASSERT_TRUE(testsupport::WaitFor([&] { return probe.IsDone(); }));
    EXPECT_NEAR(probe.Result(), 7.5, 0.01);
    probe.ClearDone();

    // A file that does not open: done, result left as it was.
    probe.Request("/nonexistent/mixora/gone.wav");
    ASSERT_TRUE(testsupport::WaitFor([&] { return probe.IsDone(); }));
    EXPECT_NEAR(probe.Result(), 7.5, 0.01);
    EXPECT_FALSE(probe.Measured());  // the result is not this file's
    probe.ClearDone();
    probe.Request(mediafixtures::TextFile("dp_notes.mp3", "liner notes").toStdString());
    ASSERT_TRUE(testsupport::WaitFor([&] { return probe.IsDone(); }));
    EXPECT_NEAR(probe.Result(), 7.5, 0.01);

    probe.Stop();
    EXPECT_FALSE(probe.IsRunning());
    EXPECT_EQ(Engine().decks[1].playListThreadRun.load(), 0);
}

TEST(DurationProbe, LeavesARemovableDriveAloneWhileItPlays) {
    ResetEngineStateForTest();
    const QString track =
        testsupport::MakeTone("dp_track.wav", 500, 2, 44100, 2, {"-c:a", "pcm_s16le"});
    QTemporaryDir dir;
    CRynFileDecoder playing;
    playing.SetDriveProbeRootsForTest(mediafixtures::FakeSysfs(dir, track, true));
    ASSERT_TRUE(playing.Open(track.toStdString()));
    EXPECT_TRUE(playing.IsOnRemovableDrive());
    DeckSharedState& deckA = Engine().decks[0];
    deckA.decoder = &playing;
    deckA.sourceType = 1;
    deckA.isPlaying = 1;

    DurationProbe probe(Engine().decks[1], Engine().decks);
    probe.Start();
    probe.Request(track.toStdString());
    // The probe takes the request and lets it go.
    ASSERT_TRUE(testsupport::WaitFor([] { return !Engine().decks[1].playListWakeEvent.IsSet(); }));
    probe.Stop();
    EXPECT_FALSE(probe.IsDone());
    EXPECT_EQ(probe.Result(), -1.0f);

    // Once the deck stops, the same request is served.
    deckA.isPlaying = 0;
    probe.Start();
    probe.Request(track.toStdString());
    ASSERT_TRUE(testsupport::WaitFor([&] { return probe.IsDone(); }));
    EXPECT_NEAR(probe.Result(), 2.0, 1e-6);
    probe.Stop();
    deckA.decoder = nullptr;
}

TEST(AudioFormats, ExtensionsAndFilters) {
    using namespace audioformats;
    for (const char* p : {"/m/a.wav", "/m/b.MP3", "c.Wma", "/d.ogg", "e.flac", "f.opus", "g.m4a"})
        EXPECT_TRUE(IsAudioFile(p)) << p;
    for (const char* p : {"/m/a.txt", "noext", "/m.mp3/readme", "/m/.mp3x", ""})
        EXPECT_FALSE(IsAudioFile(p)) << p;
    EXPECT_EQ(ExtensionOf("/a.b/C.OGG"), ".ogg");
    EXPECT_EQ(ExtensionOf("/a.b/c"), "");
    for (std::string_view ext : kExtensions) {
        EXPECT_NE(kPattern.find(std::string("*") + std::string(ext)), std::string_view::npos);
        EXPECT_NE(kDialogFilter.find(std::string("*") + std::string(ext)), std::string_view::npos);
    }
    EXPECT_EQ(kPattern.substr(0, 26), "*.wav; *.mp3; *.wma; *.ogg");
}
