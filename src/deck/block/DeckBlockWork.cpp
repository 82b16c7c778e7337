#include "deck/block/DeckBlockWork.h"

#include <span>

#include "dsp/BlockAnalysis.h"
#include "dsp/VectorOps.h"
#include "dsp/window/CRynEqualizer.h"

void DeckBlockWork::SetEqualizer(CRynEqualizer* equalizer) {
    equalizer_ = equalizer;
}

void DeckBlockWork::Process(int outputSlot, std::int16_t* samples, bool analysis) {
    const bool equalize = equalizer_ && equalizer_->OwnType() && equalizer_->IsOn();
    const bool measure = analysis && analysis_;
    if (!equalize && !measure)
        return;

    const std::span<std::int16_t> block(samples, kBlockSamples);
    dsp::SplitChannels(block, left16_, right16_);
    const bool floats = !ints_ && equalize;
    if (floats || measure) {
        dsp::ToFloat(left16_, leftFloat_);
        dsp::ToFloat(right16_, rightFloat_);
    }
    if (measure)
        Measure(true, outputSlot);

    if (equalize) {
        if (floats) {
            equalizer_->ProcessStereo(leftFloat_.data(), rightFloat_.data(), true);
            dsp::ToInt16(leftFloat_, left16_);
            dsp::ToInt16(rightFloat_, right16_);
        } else {
            equalizer_->ProcessStereo(left16_.data(), right16_.data(), true);
            if (measure) {
                dsp::ToFloat(left16_, leftFloat_);
                dsp::ToFloat(right16_, rightFloat_);
            }
        }
        dsp::JoinChannels(left16_, right16_, block);
        ++equalized_;
    }
    if (measure)
        Measure(false, outputSlot);
}

void DeckBlockWork::Measure(bool before, int outputSlot) {
    dsp::BlockChannels channels;
    channels.outputSlot = outputSlot;
    channels.left16 = left16_;
    channels.right16 = right16_;
    channels.leftFloat = leftFloat_;
    channels.rightFloat = rightFloat_;
    if (before)
        analysis_->BeforeEqualizer(channels);
    else
        analysis_->AfterEqualizer(channels);
}
