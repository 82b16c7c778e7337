// The start-up help: which tip a start shows and stores, the splash placement
// law and the splash window itself, the tip window on the real settings (its
// box, next button and OK), the host's choice of showing it at all, and the
// tool tip gate following the engine's flag.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "TestSupport.h"
#include "app/StartUpHelp.h"
#include "core/EngineState.h"
#include "help/CRynSplashScreen.h"
#include "help/TipsAndSplash.h"
#include "help/ToolTipGate.h"
#include "help/window/CRynTipOfTheDay.h"
#include "settings/CRynSettings.h"

TEST(TipsLaw, StoredIndexIsClampedAndTheNextWraps) {
    EXPECT_EQ(tips::NextTip(6).shown, 6);
    EXPECT_EQ(tips::NextTip(6).next, 0);
    EXPECT_EQ(tips::NextTip(0).shown, 0);
    EXPECT_EQ(tips::NextTip(0).next, 1);
    EXPECT_EQ(tips::NextTip(50).shown, 6);
    EXPECT_EQ(tips::NextTip(50).next, 0);
    EXPECT_EQ(tips::NextTip(-3).shown, 0);
    EXPECT_EQ(tips::NextTip(-3).next, 1);
}

TEST(TipsLaw, SevenTipsExactly) {
    EXPECT_EQ(tips::kTipCount, 7);
    EXPECT_EQ(tips::TipText(0),
              QStringLiteral("You can right click any graph or meter to turn it off in order to "
                             "save CPU time."));
    EXPECT_EQ(tips::TipText(5), QStringLiteral("Press the \"end\" key for full screen."));
    EXPECT_EQ(tips::TipText(6), QStringLiteral("To delete all of the items in the list hold shift "
                                               "and click the delete item button."));
    EXPECT_TRUE(tips::TipText(7).isEmpty());
    EXPECT_TRUE(tips::TipText(-1).isEmpty());
    for (int i = 0; i < 7; ++i)
        EXPECT_FALSE(tips::TipText(i).isEmpty()) << i;
}

TEST(SplashLaw, CentredOnTheWorkAreaWithIntegerDivision) {
    EXPECT_EQ(splash::Place(QRect(0, 0, 1024, 740), QSize(400, 300)), QPoint(312, 220));
    EXPECT_EQ(splash::Place(QRect(0, 0, 1025, 741), QSize(400, 300)), QPoint(312, 220));
    EXPECT_EQ(splash::Place(QRect(100, 30, 1024, 740), QSize(400, 300)), QPoint(412, 250));
}

TEST(SplashScreen, ShowsItsPictureCentredThenHides) {
    CRynSplashScreen s;
    EXPECT_FALSE(s.Create(100, QPixmap(), nullptr));
    EXPECT_FALSE(s.Created());
    const QPixmap picture = CRynSplashScreen::SplashPicture();
    EXPECT_EQ(picture.size(), QSize(400, 300));
    ASSERT_TRUE(s.Create(150, picture, nullptr, QRect(0, 0, 1024, 740)));
    EXPECT_TRUE(s.Created());
    EXPECT_TRUE(s.isVisible());
    EXPECT_EQ(s.pos(), QPoint(312, 220));
    EXPECT_EQ(s.size(), QSize(400, 300));
    EXPECT_TRUE(s.grab().toImage() == picture.toImage());
    s.grab().save(QStringLiteral(MIXORA_BINARY_DIR "/splash.png"));
    EXPECT_TRUE(testsupport::WaitFor([&s] { return !s.isVisible(); }, 3000));
}

class TipOfTheDayTest : public ::testing::Test {
  protected:
    void SetUp() override {
        savedShow_ = Settings().GetShowTipOfTheDay();
        savedIndex_ = Settings().GetTipOfTheDayIndex();
    }
    void TearDown() override {
        Settings().SetShowTipOfTheDay(savedShow_);
        Settings().SetTipOfTheDayIndex(savedIndex_);
    }
    bool savedShow_ = true;
    int savedIndex_ = 0;
};

