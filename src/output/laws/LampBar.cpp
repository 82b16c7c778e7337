#include "output/laws/LampBar.h"

#include <cmath>

bool LampBar::Update(double f) {
    f = std::clamp(f, 0.0, 1.0);
    const int before = lit_;
    const double partialBefore = partial_;
    if (mode_ == 0) {
        const int target = std::clamp(static_cast<int>(lamps_ * f), 0, lamps_);
        for (int step = 0; step < kMaxSteps; ++step) {
            if (lit_ > target)
                --lit_;
            else if (lit_ < target)
                ++lit_;
        }
    } else {
        const double full = lamps_ * f;
        lit_ = std::clamp(static_cast<int>(full), 0, lamps_);
        partial_ = lit_ < lamps_ ? full - lit_ : 0.0;
    }
    return lit_ != before || partial_ != partialBefore;
}

double DecibelBarFraction(double levelDb) {
    return levelDb / (96.33 / std::sqrt(2.0)) - 0.4;
}
