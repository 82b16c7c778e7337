// The keyboard through the real program: the host built by its own start-up
// (Null sound device), its keyboard fed with key events sent to deck A's
// window, the real poll thread every 30 ms, and the maps moving the real
// windows' controls.
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>
#include <memory>

#include "InProcessHost.h"
#include "TestSupport.h"
#include "app/CMixoraDlg.h"
#include "app/CRynKeyboard.h"
#include "app/KeyReleaseSettle.h"
#include "app/KeyboardControl.h"
#include "app/ShellLog.h"
#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"

namespace {

// Pumps the event loop for `ms` milliseconds (the poll thread's sends are
// served meanwhile).
void Hold(int ms) {
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms)
        PumpMessages(1);
}

class KeysThroughWindows : public ::testing::Test {
  protected:
    void SetUp() override {
        ClearShellLogForTest();
        host_ = testsupport::StartInProcessHost();
        ASSERT_NE(host_, nullptr);
        ASSERT_NE(host_->KeyMaps(), nullptr);
        deckA_ = host_->Deck(0);
    }
    void TearDown() override {
        Release();
        host_.reset();
    }

    // Key events as the keyboard sends them, to deck A's window.
    void Press(Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyPress(deckA_, key, mods);
    }
    void Release(Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        QTest::keyRelease(deckA_, key, mods);
        Hold(40);  // the release settles; the poll on its way and the key-up are served
    }
    void Release() {
        if (host_)
            static_cast<CRynKeyboard&>(host_->Keys()).Clear();
    }
    int Polls(int key) const { return host_->KeyMaps()->PolledCount(key); }
    MainMixerPanel& Panel() { return host_->MainMixer()->Panel(); }

    // Loads a generated file on deck A: its turntable then rotates.
    void LoadDeckA() {
        const QString tone = testsupport::MakeTone("keys-10s.wav", 440, 10);
        ASSERT_FALSE(tone.isEmpty());
        deckA_->OpenFiles({tone});
        ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->Rotating(); }));
    }

    std::unique_ptr<CMixoraDlg> host_;
    CRynDeck* deckA_ = nullptr;
};

}  // namespace

TEST_F(KeysThroughWindows, HoldingTRaisesDeckAMainLevelOneStepAPollAndStopsAtTheTop) {
    Panel().SetLevel(0, 0.0f);
    Press(Qt::Key_T);
    Hold(1000);
    Release(Qt::Key_T);
    const int polls = Polls('T');
    // A poll every 30 ms: about 33 in a second (fewer when the machine is busy).
    EXPECT_GE(polls, 20);
    EXPECT_LE(polls, 36);
    EXPECT_NEAR(Panel().Level(0), 0.01 * polls, 1e-5);
    EXPECT_FLOAT_EQ(Panel().Level(1), static_cast<float>(Panel().DeckLevelSlide(1)->Value()));

    // Shift+T: a tenth a poll, up to the slide's maximum and no further.
    Press(Qt::Key_Shift);
    Press(Qt::Key_T, Qt::ShiftModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Panel().Level(0) >= 1.0f; }, 3000));
    const int atTop = Polls('T');
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('T') >= atTop + 3; }));
    Release(Qt::Key_T, Qt::ShiftModifier);
    Release(Qt::Key_Shift);
    EXPECT_DOUBLE_EQ(Panel().DeckLevelSlide(0)->Value(), Panel().DeckLevelSlide(0)->Maximum());

    // G brings it down again, by one step a poll.
    const int before = Polls('G');
    Press(Qt::Key_G);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('G') >= before + 5; }));
    Release(Qt::Key_G);
    EXPECT_NEAR(Panel().Level(0), 1.0 - 0.01 * (Polls('G') - before), 1e-5);
}

