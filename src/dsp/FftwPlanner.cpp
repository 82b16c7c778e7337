// The FFTW planner lock (see FftwPlanner.h).
#include "dsp/FftwPlanner.h"

namespace dsp {

std::mutex& FftwPlannerMutex() {
    static std::mutex mutex;
    return mutex;
}

}  // namespace dsp
