// The equalizer window's drawing: each band's response curve at its level,
// the total response (or the device equalizer's staircase), the effective
// gain pointers and the anti-clip colour.
#include <algorithm>
#include <array>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "dsp/window/CRynEqualizer.h"
#include "dsp/window/CRynEqualizerLaws.h"

namespace {

// Curve values are dB + 96.33; a stop band far below the 16-bit range is
// drawn on the bottom of the plot.
std::array<double, eq_window::kPlotPoints> ForPlot(const dsp::EqualizerEngineFloat::Curve& curve,
                                                   float scale) {
    std::array<double, eq_window::kPlotPoints> points{};
    for (int i = 0; i < eq_window::kPlotPoints; ++i)
        points[i] = std::max(0.0, static_cast<double>(scale) * curve[i]);
    return points;
}

}  // namespace

void CRynEqualizer::DrawBand(int b) {
    if (b < 0 || b >= kLevelSlides)
        return;
    const bool shown = type_ == EqType::Own && b < bandCount_;
    graph_->SetPlotVisible(b, shown);
    if (!shown)
        return;
    // The level multiplies the curve, offset included: level 0 lies on the
    // bottom of the plot.
    const auto points = ForPlot(engines_.ResponseCurve(ints_, b), engines_.Level(b));
    graph_->PlotY(b, points);
}

void CRynEqualizer::DrawAllBands() {
    for (int b = 0; b < kLevelSlides; ++b)
        DrawBand(b);
}

void CRynEqualizer::DrawTotal() {
    if (type_ == EqType::Own) {
        graph_->PlotY(kTotalPlot, ForPlot(engines_.TotalResponse(ints_), 1.0f));
        return;
    }
    std::array<float, kLevelSlides> levels{};
    for (int b = 0; b < kLevelSlides; ++b)
        levels[b] = static_cast<float>(levels_[b]->Value());
    graph_->PlotY(kTotalPlot, eq_window::DeviceStaircase(levels, bandCount_));
}

void CRynEqualizer::ShowEffectiveGains() {
    if (type_ != EqType::Own)
        return;
    // Without anti-clip every band plays at its level.
    const bool antiClip = antiClip_->Value();
    for (int b = 0; b < bandCount_; ++b) {
        levels_[b]->SetPointerValue(
            1, antiClip ? engines_.EffectiveGain(ints_, b) : levels_[b]->Value());
    }
}

void CRynEqualizer::ShowClipColour(bool clipped) {
    const QColor& colour = clipped ? kClipColour : kNoClipColour;
    if (antiClip_->OnColor() != colour)
        antiClip_->SetOnColor(colour);
}