TEST_F(KeysThroughWindows, CtrlTMovesTheHeadphonesLevelInsteadOfTheMainLevel) {
    CNiSlide* phones = host_->HeadphonesMixer()->LevelSlide(0);
    ASSERT_NE(phones, nullptr);
    phones->SetValue(0.2);
    const float main = Panel().Level(0);
    Press(Qt::Key_Control);
    Press(Qt::Key_T, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('T') >= 5; }));
    Release(Qt::Key_T, Qt::ControlModifier);
    Release(Qt::Key_Control);
    EXPECT_NEAR(phones->Value(), 0.2 + 0.01 * Polls('T'), 1e-9);
    EXPECT_FLOAT_EQ(Panel().Level(0), main);

    // Ctrl+N moves the headphones cross fader, Ctrl+Page Down its volume.
    CNiSlide* fader = host_->HeadphonesMixer()->CrossFaderSlide();
    const float mainFader = Panel().CrossFader();
    Press(Qt::Key_Control);
    Press(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('N') >= 3; }));
    Release(Qt::Key_N, Qt::ControlModifier);
    Release(Qt::Key_Control);
    EXPECT_NEAR(fader->Value(), 0.02 * Polls('N'), 1e-9);
    EXPECT_FLOAT_EQ(Panel().CrossFader(), mainFader);
}

TEST_F(KeysThroughWindows, ZLowersDeckAsFirstEqualizerBandInItsEngines) {
    CRynEqualizer* eq = deckA_->Equalizer();
    ASSERT_NE(eq, nullptr);
    ASSERT_NE(eq->LevelSlide(0), nullptr);
    eq->LevelSlide(0)->SetValue(1.0);
    Press(Qt::Key_Z);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('Z') >= 4; }));
    Release(Qt::Key_Z);
    const double expected = 1.0 - 0.05 * Polls('Z');
    EXPECT_NEAR(eq->LevelSlide(0)->Value(), expected, 1e-9);
    // The slide drives the band: the engines that equalize the deck hear it.
    EXPECT_NEAR(eq->Engines().Level(0), expected, 1e-5);

    // Ctrl silences the equalizer keys.
    const double before = eq->LevelSlide(0)->Value();
    Press(Qt::Key_Control);
    Press(Qt::Key_A, Qt::ControlModifier);
    Hold(150);
    Release(Qt::Key_A, Qt::ControlModifier);
    Release(Qt::Key_Control);
    EXPECT_DOUBLE_EQ(eq->LevelSlide(0)->Value(), before);
}

TEST_F(KeysThroughWindows, ShiftFStepsTheTempoAndPlainFPushesTheSpindleThatSpringsBack) {
    DeckTempoPanel& tempo = deckA_->Tempo();
    Press(Qt::Key_Shift);
    Press(Qt::Key_F, Qt::ShiftModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('F') >= 4; }));
    Release(Qt::Key_F, Qt::ShiftModifier);
    Release(Qt::Key_Shift);
    // One whole step a poll; the spindle never moved and nothing sprang back.
    EXPECT_EQ(tempo.Arbitrary(), Polls('F'));
    EXPECT_EQ(tempo.Spindle(), 0.0);

    const int arbitrary = tempo.Arbitrary();
    const int before = Polls('F');
    Press(Qt::Key_F);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('F') >= before + 3; }));
    PumpMessages(3);
    const int pushes = Polls('F') - before;
    EXPECT_NEAR(tempo.Spindle(), std::min(1.0, 0.05 * pushes), 1e-9);
    EXPECT_GT(tempo.TotalPercent(), arbitrary);  // the spindle's four percent a unit
    QTest::keyRelease(deckA_, Qt::Key_F);
    ASSERT_TRUE(testsupport::WaitFor([&] { return tempo.Spindle() == 0.0; }));
    EXPECT_EQ(tempo.Arbitrary(), arbitrary);
    EXPECT_NEAR(tempo.TotalPercent(), arbitrary, 1e-9);

    // Q and R move the tempo slide; Shift silences them.
    Press(Qt::Key_R);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('R') >= 2; }));
    Release(Qt::Key_R);
    EXPECT_NEAR(tempo.Tempo(), 0.05 * Polls('R'), 1e-9);
    const double slide = tempo.Tempo();
    Press(Qt::Key_Shift);
    Press(Qt::Key_Q, Qt::ShiftModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return Polls('Q') >= 2; }));
    Release(Qt::Key_Q, Qt::ShiftModifier);
    Release(Qt::Key_Shift);
    EXPECT_EQ(tempo.Tempo(), slide);
}

