// Where the device equalizer's bands sit: n bands (1..12) spread from 80 Hz
// by the ratio r = 0.8 * 2^(12/n), each 36/n semitones wide, centres held to
// 80..16000 Hz. Three bands: 80, 1024 and 13107.2 Hz, 12 semitones. A band's
// level control (0..1) maps to -15..+15 dB, 0.5 being flat.
#pragma once

namespace sound::fx {

constexpr int kMaxDeviceEqBands = 12;
constexpr int kDefaultDeviceEqBands = 3;

double DeviceEqBandCentre(int bandCount, int band);  // Hz
double DeviceEqBandwidth(int bandCount);             // semitones
double DeviceEqGainDb(double level);                 // level 0..1 (clamped)

}  // namespace sound::fx
