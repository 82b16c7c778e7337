// What a deck's block routine hands to the measurements of its sound (level
// meters, band analysis for the graphs): the block split into its two
// channels, in 16-bit and in float, and the output slot (0 … 119) the block
// will occupy in the deck's output ring, under which the measurements are
// kept until that slot is heard.
//
// The routine calls BeforeEqualizer after the split (the level meters' place)
// and AfterEqualizer once the equalizer has run (the band analysis' place),
// only while the graph work is not shed (a deck short of data, the deck's
// meters off, the system lagging). Both run on the user-interface thread,
// inside the mix step: they must not block. The channels are read-only and
// valid only during the call.
#pragma once

#include <cstdint>
#include <span>

namespace dsp {

struct BlockChannels {
    int outputSlot = 0;
    std::span<const std::int16_t> left16, right16;  // 1176 samples each
    std::span<const float> leftFloat, rightFloat;   // the same samples as floats
};

class BlockAnalysis {
  public:
    virtual ~BlockAnalysis() = default;
    virtual void BeforeEqualizer(const BlockChannels& channels) { (void)channels; }
    virtual void AfterEqualizer(const BlockChannels& channels) { (void)channels; }
};

}  // namespace dsp
