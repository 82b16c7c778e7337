// Disc images are checked before libcdio opens them: every file a sheet
// names must be a regular file no larger than a CD, and not the sheet itself;
// the sheet must be small and declare at most 99 tracks (libcdio writes past
// its track table beyond that) and name a FILE before its first TRACK (else
// libcdio reads freed memory) and number its tracks from 1 (a first track
// 80 reads freed memory too); all found by the cd_image fuzz target. A sheet
// naming a pipe is refused at once instead of blocking the drive on it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QFile>
#include <QTemporaryDir>
#include <string_view>

#include "platform/cd/DiscImageLimits.h"
#include "platform/cd/LibCdioBackend.h"

namespace {

std::string Write(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    QFile f(dir.filePath(name));
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
    return dir.filePath(name).toStdString();
}

QByteArray SheetFor(const QByteArray& file) {
    return "FILE \"" + file + "\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n";
}

std::vector<std::string> Files(std::string_view sheet) {
    return cd::ReadSheet(sheet).files;
}

}  // namespace

TEST(DiscImageLimits, SheetsNameTheirFilesQuotedOrBare) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(Files("FILE \"a b.bin\" BINARY\r\n  TRACK 01 AUDIO\r\n"), Names{"a b.bin"});
    EXPECT_EQ(Files("  file bare.bin WAVE\nFILE \"x.bin\"\nREM FILE no.bin\n"),
              (Names{"bare.bin", "x.bin"}));
    EXPECT_EQ(Files("CD_DA\nTRACK AUDIO\nAUDIOFILE \"t.bin\" 0\nDATAFILE d.bin\n"),
              (Names{"t.bin", "d.bin"}));
    EXPECT_EQ(Files("FILE \"unterminated"), Names{"unterminated"});
    EXPECT_EQ(Files("FILE"), Names{""});
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "FILE f.bin BINARY\n";
    EXPECT_EQ(cd::ReadSheet(many).files.size(), cd::kMaxSheetFiles + 1);  // stops counting there
    EXPECT_EQ(cd::ReadSheet("TRACK 01 AUDIO\n track 02 AUDIO\r\nREM TRACK 3\n").tracks, 2);
    EXPECT_TRUE(cd::ReadSheet("TRACK 01 AUDIO\nFILE a.bin BINARY\n").trackBeforeFile);
    EXPECT_FALSE(cd::ReadSheet("FILE a.bin BINARY\nTRACK 01 AUDIO\n").trackBeforeFile);
    EXPECT_TRUE(cd::ReadSheet("FILE a\nTRACK 01 AUDIO\nTRACK 2 AUDIO\n").tracksInOrder);
    EXPECT_FALSE(cd::ReadSheet("FILE a\nTRACK 01 AUDIO\nTRACK 03 AUDIO\n").tracksInOrder);
    EXPECT_FALSE(cd::ReadSheet("FILE a\nTRACK 80 AUDIO\n").tracksInOrder);
    EXPECT_FALSE(cd::ReadSheet("FILE a\nTRACK x1 AUDIO\n").tracksInOrder);
}

TEST(DiscImageLimits, OnlyBoundedRegularFilesOtherThanTheSheet) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    Write(dir, "good.bin", QByteArray(10 * 2352, '\0'));
    const std::string good = Write(dir, "good.cue", SheetFor("good.bin"));
    const std::string absolute = Write(dir, "abs.cue", SheetFor(dir.filePath("good.bin").toUtf8()));
    const std::string missing = Write(dir, "missing.cue", SheetFor("nowhere.bin"));
    const std::string self = Write(dir, "self.cue", SheetFor("self.cue"));
    const std::string folder = Write(dir, "folder.cue", SheetFor("."));
    ASSERT_EQ(::mkfifo(dir.filePath("pipe.bin").toLocal8Bit().constData(), 0600), 0);
    const std::string pipe = Write(dir, "pipe.cue", SheetFor("pipe.bin"));
    {
        QFile big(dir.filePath("big.bin"));
        ASSERT_TRUE(big.open(QIODevice::WriteOnly));
        ASSERT_TRUE(big.resize(cd::kMaxImageBytes + 1));  // sparse
    }
    const std::string tooBig = Write(dir, "big.cue", SheetFor("big.bin"));
    const std::string hugeSheet =
        Write(dir, "huge.cue", SheetFor("good.bin") + QByteArray(cd::kMaxSheetBytes, ' '));
    QByteArray manyFiles;
    for (std::size_t i = 0; i <= cd::kMaxSheetFiles; ++i)
        manyFiles += SheetFor("good.bin");
    const std::string tooManyFiles = Write(dir, "many.cue", manyFiles);
    QByteArray hundredTracks = "FILE \"good.bin\" BINARY\n";
    for (int t = 1; t <= 100; ++t)
        hundredTracks += "  TRACK " + QByteArray::number(t) + " AUDIO\n    INDEX 01 00:00:00\n";
    const std::string tooManyTracks = Write(dir, "tracks.cue", hundredTracks);
    const std::string track80 = Write(dir, "track80.cue",
                                      "FILE \"good.bin\" BINARY\n  TRACK 80 AUDIO\n"
                                      "    INDEX 01 00:00:00\n");
    const std::string trackFirst = Write(
        dir, "trackfirst.cue", "  TRACK 91 AUDIO\n   INDEX 02 00:00:01\n" + SheetFor("good.bin"));

    EXPECT_TRUE(cd::IsAcceptableDiscImage(good));
    EXPECT_TRUE(cd::IsAcceptableDiscImage(absolute));
    EXPECT_TRUE(cd::IsAcceptableDiscImage("/dev/cdrom"));  // a drive, not an image
    for (const std::string& bad :
         {missing, self, folder, pipe, tooBig, hugeSheet, tooManyFiles, tooManyTracks, trackFirst})
        EXPECT_FALSE(cd::IsAcceptableDiscImage(bad)) << bad;

    // The backend refuses them before libcdio reads anything (the pipe would block it).
    cd::LibCdioBackend backend;
    EXPECT_NE(backend.Open({"good", good}), nullptr);
    for (const std::string& bad : {self, pipe, tooBig, tooManyTracks, trackFirst, track80})
        EXPECT_EQ(backend.Open({"bad", bad}), nullptr) << bad;
}
