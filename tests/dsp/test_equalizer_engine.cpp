// The equalizer engine's behaviour: band layout and default taps, window
// names, edge moves, the band sum, lag, anti-clip in both sample types, the
// response curves and the band level readers.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "dsp/VectorOps.h"
#include "dsp/eq/EqualizerEngine.h"

using dsp::EqualizerEngine16;
using dsp::EqualizerEngineFloat;
using dsp::eq::kBlockLength;

namespace {

std::vector<float> Sine(double hz, double amplitude, int block, int n = kBlockLength) {
    std::vector<float> x(n);
    for (int i = 0; i < n; ++i)
        x[i] = static_cast<float>(amplitude *
                                  std::sin(2 * std::numbers::pi * hz * (block * n + i) / 44100.0));
    return x;
}

}  // namespace

TEST(EqualizerEngine, BandCountsDefaultTapsAndBoundaries) {
    EqualizerEngine16 e;
    EXPECT_EQ(e.BandCount(), 0);
    e.SetNumberOfBands(1);
    EXPECT_EQ(e.BandCount(), 2);
    EXPECT_EQ(e.TapCount(0), 68);
    EXPECT_EQ(e.TapCount(1), 46);
    e.SetNumberOfBands(30);
    ASSERT_EQ(e.BandCount(), 24);
    for (int b = 0; b < 24; ++b)
        EXPECT_EQ(e.TapCount(b), 100) << b;
    EXPECT_EQ(e.TapCount(24), 0);
    EXPECT_EQ(e.TapCount(-1), 0);

    e.SetNumberOfBands(12);
    EXPECT_EQ(e.TapCount(1), 500);
    EXPECT_EQ(e.TapCount(6), 100);
    e.SetTapCount(1, 33);
    EXPECT_EQ(e.TapCount(1), 33);
    e.SetTapCount(1, 9999);
    EXPECT_EQ(e.TapCount(1), 500);
    e.SetTapCount(1, 7);
    e.ResetTapCounts();
    EXPECT_EQ(e.TapCount(1), 500);

    const std::vector<std::vector<double>> listed = {
        {1949.0},
        {868.2, 4375.3},
        {386.7, 868.2, 1949.0, 4375.3, 9822.2},
        {258.1, 386.7, 579.4, 868.2, 1300.8, 1949.0, 2920.1, 4375.3, 6555.5, 9822.2, 14716.6}};
    for (const auto& bounds : listed) {
        const int n = static_cast<int>(bounds.size()) + 1;
        e.SetNumberOfBands(n);
        for (int b = 0; b + 1 < n; ++b) {
            EXPECT_NEAR(e.CutoffHz(b, 1), bounds[b], 0.1) << n << " bands, boundary " << b;
            EXPECT_DOUBLE_EQ(e.CutoffHz(b + 1, 0), e.CutoffHz(b, 1));
        }
        EXPECT_DOUBLE_EQ(e.CutoffHz(0, 0), e.PlotBaseFrequency());
        EXPECT_DOUBLE_EQ(e.CutoffHz(n - 1, 1), 22050.0);
    }
    EXPECT_NEAR(e.PlotBaseFrequency(), 177.929, 0.001);
    EXPECT_NEAR(e.PlotRatio(), 1.0328757, 1e-7);
}

TEST(EqualizerEngine, WindowNamesAndWorkingTaps) {
    EqualizerEngineFloat bartlett, gaussian, unknown;
    bartlett.SetWindowType("Bartlett");
    gaussian.SetWindowType("Gaussian");
    unknown.SetWindowType("Hamming");
    unknown.SetWindowType("hanning");  // names are case-sensitive: no change
    EXPECT_EQ(unknown.WindowType(), dsp::FirWindow::Hamming);
    EXPECT_EQ(gaussian.WindowType(), dsp::FirWindow::Bartlett);
    for (auto* e : {&bartlett, &gaussian})
        e->SetNumberOfBands(6);
    for (int b = 0; b < 6; ++b) {
        const auto x = bartlett.DesignedTaps(b), y = gaussian.DesignedTaps(b);
        ASSERT_EQ(x.size(), y.size());
        for (size_t k = 0; k < x.size(); ++k)
            EXPECT_EQ(x[k], y[k]);
    }

    // 16-bit taps are (2^15 − 1)·h truncated toward zero; float taps are h.
    EqualizerEngine16 e16;
    e16.SetWindowType("Hanning");
    e16.SetNumberOfBands(3);
    gaussian.SetWindowType("Hanning");
    gaussian.SetNumberOfBands(3);
    for (int b = 0; b < 3; ++b) {
        const auto h = e16.DesignedTaps(b);
        for (size_t k = 0; k < h.size(); ++k) {
            EXPECT_EQ(e16.WorkingTaps(b)[k], static_cast<int16_t>(std::trunc(32767.0 * h[k])));
            EXPECT_EQ(gaussian.WorkingTaps(b)[k], static_cast<float>(h[k]));
        }
    }
}

