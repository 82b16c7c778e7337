// FFT block filtering for the equalizer (see FftBlockFilter.h).
#include "dsp/eq/FftBlockFilter.h"

#include <algorithm>

#include "dsp/FftwPlanner.h"

namespace dsp::eq {
namespace {

template <typename T>
T* AllocateFftw(size_t count) {
    return static_cast<T*>(fftwf_malloc(sizeof(T) * count));
}

}  // namespace

const FftBlockFilter::Plans& FftBlockFilter::SharedPlans() {
    static const Plans plans = [] {
        std::lock_guard<std::mutex> lock(FftwPlannerMutex());
        Plans p;
        // Planned on scratch arrays of the same (FFTW) alignment as every array
        // later passed to the new-array execute functions.
        float* in = AllocateFftw<float>(kSize);
        fftwf_complex* bins = AllocateFftw<fftwf_complex>(kSpectrumStride);
        p.forward = fftwf_plan_dft_r2c_1d(kSize, in, bins, FFTW_ESTIMATE);
        p.inverse = fftwf_plan_dft_c2r_1d(kSize, bins, in, FFTW_ESTIMATE);
        fftwf_free(bins);
        fftwf_free(in);
        return p;
    }();
    return plans;
}

FftBlockFilter::SpectrumStore FftBlockFilter::AllocateSpectra(int count) {
    SpectrumStore s(AllocateFftw<fftwf_complex>(static_cast<size_t>(count) * kSpectrumStride));
    std::fill_n(&s[0][0], static_cast<size_t>(count) * kSpectrumStride * 2, 0.0f);
    return s;
}

FftBlockFilter::FftBlockFilter()
    : time_(AllocateFftw<float>(kSize)),
      result_(AllocateFftw<float>(kSize)),
      input_(AllocateSpectra(1)),
      product_(AllocateSpectra(1)) {
    SharedPlans();
    std::fill_n(time_.get(), kSize, 0.0f);
    std::fill_n(result_.get(), kSize, 0.0f);
}

void FftBlockFilter::MakeSpectrum(const float* rtaps, int taps, fftwf_complex* dst) {
    // Convolution form of the sliding product: g[i] = rtaps[499 − i], so that
    // (kept * g)[m + 499] = Σ_j rtaps[j] · kept[m + j].
    constexpr float kScale = 1.0f / kSize;
    float* g = time_.get();
    std::fill_n(g, kSize, 0.0f);
    for (int j = 0; j < taps && j < kMaxTaps; ++j)
        g[kMaxTaps - 1 - j] = rtaps[j] * kScale;
    fftwf_execute_dft_r2c(SharedPlans().forward, g, dst);
}

void FftBlockFilter::LoadInput(const float* kept) {
    float* t = time_.get();
    std::copy_n(kept, kKeptLength, t);
    std::fill(t + kKeptLength, t + kSize, 0.0f);
    fftwf_execute_dft_r2c(SharedPlans().forward, t, input_.get());
}

void FftBlockFilter::Apply(const fftwf_complex* spectrum, float* out) {
    const float* x = &input_[0][0];
    const float* h = &spectrum[0][0];
    float* p = &product_[0][0];
    for (int k = 0; k < 2 * kBins; k += 2) {
        const float xr = x[k], xi = x[k + 1], hr = h[k], hi = h[k + 1];
        p[k] = xr * hr - xi * hi;
        p[k + 1] = xr * hi + xi * hr;
    }
    fftwf_execute_dft_c2r(SharedPlans().inverse, product_.get(), result_.get());
    std::copy_n(result_.get() + (kMaxTaps - 1), kOutputs, out);
}

}  // namespace dsp::eq
