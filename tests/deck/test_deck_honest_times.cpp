// A truncated VBR MP3: its header announces 7.3 s, the file holds about a
// third of that. Played on the Null device, the deck's elapsed time and
// progress follow what is heard (never more than a block ahead), the track's
// length becomes what the stream really held, and the deck ends cleanly.
#include <gtest/gtest.h>

#include <QFile>
#include <cmath>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "playlist/PlayList.h"
#include "playlist/window/CRynPlayList.h"
#include "sources/CRynFileDecoder.h"

using testsupport::PlaybackRig;

namespace {

constexpr double kBlockSeconds = 1176.0 / 44100.0;

// The announced 7.3 s file cut to 30 % of its bytes.
QString TruncatedVbrMp3() {
    const QString whole = testsupport::MakeTone("vbr-7s.mp3", 440, 7.3, 44100, 2,
                                                {"-c:a", "libmp3lame", "-q:a", "2"});
    if (whole.isEmpty())
        return {};
    const QString cut = testsupport::FixtureDir() + "/vbr-7s-truncated.mp3";
    const QString working = testsupport::WorkingPath(cut);
    QFile::remove(working);
    if (!QFile::copy(whole, working))
        return {};
    QFile f(working);
    if (!f.resize(f.size() * 3 / 10) || !testsupport::Publish(working, cut))
        return {};
    return cut;
}

// Seconds a decoder really reads from the file, block by block.
double DecodedSeconds(const QString& path) {
    CRynFileDecoder decoder;
    if (!decoder.Open(path.toStdString()))
        return 0;
    std::uint8_t block[kBlockBytes];
    double seconds = 0;
    for (int i = 0; i < 10000; ++i) {
        int bytes = 0;
        bool end = false;
        decoder.ReadBlock(block, bytes, end);
        seconds += bytes / 4.0 / decoder.SampleRate();
        if (end)
            break;
    }
    return seconds;
}

double Seconds(const QString& hms) {
    const QStringList p = hms.split(':');
    return p.size() == 3 ? p[0].toInt() * 3600 + p[1].toInt() * 60 + p[2].toInt() : -1;
}

}  // namespace

TEST(DeckHonestTimes, ATruncatedVbrMp3PlaysItsRealLengthAndEndsCleanly) {
    const QString file = TruncatedVbrMp3();
    ASSERT_FALSE(file.isEmpty());
    {
        // The fixture is what it should be: the header promises far more.
        CRynFileDecoder probe;
        ASSERT_TRUE(probe.Open(file.toStdString()));
        EXPECT_GT(probe.DurationSeconds(), 7.0);
    }
    const double real = DecodedSeconds(file);
    ASSERT_GT(real, 1.5);
    ASSERT_LT(real, 3.0);

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {file}));
    // The whole file fits the disc buffer: its end is already known, and the
    // track's length is what the stream held.
    ASSERT_TRUE(testsupport::WaitFor([&] { return deck.EndOfTrackPending(); }));
    EXPECT_NEAR(deck.List().CurrentDuration(), real, 0.05);

    ASSERT_TRUE(rig.Drop(0));
    const double atDrop = deck.ElapsedSeconds();
    rig.ClearOutput();
    double lastProgress = deck.ProgressValue();
    double worstLead = -1;
    double biggestStep = 0;
    int blocks = 0;
    while (!deck.TrackEnded() && blocks < 400) {
        rig.RenderBlocks(1);
        ++blocks;
        if (deck.TrackEnded())
            break;
        deck.ProgressTick();
        deck.UpdateTimeDisplay();
        const double heard = atDrop + rig.Output().size() / 2.0 / 44100.0;
        worstLead = std::max(worstLead, deck.ElapsedSeconds() - heard);
        EXPECT_LE(Seconds(deck.TimeText()), std::floor(heard + kBlockSeconds))
            << "at " << heard << " s heard";
        biggestStep = std::max(biggestStep, deck.ProgressValue() - lastProgress);
        lastProgress = deck.ProgressValue();
    }
    EXPECT_LE(worstLead, kBlockSeconds) << "elapsed ran ahead of the heard position";
    // The slide moves smoothly to the end: at most two blocks a step.
    EXPECT_LT(biggestStep, 2.5 * kBlockSeconds / real);
    EXPECT_GT(lastProgress, 0.9);

    // The end: the needle lifted, the turntable stopped, the slide at its
    // end, the heard length what the file held.
    EXPECT_TRUE(deck.TrackEnded());
    EXPECT_EQ(deck.DropLiftButton()->Caption(), "drop");
    EXPECT_EQ(deck.StartStopButton()->Caption(), "start");
    EXPECT_DOUBLE_EQ(deck.ProgressValue(), 1.0);
    EXPECT_NEAR(atDrop + rig.Output().size() / 2.0 / 44100.0, real, 0.25);
    std::printf("truncated VBR MP3: header 7.3 s, held %.2f s, %d blocks, elapsed lead %.4f s\n",
                real, blocks, worstLead);
}