TEST(EqualizerEngine, EdgeMoves) {
    EqualizerEngine16 e;
    e.SetNumberOfBands(6);
    const auto tapsBefore = std::vector<double>(e.DesignedTaps(2).begin(), e.DesignedTaps(2).end());
    const double low = e.CutoffHz(2, 0), high = e.CutoffHz(2, 1);
    const int highIndex = e.CutoffPlotIndex(2, 1);
    e.SetCutoffByPlotIndex(2, 0, highIndex + 5);  // low edge above the high edge: refused
    e.SetCutoffByPlotIndex(2, 1, e.CutoffPlotIndex(2, 0) - 3);  // and the reverse
    EXPECT_EQ(e.CutoffHz(2, 0), low);
    EXPECT_EQ(e.CutoffHz(2, 1), high);
    EXPECT_TRUE(std::equal(tapsBefore.begin(), tapsBefore.end(), e.DesignedTaps(2).begin()));

    e.SetCutoffByPlotIndex(2, 0, 40);  // accepted: stored, designed, reads back
    EXPECT_EQ(e.CutoffPlotIndex(2, 0), 40);
    EXPECT_NEAR(e.CutoffHz(2, 0), e.PlotBaseFrequency() * std::pow(e.PlotRatio(), 40), 1e-9);
    EXPECT_NE(e.DesignedTaps(2)[10], tapsBefore[10]);
    e.SetCutoffByPlotIndex(2, 1, 150);  // beyond half the sample rate: ignored
    EXPECT_EQ(e.CutoffHz(2, 1), high);

    e.SetCutoffByPlotIndex(0, 1, 30);  // band 0: both edges take the frequency
    EXPECT_EQ(e.CutoffPlotIndex(0, 0), 30);
    EXPECT_EQ(e.CutoffPlotIndex(0, 1), 30);
    e.SetCutoffByPlotIndex(5, 1, 120);  // last band: its low edge moves
    EXPECT_EQ(e.CutoffPlotIndex(5, 0), 120);
    EXPECT_EQ(e.CutoffHz(5, 1), 22050.0);
    const auto curve = e.ResponseCurve(5);
    EXPECT_LT(curve[60], curve[140] - 20.0f);  // the high-pass now starts near plot point 120
}

TEST(EqualizerEngine, SilenceBandSumAndLag) {
    EqualizerEngineFloat e;
    e.SetWindowType("Hamming");
    e.SetNumberOfBands(12);
    bool clipped = false;
    std::vector<float> block(kBlockLength, 0.0f);
    e.ProcessBlock(block.data(), true, false, clipped);
    for (float v : block)
        ASSERT_EQ(v, 0.0f);

    // A full-band signal: the band sum equals the sum of the band filters
    // applied to it, each read from index L − 1 of the full convolution.
    std::mt19937 rng(3);
    std::uniform_real_distribution<float> noise(-20000.0f, 20000.0f);
    std::vector<float> kept(dsp::eq::kKeptLength, 0.0f);
    for (int blk = 0; blk < 3; ++blk) {
        for (auto& v : block)
            v = noise(rng);
        std::copy(kept.begin() + kBlockLength, kept.end(), kept.begin());
        std::copy(block.begin(), block.end(), kept.begin() + dsp::eq::kHistory);
        e.ProcessBlock(block.data(), true, false, clipped);
        std::vector<double> want(kBlockLength, 0.0);
        for (int b = 0; b < 12; ++b) {
            const auto taps = e.DesignedTaps(b);
            const int L = static_cast<int>(taps.size());
            std::vector<double> x(kept.begin(), kept.begin() + L + kBlockLength - 1);
            std::vector<double> full(x.size() + L - 1);
            dsp::ConvolveFull(x, taps, full);
            for (int m = 0; m < kBlockLength; ++m) {
                want[m] += full[m + L - 1];
                EXPECT_NEAR(e.BandOutput(b)[m], full[m + L - 1], 0.02) << "band " << b;
            }
        }
        for (int m = 0; m < kBlockLength; ++m)
            ASSERT_NEAR(block[m], want[m], 0.05) << m;
    }
    EXPECT_FALSE(clipped);

    // A band of L taps lags the block by 500 − L besides its filter delay.
    EqualizerEngineFloat lag;
    lag.SetNumberOfBands(3);
    lag.SetLevel(1, 0.0f);
    lag.SetLevel(2, 0.0f);
    std::vector<float> impulse(kBlockLength, 0.0f);
    impulse[100] = 1000.0f;
    lag.ProcessBlock(impulse.data(), true, false, clipped);
    const int L = lag.TapCount(0);  // 49
    const auto h = lag.WorkingTaps(0);
    for (int m = 0; m < kBlockLength; ++m) {
        const int k = m - (100 + 500 - L);
        const float want = (k >= 0 && k < L) ? 1000.0f * h[k] : 0.0f;
        ASSERT_NEAR(impulse[m], want, 1e-3) << m;
    }
}

