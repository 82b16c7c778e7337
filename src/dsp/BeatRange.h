// The beat range of a deck: the low and high cursor of its spectrum graph,
// in thousandths of a decibel, between which a band level reads as a beat
// value 0 … 1 (LevelLaws.h BeatValue).
//
// "Man": the cursors stay where the user puts them; switching to it sets
// 0 and 280000. "Auto": every graph update widens the range to take in the
// selected band's level at once, and every 100 ms of playing narrows it by
// 1000 (one decibel) from each side while high − 1 > low + 1; the range then
// hugs the recent envelope of the level. The range stays within 0 … 280000.
#pragma once

namespace dsp {

class BeatRange {
  public:
    static constexpr int kNarrowMs = 100;     // the auto-mode timer
    static constexpr double kStep = 1000.0;   // narrowing per tick, 1/1000 dB
    static constexpr double kTop = 280000.0;  // highest cursor

    bool Automatic() const { return automatic_; }
    // Switching to manual puts the cursors at 0 and the top.
    void SetAutomatic(bool on);
    // Auto: takes in level L (if L > high, high = L; if L < low, low = L).
    void Widen(double level);
    // Auto: one 100 ms tick while the deck plays.
    void Narrow();
    // The user moved a cursor (manual, or auto before the next update).
    void SetCursors(double low, double high);

    double Low() const { return low_; }
    double High() const { return high_; }

  private:
    bool automatic_ = true;
    double low_ = 0.0;
    double high_ = kTop;
};

}  // namespace dsp
