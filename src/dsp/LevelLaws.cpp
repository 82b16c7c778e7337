#include "dsp/LevelLaws.h"

#include <algorithm>
#include <cmath>

namespace dsp {

ChannelLevels MeasureChannel(std::span<const std::int16_t> samples) {
    ChannelLevels out;
    if (samples.empty())
        return out;
    std::int64_t sum = 0, squares = 0;
    std::int32_t lo = 0, hi = 0;
    for (std::int16_t s : samples) {
        sum += s;
        squares += static_cast<std::int64_t>(s) * s;
        lo = std::min<std::int32_t>(lo, s);
        hi = std::max<std::int32_t>(hi, s);
    }
    const double n = static_cast<double>(samples.size());
    const double mean = static_cast<double>(sum) / n;
    const double variance = std::max(0.0, static_cast<double>(squares) / n - mean * mean);
    const double sigma = std::round(std::sqrt(variance));
    out.rmsDb = sigma > 0.0 ? static_cast<float>(20.0 * std::log10(sigma)) : 0.0f;
    const std::int32_t peak = std::max(hi, -lo);
    out.peakDb = peak > 0 ? static_cast<float>(20.0 * std::log10(static_cast<double>(peak))) : 0.0f;
    return out;
}

double BandMilliDb(double sigma) {
    return sigma >= 1.0 ? 20000.0 * std::log10(sigma) : 0.0;
}

double SmoothedLevel(const std::array<double, kBandHistory>& newestFirst) {
    double s = 0.0, w = 0.0;
    for (int k = 0; k < kBandHistory; ++k) {
        s += kHistoryWeights[k] * newestFirst[k];
        w += kHistoryWeights[k];
    }
    return s / w;
}

float BeatValue(double level, double low, double high) {
    if (level > high)
        return 1.0f;
    if (level < low)
        return 0.0f;
    if (high <= low)
        return 1.0f;
    return static_cast<float>((level - low) / (high - low));
}

ScopeGroups GroupsFor(int bands) {
    if (bands <= 0)
        return {};
    const int g = std::min(bands, 3);
    return {g, bands / g};
}

}  // namespace dsp