TEST(EqualizerEngine, AntiClip16BitLowersByTenthsAndRecoversByFiftieths) {
    EqualizerEngine16 e;
    e.SetNumberOfBands(3);
    for (int b = 0; b < 3; ++b)
        e.SetTapCount(b, 1);  // every band passes all: out ≈ x/2 each
    std::vector<int16_t> loud(kBlockLength, 22000), block;
    std::vector<float> gains;
    bool anyClip = false;
    for (int blk = 0; blk < 12; ++blk) {
        block = blk < 2 ? loud : std::vector<int16_t>(kBlockLength, 0);
        bool clipped = false;
        const float before = e.EffectiveGain(0);
        e.ProcessBlock(block.data(), true, true, clipped);
        for (int16_t v : block)
            ASSERT_LE(std::abs(int{v}), 32000);
        const float after = e.EffectiveGain(0);
        if (clipped) {
            anyClip = true;
            const double steps = (before - (after - 0.02)) / 0.1;  // lowered by k · 0.1
            EXPECT_NEAR(steps, std::round(steps), 1e-4);
            EXPECT_GE(std::round(steps), 1.0);
        } else if (before < 1.0f) {
            EXPECT_NEAR(after, std::min(before + 0.02f, 1.0f), 1e-5);
        }
        gains.push_back(after);
        EXPECT_EQ(e.EffectiveGain(1), 1.0f);  // the first bands fitted
        EXPECT_EQ(e.EffectiveGain(2), 1.0f);
    }
    EXPECT_TRUE(anyClip);
    EXPECT_NEAR(gains[0], 0.92f, 1e-5);  // 22000 + ~11000 clips; 0.9 fits, then +0.02
    EXPECT_NEAR(gains[1], 0.84f, 1e-5);
    EXPECT_EQ(gains.back(), e.Level(0));  // back exactly at the level

    // Without anti-clip at level 1 the same path gives twice the output.
    EqualizerEngine16 plain;
    plain.SetNumberOfBands(2);
    plain.SetTapCount(0, 1);
    plain.SetLevel(1, 0.0f);
    bool clipped = false;
    std::vector<int16_t> x;
    for (int blk = 0; blk < 2; ++blk) {
        x.assign(kBlockLength, 10000);
        plain.ProcessBlock(x.data(), true, false, clipped);
    }
    EXPECT_NEAR(x[600], 10000, 2);
}

