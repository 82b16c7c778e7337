// How a short-time analysis frames one channel of a deck's audio: frames of
// 2^10 = 1024 samples, a new frame every 256 samples (three quarters of each
// frame overlap the next), each frame shaped by the periodic Hann window.
// Pure arithmetic, no state; the phase vocoder window draws its pictures
// from it.
#pragma once

#include <span>
#include <vector>

#include "core/PcmFormat.h"

namespace dsp::framing {

// The frame length is kept as its order: N = 2^order.
constexpr int kFrameOrder = 10;
constexpr int FrameLength(int order) {
    return 1 << order;
}
constexpr int kFrameLength = FrameLength(kFrameOrder);  // 1024 samples
constexpr int kHop = 256;                               // samples between frame starts
constexpr int kBins = kFrameLength / 2 + 1;             // 513 spectrum bins, 0 … N/2
constexpr int kBlockLength = kBlockFrames;              // 1176: one channel of a block
constexpr int kPictureLength = 2048;                    // points of the overlap picture
constexpr int kOverlapPlots = 15;                       // windows placed on the picture

// Multiplies x[j] by the periodic Hann window of length N = x.size():
// w[j] = sin²(π·j / N), so w[0] = 0 and w[N/2] = 1. Windows of this kind
// placed every N/4 samples add up to exactly 2 wherever four overlap.
void ApplyPeriodicHann(std::span<double> x);

// The periodic Hann window of length n (n ones, windowed); empty for n < 1.
std::vector<double> PeriodicHann(int n);

// Where window k (1 … kOverlapPlots) of the overlap picture starts, in
// picture points: (k − 1)·hop − N. Window 1 starts a whole frame before the
// picture, so it and those from 2048 on fall outside it.
constexpr int OverlapStart(int k) {
    return (k - 1) * kHop - kFrameLength;
}

// Clears `picture` to 0 and copies `window` into it from point `start` on;
// the window's points that fall before 0 or past the end are dropped.
void PlaceWindow(std::span<const double> window, int start, std::span<double> picture);

}  // namespace dsp::framing
