// The deck's block routine on its own: a block untouched while the
// equalizer is off or of the device's type, the measurement hooks called
// with the split channels and the output slot around the equalizer, and the
// float and 16-bit paths.
#include <gtest/gtest.h>

#include <vector>

#include "controls/CNiButton.h"
#include "controls/CNiSlide.h"
#include "deck/block/DeckBlockWork.h"
#include "dsp/BlockAnalysis.h"
#include "dsp/window/CRynEqualizer.h"

namespace {

// Records what the routine hands to the measurements.
class RecordingAnalysis : public dsp::BlockAnalysis {
  public:
    void BeforeEqualizer(const dsp::BlockChannels& c) override { Keep(c, before); }
    void AfterEqualizer(const dsp::BlockChannels& c) override { Keep(c, after); }

    struct Seen {
        int calls = 0;
        int slot = -1;
        std::vector<std::int16_t> left, right;
        std::vector<float> leftFloat;
    };
    Seen before, after;

  private:
    static void Keep(const dsp::BlockChannels& c, Seen& s) {
        ++s.calls;
        s.slot = c.outputSlot;
        s.left.assign(c.left16.begin(), c.left16.end());
        s.right.assign(c.right16.begin(), c.right16.end());
        s.leftFloat.assign(c.leftFloat.begin(), c.leftFloat.end());
    }
};

std::vector<std::int16_t> Block() {
    std::vector<std::int16_t> b(kBlockSamples);
    for (int i = 0; i < kBlockFrames; ++i) {
        b[2 * i] = static_cast<std::int16_t>((i * 37) % 20000 - 10000);
        b[2 * i + 1] = static_cast<std::int16_t>(-(i * 11) % 3000);
    }
    return b;
}

}  // namespace

TEST(DeckBlockWork, OffOrDeviceTypeLeavesTheBlockAndTheHooksSeeTheChannels) {
    CRynEqualizer eq;
    DeckBlockWork work;
    work.SetEqualizer(&eq);
    const std::vector<std::int16_t> original = Block();
    std::vector<std::int16_t> block = original;

    work.Process(7, block.data(), true);
    EXPECT_EQ(block, original);
    EXPECT_EQ(work.EqualizedBlocks(), 0);

    RecordingAnalysis analysis;
    work.SetAnalysis(&analysis);
    work.Process(7, block.data(), true);
    EXPECT_EQ(block, original);
    ASSERT_EQ(analysis.before.calls, 1);
    ASSERT_EQ(analysis.after.calls, 1);
    EXPECT_EQ(analysis.before.slot, 7);
    ASSERT_EQ(analysis.before.left.size(), static_cast<std::size_t>(kBlockFrames));
    EXPECT_EQ(analysis.before.left[5], original[10]);
    EXPECT_EQ(analysis.before.right[5], original[11]);
    EXPECT_EQ(analysis.before.leftFloat[5], static_cast<float>(original[10]));

    // Shed graph work: no hooks.
    work.Process(8, block.data(), false);
    EXPECT_EQ(analysis.before.calls, 1);

    // The device's own equalizer: the block passes untouched even when on.
    eq.OnButton()->SetValue(true);
    eq.SetEqualizerType(CRynEqualizer::EqType::Device);
    work.SetAnalysis(nullptr);
    work.Process(9, block.data(), true);
    EXPECT_EQ(block, original);
    EXPECT_EQ(work.EqualizedBlocks(), 0);
}

TEST(DeckBlockWork, TheEqualizerRunsInTheDecksArithmeticBetweenTheHooks) {
    CRynEqualizer eq;
    eq.OnButton()->SetValue(true);
    for (int b = 0; b < 3; ++b)
        eq.LevelSlide(b)->SetValue(0.0);  // everything off: silence
    DeckBlockWork work;
    work.SetEqualizer(&eq);
    RecordingAnalysis analysis;
    work.SetAnalysis(&analysis);

    for (bool ints : {false, true}) {
        work.SetIntegerArithmetic(ints);
        std::vector<std::int16_t> block = Block();
        work.Process(3, block.data(), true);
        EXPECT_EQ(block, std::vector<std::int16_t>(kBlockSamples, 0)) << ints;
        EXPECT_NE(analysis.before.left, std::vector<std::int16_t>(kBlockFrames, 0));
        EXPECT_EQ(analysis.after.left, std::vector<std::int16_t>(kBlockFrames, 0));
        EXPECT_EQ(analysis.after.leftFloat, std::vector<float>(kBlockFrames, 0.0f));
    }
    EXPECT_EQ(work.EqualizedBlocks(), 2);

    // The window gone, the routine has no equalizer left.
    {
        auto* gone = new CRynEqualizer;
        gone->OnButton()->SetValue(true);
        work.SetEqualizer(gone);
        delete gone;
    }
    std::vector<std::int16_t> block = Block();
    work.Process(4, block.data(), false);
    EXPECT_EQ(block, Block());
}