TEST_F(KeysThroughWindows, TransportKeysClickEnabledButtonsAndHoldReverseWhileHeld) {
    // Nothing loaded: Ctrl+S and Ctrl+D find their buttons disabled.
    QTest::keyClick(deckA_, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(deckA_, Qt::Key_D, Qt::ControlModifier);
    PumpMessages(5);
    EXPECT_EQ(deckA_->StartStopButton()->Caption(), "start");
    EXPECT_EQ(deckA_->DropLiftButton()->Caption(), "drop");

    LoadDeckA();
    // Ctrl+S stops the turning deck and starts it again; Ctrl+D drops the needle.
    QTest::keyClick(deckA_, Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return !deckA_->Rotating(); }));
    QTest::keyClick(deckA_, Qt::Key_S, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->Rotating(); }));
    QTest::keyClick(deckA_, Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->NeedleDown(); }));
    EXPECT_EQ(deckA_->DropLiftButton()->Caption(), "lift");

    // Ctrl+F held: reverse while held; F let go with Ctrl still down ends it.
    Press(Qt::Key_Control);
    Press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->IsReverse(); }));
    EXPECT_TRUE(deckA_->DirectionButton()->Value());
    Hold(200);
    EXPECT_TRUE(deckA_->IsReverse());
    EXPECT_EQ(deckA_->Tempo().Spindle(), 0.0);  // Ctrl silences the held F
    QTest::keyRelease(deckA_, Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return !deckA_->IsReverse(); }));
    EXPECT_FALSE(deckA_->DirectionButton()->Value());
    Release(Qt::Key_Control);

    // Ctrl let go first: letting go of F still ends the reverse it started.
    Press(Qt::Key_Control);
    Press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->IsReverse(); }));
    Release(Qt::Key_Control);
    QTest::keyRelease(deckA_, Qt::Key_F);
    ASSERT_TRUE(testsupport::WaitFor([&] { return !deckA_->IsReverse(); }));

    // Ctrl+X holds fast forward until X is let go.
    Press(Qt::Key_Control);
    Press(Qt::Key_X, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->FastForwardButton()->Value(); }));
    Release(Qt::Key_X, Qt::ControlModifier);
    Release(Qt::Key_Control);
    EXPECT_TRUE(testsupport::WaitFor([&] { return !deckA_->FastForwardButton()->Value(); }));

    const QStringList& log = ShellLogLines();
    EXPECT_TRUE(log.contains("key: deck A start/stop -> start"));
    EXPECT_TRUE(log.contains("key: deck A start/stop -> stop"));
    EXPECT_TRUE(log.contains("key: deck A needle -> lift"));
    EXPECT_TRUE(log.contains("key: deck A reverse on"));
    EXPECT_TRUE(log.contains("key: deck A reverse off"));
}

TEST_F(KeysThroughWindows, DigitsJumpWithinTheTrackAndCtrlDigitsDoNothing) {
    LoadDeckA();
    QTest::keyClick(deckA_, Qt::Key_3);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->ProgressValue() > 0.0; }));
    EXPECT_NEAR(deckA_->ProgressValue(), 0.4, 1e-9);
    EXPECT_NEAR(deckA_->ElapsedSeconds(), 4.0, 0.05);  // 40 % of 10 s

    QTest::keyClick(deckA_, Qt::Key_5, Qt::ControlModifier);
    QTest::keyClick(deckA_, Qt::Key_NumberSign, Qt::ShiftModifier);  // Shift+3
    PumpMessages(5);
    EXPECT_NEAR(deckA_->ProgressValue(), 0.4, 1e-9);

    // 8 is deck B's 40 %; deck B has nothing loaded, so nothing moves.
    QTest::keyClick(deckA_, Qt::Key_8);
    PumpMessages(5);
    EXPECT_EQ(host_->Deck(1)->ProgressValue(), 0.0);
    QTest::keyClick(deckA_, Qt::Key_1);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->ProgressValue() == 0.0; }));
    EXPECT_TRUE(ShellLogLines().contains("key: deck A jump 40%"));
}

