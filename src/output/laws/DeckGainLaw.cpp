#include "output/laws/DeckGainLaw.h"

#include <algorithm>

namespace output {

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

}  // namespace output
