// Reverse play held for ten seconds in the middle of a track, end to end on
// the Null device: the backward reader feeds the reverse ring for as long as
// the switch is on, so the output is the track's frames in reverse order far
// past the 3.2 s the rings hold, with no block missing; forward play then
// resumes where reverse play got to. For a file and for a CUE/BIN CD image.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstring>

#include "DeckRig.h"
#include "FrameMatch.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "deck/transport/DeckTransport.h"
#include "output/mixer/CRynMainMixer.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;
using namespace testsupport;

namespace {

constexpr long kFade = kFadeFrames;
constexpr int kTenSeconds = 375;  // blocks of 1176 frames

// To the middle of the loaded track with the needle up, then the needle down.
bool DropInTheMiddle(PlaybackRig& rig) {
    CRynDeck& deck = rig.Deck(0);
    deck.Reposition(0.5);
    if (!WaitFor([&] { return deck.Disc().ForwardFilledCount() > 150; }, 10000))
        return false;
    WaitFor([] { return false; }, 200);  // the rings rebuilt and primed
    return rig.Drop(0);
}

// From a deck playing forwards in the middle of `pcm`: reverse held ten
// seconds, then forward again.
void HoldReverseTenSeconds(PlaybackRig& rig, const Pcm& pcm, long expectedStart) {
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.RenderBlocks(200));  // the rings hold 3.2 s of the track
    const Pcm& out = rig.Output();
    const long forwardAt = Align(out, kFade, pcm, expectedStart - 2 * kBlockFrames,
                                 expectedStart + 2 * kBlockFrames + kFade, 1);
    ASSERT_GE(forwardAt, 0) << "forward play is not the track";
    const long switchOut = Frames(out);
    const long heard = forwardAt + switchOut - kFade;  // the next frame forwards
    ASSERT_EQ(Mismatches(out, kFade, pcm, forwardAt, switchOut - kFade, 1), 0);

    deck.DirectionButton()->SetValue(true);
    ASSERT_TRUE(deck.IsReverse());
    ASSERT_TRUE(WaitFor([&] { return rig.Mixer().MainOutput().IsReversePlaying(0); }));
    // The manual Null device renders as fast as the test asks; the reader
    // gets 2 ms a block, a thirteenth of the 26.7 ms a real device gives it.
    for (int i = 0; i < kTenSeconds; ++i) {
        ASSERT_TRUE(rig.RenderBlocks(1));
        WaitFor([] { return false; }, 2);
    }
    // Reverse starts at the end of the block being heard and goes back.
    const long o = switchOut + kFade;
    const long backAt =
        Align(out, o, pcm, heard - kFade - 2 * kBlockFrames, heard - kFade + 2 * kBlockFrames, -1);
    ASSERT_GE(backAt, 0) << "reverse play does not start where forward play was";
    const long count = Frames(out) - o;
    EXPECT_GE(count, 10L * 44100 - kFade - kBlockFrames);
    EXPECT_EQ(Mismatches(out, o, pcm, backAt, count, -1), 0);
    EXPECT_EQ(deck.Transport().ReverseUnderruns(), 0);
    const long reachedBack = backAt - count;  // the next frame backwards

    // Forward again: from where reverse play got to, on into the track.
    deck.DirectionButton()->SetValue(false);
    ASSERT_FALSE(deck.IsReverse());
    ASSERT_TRUE(WaitFor([&] { return rig.Mixer().MainOutput().IsForwardPlaying(0); }));
    const long resumeOut = Frames(out);
    ASSERT_TRUE(rig.RenderBlocks(200));
    const long resumeAt = Align(out, resumeOut + kFade, pcm, reachedBack - 2 * kBlockFrames,
                                reachedBack + 2 * kBlockFrames + kFade, 1);
    ASSERT_GE(resumeAt, 0) << "forward play does not resume where reverse play got to";
    EXPECT_EQ(Mismatches(out, resumeOut + kFade, pcm, resumeAt, Frames(out) - resumeOut - kFade, 1),
              0);
    deck.StopTurntable();
}

}  // namespace

