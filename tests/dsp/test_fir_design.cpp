// Windowed-sinc designs against straightforward textbook formulas written
// here, their normalisation and frequency behaviour; the vector helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "dsp/FirDesign.h"
#include "dsp/VectorOps.h"

using dsp::FirWindow;

namespace {

constexpr double kPi = std::numbers::pi;

double TextbookWindow(FirWindow w, int n, int N) {
    if (N == 1)
        return 1.0;
    const double M = N - 1;
    switch (w) {
        case FirWindow::Rectangular:
            return 1.0;
        case FirWindow::Bartlett:
            return n <= M / 2 ? 2.0 * n / M : 2.0 - 2.0 * n / M;
        case FirWindow::Hann:
            return std::pow(std::sin(kPi * n / M), 2);
        case FirWindow::Hamming:
            return 0.54 - 0.46 * std::cos(2 * kPi * n / M);
        case FirWindow::Blackman: {
            const double a = N < 4 ? -0.16 : -0.5 / (1 + std::cos(2 * kPi / M));
            return (a + 1) / 2 - 0.5 * std::cos(2 * kPi * n / M) -
                   a / 2 * std::cos(4 * kPi * n / M);
        }
    }
    return 0.0;
}

double Sinc(double x) {
    return x == 0.0 ? 1.0 : std::sin(kPi * x) / (kPi * x);
}

std::vector<double> TextbookLowpass(double fc, int N, FirWindow w) {
    std::vector<double> h(N);
    double sum = 0;
    for (int n = 0; n < N; ++n) {
        h[n] = 2 * fc * Sinc(2 * fc * (n - (N - 1) / 2.0)) * TextbookWindow(w, n, N);
        sum += h[n];
    }
    for (double& v : h)
        v /= sum;
    return h;
}

// Odd lengths: spectral inversion δ − low-pass. Even lengths (where that has
// a zero at half the sample rate): the low-pass at 0.5 − fc shifted by (−1)^n.
std::vector<double> TextbookHighpass(double fc, int N, FirWindow w) {
    std::vector<double> h(N);
    const double c = (N - 1) / 2.0;
    for (int n = 0; n < N; ++n) {
        const double t = n - c;
        const double ideal = N % 2 == 1
                                 ? (t == 0 ? 1.0 : 0.0) - 2 * fc * Sinc(2 * fc * t)
                                 : (n % 2 ? -1.0 : 1.0) * (1 - 2 * fc) * Sinc((1 - 2 * fc) * t);
        h[n] = ideal * TextbookWindow(w, n, N);
    }
    double nyq = 0;
    for (int n = 0; n < N; ++n)
        nyq += n % 2 ? -h[n] : h[n];
    for (double& v : h)
        v /= nyq;
    return h;
}

std::vector<double> TextbookBandpass(double fl, double fh, int N, FirWindow w) {
    std::vector<double> h(N);
    for (int n = 0; n < N; ++n) {
        const double t = n - (N - 1) / 2.0;
        h[n] = (2 * fh * Sinc(2 * fh * t) - 2 * fl * Sinc(2 * fl * t)) * TextbookWindow(w, n, N);
    }
    const double g = dsp::FirMagnitude(h, (fl + fh) / 2);
    for (double& v : h)
        v /= g;
    return h;
}

void ExpectNear(const std::vector<double>& want, const std::vector<double>& got) {
    ASSERT_EQ(want.size(), got.size());
    for (size_t i = 0; i < want.size(); ++i)
        EXPECT_NEAR(want[i], got[i], 1e-12) << "tap " << i;
}

}  // namespace

TEST(FirDesign, MatchesTextbookDesignsForEveryWindow) {
    const FirWindow windows[] = {FirWindow::Rectangular, FirWindow::Bartlett, FirWindow::Hann,
                                 FirWindow::Hamming, FirWindow::Blackman};
    for (FirWindow w : windows) {
        for (int N : {5, 6, 25, 46, 68, 127, 500}) {
            SCOPED_TRACE(testing::Message() << "window " << int(w) << " taps " << N);
            std::vector<double> h(N);
            dsp::FirLowpass(0.0442, h, w, true);
            ExpectNear(TextbookLowpass(0.0442, N, w), h);
            dsp::FirHighpass(0.0442, h, w, true);
            ExpectNear(TextbookHighpass(0.0442, N, w), h);
            dsp::FirBandpass(0.0197, 0.0442, h, w, true);
            ExpectNear(TextbookBandpass(0.0197, 0.0442, N, w), h);
        }
    }
}

