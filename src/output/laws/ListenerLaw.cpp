#include "output/laws/ListenerLaw.h"

#include <algorithm>
#include <cmath>

namespace listener_law {

Gains GainsAt(float x, float y) {
    const float pan = std::clamp(-x / kUnit, -1.0f, 1.0f);
    const float distance = std::hypot(x, y) / kUnit;
    const float fall = 1.0f / (1.0f + distance);
    return {std::min(1.0f, 1.0f - pan) * fall, std::min(1.0f, 1.0f + pan) * fall};
}

}  // namespace listener_law
