// The equalizer window's band work: the band count, the levels, the filter
// lengths, the selected band and its cut-off lines, the design window, the
// reset of the filter lengths and the isolation of one band.
#include <QSignalBlocker>
#include <algorithm>
#include <bit>
#include <cmath>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "controls/CNiSlide.h"
#include "dsp/window/CRynEqualizer.h"
#include "dsp/window/CRynEqualizerLaws.h"
#include "settings/CRynSettings.h"

void CRynEqualizer::SetBandCount(int n, bool resetLevels) {
    bandCount_ = std::clamp(n, dsp::eq::kMinBands, kLevelSlides);
    n = bandCount_;
    if (type_ == EqType::Device)
        SendToMainMixer(UWM_DEVICE_EQ_BANDS, static_cast<WParam>(deck_), n, false);
    else
        engines_.SetNumberOfBands(n);
    LayOut();

    for (int b = 0; b < kLevelSlides; ++b) {
        if (b < n) {
            if (resetLevels)
                SetLevelSlideQuietly(b, RestLevel());
            ApplyLevel(b, levels_[b]->Value(), false);
            const QColor colour = eq_window::BandColour(b, n);
            levels_[b]->SetPointerColor(0, colour);
            graph_->SetPlotColor(b, colour);
        } else {
            // Bands beyond the count rest at 0, quietly: there is no such band.
            SetLevelSlideQuietly(b, 0.0);
            engines_.SetLevel(b, 0.0f);
        }
    }
    DrawAllBands();
    DrawTotal();

    // The selected band stays within the bands.
    const int selected = std::min(SelectedBand(), n - 1);
    {
        const QSignalBlocker quiet(selected_);
        selected_->SetAxis(0, n - 1);
        selected_->SetTickCount(n - 1);
        selected_->SetValue(selected);
    }
    ShowSelectedBand();
}

// ------------------------------------------------------------ levels

void CRynEqualizer::SetLevelSlideQuietly(int b, double value) {
    const QSignalBlocker quiet(levels_[b]);
    levels_[b]->SetValue(value);
}

void CRynEqualizer::OnLevelChanged(int b, double value) {
    ApplyLevel(b, value, true);
}

void CRynEqualizer::ApplyLevel(int b, double value, bool draw) {
    const float level = static_cast<float>(value);
    if (type_ == EqType::Device) {
        // The device band's gain: deck in the high 16 bits, band in the low,
        // the level's float bits as lParam.
        const WParam which = static_cast<WParam>(deck_) * 65536 + static_cast<WParam>(b);
        SendToMainMixer(UWM_EQ_BAND_GAIN, which,
                        static_cast<LParam>(std::bit_cast<std::uint32_t>(level)), true);
    }
    engines_.SetLevel(b, level);
    if (type_ == EqType::Own)
        levels_[b]->SetPointerValue(1, level);
    if (!draw)
        return;
    DrawBand(b);
    DrawTotal();
}

void CRynEqualizer::Isolate() {
    const int keep = SelectedBand();
    for (int b = 0; b < kLevelSlides; ++b) {
        if (b != keep)
            levels_[b]->SetValue(0.0);
    }
}

// ------------------------------------------------------------ filter lengths

void CRynEqualizer::OnTapsChanged() {
    if (showingBand_ || WindowTimerActive(kTapsTimer))
        return;
    // The slide settles for 100 ms before the band is designed again.
    pendingTapsBand_ = SelectedBand();
    SetWindowTimer(kTapsTimer, kTapsDelayMs, true);
}

void CRynEqualizer::ApplyTapCount() {
    KillWindowTimer(kTapsTimer);
    const int taps = static_cast<int>(std::lround(taps_->Value()));
    tapsDisplay_->SetCaption(QString::number(taps));
    const int b = pendingTapsBand_;
    if (b < 0 || b >= bandCount_)
        return;
    engines_.SetTapCount(b, taps);
    DrawBand(b);
    DrawTotal();
}

void CRynEqualizer::ResetTapCounts() {
    // Every band goes back to its default length and is designed again.
    KillWindowTimer(kTapsTimer);
    engines_.ResetTapCounts();
    for (int b = 0; b < bandCount_; ++b)
        engines_.SetTapCount(b, engines_.TapCount(b));
    DrawAllBands();
    DrawTotal();
    ShowSelectedBand();
}

// ------------------------------------------------------------ selected band

void CRynEqualizer::ShowSelectedBand() {
    // A length change still settling belongs to the band it was made for.
    if (WindowTimerActive(kTapsTimer))
        ApplyTapCount();
    const int n = std::max(bandCount_, dsp::eq::kMinBands);
    const int b = std::clamp(SelectedBand(), 0, n - 1);
    const QColor colour = eq_window::BandColour(b, n);
    selected_->SetPointerColor(0, colour);

    const int taps = engines_.TapCount(b);
    showingBand_ = true;
    taps_->SetValue(taps);
    showingBand_ = false;
    tapsDisplay_->SetCaption(QString::number(taps));

    // The band's cut-off lines: a low-pass has only its upper edge, a
    // high-pass only its lower one.
    const bool own = type_ == EqType::Own;
    graph_->SetCursorX(kLowLine, engines_.CutoffPlotIndex(b, 0));
    graph_->SetCursorX(kHighLine, engines_.CutoffPlotIndex(b, 1));
    graph_->SetCursorVisible(kLowLine, own && b > 0);
    graph_->SetCursorVisible(kHighLine, own && b < n - 1);
    graph_->SetCursorColor(kLowLine, colour);
    graph_->SetCursorColor(kHighLine, colour);
}

void CRynEqualizer::OnLineDragged(int line, double x) {
    if (type_ != EqType::Own || (line != kLowLine && line != kHighLine))
        return;
    const int b = SelectedBand();
    const bool middle = b > 0 && b < bandCount_ - 1;
    if (middle && graph_->CursorX(kHighLine) < graph_->CursorX(kLowLine)) {
        // The lines crossed: the dragged one sits on the other, and an edge
        // moved onto the band's other edge is refused, so the band keeps its
        // filter.
        const int other = line == kLowLine ? kHighLine : kLowLine;
        graph_->SetCursorX(line, graph_->CursorX(other));
        return;
    }
    engines_.SetCutoffByPlotIndex(b, line, static_cast<int>(x));
    DrawBand(b);
    DrawTotal();
}

// ------------------------------------------------------------ design window

void CRynEqualizer::OnFilterTypeChosen(const QString& name) {
    engines_.SetWindowType(name.toStdString());
    Settings().SetEqFilterType(deck_, name);
    // Every band is designed again with the new window; levels stay.
    SetBandCount(bandCount_, false);
}
