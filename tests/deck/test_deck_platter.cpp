// The platter end to end on the Null device: a click in drop mode a quarter
// turn back plays from there; a shift-click loops the stretch up to the play
// position until a right click; a drag forwards then backwards plays the
// ring forwards and then frame-reversed. And the deck window with both
// platter looks, drawn to pictures in the build folder.
#include <gtest/gtest.h>

#include <QDir>
#include <cmath>

#include "DeckRig.h"
#include "FrameMatch.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiKnob.h"
#include "deck/CRynDeck.h"
#include "deck/transport/DeckTransport.h"
#include "deck/turntable/DeckTurntablePanel.h"
#include "deck/turntable/TurntableController.h"
#include "deck/turntable/TurntableLaw.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/PlayList.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;
using namespace testsupport;

namespace {

constexpr long kFade = kFadeFrames;
// Normalised autocorrelation of the left channel over `n` frames from `o`.
double Correlation(const Pcm& out, long o, long n, long lag) {
    double xy = 0, xx = 0, yy = 0;
    for (long i = 0; i < n; ++i) {
        const double x = out[2 * (o + i)], y = out[2 * (o + i + lag)];
        xy += x * y;
        xx += x * x;
        yy += y * y;
    }
    return xy / std::sqrt(xx * yy + 1e-9);
}

class DeckPlatter : public ::testing::Test {
  protected:
    void SetUp() override {
        path = QDir(testsupport::FixtureDir()).filePath("platter-20s.wav");
        pcm = testsupport::WriteWav(path, 44100, 20 * 44100, testsupport::NoiseSample);
        ASSERT_FALSE(pcm.empty());
        ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
        ASSERT_TRUE(rig.Drop(0));
        ASSERT_TRUE(Render(200));  // the ring holds 3.2 s of the track
        // Output frame o plays file frame o (the drop starts at the track's start).
        ASSERT_EQ(Align(Out(), kFade, pcm, kFade, kFade, 1), kFade);
    }
    // Blocks rendered with 1 ms each for the readers, more while one is
    // short of data (a loaded machine) until it has refilled: the manual
    // Null device renders as fast as the test asks, far faster than a real
    // device.
    bool Render(int blocks) {
        for (int i = 0; i < blocks; ++i) {
            if (!rig.RenderBlocks(1))
                return false;
            WaitFor([] { return false; }, 1);
            rig.WaitForReaders(2000);
        }
        return true;
    }
    CRynDeck& Deck() { return rig.Deck(0); }
    TurntableController& Platter() { return rig.Deck(0).Turntable(); }
    const Pcm& Out() { return rig.Output(); }
    // The file frame heard next: output and file run together so far.
    long Heard() { return Frames(Out()); }

    PlaybackRig rig;
    QString path;
    Pcm pcm;
};

}  // namespace

TEST_F(DeckPlatter, AClickAQuarterTurnBackPlaysFromThere) {
    rig.Deck(0).TurntablePanel()->ApplyMode(QStringLiteral("Drop"));
    const double play = Platter().PlayAngle();
    const long heard = Heard();
    Platter().LeftDown();
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    Platter().ActiveKnob()->SetValue(turntable::Wrap(play - 0.25));
    Platter().LeftUp(false);
    ASSERT_TRUE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    EXPECT_FALSE(Platter().Writing());
    const long from = Frames(Out());
    ASSERT_TRUE(Render(200));  // past the ring: writing has resumed
    EXPECT_TRUE(Platter().Writing());
    // A quarter turn is 35280 frames; the click lands on a block boundary.
    const long quarter = 35280;
    const long at = Align(Out(), from + kFade, pcm, heard - quarter - 2 * kBlockFrames,
                          heard - quarter + 2 * kBlockFrames + kFade, 1);
    ASSERT_GE(at, 0) << "the output does not play from a quarter turn back";
    EXPECT_EQ(Mismatches(Out(), from + kFade, pcm, at, Frames(Out()) - from - kFade, 1), 0);
}

