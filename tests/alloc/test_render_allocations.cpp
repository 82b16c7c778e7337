// The render path allocates nothing: twelve looping voices on the real
// mixer, their playback frequencies moving on every render call, with
// volume, pan, start and stop envelopes and effect chains, are mixed for
// five seconds of audio on a thread marked as the audio thread, counting
// every operator new that thread makes inside Mix.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <numbers>
#include <thread>
#include <vector>

#include "CountingAllocator.h"
#include "core/SyncEvent.h"
#include "core/ThreadRole.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundMixer.h"
#include "platform/sound/SoundVoice.h"
#include "platform/sound/effects/EffectCatalog.h"
#include "platform/sound/effects/ParamEqEffect.h"

namespace {

using sound::SoundBuffer;
using sound::SoundMixer;

constexpr int kVoices = 12;
constexpr int kRate = 44100;
constexpr int kSeconds = 5;
// Render calls of uneven lengths, some longer than one inner mix pass.
constexpr int kCallFrames[] = {256, 512, 64, 1500, 1024, 333};

// A halving gain, standing in for the decks' effects.
class HalfGain : public sound::SoundEffect {
  public:
    void Process(float* frames, int frameCount, int) override {
        for (int i = 0; i < 2 * frameCount; ++i)
            frames[i] *= 0.5f;
    }
};

// True when the replaced operators see this thread's allocations (each form
// that the render path could reach is tried once).
bool CountingWorks() {
    // The pointers escape through here so no call can be left out.
    static void* volatile sink = nullptr;
    const std::uint64_t before = alloctest::CountedAllocations();
    {
        alloctest::AllocationCounting counting;
        void* p = ::operator new(16);
        sink = p;
        ::operator delete(p);
        p = ::operator new[](16);
        sink = p;
        ::operator delete[](p);
        p = ::operator new (64, std::align_val_t{64});
        sink = p;
        ::operator delete (p, std::align_val_t{64});
        p = ::operator new(16, std::nothrow);
        sink = p;
        ::operator delete(p);
    }
    static_cast<void>(sink);
    return alloctest::CountedAllocations() - before == 4;
}

void FillSine(SoundBuffer& b, double cycles) {
    sound::LockedRegion r;
    ASSERT_EQ(b.Lock(0, b.SizeBytes(), &r), kStatusOk);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    const std::uint32_t frames = b.SizeBytes() / sound::kFrameBytes;
    for (std::uint32_t i = 0; i < frames; ++i) {
        const double v = 8000.0 * std::sin(2.0 * std::numbers::pi * cycles * i / frames);
        s[2 * i] = static_cast<std::int16_t>(v);
        s[2 * i + 1] = static_cast<std::int16_t>(-v);
    }
    ASSERT_EQ(b.Unlock(r), kStatusOk);
}

TEST(RenderAllocations, TheCounterSeesEveryForm) {
    EXPECT_TRUE(CountingWorks());
    // Other threads, and this one outside a counting scope, are not counted.
    const std::uint64_t before = alloctest::CountedAllocations();
    std::vector<int> outside(100);
    std::thread([] { std::vector<int> elsewhere(100); }).join();
    EXPECT_EQ(alloctest::CountedAllocations(), before);
}

TEST(RenderAllocations, MixingTwelveMovingVoicesAllocatesNothing) {
    auto mixer = std::make_shared<SoundMixer>(sound::PrimaryFormatFor(false));
    std::vector<SyncEvent> events(kVoices);  // outlive the buffers
    std::vector<std::unique_ptr<SoundBuffer>> buffers;
    std::vector<std::uint32_t> baseHz;
    for (int i = 0; i < kVoices; ++i) {
        const std::uint32_t hz = 22050 + 4000 * static_cast<std::uint32_t>(i);
        auto voice = std::make_unique<sound::SoundVoice>(16384 + 4096 * i, hz);
        sound::SoundVoice* raw = voice.get();
        ASSERT_EQ(mixer->AddVoice(std::move(voice)), kStatusOk);
        buffers.push_back(std::make_unique<SoundBuffer>(mixer, raw));
        baseHz.push_back(hz);
        SoundBuffer& b = *buffers.back();
        FillSine(b, 3.0 + i);
        ASSERT_EQ(b.SetVolume(-300 * i), kStatusOk);
        ASSERT_EQ(b.SetPan(-6000 + 1000 * i), kStatusOk);
        const sound::NotificationPosition half{b.SizeBytes() / 2, &events[i]};
        ASSERT_EQ(b.SetNotificationPositions(&half, 1), kStatusOk);
        if (i == 0) {
            // Every deck effect and an equalizer band, in one chain.
            std::vector<std::shared_ptr<sound::SoundEffect>> chain;
            for (const auto& spec : sound::fx::EffectList())
                if (auto e = sound::fx::CreateEffect(spec.kind))
                    chain.push_back(e);
            auto band = std::make_shared<sound::fx::ParamEqEffect>();
            band->SetParameters({1000.0f, 12.0f, 6.0f});
            chain.push_back(band);
            ASSERT_EQ(b.SetEffects(chain), kStatusOk);
        } else if (i % 4 == 0) {
            ASSERT_EQ(b.SetEffects({std::make_shared<HalfGain>()}), kStatusOk);
        }
        ASSERT_EQ(b.Play(true), kStatusOk);
    }
    mixer->SetMasterGain(90, 80);

    const bool counts = CountingWorks();
    std::uint64_t counted = 0;
    std::int64_t energy = 0;
    std::uint64_t framesDone = 0;
    std::thread audio([&] {
        MarkAudioThread();
        const std::int32_t fade[] = {-4000, -2000, -1000, 0};
        const sound::VolumeEnvelope envelope{fade, 4, 64};
        std::vector<std::int16_t> out(2 * 1500);
        const std::uint64_t before = alloctest::CountedAllocations();
        int call = 0;
        while (framesDone < static_cast<std::uint64_t>(kSeconds) * kRate) {
            // The user-interface side's work between two device callbacks:
            // every frequency moves, and now and then a fader, a pan knob,
            // the master gain or a voice's start and stop.
            const double t = static_cast<double>(framesDone) / kRate;
            for (int i = 0; i < kVoices; ++i) {
                const double wobble = 1.0 + 0.3 * std::sin(2.0 * t + i);
                buffers[i]->SetFrequency(static_cast<std::uint32_t>(baseHz[i] * wobble));
            }
            if (call % 7 == 0)
                buffers[call % kVoices]->SetVolume(-100 * (call % 30));
            if (call % 11 == 0)
                buffers[call % kVoices]->SetPan(1000 * (call % 21) - 10000);
            if (call % 13 == 0)
                mixer->SetMasterGain(60 + call % 40, 100 - call % 40);
            if (call % 17 == 0) {
                SoundBuffer& b = *buffers[(call / 17) % kVoices];
                if (b.IsPlaying())
                    b.Stop(&envelope);
                else
                    b.Play(true, &envelope);
            }

            const int frames = kCallFrames[call % std::size(kCallFrames)];
            {
                alloctest::AllocationCounting counting;
                mixer->Mix(out.data(), frames);
            }
            for (int k = 0; k < 2 * frames; ++k)
                energy += std::abs(static_cast<int>(out[k]));
            framesDone += static_cast<std::uint64_t>(frames);
            ++call;
        }
        counted = alloctest::CountedAllocations() - before;
    });
    audio.join();

    EXPECT_EQ(mixer->FramesRendered(), framesDone);
    EXPECT_GT(energy, 0) << "the voices were heard";
#if defined(__SANITIZE_ADDRESS__)
    if (!counts) {
        GTEST_SKIP() << "AddressSanitizer's allocator bypasses the counting operators here, "
                        "so the allocation count says nothing (the mix itself ran)";
    }
#endif
    ASSERT_TRUE(counts) << "the counting operators must see this program's allocations";
    EXPECT_EQ(counted, 0u) << "operator new calls on the render path";
}

}  // namespace
