// Hostile files on a deck: each is loaded the way the deck loads it (the real
// file decoder or CD reader behind DeckSource) in a freshly started copy of
// the test program, which checks that the file is refused with the deck's
// message and that the process's peak memory (getrusage) grows by less than
// 100 MB while it is tried. Without the media layer's bounds the WAV below
// takes 2 GB and the compressed tag frame 200 MB.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "TestSupport.h"
#include "deck/source/DeckSource.h"
#include "platform/cd/LibCdioBackend.h"
#include "playlist/PlayList.h"
#include "playlist/TagTitle.h"
#include "sources/CRynCdAudio.h"
#include "sources/CRynFileDecoder.h"
#include "sources/CdImageFixture.h"

namespace {

constexpr int kDeck = 0;
constexpr long kMaxGrowthMb = 100;

long PeakKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

QByteArray Le32(quint32 v) {
    QByteArray b(4, '\0');
    qToLittleEndian(v, b.data());
    return b;
}

QByteArray Le16(quint16 v) {
    QByteArray b(2, '\0');
    qToLittleEndian(v, b.data());
    return b;
}

QByteArray SyncSafe(quint32 v) {
    QByteArray b(4, '\0');
    for (int i = 0; i < 4; ++i)
        b[3 - i] = char((v >> (7 * i)) & 0x7f);
    return b;
}

QByteArray Be32(quint32 v) {
    QByteArray b(4, '\0');
    qToBigEndian(v, b.data());
    return b;
}

QString Write(const QString& name, const QByteArray& bytes) {
    const QString path = testsupport::FixtureDir() + "/" + name;
    QSaveFile f(path);  // replaced whole: parallel tests share the folder
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size() || !f.commit())
        return {};
    return path;
}

// 453 bytes: RIFF/WAVE, a fmt chunk claiming PCM with 34 channels at 22017 Hz
// and 10 bits, a LIST/INFO chunk whose comment item declares 2 GB, then a
// short data chunk (read as part of that comment).
QString HostileWav() {
    const quint16 channels = 34, bits = 10, align = channels * 2;
    const quint32 rate = 22017;
    QByteArray fmt =
        Le16(1) + Le16(channels) + Le32(rate) + Le32(rate * align) + Le16(align) + Le16(bits);
    const QByteArray name(40, 'n');
    QByteArray info = "INFO" + QByteArray("INAM") + Le32(quint32(name.size())) + name +
                      QByteArray("ICMT") + Le32(0x7FFFFF00u);
    QByteArray list = "LIST" + Le32(0xFFFFFFF0u) + info;
    QByteArray data = "data" + Le32(341) + QByteArray(341, '\x55');
    QByteArray body = "WAVE" + QByteArray("fmt ") + Le32(quint32(fmt.size())) + fmt + list + data;
    QByteArray file = "RIFF" + Le32(quint32(body.size())) + body;
    return file.size() == 453 ? Write("hostile-34ch.wav", file) : QString();
}