TEST_F(DeckPlatter, AShiftClickLoopsTheStretchUntilTheRightClick) {
    rig.Deck(0).TurntablePanel()->ApplyMode(QStringLiteral("Drop"));
    const double play = Platter().PlayAngle();
    Platter().LeftDown();
    Platter().ActiveKnob()->SetValue(turntable::Wrap(play - 0.1));
    Platter().LeftUp(true);
    ASSERT_TRUE(Platter().Holds());
    const long loopFrames = turntable::LoopBytes(play, turntable::Wrap(play - 0.1)) / 4;
    const long from = Frames(Out());
    for (int i = 0; i < 100; ++i) {  // about eight loops
        ASSERT_TRUE(Render(1));
        WaitFor([] { return false; }, 1);  // the loop's notifications are served
    }
    EXPECT_TRUE(Platter().Holds());
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    // The output repeats every loop length: its autocorrelation peaks there.
    const long o = from + kFade, n = 2 * loopFrames;
    const double atLoop = Correlation(Out(), o, n, loopFrames);
    EXPECT_GT(atLoop, 0.95);
    for (long lag : {loopFrames / 2, loopFrames - 300, loopFrames + 300, 3 * loopFrames / 2})
        EXPECT_LT(std::abs(Correlation(Out(), o, n, lag)), 0.2) << "lag " << lag;
    // The loop is the stretch of the track just heard.
    EXPECT_GE(Align(Out(), o, pcm, Heard() - 300000, Heard(), 1), 0);

    // Right click: the loop ends when it next comes round, and forward play goes on.
    Platter().RightUp();
    EXPECT_FALSE(Platter().Holds());
    ASSERT_TRUE(rig.RenderUntil(
        [&] {
            WaitFor([] { return false; }, 1);
            return rig.Mixer().MainOutput().IsForwardPlaying(0);
        },
        2 * static_cast<int>(loopFrames / kBlockFrames) + 10));
    EXPECT_TRUE(Deck().TurntablePanel()->ModeButton()->isEnabled());
    ASSERT_TRUE(Render(20));
}

TEST_F(DeckPlatter, ADragForwardThenBackwardPlaysTheRingForwardsThenReversed) {
    rig.Deck(0).TurntablePanel()->ApplyMode(QStringLiteral("Drag"));
    CNiKnob* knob = Platter().ActiveKnob();
    double angle = Platter().PlayAngle();
    // The pointer puts the knob where it presses before the grab: a drag
    // update served while the press is handled samples that angle, not the
    // one the platter last drew.
    knob->SetValue(angle);
    Platter().LeftDown();
    knob->SetValue(angle);
    Platter().DragUpdate();  // the press's sample: the hand holds the platter, the output stops
    EXPECT_TRUE(Platter().Still());
    EXPECT_FALSE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    const long heard = Heard();

    // Forwards: the ring plays on from where it was.
    const long forwardFrom = Frames(Out());
    for (int i = 0; i < 60; ++i) {
        angle = turntable::Wrap(angle + 0.002);
        knob->SetValue(angle);
        ASSERT_TRUE(Render(1));
    }
    EXPECT_FALSE(Deck().IsReverse());
    const long forwardAt = Align(Out(), forwardFrom + kFade, pcm, heard - 2 * kBlockFrames,
                                 heard + 2 * kBlockFrames + kFade, 1);
    ASSERT_GE(forwardAt, 0);
    const long backFrom = Frames(Out());
    EXPECT_EQ(
        Mismatches(Out(), forwardFrom + kFade, pcm, forwardAt, backFrom - forwardFrom - kFade, 1),
        0);
    const long reached = forwardAt + backFrom - forwardFrom - kFade;

    // Backwards: the same ring, frame-reversed, from where forward play got to.
    for (int i = 0; i < 60; ++i) {
        angle = turntable::Wrap(angle - 0.002);
        knob->SetValue(angle);
        if (i == 0) {
            EXPECT_TRUE(Deck().IsReverse());
            EXPECT_FALSE(Platter().Writing());
        }
        ASSERT_TRUE(Render(1));
    }
    const long backAt = Align(Out(), backFrom + kFade, pcm, reached - kFade - 2 * kBlockFrames,
                              reached - kFade + 2 * kBlockFrames, -1);
    ASSERT_GE(backAt, 0) << "the backward drag does not play the ring reversed";
    EXPECT_EQ(
        Mismatches(Out(), backFrom + kFade, pcm, backAt, Frames(Out()) - backFrom - kFade, -1), 0);

    // Let go: forwards again at the platter's angle.
    Platter().LeftUp(false);
    EXPECT_FALSE(Deck().IsReverse());
    EXPECT_TRUE(rig.Mixer().MainOutput().IsForwardPlaying(0));
    ASSERT_TRUE(Render(20));
}

TEST(DeckPlatterPictures, TheDeckWindowWithBothPlatterLooks) {
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    deck.resize(720, 330);
    deck.List().Add("/music/Some Artist - A Track.mp3", "Some Artist - A Track", 185.7f, 0);
    deck.List().LoadIndex(0);
    deck.RefreshTrackInfo();
    DeckTurntablePanel* panel = deck.TurntablePanel();
    const QString dir = QDir(testsupport::FixtureDir()).filePath("..");
    for (const char* look : {"2D", "3D"}) {
        panel->ApplyLook(QString::fromLatin1(look));
        panel->ApplyMode(QString::fromLatin1(look[0] == '2' ? "Drag" : "Drop"));
        deck.Turntable().ActiveKnob()->SetValue(0.3);
        const QImage shot = deck.grab().toImage();
        ASSERT_FALSE(shot.isNull());
        EXPECT_TRUE(shot.save(QDir(dir).filePath(QStringLiteral("deck-platter-%1.png").arg(look))));
    }
    EXPECT_EQ(panel->LookButton()->Caption(), "3D");
}
