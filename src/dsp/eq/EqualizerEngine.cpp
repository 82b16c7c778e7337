// The multi-band FIR equalizer (see EqualizerEngine.h): band layout, design,
// readers and block processing in both sample types.
#include "dsp/eq/EqualizerEngine.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "dsp/VectorOps.h"
#include "dsp/eq/AntiClipGain.h"
#include "dsp/eq/FftBlockFilter.h"
#include "dsp/eq/FirKernels.h"

namespace dsp {

using namespace eq;

namespace {

constexpr int kTapStride = 512;   // reversed taps per band, zero padded
constexpr int kPairStride = 256;  // packed 16-bit tap pairs per band
constexpr int kKeptPadding = 32;  // zero samples behind the kept input
// Filters of at least this many taps run by FFT under EqFloatStrategy::Auto
// (where the FFT's fixed cost drops below the direct product; see bench/eq_engine).
constexpr int kFftMinTaps = 80;

// trunc(scale · level), the level limited to ±1 so the factor fits 16 bits.
int32_t FixedFactor(float level, int32_t scale) {
    return static_cast<int32_t>(std::clamp(level, -1.0f, 1.0f) * static_cast<float>(scale));
}

}  // namespace

template <typename Sample>
struct EqualizerEngine<Sample>::Accel {
    EqFloatStrategy strategy = EqFloatStrategy::Auto;
    // Float: reversed taps per band and the level-weighted sum of them.
    std::vector<float> rtaps;
    std::vector<float> combined;
    int combinedTaps = 0;
    bool combinedDirty = true;
    std::unique_ptr<FftBlockFilter> fft;
    FftBlockFilter::SpectrumStore bandSpectra;  // kMaxBands spectra
    FftBlockFilter::SpectrumStore combinedSpectrum;
    bool inputLoaded = false;   // fft holds the current kept input
    bool bandsPending = false;  // band outputs not yet worked out for this block
    std::array<float, kMaxBands> blockLevel{};
    std::vector<float> filtered;
    // 16-bit: packed tap pairs per band, packed sample pairs, accumulators.
    std::vector<uint32_t> tapPairs;
    std::vector<uint32_t> samplePairs;
    std::vector<int32_t> acc;
    std::vector<int16_t> scaled;

