// SDL's joystick subsystem behind the Joystick interface. SDL is started for
// joysticks only, without its signal handlers (the shell has its own) and
// without joystick events (the window polls): SDL_JoystickUpdate refreshes
// the device list and the axes on each poll.
#include <SDL2/SDL.h>

#include <algorithm>

#include "core/Trace.h"
#include "platform/joystick/Joystick.h"

namespace joystick {

namespace {

class SdlJoystick : public Joystick {
  public:
    ~SdlJoystick() override {
        if (device_)
            SDL_JoystickClose(device_);
        SDL_QuitSubSystem(SDL_INIT_JOYSTICK);
    }

    bool Poll(Position* position) override {
        SDL_JoystickUpdate();
        if (device_ && !SDL_JoystickGetAttached(device_)) {
            qCDebug(lcTrace, "Joystick: %s was pulled out", SDL_JoystickName(device_));
            SDL_JoystickClose(device_);
            device_ = nullptr;
        }
        if (!device_) {
            // Acquire again: the first device listed, if any.
            if (SDL_NumJoysticks() <= 0)
                return false;
            device_ = SDL_JoystickOpen(0);
            if (!device_ || SDL_JoystickNumAxes(device_) < 2) {
                if (device_)
                    SDL_JoystickClose(device_);
                device_ = nullptr;
                return false;
            }
            qCDebug(lcTrace, "Joystick: %s opened", SDL_JoystickName(device_));
            // This reading is taken on the next poll, once the device reports.
            return false;
        }
        position->x = ScaleAxis(SDL_JoystickGetAxis(device_, 0));
        position->y = ScaleAxis(SDL_JoystickGetAxis(device_, 1));
        return true;
    }

    bool Present() const override { return device_ != nullptr; }

  private:
    SDL_Joystick* device_ = nullptr;
};

}  // namespace

int ScaleAxis(int raw) {
    // −32768 … 32767 to −1000 … 1000, rounded to the nearest, centre 0.
    const int r = std::clamp(raw, -32767, 32767);
    return (r * kAxisRange + (r >= 0 ? 16383 : -16383)) / 32767;
}

std::unique_ptr<Joystick> OpenSystemJoystick() {
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_JOYSTICK) != 0) {
        qCDebug(lcTrace, "Joystick: SDL's joystick subsystem did not start: %s", SDL_GetError());
        return std::make_unique<NullJoystick>();
    }
    SDL_JoystickEventState(SDL_IGNORE);
    return std::make_unique<SdlJoystick>();
}

}  // namespace joystick
