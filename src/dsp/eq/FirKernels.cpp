// Sliding dot products for the equalizer (see FirKernels.h).
#include "dsp/eq/FirKernels.h"

#include <algorithm>
#include <atomic>

#include "dsp/FixedPoint.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define MIXORA_HAVE_X86 1
#endif

namespace dsp::eq {
namespace {

void CorrelateFloatPortable(const float* x, const float* rtaps, int taps, float* out, int from,
                            int count) {
    for (int m = from; m < count; ++m) {
        float acc = 0.0f;
        for (int j = 0; j < taps; ++j)
            acc += rtaps[j] * x[m + j];
        out[m] = acc;
    }
}

void CorrelateInt16Portable(const uint32_t* pairs, const uint32_t* tapPairs, int pairCount,
                            int32_t* out, int from, int count) {
    for (int m = from; m < count; ++m) {
        uint32_t acc = 0;
        for (int p = 0; p < pairCount; ++p) {
            const uint32_t xp = pairs[m + 2 * p], tp = tapPairs[p];
            const int32_t lo = int32_t{static_cast<int16_t>(xp)} * static_cast<int16_t>(tp);
            const int32_t hi =
                int32_t{static_cast<int16_t>(xp >> 16)} * static_cast<int16_t>(tp >> 16);
            acc += static_cast<uint32_t>(lo) + static_cast<uint32_t>(hi);
        }
        out[m] = static_cast<int32_t>(acc);
    }
}

void ScaledSumRangePortable(const float* sum, const float* x, float g, int from, int n, float& lo,
                            float& hi) {
    for (int m = from; m < n; ++m) {
        const float out = x[m] * g;
        const float s = sum[m] + out;
        lo = std::min(lo, s);
        hi = std::max(hi, s);
    }
}

void ScaleAccumulatePortable(float* sum, float* out, const float* x, float g, int from, int n) {
    for (int m = from; m < n; ++m) {
        out[m] = x[m] * g;
        sum[m] += out[m];
    }
}

void NarrowAccumulatorsPortable(const int32_t* acc, int16_t* y, int from, int n) {
    for (int m = from; m < n; ++m)
        y[m] = ScaleDown16(acc[m], 16);
}

bool ScaleAdd16Portable(const int16_t* y, int factor, int shift, const int16_t* sum, int16_t* out,
                        int16_t* dst, int from, int n, int limit) {
    bool over = false;
    for (int m = from; m < n; ++m) {
        out[m] = ScaleDown16(y[m] * factor, shift);
        dst[m] = AddWrap16(sum[m], out[m]);
        over |= dst[m] < -limit || dst[m] > limit;
    }
    return over;
}

#ifdef MIXORA_HAVE_X86
// 32 outputs per pass in four 8-lane accumulators, then 8 at a time; the rest
// goes to the portable loop.
__attribute__((target("avx2,fma"))) void CorrelateFloatAvx2(const float* x, const float* rtaps,
                                                            int taps, float* out, int count) {
    int m = 0;
    for (; m + 32 <= count; m += 32) {
        __m256 a0 = _mm256_setzero_ps(), a1 = a0, a2 = a0, a3 = a0;
        const float* xm = x + m;
        for (int j = 0; j < taps; ++j) {
            const __m256 t = _mm256_broadcast_ss(rtaps + j);
            a0 = _mm256_fmadd_ps(t, _mm256_loadu_ps(xm + j), a0);
            a1 = _mm256_fmadd_ps(t, _mm256_loadu_ps(xm + j + 8), a1);
            a2 = _mm256_fmadd_ps(t, _mm256_loadu_ps(xm + j + 16), a2);
            a3 = _mm256_fmadd_ps(t, _mm256_loadu_ps(xm + j + 24), a3);
        }
        _mm256_storeu_ps(out + m, a0);
        _mm256_storeu_ps(out + m + 8, a1);
        _mm256_storeu_ps(out + m + 16, a2);
        _mm256_storeu_ps(out + m + 24, a3);
    }
    for (; m + 8 <= count; m += 8) {
        __m256 a0 = _mm256_setzero_ps();
        for (int j = 0; j < taps; ++j)
            a0 = _mm256_fmadd_ps(_mm256_broadcast_ss(rtaps + j), _mm256_loadu_ps(x + m + j), a0);
        _mm256_storeu_ps(out + m, a0);
    }
    CorrelateFloatPortable(x, rtaps, taps, out, m, count);
}

__attribute__((target("avx2"))) void CorrelateInt16Avx2(const uint32_t* pairs,
                                                        const uint32_t* tapPairs, int pairCount,
                                                        int32_t* out, int count) {
    int m = 0;
    for (; m + 32 <= count; m += 32) {
        __m256i a0 = _mm256_setzero_si256(), a1 = a0, a2 = a0, a3 = a0;
        const uint32_t* pm = pairs + m;
        for (int p = 0; p < pairCount; ++p) {
            const __m256i t = _mm256_set1_epi32(static_cast<int32_t>(tapPairs[p]));
            const uint32_t* q = pm + 2 * p;
            a0 = _mm256_add_epi32(
                a0, _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(q)), t));
            a1 = _mm256_add_epi32(
                a1,
                _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(q + 8)), t));
            a2 = _mm256_add_epi32(
                a2,
                _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(q + 16)), t));
            a3 = _mm256_add_epi32(
                a3,
                _mm256_madd_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(q + 24)), t));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m), a0);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m + 8), a1);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m + 16), a2);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m + 24), a3);
    }
    for (; m + 8 <= count; m += 8) {
        __m256i a0 = _mm256_setzero_si256();
        for (int p = 0; p < pairCount; ++p) {
            const __m256i t = _mm256_set1_epi32(static_cast<int32_t>(tapPairs[p]));
            a0 = _mm256_add_epi32(
                a0,
                _mm256_madd_epi16(
                    _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pairs + m + 2 * p)), t));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m), a0);
    }
    CorrelateInt16Portable(pairs, tapPairs, pairCount, out, m, count);
}

