#include "output/laws/CrossFaderCurve.h"

#include <cmath>

void CrossFaderCurve::SetCurve(float c) {
    std::array<float, kSteps> t{};
    if (c < 0.0f) {
        const double power = 1.0 / (1.0 - 2.0 * c);
        for (int i = 0; i < kSteps; ++i) {
            t[i] = static_cast<float>(std::pow(static_cast<double>(i * kStep), power));
        }
    } else if (c == 0.0f) {
        for (int i = 0; i < kSteps; ++i)
            t[i] = i * kStep;
    } else {
        const double w = (1.0 - c / 2.0) * 99.0;
        const int n = static_cast<int>(w);
        for (int i = 0; i < kSteps; ++i)
            t[i] = i < n ? static_cast<float>(i / w) : 1.0f;
    }
    tables_[1] = t;
    for (int k = 0; k < kSteps; ++k)
        tables_[0][k] = t[kSteps - 1 - k];
}

int CrossFaderCurve::Index(double x) {
    int k = static_cast<int>(std::trunc((x + 1.0) * 0.5 * 98.0));
    k %= kSteps;
    // A position below -1 would give a negative remainder; no table has it.
    return k < 0 ? 0 : k;
}
