// M3U and PLS files read and written through the play list: round trips,
// the formats' quirks, relative paths, encodings, bad and hostile files,
// atomic saving and each deck's default list.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <string>

#include "core/Paths.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/ListFileFormat.h"
#include "playlist/ListFileIo.h"
#include "playlist/PlayList.h"
#include "playlist/PlayListTestFiles.h"

using namespace std::string_literals;
using playlisttest::PathOf;
using playlisttest::ReadText;
using playlisttest::WriteText;

namespace {

class ListFiles : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
    std::string Path(const std::string& name) const { return PathOf(dir_) + "/" + name; }
    // Loads `text` saved as `name` into a fresh list.
    ListLoadResult LoadText(PlayList& list, const std::string& name, const std::string& text) {
        EXPECT_TRUE(WriteText(Path(name), text));
        return list.Load(Path(name));
    }
    QTemporaryDir dir_;
};

TEST_F(ListFiles, M3uWrittenAndReadBack) {
    PlayList list;
    // Paths that do not exist keep their stored titles when the tags are read.
    list.Add("/music/Song One.mp3", "First, with comma", 187.6f, 0);
    list.Add("/music/b.ogg", "", -1.0f, 0);
    list.Add("/music/\xC3\xA9t\xC3\xA9.wav", "\xC3\x89t\xC3\xA9", 600.0f, 0);
    ASSERT_EQ(list.Save(Path("list.m3u"), ".m3u"), ListFileStatus::Ok);
    EXPECT_EQ(list.ListFileName(), Path("list.m3u"));
    EXPECT_EQ(ReadText(Path("list.m3u")),
              "#EXTM3U\n"
              "#EXTINF:187,First, with comma\n/music/Song One.mp3\n"
              "#EXTINF:-1,\n/music/b.ogg\n"
              "#EXTINF:600,\xC3\x89t\xC3\xA9\n/music/\xC3\xA9t\xC3\xA9.wav\n");

    PlayList back;
    ListLoadResult r = back.Load(Path("list.m3u"));
    EXPECT_EQ(r.status, ListFileStatus::Ok);
    EXPECT_EQ(r.added, 3u);
    ASSERT_EQ(back.Count(), 3);
    EXPECT_EQ(back.Title(0), "First, with comma");
    EXPECT_EQ(back.Duration(0), 187.0f);
    EXPECT_EQ(back.DurationText(0), "3:07");
    EXPECT_EQ(back.Duration(1), -1.0f);
    EXPECT_EQ(back.DurationText(1), "");
    EXPECT_EQ(back.Path(2), "/music/\xC3\xA9t\xC3\xA9.wav");

    // Load appends; the list keeps what it had.
    back.Load(Path("list.m3u"));
    EXPECT_EQ(back.Count(), 6);
}

TEST_F(ListFiles, PlsWrittenAndReadBack) {
    PlayList list;
    list.Add("/music/a.mp3", "A", 100.9f, 0);
    list.Add("/music/b.mp3", "", -1.0f, 0);
    list.Add("/music/c.mp3", "C=see", 5.0f, 0);
    ASSERT_EQ(list.Save(Path("list.pls"), ".pls"), ListFileStatus::Ok);
    EXPECT_EQ(ReadText(Path("list.pls")),
              "[playlist]\n"
              "File1=/music/a.mp3\nTitle1=A\nLength1=100\n"
              "File2=/music/b.mp3\nTitle2=\nLength2=-1\n"
              "File3=/music/c.mp3\nTitle3=C=see\nLength3=5\n"
              "NumberOfEntries=3\nVersion=2\n");
    PlayList back;
    EXPECT_EQ(back.Load(Path("list.pls")).added, 3u);
    EXPECT_EQ(back.Title(2), "C=see");
    EXPECT_EQ(back.Duration(0), 100.0f);
    EXPECT_EQ(back.Duration(1), -1.0f);
}