__attribute__((target("avx2"))) void ScaledSumRangeAvx2(const float* sum, const float* x, float g,
                                                        int n, float& lo, float& hi) {
    const __m256 gv = _mm256_set1_ps(g);
    __m256 vlo = _mm256_setzero_ps(), vhi = vlo;
    int m = 0;
    for (; m + 8 <= n; m += 8) {
        const __m256 out = _mm256_mul_ps(_mm256_loadu_ps(x + m), gv);
        const __m256 s = _mm256_add_ps(_mm256_loadu_ps(sum + m), out);
        vlo = _mm256_min_ps(vlo, s);
        vhi = _mm256_max_ps(vhi, s);
    }
    alignas(32) float l[8], h[8];
    _mm256_store_ps(l, vlo);
    _mm256_store_ps(h, vhi);
    for (int i = 0; i < 8; ++i) {
        lo = std::min(lo, l[i]);
        hi = std::max(hi, h[i]);
    }
    ScaledSumRangePortable(sum, x, g, m, n, lo, hi);
}

__attribute__((target("avx2"))) void ScaleAccumulateAvx2(float* sum, float* out, const float* x,
                                                         float g, int n) {
    const __m256 gv = _mm256_set1_ps(g);
    int m = 0;
    for (; m + 8 <= n; m += 8) {
        const __m256 o = _mm256_mul_ps(_mm256_loadu_ps(x + m), gv);
        _mm256_storeu_ps(out + m, o);
        _mm256_storeu_ps(sum + m, _mm256_add_ps(_mm256_loadu_ps(sum + m), o));
    }
    ScaleAccumulatePortable(sum, out, x, g, m, n);
}

__attribute__((target("avx2"))) void NarrowAccumulatorsAvx2(const int32_t* acc, int16_t* y, int n) {
    const __m256i half = _mm256_set1_epi32(0x8000);
    int m = 0;
    for (; m + 16 <= n; m += 16) {
        // (acc + 2^15) >> 16 lies within 16 bits, so packing does not saturate.
        const __m256i a = _mm256_srai_epi32(
            _mm256_add_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(acc + m)), half),
            16);
        const __m256i b = _mm256_srai_epi32(
            _mm256_add_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(acc + m + 8)),
                             half),
            16);
        const __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xD8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(y + m), packed);
    }
    NarrowAccumulatorsPortable(acc, y, m, n);
}