// One second of an MP3 tone without tags; empty when ffmpeg failed.
QByteArray ToneMp3() {
    const QString tone = testsupport::MakeTone("hostile-tone.mp3", 1000, 1.0, 44100, 2,
                                               {"-c:a", "libmp3lame", "-id3v2_version", "0"});
    QFile f(tone);
    return !tone.isEmpty() && f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// A real MP3 behind an ID3v2.4 tag that declares 100 MB: a title frame, then a
// private frame declaring the rest of the 100 MB.
QString HostileId3Mp3() {
    const QByteArray audio = ToneMp3();
    if (audio.isEmpty())
        return {};
    const quint32 declared = 100u << 20;
    const QByteArray title = "\x03hostile title";
    QByteArray tag = "ID3" + QByteArray("\x04\x00\x00", 3) + SyncSafe(declared) + "TIT2" +
                     SyncSafe(quint32(title.size())) + QByteArray(2, '\0') + title + "PRIV" +
                     SyncSafe(declared - 100) + QByteArray(2, '\0');
    return Write("hostile-id3-100mb.mp3", tag + audio);
}

// An ID3v2.3 tag: a title frame, then a zlib-compressed frame that
// inflates to `inflated` bytes of zeros (200 MB: about 200 KB stored), or the
// title itself compressed when `inflated` is 0.
QByteArray CompressedTag(quint32 inflated) {
    const QByteArray title = "\x03hostile title";
    const QByteArray plain = inflated ? QByteArray(qsizetype(inflated), '\0') : title;
    const QByteArray zlib = qCompress(plain, 9).mid(4);
    const QByteArray compressed = Be32(quint32(zlib.size() + 4)) + QByteArray("\x00\x80", 2) +
                                  Be32(quint32(plain.size())) + zlib;
    const QByteArray frames = inflated ? "TIT2" + Be32(quint32(title.size())) +
                                             QByteArray(2, '\0') + title + "TXXX" + compressed
                                       : "TIT2" + compressed;
    return "ID3" + QByteArray("\x03\x00\x00", 3) + SyncSafe(quint32(frames.size())) + frames;
}

// The hostile compressed tag, made once: the child processes find it.
QByteArray HostileCompressedTag() {
    const QString path = testsupport::FixtureDir() + "/hostile-zlib-tag.id3";
    QFile f(path);
    if (f.open(QIODevice::ReadOnly))
        return f.readAll();
    const QByteArray tag = CompressedTag(200u << 20);
    return Write("hostile-zlib-tag.id3", tag).isEmpty() ? QByteArray() : tag;
}

// An MP3 behind the hostile compressed tag.
QString CompressedFrameMp3() {
    const QByteArray audio = ToneMp3();
    const QByteArray tag = HostileCompressedTag();
    return audio.isEmpty() || tag.isEmpty() ? QString()
                                            : Write("hostile-zlib-frame.mp3", tag + audio);
}

// A sox tone as WAV or AIFF with `tag` as its ID3 chunk ("id3 " in a WAV,
// "ID3 " in an AIFF) after the audio.
QString ToneWithId3Chunk(const QString& name, const QByteArray& tag) {
    const bool aiff = name.endsWith(QStringLiteral(".aiff"));
    const QString tone = testsupport::FixtureDir() + "/hostile-tone" + (aiff ? ".aiff" : ".wav");
    if (!QFileInfo::exists(tone) &&
        !testsupport::RunInto(tone, "sox",
                              {"-n", "-r", "44100", "-c", "2", "-b", "16", tone, "synth", "1",
                               "sine", "1000", "vol", "0.5"}))
        return {};
    QFile f(tone);
    if (tag.isEmpty() || !f.open(QIODevice::ReadOnly))
        return {};
    QByteArray file = f.readAll();
    if (file.size() % 2)
        file += '\0';
    const QByteArray padded = tag.size() % 2 ? tag + '\0' : tag;
    file += aiff ? "ID3 " + Be32(quint32(tag.size())) + padded
                 : "id3 " + Le32(quint32(tag.size())) + padded;
    const QByteArray size = aiff ? Be32(quint32(file.size() - 8)) : Le32(quint32(file.size() - 8));
    file.replace(4, 4, size);
    return Write(name, file);
}

// A CUE sheet whose BIN is 4 GB long (a sparse file: it takes no disk).
QString HugeBinCue() {
    const QString bin = testsupport::FixtureDir() + "/hostile-4gb.bin";
    QFile f(bin);
    if (!f.open(QIODevice::WriteOnly) || !f.resize(qint64(4) << 30))
        return {};
    return Write("hostile-4gb.cue",
                 "FILE \"hostile-4gb.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                 "  TRACK 02 AUDIO\n    INDEX 01 10:00:00\n");
}

// The deck's message for the file at `path` loaded in File mode.
std::string LoadFileMessage(const std::string& path) {
    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, nullptr);
    source.SetMode(DeckSource::kFileMode);
    list.Add(path, "hostile", kUnknownDuration, 0);
    list.First();
    const std::string message = DeckSource::LoadFailureText(source.LoadCurrent());
    source.Close();
    return message;
}

// The deck's message for a CD image taken as its drive in CD mode.
std::string LoadDiscMessage(const QString& cuePath) {
    qputenv("MIXORA_CD_IMAGES", cuePath.toUtf8());
    CRynCdAudio cd(std::make_unique<cd::LibCdioBackend>(),
                   std::make_unique<testsupport::CdTestClock>());
    qunsetenv("MIXORA_CD_IMAGES");
    CRynFileDecoder decoder;
    PlayList list;
    DeckSource source(kDeck, decoder, list, &cd);
    source.SetMode(DeckSource::kCdMode);
    int drive = -1;
    for (int d = 0; d < cd.DriveCount(); ++d)
        if (cd.DriveRoot(d) == cuePath.toStdString())
            drive = d;
    if (drive < 0)
        return "image not listed";
    source.SelectDrive(drive);
    const std::string message = source.FillListFromDisc() ? "" : DeckSource::kNoDisc;
    source.Close();
    return message;
}

// Runs `load` in a fresh copy of the test program: it must answer `message`
// with the peak memory grown by less than kMaxGrowthMb.
void ExpectAnswerWithinMemory(const std::function<std::string()>& load,
                              const std::string& message) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const long before = PeakKb();
            const std::string got = load();
            const long grownMb = (PeakKb() - before) / 1024;
            std::fprintf(stderr, "message \"%s\", peak memory grew by %ld MB\n", got.c_str(),
                         grownMb);
            std::_Exit(got == message && grownMb < kMaxGrowthMb ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "peak memory grew by [0-9]+ MB");
}

}  // namespace

