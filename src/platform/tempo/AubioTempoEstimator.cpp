// The aubio beat tracker behind TempoEstimator.
//
// Per hop of 512 samples (11.6 ms at 44100 Hz, windows of 1024) two things
// are kept: the beats aubio's tracker reports, and the onset strength (the
// spectral flux of aubio's phase vocoder), the attack curve of the sound.
//
// The tracker's beats give the rough period: the median gap between
// successive beats, which a few missed or doubled beats do not move. The
// tracker counts its period in whole hops and lets its beats wobble to stay
// in phase, so the rough period is only good to a percent or two. The exact
// period is then read off the attack curve itself: near the rough one, the
// period at which the curve's attacks line up best over the whole track
// (the largest sum of the curve turned by 2 pi per period). Over a minute
// of beats that is good to a few hundredths of a BPM.
//
// Between the two, the attack half-way between beats against the attack on
// the beats decides the octave (TempoOctave).
#include <aubio/aubio.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

#include "platform/tempo/TempoEstimator.h"
#include "platform/tempo/TempoOctave.h"

namespace tempo {
namespace {

constexpr uint_t kWindow = 1024;
constexpr uint_t kHop = 512;
// Frames quieter than this (dB full scale) count as silence to the tracker.
// Far below aubio's own default, so that sparse clicks over digital silence
// and quiet intros still carry beats.
constexpr smpl_t kSilenceDb = -100.0f;
// Fewer beat gaps than this are no steady beat.
constexpr std::size_t kMinGaps = 4;
// The exact period is looked for within this fraction of the rough one, in
// steps of kSearchStep of it (then refined between the best steps).
constexpr double kSearchSpan = 0.04;
constexpr double kSearchStep = 0.0002;
// The attack at a beat or half-way point is the curve's largest value this
// many hops either side (the tracker's beat times and the curve may be a
// hop or two apart).
constexpr int kPeakReach = 2;

constexpr double kTwoPi = 6.283185307179586;

class AubioTempoEstimator : public TempoEstimator {
  public:
    ~AubioTempoEstimator() override { Release(); }

    void Begin(int sampleRate) override {
        Release();
        beats_.clear();
        curve_.clear();
        fill_ = 0;
        rate_ = sampleRate;
        const auto sr = static_cast<uint_t>(sampleRate);
        tracker_ = new_aubio_tempo("default", kWindow, kHop, sr);
        pvoc_ = new_aubio_pvoc(kWindow, kHop);
        flux_ = new_aubio_specdesc("specflux", kWindow);
        hop_ = new_fvec(kHop);
        out_ = new_fvec(1);
        grain_ = new_cvec(kWindow);
        fluxOut_ = new_fvec(1);
        if (!tracker_ || !pvoc_ || !flux_ || !hop_ || !out_ || !grain_ || !fluxOut_) {
            Release();
            return;
        }
        aubio_tempo_set_silence(tracker_, kSilenceDb);
    }

    void Feed(const float* samples, int count) override {
        if (!tracker_)
            return;
        while (count > 0) {
            const int n = std::min<int>(count, static_cast<int>(kHop - fill_));
            std::copy(samples, samples + n, hop_->data + fill_);
            fill_ += static_cast<uint_t>(n);
            samples += n;
            count -= n;
            if (fill_ == kHop)
                Hop();
        }
    }

    double Finish() override {
        double bpm = 0.0;
        if (tracker_)
            bpm = Measure();
        Release();
        return bpm;
    }

  private:
    void Hop() {
        aubio_tempo_do(tracker_, hop_, out_);
        if (out_->data[0] != 0)
            beats_.push_back(aubio_tempo_get_last_s(tracker_));
        aubio_pvoc_do(pvoc_, hop_, grain_);
        aubio_specdesc_do(flux_, grain_, fluxOut_);
        curve_.push_back(fluxOut_->data[0]);
        fill_ = 0;
    }

    double Measure() {
        if (beats_.size() < kMinGaps + 1)
            return 0.0;
        std::vector<double> gaps;
        for (std::size_t i = 1; i < beats_.size(); ++i)
            if (beats_[i] > beats_[i - 1])
                gaps.push_back(beats_[i] - beats_[i - 1]);
        if (gaps.size() < kMinGaps)
            return 0.0;
        std::nth_element(gaps.begin(), gaps.begin() + gaps.size() / 2, gaps.end());
        const double hopsPerSecond = static_cast<double>(rate_) / kHop;
        double period = gaps[gaps.size() / 2] * hopsPerSecond;  // hops
        if (!(period > 0))
            return 0.0;
        period = ExactPeriod(period);
        const double tracked = 60.0 * hopsPerSecond / period;
        const double shown = ChooseOctave(tracked, HalfBeatRatio(period));
        if (std::abs(shown - tracked * 2) < 1e-9 * shown) {
            // The beats are twice as dense: find the exact period again near
            // the half, where the attacks between the old beats count too.
            return 60.0 * hopsPerSecond / ExactPeriod(period / 2);
        }
        return shown;
    }

