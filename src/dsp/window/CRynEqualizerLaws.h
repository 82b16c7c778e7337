// Drawing laws of the equalizer window, free of any widget: the colour of
// each band, and the staircase the window draws as the total response while
// the sound device's own equalizer does the work.
#pragma once

#include <QColor>
#include <array>
#include <span>

namespace eq_window {

inline constexpr int kPlotPoints = 150;  // response points, seven octaves
// Twice the 16-bit range in dB (2 × 96.33): a device band at level 0.5 draws
// on the 0 dB line of the plot.
inline constexpr double kDeviceStairScale = 192.66;

// Band b of n: t = 2b/n − 1; red 255·t², green 255 − 255·t², blue 255·b/n,
// each truncated. Low bands are green, the middle ones turn to the red end,
// and blue rises with the band.
QColor BandColour(int b, int n);

// The device equalizer's total as a staircase: point i shows level_k · 192.66
// with k = i / (150 / n) (integer division), at most n − 1. levels holds at
// least n values; n is 1 … 150.
std::array<double, kPlotPoints> DeviceStaircase(std::span<const float> levels, int n);

}  // namespace eq_window
