// Lock-free hand-over of an effect's parameters from the user-interface
// thread to the audio thread.
//
// The user-interface thread stores all values, then bumps the generation
// (release). The audio thread compares the generation with the one it last
// saw and, when it moved, reloads every value and recomputes its
// coefficients. A pass that races a store may read a mix of old and new
// values; the generation has moved again by then, so the next pass reloads.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace sound::fx {

// Delay lines are sized at creation for this device rate (Hz); at a higher
// rate the longest delays are clamped to what the line holds.
constexpr int kEffectLineRate = 96000;

// A parameter value inside [low, high] (the effect's definition).
inline bool InRange(float v, float low, float high) {
    return v >= low && v <= high;
}

template <int N>
class EffectParameters {
  public:
    explicit EffectParameters(const std::array<float, N>& start) { Store(start); }

    // User-interface thread.
    void Store(const std::array<float, N>& values) {
        for (int i = 0; i < N; ++i)
            values_[i].store(values[i], std::memory_order_relaxed);
        generation_.fetch_add(1, std::memory_order_release);
    }
    std::array<float, N> Load() const {
        std::array<float, N> out{};
        for (int i = 0; i < N; ++i)
            out[i] = values_[i].load(std::memory_order_relaxed);
        return out;
    }

    // Audio thread: true (and `out` filled) when the values changed since
    // the generation in `*seen`, which is updated.
    bool Fetch(std::uint32_t* seen, std::array<float, N>* out) const {
        const std::uint32_t g = generation_.load(std::memory_order_acquire);
        if (g == *seen)
            return false;
        *seen = g;
        *out = Load();
        return true;
    }

  private:
    std::array<std::atomic<float>, N> values_{};
    std::atomic<std::uint32_t> generation_{0};
};

}  // namespace sound::fx