TEST_F(ListFiles, FormatQuirksAreKept) {
    // Bare paths after the header are not read.
    PlayList bare;
    ListLoadResult r = LoadText(bare, "bare.m3u", "#EXTM3U\n/m/a.mp3\n/m/b.mp3\n");
    EXPECT_EQ(r.status, ListFileStatus::Ok);
    EXPECT_EQ(bare.Count(), 0);

    // A PLS group without its Title line: its Length line is taken for the
    // title line, the next File line for the length line.
    PlayList pls;
    LoadText(pls, "quirk.pls",
             "[playlist]\nFile1=/m/a.mp3\nLength1=100\nFile2=/m/b.mp3\nTitle2=B\nLength2=50\n");
    ASSERT_EQ(pls.Count(), 1);
    EXPECT_EQ(pls.Path(0), "/m/a.mp3");
    EXPECT_EQ(pls.Title(0), "");
    EXPECT_EQ(pls.Duration(0), -1.0f);

    // "#EXTINF:" without a comma: no title, no duration; atoi rules otherwise;
    // comments and blank lines between an "#EXTINF:" line and its path are passed over.
    PlayList m3u;
    LoadText(m3u, "extinf.m3u",
             "#EXTM3U extra\r\n#EXTINF:123\r\n/m/a.mp3\r\n#EXTINF:  42xyz,T\r\n\r\n"
             "#EXTVLCOPT:x\r\n/m/b.mp3\r\n#EXTINF:,Only title\r\n/m/c.mp3\r\n"
             "#EXTINF:9,lost\r\n#EXTINF:8,kept\r\n/m/d.mp3\r\n#EXTINF:7,no path\r\n");
    ASSERT_EQ(m3u.Count(), 4);
    EXPECT_EQ(m3u.Title(0), "");
    EXPECT_EQ(m3u.Duration(0), -1.0f);
    EXPECT_EQ(m3u.Title(1), "T");
    EXPECT_EQ(m3u.Duration(1), 42.0f);
    EXPECT_EQ(m3u.Path(1), "/m/b.mp3");
    EXPECT_EQ(m3u.Duration(2), 0.0f);
    EXPECT_EQ(m3u.Title(3), "kept");

    // Save writes nothing for another extension (compared exactly).
    for (const char* ext : {".M3U", "m3u", ".txt", ""}) {
        EXPECT_EQ(m3u.Save(Path(std::string("x") + ext), ext), ListFileStatus::UnknownFormat);
        EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(Path(std::string("x") + ext))));
    }
    // Load decides by the extension without case.
    PlayList upper;
    EXPECT_EQ(LoadText(upper, "UP.M3U", "#EXTM3U\n#EXTINF:1,a\n/a\n").added, 1u);
    EXPECT_EQ(LoadText(upper, "x.txt", "#EXTM3U\n#EXTINF:1,a\n/a\n").status,
              ListFileStatus::UnknownFormat);
}

TEST_F(ListFiles, PathsAndEncodings) {
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(Path("lists/sub"))));
    PlayList list;
    LoadText(list, "lists/rel.m3u",
             "#EXTM3U\n#EXTINF:1,\nsub/a.mp3\n#EXTINF:1,\n../b.mp3\n#EXTINF:1,\n./c d.mp3\n"
             "#EXTINF:1,\nhttp://radio.example/stream\n"
             "#EXTINF:1,\nfile:///m/with%20space.mp3\n#EXTINF:1,\nfile://localhost/m/x.mp3\n");
    ASSERT_EQ(list.Count(), 6);
    EXPECT_EQ(list.Path(0), Path("lists/sub/a.mp3"));
    EXPECT_EQ(list.Path(1), Path("b.mp3"));
    EXPECT_EQ(list.Path(2), Path("lists/c d.mp3"));
    EXPECT_EQ(list.Path(3), "http://radio.example/stream");
    EXPECT_EQ(list.Path(4), "/m/with space.mp3");
    EXPECT_EQ(list.Path(5), "/m/x.mp3");

    // Not valid UTF-8: read as Latin-1. A byte-order mark does not hide the header.
    PlayList latin;
    LoadText(latin, "latin.pls", "[playlist]\nFile1=/m/caf\xE9.mp3\nTitle1=Caf\xE9\nLength1=3\n");
    EXPECT_EQ(latin.Path(0), "/m/caf\xC3\xA9.mp3");
    EXPECT_EQ(latin.Title(0), "Caf\xC3\xA9");
    PlayList bom;
    LoadText(bom, "bom.m3u", "\xEF\xBB\xBF#EXTM3U\n#EXTINF:3,\xC3\xA9\n/m/a.mp3\n");
    EXPECT_EQ(bom.Title(0), "\xC3\xA9");
}

