// A deck's tempo arithmetic: the total change in percent from the tempo
// slide (±8 %), the spindle slide (±1, four percent a unit) and the
// arbitrary 1 % steps, the output frequency handed to the device buffers,
// and the text of the tempo display.
#pragma once

#include <string>

namespace tempo {

// 0.01 as a single-precision float (0.0099999998): a positive change lands
// 1 Hz under the exact value, as on the original turntable maths.
constexpr float kPercent = 0.01f;
constexpr double kMaxChange = 75.0;  // percent, either way

// P = tempo + 4 × spindle + arbitrary, clamped to ±75.
double TotalPercent(double tempoSlide, double spindleSlide, int arbitrary);

// F = trunc(R × P × c + R), Hz, for base rate R (44100 for a CD, else the
// file's own rate).
int OutputFrequency(int baseRate, double totalPercent);

// The tempo display: "2.3%", "2.0%", "-3.5%", "0.0%".
std::string DisplayText(double tempoSlide, double spindleSlide, int arbitrary);

// Without the arbitrary steps and the source's own rate, for the headphones
// mixer's drift correction: (T + 4S) × 44100 × 0.01 + 44100.
double NominalRate(double tempoSlide, double spindleSlide);

}  // namespace tempo
