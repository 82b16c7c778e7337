// Vector helpers of the signal-processing code: full linear convolution,
// stereo split and join, sample conversion and statistics.
//
// Sample values are on the 16-bit scale throughout (−32768 … 32767), in 16-bit
// integers or 32-bit floats.
#pragma once

#include <cstdint>
#include <span>

namespace dsp {

// Full linear convolution: out[n] = Σ_k a[k]·b[n − k], n = 0 … a.size()+b.size()−2.
// out must hold a.size() + b.size() − 1 values; either input may be empty (no output).
void ConvolveFull(std::span<const double> a, std::span<const double> b, std::span<double> out);
void ConvolveFull(std::span<const float> a, std::span<const float> b, std::span<float> out);
// 16-bit: each sum is scaled by 2^−16 (rounded, wrapped to 16 bits, FixedPoint.h).
void ConvolveFull16(std::span<const int16_t> a, std::span<const int16_t> b, std::span<int16_t> out);

// One interleaved stereo block of 2·n samples → n left (even positions) and n
// right (odd positions) samples.
void SplitChannels(std::span<const int16_t> block, std::span<int16_t> left,
                   std::span<int16_t> right);
// The reverse: left to the even, right to the odd positions of block (2·n samples).
void JoinChannels(std::span<const int16_t> left, std::span<const int16_t> right,
                  std::span<int16_t> block);

// 16-bit to float without scaling (−32768 … 32767 stay as they are).
void ToFloat(std::span<const int16_t> in, std::span<float> out);
// Float to 16-bit: rounded to nearest and limited to −32768 … 32767.
void ToInt16(std::span<const float> in, std::span<int16_t> out);

// Population standard deviation (divides by the count); 0 for empty input.
double StdDev(std::span<const float> x);
double StdDev(std::span<const int16_t> x);

}  // namespace dsp