TEST_F(ListFiles, BadFilesAddNothingOrWhatTheyHold) {
    PlayList list;
    EXPECT_EQ(list.Load(Path("missing.m3u")).status, ListFileStatus::CannotOpen);
    EXPECT_EQ(LoadText(list, "empty.m3u", "").status, ListFileStatus::NotAList);
    EXPECT_EQ(LoadText(list, "pls-as-m3u.m3u", "[playlist]\nFile1=/a\n").status,
              ListFileStatus::NotAList);
    EXPECT_EQ(LoadText(list, "m3u-as-pls.pls", "#EXTM3U\n#EXTINF:1,a\n/a\n").status,
              ListFileStatus::NotAList);
    std::string binary;
    for (int i = 0; i < 4096; ++i)
        binary.push_back(static_cast<char>((i * 7919) & 0xFF));
    EXPECT_EQ(LoadText(list, "binary.pls", binary).status, ListFileStatus::NotAList);
    // Zero bytes and binary noise after a valid header: valid entries only.
    std::string mixed =
        "#EXTM3U\n#EXTINF:5,ok\n/m/ok.mp3\n#EXTINF:5,bad\n/m/b\0d.mp3\n#EXTINF:1,\n/m/z\0"s +
        binary;
    EXPECT_EQ(LoadText(list, "mixed.m3u", mixed).added, 1u);
    // A folder and a FIFO named like lists are refused without blocking.
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(Path("folder.m3u"))));
    EXPECT_EQ(list.Load(Path("folder.m3u")).status, ListFileStatus::CannotOpen);
    ASSERT_EQ(::mkfifo(Path("fifo.pls").c_str(), 0600), 0);
    EXPECT_EQ(list.Load(Path("fifo.pls")).status, ListFileStatus::CannotOpen);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.ListFileName(), Path("mixed.m3u"));

    // A huge file (sparse: no disk used) is read only up to the bound.
    std::string huge = Path("huge.m3u");
    ASSERT_TRUE(WriteText(huge, "#EXTM3U\n#EXTINF:1,first\n/m/first.mp3\n"));
    ASSERT_EQ(::truncate(huge.c_str(), static_cast<off_t>(1) << 32), 0);  // 4 GiB
    PlayList big;
    ListLoadResult r = big.Load(huge);
    EXPECT_EQ(r.status, ListFileStatus::Ok);
    EXPECT_TRUE(r.truncated);
    EXPECT_EQ(big.Count(), 1);

    // Too many entries: the first kMaxListFileEntries are kept.
    // (Each group here takes three "File" lines: the second and third are
    // consumed as its title and length lines.)
    std::string many = "[playlist]\n";
    for (std::size_t i = 0; i < 3 * kMaxListFileEntries + 10; ++i)
        many += "File1=/a\n";
    r = LoadText(big, "many.pls", many);
    EXPECT_TRUE(r.truncated);
    EXPECT_EQ(r.added, kMaxListFileEntries);
}

TEST_F(ListFiles, SavingIsAtomic) {
    PlayList list;
    list.Add("/m/a.mp3", "A", 1.0f, 0);
    std::string target = Path("keep.m3u");
    ASSERT_TRUE(WriteText(target, "old contents\n"));
    ASSERT_EQ(list.Save(target, ".m3u"), ListFileStatus::Ok);
    EXPECT_EQ(ReadText(target), "#EXTM3U\n#EXTINF:1,A\n/m/a.mp3\n");
    // Nothing but the list is left in the folder.
    EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    struct stat st {};
    ASSERT_EQ(::stat(target.c_str(), &st), 0);
    EXPECT_NE(st.st_mode & S_IRUSR, 0u);

    // A folder that cannot be written: the save fails, the old list stays.
    if (::geteuid() != 0) {
        ASSERT_EQ(::chmod(PathOf(dir_).c_str(), 0555), 0);
        list.Add("/m/b.mp3", "B", 2.0f, 0);
        EXPECT_EQ(list.Save(target, ".m3u"), ListFileStatus::WriteFailed);
        ::chmod(PathOf(dir_).c_str(), 0755);
        EXPECT_EQ(ReadText(target), "#EXTM3U\n#EXTINF:1,A\n/m/a.mp3\n");
    }
    EXPECT_EQ(list.Save(Path("no/such/folder/x.pls"), ".pls"), ListFileStatus::WriteFailed);
    EXPECT_EQ(list.ListFileName(), target);
    EXPECT_FALSE(WriteFileAtomically(Path("dir/"), "x"));
}

TEST(DefaultPlayList, EachDeckKeepsItsOwnList) {
    const std::string data = DataDir().toStdString();
    EXPECT_EQ(DefaultListPath(0), data + "/DeckAPlayList.m3u");
    EXPECT_EQ(DefaultListPath(1), data + "/DeckBPlayList.m3u");
    ::unlink(DefaultListPath(0).c_str());
    ::unlink(DefaultListPath(1).c_str());

    PlayList a, b;
    EXPECT_EQ(LoadDefaultList(a, 0).status, ListFileStatus::CannotOpen);  // first run
    EXPECT_EQ(a.Count(), 0);
    a.Add("/m/a1.mp3", "A1", 10.0f, 0);
    a.Add("/m/a2.mp3", "A2", -1.0f, 0);
    b.Add("/m/b1.mp3", "B1", 20.0f, 0);
    ASSERT_EQ(SaveDefaultList(a, 0), ListFileStatus::Ok);
    ASSERT_EQ(SaveDefaultList(b, 1), ListFileStatus::Ok);

    PlayList a2, b2;
    a2.ShowCdTracks(2, [](int) { return 1.0; });  // a CD list is replaced, not appended to
    EXPECT_EQ(LoadDefaultList(a2, 0).added, 2u);
    EXPECT_EQ(LoadDefaultList(b2, 1).added, 1u);
    EXPECT_EQ(a2.Count(), 2);
    EXPECT_EQ(a2.Title(1), "A2");
    EXPECT_EQ(b2.Path(0), "/m/b1.mp3");
    EXPECT_EQ(a2.ListFileName(), DefaultListPath(0));
}

}  // namespace
