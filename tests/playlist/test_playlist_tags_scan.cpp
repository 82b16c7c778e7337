// Titles from audio files' tags (ID3v1 first, then the tags TagLib reads) on
// files generated with ffmpeg, and the folder scan over a real folder tree.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "playlist/AudioFileTypes.h"
#include "playlist/FolderScan.h"
#include "playlist/PlayList.h"
#include "playlist/PlayListTestFiles.h"
#include "playlist/TagTitle.h"

using playlisttest::PathOf;
using playlisttest::ReadText;
using playlisttest::WriteText;

namespace {

// A 1 s tone with a title tag, encoded by `codec` into `name`.
std::string TaggedTone(const QString& name, const QString& title, const QStringList& codec) {
    QStringList args = codec;
    args << "-metadata"
         << "title=" + title;
    return testsupport::MakeTone(name, 440, 1.0, 44100, 2, args).toStdString();
}

// An ID3v1 trailer with the given title bytes (at most 30).
std::string Id3v1(const std::string& title) {
    std::string tag = "TAG" + title;
    tag.resize(128, '\0');
    return tag;
}

TEST(PlayListTags, TitlesFromTags) {
    const std::string v1 =
        TaggedTone("pl_v1.mp3", "Version One Title", {"-c:a", "libmp3lame", "-write_id3v1", "1"});
    const std::string v2 = TaggedTone("pl_v2.mp3", "Only In Id3v2", {"-c:a", "libmp3lame"});
    const std::string ogg =
        TaggedTone("pl_tag.ogg", "Vorbis \xC3\x89t\xC3\xA9", {"-c:a", "libvorbis"});
    const std::string flac = TaggedTone("pl_tag.flac", "Flac Title", {"-c:a", "flac"});
    const std::string wma = TaggedTone("pl_tag.wma", "Asf Title", {"-c:a", "wmav2"});
    const std::string m4a = TaggedTone("pl_tag.m4a", "Mp4 Title", {"-c:a", "aac"});
    const std::string wav = testsupport::MakeTone("pl_plain.wav", 440, 1.0).toStdString();
    for (const std::string& p : {v1, v2, ogg, flac, wma, m4a, wav})
        ASSERT_FALSE(p.empty());

    QTemporaryDir dir;
    const std::string both = PathOf(dir) + "/both.mp3";  // ID3v2 and a different ID3v1 title
    ASSERT_TRUE(WriteText(both, ReadText(v2) + Id3v1("Caf\xE9 v1   ")));
    const std::string emptyV1 = PathOf(dir) + "/empty-v1.mp3";  // ID3v1 with no title
    ASSERT_TRUE(WriteText(emptyV1, ReadText(v2) + Id3v1("")));
    const std::string tiny = PathOf(dir) + "/tiny.mp3";  // 128 bytes: too short to hold a tag
    ASSERT_TRUE(WriteText(tiny, Id3v1("Tiny")));
    const std::string junk = PathOf(dir) + "/junk.mp3";
    ASSERT_TRUE(WriteText(junk, std::string(300, 'x') + Id3v1(std::string(40, 'L'))));

    PlayList list;
    struct Case {
        std::string path, expected;
    };
    const std::vector<Case> cases = {
        {v1, "Version One Title"},
        {v2, "Only In Id3v2"},
        {ogg, "Vorbis \xC3\x89t\xC3\xA9"},
        {flac, "Flac Title"},
        {wma, "Asf Title"},
        {m4a, "Mp4 Title"},
        {both, "Caf\xC3\xA9 v1"},  // ID3v1 wins; Latin-1; padding dropped
        {emptyV1, "Only In Id3v2"},
        {junk, std::string(30, 'L')},  // 30 bytes at most
        {wav, "kept"},                 // no tag: the stored title stays
        {tiny, "kept"},
        {PathOf(dir) + "/missing.mp3", "kept"},
        {PathOf(dir), "kept"},  // a folder
        {"Track 3", "kept"},
    };
    for (const Case& c : cases)
        list.Add(c.path, "kept", -1.0f, 0);
    for (int i = 0; i < list.Count(); ++i) {
        EXPECT_EQ(list.TagTitle(i), cases[i].expected) << cases[i].path;
        EXPECT_EQ(list.Title(i), cases[i].expected) << cases[i].path;
    }

    // Saving writes the tag titles.
    PlayList one;
    one.Add(v1, "", 1.0f, 0);
    ASSERT_EQ(one.Save(PathOf(dir) + "/tagged.m3u", ".m3u"), ListFileStatus::Ok);
    EXPECT_EQ(ReadText(PathOf(dir) + "/tagged.m3u"),
              "#EXTM3U\n#EXTINF:1,Version One Title\n" + v1 + "\n");
}

class FolderScanTree : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        root_ = PathOf(dir_) + "/music";
        for (const char* d : {"music/sub/deeper", "music/.hiddendir", "music/empty"})
            ASSERT_TRUE(QDir(dir_.path()).mkpath(d));
        for (const char* f :
             {"b.mp3", "A.WAV", "c.txt", "noext", ".hidden.mp3", "x.w", "song.FLAC", "z.opus",
              ".hiddendir/x.mp3", "sub/d.ogg", "sub/e.m4a", "sub/deeper/f.aac"})
            ASSERT_TRUE(WriteText(root_ + "/" + f, "x"));
        ASSERT_EQ(::symlink("..", (root_ + "/sub/loop").c_str()), 0);
        ASSERT_EQ(::symlink("nowhere.mp3", (root_ + "/sub/dangling.mp3").c_str()), 0);
    }
    QTemporaryDir dir_;
    std::string root_;
};

TEST_F(FolderScanTree, ScanListsAudioFilesDepthFirst) {
    EXPECT_TRUE(ScanTakesExtension(".mp3"));
    EXPECT_TRUE(ScanTakesExtension(".opus"));
    EXPECT_TRUE(ScanTakesExtension(""));
    EXPECT_FALSE(ScanTakesExtension(".txt"));

    PlayList list;
    EXPECT_EQ(list.ScanFolder(root_ + "/"), 9u);
    const std::vector<std::string> expected = {
        root_ + "/A.WAV",     root_ + "/b.mp3",     root_ + "/noext",
        root_ + "/song.FLAC", root_ + "/sub/d.ogg", root_ + "/sub/deeper/f.aac",
        root_ + "/sub/e.m4a", root_ + "/x.w",       root_ + "/z.opus"};
    EXPECT_EQ(std::vector<std::string>(list.PendingFiles().begin(), list.PendingFiles().end()),
              expected);

    // The window inserts them one by one in path order.
    list.Add(root_ + "/m.mp3", "", -1.0f, 0);
    std::string path;
    while (list.TakePendingFile(&path))
        list.AddSorted(path, "", -1.0f, 0, 0);
    EXPECT_TRUE(list.PendingFiles().empty());
    ASSERT_EQ(list.Count(), 10);
    for (int i = 1; i < list.Count(); ++i)
        EXPECT_LT(list.Path(i - 1), list.Path(i));

    // Bounds and missing folders.
    std::deque<std::string> pending;
    FolderScanResult r = ScanAudioFolder(root_, &pending, 4);
    EXPECT_TRUE(r.truncated);
    EXPECT_EQ(pending.size(), 4u);
    EXPECT_EQ(list.ScanFolder(root_ + "/nope"), 0u);
    EXPECT_EQ(list.ScanFolder(root_ + "/b.mp3"), 0u);
    EXPECT_EQ(list.ScanFolder(""), 0u);
    EXPECT_FALSE(ScanAudioFolder(root_ + "/nope", &pending).opened);
}

}  // namespace
