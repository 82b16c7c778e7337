// The level laws behind every meter and graph of a deck's sound.
//
// Levels are decibels relative to one 16-bit step: full scale (32768) is
// 20·log10(32768) ≈ 90.31 dB, the whole 16-bit range 96.33 dB. Band levels
// are kept in thousandths of a decibel.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace dsp {

inline constexpr double kFullRangeDb = 96.33;    // 20·log10(65536)
inline constexpr double kBeatRangeTop = 280000;  // top of the beat range, 1/1000 dB

// Peak and RMS of one channel of a block, in dB.
struct ChannelLevels {
    float rmsDb = 0.0f;
    float peakDb = 0.0f;
};

// RMS: σ = the channel's standard deviation rounded to an integer (a 16-bit
// result); 20·log10(σ) dB, 0.0 when σ is 0. Peak: p = max(max, −min) counted
// in 32 bits (−32768 gives 32768); 20·log10(p) dB, 0.0 for a silent channel.
ChannelLevels MeasureChannel(std::span<const std::int16_t> samples);

// 20000·log10(σ) for a band's standard deviation σ (thousandths of a dB);
// 0 when σ is below one 16-bit step.
double BandMilliDb(double sigma);

// The smoothed band level from a channel's history h (newest first): the
// weighted mean Σ w_k·h_k / Σ w_k with w = (1.0, 0.9, 0.8, 0.4, 0.2). Dividing
// by Σ w = 3.3 keeps a steady level where it is, so the sum of the two
// channels stays within twice 20000·log10(32768) and under the beat range's
// top of 280000 (the plain weighted sum would pin every loud band there).
inline constexpr int kBandHistory = 5;
inline constexpr std::array<double, kBandHistory> kHistoryWeights{1.0, 0.9, 0.8, 0.4, 0.2};
double SmoothedLevel(const std::array<double, kBandHistory>& newestFirst);

// The beat value of level L within the range low … high: 1.0 above high,
// 0.0 below low, (L − low) / (high − low) between. A range closed to one
// value reads 1.0 at that value (the level is at its recent peak).
float BeatValue(double level, double low, double high);

// Scope band groups for n bands in plot: G = min(n, 3) groups of k = n / G
// bands each; group g covers bands g·k … g·k + k − 1.
struct ScopeGroups {
    int groups = 0;
    int bandsPerGroup = 0;
};
ScopeGroups GroupsFor(int bands);

}  // namespace dsp
