// The recorder on a real device mixer (the manual-clock Null device): what
// the device renders arrives in the file unchanged, as WAV and as FLAC; a
// ring too small for a burst counts what it lost; a folder that cannot be
// written refuses the file; a disk that fills up stops the writer with a
// message and leaves a valid file of what was written.
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/resource.h>

#include <QTemporaryDir>
#include <csignal>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/engine/MixRecorder.h"
#include "platform/sound/SoundBuffer.h"
#include "platform/sound/SoundDevice.h"

namespace {

using testsupport::WaitFor;

// A manual-clock output with one looping voice of pseudo-random noise.
struct NoiseOutput {
    NoiseOutput() {
        output.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0);
        sound::BufferDesc desc;
        desc.bytes = 4 * 44100;
        EXPECT_EQ(output.Device()->CreateBuffer(desc, &voice), kStatusOk);
        sound::LockedRegion r;
        EXPECT_EQ(voice->Lock(0, desc.bytes, &r), kStatusOk);
        auto* s = reinterpret_cast<std::int16_t*>(r.first);
        std::uint32_t x = 2463534242u;
        for (std::uint32_t i = 0; i < desc.bytes / 2; ++i) {
            x ^= x << 13;
            x ^= x >> 17;
            x ^= x << 5;
            s[i] = static_cast<std::int16_t>(x >> 16);
        }
        EXPECT_EQ(voice->Unlock(r), kStatusOk);
        EXPECT_EQ(voice->Play(true), kStatusOk);
    }
    // Renders `frames` frames in uneven calls and keeps them.
    void Render(int frames) {
        static constexpr int kCalls[] = {256, 1176, 64, 3000, 441};
        for (int i = 0; frames > 0; ++i) {
            const int n = std::min(frames, kCalls[i % 5]);
            std::vector<std::int16_t> chunk(2 * static_cast<std::size_t>(n));
            ASSERT_TRUE(output.Device()->Render(n, chunk.data()));
            rendered.insert(rendered.end(), chunk.begin(), chunk.end());
            frames -= n;
        }
    }
    CRynAudioOutput output;
    std::unique_ptr<sound::SoundBuffer> voice;
    std::vector<std::int16_t> rendered;
};

std::vector<std::int16_t> ReadAll(const std::string& path, SF_INFO* info) {
    *info = SF_INFO{};
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, info);
    if (f == nullptr)
        return {};
    std::vector<std::int16_t> pcm(static_cast<std::size_t>(info->frames) * 2);
    const sf_count_t got = sf_readf_short(f, pcm.data(), info->frames);
    sf_close(f);
    pcm.resize(static_cast<std::size_t>(got) * 2);
    return pcm;
}

}  // namespace

TEST(MixRecorder, TheFileHoldsExactlyWhatTheDeviceRendered) {
    QTemporaryDir dir;
    for (MixRecorder::Format format : {MixRecorder::Format::Wav, MixRecorder::Format::Flac}) {
        NoiseOutput out;
        out.Render(5000);  // before the recording: not in the file
        out.rendered.clear();
        MixRecorder recorder;
        const std::string path =
            (dir.path() + "/mix." + MixRecorder::Extension(format)).toStdString();
        std::string error;
        ASSERT_TRUE(recorder.Start(path, format, 44100, &error)) << error;
        out.output.SetMixTap(&recorder);
        out.Render(3 * 44100 + 17);
        out.output.SetMixTap(nullptr);
        out.Render(2000);  // after: not in the file either
        out.rendered.resize(2 * (3 * 44100 + 17));
        recorder.Stop();
        EXPECT_FALSE(recorder.Recording());
        EXPECT_EQ(recorder.LostFrames(), 0u);
        EXPECT_EQ(recorder.FramesTaken(), 3u * 44100 + 17);
        EXPECT_EQ(recorder.FramesWritten(), 3u * 44100 + 17);

        SF_INFO info;
        const std::vector<std::int16_t> file = ReadAll(path, &info);
        EXPECT_EQ(info.samplerate, 44100);
        EXPECT_EQ(info.channels, 2);
        EXPECT_EQ(info.format, MixRecorder::SndFormat(format));
        ASSERT_EQ(file.size(), out.rendered.size());
        EXPECT_TRUE(file == out.rendered) << MixRecorder::Extension(format);
    }
}

