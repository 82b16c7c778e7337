// DeckAnalysis: the measurements of one deck's sound, kept per output slot.
//
// Each block the deck fills is measured once, under the slot (0 … 119) it
// goes to in the deck's output ring: the channel meters (RMS and peak, dB)
// from the block as read, the band levels (1/1000 dB) and the scope traces
// of up to three band groups (100 points each) from the block after the
// deck's equalizer. The displays read the slot of the block being heard, so
// what is drawn is what is heard however far ahead the deck writes.
//
// On each graph update (UpdateCurrent) the slot's band levels are smoothed
// over the last five updates per channel (LevelLaws.h) into the current band
// values, entries 1 … n (entry 0 stays 0), left plus right; the beat value
// is the selected band's current value within the beat range (BeatRange.h),
// which auto mode widens here.
//
// With integer graph values every stored level, trace point and smoothed
// level is truncated to an integer. Slots are never cleared (a track change
// simply overwrites them). No allocation per block; user-interface thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "dsp/AnalysisBank.h"
#include "dsp/BeatRange.h"
#include "dsp/BlockAnalysis.h"
#include "dsp/LevelLaws.h"
#include "dsp/ScopeBand.h"

namespace dsp {

class DeckAnalysis : public BlockAnalysis {
  public:
    static constexpr int kSlots = 120;
    static constexpr int kMaxBands = AnalysisBank::kMaxBands;
    static constexpr int kMaxGroups = AnalysisBank::kMaxGroups;
    static constexpr int kPoints = ScopeBand::kPoints;

    struct Channel {
        float rmsDb = 0.0f;
        float peakDb = 0.0f;
        std::array<double, kMaxBands> bands{};
        std::array<ScopeBand::Trace, kMaxGroups> traces{};
    };
    struct Slot {
        std::array<Channel, 2> channels{};  // left, right
    };

    DeckAnalysis();
    ~DeckAnalysis() override;

    // The deck's block routine: meters before its equalizer, bands after.
    void BeforeEqualizer(const BlockChannels& c) override {
        MeasureChannels(c.outputSlot, c.left16, c.right16);
    }
    void AfterEqualizer(const BlockChannels& c) override {
        AnalyzeBands(c.outputSlot, c.leftFloat, c.rightFloat);
    }

    // Bands in plot: 2, 3, 6, 12 or 24 (others clamped to 2 … 24). Re-creates
    // the analysis bands and the scope groups.
    void SetBandsInPlot(int n);
    int BandsInPlot() const { return bands_; }
    ScopeGroups Groups() const { return GroupsFor(bands_); }
    void SetIntegerValues(bool on) { integers_ = on; }
    bool IntegerValues() const { return integers_; }
    void SetTrigger(bool on) { trigger_ = on; }
    bool Trigger() const { return trigger_; }
    // The deck's scope time range slide; x = 0.033 · value, group g's
    // trace factor is x^(g+1).
    void SetScopeTimeRange(double value) { timeRange_ = value; }
    // Scope traces are built only while a scope display wants them (the
    // group filters are most of the analysis' cost); off, the slots keep
    // their last traces. Each display that can show a scope says so for
    // itself: the deck's own graphs, the main mixer's, the headphones'.
    enum ScopeUser : unsigned { kDeckScope = 1, kMainMixerScope = 2, kPhonesScope = 4 };
    void SetScopeWanted(ScopeUser user, bool on) {
        scopeUsers_ = on ? (scopeUsers_ | user) : (scopeUsers_ & ~unsigned(user));
    }
    bool ScopeWanted() const { return scopeUsers_ != 0; }
    double ScopeTimeRange() const { return timeRange_; }

    // The meters of the block as read (1176 samples per channel).
    void MeasureChannels(int slot, std::span<const std::int16_t> left,
                         std::span<const std::int16_t> right);
    // Band levels and scope traces of the equalized block (16-bit scale).
    void AnalyzeBands(int slot, std::span<const float> left, std::span<const float> right);
    // Blocks analysed so far (tests, diagnostics).
    long Analysed() const { return analysed_; }

    const Slot& At(int slot) const;

    // The graph update for the slot being heard: current band values and,
    // in auto mode, the beat range widened to the selected band's value.
    void UpdateCurrent(int slot);
    // Entries 0 … n; entry 0 is unused and 0.
    std::span<const double> CurrentValues() const {
        return {current_.data(), static_cast<size_t>(bands_ + 1)};
    }

    // One channel's smoothed values (0 left, 1 right), entries 0 … n.
    std::span<const double> ChannelValues(int c) const {
        return {channelCurrent_[c == 1 ? 1 : 0].data(), static_cast<size_t>(bands_ + 1)};
    }

    // The beat LED band selector (an entry 1 … n of the current values).
    void SetBeatBand(int entry) { beatBand_ = entry; }
    int BeatBand() const { return beatBand_; }
    BeatRange& Range() { return range_; }
    const BeatRange& Range() const { return range_; }
    // The beat value 0 … 1 of the selected band at the last update.
    float BeatValue() const;

    // Scope band ring of a channel and group (tests).
    const ScopeBand& Scope(int channel, int group) const { return scopes_[channel][group]; }

  private:
    double Store(double v) const {
        return integers_ ? static_cast<double>(static_cast<long>(v)) : v;
    }

    std::array<std::unique_ptr<AnalysisBank>, 2> banks_;
    std::array<std::array<ScopeBand, kMaxGroups>, 2> scopes_{};
    std::unique_ptr<std::array<Slot, kSlots>> slots_;
    // Per channel and band: the last five displayed levels, newest first.
    std::array<std::array<std::array<double, kBandHistory>, kMaxBands>, 2> history_{};
    std::array<double, kMaxBands + 1> current_{};
    std::array<std::array<double, kMaxBands + 1>, 2> channelCurrent_{};
    BeatRange range_;
    int bands_ = 3;
    int beatBand_ = 1;
    bool integers_ = false;
    bool trigger_ = true;
    unsigned scopeUsers_ = kDeckScope;
    double timeRange_ = 3.0;
    long analysed_ = 0;
};

}  // namespace dsp
