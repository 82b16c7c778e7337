// Title tags that decode to nothing are no title: an ID3v1 title holding only
// a byte order mark (found by the tag_title fuzz target) reads as none, so
// the next tag (or the file name) gives the title instead of an empty one.
#include <gtest/gtest.h>

#include <QFile>

#include "TestSupport.h"
#include "playlist/TagTitle.h"

TEST(TagTitleEdges, Id3v1TitleOfOnlyAByteOrderMarkIsNoTitle) {
    const QString path = testsupport::FixtureDir() + "/tagtitle-bom.mp3";
    QByteArray tag(128, '\0');
    tag.replace(0, 6, QByteArray("TAG\xef\xbb\xbf", 6));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(200, '\x55') + tag);
    f.close();
    std::string title = "unchanged";
    EXPECT_FALSE(ReadId3v1Title(path.toStdString(), &title));
    EXPECT_EQ(title, "unchanged");

    // The same tag with a real title after the mark reads as that title.
    tag.replace(6, 4, "Song");
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QByteArray(200, '\x55') + tag);
    f.close();
    EXPECT_TRUE(ReadId3v1Title(path.toStdString(), &title));
    EXPECT_EQ(title, "Song");
}
