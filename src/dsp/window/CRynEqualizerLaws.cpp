#include "dsp/window/CRynEqualizerLaws.h"

#include <algorithm>

namespace eq_window {

QColor BandColour(int b, int n) {
    if (n <= 0)
        return QColor(0, 255, 0);
    const double t = 2.0 * b / n - 1.0;
    const int red = static_cast<int>(255.0 * t * t);
    const int green = static_cast<int>(255.0 - 255.0 * t * t);
    const int blue = static_cast<int>(255.0 * b / n);
    return QColor(std::clamp(red, 0, 255), std::clamp(green, 0, 255), std::clamp(blue, 0, 255));
}

std::array<double, kPlotPoints> DeviceStaircase(std::span<const float> levels, int n) {
    std::array<double, kPlotPoints> stairs{};
    n = std::clamp(n, 1, kPlotPoints);
    const int width = kPlotPoints / n;
    for (int i = 0; i < kPlotPoints; ++i) {
        const int k = std::min(i / width, n - 1);
        const float level = k < static_cast<int>(levels.size()) ? levels[k] : 0.0f;
        stairs[i] = level * kDeviceStairScale;
    }
    return stairs;
}

}  // namespace eq_window
