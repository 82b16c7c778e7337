// The file decoder on real files: WAV in every sample format bit-exact
// against its data chunk, MP3 / WMA / OGG (and FLAC, Opus, M4A) against the
// ffmpeg program's own decoding, sample rates kept, bad files refused.
#include <gtest/gtest.h>

#include <QFile>
#include <algorithm>
#include <cstdlib>

#include "FileDecoderTestUtil.h"
#include "TestSupport.h"
#include "core/EngineState.h"
#include "platform/media/MediaFixtures.h"
#include "platform/media/NullMediaSource.h"
#include "sources/CRynFileDecoder.h"
#include "sources/StereoConvert.h"

using filedecodertest::ReadToEnd;
using testsupport::MakeTone;

TEST(FileDecoder, WavBlocksAreBitExactInEveryFormat) {
    ResetEngineStateForTest();  // no deck window: ends are not continued
    struct Case {
        const char* name;
        int rate, channels;
        QStringList args;
        int bits, blockBytes;
    };
    const std::vector<Case> cases = {
        {"fd_s16_stereo.wav", 44100, 2, {"-c:a", "pcm_s16le"}, 16, 4704},
        {"fd_s16_mono.wav", 44100, 1, {"-c:a", "pcm_s16le"}, 16, 2352},
        {"fd_u8_stereo.wav", 44100, 2, {"-c:a", "pcm_u8"}, 8, 2352},
        {"fd_u8_mono.wav", 22050, 1, {"-c:a", "pcm_u8"}, 8, 1176},
        {"fd_s24_stereo_48k.wav", 48000, 2, {"-c:a", "pcm_s24le"}, 24, 9408},
        {"fd_s32_mono.wav", 44100, 1, {"-c:a", "pcm_s32le"}, 32, 4704},
        {"fd_f32_stereo_48k.wav", 48000, 2, {"-c:a", "pcm_f32le"}, 32, 9408},
        // A loud float file: samples beyond full scale are clipped.
        {"fd_f32_loud.wav", 44100, 2, {"-af", "volume=2.5", "-c:a", "pcm_f32le"}, 32, 9408},
        // 24 bits with detail below 16 bits, so that rounding shows.
        {"fd_s24_quiet.wav", 44100, 1, {"-af", "volume=0.013", "-c:a", "pcm_s24le"}, 24, 4704},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = MakeTone(c.name, 1000, 1.1, c.rate, c.channels, c.args);
        ASSERT_FALSE(path.isEmpty());
        mediafixtures::WavData wav;
        ASSERT_TRUE(mediafixtures::ReadWav(path, &wav));

        CRynFileDecoder d;
        ASSERT_TRUE(d.Open(path.toStdString()));
        EXPECT_EQ(d.SampleRate(), c.rate);
        EXPECT_EQ(d.Channels(), c.channels);
        EXPECT_EQ(d.BitsPerSample(), c.bits);
        EXPECT_EQ(d.BlockBytes(), c.blockBytes);
        EXPECT_EQ(d.FileName(), path.toStdString());
        EXPECT_NEAR(d.DurationSeconds(), 1.1, 0.001);
        EXPECT_EQ(d.TotalBytes(), 176400);  // one whole second

        const auto s = ReadToEnd(d);
        const std::vector<std::int16_t> expected = mediafixtures::ExpectedStereo16(wav);
        ASSERT_EQ(s.samples.size(), expected.size());
        EXPECT_TRUE(s.samples == expected);
        EXPECT_TRUE(s.paddedWithZeros);
        EXPECT_FALSE(d.IsOpen());  // closed itself at the end
        EXPECT_EQ(d.FileName(), path.toStdString());
    }
}

