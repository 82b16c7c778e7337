// A mono delay line of fixed capacity with fractional (linearly
// interpolated) reads. Allocated once at construction, off the audio thread;
// Write/Read never allocate.
#pragma once

#include <algorithm>
#include <vector>

namespace sound::fx {

class DelayLine {
  public:
    // Holds delays up to `capacity` frames (at least 2).
    explicit DelayLine(int capacity) : line_(static_cast<std::size_t>(std::max(capacity, 2)) + 2) {}

    int Capacity() const { return static_cast<int>(line_.size()) - 2; }
    void Clear() { std::fill(line_.begin(), line_.end(), 0.0f); }

    void Write(float x) {
        line_[write_] = x;
        write_ = write_ + 1 == static_cast<int>(line_.size()) ? 0 : write_ + 1;
    }
    // The sample written `delay` frames before the next Write (1 = the last
    // one written), delay clamped to 1..Capacity().
    float Read(float delay) const {
        delay = std::clamp(delay, 1.0f, static_cast<float>(Capacity()));
        const int whole = static_cast<int>(delay);
        const float frac = delay - static_cast<float>(whole);
        const float a = At(whole);
        const float b = At(whole + 1);
        return a + (b - a) * frac;
    }

  private:
    float At(int delay) const {
        int i = write_ - delay;
        if (i < 0)
            i += static_cast<int>(line_.size());
        return line_[static_cast<std::size_t>(i)];
    }

    std::vector<float> line_;
    int write_ = 0;
};

}  // namespace sound::fx
