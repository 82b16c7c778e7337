#include "output/laws/CrossFaderGains.h"

#include <algorithm>
#include <cmath>

void CrossFaderGains::SetCurve(float c) {
    parameter_ = std::isfinite(c) ? std::clamp(c, -1.0f, 1.0f) : 0.0f;
    curve_.SetCurve(parameter_);
}

void CrossFaderGains::MoveTo(float position) {
    if (!std::isfinite(position))
        position = 0.0f;
    index_ = CrossFaderCurve::Index(static_cast<double>(position));
}

float CrossFaderGains::Gain(int deck) const {
    return index_ < 0 ? 1.0f : Table(deck)[index_];
}
