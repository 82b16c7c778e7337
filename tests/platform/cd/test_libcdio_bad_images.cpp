// Broken disc images must fail to open or to give a TOC, never crash.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "platform/cd/LibCdioBackend.h"

TEST(CdLibcdioBadImages, MissingTruncatedAndGarbageImagesFailCleanly) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile f(dir.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return dir.filePath(name).toStdString();
    };
    std::string garbage = write("garbage.cue", QByteArray("\x01\x02 not a cue sheet \xff\n", 22));
    std::string noBin = write("nobin.cue",
                              "FILE \"nobin.bin\" BINARY\n  TRACK 01 AUDIO\n"
                              "    INDEX 01 00:00:00\n");
    std::string empty = write("empty.cue", "");
    std::string shortBin = write("short.cue",
                                 "FILE \"short.bin\" BINARY\n  TRACK 01 AUDIO\n"
                                 "    INDEX 01 00:00:00\n");
    write("short.bin", QByteArray(1000, 0));  // less than one sector

    cd::LibCdioBackend backend;
    for (const std::string& path :
         {garbage, noBin, empty, shortBin, dir.filePath("absent.cue").toStdString()}) {
        std::unique_ptr<cd::CdDrive> drive = backend.Open({"image", path});
        if (!drive)
            continue;
        cd::CdToc toc;
        if (!drive->ReadToc(toc))
            continue;
        // Whatever TOC it found, reads past the image's end fail.
        std::vector<std::uint8_t> buf(2 * cd::kSectorBytes);
        EXPECT_EQ(drive->ReadAudio(100000, 2, buf.data(), false), 0) << path;
        EXPECT_EQ(drive->ReadAudio(100000, 2, buf.data(), true), 0) << path;
    }
    EXPECT_EQ(backend.Open({"nothing", ""}), nullptr);
}
