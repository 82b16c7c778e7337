#include "platform/sound/SoundVoice.h"

#include <algorithm>
#include <cmath>

#include "platform/sound/Resampler.h"

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace sound {

namespace {
// Volume and pan changes glide over 128 frames (2.9 ms at 44100 Hz) so a
// moving fader never clicks.
constexpr int kRampFrames = 128;
// Starts and stops without an envelope fade over 64 frames (1.5 ms): too
// short to hear as a fade, long enough to remove the click.
constexpr int kDeclickFrames = 64;

// Feedback loops in effects (reverb combs, echoes, filters) decay towards
// zero through denormal numbers, which cost a hundred times more per
// operation: the effects run with denormals flushed to zero.
class FlushDenormals {
  public:
#if defined(__SSE__)
    FlushDenormals() : saved_(_mm_getcsr()) {
        _mm_setcsr(saved_ | 0x8040u);
    }  // FTZ | DAZ
    ~FlushDenormals() {
        _mm_setcsr(saved_);
    }

  private:
    unsigned saved_;
#endif
};
}  // namespace

float VolumeToGain(std::int32_t volume) {
    if (volume <= kVolumeMin)
        return 0.0f;
    if (volume >= 0)
        return 1.0f;
    return std::pow(10.0f, static_cast<float>(volume) / 2000.0f);
}

void PanToGains(std::int32_t pan, float* left, float* right) {
    *left = pan > 0 ? VolumeToGain(-pan) : 1.0f;
    *right = pan < 0 ? VolumeToGain(pan) : 1.0f;
}

void EnvelopeSlot::Store(const VolumeEnvelope* envelope) {
    if (envelope == nullptr || envelope->count <= 0 || envelope->volumes == nullptr) {
        count.store(0, std::memory_order_release);
        return;
    }
    const int n = std::min(envelope->count, kMaxEnvelopeSteps);
    for (int i = 0; i < n; ++i)
        gains[i].store(VolumeToGain(envelope->volumes[i]), std::memory_order_relaxed);
    framesPerStep.store(std::max(1, envelope->framesPerStep), std::memory_order_relaxed);
    count.store(n, std::memory_order_release);
}

float SoundVoice::EnvelopeCursor::GainAt(int f) const {
    const int i = f / framesPerStep;
    const int t = f - i * framesPerStep;
    const float a = slot->gains[i].load(std::memory_order_relaxed);
    const float b = i + 1 < count ? slot->gains[i + 1].load(std::memory_order_relaxed) : a;
    return a + (b - a) * static_cast<float>(t) / static_cast<float>(framesPerStep);
}

SoundVoice::SoundVoice(std::uint32_t bytes, std::uint32_t hz)
    : frequency(hz), samples_(bytes / 2, 0), frames_(bytes / kFrameBytes) {}

void SoundVoice::UpdateTarget() {
    const std::int32_t v = volume.load(std::memory_order_relaxed);
    const std::int32_t p = pan.load(std::memory_order_relaxed);
    if (v == lastVolume_ && p == lastPan_)
        return;
    lastVolume_ = v;
    lastPan_ = p;
    PanToGains(p, &panLeft_, &panRight_);
    const float g = VolumeToGain(v);
    targetLeft_ = g * panLeft_;
    targetRight_ = g * panRight_;
    if (!attack_.Active()) {
        rampFrames_ = kRampFrames;
        rampLeftStep_ = (targetLeft_ - gainLeft_) / kRampFrames;
        rampRightStep_ = (targetRight_ - gainRight_) / kRampFrames;
    }
}

void SoundVoice::ApplyTransport(std::uint64_t step) {
    const std::uint32_t ps = playSeq.load(std::memory_order_acquire);
    const std::uint32_t ss = stopSeq.load(std::memory_order_acquire);
    const bool started = ps != seenPlay_;
    const bool stopped = ss != seenStop_;
    seenPlay_ = ps;
    seenStop_ = ss;
    const bool nowPlaying = playing.load(std::memory_order_acquire);

    // A stop (or a stop and a new start within one pass) leaves a tail that
    // fades out from where the voice was.
    if (active_ && (stopped || !nowPlaying)) {
        tail_.position = position.load(std::memory_order_relaxed);
        tail_.step = step;
        const int c = release.count.load(std::memory_order_acquire);
        if (c > 0) {
            tail_.envelope = {&release, c, release.framesPerStep.load(std::memory_order_relaxed),
                              0};
            tail_.declickLeft = 0;
        } else {
            tail_.envelope = {};
            tail_.left = gainLeft_;
            tail_.right = gainRight_;
            tail_.declickLeft = kDeclickFrames;
        }
        active_ = false;
    }

    std::int64_t requested = requestedPosition.load(std::memory_order_acquire);
    if (requested >= 0) {
        position.store(static_cast<std::uint64_t>(requested), std::memory_order_release);
        requestedPosition.compare_exchange_strong(requested, -1);
    }

    if (nowPlaying && !active_) {
        active_ = true;
        lastVolume_ = volume.load(std::memory_order_relaxed) + 1;  // recompute the target
        attack_ = {};
        UpdateTarget();
        const int c = attack.count.load(std::memory_order_acquire);
        if (started && c > 0) {
            attack_ = {&attack, c, attack.framesPerStep.load(std::memory_order_relaxed), 0};
            rampFrames_ = 0;
        } else {
            gainLeft_ = gainRight_ = 0.0f;
            rampFrames_ = kDeclickFrames;
            rampLeftStep_ = targetLeft_ / kDeclickFrames;
            rampRightStep_ = targetRight_ / kDeclickFrames;
        }
    }
}

bool SoundVoice::MainGains(int frames, const MixScratch& scratch) {
    if (!attack_.Active() && rampFrames_ == 0)
        return true;
    for (int k = 0; k < frames; ++k) {
        if (attack_.Active()) {
            const float g = attack_.GainAt(attack_.frame);
            ++attack_.frame;
            gainLeft_ = g * panLeft_;
            gainRight_ = g * panRight_;
            if (!attack_.Active()) {
                // The envelope is over: glide from its last value to the volume.
                attack_ = {};
                rampFrames_ = kRampFrames;
                rampLeftStep_ = (targetLeft_ - gainLeft_) / kRampFrames;
                rampRightStep_ = (targetRight_ - gainRight_) / kRampFrames;
            }
        } else if (rampFrames_ > 0) {
            gainLeft_ += rampLeftStep_;
            gainRight_ += rampRightStep_;
            if (--rampFrames_ == 0) {
                gainLeft_ = targetLeft_;
                gainRight_ = targetRight_;
            }
        }
        scratch.gainLeft[k] = gainLeft_;
        scratch.gainRight[k] = gainRight_;
    }
    return false;
}

void SoundVoice::RenderTail(float* accum, int frames, const MixScratch& scratch) {
    int m = 0;
    for (; m < frames; ++m) {
        if (tail_.envelope.Active()) {
            const float g = tail_.envelope.GainAt(tail_.envelope.frame);
            ++tail_.envelope.frame;
            scratch.gainLeft[m] = g * panLeft_;
            scratch.gainRight[m] = g * panRight_;
        } else if (tail_.declickLeft > 0) {
            const float f = static_cast<float>(tail_.declickLeft) / kDeclickFrames;
            --tail_.declickLeft;
            scratch.gainLeft[m] = tail_.left * f;
            scratch.gainRight[m] = tail_.right * f;
        } else {
            break;
        }
    }
    if (!tail_.envelope.Active())
        tail_.envelope = {};
    if (m == 0)
        return;
    tail_.position = ResampleAdd<false>(samples_.data(), frames_, tail_.position, tail_.step, m,
                                        accum, scratch.gainLeft, scratch.gainRight, 0.0f, 0.0f);
}

void SoundVoice::RecordCrossings(std::uint64_t start, std::uint64_t end) {
    const int count = notifyCount.load(std::memory_order_acquire);
    if (count == 0)
        return;
    const std::uint64_t ring = Bytes();
    const std::uint64_t s = (start >> 32) * kFrameBytes;
    const std::uint64_t e = (end >> 32) * kFrameBytes;
    if (e <= s)
        return;
    const bool all = e - s >= ring;
    bool any = false;
    for (int i = 0; i < count; ++i) {
        const std::uint64_t o = notifyOffset[i].load(std::memory_order_relaxed);
        if (all || (o >= s && o < e) || (o + ring >= s && o + ring < e)) {
            notifyPending[i].fetch_add(1, std::memory_order_relaxed);
            any = true;
        }
    }
    if (any)
        notifyFlag.store(1, std::memory_order_release);
}

void SoundVoice::Render(float* accum, int frames, int deviceRate, const MixScratch& scratch) {
    // The writer's samples up to its last unlock are visible from here on.
    static_cast<void>(ringWritten.load(std::memory_order_acquire));
    RenderPass(accum, frames, deviceRate, scratch);
    // This pass's reads of the ring are over before the writer's next lock.
    ringRead.store(++passes_, std::memory_order_release);
}

void SoundVoice::RenderPass(float* accum, int frames, int deviceRate, const MixScratch& scratch) {
    const std::uint32_t hz = frequency.load(std::memory_order_relaxed);
    const auto step =
        static_cast<std::uint64_t>(static_cast<double>(hz) / deviceRate * kFixedOne + 0.5);
    ApplyTransport(step);
    if (tail_.envelope.Active() || tail_.declickLeft > 0)
        RenderTail(accum, frames, scratch);
    if (!active_) {
        mixLead.store(0, std::memory_order_relaxed);
        return;
    }

    const std::uint64_t pos = position.load(std::memory_order_relaxed);
    const std::uint64_t end = static_cast<std::uint64_t>(frames_) << 32;
    int m = frames;
    bool ends = false;
    if (!looping.load(std::memory_order_relaxed)) {
        const std::uint64_t need = (end - pos + step - 1) / step;
        if (need <= static_cast<std::uint64_t>(frames)) {
            m = static_cast<int>(need);
            ends = true;
        }
    }

    UpdateTarget();
    const bool constant = MainGains(m, scratch);
    EffectChain* chain = effects.load(std::memory_order_acquire);
    const bool hasEffects = chain != nullptr && !chain->effects.empty();
    const std::int16_t* ring = samples_.data();
    std::uint64_t next;
    if (!hasEffects) {
        if (constant && gainLeft_ == 0.0f && gainRight_ == 0.0f) {
            next = (pos + static_cast<std::uint64_t>(m) * step) % end;  // silent: only advance
        } else if (constant) {
            next = ResampleAdd<true>(ring, frames_, pos, step, m, accum, nullptr, nullptr,
                                     gainLeft_, gainRight_);
        } else {
            next = ResampleAdd<false>(ring, frames_, pos, step, m, accum, scratch.gainLeft,
                                      scratch.gainRight, 0.0f, 0.0f);
        }
    } else {
        float* fx = scratch.effectFrames;
        std::fill(fx, fx + 2 * m, 0.0f);
        next = ResampleAdd<true>(ring, frames_, pos, step, m, fx, nullptr, nullptr, 1.0f, 1.0f);
        {
            const FlushDenormals flush;
            for (const auto& effect : chain->effects)
                effect->Process(fx, m, deviceRate);
        }
        for (int k = 0; k < m; ++k) {
            const float gl = constant ? gainLeft_ : scratch.gainLeft[k];
            const float gr = constant ? gainRight_ : scratch.gainRight[k];
            accum[2 * k] += fx[2 * k] * gl;
            accum[2 * k + 1] += fx[2 * k + 1] * gr;
        }
    }

    RecordCrossings(pos, pos + static_cast<std::uint64_t>(m) * step);
    position.store(ends ? 0 : next, std::memory_order_release);
    mixLead.store(static_cast<std::uint32_t>((step * static_cast<std::uint64_t>(frames)) >> 32),
                  std::memory_order_relaxed);
    if (ends) {
        if (playSeq.load(std::memory_order_acquire) == seenPlay_)
            playing.store(false, std::memory_order_release);
        active_ = false;
    }
}

}  // namespace sound
