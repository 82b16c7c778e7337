// Inner loops of the equalizer: the sliding dot product of one block with one
// filter, in float and in 16-bit integer arithmetic.
//
// Both take the taps reversed (rtaps[j] = tap[L − 1 − j]), so that output m
// is Σ_j rtaps[j] · x[m + j]: the full linear convolution of x with the taps,
// read from index L − 1 on. An AVX2/FMA version is picked at run time when the
// processor has it; the portable version gives the same 16-bit results bit for
// bit and float results equal to rounding.
#pragma once

#include <cstdint>

namespace dsp::eq {

// out[m] = Σ_{j<taps} rtaps[j] · x[m + j] for m < count.
// x must hold count + taps − 1 readable values.
void CorrelateFloat(const float* x, const float* rtaps, int taps, float* out, int count);

// 16-bit samples and taps packed in pairs (low half first):
//   pairs[n] = x[n] | x[n + 1] << 16, tapPairs[p] = rtaps[2p] | rtaps[2p + 1] << 16.
// out[m] = Σ_p (x[m+2p]·rtaps[2p] + x[m+2p+1]·rtaps[2p+1]), taken modulo 2^32.
// pairs must hold count + 2·pairCount − 1 values.
void CorrelateInt16(const uint32_t* pairs, const uint32_t* tapPairs, int pairCount, int32_t* out,
                    int count);

// Per-band finishing steps (same dispatch, same results as the plain loops).

// Float: the range of sum[m] + g·x[m] (product rounded before the sum), m < n;
// lo and hi start from 0.
void ScaledSumRange(const float* sum, const float* x, float g, int n, float& lo, float& hi);
// Float: out[m] = g·x[m]; sum[m] += out[m].
void ScaleAccumulate(float* sum, float* out, const float* x, float g, int n);
// 16-bit: y[m] = round(acc[m] · 2^−16), wrapped to 16 bits.
void NarrowAccumulators(const int32_t* acc, int16_t* y, int n);
// 16-bit: out[m] = round(y[m]·factor · 2^−shift) wrapped, dst[m] = sum[m] + out[m]
// wrapped; factor 0 … 32767, shift 1 … 15. Returns true when some dst[m] is
// below −limit or above limit. dst may be sum.
bool ScaleAdd16(const int16_t* y, int factor, int shift, const int16_t* sum, int16_t* out,
                int16_t* dst, int n, int limit);

enum class KernelIsa { Portable, Avx2 };

// The kernels in use: AVX2 when the processor supports AVX2 and FMA.
KernelIsa ActiveKernelIsa();
// Forces a kernel set (tests compare both); Avx2 on a processor without it
// falls back to Portable. Not for use while blocks are being processed.
void ForceKernelIsa(KernelIsa isa);

}  // namespace dsp::eq
