// TempoEstimator: finds the tempo of a stretch of sound fed to it in pieces.
// One measurement runs Begin, any number of Feed calls, then Finish. The
// sound is mono float, full scale +-1, at the rate given to Begin.
//
// Implementations: the aubio beat tracker (CreateTempoEstimator) and, for
// tests and machines without it, FixedTempoEstimator below. An estimator is
// used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

namespace tempo {

class TempoEstimator {
  public:
    virtual ~TempoEstimator() = default;
    // Starts a new measurement; sampleRate in Hz (8000 … 192000).
    virtual void Begin(int sampleRate) = 0;
    // The next `count` samples of the measurement.
    virtual void Feed(const float* samples, int count) = 0;
    // Beats per minute of everything fed since Begin, as the estimator hears
    // them (octave errors are the caller's to judge); 0 when it found no
    // steady beat.
    virtual double Finish() = 0;
};

// The aubio beat tracker.
std::unique_ptr<TempoEstimator> CreateTempoEstimator();

// Answers a set tempo whatever it is fed, and counts what it was given.
class FixedTempoEstimator : public TempoEstimator {
  public:
    explicit FixedTempoEstimator(double bpm) : bpm_(bpm) {}
    void Begin(int sampleRate) override {
        ++measurements_;
        sampleRate_ = sampleRate;
        samples_ = 0;
    }
    void Feed(const float*, int count) override { samples_ += count; }
    double Finish() override { return samples_ > 0 ? bpm_ : 0.0; }

    int Measurements() const { return measurements_; }
    std::int64_t SamplesFed() const { return samples_; }
    int SampleRate() const { return sampleRate_; }

  private:
    double bpm_;
    int measurements_ = 0;
    int sampleRate_ = 0;
    std::int64_t samples_ = 0;
};

}  // namespace tempo
