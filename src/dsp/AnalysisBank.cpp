#include "dsp/AnalysisBank.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "dsp/FftwPlanner.h"
#include "dsp/eq/EqualizerEngine.h"
#include "dsp/eq/FftBlockFilter.h"

namespace dsp {

namespace {

constexpr int kPowerSize = 1024;                               // the level transform
constexpr int kPowerBins = kPowerSize / 2 + 1;                 // 513
constexpr int kPowerOffset = (kBlockFrames - kPowerSize) / 2;  // middle of the block
constexpr int kResponseSize = 2 * kPowerSize;  // taps' transform, every second bin used
constexpr int kHistory = eq::FftBlockFilter::kKeptLength - kBlockFrames;  // 499

struct FreeFftw {
    void operator()(void* p) const { fftwf_free(p); }
};
template <typename T>
using FftwArray = std::unique_ptr<T[], FreeFftw>;
template <typename T>
FftwArray<T> FftwAlloc(int n) {
    return FftwArray<T>(static_cast<T*>(fftwf_malloc(sizeof(T) * n)));
}

// The planned transforms, made once per process.
struct PowerPlans {
    fftwf_plan power = nullptr;     // 1024 real → 513 complex
    fftwf_plan response = nullptr;  // 2048 real → 1025 complex (design time only)
};

const PowerPlans& SharedPlans() {
    static const PowerPlans plans = [] {
        std::lock_guard lock(FftwPlannerMutex());
        PowerPlans p;
        auto in = FftwAlloc<float>(kResponseSize);
        auto out = FftwAlloc<fftwf_complex>(kResponseSize / 2 + 1);
        p.power = fftwf_plan_dft_r2c_1d(kPowerSize, in.get(), out.get(), FFTW_ESTIMATE);
        p.response = fftwf_plan_dft_r2c_1d(kResponseSize, in.get(), out.get(), FFTW_ESTIMATE);
        return p;
    }();
    return plans;
}

}  // namespace

struct AnalysisBank::Impl {
    eq::FftBlockFilter filter;
    eq::FftBlockFilter::SpectrumStore groupSpectra =
        eq::FftBlockFilter::AllocateSpectra(kMaxGroups);
    FftwArray<float> time = FftwAlloc<float>(kResponseSize);
    FftwArray<fftwf_complex> bins = FftwAlloc<fftwf_complex>(kResponseSize / 2 + 1);
    std::array<float, kPowerSize> window{};
    std::array<float, kPowerBins> power{};
    // Per band: c_k·|H(k)|² / (N·Σw²) at the 513 level bins.
    std::vector<float> weights = std::vector<float>(kMaxBands * kPowerBins, 0.0f);
    std::array<float, eq::FftBlockFilter::kKeptLength> kept{};
    std::array<std::array<float, kBlockFrames>, kMaxGroups> groups{};
};

AnalysisBank::AnalysisBank() : impl_(std::make_unique<Impl>()) {
    (void)SharedPlans();
    for (int i = 0; i < kPowerSize; ++i) {
        const double s = std::sin(std::numbers::pi * (i + 0.5) / kPowerSize);
        impl_->window[i] = static_cast<float>(s * s);
    }
    SetNumberOfBands(3);
}

AnalysisBank::~AnalysisBank() = default;

void AnalysisBank::SetNumberOfBands(int n) {
    Impl& m = *impl_;
    EqualizerEngineFloat design;
    design.SetNumberOfBands(n);
    bands_ = design.BandCount();
    groups_ = GroupsFor(bands_);
    levels_.fill(0.0);
    m.kept.fill(0.0f);
    for (auto& g : m.groups)
        g.fill(0.0f);

    double sumSquares = 0.0;
    for (float w : m.window)
        sumSquares += static_cast<double>(w) * w;
    const double norm = 1.0 / (kPowerSize * sumSquares);
    const PowerPlans& plans = SharedPlans();

    std::array<std::array<float, eq::kMaxTaps>, kMaxGroups> groupTaps{};
    std::array<int, kMaxGroups> groupLength{};
    for (int b = 0; b < bands_; ++b) {
        std::span<const float> taps = design.WorkingTaps(b);
        const int L = static_cast<int>(taps.size());
        // Magnitude response at the level bins (every second bin of 2048).
        std::fill(m.time.get(), m.time.get() + kResponseSize, 0.0f);
        std::copy(taps.begin(), taps.end(), m.time.get());
        fftwf_execute_dft_r2c(plans.response, m.time.get(), m.bins.get());
        float* w = &m.weights[static_cast<size_t>(b) * kPowerBins];
        for (int k = 0; k < kPowerBins; ++k) {
            const double re = m.bins[2 * k][0], im = m.bins[2 * k][1];
            const double c = (k == 0 || k == kPowerBins - 1) ? 1.0 : 2.0;
            w[k] = static_cast<float>(c * (re * re + im * im) * norm);
        }
        // Reversed taps, added into the band's group (each band reads the
        // kept input from its start, as the equalizer does).
        const int g = groups_.bandsPerGroup > 0 ? b / groups_.bandsPerGroup : 0;
        if (g < groups_.groups) {
            for (int j = 0; j < L; ++j)
                groupTaps[g][j] += taps[L - 1 - j];
            groupLength[g] = std::max(groupLength[g], L);
        }
    }
    for (int g = 0; g < groups_.groups; ++g) {
        m.filter.MakeSpectrum(groupTaps[g].data(), std::max(1, groupLength[g]),
                              m.groupSpectra.get() + g * eq::FftBlockFilter::kSpectrumStride);
    }
}

void AnalysisBank::Process(std::span<const float> samples, bool withGroups) {
    Impl& m = *impl_;
    if (samples.size() < static_cast<size_t>(kBlock))
        return;
    // Band levels: mean removed, Hann window over the middle 1024 samples.
    double mean = 0.0;
    for (int i = 0; i < kBlock; ++i)
        mean += samples[i];
    mean /= kBlock;
    const float fm = static_cast<float>(mean);
    float* t = m.time.get();
    for (int i = 0; i < kPowerSize; ++i)
        t[i] = (samples[kPowerOffset + i] - fm) * m.window[i];
    fftwf_execute_dft_r2c(SharedPlans().power, t, m.bins.get());
    for (int k = 0; k < kPowerBins; ++k)
        m.power[k] = m.bins[k][0] * m.bins[k][0] + m.bins[k][1] * m.bins[k][1];
    for (int b = 0; b < bands_; ++b) {
        const float* w = &m.weights[static_cast<size_t>(b) * kPowerBins];
        float acc = 0.0f;
        for (int k = 0; k < kPowerBins; ++k)
            acc += w[k] * m.power[k];
        levels_[b] = BandMilliDb(std::sqrt(static_cast<double>(std::max(acc, 0.0f))));
    }

    // Group outputs: the kept input (499 of history, then the block).
    std::copy(m.kept.begin() + kBlock, m.kept.end(), m.kept.begin());
    std::copy(samples.begin(), samples.begin() + kBlock, m.kept.begin() + kHistory);
    if (!withGroups)
        return;
    m.filter.LoadInput(m.kept.data());
    for (int g = 0; g < groups_.groups; ++g)
        m.filter.Apply(m.groupSpectra.get() + g * eq::FftBlockFilter::kSpectrumStride,
                       m.groups[g].data());
}

std::span<const float> AnalysisBank::GroupOutput(int g) const {
    if (g < 0 || g >= groups_.groups)
        return {};
    return impl_->groups[g];
}

}  // namespace dsp
