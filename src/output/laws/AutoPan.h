// Auto-pan: moves the balance along a sine while it is on, and puts the
// balance back exactly where it was when it is turned off. The phase runs
// on across off/on.
#pragma once

class AutoPan {
  public:
    // 2π as the mixer has always stored it (6.2831936, not 6.2831853).
    static constexpr float kTwoPi = 6.2831936f;
    static constexpr float kIntervalSeconds = 0.1f;  // timer 3: 100 ms

    // Remembers the balance to restore.
    void TurnOn(float currentBalance);
    // The balance to put back.
    float TurnOff() const { return savedBalance_; }
    // One 100 ms tick: the new balance, sin(phase).
    float Step();
    void SetSpeed(float cyclesPerSecond) { speed_ = cyclesPerSecond; }
    float Speed() const { return speed_; }
    float Phase() const { return phase_; }

  private:
    float savedBalance_ = 0.0f;
    float phase_ = 0.0f;
    float step_ = 0.0f;
    float speed_ = 0.5f;
    float interval_ = kIntervalSeconds;
};
