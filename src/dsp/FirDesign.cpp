// Windowed-sinc FIR design (see FirDesign.h).
#include "dsp/FirDesign.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace dsp {
namespace {

constexpr double kPi = std::numbers::pi;

// sin(2π·fc·t) / (π·t): the ideal low-pass impulse response at distance t
// (in samples, may be a half integer) from the centre; 2·fc at t = 0.
double IdealLowpass(double fc, double t) {
    if (t == 0.0)
        return 2.0 * fc;
    return std::sin(2.0 * kPi * fc * t) / (kPi * t);
}

void ApplyWindow(std::span<double> taps, FirWindow w) {
    const int n = static_cast<int>(taps.size());
    for (int i = 0; i < n; ++i)
        taps[i] *= FirWindowValue(w, i, n);
}

// Scales taps so that `gain` becomes 1 (skipped when the gain is ~0).
void Normalise(std::span<double> taps, double gain) {
    if (std::abs(gain) < 1e-12)
        return;
    for (double& t : taps)
        t /= gain;
}

}  // namespace

double FirWindowValue(FirWindow w, int n, int N) {
    if (N <= 1)
        return 1.0;
    const double x = static_cast<double>(n) / (N - 1);  // 0 … 1 across the design
    switch (w) {
        case FirWindow::Rectangular:
            return 1.0;
        case FirWindow::Bartlett:
            return 1.0 - std::abs(2.0 * x - 1.0);
        case FirWindow::Hann:
            return 0.5 - 0.5 * std::cos(2.0 * kPi * x);
        case FirWindow::Hamming:
            return 0.54 - 0.46 * std::cos(2.0 * kPi * x);
        case FirWindow::Blackman: {
            const double alpha = N < 4 ? -0.16 : -0.5 / (1.0 + std::cos(2.0 * kPi / (N - 1)));
            return (alpha + 1.0) / 2.0 - 0.5 * std::cos(2.0 * kPi * x) -
                   (alpha / 2.0) * std::cos(4.0 * kPi * x);
        }
    }
    return 1.0;
}

void FirLowpass(double cutoff, std::span<double> taps, FirWindow w, bool normalise) {
    const double fc = std::clamp(cutoff, 0.0, 0.5);
    const double centre = (static_cast<double>(taps.size()) - 1.0) / 2.0;
    for (size_t n = 0; n < taps.size(); ++n)
        taps[n] = IdealLowpass(fc, n - centre);
    ApplyWindow(taps, w);
    if (!normalise)
        return;
    double dc = 0.0;
    for (double t : taps)
        dc += t;
    Normalise(taps, dc);
}

// The high-pass at fc is the low-pass at 0.5 − fc shifted to half the sample
// rate (multiplied by (−1)^n); this works for odd and even tap counts alike.
void FirHighpass(double cutoff, std::span<double> taps, FirWindow w, bool normalise) {
    const double fc = std::clamp(cutoff, 0.0, 0.5);
    FirLowpass(0.5 - fc, taps, w, false);
    for (size_t n = 1; n < taps.size(); n += 2)
        taps[n] = -taps[n];
    if (!normalise)
        return;
    double nyquist = 0.0;  // H at half the sample rate: Σ h[n]·(−1)^n, a real number
    for (size_t n = 0; n < taps.size(); ++n)
        nyquist += (n % 2 == 0) ? taps[n] : -taps[n];
    Normalise(taps, nyquist);
}

void FirBandpass(double low, double high, std::span<double> taps, FirWindow w, bool normalise) {
    const double fl = std::clamp(low, 0.0, 0.5);
    const double fh = std::clamp(high, 0.0, 0.5);
    if (!(fl < fh)) {
        std::fill(taps.begin(), taps.end(), 0.0);
        return;
    }
    const double centre = (static_cast<double>(taps.size()) - 1.0) / 2.0;
    for (size_t n = 0; n < taps.size(); ++n)
        taps[n] = IdealLowpass(fh, n - centre) - IdealLowpass(fl, n - centre);
    ApplyWindow(taps, w);
    if (normalise)
        Normalise(taps, FirMagnitude(taps, (fl + fh) / 2.0));
}

double FirMagnitude(std::span<const double> taps, double f) {
    double re = 0.0, im = 0.0;
    for (size_t n = 0; n < taps.size(); ++n) {
        re += taps[n] * std::cos(2.0 * kPi * f * n);
        im -= taps[n] * std::sin(2.0 * kPi * f * n);
    }
    return std::hypot(re, im);
}

}  // namespace dsp
