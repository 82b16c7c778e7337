// CNiButton under the mouse and from code: toggle, momentary and indicator
// actions, captions that follow the value, right clicks and the shift state.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

#include "ControlTestSupport.h"
#include "controls/CNiButton.h"

using controltest::EventLog;

TEST(CNiButton, ToggleFollowsTheMouseAndTheCaptionFollowsTheValue) {
    CNiButton b(QStringLiteral("start"), QStringLiteral("stop"));
    controltest::ShowAt(&b, 80, 24);
    EventLog log;
    log.Watch(&b);
    QObject::connect(&b, &CNiButton::valueChanged, &b, [&](bool on) {
        log.Add(QStringLiteral("value %1 %2").arg(on).arg(b.Caption()));
    });
    EXPECT_EQ(b.Caption(), "start");

    QTest::mouseClick(&b, Qt::LeftButton);
    EXPECT_TRUE(b.Value());
    EXPECT_EQ(b.Caption(), "stop");
    QTest::mouseClick(&b, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_FALSE(b.Value());
    EXPECT_EQ(b.Caption(), "start");
    // Mouse down comes first, the value change with its caption already shown,
    // then mouse up.
    EXPECT_EQ(log.Joined(), "down 1 0, value 1 stop, up 1 0, down 1 1, value 0 start, up 1 1");

    // The right button reports its events with the shift state and changes nothing.
    log.events.clear();
    QTest::mouseClick(&b, Qt::RightButton, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_FALSE(b.Value());
    EXPECT_EQ(log.Joined(), "down 2 6, up 2 6");
}

TEST(CNiButton, CodeMovesTheButtonLikeTheMouseAndCaptionsCanBeKeptByHand) {
    CNiButton b(QStringLiteral("CD E.C. Is Off"), QStringLiteral("CD E.C. Is On"));
    QSignalSpy spy(&b, &CNiButton::valueChanged);
    b.SetValue(true);
    b.SetValue(true);  // no change, no event
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy[0][0].toBool(), true);
    EXPECT_EQ(b.Caption(), "CD E.C. Is On");

    // Setting the text of the shown state shows it; the other waits its turn.
    b.SetOnText(QStringLiteral("on!"));
    b.SetOffText(QStringLiteral("off!"));
    EXPECT_EQ(b.Caption(), "on!");
    b.SetValue(false);
    EXPECT_EQ(b.Caption(), "off!");

    // A caption set by hand stays until the value changes again; without on-
    // and off-texts it stays for good.
    CNiButton plain;
    plain.SetCaption(QStringLiteral("Elapsed In Track:"));
    plain.SetValue(true);
    plain.SetValue(false);
    EXPECT_EQ(plain.Caption(), "Elapsed In Track:");
}

TEST(CNiButton, MomentaryIndicatorAndDisabledButtons) {
    CNiButton wind(QStringLiteral(">>"), QStringLiteral(">>"));
    wind.SetAction(CNiButton::kSwitchUntilReleased);
    controltest::ShowAt(&wind, 60, 24);
    QSignalSpy windSpy(&wind, &CNiButton::valueChanged);
    QTest::mousePress(&wind, Qt::LeftButton);
    EXPECT_TRUE(wind.Value());
    QTest::mouseRelease(&wind, Qt::LeftButton);
    EXPECT_FALSE(wind.Value());
    EXPECT_EQ(windSpy.count(), 2);

    // Lamps are indicators: clicks are reported but never change the value.
    CNiButton lamp;
    lamp.SetStyle(CNiButton::kRoundLamp);
    EXPECT_EQ(lamp.MechanicalAction(), CNiButton::kIndicator);
    controltest::ShowAt(&lamp, 20, 20);
    EventLog log;
    log.Watch(&lamp);
    QSignalSpy lampSpy(&lamp, &CNiButton::valueChanged);
    QTest::mouseClick(&lamp, Qt::LeftButton);
    QTest::mouseClick(&lamp, Qt::RightButton);
    EXPECT_EQ(lampSpy.count(), 0);
    EXPECT_EQ(log.Joined(), "down 1 0, up 1 0, down 2 0, up 2 0");
    // The lamp's colours are its own: the meters set theirs.
    lamp.SetColors(QColor(255, 50, 40), QColor(100, 10, 10));
    EXPECT_EQ(lamp.OnColor(), QColor(255, 50, 40));

    // A disabled button takes no mouse work at all; code still moves it.
    CNiButton off(QStringLiteral("drop"), QStringLiteral("lift"));
    controltest::ShowAt(&off, 60, 24);
    off.setEnabled(false);
    EventLog offLog;
    offLog.Watch(&off);
    QTest::mouseClick(&off, Qt::LeftButton);
    EXPECT_FALSE(off.Value());
    EXPECT_TRUE(offLog.events.isEmpty());
    off.SetValue(true);
    EXPECT_EQ(off.Caption(), "lift");
}

TEST(CNiButton, DoubleClickIsASecondPressAndADoubleClick) {
    CNiButton b(QStringLiteral("1"), QStringLiteral("2"));
    controltest::ShowAt(&b, 60, 24);
    EventLog log;
    log.Watch(&b);
    QObject::connect(&b, &CNiButton::valueChanged, &b,
                     [&](bool on) { log.Add(QStringLiteral("value %1").arg(on)); });
    QTest::mouseClick(&b, Qt::LeftButton);
    QTest::mouseDClick(&b, Qt::LeftButton);  // the second press, then the double click
    EXPECT_EQ(log.Joined(), "down 1 0, value 1, up 1 0, down 1 0, value 0, double");
}
