// The libcdio layer on a generated CUE/BIN image: drive list from
// MIXORA_CD_IMAGES, table of contents, data-track detection, and plain and
// error-corrected reads against the bytes written.
#include <gtest/gtest.h>

#include "platform/cd/LibCdioBackend.h"
#include "sources/CdImageFixture.h"

namespace {

const cd::CdDriveInfo* FindDrive(const std::vector<cd::CdDriveInfo>& list, const QString& path) {
    for (const cd::CdDriveInfo& d : list)
        if (d.device == path.toStdString())
            return &d;
    return nullptr;
}

}  // namespace

TEST(CdLibcdioBackend, ListsImagesReadsTocAndAudio) {
    testsupport::CdImage image = testsupport::MakeCdImage("cd-backend");
    ASSERT_TRUE(image.ok);
    QByteArray missing = (image.cuePath + ".missing.cue").toUtf8();
    qputenv("MIXORA_CD_IMAGES", "::" + missing + ":" + image.cuePath.toUtf8() + ":");
    cd::LibCdioBackend backend;
    std::vector<cd::CdDriveInfo> drives = backend.ListDrives();
    qunsetenv("MIXORA_CD_IMAGES");
    EXPECT_EQ(FindDrive(drives, QString::fromUtf8(missing)), nullptr);
    const cd::CdDriveInfo* info = FindDrive(drives, image.cuePath);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->name, "Disc image cd-backend.cue");

    std::unique_ptr<cd::CdDrive> drive = backend.Open(*info);
    ASSERT_NE(drive, nullptr);
    cd::CdToc toc;
    ASSERT_TRUE(drive->ReadToc(toc));
    EXPECT_EQ(toc.first, 1);
    EXPECT_EQ(toc.last, 4);
    ASSERT_EQ(toc.entries.size(), 5u);
    for (int t = 1; t <= 5; ++t) {
        EXPECT_EQ(toc.entries[t - 1].start, image.starts[t - 1]) << "entry " << t;
    }
    for (int t = 1; t <= 3; ++t)
        EXPECT_EQ(toc.entries[t - 1].control & cd::kControlData, 0);
    EXPECT_NE(toc.entries[3].control & cd::kControlData, 0);

    // Plain and corrected reads of the same sectors give the BIN's bytes:
    // the start, a block across the 1/2 boundary, the last audio sectors.
    for (bool corrected : {false, true}) {
        for (std::int32_t a : {0, 2, 149, 262, image.End(3) - 2}) {
            std::vector<std::uint8_t> got(2 * cd::kSectorBytes, 0xAB);
            ASSERT_EQ(drive->ReadAudio(a, 2, got.data(), corrected), 2)
                << "address " << a << " corrected " << corrected;
            EXPECT_TRUE(got == image.Sectors(a, 2))
                << "address " << a << " corrected " << corrected;
        }
    }
    // A whole track through paranoia, sector after sector.
    std::vector<std::uint8_t> track(image.TrackPcm(2).size());
    for (std::int32_t a = image.Start(2); a < image.End(2); ++a)
        ASSERT_EQ(
            drive->ReadAudio(a, 1, track.data() + (a - image.Start(2)) * cd::kSectorBytes, true),
            1);
    EXPECT_TRUE(track == image.TrackPcm(2));
}
