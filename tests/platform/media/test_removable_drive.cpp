// Where a file lies: removable block devices and optical filesystems, read
// from a fake sysfs tree and mount table.
#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include "MediaFixtures.h"
#include "TestSupport.h"
#include "platform/media/RemovableDrive.h"

using mediafixtures::FakeSysfs;
using mediafixtures::WriteText;

TEST(RemovableDrive, SysfsAttributeAndOpticalFilesystems) {
    const QString track =
        testsupport::MakeTone("dp_track.wav", 500, 2, 44100, 2, {"-c:a", "pcm_s16le"});
    QTemporaryDir dir;
    EXPECT_TRUE(media::IsPathOnRemovableDrive(track.toStdString(), FakeSysfs(dir, track, true)));
    auto fixed = FakeSysfs(dir, track, false);
    EXPECT_FALSE(media::IsPathOnRemovableDrive(track.toStdString(), fixed));

    // An optical filesystem mounted over the file's folder.
    const QString folder = QFileInfo(track).canonicalPath();
    QString escaped = folder;
    escaped.replace(" ", "\\040");
    WriteText(dir.path() + "/mounts",
              ("rootfs / ext4 rw 0 0\n/dev/sr0 " + escaped + " iso9660 ro 0 0\n").toUtf8());
    EXPECT_TRUE(media::IsPathOnRemovableDrive(track.toStdString(), fixed));
    WriteText(dir.path() + "/mounts",
              ("/dev/sr0 " + escaped + " udf ro 0 0\n/dev/sda1 / ext4 rw 0 0\n").toUtf8());
    EXPECT_TRUE(media::IsPathOnRemovableDrive(track.toStdString(), fixed));

    WriteText(dir.path() + "/m2",
              "/dev/sda1 / ext4 rw 0 0\n/dev/sdb1 /media/My\\040Music vfat rw 0 0\n"
              "/dev/sr0 /media/My\\040Musical iso9660 ro 0 0\n");
    const std::string m2 = (dir.path() + "/m2").toStdString();
    EXPECT_EQ(media::MountTypeOf("/media/My Music/a.mp3", m2), "vfat");
    EXPECT_EQ(media::MountTypeOf("/media/My Musical", m2), "iso9660");
    EXPECT_EQ(media::MountTypeOf("/home/dj/a.mp3", m2), "ext4");
    EXPECT_EQ(media::MountTypeOf("/x", "/nonexistent/mounts"), "");

    // No drive part, no file: fixed.
    EXPECT_FALSE(media::IsPathOnRemovableDrive(""));
    EXPECT_FALSE(media::IsPathOnRemovableDrive("relative/track.mp3"));
    EXPECT_FALSE(media::IsPathOnRemovableDrive("/nonexistent/mixora/track.mp3"));
}
