#include "dsp/AnalysisFraming.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace dsp::framing {

void ApplyPeriodicHann(std::span<double> x) {
    const double n = static_cast<double>(x.size());
    for (std::size_t j = 0; j < x.size(); ++j) {
        const double s = std::sin(std::numbers::pi * static_cast<double>(j) / n);
        x[j] *= s * s;
    }
}

std::vector<double> PeriodicHann(int n) {
    std::vector<double> w(static_cast<std::size_t>(std::max(n, 0)), 1.0);
    ApplyPeriodicHann(w);
    return w;
}

void PlaceWindow(std::span<const double> window, int start, std::span<double> picture) {
    std::fill(picture.begin(), picture.end(), 0.0);
    const long long size = static_cast<long long>(picture.size());
    for (std::size_t j = 0; j < window.size(); ++j) {
        const long long at = static_cast<long long>(start) + static_cast<long long>(j);
        if (at >= 0 && at < size)
            picture[static_cast<std::size_t>(at)] = window[j];
    }
}

}  // namespace dsp::framing
