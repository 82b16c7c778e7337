// StereoEqualizer: the four audible equalizer engines of one deck, 16-bit
// and float, left and right, kept identical.
//
// Every setting goes to all four engines at once, so the deck can switch
// between 16-bit and float arithmetic at any block and hear the same
// equalizer. Only the pair of the running sample type filters a block; the
// other pair keeps the history of the last block it saw.
//
// Not thread-safe: it belongs to the user-interface thread, where both the
// equalizer window and the deck's block routine run.
#pragma once

#include <cstdint>
#include <string_view>

#include "dsp/eq/EqualizerEngine.h"

namespace dsp {

class StereoEqualizer {
  public:
    StereoEqualizer() = default;
    StereoEqualizer(const StereoEqualizer&) = delete;
    StereoEqualizer& operator=(const StereoEqualizer&) = delete;

    // The engines' setters (EqualizerEngine.h), on all four engines.
    void SetNumberOfBands(int n);
    void SetWindowType(std::string_view name);
    void SetTapCount(int b, int n);
    void ResetTapCounts();
    void SetCutoffByPlotIndex(int b, int edge, int index);
    void SetLevel(int b, float level);

    // Equalizes one block of 1176 samples per channel: the left engine, then
    // the right, sharing one clipped flag. Returns true when anti-clip had to
    // lower a band on either channel.
    bool ProcessStereo(std::int16_t* left, std::int16_t* right, bool writeBack, bool antiClip);
    bool ProcessStereo(float* left, float* right, bool writeBack, bool antiClip);

    // The engines; ints picks the 16-bit pair. All four share every setting,
    // so any of them answers the setting readers.
    EqualizerEngine16& Left16() { return left16_; }
    EqualizerEngine16& Right16() { return right16_; }
    EqualizerEngineFloat& LeftFloat() { return leftFloat_; }
    EqualizerEngineFloat& RightFloat() { return rightFloat_; }
    const EqualizerEngine16& Left16() const { return left16_; }
    const EqualizerEngineFloat& LeftFloat() const { return leftFloat_; }

    // Readers of the left engine of the chosen sample type.
    int BandCount() const { return leftFloat_.BandCount(); }
    int TapCount(int b) const { return leftFloat_.TapCount(b); }
    float Level(int b) const { return leftFloat_.Level(b); }
    int CutoffPlotIndex(int b, int edge) const { return leftFloat_.CutoffPlotIndex(b, edge); }
    float EffectiveGain(bool ints, int b) const;
    EqualizerEngineFloat::Curve ResponseCurve(bool ints, int b) const;
    EqualizerEngineFloat::Curve TotalResponse(bool ints) const;

  private:
    template <typename F>
    void ForEach(F&& f) {
        f(left16_);
        f(right16_);
        f(leftFloat_);
        f(rightFloat_);
    }

    EqualizerEngine16 left16_, right16_;
    EqualizerEngineFloat leftFloat_, rightFloat_;
};

}  // namespace dsp