TEST(FileDecoder, CompressedFilesMatchFfmpegsDecoding) {
    ResetEngineStateForTest();
    struct Case {
        const char* name;
        int rate, channels;
        QStringList args;
    };
    const std::vector<Case> cases = {
        {"fd_tone.mp3", 44100, 2, {"-c:a", "libmp3lame", "-b:a", "192k"}},
        {"fd_tone_mono.mp3", 44100, 1, {"-c:a", "libmp3lame"}},
        {"fd_tone_48k.mp3", 48000, 2, {"-c:a", "libmp3lame"}},
        {"fd_tone.wma", 44100, 2, {"-c:a", "wmav2"}},
        {"fd_tone.ogg", 44100, 2, {"-c:a", "libvorbis"}},
        {"fd_tone_48k.ogg", 48000, 2, {"-c:a", "libvorbis"}},
        {"fd_tone.flac", 44100, 2, {"-c:a", "flac"}},
        {"fd_tone.opus", 48000, 2, {"-c:a", "libopus"}},
        {"fd_tone.m4a", 44100, 2, {"-c:a", "aac"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = MakeTone(c.name, 1000, 3, c.rate, c.channels, c.args);
        ASSERT_FALSE(path.isEmpty());
        CRynFileDecoder d;
        ASSERT_TRUE(d.Open(path.toStdString()));
        EXPECT_EQ(d.SampleRate(), c.rate);
        EXPECT_EQ(d.Channels(), c.channels);
        // Encoders pad a little: the duration is a bit over 3 s.
        EXPECT_GE(d.DurationSeconds(), 2.99);
        EXPECT_LT(d.DurationSeconds(), 3.1);

        const auto s = ReadToEnd(d);
        std::vector<std::int16_t> ref = mediafixtures::FfmpegDecodeS16(path, c.channels);
        if (c.channels == 1) {
            std::vector<std::int16_t> stereo(ref.size() * 2);
            for (std::size_t i = 0; i < ref.size(); ++i)
                stereo[2 * i] = stereo[2 * i + 1] = ref[i];
            ref.swap(stereo);
        }
        ASSERT_EQ(s.samples.size(), ref.size());
        int worst = 0;
        for (std::size_t i = 0; i < ref.size(); ++i)
            worst = std::max(worst, std::abs(int(s.samples[i]) - int(ref[i])));
        EXPECT_LE(worst, 1);
        EXPECT_TRUE(s.paddedWithZeros);
        EXPECT_EQ(s.lastBytes, int(ref.size() * 2) % kBlockBytes);
    }
}

TEST(FileDecoder, ConversionRoundsAndClips) {
    media::PcmFormat f;
    std::int16_t out[8];
    f.channels = 2;
    f.type = media::SampleType::F32;
    const float floats[] = {1.5f,
                            -1.5f,
                            0.5f / 32768,
                            -0.49f / 32768,
                            32766.6f / 32768,
                            -1.0f,
                            std::numeric_limits<float>::quiet_NaN(),
                            1.0f};
    stereoconvert::ConvertToStereo16(reinterpret_cast<const std::uint8_t*>(floats), f, 4, out);
    const std::int16_t want[] = {32767, -32768, 0, 0, 32767, -32768, 0, 32767};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(out[i], want[i]) << i;

    f.type = media::SampleType::S32;
    const std::int32_t ints[] = {0x7FFFFFFF,  std::int32_t(0x80000000),
                                 0x00008000,  0x00007FFF,
                                 -0x00008000, -0x00008001,
                                 0x12345678,  0};
    stereoconvert::ConvertToStereo16(reinterpret_cast<const std::uint8_t*>(ints), f, 4, out);
    const std::int16_t want32[] = {32767, -32768, 1, 0, 0, -1, 0x1234, 0};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(out[i], want32[i]) << i;

    f.channels = 1;
    f.type = media::SampleType::U8;
    const std::uint8_t bytes[] = {0, 128, 255, 129};
    stereoconvert::ConvertToStereo16(bytes, f, 4, out);
    const std::int16_t want8[] = {-32768, -32768, 0, 0, 32512, 32512, 256, 256};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(out[i], want8[i]) << i;
}

TEST(FileDecoder, BadFilesAreRefusedQuietly) {
    ResetEngineStateForTest();
    CRynFileDecoder d;
    std::uint8_t block[kBlockBytes];
    int bytes = 0;
    bool end = false;
    // Never opened: zero times, nothing to read.
    EXPECT_EQ(d.DurationSeconds(), 0.0);
    EXPECT_EQ(d.ElapsedSeconds(), 0.0);
    EXPECT_EQ(d.SampleRate(), 44100);
    EXPECT_EQ(d.ReadBlock(block, bytes, end), CRynFileDecoder::kUnexpected);
    EXPECT_EQ(CRynFileDecoder::kUnexpected, std::int32_t(0x8000FFFF));

    EXPECT_FALSE(d.Open(""));
    EXPECT_FALSE(d.Open("/nonexistent/mixora/track.mp3"));
    EXPECT_FALSE(d.Open(testsupport::FixtureDir().toStdString()));
    EXPECT_FALSE(d.Open(mediafixtures::TextFile("fd_readme.wav", "not a sound\n").toStdString()));
    EXPECT_FALSE(d.Open("/dev/null"));
    EXPECT_FALSE(d.IsOpen());
    EXPECT_EQ(d.ReadBlock(block, bytes, end), CRynFileDecoder::kUnexpected);
    d.Rewind(3);
    d.SeekFraction(0.5f);
    EXPECT_EQ(d.ElapsedSeconds(), 0.0);

    // A WAV cut short of what its header promises plays what is there.
    const QString full = MakeTone("fd_cut_src.wav", 440, 2, 44100, 2, {"-c:a", "pcm_s16le"});
    QFile header(full);
    ASSERT_TRUE(header.open(QIODevice::ReadOnly));
    const qint64 dataStart = header.read(4096).indexOf("data") + 8;
    const QString cut = mediafixtures::Truncated(full, "fd_cut.wav", dataStart + 4 * 30000 + 2);
    ASSERT_TRUE(d.Open(cut.toStdString()));
    auto s = filedecodertest::ReadToEnd(d);
    EXPECT_EQ(s.samples.size(), 2u * 30000);
    EXPECT_TRUE(s.paddedWithZeros);

    // A media layer that cannot open anything.
    auto* null = new media::NullMediaSource;
    CRynFileDecoder failing{std::unique_ptr<media::MediaSource>(null)};
    EXPECT_FALSE(failing.Open(full.toStdString()));
    EXPECT_EQ(null->openAttempts, 1);
    EXPECT_EQ(failing.ReadBlock(block, bytes, end), CRynFileDecoder::kUnexpected);
    EXPECT_EQ(failing.DurationSeconds(), 0.0);
}
