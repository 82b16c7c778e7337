#include "dsp/SpectrumHistory.h"

#include <algorithm>

namespace dsp {

SpectrumHistory::SpectrumHistory() : surface_(2 * kMaxBands * kRows, 0.0) {
    for (auto& h : history_)
        h.assign(kRows * kMaxBands, 0.0);
}

void SpectrumHistory::AddRow(int deck, std::span<const double> levels) {
    const int d = Index(deck);
    const int n = std::clamp(static_cast<int>(levels.size()), 1, kMaxBands);
    bands_[d] = n;
    std::vector<double>& h = history_[d];
    // Rows 0 … 78 move to rows 1 … 79; the oldest row is dropped.
    std::copy_backward(h.begin(), h.end() - kMaxBands, h.end());
    const double span = range_[d].maximum - range_[d].minimum;
    for (int b = 0; b < kMaxBands; ++b) {
        double v = 0.0;
        if (b < n && b < static_cast<int>(levels.size()))
            v = span != 0.0 ? (levels[b] - range_[d].minimum) / span : 0.0;
        h[b] = v;
    }
}

void SpectrumHistory::ClearDeck(int deck) {
    std::fill(history_[Index(deck)].begin(), history_[Index(deck)].end(), 0.0);
}

double SpectrumHistory::At(int deck, int row, int band) const {
    const int d = Index(deck);
    if (row < 0 || row >= kRows || band < 0 || band >= bands_[d])
        return 0.0;
    return history_[d][row * kMaxBands + band];
}

int SpectrumHistory::Columns(bool sideBySide) const {
    return sideBySide ? bands_[0] + bands_[1] : std::max(bands_[0], bands_[1]);
}

std::span<const double> SpectrumHistory::Surface(bool sideBySide) {
    const int nA = bands_[0], nB = bands_[1];
    const int columns = Columns(sideBySide);
    const int common = std::min(nA, nB);
    const int wider = nA >= nB ? 0 : 1;
    for (int t = 0; t < kRows; ++t) {
        const double* a = &history_[0][t * kMaxBands];
        const double* b = &history_[1][t * kMaxBands];
        double* row = &surface_[t * columns];
        if (sideBySide) {
            std::copy(a, a + nA, row);
            std::copy(b, b + nB, row + nA);
        } else {
            for (int c = 0; c < common; ++c)
                row[c] = (a[c] + b[c]) * 0.5;
            const double* rest = wider == 0 ? a : b;
            std::copy(rest + common, rest + columns, row + common);
        }
    }
    return {surface_.data(), static_cast<size_t>(columns * kRows)};
}

}  // namespace dsp
