// The cross fader's shaped curve: two 99-entry gain tables, one per deck,
// built from the curve parameter c in -1 … +1 (-1 logarithmic, 0 ramp,
// +1 wedge), and the lookup from the fader position.
#pragma once

#include <array>

class CrossFaderCurve {
  public:
    static constexpr int kSteps = 99;
    // 1/99 as a single-precision value (0.01010101).
    static constexpr float kStep = 1.0f / 99.0f;

    CrossFaderCurve() { SetCurve(0.0f); }

    // Builds the base curve T and the two tables: deck B's is T, deck A's is
    // T reversed.
    void SetCurve(float c);

    // Table index for fader position x in -1 … +1: trunc((x + 1) · 0.5 · 98) mod 99.
    static int Index(double x);

    // The gain of deck (0 = A, 1 = B) at fader position x.
    float Gain(int deck, double x) const { return tables_[deck][Index(x)]; }
    float Base(int i) const { return tables_[1][i]; }
    const std::array<float, kSteps>& Table(int deck) const { return tables_[deck]; }

  private:
    std::array<std::array<float, kSteps>, 2> tables_{};
};
