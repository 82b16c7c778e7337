#include "output/laws/HeadphonesDrift.h"

#include <cmath>
#include <cstdlib>

#include "core/PcmFormat.h"

namespace output {

int ShortWayDrift(int mainCursor, int phonesCursor) {
    int drift = mainCursor - phonesCursor;
    if (std::abs(drift) > kOutputRingBytes / 2)
        drift += phonesCursor < mainCursor ? -kOutputRingBytes : kOutputRingBytes;
    return drift;
}

bool DriftNeedsCorrection(int drift) {
    return std::abs(drift) > kDriftToleranceBytes;
}

int FrequencyTrim(int driftChange, double seconds) {
    if (!(seconds > 0.0))
        return 0;
    return static_cast<int>(std::trunc(driftChange / (4.0 * seconds)));
}

}  // namespace output