TEST(DeckHostileFiles, WavWithManyChannelsAndA2GbTagIsRefused) {
    const QString wav = HostileWav();
    ASSERT_FALSE(wav.isEmpty());
    ExpectAnswerWithinMemory([&] { return LoadFileMessage(wav.toStdString()); },
                             "The file cannot be played");
}

TEST(DeckHostileFiles, Mp3WithA100MbDeclaredTagIsRefused) {
    const QString mp3 = HostileId3Mp3();
    ASSERT_FALSE(mp3.isEmpty());
    ExpectAnswerWithinMemory([&] { return LoadFileMessage(mp3.toStdString()); },
                             "The file cannot be played");
    // Its title is read by the play list within the same bound.
    ExpectAnswerWithinMemory(
        [&] {
            std::string title;
            ReadTagTitle(mp3.toStdString(), &title);
            return title;
        },
        "hostile title");
}

TEST(DeckHostileFiles, CompressedTagFrameIsNotInflated) {
    const QString mp3 = CompressedFrameMp3();
    ASSERT_FALSE(mp3.isEmpty());
    // The title is refused with the tag; the sound itself still plays.
    ExpectAnswerWithinMemory(
        [&] {
            std::string title;
            return ReadTagTitle(mp3.toStdString(), &title) ? title : std::string("refused");
        },
        "refused");
    EXPECT_EQ(LoadFileMessage(mp3.toStdString()), "");
}

TEST(DeckHostileFiles, CueSheetNamingA4GbBinIsRefused) {
    const QString cue = HugeBinCue();
    ASSERT_FALSE(cue.isEmpty());
    ExpectAnswerWithinMemory([&] { return LoadDiscMessage(cue); }, "There is no CD in the Drive.");
}

TEST(DeckHostileFiles, CompressedTagFrameInAWavOrAiffChunkIsNotInflated) {
    for (const QString& name :
         {QStringLiteral("hostile-zlib.wav"), QStringLiteral("hostile-zlib.aiff")}) {
        SCOPED_TRACE(name.toStdString());
        const QString file = ToneWithId3Chunk(name, HostileCompressedTag());
        ASSERT_FALSE(file.isEmpty());
        ExpectAnswerWithinMemory(
            [&] {
                std::string title;
                return ReadTagTitle(file.toStdString(), &title) ? title : std::string("refused");
            },
            "refused");
        EXPECT_EQ(LoadFileMessage(file.toStdString()), "");
    }
}

TEST(DeckHostileFiles, SmallCompressedTitleInAnyTagIsRead) {
    const QByteArray tag = CompressedTag(0);
    const QByteArray audio = ToneMp3();
    ASSERT_FALSE(audio.isEmpty());
    for (const QString& file :
         {Write("zlib-title.mp3", tag + audio), ToneWithId3Chunk("zlib-title.wav", tag),
          ToneWithId3Chunk("zlib-title.aiff", tag)}) {
        SCOPED_TRACE(file.toStdString());
        std::string title;
        EXPECT_TRUE(ReadTagTitle(file.toStdString(), &title));
        EXPECT_EQ(title, "hostile title");
    }
}
