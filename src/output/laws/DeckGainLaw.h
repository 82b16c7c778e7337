// How a deck's gain and pan reach its device buffers: the deck gain law
// (0 … 1 to hundredths of a decibel) and its pan companion. Pure functions,
// usable from any thread.
#pragma once

#include <cstdint>

namespace output {

// Deck gain 0..1 to device volume (hundredths of a decibel): 1.0 -> 0,
// <= 0.0001 -> -10000 (silence), else -2500 + trunc(2500 * g).
std::int32_t DeckGainToVolume(float gain);

// Deck pan -1..+1 to device pan: trunc(p * 10000).
std::int32_t DeckPanToDevice(float pan);

}  // namespace output