TEST(EqualizerEngine, AntiClipFloat) {
    EqualizerEngineFloat e;
    e.SetNumberOfBands(3);
    for (int b = 0; b < 3; ++b)
        e.SetTapCount(b, 1);
    e.SetLevel(0, 0.9f);
    std::vector<float> block(kBlockLength, 12000.0f);
    bool clipped = false;
    e.ProcessBlock(block.data(), true, true, clipped);
    EXPECT_TRUE(clipped);
    // 24000 + 12000·g stays below 32767 first at g = 0.7: two steps from 0.9.
    EXPECT_NEAR(e.EffectiveGain(0), 0.72f, 1e-5);
    for (float v : block)
        ASSERT_LT(v, 32767.0f);
    block.assign(kBlockLength, 12000.0f);
    clipped = false;
    e.ProcessBlock(block.data(), true, true, clipped);
    EXPECT_FALSE(clipped);  // 24000 + 12000·0.72 fits
    EXPECT_NEAR(e.EffectiveGain(0), 0.74f, 1e-5);
    for (int blk = 0; blk < 20; ++blk) {
        // The first quiet block still holds 499 loud samples: 24000 + 12000·0.74 clips.
        block.assign(kBlockLength, 0.0f);
        clipped = false;
        e.ProcessBlock(block.data(), true, true, clipped);
        EXPECT_EQ(clipped, blk == 0) << blk;
    }
    EXPECT_EQ(e.EffectiveGain(0), 0.9f);
    e.SetLevel(0, 0.5f);
    EXPECT_EQ(e.EffectiveGain(0), 0.5f);
}

TEST(EqualizerEngine, ResponseCurvesAndBandLevels) {
    EqualizerEngineFloat e;
    e.SetWindowType("Blackman");
    e.SetNumberOfBands(6);
    const double f0 = e.PlotBaseFrequency(), r = e.PlotRatio();
    for (int b = 0; b < 6; ++b) {
        const auto curve = e.ResponseCurve(b);
        for (int i : {0, 77, 149}) {
            const double f = f0 * std::pow(r, i + 1) / 44100.0;
            const double want = 20 * std::log10(dsp::FirMagnitude(e.DesignedTaps(b), f)) + 96.33;
            if (want > 0) {
                EXPECT_NEAR(curve[i], want, 1e-3);
            }  // the deep stop band is noise
        }
    }
    EXPECT_GT(e.ResponseCurve(0)[0], 95.0f);           // low-pass: near unity at f0
    EXPECT_NEAR(e.ResponseCurve(5)[149], 96.33, 0.5);  // high-pass: unity near fs/2
    EXPECT_EQ(e.ResponseCurve(6)[10], 0.0f);

    e.SetLevel(2, 0.5f);
    e.SetLevel(4, 0.0f);
    const auto total = e.TotalResponse();
    for (int i : {3, 60, 120}) {
        double s = 0;
        for (int b = 0; b < 6; ++b)
            s += std::pow(10.0, (e.Level(b) * e.ResponseCurve(b)[i] - 96.33) * 0.05);
        EXPECT_NEAR(total[i], 20 * std::log10(s) + 96.33, 1e-3);
    }

    // A 1 kHz tone lands in band 2 (868 … 1949 Hz).
    EqualizerEngine16 e16;
    e16.SetNumberOfBands(6);
    bool clipped = false;
    for (int blk = 0; blk < 3; ++blk) {
        std::vector<float> tone = Sine(1000.0, 10000.0, blk);
        std::vector<int16_t> block(kBlockLength);
        dsp::ToInt16(tone, block);
        e16.ProcessBlock(block.data(), false, false, clipped);
        e.ProcessBlock(tone.data(), false, false, clipped);
    }
    // σ of a sine of amplitude 10000 ≈ 7071 → 20000·log10 ≈ 76990 milli-dB.
    EXPECT_NEAR(e16.BandRmsMilliDb(2), 76990, 300);
    EXPECT_FLOAT_EQ(e.BandRmsMilliDb(2),
                    static_cast<float>(20000 * std::log10(dsp::StdDev(e.BandOutput(2)))));
    EXPECT_LT(e16.BandRmsMilliDb(5), 50000);  // the high-pass band hardly hears 1 kHz
    EXPECT_EQ(e16.BandRmsMilliDbInt(2), static_cast<int>(e16.BandRmsMilliDb(2)));
    const double sigma = std::round(dsp::StdDev(e16.BandOutput(2)));
    EXPECT_FLOAT_EQ(e16.BandRmsMilliDb(2), static_cast<float>(20000 * std::log10(sigma)));
    EXPECT_EQ(e16.BandRmsMilliDb(6), 0.0f);
    EXPECT_EQ(e.BandRmsMilliDb(4), 0.0f);  // level 0: σ is 0
    EXPECT_TRUE(e16.BandOutput(7).empty());
}
