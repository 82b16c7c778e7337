// The FFmpeg media layer on files generated at test time: formats reported,
// PCM bit-exact against the WAV data chunk, sample-exact seeks in every
// codec, and bad files refused without harm.
#include <gtest/gtest.h>

#include <QDir>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "MediaFixtures.h"
#include "TestSupport.h"
#include "platform/media/MediaSource.h"
#include "platform/media/NullMediaSource.h"

using media::MediaSource;
using media::SampleType;
using testsupport::MakeTone;

namespace {

std::vector<std::uint8_t> ReadAll(MediaSource& s, int chunkBytes = 5000) {
    std::vector<std::uint8_t> out;
    std::vector<std::uint8_t> buf(static_cast<std::size_t>(chunkBytes));
    for (;;) {
        const int n = s.Read(buf.data(), chunkBytes);
        out.insert(out.end(), buf.begin(), buf.begin() + n);
        if (n < chunkBytes / s.Format().BytesPerFrame() * s.Format().BytesPerFrame())
            break;
    }
    return out;
}

// Root-mean-square difference of two float (F32) buffers.
double RmsDifference(const std::uint8_t* a, const std::uint8_t* b, int bytes) {
    const int n = bytes / 4;
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        float x, y;
        std::memcpy(&x, a + 4 * i, 4);
        std::memcpy(&y, b + 4 * i, 4);
        sum += double(x - y) * double(x - y);
    }
    return n ? std::sqrt(sum / n) : 0.0;
}

}  // namespace

TEST(MediaSource, WavFormatsAreReportedAndBitExact) {
    struct Case {
        const char* name;
        int rate, channels;
        QStringList args;
        int bits;
        SampleType type;
    };
    const std::vector<Case> cases = {
        {"ms_s16_stereo.wav", 44100, 2, {"-c:a", "pcm_s16le"}, 16, SampleType::S16},
        {"ms_s16_mono.wav", 44100, 1, {"-c:a", "pcm_s16le"}, 16, SampleType::S16},
        {"ms_u8_stereo.wav", 44100, 2, {"-c:a", "pcm_u8"}, 8, SampleType::U8},
        {"ms_s24_stereo.wav", 48000, 2, {"-c:a", "pcm_s24le"}, 24, SampleType::S32},
        {"ms_s32_mono.wav", 44100, 1, {"-c:a", "pcm_s32le"}, 32, SampleType::S32},
        {"ms_f32_stereo.wav", 48000, 2, {"-c:a", "pcm_f32le"}, 32, SampleType::F32},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = MakeTone(c.name, 1000, 1.3, c.rate, c.channels, c.args);
        ASSERT_FALSE(path.isEmpty());
        mediafixtures::WavData wav;
        ASSERT_TRUE(mediafixtures::ReadWav(path, &wav));

        auto s = media::CreateMediaSource();
        ASSERT_TRUE(s->Open(path.toStdString()));
        const media::PcmFormat f = s->Format();
        EXPECT_EQ(f.channels, c.channels);
        EXPECT_EQ(f.sampleRate, c.rate);
        EXPECT_EQ(f.bitsPerSample, c.bits);
        EXPECT_EQ(f.type, c.type);
        EXPECT_NEAR(double(s->Duration100ns()) * 1e-7, 1.3, 0.001);

        const std::vector<std::uint8_t> pcm = ReadAll(*s);
        if (c.bits == 24) {
            // 24-bit samples arrive left-aligned in 32 bits.
            ASSERT_EQ(pcm.size(), wav.data.size() / 3 * 4);
            for (std::size_t i = 0; i < wav.data.size() / 3; ++i) {
                ASSERT_EQ(pcm[4 * i], 0);
                ASSERT_EQ(0, std::memcmp(&pcm[4 * i + 1], &wav.data[3 * i], 3)) << i;
            }
        } else {
            EXPECT_TRUE(pcm == wav.data);
        }
        EXPECT_EQ(s->Read(nullptr, 100), 0);
        std::uint8_t tail[64];
        EXPECT_EQ(s->Read(tail, sizeof tail), 0);  // stays at the end
    }
}