TEST(FirDesign, NormalisedGainsAndStopbands) {
    std::vector<double> h(201);
    dsp::FirLowpass(0.1, h, FirWindow::Hamming, true);
    EXPECT_NEAR(dsp::FirMagnitude(h, 0.0), 1.0, 1e-12);
    EXPECT_NEAR(dsp::FirMagnitude(h, 0.1), 0.5, 0.01);  // −6 dB at the cut-off
    EXPECT_LT(dsp::FirMagnitude(h, 0.15), 0.01);        // Hamming: better than −40 dB
    dsp::FirHighpass(0.1, h, FirWindow::Blackman, true);
    EXPECT_NEAR(dsp::FirMagnitude(h, 0.5), 1.0, 1e-12);
    EXPECT_LT(dsp::FirMagnitude(h, 0.03), 1e-3);  // Blackman: better than −60 dB
    std::vector<double> even(46);
    dsp::FirHighpass(0.0442, even, FirWindow::Rectangular, true);
    EXPECT_NEAR(dsp::FirMagnitude(even, 0.5), 1.0, 1e-12);
    EXPECT_LT(dsp::FirMagnitude(even, 0.0), 1e-12);  // odd symmetry: nothing at DC
    dsp::FirBandpass(0.1, 0.2, h, FirWindow::Hann, true);
    EXPECT_NEAR(dsp::FirMagnitude(h, 0.15), 1.0, 1e-12);
    EXPECT_LT(dsp::FirMagnitude(h, 0.0), 1e-3);
    EXPECT_LT(dsp::FirMagnitude(h, 0.4), 1e-3);
    // Degenerate designs do not divide by zero.
    std::vector<double> two(2);
    dsp::FirLowpass(0.1, two, FirWindow::Hann, true);
    EXPECT_EQ(two[0], 0.0);
    std::vector<double> one(1);
    dsp::FirBandpass(0.1, 0.2, one, FirWindow::Blackman, true);
    EXPECT_NEAR(one[0], 1.0, 1e-12);
}

TEST(VectorOps, ConvolutionSplitJoinAndConversion) {
    std::mt19937 rng(7);
    std::uniform_int_distribution<int> d16(-32768, 32767);
    std::vector<int16_t> a(37), b(11);
    for (auto& v : a)
        v = static_cast<int16_t>(d16(rng));
    for (auto& v : b)
        v = static_cast<int16_t>(d16(rng));
    std::vector<int16_t> c16(a.size() + b.size() - 1);
    dsp::ConvolveFull16(a, b, c16);
    std::vector<double> ad(a.begin(), a.end()), bd(b.begin(), b.end()), cd(c16.size());
    dsp::ConvolveFull(ad, bd, cd);
    for (size_t i = 0; i < cd.size(); ++i) {
        // Rounded 2^−16 scaling of the exact sum, wrapped to 16 bits.
        const int64_t exact = static_cast<int64_t>(cd[i]);
        const int64_t scaled = (exact + 32768) >> 16;
        EXPECT_EQ(c16[i], static_cast<int16_t>(static_cast<uint16_t>(scaled & 0xFFFF))) << i;
    }
    EXPECT_DOUBLE_EQ(cd[0], ad[0] * bd[0]);

    std::vector<int16_t> block(2352), left(1176), right(1176), back(2352);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<int16_t>(d16(rng));
    dsp::SplitChannels(block, left, right);
    EXPECT_EQ(left[5], block[10]);
    EXPECT_EQ(right[5], block[11]);
    dsp::JoinChannels(left, right, back);
    EXPECT_EQ(back, block);

    const float f[] = {-40000.f, -32768.4f, -1.5f, 0.49f, 2.5f, 32766.6f, 1e9f};
    int16_t s[7];
    dsp::ToInt16(f, s);
    const int16_t want[] = {-32768, -32768, -2, 0, 2, 32767, 32767};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(s[i], want[i]) << i;
    const int16_t ints[] = {-32768, 0, 32767};
    float fl[3];
    dsp::ToFloat(ints, fl);
    EXPECT_EQ(fl[0], -32768.0f);
    EXPECT_EQ(fl[2], 32767.0f);
    const float sq[] = {1, -1, 1, -1};
    EXPECT_DOUBLE_EQ(dsp::StdDev(sq), 1.0);
}
