// FFT convolution of the equalizer's kept input with filters of up to 500 taps.
//
// The kept input (1675 samples: 499 of history, then the 1176 of the block) is
// transformed once per block; each filter is kept as a spectrum, made when the
// filter is designed. Applying a filter multiplies the two spectra and
// transforms back: output m = Σ_j rtaps[j] · kept[m + j] for m < 1176, the
// same values as CorrelateFloat (FirKernels.h) up to rounding. Transforms are
// 2048 points, enough that the circular wrap never reaches the outputs used.
//
// The FFTW plans are made once per process under FftwPlannerMutex(); building
// a filter object never plans again and nothing here allocates after
// construction.
#pragma once

#include <fftw3.h>

#include <memory>

namespace dsp::eq {

class FftBlockFilter {
  public:
    static constexpr int kSize = 2048;            // transform length
    static constexpr int kBins = kSize / 2 + 1;   // complex bins of a real transform
    static constexpr int kSpectrumStride = 1032;  // bins per stored spectrum (64-byte steps)
    static constexpr int kKeptLength = 1675;      // input samples per block
    static constexpr int kOutputs = 1176;         // outputs per block
    static constexpr int kMaxTaps = 500;

    FftBlockFilter();
    FftBlockFilter(const FftBlockFilter&) = delete;
    FftBlockFilter& operator=(const FftBlockFilter&) = delete;

    // Allocates spectrum storage (kSpectrumStride bins each, FFTW-aligned).
    struct FreeFftw {
        void operator()(void* p) const { fftwf_free(p); }
    };
    using SpectrumStore = std::unique_ptr<fftwf_complex[], FreeFftw>;
    static SpectrumStore AllocateSpectra(int count);

    // Spectrum of a filter given by its reversed taps (1 … 500 of them), with
    // the inverse transform's 1/2048 folded in; written to dst (kBins values).
    void MakeSpectrum(const float* rtaps, int taps, fftwf_complex* dst);

    // Transforms kept (kKeptLength samples) for the following Apply calls.
    void LoadInput(const float* kept);
    // Filters the loaded input with one spectrum: kOutputs samples to out.
    void Apply(const fftwf_complex* spectrum, float* out);

  private:
    struct Plans {
        fftwf_plan forward = nullptr;  // real 2048 → 1025 complex, out of place
        fftwf_plan inverse = nullptr;  // 1025 complex → real 2048, out of place
    };
    static const Plans& SharedPlans();

    std::unique_ptr<float[], FreeFftw> time_;    // kSize real samples (transform input)
    std::unique_ptr<float[], FreeFftw> result_;  // kSize real samples (inverse output)
    SpectrumStore input_;                        // spectrum of the loaded input
    SpectrumStore product_;                      // input × filter (destroyed by the inverse)
};

}  // namespace dsp::eq
