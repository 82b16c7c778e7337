#include "deck/tempo/TempoLaw.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tempo {

double TotalPercent(double tempoSlide, double spindleSlide, int arbitrary) {
    return std::clamp(tempoSlide + 4.0 * spindleSlide + arbitrary, -kMaxChange, kMaxChange);
}

int OutputFrequency(int baseRate, double totalPercent) {
    const double c = kPercent;
    return static_cast<int>(std::trunc(baseRate * totalPercent * c + baseRate));
}

std::string DisplayText(double tempoSlide, double spindleSlide, int arbitrary) {
    const double c = kPercent;
    double v = tempoSlide + 4.0 * spindleSlide + arbitrary;
    // Nudge away from zero so 2.3 does not fall to 2.2 through rounding.
    v = v < 0 ? v - c : v + c;
    const long n = static_cast<long>(std::trunc(v * 10.0));
    const double d = std::clamp(n * 0.1, -kMaxChange, kMaxChange);
    char text[32];
    std::snprintf(text, sizeof text, "%g", d);
    std::string s = text;
    if (n % 10 == 0)
        s += ".0";
    return s + "%";
}

double NominalRate(double tempoSlide, double spindleSlide) {
    return (tempoSlide + 4.0 * spindleSlide) * 44100.0 * 0.01 + 44100.0;
}

}  // namespace tempo
