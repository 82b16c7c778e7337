// The mixer's interpolator: reads a looping ring of 16-bit stereo frames at
// a fractional, steadily advancing position and adds the result, scaled by
// per-channel gains, to an output of interleaved float frames.
//
// Position and step are frames in 32.32 fixed point, so the phase carries
// over exactly from one call to the next (no zipper noise when the step
// changes). The interpolation is 4-point cubic (Catmull-Rom): at a whole
// frame position it returns the sample itself, so a buffer played at the
// device's own rate comes out bit-exact.
#pragma once

#include <cstdint>

namespace sound {

constexpr double kFixedOne = 4294967296.0;  // 1.0 in 32.32

inline float CubicPoint(float xm1, float x0, float x1, float x2, float f) {
    return x0 +
           0.5f * f *
               (x1 - xm1 +
                f * (2.0f * xm1 - 5.0f * x0 + 4.0f * x1 - x2 + f * (3.0f * (x0 - x1) + x2 - xm1)));
}

// Adds n interpolated frames to out. With kConstantGain the scalars gl, gr
// apply, otherwise the per-frame arrays gainL[k], gainR[k]. ring holds
// `frames` stereo frames (at least 4). Returns the new position, wrapped.
template <bool kConstantGain>
inline std::uint64_t ResampleAdd(const std::int16_t* ring, std::uint32_t frames, std::uint64_t pos,
                                 std::uint64_t step, int n, float* out, const float* gainL,
                                 const float* gainR, float gl, float gr) {
    const std::uint64_t end = static_cast<std::uint64_t>(frames) << 32;
    for (int k = 0; k < n; ++k) {
        const std::uint32_t i = static_cast<std::uint32_t>(pos >> 32);
        const float f =
            static_cast<float>(static_cast<std::uint32_t>(pos)) * (1.0f / 4294967296.0f);
        const std::uint32_t im1 = i == 0 ? frames - 1 : i - 1;
        const std::uint32_t i1 = i + 1 >= frames ? i + 1 - frames : i + 1;
        const std::uint32_t i2 = i + 2 >= frames ? i + 2 - frames : i + 2;
        const std::int16_t* a = ring + 2 * im1;
        const std::int16_t* b = ring + 2 * i;
        const std::int16_t* c = ring + 2 * i1;
        const std::int16_t* d = ring + 2 * i2;
        const float left = CubicPoint(a[0], b[0], c[0], d[0], f);
        const float right = CubicPoint(a[1], b[1], c[1], d[1], f);
        if constexpr (kConstantGain) {
            out[2 * k] += left * gl;
            out[2 * k + 1] += right * gr;
        } else {
            out[2 * k] += left * gainL[k];
            out[2 * k + 1] += right * gainR[k];
        }
        pos += step;
        while (pos >= end)
            pos -= end;
    }
    return pos;
}

}  // namespace sound