    bool UseFft(int taps) const {
        return strategy == EqFloatStrategy::Fft ||
               (strategy == EqFloatStrategy::Auto && taps >= kFftMinTaps);
    }
};

template <typename Sample>
EqualizerEngine<Sample>::EqualizerEngine()
    : bands_(new Band[kMaxBands]),
      kept_(new Sample[kKeptLength + kKeptPadding]()),
      sum_(new Sample[kBlockLength]()),
      trial_(new int16_t[kBlockLength]()),
      f0_(eq::PlotBaseFrequency(eq::kSampleRate)),
      r_(eq::PlotRatio()),
      accel_(std::make_unique<Accel>()) {
    Accel& a = *accel_;
    if constexpr (std::is_same_v<Sample, float>) {
        a.rtaps.assign(kMaxBands * kTapStride, 0.0f);
        a.combined.assign(kTapStride, 0.0f);
        a.fft = std::make_unique<FftBlockFilter>();
        a.bandSpectra = FftBlockFilter::AllocateSpectra(kMaxBands);
        a.combinedSpectrum = FftBlockFilter::AllocateSpectra(1);
        a.filtered.assign(kBlockLength, 0.0f);
    } else {
        a.tapPairs.assign(kMaxBands * kPairStride, 0u);
        a.samplePairs.assign(kKeptLength + kKeptPadding, 0u);
        a.acc.assign(kBlockLength, 0);
        a.scaled.assign(kBlockLength, 0);
    }
}

template <typename Sample>
EqualizerEngine<Sample>::~EqualizerEngine() = default;

// ---- settings ---------------------------------------------------------------

template <typename Sample>
void EqualizerEngine<Sample>::SetNumberOfBands(int n) {
    bandCount_ = std::clamp(n, kMinBands, kMaxBands);
    const auto taps = DefaultTapCounts(bandCount_);
    accel_->bandsPending = false;
    for (int b = 0; b < kMaxBands; ++b) {
        bands_[b].tapCount = taps[b];
        bands_[b].output.fill(Sample{});
    }
    const double fs = sampleRate_;
    for (int b = 0; b < bandCount_; ++b) {
        Band& band = bands_[b];
        band.lowEdge = b == 0 ? f0_ : BandBoundary(fs, bandCount_, b - 1);
        band.highEdge = b == bandCount_ - 1 ? fs / 2.0 : BandBoundary(fs, bandCount_, b);
        DesignBand(b);
    }
    accel_->combinedDirty = true;
}

template <typename Sample>
void EqualizerEngine<Sample>::SetWindowType(std::string_view name) {
    if (auto w = WindowByName(name))
        window_ = *w;
}

template <typename Sample>
void EqualizerEngine<Sample>::SetTapCount(int b, int n) {
    if (b < 0 || b >= kMaxBands)
        return;
    MaterialiseBandOutputs();
    bands_[b].tapCount = std::clamp(n, 1, kMaxTaps);
    if (ValidBand(b))
        DesignBand(b);
}

template <typename Sample>
void EqualizerEngine<Sample>::ResetTapCounts() {
    const auto taps = DefaultTapCounts(bandCount_);
    for (int b = 0; b < kMaxBands; ++b)
        bands_[b].tapCount = taps[b];
}

template <typename Sample>
void EqualizerEngine<Sample>::SetCutoffByPlotIndex(int b, int edge, int index) {
    if (!ValidBand(b) || (edge != 0 && edge != 1))
        return;
    const double f = f0_ * std::pow(r_, index);
    if (f / sampleRate_ > 0.5)
        return;
    Band& band = bands_[b];
    if (b == 0) {
        band.lowEdge = band.highEdge = f;
    } else if (b == bandCount_ - 1) {
        band.lowEdge = f;
    } else if (edge == 0) {
        if (!(f < band.highEdge))
            return;
        band.lowEdge = f;
    } else {
        if (!(f > band.lowEdge))
            return;
        band.highEdge = f;
    }
    MaterialiseBandOutputs();
    DesignBand(b);
}

template <typename Sample>
void EqualizerEngine<Sample>::SetLevel(int b, float level) {
    if (b < 0 || b >= kMaxBands)
        return;
    bands_[b].level = level;
    bands_[b].gain = level;
    accel_->combinedDirty = true;
}

template <typename Sample>
void EqualizerEngine<Sample>::SetFloatStrategy(EqFloatStrategy s) {
    accel_->strategy = s;
    accel_->combinedDirty = true;
}

// ---- design -----------------------------------------------------------------

template <typename Sample>
void EqualizerEngine<Sample>::DesignBand(int b) {
    Band& band = bands_[b];
    const std::span<double> h(band.designed.data(), band.tapCount);
    std::fill(band.designed.begin(), band.designed.end(), 0.0);
    if (b == 0)
        FirLowpass(band.highEdge / sampleRate_, h, window_, true);
    else if (b == bandCount_ - 1)
        FirHighpass(band.lowEdge / sampleRate_, h, window_, true);
    else
        FirBandpass(band.lowEdge / sampleRate_, band.highEdge / sampleRate_, h, window_, true);

    band.working.fill(Sample{});
    for (int k = 0; k < band.tapCount; ++k) {
        if constexpr (std::is_same_v<Sample, float>) {
            band.working[k] = static_cast<float>(h[k]);
        } else {
            // (2^15 − 1)·h truncated toward zero; taps beyond ±1 are limited to 16 bits.
            const double t = std::trunc(32767.0 * h[k]);
            band.working[k] = static_cast<int16_t>(std::clamp(t, -32768.0, 32767.0));
        }
    }
    band.curve = eq::ResponseCurve(h, sampleRate_);
    PrepareFastTaps(b);
}

template <typename Sample>
void EqualizerEngine<Sample>::PrepareFastTaps(int b) {
    const Band& band = bands_[b];
    const int L = band.tapCount;
    Accel& a = *accel_;
    if constexpr (std::is_same_v<Sample, float>) {
        float* rt = &a.rtaps[b * kTapStride];
        std::fill_n(rt, kTapStride, 0.0f);
        for (int j = 0; j < L; ++j)
            rt[j] = band.working[L - 1 - j];
        a.fft->MakeSpectrum(rt, L, a.bandSpectra.get() + b * FftBlockFilter::kSpectrumStride);
        a.combinedDirty = true;
    } else {
        uint32_t* tp = &a.tapPairs[b * kPairStride];
        std::fill_n(tp, kPairStride, 0u);
        for (int j = 0; j < L; ++j) {
            const uint32_t t = static_cast<uint16_t>(band.working[L - 1 - j]);
            tp[j / 2] |= (j % 2 == 0) ? t : t << 16;
        }
    }
}

// ---- block processing -------------------------------------------------------

template <typename Sample>
bool EqualizerEngine<Sample>::ProcessBlock(Sample* samples, bool writeBack, bool antiClip,
                                           bool& clipped) {
    Sample* kept = kept_.get();
    std::memmove(kept, kept + kBlockLength, sizeof(Sample) * kHistory);
    std::memcpy(kept + kHistory, samples, sizeof(Sample) * kBlockLength);
    std::fill_n(sum_.get(), kBlockLength, Sample{});
    if constexpr (std::is_same_v<Sample, float>)
        ProcessBandsFloat(antiClip, clipped);
    else
        ProcessBands16(antiClip, clipped);
    if (writeBack)
        std::memcpy(samples, sum_.get(), sizeof(Sample) * kBlockLength);
    return false;
}

template <typename Sample>
void EqualizerEngine<Sample>::ProcessBands16(bool antiClip, bool& clipped) {
    if constexpr (std::is_same_v<Sample, int16_t>) {
        Accel& a = *accel_;
        const int16_t* kept = kept_.get();
        uint32_t* pairs = a.samplePairs.data();
        for (int n = 0; n < kKeptLength; ++n)
            pairs[n] = static_cast<uint16_t>(kept[n]) |
                       (static_cast<uint32_t>(static_cast<uint16_t>(kept[n + 1])) << 16);
        int16_t* sum = sum_.get();
        int16_t* trial = trial_.get();
        int16_t* y = a.scaled.data();
        int32_t* acc = a.acc.data();

        for (int b = bandCount_ - 1; b >= 0; --b) {
            Band& band = bands_[b];
            CorrelateInt16(pairs, &a.tapPairs[b * kPairStride], (band.tapCount + 1) / 2, acc,
                           kBlockLength);
            NarrowAccumulators(acc, y, kBlockLength);
            int16_t* out = band.output.data();
            if (!antiClip) {
                ScaleAdd16(y, FixedFactor(band.level, 32767), 14, sum, out, sum, kBlockLength,
                           32767);
                continue;
            }
            // Each trial writes its sum to trial; the last one is the gain kept.
            const float g = BackOffGain(
                band.gain,
                [&](float trialGain) {
                    return ScaleAdd16(y, FixedFactor(trialGain, 8191), 13, sum, out, trial,
                                      kBlockLength, 32000);
                },
                clipped);
            std::memcpy(sum, trial, sizeof(int16_t) * kBlockLength);
            band.gain = RecoverGain(g, band.level);
        }
    }
}

template <typename Sample>
void EqualizerEngine<Sample>::FilterBandFloat(int b, float* out) const {
    if constexpr (std::is_same_v<Sample, float>) {
        Accel& a = *accel_;
        const int L = bands_[b].tapCount;
        if (a.UseFft(L)) {
            if (!a.inputLoaded) {
                a.fft->LoadInput(kept_.get());
                a.inputLoaded = true;
            }
            a.fft->Apply(a.bandSpectra.get() + b * FftBlockFilter::kSpectrumStride, out);
        } else {
            CorrelateFloat(kept_.get(), &a.rtaps[b * kTapStride], L, out, kBlockLength);
        }
    }
}

template <typename Sample>
void EqualizerEngine<Sample>::ProcessBandsFloat(bool antiClip, bool& clipped) {
    if constexpr (std::is_same_v<Sample, float>) {
        Accel& a = *accel_;
        a.inputLoaded = false;
        a.bandsPending = false;
        float* sum = sum_.get();
        if (bandCount_ == 0)
            return;
        if (!antiClip) {
            // Without anti-clip the bands add up to one filter: Σ level_b · taps_b,
            // each band's reversed taps starting at index 0 (which is its lag).
            if (a.combinedDirty) {
                std::fill(a.combined.begin(), a.combined.end(), 0.0f);
                a.combinedTaps = 0;
                for (int b = 0; b < bandCount_; ++b) {
                    const float* rt = &a.rtaps[b * kTapStride];
                    for (int j = 0; j < bands_[b].tapCount; ++j)
                        a.combined[j] += bands_[b].level * rt[j];
                    a.combinedTaps = std::max(a.combinedTaps, bands_[b].tapCount);
                }
                if (a.UseFft(a.combinedTaps))
                    a.fft->MakeSpectrum(a.combined.data(), a.combinedTaps,
                                        a.combinedSpectrum.get());
                a.combinedDirty = false;
            }
            if (a.UseFft(a.combinedTaps)) {
                a.fft->LoadInput(kept_.get());
                a.inputLoaded = true;
                a.fft->Apply(a.combinedSpectrum.get(), sum);
            } else {
                CorrelateFloat(kept_.get(), a.combined.data(), a.combinedTaps, sum, kBlockLength);
            }
            for (int b = 0; b < bandCount_; ++b)
                a.blockLevel[b] = bands_[b].level;
            a.bandsPending = true;
            return;
        }

        float* filtered = a.filtered.data();
        for (int b = bandCount_ - 1; b >= 0; --b) {
            Band& band = bands_[b];
            FilterBandFloat(b, filtered);
            const float g = BackOffGain(
                band.gain,
                [&](float trialGain) {
                    float lo = 0.0f, hi = 0.0f;
                    ScaledSumRange(sum, filtered, trialGain, kBlockLength, lo, hi);
                    return (lo <= -32768.0f || hi >= 32767.0f) && trialGain > 0.0f;
                },
                clipped);
            ScaleAccumulate(sum, band.output.data(), filtered, g, kBlockLength);
            band.gain = RecoverGain(g, band.level);
        }
    }
}

// Works out the single band outputs of a block that ran as one combined
// filter: each band filtered on its own and scaled by the level of that block.
template <typename Sample>
void EqualizerEngine<Sample>::MaterialiseBandOutputs() const {
    if constexpr (std::is_same_v<Sample, float>) {
        Accel& a = *accel_;
        if (!a.bandsPending)
            return;
        a.bandsPending = false;
        for (int b = 0; b < bandCount_; ++b) {
            float* out = bands_[b].output.data();
            FilterBandFloat(b, out);
            const float level = a.blockLevel[b];
            for (int m = 0; m < kBlockLength; ++m)
                out[m] *= level;
        }
    }
}

// ---- readers ----------------------------------------------------------------

template <typename Sample>
int EqualizerEngine<Sample>::TapCount(int b) const {
    return ValidBand(b) ? bands_[b].tapCount : 0;
}

template <typename Sample>
float EqualizerEngine<Sample>::Level(int b) const {
    return ValidBand(b) ? bands_[b].level : 0.0f;
}

template <typename Sample>
float EqualizerEngine<Sample>::EffectiveGain(int b) const {
    return ValidBand(b) ? bands_[b].gain : 0.0f;
}

template <typename Sample>
std::span<const Sample> EqualizerEngine<Sample>::BandOutput(int b) const {
    if (!ValidBand(b))
        return {};
    MaterialiseBandOutputs();
    return {bands_[b].output.data(), static_cast<size_t>(kBlockLength)};
}

template <typename Sample>
typename EqualizerEngine<Sample>::Curve EqualizerEngine<Sample>::ResponseCurve(int b) const {
    return ValidBand(b) ? bands_[b].curve : Curve{};
}

template <typename Sample>
double EqualizerEngine<Sample>::CutoffHz(int b, int edge) const {
    if (!ValidBand(b))
        return 0.0;
    return edge == 0 ? bands_[b].lowEdge : edge == 1 ? bands_[b].highEdge : 0.0;
}

template <typename Sample>
int EqualizerEngine<Sample>::CutoffPlotIndex(int b, int edge) const {
    const double f = CutoffHz(b, edge);
    if (f <= 0.0)
        return 0;
    // The integer part; the small allowance keeps an edge set at point i from
    // reading back as i − 1 through rounding.
    return static_cast<int>(std::trunc(std::log(f / f0_) / std::log(r_) + 1e-9));
}

template <typename Sample>
typename EqualizerEngine<Sample>::Curve EqualizerEngine<Sample>::TotalResponse() const {
    Curve total{};
    for (int i = 0; i < kPlotPoints; ++i) {
        double s = 0.0;
        for (int b = 0; b < bandCount_; ++b)
            s += std::pow(10.0, (bands_[b].level * bands_[b].curve[i] - kDbOffset) * 0.05);
        total[i] = static_cast<float>(20.0 * std::log10(std::max(s, 1e-20)) + kDbOffset);
    }
    return total;
}

template <typename Sample>
float EqualizerEngine<Sample>::BandRmsMilliDb(int b) const {
    if (!ValidBand(b))
        return 0.0f;
    double sigma = StdDev(BandOutput(b));
    if constexpr (std::is_same_v<Sample, int16_t>)
        sigma = std::round(sigma);  // 16-bit σ
    return sigma > 0.0 ? static_cast<float>(20000.0 * std::log10(sigma)) : 0.0f;
}

template <typename Sample>
int EqualizerEngine<Sample>::BandRmsMilliDbInt(int b) const {
    return static_cast<int>(BandRmsMilliDb(b));
}

template <typename Sample>
std::span<const Sample> EqualizerEngine<Sample>::BandSum() const {
    return {sum_.get(), static_cast<size_t>(kBlockLength)};
}

template <typename Sample>
std::span<const double> EqualizerEngine<Sample>::DesignedTaps(int b) const {
    if (!ValidBand(b))
        return {};
    return {bands_[b].designed.data(), static_cast<size_t>(bands_[b].tapCount)};
}

template <typename Sample>
std::span<const Sample> EqualizerEngine<Sample>::WorkingTaps(int b) const {
    if (!ValidBand(b))
        return {};
    return {bands_[b].working.data(), static_cast<size_t>(bands_[b].tapCount)};
}

template class EqualizerEngine<int16_t>;
template class EqualizerEngine<float>;

}  // namespace dsp
