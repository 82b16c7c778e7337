// The software mixer of one device: a fixed table of voices (streaming
// buffers) that the audio thread sums, the master gain after the sum, the
// notification dispatch, and the safe hand-over of voices between the
// user-interface thread and the audio thread.
//
// Threads:
//  - Mix() runs on the device's audio thread (or the caller's thread for a
//    manual-clock device): no locks, no allocation, no system calls.
//  - DispatchNotifications() runs on the notification service thread (or
//    right after a manual render) and sets the events.
//  - Everything else runs on user-interface threads; a mutex orders those
//    calls among themselves and is never taken by the audio thread.
// Released voices and effect chains are kept until no mix or dispatch pass
// can still hold them (ReaderGate), then freed on the UI side.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/sound/MixTap.h"
#include "platform/sound/ReaderGate.h"
#include "platform/sound/SoundStatus.h"
#include "platform/sound/SoundTypes.h"
#include "platform/sound/SoundVoice.h"

namespace sound {

class SoundMixer {
  public:
    static constexpr int kMaxVoices = 64;       // buffers per device
    static constexpr int kMaxMixFrames = 1024;  // frames per inner pass

    explicit SoundMixer(PrimaryFormat format);
    ~SoundMixer();  // the audio thread must have stopped calling Mix
    SoundMixer(const SoundMixer&) = delete;
    SoundMixer& operator=(const SoundMixer&) = delete;

    const PrimaryFormat& Format() const { return format_; }

    // UI: publishes a voice; the mixer owns it from now on.
    SoundStatus AddVoice(std::unique_ptr<SoundVoice> voice);
    // UI: unpublishes a voice; it is freed once no pass can hold it.
    void RemoveVoice(SoundVoice* voice);
    // UI: swaps a voice's effect chain (nullptr: none); the old one is retired.
    void SetEffects(SoundVoice* voice, std::unique_ptr<EffectChain> chain);
    // UI: frees retired objects no pass can hold any more.
    void Collect();

    // UI: gain after the mix, per channel, 0..100 percent of full amplitude.
    void SetMasterGain(int leftPercent, int rightPercent);

    // UI: the tap that is given every mixed span (nullptr: none). When it
    // returns, no mix pass is inside the previous tap any more, so that one
    // may be destroyed.
    void SetTap(MixTap* tap);

    // The 3D listener whose gains spread a mono mix over the two channels.
    SoundListener3D* Listener() { return &listener_; }

    // Audio thread: renders `frames` frames into `out`: interleaved 16-bit
    // stereo (a mono format puts the mono mix on both channels, times the
    // listener's left and right gains).
    void Mix(std::int16_t* out, int frames);

    // Service thread: sets the events of the notifications passed since the
    // last dispatch, once per crossing.
    void DispatchNotifications();

    // Frames rendered since creation (read by any thread).
    std::uint64_t FramesRendered() const { return rendered_.load(std::memory_order_relaxed); }

  private:
    struct Retired {
        std::shared_ptr<void> object;
        std::uint64_t mixSnapshot;
        std::uint64_t serviceSnapshot;
    };
    void RetireLocked(std::shared_ptr<void> object);
    void CollectLocked(bool all);

    PrimaryFormat format_;
    std::array<std::atomic<SoundVoice*>, kMaxVoices> slots_{};
    ReaderGate mixGate_;
    ReaderGate serviceGate_;
    std::atomic<float> masterLeft_{1.0f}, masterRight_{1.0f};
    std::atomic<std::uint64_t> rendered_{0};
    std::atomic<MixTap*> tap_{nullptr};

    // Audio thread only.
    std::vector<float> accum_, gainLeft_, gainRight_, effectFrames_;
    float appliedLeft_ = 1.0f, appliedRight_ = 1.0f;
    float masterTargetLeft_ = 1.0f, masterTargetRight_ = 1.0f;
    float masterStepLeft_ = 0.0f, masterStepRight_ = 0.0f;
    int masterRampFrames_ = 0;
    float listenerLeft_ = 1.0f, listenerRight_ = 1.0f;  // applied at the end of the last pass

    SoundListener3D listener_;

    // UI side, under uiMutex_.
    std::mutex uiMutex_;
    std::array<std::unique_ptr<SoundVoice>, kMaxVoices> owned_;
    std::vector<Retired> retired_;
};

}  // namespace sound
