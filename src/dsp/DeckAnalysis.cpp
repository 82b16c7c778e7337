#include "dsp/DeckAnalysis.h"

#include <algorithm>
#include <cmath>

namespace dsp {

DeckAnalysis::DeckAnalysis() : slots_(std::make_unique<std::array<Slot, kSlots>>()) {
    for (auto& b : banks_)
        b = std::make_unique<AnalysisBank>();
    SetBandsInPlot(3);
}

DeckAnalysis::~DeckAnalysis() = default;

void DeckAnalysis::SetBandsInPlot(int n) {
    for (auto& b : banks_)
        b->SetNumberOfBands(n);
    bands_ = banks_[0]->BandCount();
    for (auto& channel : scopes_)
        for (ScopeBand& s : channel)
            s.Clear();
    for (auto& channel : history_)
        for (auto& h : channel)
            h.fill(0.0);
    current_.fill(0.0);
    for (auto& c : channelCurrent_)
        c.fill(0.0);
}

void DeckAnalysis::MeasureChannels(int slot, std::span<const std::int16_t> left,
                                   std::span<const std::int16_t> right) {
    if (slot < 0 || slot >= kSlots)
        return;
    Slot& s = (*slots_)[slot];
    const ChannelLevels l = MeasureChannel(left), r = MeasureChannel(right);
    s.channels[0].rmsDb = l.rmsDb;
    s.channels[0].peakDb = l.peakDb;
    s.channels[1].rmsDb = r.rmsDb;
    s.channels[1].peakDb = r.peakDb;
}

void DeckAnalysis::AnalyzeBands(int slot, std::span<const float> left,
                                std::span<const float> right) {
    if (slot < 0 || slot >= kSlots)
        return;
    Slot& s = (*slots_)[slot];
    const ScopeGroups groups = Groups();
    const double x = 0.033 * timeRange_;
    for (int c = 0; c < 2; ++c) {
        AnalysisBank& bank = *banks_[c];
        bank.Process(c == 0 ? left : right, ScopeWanted());
        Channel& ch = s.channels[c];
        for (int b = 0; b < bands_; ++b)
            ch.bands[b] = Store(bank.BandLevel(b));
        double factor = 1.0;
        for (int g = 0; ScopeWanted() && g < groups.groups; ++g) {
            factor *= x;
            ScopeBand& scope = scopes_[c][g];
            scope.Add(bank.GroupOutput(g));
            const ScopeBand::Trace& trace = scope.BuildTrace(factor, trigger_);
            for (int j = 0; j < kPoints; ++j)
                ch.traces[g][j] = Store(trace[j]);
            scope.Advance();
        }
    }
    ++analysed_;
}

const DeckAnalysis::Slot& DeckAnalysis::At(int slot) const {
    return (*slots_)[std::clamp(slot, 0, kSlots - 1)];
}

void DeckAnalysis::UpdateCurrent(int slot) {
    const Slot& s = At(slot);
    current_[0] = 0.0;
    for (int b = 0; b < bands_; ++b) {
        double sum = 0.0;
        for (int c = 0; c < 2; ++c) {
            auto& h = history_[c][b];
            std::copy_backward(h.begin(), h.end() - 1, h.end());
            h[0] = s.channels[c].bands[b];
            const double v = Store(SmoothedLevel(h));
            channelCurrent_[c][b + 1] = v;
            sum += v;
        }
        current_[b + 1] = sum;
    }
    if (beatBand_ >= 1 && beatBand_ <= bands_)
        range_.Widen(current_[beatBand_]);
}

float DeckAnalysis::BeatValue() const {
    if (beatBand_ < 1 || beatBand_ > bands_)
        return 0.0f;
    return dsp::BeatValue(current_[beatBand_], range_.Low(), range_.High());
}

}  // namespace dsp
