// The turntable controller on real knobs and buttons (offscreen), with the
// host's messages logged: grabbing, releasing, loops, the drag's pauses, the
// writing pause, the spin with the needle up and the reset.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiKnob.h"
#include "core/EngineState.h"
#include "deck/turntable/DeckTurntablePanel.h"
#include "deck/turntable/TurntableController.h"

using testsupport::MessageLog;

namespace {

class TurntableTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetEngineStateForTest();
        Engine().decks[0].isPlaying.store(1);
        Engine().decks[0].writeAheadBlocks.store(8);
        TurntableController::DeckSide side;
        side.needleDown = [this] { return needleDown; };
        side.filledSlots = [this] { return filled; };
        side.setReverse = [this](bool on) {
            reverseCalls.push_back(on);
            panel.Controller().SetDirection(on);
        };
        side.enableDirection = [this](bool on) { directionEnabled = on; };
        side.applyTempo = [this] { ++tempoApplied; };
        side.platter = [this](int blocks, int reverse) {
            platterBlocks = blocks;
            platterReverse = reverse;
        };
        panel.Initialise(0, host.Handle(), side);
        // The stored choices of an earlier test do not count here.
        panel.ApplyMode(QStringLiteral("Drop"));
        panel.ApplyLook(QStringLiteral("3D"));
        panel.resize(200, 260);
    }
    void TearDown() override { ResetEngineStateForTest(); }

    TurntableController& C() { return panel.Controller(); }
    CNiKnob* Knob() { return C().ActiveKnob(); }
    // The play position as the mix cycle reports it.
    void PlayAt(double angle, int blocksAhead = 10) {
        const int play = static_cast<int>(angle * 564480) / 4 * 4;
        const int write = (play / 4704 + blocksAhead) % 120 * 4704;
        C().NoteForwardCursors(play, write);
    }

    MessageLog host;
    DeckTurntablePanel panel;
    bool needleDown = true;
    int filled = 0;
    std::vector<bool> reverseCalls;
    bool directionEnabled = true;
    int tempoApplied = 0;
    int platterBlocks = -1, platterReverse = -1;
};

}  // namespace

TEST_F(TurntableTest, StartsInTheStoredModeWithTheSecondKnobAndWriting) {
    EXPECT_EQ(C().GetMode(), TurntableController::kDrop);
    EXPECT_EQ(panel.ModeButton()->Caption(), "Drop");
    EXPECT_EQ(panel.LookButton()->Caption(), "3D");
    EXPECT_EQ(C().ActiveKnobIndex(), 1);
    EXPECT_EQ(Knob()->KnobLook(), CNiKnob::kPerspective);
    EXPECT_TRUE(C().Writing());
    EXPECT_EQ(Knob()->PointerColor(), TurntableController::kWritingColour);

    panel.ToggleLook();
    EXPECT_EQ(panel.LookButton()->Caption(), "2D");
    EXPECT_EQ(C().ActiveKnob(), panel.Knob(0));
    EXPECT_TRUE(panel.Knob(1)->isHidden());
    panel.ToggleMode();
    EXPECT_EQ(panel.ModeButton()->Caption(), "Drag");
    EXPECT_EQ(C().GetMode(), TurntableController::kDrag);
    EXPECT_EQ(Knob()->Style(), CNiKnob::kNeedle);
}

TEST_F(TurntableTest, AShiftReleaseAtTheTopLoopsBackToThePlayAngle) {
    PlayAt(0.1);
    EXPECT_NEAR(C().PlayAngle(), 0.1, 1e-5);
    C().LeftDown();
    ASSERT_EQ(host.got.size(), 1u);
    EXPECT_EQ(host.got[0].msg, UWM_FORWARD_PLAY);  // the forward output stops
    EXPECT_EQ(host.got[0].l, 0);
    Knob()->SetValue(0.999);
    // The play angle read back from the cursor is 0.1 to the frame; the
    // loop is then 0.101 of a turn, give or take a frame.
    C().LeftUp(true);
    ASSERT_EQ(host.Count(UWM_START_SCRATCH), 1);
    const int bytes = static_cast<int>(host.got[1].l);
    EXPECT_NEAR(bytes, 57012, 4);
    EXPECT_EQ(bytes % 4, 0);
    EXPECT_EQ(host.got[2].msg, UWM_PLAY_SCRATCH);
    EXPECT_TRUE(C().Holds());
    EXPECT_DOUBLE_EQ(C().ScratchPosition(), 0.999);
    EXPECT_FALSE(panel.ModeButton()->isEnabled());
    EXPECT_FALSE(directionEnabled);
    EXPECT_EQ(tempoApplied, 1);

    // Right click: out of the loop.
    C().RightUp();
    EXPECT_FALSE(C().Holds());
    EXPECT_TRUE(panel.ModeButton()->isEnabled());
}

