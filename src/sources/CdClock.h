// The time source and sleeper of the CD reader: the 10 ms read pacing and the
// 1 ms pauses between failed read attempts go through it, so tests can run
// them on a clock of their own without waiting.
#pragma once

class CdClock {
  public:
    virtual ~CdClock() = default;
    // Monotonic seconds; only differences matter.
    virtual double NowSeconds() = 0;
    virtual void SleepMs(int milliseconds) = 0;
};

// The steady system clock and a real sleep.
class SystemCdClock : public CdClock {
  public:
    double NowSeconds() override;
    void SleepMs(int milliseconds) override;
};
