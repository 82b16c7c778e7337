// A second-order filter section (transposed direct form II) and the designs
// the effects use (Robert Bristow-Johnson's audio equalizer cookbook).
#pragma once

namespace sound::fx {

struct BiquadCoefficients {
    float b0 = 1.0f, b1 = 0.0f, b2 = 0.0f, a1 = 0.0f, a2 = 0.0f;  // a0 normalised to 1

    // Peaking band: `centre` Hz, `bandwidthOctaves` between the half-gain
    // points, `gainDb` at the centre.
    static BiquadCoefficients Peaking(double centre, double bandwidthOctaves, double gainDb,
                                      double sampleRate);
    // Band-pass with 0 dB at `centre`, `bandwidthHz` wide.
    static BiquadCoefficients BandPass(double centre, double bandwidthHz, double sampleRate);
};

class Biquad {
  public:
    void Set(const BiquadCoefficients& c) { c_ = c; }
    void Reset() { z1_ = z2_ = 0.0f; }
    float Process(float x) {
        const float y = c_.b0 * x + z1_;
        z1_ = c_.b1 * x - c_.a1 * y + z2_;
        z2_ = c_.b2 * x - c_.a2 * y;
        return y;
    }

  private:
    BiquadCoefficients c_;
    float z1_ = 0.0f, z2_ = 0.0f;
};

}  // namespace sound::fx
