// GraphValues: what a graph plots for one deck's measurements, shared by the
// deck's own graphs and the mixers' graphs so they all show the same thing.
//
// Bars: the current band values, entries 0 … n (entry 0 stays 0), both
// channels summed (channel -1) or one channel (0 left, 1 right); or spread
// over a fixed number of columns so that decks with different band counts
// share one x axis. Scope: one 100-point trace of a slot, the sum of the band
// groups [first, last) that `groupMask` lets through (bit g for group g),
// both channels averaged (channel -1) or one channel, times `gain`; with
// integer graph values (`integers`) each point is truncated to an integer,
// as the stored values are.
//
// The callers own the buffers: nothing here allocates. Pure functions.
#pragma once

#include <cstddef>
#include <span>

#include "dsp/DeckAnalysis.h"

namespace graph_values {

// Copies the current band values into `out`; returns the number of entries
// written (n + 1, or fewer when `out` is short).
std::size_t Bars(const dsp::DeckAnalysis& a, int channel, std::span<double> out);

// The current band values spread over out.size() − 1 columns: column c
// (1 …) shows band entry 1 + (c − 1) · n / columns; column 0 stays 0.
void SpreadBars(const dsp::DeckAnalysis& a, int channel, std::span<double> out);

// One scope trace of slot `s` built from the groups first … last − 1.
void ScopeTrace(const dsp::DeckAnalysis::Slot& s, int channel, int first, int last,
                unsigned groupMask, double gain, bool integers,
                std::span<double, dsp::DeckAnalysis::kPoints> out);

}  // namespace graph_values
