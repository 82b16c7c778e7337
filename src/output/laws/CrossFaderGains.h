// The cross fader as the main mixer holds it: the curve parameter, the fader
// position, and the gain of each deck they give (CrossFaderCurve works them
// out). The main mixer panel owns one; its plot draws the curve's tables and
// the outputs take each deck's gain from it.
#pragma once

#include <array>

#include "output/laws/CrossFaderCurve.h"

class CrossFaderGains {
  public:
    // The curve parameter c in -1 … +1 (-1 logarithmic, 0 ramp, +1 wedge).
    // Outside -1 … +1 the wedge would have no width: c is held to the range,
    // and a value that is not finite reads as the ramp.
    void SetCurve(float c);
    float CurveParameter() const { return parameter_; }
    const CrossFaderCurve& Curve() const { return curve_; }
    // Deck A's table is deck B's reversed.
    const std::array<float, CrossFaderCurve::kSteps>& Table(int deck) const {
        return curve_.Table(deck == 1 ? 1 : 0);
    }

    // The fader at x in -1 … +1 (-1 is all deck A); not finite: the centre.
    void MoveTo(float position);
    // The table index of the position, trunc((x + 1) · 0.5 · 98) mod 99; -1
    // before the first move.
    int Index() const { return index_; }
    // The gain of deck `deck` (0 = A, 1 = B) at the position under the
    // current curve; 1.0 before the first move.
    float Gain(int deck) const;

  private:
    CrossFaderCurve curve_;  // the ramp until a curve is set
    float parameter_ = 0.0f;
    int index_ = -1;
};
