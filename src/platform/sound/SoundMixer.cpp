#include "platform/sound/SoundMixer.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "core/SyncEvent.h"
#include "core/ThreadRole.h"

namespace sound {

namespace {
constexpr int kMasterRampFrames = 256;  // master gain glides over 5.8 ms at 44100 Hz

std::int16_t ToSample(float v) {
    const float r = std::nearbyint(v);
    if (r >= 32767.0f)
        return 32767;
    if (r <= -32768.0f)
        return -32768;
    return static_cast<std::int16_t>(r);
}
}  // namespace

SoundMixer::SoundMixer(PrimaryFormat format)
    : format_(format),
      accum_(2 * kMaxMixFrames),
      gainLeft_(kMaxMixFrames),
      gainRight_(kMaxMixFrames),
      effectFrames_(2 * kMaxMixFrames) {}

SoundMixer::~SoundMixer() {
    for (auto& s : slots_)
        s.store(nullptr);
    EffectChain* chains[kMaxVoices] = {};
    for (int i = 0; i < kMaxVoices; ++i)
        if (owned_[i])
            chains[i] = owned_[i]->effects.exchange(nullptr);
    for (EffectChain* c : chains)
        delete c;
}

SoundStatus SoundMixer::AddVoice(std::unique_ptr<SoundVoice> voice) {
    AssertNotAudioThread("SoundMixer::AddVoice");
    std::lock_guard lock(uiMutex_);
    CollectLocked(false);
    for (int i = 0; i < kMaxVoices; ++i) {
        if (owned_[i] == nullptr && slots_[i].load() == nullptr) {
            SoundVoice* raw = voice.get();
            owned_[i] = std::move(voice);
            slots_[i].store(raw);
            return kStatusOk;
        }
    }
    return kStatusOutOfResources;
}

void SoundMixer::RemoveVoice(SoundVoice* voice) {
    AssertNotAudioThread("SoundMixer::RemoveVoice");
    if (voice == nullptr)
        return;
    std::lock_guard lock(uiMutex_);
    for (int i = 0; i < kMaxVoices; ++i) {
        if (owned_[i].get() != voice)
            continue;
        slots_[i].store(nullptr);
        EffectChain* chain = voice->effects.exchange(nullptr);
        if (chain)
            RetireLocked(std::shared_ptr<EffectChain>(chain));
        RetireLocked(std::shared_ptr<SoundVoice>(std::move(owned_[i])));
        break;
    }
    CollectLocked(false);
}

void SoundMixer::SetEffects(SoundVoice* voice, std::unique_ptr<EffectChain> chain) {
    AssertNotAudioThread("SoundMixer::SetEffects");
    std::lock_guard lock(uiMutex_);
    EffectChain* old = voice->effects.exchange(chain.release());
    if (old)
        RetireLocked(std::shared_ptr<EffectChain>(old));
    CollectLocked(false);
}

void SoundMixer::Collect() {
    AssertNotAudioThread("SoundMixer::Collect");
    std::lock_guard lock(uiMutex_);
    CollectLocked(false);
}

void SoundMixer::RetireLocked(std::shared_ptr<void> object) {
    // Snapshots are taken after the object was unpublished (sequentially
    // consistent), see ReaderGate.
    retired_.push_back({std::move(object), mixGate_.Snapshot(), serviceGate_.Snapshot()});
}

void SoundMixer::CollectLocked(bool all) {
    auto gone = [&](const Retired& r) {
        return all || (mixGate_.Passed(r.mixSnapshot) && serviceGate_.Passed(r.serviceSnapshot));
    };
    retired_.erase(std::remove_if(retired_.begin(), retired_.end(), gone), retired_.end());
}

void SoundMixer::SetMasterGain(int leftPercent, int rightPercent) {
    masterLeft_.store(std::clamp(leftPercent, 0, 100) / 100.0f, std::memory_order_relaxed);
    masterRight_.store(std::clamp(rightPercent, 0, 100) / 100.0f, std::memory_order_relaxed);
}

void SoundMixer::SetTap(MixTap* tap) {
    AssertNotAudioThread("SoundMixer::SetTap");
    tap_.store(tap);
    // A pass that may still hold the old tap ends within one period.
    const std::uint64_t snapshot = mixGate_.Snapshot();
    while (!mixGate_.Passed(snapshot))
        std::this_thread::yield();
}

void SoundMixer::Mix(std::int16_t* out, int frames) {
    mixGate_.Enter();
    std::int16_t* const first = out;
    const int total = frames;
    const MixScratch scratch{gainLeft_.data(), gainRight_.data(), effectFrames_.data()};
    while (frames > 0) {
        const int n = std::min(frames, kMaxMixFrames);
        float* accum = accum_.data();
        std::fill(accum, accum + 2 * n, 0.0f);
        for (auto& slot : slots_) {
            SoundVoice* v = slot.load();
            if (v)
                v->Render(accum, n, format_.rate, scratch);
        }

        // Master gain, gliding in a straight line towards a new setting.
        const float targetL = masterLeft_.load(std::memory_order_relaxed);
        const float targetR = masterRight_.load(std::memory_order_relaxed);
        if (targetL != masterTargetLeft_ || targetR != masterTargetRight_) {
            masterTargetLeft_ = targetL;
            masterTargetRight_ = targetR;
            masterRampFrames_ = kMasterRampFrames;
            masterStepLeft_ = (targetL - appliedLeft_) / kMasterRampFrames;
            masterStepRight_ = (targetR - appliedRight_) / kMasterRampFrames;
        }
        // The listener's gains glide across the pass from where the last one ended.
        const float listenerL = listener_.gainLeft.load(std::memory_order_relaxed);
        const float listenerR = listener_.gainRight.load(std::memory_order_relaxed);
        const float stepL = (listenerL - listenerLeft_) / static_cast<float>(n);
        const float stepR = (listenerR - listenerRight_) / static_cast<float>(n);
        for (int k = 0; k < n; ++k) {
            if (masterRampFrames_ > 0) {
                appliedLeft_ += masterStepLeft_;
                appliedRight_ += masterStepRight_;
                if (--masterRampFrames_ == 0) {
                    appliedLeft_ = masterTargetLeft_;
                    appliedRight_ = masterTargetRight_;
                }
            }
            const float l = accum[2 * k] * appliedLeft_;
            const float r = accum[2 * k + 1] * appliedRight_;
            if (format_.channels == 2) {
                out[2 * k] = ToSample(l);
                out[2 * k + 1] = ToSample(r);
            } else {
                const float m = 0.5f * (l + r);
                const float t = static_cast<float>(k + 1);
                out[2 * k] = ToSample(m * (listenerLeft_ + stepL * t));
                out[2 * k + 1] = ToSample(m * (listenerRight_ + stepR * t));
            }
        }
        listenerLeft_ = listenerL;
        listenerRight_ = listenerR;
        out += static_cast<std::ptrdiff_t>(2 * n);
        frames -= n;
        rendered_.fetch_add(static_cast<std::uint64_t>(n), std::memory_order_relaxed);
    }
    if (MixTap* tap = tap_.load(std::memory_order_acquire); tap != nullptr && total > 0)
        tap->OnMixed(first, total);
    mixGate_.Leave();
}

void SoundMixer::DispatchNotifications() {
    serviceGate_.Enter();
    for (auto& slot : slots_) {
        SoundVoice* v = slot.load();
        if (v == nullptr || v->notifyFlag.exchange(0, std::memory_order_acquire) == 0)
            continue;
        const int count = v->notifyCount.load(std::memory_order_acquire);
        for (int i = 0; i < count; ++i) {
            if (v->notifyPending[i].exchange(0, std::memory_order_relaxed) == 0)
                continue;
            if (SyncEvent* e = v->notifyEvent[i].load(std::memory_order_relaxed))
                e->Set();
        }
    }
    serviceGate_.Leave();
}

}  // namespace sound
