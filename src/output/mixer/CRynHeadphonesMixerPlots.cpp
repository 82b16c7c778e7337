// The headphones mixer's plots: their shape for the type and count buttons,
// and the drawing of one deck's block being heard.
#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/CNiGraph.h"
#include "deck/graphs/GraphValues.h"
#include "dsp/DeckAnalysis.h"
#include "output/mixer/CRynHeadphonesMixer.h"

namespace {

// Band values in 1/1000 dB: both ears summed reach twice the 16-bit range.
constexpr double kBothEarsTop = 280000.0;
// Deck B's bars are drawn over deck A's, see-through.
constexpr int kOverlayAlpha = 160;

}  // namespace

static_assert(dsp::DeckAnalysis::kPoints == 100, "the plots' scope buffer holds 100 points");

bool CRynHeadphonesMixer::PlotIsScope(int which) const {
    return plotTypes_[which]->Value();
}

void CRynHeadphonesMixer::ShapePlot(int which) {
    CNiGraph* plot = plots_[which];
    const bool scope = PlotIsScope(which);
    const bool bothEars = !plotCount_->Value();
    plot->Clear();
    plot->SetXIncrement(0, 1);
    for (int deck = 0; deck < 2; ++deck) {
        plot->SetPlotStyle(deck, scope ? CNiGraph::kLines : CNiGraph::kBars);
        QColor c = colours_[deck][0].isValid() ? colours_[deck][0] : plot->PlotColor(deck);
        c.setAlpha(!scope && deck == 1 ? kOverlayAlpha : 255);
        plot->SetPlotColor(deck, c);
    }
    if (scope) {
        plot->SetXRange(0, dsp::DeckAnalysis::kPoints - 1);
        plot->SetYRange(-32768, 32767);
    } else {
        plot->SetXRange(0, kBarColumns + 1);
        plot->SetYRange(0, bothEars ? kBothEarsTop : kBothEarsTop / 2);
    }
}

bool CRynHeadphonesMixer::WantsScope() const {
    if (!isVisible())
        return false;
    return PlotIsScope(0) || (plotCount_->Value() && PlotIsScope(1));
}

void CRynHeadphonesMixer::SetDeckGraphsOn(int deck, bool on) {
    if (deck < 0 || deck > 1)
        return;
    deckOn_[deck] = on;
    if (!on)
        ClearDeck(deck);
}

void CRynHeadphonesMixer::ClearDeck(int deck) {
    if (deck < 0 || deck > 1)
        return;
    for (CNiGraph* plot : plots_)
        plot->PlotY(deck, std::span<const double>());
}

void CRynHeadphonesMixer::SetPlotOn(int which, bool on) {
    which = which == 1 ? 1 : 0;
    plotOn_[which] = on;
    if (!on) {
        for (int deck = 0; deck < 2; ++deck)
            plots_[which]->PlotY(deck, std::span<const double>());
    }
}

void CRynHeadphonesMixer::DrawDeck(int deck, const dsp::DeckAnalysis& analysis, int slot) {
    if (deck < 0 || deck > 1 || !deckOn_[deck] || !isVisible())
        return;
    const int count = plotCount_->Value() ? 2 : 1;
    const unsigned allGroups = (1u << analysis.Groups().groups) - 1;
    for (int which = 0; which < count; ++which) {
        if (!plotOn_[which])
            continue;
        // One plot: both ears; two: the left ear, then the right.
        const int channel = count == 1 ? -1 : which;
        if (PlotIsScope(which)) {
            graph_values::ScopeTrace(analysis.At(slot), channel, 0, dsp::DeckAnalysis::kMaxGroups,
                                     allGroups, 1.0, analysis.IntegerValues(), trace_);
            plots_[which]->PlotY(deck, std::span<const double>(trace_));
        } else {
            graph_values::SpreadBars(analysis, channel, bars_);
            plots_[which]->PlotY(deck, std::span<const double>(bars_));
        }
        ++plotDraws_;
    }
}
