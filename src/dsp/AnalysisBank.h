// AnalysisBank: the analysis filter bank of one channel of a deck, the cheap
// way. It splits the channel into the bands of the deck's graphs (2 … 24,
// the equalizer's layout and default taps at level 1.0) and gives per block
//   - each band's RMS level in thousandths of a decibel (20000·log10 σ), and
//   - the summed output of each scope band group (LevelLaws.h GroupsFor).
//
// Band levels come from one Hann-windowed 1024-point transform of the block
// (its middle 1024 samples, mean removed): a band's mean square is the power
// spectrum weighted by the band filter's squared magnitude response, so 24
// bands cost 24 dot products of 513 values instead of 24 filterings. Group
// outputs are exact FIR outputs, one inverse transform per group of the
// block's 2048-point spectrum (eq::FftBlockFilter), the same samples as the
// sum of the equalizer's band outputs for those bands.
//
// Nothing allocates after SetNumberOfBands; user-interface thread only.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "core/PcmFormat.h"
#include "dsp/LevelLaws.h"

namespace dsp {

class AnalysisBank {
  public:
    static constexpr int kMaxBands = 24;
    static constexpr int kMaxGroups = 3;
    static constexpr int kBlock = kBlockFrames;

    AnalysisBank();
    ~AnalysisBank();
    AnalysisBank(const AnalysisBank&) = delete;
    AnalysisBank& operator=(const AnalysisBank&) = delete;

    // Designs the bands (n clamped to 2 … 24) and groups, clears the history.
    void SetNumberOfBands(int n);
    int BandCount() const { return bands_; }
    ScopeGroups Groups() const { return groups_; }

    // One block of kBlock samples on the 16-bit scale. withGroups = false
    // skips the group outputs (no scope work).
    void Process(std::span<const float> samples, bool withGroups = true);

    // Results of the last block.
    double BandLevel(int b) const { return b >= 0 && b < bands_ ? levels_[b] : 0.0; }
    std::span<const float> GroupOutput(int g) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    int bands_ = 0;
    ScopeGroups groups_{};
    std::array<double, kMaxBands> levels_{};
};

}  // namespace dsp