TEST_F(KeysThroughWindows, TheSnapshotSkipsTextFieldsAndClearsWhenTheProgramLosesFocus) {
    auto& keys = static_cast<CRynKeyboard&>(host_->Keys());
    auto* field = new QLineEdit(deckA_);
    QTest::keyClick(field, Qt::Key_T);
    EXPECT_FALSE(keys.IsDown('T'));
    EXPECT_EQ(field->text(), "t");

    QTest::keyPress(deckA_, Qt::Key_T);
    QTest::keyPress(deckA_, Qt::Key_T);  // a second press changes nothing
    EXPECT_TRUE(keys.IsDown('T'));
    EXPECT_EQ(keys.Poll(), std::vector<KeyCode>{'T'});
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_FALSE(keys.IsDown('T'));
    EXPECT_TRUE(keys.Poll().empty());
}

TEST_F(KeysThroughWindows, XAutoRepeatPairsKeepAKeyHeld) {
    auto& keys = static_cast<CRynKeyboard&>(host_->Keys());
    auto send = [&](QEvent::Type type, int key, Qt::KeyboardModifiers mods, quint64 time) {
        QKeyEvent event(type, key, mods);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(deckA_, &event);
    };
    // Plain F held past the repeat delay: the X server sends a release and a
    // press with one time stamp. The spindle keeps its push.
    send(QEvent::KeyPress, Qt::Key_F, Qt::NoModifier, 1000);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->Tempo().Spindle() > 0.0; }));
    bool sprangBack = false;
    QObject::connect(deckA_->Tempo().SpindleSlide(), &CNiSlide::valueChanged, deckA_,
                     [&](double v) { sprangBack = sprangBack || v == 0.0; });
    for (quint64 t = 1660; t < 1800; t += 40) {
        send(QEvent::KeyRelease, Qt::Key_F, Qt::NoModifier, t);
        send(QEvent::KeyPress, Qt::Key_F, Qt::NoModifier, t);
        Hold(40);
        EXPECT_TRUE(keys.IsDown('F'));
        EXPECT_GT(deckA_->Tempo().Spindle(), 0.0);
    }
    EXPECT_FALSE(sprangBack);
    // Let go for real: it springs back once the release has settled.
    send(QEvent::KeyRelease, Qt::Key_F, Qt::NoModifier, 1900);
    EXPECT_TRUE(keys.IsDown('F'));  // not yet
    ASSERT_TRUE(testsupport::WaitFor([&] { return !keys.IsDown('F'); }, 1000));
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->Tempo().Spindle() == 0.0; }, 1000));
}

TEST_F(KeysThroughWindows, LosingTheFocusLetsGoOfWhatTheKeysHold) {
    LoadDeckA();
    QTest::keyClick(deckA_, Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->NeedleDown(); }));
    Press(Qt::Key_Control);
    Press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->IsReverse(); }));
    Release(Qt::Key_Control);  // F stays down: the spindle is pushed
    ASSERT_TRUE(testsupport::WaitFor([&] { return deckA_->Tempo().Spindle() > 0.0; }));

    // The key-ups go to another program.
    emit qApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_FALSE(deckA_->IsReverse());
    EXPECT_EQ(deckA_->Tempo().Spindle(), 0.0);
    Hold(100);  // no poll moves anything any more
    EXPECT_EQ(deckA_->Tempo().Spindle(), 0.0);
}

TEST(KeyReleaseSettle, ARepeatPairCancelsTheReleaseAndOtherReleasesArriveInOrder) {
    KeyReleaseSettle settle;
    QStringList got;
    // Made by code (no time stamp): at once.
    settle.Release('A', 0, [&] { got << "A up"; });
    EXPECT_EQ(got, QStringList{"A up"});
    // A release and a press with one time stamp: the key never went up.
    settle.Release('B', 500, [&] { got << "B up"; });
    EXPECT_TRUE(settle.Press('B', 500));
    // A press with a later time stamp: the release was real and comes first.
    settle.Release('C', 600, [&] { got << "C up"; });
    EXPECT_FALSE(settle.Press('C', 640));
    EXPECT_EQ(got, (QStringList{"A up", "C up"}));
    // A lone release arrives once it has settled.
    settle.Release('D', 700, [&] { got << "D up"; });
    EXPECT_EQ(got.size(), 2);
    ASSERT_TRUE(testsupport::WaitFor([&] { return got.size() == 3; }, 1000));
    EXPECT_EQ(got.last(), "D up");
}
