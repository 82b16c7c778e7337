// Equalizer tables and the response plot (see EqualizerLayout.h).
#include "dsp/eq/EqualizerLayout.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace dsp::eq {

double PlotRatio() {
    return std::pow(2.0, 7.0 / kPlotPoints);
}

double PlotBaseFrequency(double sampleRate) {
    return sampleRate * PlotRatio() / 256.0;
}

double PlotFrequency(double sampleRate, int index) {
    return PlotBaseFrequency(sampleRate) * std::pow(PlotRatio(), index);
}

std::array<int, kMaxBands> DefaultTapCounts(int bandCount) {
    std::array<int, kMaxBands> taps;
    taps.fill(kInitialTaps);
    auto load = [&taps](std::initializer_list<int> list) {
        int b = 0;
        for (int n : list)
            taps[b++] = n;
    };
    switch (bandCount) {
        case 2:
            load({68, 46});
            break;
        case 3:
            load({49, 127, 45});
            break;
        case 6:
            load({182, 396, 162, 75, 49, 25});
            break;
        case 12:
            load({400, 500, 412, 307, 326, 238, 100, 100, 100, 100, 100, 100});
            break;
        default:
            break;
    }
    return taps;
}

double BandBoundary(double sampleRate, int bandCount, int b) {
    return sampleRate / 2.0 * std::pow(2.0, -7.0 * (bandCount - 1 - b) / bandCount);
}

std::optional<FirWindow> WindowByName(std::string_view name) {
    if (name == "Rectangular")
        return FirWindow::Rectangular;
    if (name == "Bartlett" || name == "Gaussian")
        return FirWindow::Bartlett;
    if (name == "Blackman")
        return FirWindow::Blackman;
    if (name == "Hamming")
        return FirWindow::Hamming;
    if (name == "Hanning")
        return FirWindow::Hann;
    return std::nullopt;
}

std::array<float, kPlotPoints> ResponseCurve(std::span<const double> taps, double sampleRate) {
    std::array<float, kPlotPoints> curve{};
    const double f0 = PlotBaseFrequency(sampleRate), r = PlotRatio();
    for (int i = 0; i < kPlotPoints; ++i) {
        const double w = std::numbers::pi * (f0 * std::pow(r, i + 1)) / (sampleRate / 2.0);
        // Σ h[k]·e^{ikω} by rotation; 500 steps keep double rounding far below 1e-9.
        const std::complex<double> step(std::cos(w), std::sin(w));
        std::complex<double> phase(1.0, 0.0), sum(0.0, 0.0);
        for (double h : taps) {
            sum += h * phase;
            phase *= step;
        }
        const double mag = std::max(std::abs(sum), 1e-20);
        curve[i] = static_cast<float>(20.0 * std::log10(mag) + kDbOffset);
    }
    return curve;
}

}  // namespace dsp::eq
