// A virtual two-axis joystick from SDL's joystick subsystem, attached for a
// test's length: the stand-in for a joystick plugged in while Mixora runs.
// Its own handle sets the axes (raw −32768 … 32767).
#pragma once

#include <SDL2/SDL.h>

namespace testsupport {

class VirtualJoystick {
  public:
    VirtualJoystick() {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        if (SDL_InitSubSystem(SDL_INIT_JOYSTICK) != 0)
            return;
        started_ = true;
        index_ = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 2, 0, 0);
        if (index_ >= 0)
            stick_ = SDL_JoystickOpen(index_);
    }
    ~VirtualJoystick() {
        if (stick_)
            SDL_JoystickClose(stick_);
        if (index_ >= 0)
            SDL_JoystickDetachVirtual(index_);
        if (started_)
            SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }
    VirtualJoystick(const VirtualJoystick&) = delete;
    VirtualJoystick& operator=(const VirtualJoystick&) = delete;

    bool Ok() const { return stick_ != nullptr; }
    void Set(Sint16 x, Sint16 y) {
        SDL_JoystickSetVirtualAxis(stick_, 0, x);
        SDL_JoystickSetVirtualAxis(stick_, 1, y);
    }

  private:
    bool started_ = false;
    int index_ = -1;
    SDL_Joystick* stick_ = nullptr;
};

}  // namespace testsupport
