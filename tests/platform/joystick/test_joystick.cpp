// The joystick behind the 3D sound: SDL's joystick subsystem read through
// the Joystick interface, with SDL's virtual joystick standing in for a
// device plugged in while the program runs.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>

#include "platform/joystick/Joystick.h"
#include "platform/joystick/VirtualJoystick.h"

using testsupport::VirtualJoystick;

TEST(Joystick, AxesScaleToPlusMinusAThousand) {
    EXPECT_EQ(joystick::ScaleAxis(0), 0);
    EXPECT_EQ(joystick::ScaleAxis(32767), 1000);
    EXPECT_EQ(joystick::ScaleAxis(-32768), -1000);
    EXPECT_EQ(joystick::ScaleAxis(16384), 500);
    EXPECT_EQ(joystick::ScaleAxis(-8192), -250);
}

TEST(Joystick, NoDeviceGivesNoReadingAndOnePluggedInLaterIsPickedUp) {
    std::unique_ptr<joystick::Joystick> js = joystick::OpenSystemJoystick();
    joystick::Position p{7, 7};
    // The machine has no joystick of its own.
    ASSERT_EQ(SDL_NumJoysticks(), 0) << "a real joystick is attached";
    EXPECT_FALSE(js->Poll(&p));
    EXPECT_FALSE(js->Present());
    EXPECT_EQ(p.x, 7) << "no reading leaves the position alone";

    {
        VirtualJoystick stick;
        ASSERT_TRUE(stick.Ok()) << SDL_GetError();
        stick.Set(16384, -8192);
        // The first poll acquires the device, the next one reads it.
        EXPECT_FALSE(js->Poll(&p));
        EXPECT_TRUE(js->Present());
        ASSERT_TRUE(js->Poll(&p));
        EXPECT_EQ(p.x, 500);
        EXPECT_EQ(p.y, -250);
        stick.Set(-32768, 32767);
        ASSERT_TRUE(js->Poll(&p));
        EXPECT_EQ(p.x, -1000);
        EXPECT_EQ(p.y, 1000);
    }
    // Pulled out: no reading, the device let go.
    EXPECT_FALSE(js->Poll(&p));
    EXPECT_FALSE(js->Present());
    EXPECT_EQ(p.x, -1000);
}

TEST(Joystick, TheNullJoystickNeverReads) {
    joystick::NullJoystick js;
    joystick::Position p;
    EXPECT_FALSE(js.Poll(&p));
    EXPECT_FALSE(js.Present());
}
