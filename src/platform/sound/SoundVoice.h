// One streaming buffer as the mixer sees it: the samples, the parameters the
// user-interface thread sets through atomics, the notification table, and
// the mix thread's private playback state.
//
// Threads: the fields marked "UI" are written by the owning SoundBuffer on
// one non-audio thread and read by the mix; the mix writes `position`,
// `mixLead`, `ringRead`, the notification counters and (for a one-shot
// buffer that ends) `playing`. Render() runs on the mix thread only and never locks, allocates
// or calls the system.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/sound/SoundEffect.h"
#include "platform/sound/SoundTypes.h"

class SyncEvent;

namespace sound {

// An immutable list of effects, swapped as a whole (old lists are reclaimed
// once the mix can no longer see them).
struct EffectChain {
    std::vector<std::shared_ptr<SoundEffect>> effects;
};

// A volume envelope stored as amplitude factors, written by the UI before it
// announces a start or stop and read by the mix after it sees the announcement.
struct EnvelopeSlot {
    std::array<std::atomic<float>, kMaxEnvelopeSteps> gains{};
    std::atomic<int> count{0};
    std::atomic<int> framesPerStep{1};

    void Store(const VolumeEnvelope* envelope);
};

// Per-frame gain work space shared by all voices of one mix pass.
struct MixScratch {
    float* gainLeft;
    float* gainRight;
    float* effectFrames;  // interleaved stereo
};

class SoundVoice {
  public:
    // Allocates the samples (silent). Throws std::bad_alloc on failure.
    SoundVoice(std::uint32_t bytes, std::uint32_t frequency);

    std::uint32_t Bytes() const { return frames_ * kFrameBytes; }
    std::uint32_t Frames() const { return frames_; }
    std::uint8_t* Data() { return reinterpret_cast<std::uint8_t*>(samples_.data()); }

    // Mix thread: adds `frames` frames of this voice to `accum` (interleaved
    // stereo floats on the 16-bit scale) at `deviceRate` and records the
    // notification offsets the play cursor passed.
    void Render(float* accum, int frames, int deviceRate, const MixScratch& scratch);

    // UI: parameters (see SoundTypes.h for units).
    std::atomic<std::int32_t> volume{0};
    std::atomic<std::int32_t> pan{0};
    std::atomic<std::uint32_t> frequency;
    std::atomic<bool> playing{false};
    std::atomic<bool> looping{false};
    std::atomic<std::uint32_t> playSeq{0};  // +1 per start
    std::atomic<std::uint32_t> stopSeq{0};  // +1 per stop
    EnvelopeSlot attack;                    // used by the next start when count > 0
    EnvelopeSlot release;                   // used by the next stop when count > 0
    // Play position in frames, 32.32 fixed point; -1 when none is pending.
    std::atomic<std::int64_t> requestedPosition{-1};
    std::atomic<EffectChain*> effects{nullptr};

    // Notification table (set while the buffer is stopped).
    std::array<std::atomic<std::uint32_t>, kMaxNotifications> notifyOffset{};
    std::array<std::atomic<SyncEvent*>, kMaxNotifications> notifyEvent{};
    std::array<std::atomic<std::uint32_t>, kMaxNotifications> notifyPending{};
    std::atomic<int> notifyCount{0};
    std::atomic<std::uint32_t> notifyFlag{0};  // some notifyPending is nonzero

    // Mix: play position in frames, 32.32 fixed point, and how far (frames)
    // the last pass reached ahead of the cursor it started from.
    std::atomic<std::uint64_t> position{0};
    std::atomic<std::uint32_t> mixLead{0};

    // Hand-over of the sample memory in both directions. The writer bumps
    // `ringWritten` (release) when it unlocks what it wrote; every pass
    // acquires it before reading the ring, so samples written before an
    // unlock are complete when a later pass reads them. Every pass ends by
    // bumping `ringRead` (release); the writer acquires it when it locks, so
    // a pass's reads are over before the writer overwrites what it read.
    // Which bytes are safe to write is still the write-ahead distance's
    // business (the play and write cursors).
    std::atomic<std::uint32_t> ringWritten{0};
    std::atomic<std::uint32_t> ringRead{0};

  private:
    struct EnvelopeCursor {
        const EnvelopeSlot* slot = nullptr;
        int count = 0;
        int framesPerStep = 1;
        int frame = 0;
        bool Active() const { return slot != nullptr && frame < count * framesPerStep; }
        float GainAt(int f) const;
    };
    struct Tail {
        std::uint64_t position = 0;
        std::uint64_t step = 0;
        EnvelopeCursor envelope;
        float left = 0.0f, right = 0.0f;  // linear fade start (no envelope)
        int declickLeft = 0;
    };

    void RenderPass(float* accum, int frames, int deviceRate, const MixScratch& scratch);
    void ApplyTransport(std::uint64_t step);
    void UpdateTarget();
    // Fills per-frame gains of the playing voice; true when they are constant.
    bool MainGains(int frames, const MixScratch& scratch);
    void RenderTail(float* accum, int frames, const MixScratch& scratch);
    void RecordCrossings(std::uint64_t start, std::uint64_t end);

    std::vector<std::int16_t> samples_;
    std::uint32_t frames_;

    // Mix thread only.
    std::uint32_t seenPlay_ = 0, seenStop_ = 0;
    std::uint32_t passes_ = 0;  // passes rendered (what ringRead publishes)
    bool active_ = false;
    std::int32_t lastVolume_ = 1, lastPan_ = 1;  // force the first computation
    float panLeft_ = 1.0f, panRight_ = 1.0f;
    float targetLeft_ = 1.0f, targetRight_ = 1.0f;
    float gainLeft_ = 0.0f, gainRight_ = 0.0f;
    float rampLeftStep_ = 0.0f, rampRightStep_ = 0.0f;
    int rampFrames_ = 0;
    EnvelopeCursor attack_;
    Tail tail_;
};

}  // namespace sound