// After a seek the stream continues exactly where a straight read would be.
TEST(MediaSource, SeeksAreSampleExactInEveryCodec) {
    struct Case {
        const char* name;
        QStringList args;
        bool exact;
    };
    const std::vector<Case> cases = {
        {"seek.wav", {"-c:a", "pcm_s16le"}, true}, {"seek.mp3", {"-c:a", "libmp3lame"}, true},
        {"seek.ogg", {"-c:a", "libvorbis"}, true}, {"seek.wma", {"-c:a", "wmav2"}, true},
        {"seek.flac", {"-c:a", "flac"}, true},     {"seek.m4a", {"-c:a", "aac"}, false},
        {"seek.opus", {"-c:a", "libopus"}, false},
    };
    for (const auto& [name, args, exact] : cases) {
        SCOPED_TRACE(name);
        // A sweep, so that a misplaced frame shows as different samples.
        const QString path = testsupport::FixtureDir() + "/" + name;
        if (!QFile::exists(path)) {
            QStringList a = {
                "-nostdin", "-loglevel",
                "error",    "-y",
                "-f",       "lavfi",
                "-i",       "aevalsrc=sin(2*PI*(200+300*t)*t)|cos(2*PI*(150+500*t)*t):s=44100:d=6"};
            a += args;
            a << path;
            ASSERT_TRUE(testsupport::RunInto(path, "ffmpeg", a));
        }
        auto s = media::CreateMediaSource();
        ASSERT_TRUE(s->Open(path.toStdString()));
        const int bpf = s->Format().BytesPerFrame();
        const std::vector<std::uint8_t> all = ReadAll(*s);
        const std::int64_t frames = std::int64_t(all.size()) / bpf;
        ASSERT_GT(frames, 44100 * 5);
        const int rate = s->Format().sampleRate;

        const std::int64_t targets[] = {0,        1,          1175,          rate / 3, 12345,
                                        rate * 2, frames / 2, frames - 5000, 77777,    3};
        std::vector<std::uint8_t> got(4096 * std::size_t(bpf));
        for (std::int64_t t : targets) {
            SCOPED_TRACE(t);
            ASSERT_TRUE(s->Seek(t));
            const int n = s->Read(got.data(), int(got.size()));
            const std::int64_t expectBytes =
                std::min<std::int64_t>(std::int64_t(got.size()), (frames - t) * bpf);
            ASSERT_EQ(n, expectBytes);
            if (exact) {
                EXPECT_EQ(0, std::memcmp(got.data(), all.data() + t * bpf, std::size_t(n)));
            } else {
                // AAC's noise substitution and Opus's float path differ
                // slightly run to run; a misplaced frame would differ fully.
                EXPECT_LT(RmsDifference(got.data(), all.data() + t * bpf, n), 0.01);
            }
        }
        // Past the end: nothing more to read.
        ASSERT_TRUE(s->Seek(frames + 1000));
        EXPECT_EQ(s->Read(got.data(), int(got.size())), 0);
        // And back to the start.
        ASSERT_TRUE(s->Seek(0));
        EXPECT_EQ(s->Read(got.data(), int(got.size())), int(got.size()));
        EXPECT_EQ(0, std::memcmp(got.data(), all.data(), got.size()));
        // Seeks to every block of a stretch, as a deck playing backwards does.
        for (std::int64_t t = rate * 3; t > rate * 3 - 1176 * 6; t -= 1176) {
            ASSERT_TRUE(s->Seek(t));
            ASSERT_EQ(s->Read(got.data(), 1176 * bpf), 1176 * bpf);
            if (exact) {
                EXPECT_EQ(0, std::memcmp(got.data(), all.data() + t * bpf, 1176u * bpf));
            }
        }
    }
}

