// CNiControl: what every control shares. A control disabled while the left
// button is held drops the press (no release will come) and takes the next
// press afresh; only the left button moves a control.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "ControlTestSupport.h"
#include "controls/CNiButton.h"
#include "controls/CNiNumEdit.h"
#include "controls/CNiSlide.h"

using controltest::EventLog;

TEST(CNiControl, DisabledWhileHeldDropsThePressAndTakesTheNextOne) {
    CNiButton wind(QStringLiteral(">>"), QStringLiteral(">>"));
    wind.SetAction(CNiButton::kSwitchUntilReleased);
    controltest::ShowAt(&wind, 60, 24);
    EventLog log;
    log.Watch(&wind);
    QTest::mousePress(&wind, Qt::LeftButton);
    EXPECT_TRUE(wind.Value());
    wind.setEnabled(false);
    EXPECT_FALSE(wind.Value());                  // a wind button never stays on
    QTest::mouseRelease(&wind, Qt::LeftButton);  // a disabled widget is sent nothing
    wind.setEnabled(true);
    QTest::mousePress(&wind, Qt::LeftButton);
    EXPECT_TRUE(wind.Value());
    QTest::mouseRelease(&wind, Qt::LeftButton);
    EXPECT_FALSE(wind.Value());
    EXPECT_EQ(log.Joined(), "down 1 0, down 1 0, up 1 0");
}

TEST(CNiControl, ADisabledSlideForgetsItsDrag) {
    CNiSlide slide(Qt::Vertical);
    slide.SetAxis(0, 10);
    controltest::ShowAt(&slide, 30, 150);
    QTest::mousePress(&slide, Qt::LeftButton, {}, QPoint(15, 75));
    const double held = slide.Value();
    slide.setEnabled(false);
    QTest::mouseRelease(&slide, Qt::LeftButton, {}, QPoint(15, 75));  // not sent
    slide.setEnabled(true);
    QTest::mouseMove(&slide, QPoint(15, 20));
    EXPECT_DOUBLE_EQ(slide.Value(), held);  // the drag ended with the press
    QTest::mousePress(&slide, Qt::LeftButton, {}, QPoint(15, 30));
    EXPECT_GT(slide.Value(), held);  // a new press moves it again
    QTest::mouseRelease(&slide, Qt::LeftButton, {}, QPoint(15, 30));
}

TEST(CNiControl, ANumEditDisabledWhileAButtonIsHeldStopsRepeating) {
    CNiNumEdit e;
    e.SetRange(0, 100);
    controltest::ShowAt(&e, 80, 22);
    QTest::mousePress(&e, Qt::LeftButton, {}, QPoint(75, 5));  // up, held
    EXPECT_DOUBLE_EQ(e.Value(), 1.0);
    e.setEnabled(false);
    QTest::qWait(600);  // past the first repeat
    EXPECT_DOUBLE_EQ(e.Value(), 1.0);
}

TEST(CNiControl, OnlyTheLeftButtonMovesAControl) {
    CNiSlide slide(Qt::Vertical);
    slide.SetAxis(0, 10);
    controltest::ShowAt(&slide, 30, 150);
    EventLog log;
    log.Watch(&slide);
    QTest::mousePress(&slide, Qt::MiddleButton, {}, QPoint(15, 20));
    QTest::mouseMove(&slide, QPoint(15, 40));
    QTest::mouseRelease(&slide, Qt::MiddleButton, {}, QPoint(15, 40));
    EXPECT_DOUBLE_EQ(slide.Value(), 0.0);
    EXPECT_EQ(log.Joined(), "down 4 0, up 4 0");
}
