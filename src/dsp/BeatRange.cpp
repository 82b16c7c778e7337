#include "dsp/BeatRange.h"

namespace dsp {

void BeatRange::SetAutomatic(bool on) {
    automatic_ = on;
    if (!on) {
        low_ = 0.0;
        high_ = kTop;
    }
}

void BeatRange::Widen(double level) {
    if (!automatic_)
        return;
    if (level > high_)
        high_ = level;
    if (level < low_)
        low_ = level;
}

void BeatRange::Narrow() {
    if (!automatic_)
        return;
    if (high_ - 1.0 > low_ + 1.0) {
        low_ += kStep;
        high_ -= kStep;
    }
    if (low_ < 0.0)
        low_ = 0.0;
    if (high_ > kTop)
        high_ = kTop;
}

void BeatRange::SetCursors(double low, double high) {
    low_ = low;
    high_ = high;
}

}  // namespace dsp
