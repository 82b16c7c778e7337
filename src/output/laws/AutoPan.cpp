#include "output/laws/AutoPan.h"

#include <cmath>

void AutoPan::TurnOn(float currentBalance) {
    savedBalance_ = currentBalance;
    interval_ = kIntervalSeconds;
}

float AutoPan::Step() {
    step_ = interval_ * speed_ * kTwoPi;
    phase_ += step_;
    return std::sin(phase_);
}
