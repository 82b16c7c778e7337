// Windowed-sinc FIR design: low-pass, high-pass and band-pass filters with a
// choice of window, in double precision.
//
// Frequencies are fractions of the sample rate (0 … 0.5). Tap n of an N-tap
// design is centred on (N − 1) / 2, so every design is linear phase. With
// normalisation on, a low-pass has gain 1 at DC, a high-pass gain 1 at half
// the sample rate and a band-pass magnitude 1 at the centre of its band
// ((low + high) / 2). A design whose reference gain is zero (a two-tap Hann,
// for example, is all zeros) is left unnormalised.
#pragma once

#include <span>

namespace dsp {

enum class FirWindow {
    Rectangular = 0,
    Bartlett = 1,  // triangle reaching zero at both ends
    Hann = 2,
    Hamming = 3,
    Blackman = 4,  // Blackman family with the "optimal" alpha (see FirWindowValue)
};

// Value of window w at tap n of an N-tap design (0 ≤ n < N). N = 1 gives 1.
// Blackman: w = (α + 1)/2 − 0.5·cos(2πn/(N−1)) − (α/2)·cos(4πn/(N−1)) with
// α = −0.5 / (1 + cos(2π/(N−1))); designs of fewer than 4 taps (where that α is
// undefined) use the standard α = −0.16.
double FirWindowValue(FirWindow w, int n, int N);

// Each writes taps.size() coefficients (1 … any). Frequencies are clamped to
// 0 … 0.5; for the band-pass low must be below high (else the taps are zero).
void FirLowpass(double cutoff, std::span<double> taps, FirWindow w, bool normalise);
void FirHighpass(double cutoff, std::span<double> taps, FirWindow w, bool normalise);
void FirBandpass(double low, double high, std::span<double> taps, FirWindow w, bool normalise);

// Complex gain |H(f)| of taps at frequency f (fraction of the sample rate).
double FirMagnitude(std::span<const double> taps, double f);

}  // namespace dsp
