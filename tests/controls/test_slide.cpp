// CNiSlide under the mouse and from code: pointer picking and dragging, the
// order of events, non-interactive and hidden pointers, end arrows, right
// clicks, clamping to the axis and discrete steps.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "ControlTestSupport.h"
#include "controls/CNiSlide.h"

using controltest::EventLog;

namespace {

// The point of a vertical slide's track at a fraction of its axis. The track
// leaves room for half a thumb and a border at each end.
QPoint VerticalAt(const CNiSlide& s, double fraction) {
    const double margin = 8.0;
    const double y = (s.height() - margin) - fraction * (s.height() - 2 * margin);
    return QPoint(s.width() / 2, int(std::lround(y)));
}

}  // namespace

TEST(CNiSlide, PressJumpsDragFollowsAndEventsComeInOrder) {
    CNiSlide s(Qt::Vertical);
    controltest::ShowAt(&s, 30, 216);  // a 200-pixel track
    EventLog log;
    log.Watch(&s);
    QObject::connect(&s, &CNiSlide::valueChanged, &s,
                     [&](double v) { log.Add(QStringLiteral("value %1").arg(v, 0, 'f', 2)); });
    QObject::connect(&s, &CNiSlide::mouseDown, &s, [&](int, int, QPoint) {
        log.Add(QStringLiteral("value at down %1").arg(s.Value(), 0, 'f', 2));
    });

    QTest::mousePress(&s, Qt::LeftButton, {}, VerticalAt(s, 0.75));
    QTest::mouseMove(&s, VerticalAt(s, 0.25));
    QTest::mouseRelease(&s, Qt::LeftButton, {}, VerticalAt(s, 0.25));
    EXPECT_NEAR(s.Value(), 0.25, 0.01);
    // The window sees the press before the pointer moves (a progress slide
    // stops following playback first), and mouse up after the last move.
    EXPECT_EQ(log.Joined(), "down 1 0, value at down 0.00, value 0.75, value 0.25, up 1 0");

    // Dragging past the ends holds the value within the axis.
    QTest::mousePress(&s, Qt::LeftButton, {}, VerticalAt(s, 0.5));
    QTest::mouseMove(&s, QPoint(15, -40));
    QTest::mouseRelease(&s, Qt::LeftButton, {}, QPoint(15, -40));
    EXPECT_DOUBLE_EQ(s.Value(), 1.0);
}

TEST(CNiSlide, RightClickMovesNothingAndReportsTheShiftState) {
    CNiSlide s(Qt::Horizontal);
    s.SetAxis(-1.0, 1.0);
    s.SetValue(0.5);
    controltest::ShowAt(&s, 200, 28);
    EventLog log;
    log.Watch(&s);
    QSignalSpy spy(&s, &CNiSlide::valueChanged);
    QTest::mouseClick(&s, Qt::RightButton, Qt::ShiftModifier, QPoint(20, 14));
    EXPECT_EQ(spy.count(), 0);
    EXPECT_EQ(log.Joined(), "down 2 1, up 2 1");
    // What a window does on that mouse up: back to the centre, which reports.
    s.SetValue(0.0);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_DOUBLE_EQ(spy[0][0].toDouble(), 0.0);
}

TEST(CNiSlide, SeveralPointersEachWithItsOwnValue) {
    CNiSlide s(Qt::Vertical);
    controltest::ShowAt(&s, 30, 216);
    s.SetAxis(0.0, 280000.0);
    s.SetPointerCount(4);
    s.SetValue(20000.0);
    s.SetPointerValue(1, 260000.0);
    s.SetPointerValue(2, 140000.0);
    s.SetPointerInteractive(2, false);  // an indicator in the middle
    s.SetPointerVisible(3, false);

    QSignalSpy valueSpy(&s, &CNiSlide::valueChanged);
    QSignalSpy pointerSpy(&s, &CNiSlide::pointerValueChanged);
    // A press at 154000 picks the nearest interactive pointer (pointer 1 at
    // 260000), never the indicator right beside it.
    QTest::mouseClick(&s, Qt::LeftButton, {}, VerticalAt(s, 0.55));
    EXPECT_DOUBLE_EQ(s.PointerValue(2), 140000.0);
    EXPECT_DOUBLE_EQ(s.Value(), 20000.0);
    EXPECT_NEAR(s.PointerValue(1), 0.55 * 280000.0, 1500.0);
    EXPECT_EQ(valueSpy.count(), 0);  // only pointer 0 is the slide's value
    ASSERT_EQ(pointerSpy.count(), 1);
    EXPECT_EQ(pointerSpy[0][0].toInt(), 1);

    // Code sets any pointer and reports it with its index.
    pointerSpy.clear();
    s.SetPointerValue(3, 99000.0);
    s.SetValue(30000.0);
    ASSERT_EQ(pointerSpy.count(), 2);
    EXPECT_EQ(pointerSpy[0][0].toInt(), 3);
    EXPECT_EQ(pointerSpy[1][0].toInt(), 0);
    EXPECT_EQ(valueSpy.count(), 1);
    EXPECT_EQ(s.PointerColor(7), QColor());  // out of range: harmless
    s.SetPointerValue(7, 1.0);
}

TEST(CNiSlide, EndArrowsStepPointerZeroWithinTheAxis) {
    CNiSlide fader(Qt::Horizontal);
    fader.SetAxis(-1.0, 1.0);
    fader.SetArrowsVisible(true);
    fader.SetArrowStep(1.0);
    fader.SetValue(-1.0);
    controltest::ShowAt(&fader, 220, 28);
    QSignalSpy spy(&fader, &CNiSlide::valueChanged);
    const QPoint right(fader.width() - 6, 14), left(6, 14);
    QTest::mouseClick(&fader, Qt::LeftButton, {}, right);
    EXPECT_DOUBLE_EQ(fader.Value(), 0.0);
    QTest::mouseClick(&fader, Qt::LeftButton, {}, right);
    QTest::mouseClick(&fader, Qt::LeftButton, {}, right);
    EXPECT_DOUBLE_EQ(fader.Value(), 1.0);
    QTest::mouseClick(&fader, Qt::LeftButton, {}, left);
    EXPECT_DOUBLE_EQ(fader.Value(), 0.0);
    EXPECT_EQ(spy.count(), 3);  // the press at the end stop changed nothing
}

TEST(CNiSlide, AxisChangesClampPointersAndDiscreteStepsSnap) {
    CNiSlide s(Qt::Vertical);
    controltest::ShowAt(&s, 30, 216);
    s.SetAxis(0.0, 11.0);
    s.SetValue(9.0);
    QSignalSpy spy(&s, &CNiSlide::valueChanged);
    s.SetAxis(0.0, 5.0);  // fewer bands: the selection comes down to the last one
    ASSERT_EQ(spy.count(), 1);
    EXPECT_DOUBLE_EQ(s.Value(), 5.0);
    s.SetValue(-3.0);
    EXPECT_DOUBLE_EQ(s.Value(), 0.0);
    s.SetAxis(2.0, 2.0);  // an empty axis is refused
    EXPECT_DOUBLE_EQ(s.Maximum(), 5.0);

    s.SetDiscreteStep(1.0);
    QTest::mouseClick(&s, Qt::LeftButton, {}, VerticalAt(s, 0.47));  // 2.35 → 2
    EXPECT_DOUBLE_EQ(s.Value(), 2.0);
}
