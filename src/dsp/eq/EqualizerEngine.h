// EqualizerEngine: the multi-band FIR equalizer of one channel.
//
// The engine splits a channel into 2 … 24 bands with windowed FIR filters
// (band 0 a low-pass, the last band a high-pass, the others band-passes, the
// boundaries 7/n octaves apart below half the sample rate), scales each band
// by its level and adds the bands back together, 1176 samples per call. It
// keeps each band's output of the last block for the meters and computes the
// response curves the equalizer window draws.
//
// Two variants with the same behaviour: EqualizerEngine<int16_t> (16-bit
// samples and taps, fixed-point scaling that wraps around, FixedPoint.h) and
// EqualizerEngine<float> (float samples on the 16-bit scale).
//
// Timing: the engine keeps 1675 input samples (the last 499 of the previous
// block, then the current block). A band of L taps reads them from the start,
// so it lags the block by 500 − L samples besides its own filter delay.
//
// Speed: filtering runs on AVX2 kernels when the processor has them
// (FirKernels.h); the float engine filters long bands by FFT, and without
// anti-clip runs all bands as one combined filter, working out the single
// band outputs only when one is read. Nothing allocates after construction.
// Not thread-safe: each engine belongs to the user-interface thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>

#include "dsp/FirDesign.h"
#include "dsp/eq/EqualizerLayout.h"

namespace dsp {

// How the float engine filters: Auto picks per filter length; Direct and Fft
// force one method (for tests and measurements).
enum class EqFloatStrategy { Auto, Direct, Fft };

template <typename Sample>
class EqualizerEngine {
    static_assert(std::is_same_v<Sample, int16_t> || std::is_same_v<Sample, float>);

  public:
    using Curve = std::array<float, eq::kPlotPoints>;

    EqualizerEngine();
    ~EqualizerEngine();
    EqualizerEngine(const EqualizerEngine&) = delete;
    EqualizerEngine& operator=(const EqualizerEngine&) = delete;

    // Clamps n to 2 … 24, loads its default tap counts, clears the band
    // outputs, lays the bands out and designs every band.
    void SetNumberOfBands(int n);
    // Filter-design window by name (EqualizerLayout.h); unknown names change
    // nothing. Takes effect at the next design.
    void SetWindowType(std::string_view name);
    // Band b (0 … 23) gets n taps (clamped to 1 … 500) and, if it is in use,
    // is designed again.
    void SetTapCount(int b, int n);
    // Default tap counts for the current band count, without designing.
    void ResetTapCounts();
    // Moves edge 0 (low) or 1 (high) of band b to plot point `index`
    // (frequency f0·r^index). Ignored beyond half the sample rate, and for a
    // middle band when the edge would cross its other edge.
    void SetCutoffByPlotIndex(int b, int edge, int index);
    // Level 0 … 1 of band b; also resets its effective gain to it.
    void SetLevel(int b, float level);

    // Equalizes one block of 1176 samples (read; overwritten when writeBack).
    // With antiClip a band that would push the sum out of range is turned
    // down 0.1 at a time and sets `clipped` (which the caller clears); each
    // block it climbs back 0.02 towards its level. Always returns false.
    bool ProcessBlock(Sample* samples, bool writeBack, bool antiClip, bool& clipped);

    // Readers; a band index outside 0 … BandCount()−1 reads 0 (or empty).
    int BandCount() const { return bandCount_; }
    int TapCount(int b) const;
    float Level(int b) const;
    float EffectiveGain(int b) const;
    std::span<const Sample> BandOutput(int b) const;  // 1176 samples of the last block
    Curve ResponseCurve(int b) const;                 // dB + 96.33 at the 150 plot points
    int CutoffPlotIndex(int b, int edge) const;
    double CutoffHz(int b, int edge) const;
    Curve TotalResponse() const;
    float BandRmsMilliDb(int b) const;  // 20000·log10(σ of the band output), 0 when σ is 0
    int BandRmsMilliDbInt(int b) const;

    // The last block's equalized sum (1176 samples) and the band filters.
    std::span<const Sample> BandSum() const;
    std::span<const double> DesignedTaps(int b) const;
    std::span<const Sample> WorkingTaps(int b) const;
    FirWindow WindowType() const { return window_; }
    double SampleRate() const { return sampleRate_; }
    double PlotBaseFrequency() const { return f0_; }
    double PlotRatio() const { return r_; }

    void SetFloatStrategy(EqFloatStrategy s);

  private:
    struct Band {
        std::array<double, eq::kMaxTaps> designed{};
        std::array<Sample, eq::kMaxTaps> working{};
        int tapCount = eq::kInitialTaps;
        std::array<Sample, eq::kBlockLength> output{};
        Curve curve{};
        double lowEdge = 0.0, highEdge = 0.0;  // Hz
        float level = 1.0f;
        float gain = 1.0f;  // effective gain under anti-clip
    };
    struct Accel;  // caches of the fast paths (EqualizerEngine.cpp)

    bool ValidBand(int b) const { return b >= 0 && b < bandCount_; }
    void DesignBand(int b);
    void PrepareFastTaps(int b);
    void ProcessBands16(bool antiClip, bool& clipped);
    void ProcessBandsFloat(bool antiClip, bool& clipped);
    void FilterBandFloat(int b, float* out) const;
    void MaterialiseBandOutputs() const;

    std::unique_ptr<Band[]> bands_;     // kMaxBands slots
    std::unique_ptr<Sample[]> kept_;    // kKeptLength samples, then zero padding
    std::unique_ptr<Sample[]> sum_;     // kBlockLength
    std::unique_ptr<int16_t[]> trial_;  // kBlockLength, anti-clip trial sum (16-bit)
    double f0_ = 0.0, r_ = 0.0;
    int bandCount_ = 0;
    double sampleRate_ = eq::kSampleRate;
    FirWindow window_ = FirWindow::Rectangular;
    std::unique_ptr<Accel> accel_;
};

extern template class EqualizerEngine<int16_t>;
extern template class EqualizerEngine<float>;

using EqualizerEngine16 = EqualizerEngine<int16_t>;
using EqualizerEngineFloat = EqualizerEngine<float>;

}  // namespace dsp
