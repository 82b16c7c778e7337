// The audio work the disc buffer's FillBlock runs on each block in place
// (split, meters, equalizer, join, band analysis), on the thread that runs
// the mix step. analysis is false when the graph work is shed because a deck
// is short of data, meters are off, or the system lags.
#pragma once

#include <cstdint>

class DeckBlockRoutine {
  public:
    virtual ~DeckBlockRoutine() = default;
    virtual void Process(int outputSlot, std::int16_t* samples, bool analysis) = 0;
};