    // How well the attacks line up at `period` hops: the size of the sum of
    // the curve turned by 2 pi per period.
    double Alignment(double period) const { return std::abs(Turned(period)); }

    // The sum of the curve turned by 2 pi per `period` hops. The turn is
    // stepped by multiplication and renewed every kRenew hops so that
    // rounding cannot build up.
    std::complex<double> Turned(double period) const {
        constexpr std::size_t kRenew = 1024;
        const double step = kTwoPi / period;
        const std::complex<double> turn = std::polar(1.0, step);
        std::complex<double> sum = 0, z = 1;
        for (std::size_t n = 0; n < curve_.size(); ++n) {
            if (n % kRenew == 0)
                z = std::polar(1.0, step * static_cast<double>(n));
            sum += static_cast<double>(curve_[n]) * z;
            z *= turn;
        }
        return sum;
    }

    double ExactPeriod(double rough) const {
        const int steps = static_cast<int>(kSearchSpan / kSearchStep);
        double best = rough, bestScore = -1, below = 0, above = 0;
        std::vector<double> scores(2 * steps + 1);
        for (int i = -steps; i <= steps; ++i)
            scores[i + steps] = Alignment(rough * (1.0 + i * kSearchStep));
        int bi = 0;
        for (int i = 0; i <= 2 * steps; ++i)
            if (scores[i] > bestScore) {
                bestScore = scores[i];
                bi = i;
            }
        best = rough * (1.0 + (bi - steps) * kSearchStep);
        if (bi > 0 && bi < 2 * steps) {
            // The top of the parabola through the best step and its neighbours.
            below = scores[bi - 1];
            above = scores[bi + 1];
            const double den = below - 2 * bestScore + above;
            if (den < 0)
                best += 0.5 * (below - above) / den * rough * kSearchStep;
        }
        return best;
    }

    // The curve's largest value within kPeakReach hops of hop `at`.
    double PeakNear(double at) const {
        const int centre = static_cast<int>(std::lround(at));
        double peak = 0;
        for (int n = centre - kPeakReach; n <= centre + kPeakReach; ++n)
            if (n >= 0 && n < static_cast<int>(curve_.size()))
                peak = std::max(peak, static_cast<double>(curve_[n]));
        return peak;
    }

    // Mean attack half-way between the beats over mean attack on them. The
    // beats are laid on a grid of `period` hops in the phase where the
    // attacks line up best.
    double HalfBeatRatio(double period) const {
        // The curve peaks where its turned sum points: a peak at hop n turns
        // to the angle 2 pi n / period.
        double phase = std::arg(Turned(period)) / (kTwoPi / period);  // hops
        if (phase < 0)
            phase += period;
        double on = 0, half = 0;
        for (double at = phase; at + period / 2 < static_cast<double>(curve_.size());
             at += period) {
            on += PeakNear(at);
            half += PeakNear(at + period / 2);
        }
        return on > 0 ? half / on : 0.0;
    }

    void Release() {
        if (tracker_)
            del_aubio_tempo(tracker_);
        if (pvoc_)
            del_aubio_pvoc(pvoc_);
        if (flux_)
            del_aubio_specdesc(flux_);
        for (fvec_t* v : {hop_, out_, fluxOut_})
            if (v)
                del_fvec(v);
        if (grain_)
            del_cvec(grain_);
        tracker_ = nullptr;
        pvoc_ = nullptr;
        flux_ = nullptr;
        hop_ = out_ = fluxOut_ = nullptr;
        grain_ = nullptr;
    }

    aubio_tempo_t* tracker_ = nullptr;
    aubio_pvoc_t* pvoc_ = nullptr;
    aubio_specdesc_t* flux_ = nullptr;
    fvec_t* hop_ = nullptr;
    fvec_t* out_ = nullptr;
    fvec_t* fluxOut_ = nullptr;
    cvec_t* grain_ = nullptr;
    uint_t fill_ = 0;
    int rate_ = 44100;
    std::vector<double> beats_;  // seconds from Begin
    std::vector<float> curve_;   // onset strength, one a hop
};

}  // namespace

std::unique_ptr<TempoEstimator> CreateTempoEstimator() {
    return std::make_unique<AubioTempoEstimator>();
}

}  // namespace tempo