__attribute__((target("avx2"))) bool ScaleAdd16Avx2(const int16_t* y, int factor, int shift,
                                                    const int16_t* sum, int16_t* out, int16_t* dst,
                                                    int n, int limit) {
    // y·factor + 2^(shift−1) as one pairwise multiply-add of (y, 1) by (factor, 2^(shift−1)).
    const __m256i coeff = _mm256_set1_epi32((factor & 0xFFFF) | ((1 << (shift - 1)) << 16));
    const __m256i ones = _mm256_set1_epi16(1);
    const __m128i count = _mm_cvtsi32_si128(shift);
    const __m256i hiLimit = _mm256_set1_epi16(static_cast<int16_t>(limit));
    const __m256i loLimit = _mm256_set1_epi16(static_cast<int16_t>(-limit));
    __m256i over = _mm256_setzero_si256();
    int m = 0;
    for (; m + 16 <= n; m += 16) {
        const __m256i yv = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(y + m));
        __m256i lo = _mm256_madd_epi16(_mm256_unpacklo_epi16(yv, ones), coeff);
        __m256i hi = _mm256_madd_epi16(_mm256_unpackhi_epi16(yv, ones), coeff);
        // Shift, then keep the low 16 bits (sign-extended) so the pack cannot saturate.
        lo = _mm256_srai_epi32(_mm256_slli_epi32(_mm256_sra_epi32(lo, count), 16), 16);
        hi = _mm256_srai_epi32(_mm256_slli_epi32(_mm256_sra_epi32(hi, count), 16), 16);
        const __m256i o = _mm256_packs_epi32(lo, hi);  // unpack/pack orders cancel out
        const __m256i d =
            _mm256_add_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(sum + m)), o);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + m), o);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + m), d);
        over = _mm256_or_si256(
            over, _mm256_or_si256(_mm256_cmpgt_epi16(d, hiLimit), _mm256_cmpgt_epi16(loLimit, d)));
    }
    const bool anyOver = !_mm256_testz_si256(over, over);
    return ScaleAdd16Portable(y, factor, shift, sum, out, dst, m, n, limit) || anyOver;
}

bool CpuHasAvx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}
#else
bool CpuHasAvx2() {
    return false;
}
#endif

std::atomic<KernelIsa>& Active() {
    static std::atomic<KernelIsa> isa{CpuHasAvx2() ? KernelIsa::Avx2 : KernelIsa::Portable};
    return isa;
}

}  // namespace

void CorrelateFloat(const float* x, const float* rtaps, int taps, float* out, int count) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2) {
        CorrelateFloatAvx2(x, rtaps, taps, out, count);
        return;
    }
#endif
    CorrelateFloatPortable(x, rtaps, taps, out, 0, count);
}

void CorrelateInt16(const uint32_t* pairs, const uint32_t* tapPairs, int pairCount, int32_t* out,
                    int count) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2) {
        CorrelateInt16Avx2(pairs, tapPairs, pairCount, out, count);
        return;
    }
#endif
    CorrelateInt16Portable(pairs, tapPairs, pairCount, out, 0, count);
}

void ScaledSumRange(const float* sum, const float* x, float g, int n, float& lo, float& hi) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2) {
        ScaledSumRangeAvx2(sum, x, g, n, lo, hi);
        return;
    }
#endif
    ScaledSumRangePortable(sum, x, g, 0, n, lo, hi);
}

void ScaleAccumulate(float* sum, float* out, const float* x, float g, int n) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2) {
        ScaleAccumulateAvx2(sum, out, x, g, n);
        return;
    }
#endif
    ScaleAccumulatePortable(sum, out, x, g, 0, n);
}

void NarrowAccumulators(const int32_t* acc, int16_t* y, int n) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2) {
        NarrowAccumulatorsAvx2(acc, y, n);
        return;
    }
#endif
    NarrowAccumulatorsPortable(acc, y, 0, n);
}

bool ScaleAdd16(const int16_t* y, int factor, int shift, const int16_t* sum, int16_t* out,
                int16_t* dst, int n, int limit) {
#ifdef MIXORA_HAVE_X86
    if (Active().load(std::memory_order_relaxed) == KernelIsa::Avx2)
        return ScaleAdd16Avx2(y, factor, shift, sum, out, dst, n, limit);
#endif
    return ScaleAdd16Portable(y, factor, shift, sum, out, dst, 0, n, limit);
}

KernelIsa ActiveKernelIsa() {
    return Active().load();
}

void ForceKernelIsa(KernelIsa isa) {
    Active().store(isa == KernelIsa::Avx2 && !CpuHasAvx2() ? KernelIsa::Portable : isa);
}

}  // namespace dsp::eq
