// Vector helpers (see VectorOps.h).
#include "dsp/VectorOps.h"

#include <algorithm>
#include <cmath>

#include "dsp/FixedPoint.h"

namespace dsp {
namespace {

// Full linear convolution, one output at a time: out[i] = finish(Σ_k
// product(a[k], b[i − k])), the sum taken in Acc from Acc{}.
template <typename T, typename Acc, typename Product, typename Finish>
void ConvolveWith(std::span<const T> a, std::span<const T> b, std::span<T> out, Product product,
                  Finish finish) {
    if (a.empty() || b.empty())
        return;
    const size_t n = a.size() + b.size() - 1;
    for (size_t i = 0; i < n && i < out.size(); ++i) {
        const size_t kLo = i >= b.size() - 1 ? i - (b.size() - 1) : 0;
        const size_t kHi = std::min(i, a.size() - 1);
        Acc acc{};
        for (size_t k = kLo; k <= kHi; ++k)
            acc += product(a[k], b[i - k]);
        out[i] = finish(acc);
    }
}

// Floating point: the products summed in Acc, the sum cast back to T.
template <typename T, typename Acc>
void ConvolveInto(std::span<const T> a, std::span<const T> b, std::span<T> out) {
    ConvolveWith<T, Acc>(
        a, b, out, [](T x, T y) { return Acc(x) * Acc(y); },
        [](Acc acc) { return static_cast<T>(acc); });
}

template <typename T>
double StdDevOf(std::span<const T> x) {
    if (x.empty())
        return 0.0;
    double mean = 0.0;
    for (T v : x)
        mean += v;
    mean /= static_cast<double>(x.size());
    double var = 0.0;
    for (T v : x)
        var += (v - mean) * (v - mean);
    return std::sqrt(var / static_cast<double>(x.size()));
}

}  // namespace

void ConvolveFull(std::span<const double> a, std::span<const double> b, std::span<double> out) {
    ConvolveInto<double, double>(a, b, out);
}

void ConvolveFull(std::span<const float> a, std::span<const float> b, std::span<float> out) {
    ConvolveInto<float, double>(a, b, out);
}

void ConvolveFull16(std::span<const int16_t> a, std::span<const int16_t> b,
                    std::span<int16_t> out) {
    // The sums are taken modulo 2^32, see FixedPoint.h.
    ConvolveWith<int16_t, uint32_t>(
        a, b, out,
        [](int16_t x, int16_t y) { return static_cast<uint32_t>(int32_t{x} * int32_t{y}); },
        [](uint32_t acc) { return ScaleDown16(static_cast<int32_t>(acc), 16); });
}

void SplitChannels(std::span<const int16_t> block, std::span<int16_t> left,
                   std::span<int16_t> right) {
    const size_t n = std::min({block.size() / 2, left.size(), right.size()});
    for (size_t i = 0; i < n; ++i) {
        left[i] = block[2 * i];
        right[i] = block[2 * i + 1];
    }
}

void JoinChannels(std::span<const int16_t> left, std::span<const int16_t> right,
                  std::span<int16_t> block) {
    const size_t n = std::min({block.size() / 2, left.size(), right.size()});
    for (size_t i = 0; i < n; ++i) {
        block[2 * i] = left[i];
        block[2 * i + 1] = right[i];
    }
}

void ToFloat(std::span<const int16_t> in, std::span<float> out) {
    const size_t n = std::min(in.size(), out.size());
    for (size_t i = 0; i < n; ++i)
        out[i] = in[i];
}

void ToInt16(std::span<const float> in, std::span<int16_t> out) {
    const size_t n = std::min(in.size(), out.size());
    for (size_t i = 0; i < n; ++i) {
        const float v = std::nearbyint(in[i]);  // NaN falls through to 0 below
        out[i] = v >= 32767.0f    ? int16_t{32767}
                 : v <= -32768.0f ? int16_t{-32768}
                 : v == v         ? static_cast<int16_t>(v)
                                  : int16_t{0};
    }
}

double StdDev(std::span<const float> x) {
    return StdDevOf(x);
}
double StdDev(std::span<const int16_t> x) {
    return StdDevOf(x);
}

}  // namespace dsp
