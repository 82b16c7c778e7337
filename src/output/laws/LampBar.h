// LampBar: the lit-lamp law of a row of N meter lamps.
//
// Mode 0 (moving bar): the target is trunc(N · f) for the fraction f held to
// 0 … 1; each update takes up to three steps towards it, turning off the
// highest lit lamp or lighting the next one, so the bar moves at most three
// lamps per update. Mode 1 (filled bar): the first trunc(N · f) lamps are lit
// fully and the next one by the remaining fraction; the rest are off.
#pragma once

#include <algorithm>

class LampBar {
  public:
    static constexpr int kMaxSteps = 3;

    explicit LampBar(int lamps = 9, int mode = 0) : lamps_(lamps), mode_(mode) {}

    // Applies fraction f; returns true when the lamps changed.
    bool Update(double f);

    int Lamps() const { return lamps_; }
    int Mode() const { return mode_; }
    int Lit() const { return lit_; }
    // Mode 1: how far the lamp after the lit ones is lit, 0 … 1.
    double Partial() const { return partial_; }

  private:
    int lamps_;
    int mode_;
    int lit_ = 0;
    double partial_ = 0.0;
};

// The decibel meter's fraction for an RMS level of L dB (0 … 96.33):
// f = L / (96.33 / √2) − 0.4, so 96.33 dB fills the bar and 27.25 dB or
// less lights nothing.
double DecibelBarFraction(double levelDb);