TEST_F(TipOfTheDayTest, IndexSixShowsTipSixThenTheNextStartShowsTipZero) {
    Settings().SetTipOfTheDayIndex(6);
    {
        CRynTipOfTheDay tip;
        tip.Initialise();
        EXPECT_EQ(tip.windowTitle(), QStringLiteral("Tip Of The Day"));
        EXPECT_TRUE(tip.ShowAtStartupBox()->isChecked());
        EXPECT_EQ(tip.CurrentIndex(), 6);
        EXPECT_EQ(tip.TipShown(), tips::TipText(6));
        EXPECT_EQ(Settings().GetTipOfTheDayIndex(), 0);
    }
    CRynTipOfTheDay next;
    next.Initialise();
    EXPECT_EQ(next.TipShown(), tips::TipText(0));
    EXPECT_EQ(Settings().GetTipOfTheDayIndex(), 1);
}

TEST_F(TipOfTheDayTest, FiftyShowsTheLastTipAndStoresZero) {
    Settings().SetTipOfTheDayIndex(50);
    CRynTipOfTheDay tip;
    tip.Initialise();
    EXPECT_EQ(tip.TipShown(), tips::TipText(6));
    EXPECT_EQ(Settings().GetTipOfTheDayIndex(), 0);
}

TEST_F(TipOfTheDayTest, NextButtonBoxAndOk) {
    Settings().SetTipOfTheDayIndex(2);
    CRynTipOfTheDay tip;
    tip.Initialise();
    tip.show();
    EXPECT_EQ(tip.TipShown(), tips::TipText(2));
    QTest::mousePress(tip.NextTipButton(), Qt::LeftButton);
    EXPECT_EQ(tip.TipShown(), tips::TipText(3));
    EXPECT_EQ(Settings().GetTipOfTheDayIndex(), 4);
    QTest::mouseRelease(tip.NextTipButton(), Qt::LeftButton);
    QTest::mouseClick(tip.ShowAtStartupBox(), Qt::LeftButton);
    EXPECT_FALSE(Settings().GetShowTipOfTheDay());
    QTest::mouseClick(tip.ShowAtStartupBox(), Qt::LeftButton);
    EXPECT_TRUE(Settings().GetShowTipOfTheDay());
    tip.grab().save(QStringLiteral(MIXORA_BINARY_DIR "/tip_of_the_day.png"));
    EXPECT_EQ(tip.OkButton()->text(), QStringLiteral("OK"));
    QTest::mouseClick(tip.OkButton(), Qt::LeftButton);
    EXPECT_FALSE(tip.isVisible());
}

TEST_F(TipOfTheDayTest, HostShowsTheTipOnlyWhenTheSettingIsOn) {
    QWidget mixer;
    mixer.setGeometry(100, 100, 600, 400);
    mixer.show();
    Settings().SetShowTipOfTheDay(false);
    Settings().SetTipOfTheDayIndex(3);
    EXPECT_EQ(ShowTipOfTheDay(&mixer), nullptr);
    EXPECT_EQ(Settings().GetTipOfTheDayIndex(), 3);  // no tip, no step
    Settings().SetShowTipOfTheDay(true);
    CRynTipOfTheDay* tip = ShowTipOfTheDay(&mixer);
    ASSERT_NE(tip, nullptr);
    EXPECT_TRUE(tip->isVisible());
    EXPECT_FALSE(tip->isModal());
    EXPECT_EQ(tip->TipShown(), tips::TipText(3));
    // Centred on the mixer (each centre rounds on its own).
    const QPoint offset = tip->frameGeometry().center() - mixer.frameGeometry().center();
    EXPECT_LE(std::abs(offset.x()), 2);
    EXPECT_LE(std::abs(offset.y()), 2);
}

namespace {

// Counts the tool tip events that reach it.
class TipProbe : public QWidget {
  public:
    int tips = 0;

  protected:
    bool event(QEvent* e) override {
        if (e->type() == QEvent::ToolTip)
            ++tips;
        return QWidget::event(e);
    }
};

}  // namespace

TEST(ToolTipGate, ToolTipsReachControlsOnlyWhileTheFlagIsOn) {
    ToolTipGate::Install();
    ToolTipGate::Install();  // once is enough
    EXPECT_EQ(qApp->findChildren<ToolTipGate*>().size(), 1);
    TipProbe probe;
    probe.setToolTip(QStringLiteral("delete item"));
    auto tipEvent = [&probe] {
        QHelpEvent e(QEvent::ToolTip, QPoint(1, 1), QPoint(1, 1));
        QApplication::sendEvent(&probe, &e);
    };
    Engine().toolTipsOn.store(0);
    tipEvent();
    EXPECT_EQ(probe.tips, 0);
    Engine().toolTipsOn.store(1);
    tipEvent();
    EXPECT_EQ(probe.tips, 1);
    Engine().toolTipsOn.store(0);
}