TEST(MixRecorder, TheTapFollowsTheOutputToANewDevice) {
    QTemporaryDir dir;
    NoiseOutput out;
    MixRecorder recorder;
    std::string error;
    ASSERT_TRUE(recorder.Start((dir.path() + "/follow.wav").toStdString(), MixRecorder::Format::Wav,
                               44100, &error));
    out.output.SetMixTap(&recorder);
    out.Render(1000);
    // The device is replaced (a lost device goes to the Null device): the
    // old one is closed without the tap, the new one carries it.
    out.voice.reset();
    out.output.OpenDevice(sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), 0);
    std::vector<std::int16_t> silence(2 * 500);
    ASSERT_TRUE(out.output.Device()->Render(500, silence.data()));
    out.output.SetMixTap(nullptr);
    recorder.Stop();
    EXPECT_EQ(recorder.FramesWritten(), 1500u);
}

TEST(MixRecorder, ABurstLargerThanTheRingIsCountedLostNotDroppedSilently) {
    QTemporaryDir dir;
    NoiseOutput out;
    MixRecorder recorder(2048);
    std::string error;
    ASSERT_TRUE(recorder.Start((dir.path() + "/burst.wav").toStdString(), MixRecorder::Format::Wav,
                               44100, &error));
    out.output.SetMixTap(&recorder);
    // One render call of 10000 frames: the ring takes 2048, the rest is lost.
    std::vector<std::int16_t> big(2 * 10000);
    ASSERT_TRUE(out.output.Device()->Render(10000, big.data()));
    EXPECT_GE(recorder.LostFrames(), 10000u - 2048u);
    out.output.SetMixTap(nullptr);
    recorder.Stop();
    EXPECT_EQ(recorder.FramesTaken(), 10000u);
    EXPECT_EQ(recorder.FramesWritten() + recorder.LostFrames(), 10000u);
    SF_INFO info;
    const std::vector<std::int16_t> file = ReadAll(dir.path().toStdString() + "/burst.wav", &info);
    ASSERT_EQ(file.size(), 2 * recorder.FramesWritten());
    EXPECT_TRUE(std::equal(file.begin(), file.end(), big.begin()));  // the first frames, in order
}

TEST(MixRecorder, AFolderThatCannotBeWrittenRefusesTheFile) {
    MixRecorder recorder;
    std::string error;
    EXPECT_FALSE(recorder.Start("/nonexistent-folder-of-mixora/mix.wav", MixRecorder::Format::Wav,
                                44100, &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(recorder.Recording());
    recorder.Stop();  // nothing to stop
}

TEST(MixRecorder, AFullDiskStopsTheWriterAndKeepsAValidFile) {
    QTemporaryDir dir;
    const std::string path = (dir.path() + "/full.wav").toStdString();
    NoiseOutput out;
    MixRecorder recorder;
    std::string error;
    ASSERT_TRUE(recorder.Start(path, MixRecorder::Format::Wav, 44100, &error)) << error;
    out.output.SetMixTap(&recorder);

    // The file may not grow past 200 000 bytes: writes beyond fail as on a
    // full disk (the signal that comes with it is ignored).
    constexpr rlim_t kLimit = 200'000;
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = saved;
    small.rlim_cur = kLimit;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    for (int i = 0; i < 200 && !recorder.Failed(); ++i) {
        out.Render(4410);
        WaitFor([&] { return recorder.Failed(); }, 25);
    }
    const bool failed = recorder.Failed();
    out.output.SetMixTap(nullptr);
    recorder.Stop();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    ASSERT_TRUE(failed);
    EXPECT_FALSE(recorder.Error().empty());
    SF_INFO info;
    const std::vector<std::int16_t> file = ReadAll(path, &info);
    EXPECT_EQ(info.channels, 2);
    EXPECT_GT(info.frames, 40000);  // most of what fitted is there
    EXPECT_LE(info.frames * 4, static_cast<sf_count_t>(kLimit));
    ASSERT_EQ(file.size(), 2 * static_cast<std::size_t>(info.frames));
    EXPECT_TRUE(std::equal(file.begin(), file.end(), out.rendered.begin()));
}