TEST_F(TurntableTest, AClickInDropModeRepositionsAndPausesWriting) {
    PlayAt(0.5);
    C().LeftDown();
    Knob()->SetValue(0.25);
    C().LeftUp(false);
    ASSERT_EQ(host.got.size(), 3u);
    EXPECT_EQ(host.got[1].msg, UWM_SET_FORWARD_POSITION);
    EXPECT_EQ(host.got[1].l, 30);
    EXPECT_EQ(host.got[2].msg, UWM_FORWARD_PLAY);
    EXPECT_EQ(host.got[2].l, 1);
    // Red until a position update finds fewer blocks ahead than the write-ahead.
    EXPECT_FALSE(C().Writing());
    EXPECT_EQ(Knob()->PointerColor(), TurntableController::kPausedColour);
    PlayAt(0.26, 40);
    EXPECT_FALSE(C().Writing());
    PlayAt(0.5, 7);
    EXPECT_TRUE(C().Writing());
    EXPECT_EQ(Knob()->PointerColor(), TurntableController::kWritingColour);
}

TEST_F(TurntableTest, HoldingStillStopsTheOutputOnceAndMovingRestartsItOnce) {
    panel.ToggleMode();  // drag
    PlayAt(0.4);
    C().LeftDown();
    Knob()->SetValue(0.4);                       // the press; the pointer change samples it
    EXPECT_EQ(host.Count(UWM_FORWARD_PLAY), 1);  // still: stopped
    for (int i = 0; i < 5; ++i)
        C().DragUpdate(true);  // timer 17 while still
    EXPECT_EQ(host.Count(UWM_FORWARD_PLAY), 1);
    EXPECT_TRUE(C().Still());
    EXPECT_EQ(platterBlocks, 48);
    EXPECT_EQ(platterReverse, 72);

    Knob()->SetValue(0.45);
    ASSERT_EQ(host.Count(UWM_FORWARD_PLAY), 2);
    EXPECT_EQ(host.got.back().l, 1);  // restarted
    Knob()->SetValue(0.5);
    EXPECT_EQ(host.Count(UWM_FORWARD_PLAY), 2);
    EXPECT_NEAR(C().ScratchTravel(), 0.1, 1e-12);
    ASSERT_FALSE(reverseCalls.empty());
    EXPECT_FALSE(reverseCalls.back());

    // Backwards: reverse on, writing paused. A tick right after the move is
    // not stillness; a whole period without a move is, and stops the
    // reverse output.
    Knob()->SetValue(0.45);
    EXPECT_TRUE(reverseCalls.back());
    EXPECT_FALSE(C().Writing());
    C().DragUpdate(true);
    EXPECT_EQ(host.Count(UWM_REVERSE_PLAY), 0);
    C().DragUpdate(true);
    EXPECT_EQ(host.Count(UWM_REVERSE_PLAY), 1);
    EXPECT_EQ(host.got.back().l, 0);
    Knob()->SetValue(0.40);
    EXPECT_EQ(host.Count(UWM_REVERSE_PLAY), 2);
    EXPECT_EQ(host.got.back().l, 1);

    // Across the top: +0.04, not -0.96.
    Knob()->SetValue(0.98);
    const double before = C().ScratchTravel();
    Knob()->SetValue(0.02);
    EXPECT_NEAR(C().ScratchTravel() - before, 0.04, 1e-12);
    EXPECT_FALSE(reverseCalls.back());
}

TEST_F(TurntableTest, TheMouseDoesNothingWithTheNeedleUp) {
    Engine().decks[0].isPlaying.store(0);
    needleDown = false;
    PlayAt(0.3);
    QTest::mousePress(Knob(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 40));
    QTest::mouseRelease(Knob(), Qt::LeftButton, Qt::ShiftModifier, QPoint(60, 50));
    QTest::mouseClick(Knob(), Qt::RightButton);
    EXPECT_TRUE(host.got.empty());
    EXPECT_FALSE(C().Grabbed());
    EXPECT_FALSE(C().Holds());
    EXPECT_EQ(tempoApplied, 0);
}

TEST_F(TurntableTest, WithTheNeedleUpThePlatterTurnsWithTheDiscBuffersFill) {
    filled = 0;
    for (int i = 0; i < 10; ++i)
        C().Spin();
    EXPECT_EQ(C().PlayAngle(), 0.0);
    EXPECT_EQ(Knob()->Value(), 0.0);
    filled = 170;
    C().Spin();
    const double full = C().PlayAngle();
    EXPECT_NEAR(full, 0.05 / 3.2, 1e-12);
    filled = 85;
    C().Spin();
    EXPECT_NEAR(C().PlayAngle() - full, full / 2, 1e-12);
    EXPECT_DOUBLE_EQ(Knob()->Value(), C().PlayAngle());
}

TEST_F(TurntableTest, ResetPutsBothPlattersAtZero) {
    PlayAt(0.7);
    C().Draw();
    panel.Knob(0)->SetValue(0.3);
    C().LeftDown();
    C().Reset();
    EXPECT_EQ(panel.Knob(0)->Value(), 0.0);
    EXPECT_EQ(panel.Knob(1)->Value(), 0.0);
    EXPECT_EQ(C().PlayAngle(), 0.0);
    EXPECT_FALSE(C().Grabbed());
    EXPECT_TRUE(C().Writing());
}
