// The one lock around FFTW's planner. Making and destroying FFTW plans is not
// thread-safe, executing them is; every part of Mixora that makes plans holds
// this mutex while it does, and does so only when it is built, never per block.
#pragma once

#include <mutex>

namespace dsp {

std::mutex& FftwPlannerMutex();

}  // namespace dsp
