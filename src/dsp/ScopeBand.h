// ScopeBand: the scope trace of one band group of one channel.
//
// A ring of two blocks of 1176 samples (the group's summed band outputs),
// all zero at start. Each block the group's output is added into the current
// block, a 100-point trace is read from the ring as one stream (oldest block,
// then current), and the ring advances: the other block becomes current and
// is cleared.
//
// Trace: step = trunc(f · sampleRate · 0.01) samples between points, held to
// 1 … 11. With triggering the stream is scanned from the oldest block for
// the first upward zero crossing followed by four non-falling steps
// (s[i] ≤ 0 ≤ s[i+1], s[i] ≠ s[i+1], s[i+1] ≤ s[i+2] ≤ s[i+3] ≤ s[i+4]; four
// zeros stand before the oldest block); the trace starts at i + 1. Without
// triggering, or without a trigger, it starts at the oldest block's first
// sample. Points are read forward through the ring, wrapping round.
//
// No allocation after construction; user-interface thread only.
#pragma once

#include <array>
#include <span>

#include "core/PcmFormat.h"

namespace dsp {

class ScopeBand {
  public:
    static constexpr int kBlock = kBlockFrames;  // 1176
    static constexpr int kPoints = 100;
    static constexpr int kMaxStep = 11;
    using Trace = std::array<double, kPoints>;

    // Adds samples (kBlock of them) into the current block.
    void Add(std::span<const float> samples);
    // Builds the trace with factor f (see above) and returns it.
    const Trace& BuildTrace(double factor, bool trigger);
    // The other block becomes current and is cleared.
    void Advance();
    void Clear();

    // The step for factor f at this band's sample rate.
    int StepFor(double factor) const;
    // Where the last trace started, in the stream (0 = the oldest block's first sample).
    int LastStart() const { return lastStart_; }
    const Trace& LastTrace() const { return trace_; }
    void SetSampleRate(double rate) { sampleRate_ = rate; }

  private:
    // Sample p of the stream (oldest block, then current); p < 0 reads 0.
    float At(int p) const;
    int FindTrigger();

    std::array<std::array<float, kBlock>, 2> ring_{};
    // The stream for the trigger scan: four zeros, oldest block, current block.
    std::array<float, 4 + 2 * kBlock> stream_{};
    int current_ = 0;
    double sampleRate_ = 44100.0;
    Trace trace_{};
    int lastStart_ = 0;
};

}  // namespace dsp
