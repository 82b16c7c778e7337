// The joystick that places the 3D sound: its X and Y axes, each read as
// −1000 … 1000 (centre 0, right and down positive, as the device reports).
//
// Poll() reads the device once. It answers false, and leaves the position
// alone, when no joystick is there or the reading failed; the next poll
// looks for a device again, so a joystick plugged in while the program runs
// is picked up and one pulled out is let go. User-interface thread only.
#pragma once

#include <memory>

namespace joystick {

inline constexpr int kAxisRange = 1000;  // an axis reads −1000 … 1000

struct Position {
    int x = 0;
    int y = 0;
};

class Joystick {
  public:
    virtual ~Joystick() = default;
    // One reading into *position; false (position untouched) without one.
    virtual bool Poll(Position* position) = 0;
    // Whether a device is open after the last poll.
    virtual bool Present() const = 0;
};

// No joystick: every poll answers false.
class NullJoystick : public Joystick {
  public:
    bool Poll(Position*) override { return false; }
    bool Present() const override { return false; }
};

// The first joystick SDL's joystick subsystem lists; the null joystick when
// the subsystem does not start (its reason goes to the trace category).
std::unique_ptr<Joystick> OpenSystemJoystick();

// Maps a raw axis value of −32768 … 32767 onto −1000 … 1000.
int ScaleAxis(int raw);

}  // namespace joystick
