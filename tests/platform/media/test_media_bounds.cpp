// The media layer's bounds refuse what no audio file declares and keep
// everything real files carry: a cover picture (whose image decoder is never
// opened) still leaves the sound playable, with its title readable; channel
// counts no speaker layout names (9, 17, 32) are mixed down too.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <QtEndian>

#include "TestSupport.h"
#include "platform/media/MediaSource.h"
#include "playlist/TagTitle.h"

namespace {

// An audio file with a 64x64 picture attached as its cover, made once.
QString WithCover(const QString& name, const QStringList& codecArgs) {
    const QString path = testsupport::FixtureDir() + "/" + name;
    if (QFile::exists(path))
        return path;
    QStringList args = {"-nostdin",
                        "-loglevel",
                        "error",
                        "-y",
                        "-f",
                        "lavfi",
                        "-i",
                        "sine=frequency=440:sample_rate=44100:duration=1",
                        "-f",
                        "lavfi",
                        "-i",
                        "color=red:s=64x64:d=1",
                        "-map",
                        "0",
                        "-map",
                        "1",
                        "-frames:v",
                        "1",
                        "-disposition:v",
                        "attached_pic",
                        "-metadata",
                        "title=Cover Song"};
    args += codecArgs;
    args << path;
    return testsupport::RunInto(path, "ffmpeg", args) ? path : QString();
}

// A 16-bit PCM WAV of `frames` silent frames declaring `channels` and `rate`.
QString PcmWav(const QString& name, int channels, int rate, int frames) {
    auto le32 = [](quint32 v) {
        QByteArray b(4, '\0');
        qToLittleEndian(v, b.data());
        return b;
    };
    auto le16 = [](quint16 v) {
        QByteArray b(2, '\0');
        qToLittleEndian(v, b.data());
        return b;
    };
    const quint16 align = quint16(channels * 2);
    QByteArray fmt = le16(1) + le16(quint16(channels)) + le32(quint32(rate)) +
                     le32(quint32(rate) * align) + le16(align) + le16(16);
    QByteArray data(frames * align, '\0');
    QByteArray body =
        "WAVE" + QByteArray("fmt ") + le32(16) + fmt + "data" + le32(quint32(data.size())) + data;
    const QString path = testsupport::FixtureDir() + "/" + name;
    QSaveFile f(path);  // replaced whole: parallel tests share the folder
    if (!f.open(QIODevice::WriteOnly))
        return {};
    f.write("RIFF" + le32(quint32(body.size())) + body);
    return f.commit() ? path : QString();
}

}  // namespace

TEST(MediaBounds, FilesWithACoverPictureStillPlay) {
    for (const QString& path : {WithCover("bounds_cover.mp3", {"-c:a", "libmp3lame", "-c:v",
                                                               "mjpeg", "-id3v2_version", "3"}),
                                WithCover("bounds_cover.m4a", {"-c:a", "aac", "-c:v", "png"}),
                                WithCover("bounds_cover.flac", {"-c:a", "flac", "-c:v", "png"})}) {
        ASSERT_FALSE(path.isEmpty());
        auto s = media::CreateMediaSource();
        ASSERT_TRUE(s->Open(path.toStdString())) << path.toStdString();
        EXPECT_EQ(s->Format().sampleRate, 44100);
        EXPECT_NEAR(s->Duration100ns() / 1e7, 1.0, 0.1);
        std::vector<std::uint8_t> block(4096);
        EXPECT_GT(s->Read(block.data(), int(block.size())), 0);
        std::string title;
        EXPECT_TRUE(ReadTagTitle(path.toStdString(), &title)) << path.toStdString();
        EXPECT_EQ(title, "Cover Song");
    }
}

TEST(MediaBounds, ImplausibleStreamsAreRefusedAndTheirNeighboursKept) {
    struct Case {
        const char* name;
        int channels;
        int rate;
        bool opens;
    };
    const Case cases[] = {
        {"bounds_9ch.wav", 9, 44100, true},   {"bounds_17ch.wav", 17, 44100, true},
        {"bounds_32ch.wav", 32, 44100, true}, {"bounds_33ch.wav", 33, 44100, false},
        {"bounds_1khz.wav", 2, 1000, true},   {"bounds_999hz.wav", 2, 999, false},
        {"bounds_768k.wav", 2, 768000, true}, {"bounds_800k.wav", 2, 800000, false},
    };
    for (const Case& c : cases) {
        const QString path = PcmWav(c.name, c.channels, c.rate, 4096);
        ASSERT_FALSE(path.isEmpty());
        auto s = media::CreateMediaSource();
        ASSERT_EQ(s->Open(path.toStdString()), c.opens) << c.name;
        if (c.opens) {
            EXPECT_EQ(s->Format().channels, 2) << c.name;
            std::vector<std::uint8_t> all(std::size_t(4096) * s->Format().BytesPerFrame() + 64);
            int got = 0, n;
            while ((n = s->Read(all.data() + got, int(all.size()) - got)) > 0)
                got += n;
            EXPECT_EQ(got, 4096 * s->Format().BytesPerFrame()) << c.name;
        }
    }
}