TEST(DeckReverse, HeldTenSecondsInTheMiddleOfAFilePlaysItBackwards) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("reverse-60s.wav");
    const int frames = 60 * 44100;
    const Pcm pcm = testsupport::WriteWav(path, 44100, frames, testsupport::NoiseSample);
    ASSERT_FALSE(pcm.empty());

    PlaybackRig rig;
    ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
    ASSERT_TRUE(DropInTheMiddle(rig));
    HoldReverseTenSeconds(rig, pcm, frames / 2);
}

TEST(DeckReverse, HeldTenSecondsInTheMiddleOfACdTrackPlaysItBackwards) {
    // One 40-second audio track whose sectors are noise.
    testsupport::CdImage image = testsupport::MakeCdImage("reverse-cd", {{true, 40 * 75, 441.0}});
    ASSERT_TRUE(image.ok);
    const int frames = 40 * 75 * 588;
    Pcm pcm(static_cast<std::size_t>(frames) * 2);
    for (int i = 0; i < frames; ++i) {
        pcm[2 * i] = testsupport::NoiseSample(i, 0);
        pcm[2 * i + 1] = testsupport::NoiseSample(i, 1);
    }
    {
        QFile bin(image.binPath);
        ASSERT_TRUE(bin.open(QIODevice::ReadWrite));
        ASSERT_TRUE(bin.seek(qint64(image.Start(1)) * 2352));
        ASSERT_EQ(bin.write(reinterpret_cast<const char*>(pcm.data()), qint64(pcm.size()) * 2),
                  qint64(pcm.size()) * 2);
    }
    const std::unique_ptr<CRynCdAudio> reader = testsupport::MakeImageReader(image);

    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    deck.SetCdAudio(reader.get());
    deck.SetDeckMode(0);
    QComboBox* chooser = deck.DriveChooser();
    int item = -1;
    for (int i = 1; i < chooser->count(); ++i) {
        if (reader->DriveRoot(chooser->itemData(i).toInt()) == image.cuePath.toStdString())
            item = i;
    }
    ASSERT_GT(item, 0);
    chooser->setCurrentIndex(item);
    deck.SelectDriveItem(item);
    ASSERT_TRUE(WaitFor([&] { return deck.Primed(); }, 10000));
    ASSERT_TRUE(DropInTheMiddle(rig));
    HoldReverseTenSeconds(rig, pcm, frames / 2);
}

TEST(DeckReverse, LiftingTheNeedleWhilePlayingBackwardsTurnsTheDeckForwards) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("reverse-lift.wav");
    ASSERT_FALSE(testsupport::WriteWav(path, 44100, 10 * 44100, testsupport::NoiseSample).empty());
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(40));
    deck.DirectionButton()->SetValue(true);
    ASSERT_TRUE(deck.IsReverse());
    EXPECT_EQ(Engine().decks[0].backwardReaderRun.load(), 1);
    ASSERT_TRUE(rig.RenderBlocks(10));

    deck.LiftNeedle();
    EXPECT_FALSE(deck.IsReverse());
    EXPECT_FALSE(deck.DirectionButton()->Value());
    EXPECT_EQ(Engine().decks[0].backwardReaderRun.load(), 0);
    ASSERT_TRUE(WaitFor([&] { return !rig.Mixer().MainOutput().IsReversePlaying(0); }));
    // Down again: forwards, and the track goes on.
    ASSERT_TRUE(rig.Drop(0));
    const std::size_t before = rig.Output().size();
    ASSERT_TRUE(rig.RenderBlocks(40));
    const long sound = std::count_if(rig.Output().begin() + static_cast<long>(before),
                                     rig.Output().end(), [](std::int16_t s) { return s != 0; });
    EXPECT_GT(sound, 30L * 2 * kBlockFrames);
    deck.StopTurntable();
}
