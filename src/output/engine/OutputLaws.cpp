#include "output/engine/OutputLaws.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace output {

int MoveCursor(int cursor, int delta) {
    int c = (cursor + delta) % kRingBytes;
    if (c < 0)
        c += kRingBytes;
    return c;
}

int MirrorPosition(int forwardPlayBytes) {
    const int block = std::clamp(forwardPlayBytes / kBlockBytes, 0, kRingBlocks - 1);
    return (kRingBlocks - 1 - block) * kBlockBytes;
}

std::int32_t DeckGainToVolume(float gain) {
    if (gain >= 1.0f)
        return 0;
    if (gain <= 0.0001f)
        return -10000;
    return -2500 + static_cast<std::int32_t>(2500.0f * gain);
}

std::int32_t DeckPanToDevice(float pan) {
    const float p = std::clamp(pan, -1.0f, 1.0f);
    return static_cast<std::int32_t>(p * 10000.0f);
}

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

void ReverseBlockFrames(const std::uint8_t* in, std::uint8_t* out) {
    std::uint32_t frames[kBlockFrames];
    std::memcpy(frames, in, kBlockBytes);
    std::reverse(frames, frames + kBlockFrames);
    std::memcpy(out, frames, kBlockBytes);
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
