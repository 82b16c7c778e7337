// Recording adds nothing to the render path's allocations: the real mixer
// with a playing voice and the mix recorder as its tap is mixed for five
// seconds on a thread marked as the audio thread, while the recorder's
// writer thread drains the ring into a file; operator new is never called by
// the audio thread inside Mix, and every frame reaches the file.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "CountingAllocator.h"
#include "core/ThreadRole.h"
#include "output/engine/MixRecorder.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundDevice.h"
#include "platform/sound/SoundMixer.h"
#include "platform/sound/SoundVoice.h"

TEST(RecordAllocations, MixingIntoTheRecorderAllocatesNothing) {
    auto mixer = std::make_shared<sound::SoundMixer>(sound::PrimaryFormatFor(false));
    auto voice = std::make_unique<sound::SoundVoice>(4 * 44100, 44100);
    sound::SoundVoice* raw = voice.get();
    ASSERT_EQ(mixer->AddVoice(std::move(voice)), kStatusOk);
    sound::SoundBuffer buffer(mixer, raw);
    sound::LockedRegion r;
    ASSERT_EQ(buffer.Lock(0, buffer.SizeBytes(), &r), kStatusOk);
    auto* s = reinterpret_cast<std::int16_t*>(r.first);
    for (std::uint32_t i = 0; i < buffer.SizeBytes() / 2; ++i)
        s[i] = static_cast<std::int16_t>((i * 7919u) & 0x7fff);
    ASSERT_EQ(buffer.Unlock(r), kStatusOk);
    ASSERT_EQ(buffer.Play(true), kStatusOk);

    const std::string path =
        (std::filesystem::temp_directory_path() / "mixora-record-allocations.wav").string();
    MixRecorder recorder;
    std::string error;
    ASSERT_TRUE(recorder.Start(path, MixRecorder::Format::Wav, 44100, &error)) << error;
    mixer->SetTap(&recorder);

    constexpr std::uint64_t kFrames = 5 * 44100;
    std::uint64_t counted = 0;
    std::thread audio([&] {
        MarkAudioThread();
        std::vector<std::int16_t> out(2 * 512);
        const std::uint64_t before = alloctest::CountedAllocations();
        for (std::uint64_t done = 0; done < kFrames; done += 441) {
            alloctest::AllocationCounting counting;
            mixer->Mix(out.data(), 441);
        }
        counted = alloctest::CountedAllocations() - before;
    });
    audio.join();
    mixer->SetTap(nullptr);
    recorder.Stop();

    EXPECT_EQ(counted, 0u) << "operator new calls on the render path";
    EXPECT_EQ(recorder.LostFrames(), 0u);
    EXPECT_EQ(recorder.FramesWritten(), mixer->FramesRendered());
    SF_INFO info{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &info);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(static_cast<std::uint64_t>(info.frames), mixer->FramesRendered());
    sf_close(f);
    std::filesystem::remove(path);
}