TEST(MediaSource, ManyChannelsAreMixedToStereo) {
    const QString path = MakeTone("ms_six.wav", 440, 0.5, 44100, 6, {"-c:a", "pcm_s16le"});
    auto s = media::CreateMediaSource();
    ASSERT_TRUE(s->Open(path.toStdString()));
    EXPECT_EQ(s->Format().channels, 2);
    const std::vector<std::uint8_t> pcm = ReadAll(*s);
    EXPECT_EQ(pcm.size(), std::size_t(22050) * s->Format().BytesPerFrame());
    // Sound reaches both sides.
    double left = 0, right = 0;
    const int bps = s->Format().BytesPerSample();
    for (std::size_t i = 0; i + 2 * bps <= pcm.size(); i += 2 * bps) {
        float l, r;
        if (s->Format().type == SampleType::F32) {
            std::memcpy(&l, &pcm[i], 4);
            std::memcpy(&r, &pcm[i + 4], 4);
        } else {
            std::int16_t a, b;
            std::memcpy(&a, &pcm[i], 2);
            std::memcpy(&b, &pcm[i + 2], 2);
            l = a, r = b;
        }
        left += double(l) * l;
        right += double(r) * r;
    }
    EXPECT_GT(left, 0);
    EXPECT_GT(right, 0);
}

TEST(MediaSource, BadFilesAreRefusedOrEndEarly) {
    auto s = media::CreateMediaSource();
    EXPECT_FALSE(s->Open(""));
    EXPECT_FALSE(s->Open("/nonexistent/mixora/file.mp3"));
    EXPECT_FALSE(s->Open(testsupport::FixtureDir().toStdString()));  // a folder
    EXPECT_FALSE(
        s->Open(mediafixtures::TextFile("ms_notes.mp3", "Side A: tracks 1-5\n").toStdString()));
    EXPECT_FALSE(s->Open(mediafixtures::TextFile("ms_empty.wav", "").toStdString()));
    std::string garbage(20000, '\0');
    for (std::size_t i = 0; i < garbage.size(); ++i)
        garbage[i] = char((i * 7919u) >> 3);
    EXPECT_FALSE(s->Open(mediafixtures::TextFile("ms_garbage.ogg", garbage).toStdString()));
    EXPECT_FALSE(s->IsOpen());
    std::uint8_t buf[256];
    EXPECT_EQ(s->Read(buf, sizeof buf), 0);
    EXPECT_FALSE(s->Seek(10));
    EXPECT_EQ(s->Duration100ns(), 0);

    // Truncated files open and end early.
    for (const char* ext : {"wav", "mp3", "ogg", "wma"}) {
        SCOPED_TRACE(ext);
        const QStringList codec = QString(ext) == "wav"   ? QStringList{"-c:a", "pcm_s16le"}
                                  : QString(ext) == "mp3" ? QStringList{"-c:a", "libmp3lame"}
                                  : QString(ext) == "ogg" ? QStringList{"-c:a", "libvorbis"}
                                                          : QStringList{"-c:a", "wmav2"};
        const QString full = MakeTone(QString("ms_full.%1").arg(ext), 500, 4, 44100, 2, codec);
        const QString cut = mediafixtures::Truncated(full, QString("ms_cut.%1").arg(ext),
                                                     QFileInfo(full).size() / 2);
        ASSERT_TRUE(s->Open(cut.toStdString()));
        const std::vector<std::uint8_t> pcm = ReadAll(*s);
        const double seconds = double(pcm.size()) / s->Format().BytesPerFrame() / 44100;
        EXPECT_GT(seconds, 0.5);
        EXPECT_LT(seconds, 3.0);
        EXPECT_TRUE(s->Seek(44100 * 3));  // beyond what is there
        EXPECT_EQ(s->Read(buf, sizeof buf), 0);
    }

    media::NullMediaSource null;
    EXPECT_FALSE(null.Open("anything.wav"));
    EXPECT_EQ(null.openAttempts, 1);
}
