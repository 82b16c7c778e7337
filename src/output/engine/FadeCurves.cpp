#include "output/engine/FadeCurves.h"

#include <algorithm>
#include <cmath>

namespace output {

FadeCurve FadeInVolumes(std::int32_t volume) {
    FadeCurve c{};
    const double span = static_cast<double>(volume) + 10000.0;
    for (int i = 0; i < kFadeSteps; ++i)
        c[i] = static_cast<std::int32_t>((1.0 - std::exp(-0.006 * i)) * span) - 10000;
    c[kFadeSteps] = volume;
    return c;
}

FadeCurve FadeOutVolumes(std::int32_t volume) {
    FadeCurve c{};
    const double span = static_cast<double>(volume) + 10000.0;
    for (int i = 0; i < kFadeSteps; ++i)
        c[i] = static_cast<std::int32_t>(std::exp(-0.006 * i) * span) - 10000;
    c[kFadeSteps] = -10000;
    return c;
}

void FadeScratchEdges(std::int16_t* data, int samples) {
    const int edge = std::min(kScratchEdgeSamples, samples / 2);
    for (int j = 0; j < edge; ++j) {
        const float f = static_cast<float>(j) / kScratchEdgeSamples;
        data[j] = static_cast<std::int16_t>(data[j] * f);
        data[samples - 1 - j] = static_cast<std::int16_t>(data[samples - 1 - j] * f);
    }
}

}  // namespace output
