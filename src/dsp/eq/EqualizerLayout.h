// Fixed numbers and tables of the FIR equalizer: block and filter sizes, the
// band layout, the default tap counts, the filter-type names and the
// frequency-response plot.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "core/PcmFormat.h"
#include "dsp/FirDesign.h"

namespace dsp::eq {

inline constexpr int kBlockLength =
    kBlockFrames;                     // samples per channel per block (4704-byte stereo block)
inline constexpr int kMaxTaps = 500;  // longest band filter
inline constexpr int kHistory = kMaxTaps - 1;                // samples kept from the last block
inline constexpr int kKeptLength = kHistory + kBlockLength;  // 1675
inline constexpr int kMaxBands = 24;
inline constexpr int kMinBands = 2;
inline constexpr int kInitialTaps = 100;
inline constexpr int kPlotPoints = 150;     // response-plot points, seven octaves
inline constexpr double kDbOffset = 96.33;  // 20·log10(65536): the 16-bit range in dB
inline constexpr double kSampleRate = 44100.0;

// Plot ratio r = 2^(7/150) and base f0 = fs·r / 2^8; plot point i lies at f0·r^(i+1).
double PlotRatio();
double PlotBaseFrequency(double sampleRate);
double PlotFrequency(double sampleRate, int index);  // f0 · r^index

// Tap counts of bands 0 … n−1 for n bands (100 each unless n is 2, 3, 6 or 12).
std::array<int, kMaxBands> DefaultTapCounts(int bandCount);

// Boundary b (between band b and b+1, b = 0 … n−2): (fs/2)·2^(−7(n−1−b)/n), Hz.
double BandBoundary(double sampleRate, int bandCount, int b);

// "Rectangular", "Bartlett", "Gaussian" (designed as Bartlett), "Blackman",
// "Hamming", "Hanning" (Hann); exact, case-sensitive; nullopt otherwise.
std::optional<FirWindow> WindowByName(std::string_view name);

// 20·log10|H(f_i)| + 96.33 at the 150 plot points, from the designed taps.
// A zero magnitude reads as −400 dB (+ offset) rather than −infinity.
std::array<float, kPlotPoints> ResponseCurve(std::span<const double> taps, double sampleRate);

}  // namespace dsp::eq
