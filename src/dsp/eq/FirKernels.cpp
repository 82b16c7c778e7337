// Sliding dot products for the equalizer (see FirKernels.h).
#include "dsp/eq/FirKernels.h"

#include <atomic>

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

KernelIsa ActiveKernelIsa() {
    return Active().load();
}

void ForceKernelIsa(KernelIsa isa) {
    Active().store(isa == KernelIsa::Avx2 && !CpuHasAvx2() ? KernelIsa::Portable : isa);
}

}  // namespace dsp::eq
