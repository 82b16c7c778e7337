#include "dsp/ScopeBand.h"

#include <algorithm>
#include <cmath>

namespace dsp {

void ScopeBand::Add(std::span<const float> samples) {
    const size_t n = std::min<size_t>(samples.size(), kBlock);
    float* cur = ring_[current_].data();
    for (size_t i = 0; i < n; ++i)
        cur[i] += samples[i];
}

float ScopeBand::At(int p) const {
    if (p < 0)
        return 0.0f;
    p %= 2 * kBlock;
    const int oldest = (current_ + 1) % 2;
    return p < kBlock ? ring_[oldest][p] : ring_[current_][p - kBlock];
}

int ScopeBand::FindTrigger() {
    // Positions −4 … 2·1176 − 5 cover both blocks' scans (−4 … 1171 each,
    // the second block's negative positions being the first block's tail).
    const int oldest = (current_ + 1) % 2;
    std::copy(ring_[oldest].begin(), ring_[oldest].end(), stream_.begin() + 4);
    std::copy(ring_[current_].begin(), ring_[current_].end(), stream_.begin() + 4 + kBlock);
    const float* s = stream_.data() + 4;  // s[-4 … -1] are the zeros
    for (int i = -4; i <= 2 * kBlock - 5; ++i) {
        const float a = s[i], b = s[i + 1];
        if (a <= 0.0f && b >= 0.0f && a != b && b <= s[i + 2] && s[i + 2] <= s[i + 3] &&
            s[i + 3] <= s[i + 4])
            return i + 1;
    }
    return -1;
}

int ScopeBand::StepFor(double factor) const {
    const double s = std::trunc(factor * sampleRate_ * 0.01);
    return static_cast<int>(std::clamp(s, 1.0, static_cast<double>(kMaxStep)));
}

const ScopeBand::Trace& ScopeBand::BuildTrace(double factor, bool trigger) {
    const int step = StepFor(factor);
    int start = 0;
    if (trigger) {
        const int t = FindTrigger();
        if (t > 0)
            start = t;
    }
    lastStart_ = start;
    for (int j = 0; j < kPoints; ++j)
        trace_[j] = At(start + j * step);
    return trace_;
}

void ScopeBand::Advance() {
    current_ = (current_ + 1) % 2;
    ring_[current_].fill(0.0f);
}

void ScopeBand::Clear() {
    for (auto& b : ring_)
        b.fill(0.0f);
    current_ = 0;
    trace_.fill(0.0);
    lastStart_ = 0;
}

}  // namespace dsp
