// The joystick behind the 3D sound: SDL's joystick subsystem read through
// the Joystick interface, with SDL's virtual joystick standing in for a
// device plugged in while the program runs.
#include <gtest/gtest.h>

#include <SDL2/SDL.h>

#include "platform/joystick/Joystick.h"

namespace {

// A virtual two-axis joystick, attached for the test's length; its own
// handle sets the axes.
class VirtualStick {
  public:
    VirtualStick() {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_InitSubSystem(SDL_INIT_JOYSTICK);
        index_ = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 2, 0, 0);
        if (index_ >= 0)
            stick_ = SDL_JoystickOpen(index_);
    }
    ~VirtualStick() {
        if (stick_)
            SDL_JoystickClose(stick_);
        if (index_ >= 0)
            SDL_JoystickDetachVirtual(index_);
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }
    bool Ok() const { return stick_ != nullptr; }
    void Set(Sint16 x, Sint16 y) {
        SDL_JoystickSetVirtualAxis(stick_, 0, x);
        SDL_JoystickSetVirtualAxis(stick_, 1, y);
    }

  private:
    int index_ = -1;
    SDL_Joystick* stick_ = nullptr;
};

}  // namespace

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
        VirtualStick stick;
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
