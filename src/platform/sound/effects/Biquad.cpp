#include "platform/sound/effects/Biquad.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sound::fx {

namespace {
BiquadCoefficients Normalise(double b0, double b1, double b2, double a0, double a1, double a2) {
    return {static_cast<float>(b0 / a0), static_cast<float>(b1 / a0), static_cast<float>(b2 / a0),
            static_cast<float>(a1 / a0), static_cast<float>(a2 / a0)};
}

// Centres at or above Nyquist would make the design unstable.
double Omega(double centre, double sampleRate) {
    return 2.0 * std::numbers::pi * std::min(centre, 0.49 * sampleRate) / sampleRate;
}
}  // namespace

BiquadCoefficients BiquadCoefficients::Peaking(double centre, double bandwidthOctaves,
                                               double gainDb, double sampleRate) {
    const double a = std::pow(10.0, gainDb / 40.0);
    const double w0 = Omega(centre, sampleRate);
    const double alpha =
        std::sin(w0) * std::sinh(std::log(2.0) / 2.0 * bandwidthOctaves * w0 / std::sin(w0));
    const double c = std::cos(w0);
    return Normalise(1 + alpha * a, -2 * c, 1 - alpha * a, 1 + alpha / a, -2 * c, 1 - alpha / a);
}

BiquadCoefficients BiquadCoefficients::BandPass(double centre, double bandwidthHz,
                                                double sampleRate) {
    const double w0 = Omega(centre, sampleRate);
    const double q = std::max(0.1, std::min(centre, 0.49 * sampleRate) / bandwidthHz);
    const double alpha = std::sin(w0) / (2.0 * q);
    const double c = std::cos(w0);
    return Normalise(alpha, 0, -alpha, 1 + alpha, -2 * c, 1 - alpha);
}

}  // namespace sound::fx
