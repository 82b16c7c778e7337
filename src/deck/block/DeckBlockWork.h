// The audio work a deck's FillBlock runs on each block in place: the block
// is split into its left and right channels, handed to the measurements
// (level meters), equalized by the deck's equalizer window when it is on and
// of the program's own type, joined again, and handed to the measurements
// once more (band analysis for the graphs).
//
// The equalizer runs in the deck's arithmetic: 16-bit ("Ints") on the split
// halves as they are, or float ("Floats") on the halves converted to float
// without scaling and rounded back to 16 bits afterwards. With the
// equalizer off and nothing measuring, the block is left untouched, sample
// for sample.
//
// Runs on the user-interface thread inside the mix step: no allocation, the
// channel buffers are the object's own.
#pragma once

#include <QPointer>
#include <array>
#include <cstdint>

#include "core/PcmFormat.h"
#include "deck/disc/DeckBlockRoutine.h"

class CRynEqualizer;
namespace dsp {
class BlockAnalysis;
}

class DeckBlockWork : public DeckBlockRoutine {
  public:
    DeckBlockWork() = default;
    DeckBlockWork(const DeckBlockWork&) = delete;
    DeckBlockWork& operator=(const DeckBlockWork&) = delete;

    // The deck's equalizer window (not owned; null, or once the window has
    // gone: no equalizer).
    void SetEqualizer(CRynEqualizer* equalizer);
    // The measurements of the deck's sound (not owned; null: none).
    void SetAnalysis(dsp::BlockAnalysis* analysis) { analysis_ = analysis; }
    dsp::BlockAnalysis* Analysis() const { return analysis_; }
    // The deck's equalizer number type: true for 16-bit, false for float.
    void SetIntegerArithmetic(bool ints) { ints_ = ints; }
    bool IntegerArithmetic() const { return ints_; }
    // Blocks run through the equalizer so far (tests and diagnostics).
    long EqualizedBlocks() const { return equalized_; }

    void Process(int outputSlot, std::int16_t* samples, bool analysis) override;

  private:
    void Measure(bool before, int outputSlot);

    QPointer<CRynEqualizer> equalizer_;
    dsp::BlockAnalysis* analysis_ = nullptr;
    bool ints_ = false;
    long equalized_ = 0;

    std::array<std::int16_t, kBlockFrames> left16_{}, right16_{};
    std::array<float, kBlockFrames> leftFloat_{}, rightFloat_{};
};
