// The band-level history behind the 3D spectrum plot: per deck the last 80
// rows of normalised band levels (row 0 newest, each row holding the deck's
// band count of values, up to 24), and the surface matrix built from both
// decks, side by side or joined.
//
// Levels arrive in thousandths of a decibel and are normalised with the
// deck's range: (v − minimum) / (maximum − minimum), so a level at the
// maximum is 1.0 and one at the minimum 0.0; the range starts at 0 …
// 280000 (280 dB). Plain arithmetic, no allocation after construction.
#pragma once

#include <array>
#include <span>
#include <vector>

namespace dsp {

class SpectrumHistory {
  public:
    static constexpr int kRows = 80;
    static constexpr int kMaxBands = 24;
    static constexpr double kDefaultMaximum = 280000.0;  // 1/1000 dB
    static constexpr double kDefaultMinimum = 0.0;

    SpectrumHistory();

    // Scrolls the history of `deck` one row back (the oldest row is dropped)
    // and puts the normalised `levels` in row 0; the deck's band count
    // becomes levels.size() (at most 24, at least 1).
    void AddRow(int deck, std::span<const double> levels);
    // Every value of the deck's history to 0.
    void ClearDeck(int deck);

    void SetMaximum(int deck, double maximum) { range_[Index(deck)].maximum = maximum; }
    void SetMinimum(int deck, double minimum) { range_[Index(deck)].minimum = minimum; }
    double Maximum(int deck) const { return range_[Index(deck)].maximum; }
    double Minimum(int deck) const { return range_[Index(deck)].minimum; }

    int Bands(int deck) const { return bands_[Index(deck)]; }
    // Value of band `band` in row `row` of the deck (0 outside the row).
    double At(int deck, int row, int band) const;

    // The surface's column count: nA + nB side by side, the larger band
    // count joined.
    int Columns(bool sideBySide) const;
    // Builds the matrix, row after row (value (c, r) at r · Columns + c).
    // Side by side: deck A's bands, then deck B's. Joined: below the
    // smaller band count the mean of the two decks, (A + B) · 0.5; above it
    // the values of the deck that has those bands.
    std::span<const double> Surface(bool sideBySide);

  private:
    struct Range {
        double maximum = kDefaultMaximum;
        double minimum = kDefaultMinimum;
    };
    static int Index(int deck) { return deck == 1 ? 1 : 0; }

    // Per deck kRows × kMaxBands values; a row uses its first Bands() values.
    std::array<std::vector<double>, 2> history_;
    std::array<int, 2> bands_{kMaxBands, kMaxBands};
    std::array<Range, 2> range_{};
    std::vector<double> surface_;
};

}  // namespace dsp
