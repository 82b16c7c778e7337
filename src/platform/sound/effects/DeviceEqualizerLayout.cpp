#include "platform/sound/effects/DeviceEqualizerLayout.h"

#include <algorithm>
#include <cmath>

namespace sound::fx {

double DeviceEqBandCentre(int bandCount, int band) {
    const double r = 0.8 * std::pow(2.0, 12.0 / std::max(1, bandCount));
    return std::clamp(80.0 * std::pow(r, band), 80.0, 16000.0);
}

double DeviceEqBandwidth(int bandCount) {
    return 36.0 / std::max(1, bandCount);
}

double DeviceEqGainDb(double level) {
    return std::clamp(level, 0.0, 1.0) * 30.0 - 15.0;
}

}  // namespace sound::fx
