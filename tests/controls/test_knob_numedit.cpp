// CNiKnob: the value is the angle pressed at, in the flat and the perspective
// look and with a limited sweep. CNiNumEdit: buttons, keys and typing.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "ControlTestSupport.h"
#include "controls/CNiKnob.h"
#include "controls/CNiNumEdit.h"

using controltest::EventLog;

TEST(CNiKnob, TheValueIsTheTurnAnglePressedAt) {
    CNiKnob k;
    controltest::ShowAt(&k, 120, 120);
    EventLog log;
    log.Watch(&k);
    QObject::connect(&k, &CNiKnob::pointerValueChanged, &k, [&](int i, double v) {
        log.Add(QStringLiteral("pointer %1 %2").arg(i).arg(v, 0, 'f', 3));
    });
    QSignalSpy spy(&k, &CNiKnob::valueChanged);

    QTest::mousePress(&k, Qt::LeftButton, {}, QPoint(110, 60));  // three o'clock
    EXPECT_NEAR(k.Value(), 0.25, 0.002);
    QTest::mouseMove(&k, QPoint(60, 110));  // six o'clock
    EXPECT_NEAR(k.Value(), 0.5, 0.002);
    QTest::mouseMove(&k, QPoint(10, 60));  // nine o'clock
    QTest::mouseRelease(&k, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 60));
    EXPECT_NEAR(k.Value(), 0.75, 0.002);
    EXPECT_EQ(spy.count(), 3);
    EXPECT_EQ(log.Joined(), "down 1 0, pointer 0 0.250, pointer 0 0.500, pointer 0 0.750, up 1 1");

    // Just left of the top is nearly a whole turn; the top itself is 0.
    EXPECT_GT(k.ValueAt(QPointF(59, 5)), 0.99);
    EXPECT_NEAR(k.ValueAt(QPointF(60, 5)), 0.0, 1e-9);

    // The right button turns nothing (the platter's "exit loop").
    log.events.clear();
    QTest::mouseClick(&k, Qt::RightButton, {}, QPoint(60, 110));
    EXPECT_NEAR(k.Value(), 0.75, 0.002);
    EXPECT_EQ(log.Joined(), "down 2 0, up 2 0");

    // Code turns it as the mouse does; the maximum is held.
    k.SetValue(1.7);
    EXPECT_DOUBLE_EQ(k.Value(), 1.0);
    EXPECT_EQ(spy.count(), 4);
}

TEST(CNiKnob, PerspectiveLookAndLimitedSweep) {
    CNiKnob platter;
    platter.SetLook(CNiKnob::kPerspective);
    controltest::ShowAt(&platter, 160, 100);
    // The lowest point of the tilted platter's face is half a turn.
    QTest::mouseClick(&platter, Qt::LeftButton, {}, QPoint(80, 84));
    EXPECT_NEAR(platter.Value(), 0.5, 0.01);
    QTest::mouseClick(&platter, Qt::LeftButton, {}, QPoint(150, 45));
    EXPECT_NEAR(platter.Value(), 0.25, 0.03);

    CNiKnob knob;
    knob.SetSweep(270.0);
    knob.SetAxis(-1.0, 1.0);
    controltest::ShowAt(&knob, 60, 60);
    QTest::mouseClick(&knob, Qt::LeftButton, {}, QPoint(30, 2));  // the top: mid-range
    EXPECT_NEAR(knob.Value(), 0.0, 0.01);
    QTest::mouseClick(&knob, Qt::LeftButton, {}, QPoint(31, 58));  // below the sweep's end
    EXPECT_DOUBLE_EQ(knob.Value(), 1.0);
}

TEST(CNiNumEdit, ButtonsKeysAndTyping) {
    CNiNumEdit e;
    e.SetRange(0, 100);
    e.SetIncrement(5);
    controltest::ShowAt(&e, 80, 22);
    QSignalSpy spy(&e, &CNiNumEdit::valueChanged);

    QTest::mouseClick(&e, Qt::LeftButton, {}, QPoint(75, 5));  // up
    EXPECT_DOUBLE_EQ(e.Value(), 5.0);
    QTest::mouseClick(&e, Qt::LeftButton, {}, QPoint(75, 17));  // down
    QTest::mouseClick(&e, Qt::LeftButton, {}, QPoint(75, 17));  // held at the minimum
    EXPECT_DOUBLE_EQ(e.Value(), 0.0);
    EXPECT_EQ(spy.count(), 2);

    e.setFocus();
    QTest::keyClicks(&e, QStringLiteral("42"));
    EXPECT_TRUE(e.Editing());
    EXPECT_EQ(e.Text(), "42");
    EXPECT_DOUBLE_EQ(e.Value(), 0.0);  // nothing taken before Enter
    QTest::keyClick(&e, Qt::Key_Return);
    EXPECT_DOUBLE_EQ(e.Value(), 42.0);
    QTest::keyClick(&e, Qt::Key_Up);
    EXPECT_DOUBLE_EQ(e.Value(), 47.0);

    QTest::keyClicks(&e, QStringLiteral("999"));
    QTest::keyClick(&e, Qt::Key_Enter);
    EXPECT_DOUBLE_EQ(e.Value(), 100.0);  // held within the range
    QTest::keyClicks(&e, QStringLiteral("1-2"));
    QTest::keyClick(&e, Qt::Key_Return);  // unreadable: dropped
    EXPECT_DOUBLE_EQ(e.Value(), 100.0);
    QTest::keyClicks(&e, QStringLiteral("7"));
    QTest::keyClick(&e, Qt::Key_Escape);
    EXPECT_DOUBLE_EQ(e.Value(), 100.0);
    EXPECT_EQ(e.Text(), "100");

    e.SetDecimals(2);
    e.SetValue(12.5);
    EXPECT_EQ(e.Text(), "12.50");
}
