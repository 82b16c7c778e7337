#include "dsp/eq/StereoEqualizer.h"

namespace dsp {

void StereoEqualizer::SetNumberOfBands(int n) {
    ForEach([n](auto& e) { e.SetNumberOfBands(n); });
}

void StereoEqualizer::SetWindowType(std::string_view name) {
    ForEach([name](auto& e) { e.SetWindowType(name); });
}

void StereoEqualizer::SetTapCount(int b, int n) {
    ForEach([b, n](auto& e) { e.SetTapCount(b, n); });
}

void StereoEqualizer::ResetTapCounts() {
    ForEach([](auto& e) { e.ResetTapCounts(); });
}

void StereoEqualizer::SetCutoffByPlotIndex(int b, int edge, int index) {
    ForEach([=](auto& e) { e.SetCutoffByPlotIndex(b, edge, index); });
}

void StereoEqualizer::SetLevel(int b, float level) {
    ForEach([b, level](auto& e) { e.SetLevel(b, level); });
}

bool StereoEqualizer::ProcessStereo(std::int16_t* left, std::int16_t* right, bool writeBack,
                                    bool antiClip) {
    bool clipped = false;
    left16_.ProcessBlock(left, writeBack, antiClip, clipped);
    right16_.ProcessBlock(right, writeBack, antiClip, clipped);
    return clipped;
}

bool StereoEqualizer::ProcessStereo(float* left, float* right, bool writeBack, bool antiClip) {
    bool clipped = false;
    leftFloat_.ProcessBlock(left, writeBack, antiClip, clipped);
    rightFloat_.ProcessBlock(right, writeBack, antiClip, clipped);
    return clipped;
}

float StereoEqualizer::EffectiveGain(bool ints, int b) const {
    return ints ? left16_.EffectiveGain(b) : leftFloat_.EffectiveGain(b);
}

EqualizerEngineFloat::Curve StereoEqualizer::ResponseCurve(bool ints, int b) const {
    return ints ? left16_.ResponseCurve(b) : leftFloat_.ResponseCurve(b);
}

EqualizerEngineFloat::Curve StereoEqualizer::TotalResponse(bool ints) const {
    return ints ? left16_.TotalResponse() : leftFloat_.TotalResponse();
}

}  // namespace dsp
