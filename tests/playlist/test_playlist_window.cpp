// The play list window offscreen: delete, move, search, add files, the row
// images, duration measurement held back while a deck is short of blocks,
// folders with their progress bar, the default list across mode changes, and
// the window rendered to PNGs in the build folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProgressBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <memory>

#include "PlayListTestFiles.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/window/CRynCEdit.h"
#include "playlist/window/CRynPlayList.h"

namespace {

using playlisttest::ReadText;

// A window for deck A whose deck is a message log; dialogs answer from the
// test and problems are collected instead of shown.
struct Rig {
    testsupport::MessageLog deck;
    std::unique_ptr<CRynPlayList> window;
    QStringList messages;

    // Deck A starts each test without a default list; deck B's is the
    // default list test's own.
    explicit Rig(int deck = 0) {
        ResetEngineStateForTest();
        if (deck == 0)
            QFile::remove(QString::fromStdString(DefaultListPath(0)));
        window = std::make_unique<CRynPlayList>();
        window->Initialise(this->deck.Handle(), deck);
        CRynPlayList::Dialogs d;
        d.message = [this](const QString& m) { messages << m; };
        window->SetDialogsForTest(d);
        window->resize(420, 300);
    }
    ~Rig() { window->StopPlayList(); }

    PlayList& List() { return window->List(); }
    // Entries "<dir>/<name>.mp3" for each name, rows filled.
    void Fill(const QStringList& names) {
        for (const QString& n : names)
            List().Add("/music/" + n.toStdString() + ".mp3", "", kUnknownDuration, 0);
        window->RebuildRows();
        FillRows();
    }
    void FillRows() {
        while (window->FillOneRow()) {
        }
    }
    QStringList Texts() const {
        QStringList out;
        for (int r = 0; r < window->RowCount(); ++r)
            out << window->RowText(r);
        return out;
    }
};

QStringList Numbered(int n) {
    QStringList out;
    for (int i = 0; i < n; ++i)
        out << QStringLiteral("track %1").arg(i, 3, 10, QLatin1Char('0'));
    return out;
}

}  // namespace

TEST(PlayListWindow, DeleteEmptiesWithShiftAndSelectsTheRowThatTakesTheDeletedPlace) {
    Rig rig;
    rig.Fill(Numbered(200));
    ASSERT_EQ(rig.window->RowCount(), 200);
    rig.window->ClickRow(17);
    // Shift (or Ctrl, Alt) held: every entry goes in one step.
    rig.window->DeleteItem(CNiControl::kShiftBit);
    EXPECT_EQ(rig.List().Count(), 0);
    rig.FillRows();
    EXPECT_EQ(rig.window->RowCount(), 0);
    EXPECT_EQ(rig.window->SelectedRow(), -1);
    testsupport::WaitFor([&] { return rig.deck.Count(UWM_TRACK_NUMBER) > 0; }, 1000);
    EXPECT_EQ(rig.deck.Count(UWM_TRACK_NUMBER), 1);

    rig.Fill({"a", "b", "c", "d", "e"});
    rig.window->ClickRow(4);
    rig.window->DeleteItem(0);
    EXPECT_EQ(rig.Texts(), QStringList({"a", "b", "c", "d"}));
    EXPECT_EQ(rig.window->SelectedRow(), 3);  // the new last row
    EXPECT_EQ(rig.window->RowImage(3), 0);
    rig.window->ClickRow(1);
    rig.window->DeleteItem(0);
    EXPECT_EQ(rig.Texts(), QStringList({"a", "c", "d"}));
    EXPECT_EQ(rig.window->SelectedRow(), 1);  // "c" took b's place
    EXPECT_EQ(rig.window->RowImage(1), 0);
    EXPECT_EQ(rig.window->RowImage(0), 1);
    // Nothing selected: nothing deleted.
    rig.window->SelectNone();
    rig.window->DeleteItem(0);
    EXPECT_EQ(rig.List().Count(), 3);
    EXPECT_EQ(rig.window->RowImage(1), 1);
}

TEST(PlayListWindow, SearchGoesForwardFromTheSelectionWithoutWrappingAround) {
    Rig rig;
    rig.Fill({"opening", "mix intro", "b", "c", "d", "e", "f", "Club MIX"});
    rig.window->ClickRow(3);
    rig.window->SearchField()->setText(QStringLiteral("mix"));
    rig.window->Search();
    EXPECT_EQ(rig.window->SelectedRow(), 7);
    rig.window->Search();  // nothing after row 7, and no wrap to row 1
    EXPECT_EQ(rig.window->SelectedRow(), 7);
    // Enter in the field searches too (by message), from the top when nothing is selected.
    rig.window->SelectNone();
    rig.window->SearchField()->setFocus();
    QTest::keyClick(rig.window->SearchField(), Qt::Key_Return);
    EXPECT_TRUE(testsupport::WaitFor([&] { return rig.window->SelectedRow() == 1; }, 2000));
}

TEST(PlayListWindow, MovesKeepTheMovedRowSelectedAndStopAtTheEnds) {
    Rig rig;
    rig.Fill({"a", "b", "c"});
    rig.List().SetDuration(2, 187.6f);
    rig.window->RebuildRows();
    rig.FillRows();
    rig.window->ClickRow(0);
    rig.window->MoveItemUp();
    EXPECT_EQ(rig.Texts(), QStringList({"a", "b", "c"}));
    rig.window->ClickRow(2);
    rig.window->MoveItemDown();
    EXPECT_EQ(rig.Texts(), QStringList({"a", "b", "c"}));
    EXPECT_EQ(rig.deck.Count(UWM_TRACK_NUMBER), 0);

    rig.window->MoveItemUp();  // c (3:07) up to row 1, its time with it
    EXPECT_EQ(rig.Texts(), QStringList({"a", "c", "b"}));
    EXPECT_EQ(rig.window->RowTime(1), "3:07");
    EXPECT_EQ(rig.window->SelectedRow(), 1);
    EXPECT_EQ(rig.window->RowImage(1), 0);
    EXPECT_EQ(rig.window->RowImage(2), 1);
    EXPECT_EQ(rig.List().Path(1), "/music/c.mp3");
    rig.window->ClickRow(0);
    rig.window->MoveItemDown();
    EXPECT_EQ(rig.Texts(), QStringList({"c", "a", "b"}));
    EXPECT_EQ(rig.window->SelectedRow(), 1);
}

TEST(PlayListWindow, AddedFilesGoBeforeTheSelectionInReverseOrderOrAtTheEnd) {
    Rig rig;
    rig.Fill({"r0", "r1", "r2", "r3", "r4", "r5"});
    rig.window->ClickRow(4);
    rig.window->AddFiles({"/new/first.mp3", "/new/second.mp3", "/new/third.mp3"});
    EXPECT_EQ(rig.Texts(),
              QStringList({"r0", "r1", "r2", "r3", "third", "second", "first", "r4", "r5"}));
    EXPECT_EQ(rig.List().Path(4), "/new/third.mp3");
    EXPECT_EQ(rig.List().Duration(4), kUnknownDuration);
    EXPECT_EQ(rig.List().ItemNumber(4), -1);
    EXPECT_EQ(rig.window->RowTime(4), "");
    EXPECT_EQ(rig.window->SelectedRow(), 3);  // the row before the one selected
    EXPECT_EQ(rig.window->RowImage(3), 0);
    EXPECT_EQ(rig.window->RowImage(7), 1);

    rig.window->SelectNone();
    rig.window->AddFiles({"/new/x.mp3", "/new/y.mp3"});
    rig.FillRows();
    EXPECT_EQ(rig.Texts().mid(9), QStringList({"x", "y"}));
    testsupport::WaitFor([&] { return rig.deck.Count(UWM_TRACK_NUMBER) >= 2; }, 1000);
    EXPECT_EQ(rig.deck.Count(UWM_TRACK_NUMBER), 2);
}

TEST(PlayListWindow, RowImagesFollowSelectionLoadAndPlay) {
    Rig rig;
    rig.Fill({"a", "b", "c"});
    rig.List().LoadIndex(1);
    EXPECT_EQ(rig.window->RowImage(1), 3);  // loaded, the deck does not play
    rig.List().SetPlaying(1);
    EXPECT_EQ(rig.window->RowImage(1), 2);
    rig.window->ClickRow(1);
    EXPECT_EQ(rig.window->RowImage(1), 5);
    rig.List().SetPlaying(0);
    EXPECT_EQ(rig.window->RowImage(1), 4);
    rig.window->ClickRow(2);
    EXPECT_EQ(rig.window->RowImage(1), 3);
    EXPECT_EQ(rig.window->RowImage(2), 0);
    // A double click on another row loads it and asks the deck to play it.
    rig.window->DoubleClickRow(0);
    EXPECT_EQ(rig.List().CurrentIndex(), 0);
    EXPECT_EQ(rig.window->RowImage(0), 4);
    EXPECT_EQ(rig.window->RowImage(1), 1);
    EXPECT_TRUE(testsupport::WaitFor([&] { return rig.deck.Count(UWM_LOAD_AND_PLAY) == 1; }));
}

TEST(PlayListWindow, DisplayModesCycleTagPathName) {
    Rig rig;
    rig.window->SetListMode(PlayList::kFileMode);
    EXPECT_EQ(rig.window->windowTitle(), "Deck A Play List (File Mode)");
    EXPECT_EQ(rig.window->DisplayMode(), "Name");
    // A file whose ID3v1 tag names it: 200 bytes of sound, then the tag.
    QTemporaryDir dir;
    const std::string tagged = dir.path().toStdString() + "/three.mp3";
    std::string bytes(200, '\x55');
    std::string tag = "TAGTagged Title";
    tag.resize(128, '\0');
    ASSERT_TRUE(playlisttest::WriteText(tagged, bytes + tag));
    rig.List().Add("/music/one.mp3", "The One", kUnknownDuration, 0);
    rig.List().Add("/music/two.mp3", "", kUnknownDuration, 0);
    rig.List().Add(tagged, "", kUnknownDuration, 0);
    rig.window->RebuildRows();
    rig.FillRows();
    EXPECT_EQ(rig.Texts(), QStringList({"one", "two", "three"}));
    rig.window->NameTagPath();
    EXPECT_EQ(rig.window->DisplayMode(), "Tag");
    rig.FillRows();
    EXPECT_EQ(rig.Texts(), QStringList({"The One", "two", "Tagged Title"}));
    rig.window->NameTagPath();
    rig.FillRows();
    EXPECT_EQ(rig.Texts(),
              QStringList({"/music/one.mp3", "/music/two.mp3", QString::fromStdString(tagged)}));
    rig.window->NameTagPath();
    EXPECT_EQ(rig.window->DisplayMode(), "Name");
}

TEST(PlayListWindow, DurationsAreMeasuredOneAtATimeButNotWhileAPlayingDeckIsShort) {
    Rig rig;
    const QString two = testsupport::MakeTone("plw_two.wav", 440, 2);
    const QString three = testsupport::MakeTone("plw_three.wav", 440, 3);
    ASSERT_FALSE(two.isEmpty());
    rig.List().Add(two.toStdString(), "", kUnknownDuration, 0);
    rig.List().Add("/nonexistent/mixora/gone.wav", "", kUnknownDuration, 0);
    rig.List().Add(three.toStdString(), "", kUnknownDuration, 0);
    rig.window->RebuildRows();
    rig.FillRows();

    // Deck A plays with fewer blocks ahead than its target: nothing is asked.
    DeckSharedState& a = Engine().decks[0];
    a.isPlaying.store(1);
    a.writeAheadBlocks.store(10);
    a.blocksAheadCopy.store(4);
    for (int i = 0; i < 5; ++i)
        rig.window->DurationTick();
    EXPECT_EQ(rig.List().ProbingIndex(), -1);
    EXPECT_EQ(rig.window->RowTime(0), "");

    // Caught up: one file at a time, the missing one marked, then the next.
    a.blocksAheadCopy.store(10);
    ASSERT_TRUE(testsupport::WaitFor(
        [&] {
            rig.window->DurationTick();
            return !rig.window->RowTime(2).isEmpty();
        },
        10000));
    EXPECT_EQ(rig.window->RowTime(0), "0:02");
    EXPECT_EQ(rig.window->RowTime(1), CRynPlayList::kNoDuration);
    EXPECT_EQ(rig.window->RowTime(2), "0:03");
    EXPECT_NEAR(rig.List().Duration(2), 3.0, 0.05);
    EXPECT_EQ(rig.List().Duration(1), kUnknownDuration);
    EXPECT_EQ(rig.List().ProbingIndex(), -1);
}

TEST(PlayListWindow, AFolderIsInsertedInPathOrderWhileTheProgressBarAdvances) {
    Rig rig;
    QTemporaryDir dir;
    const std::string root = dir.path().toStdString();
    QDir().mkpath(dir.path() + "/sub");
    for (const char* name : {"/c.mp3", "/a.wav", "/sub/b.ogg", "/notes.txt"})
        ASSERT_TRUE(playlisttest::WriteText(root + name, "x"));
    rig.window->SetListMode(PlayList::kFileMode);
    rig.window->AddFolder(dir.path());
    EXPECT_TRUE(rig.window->ProgressBar()->isVisibleTo(rig.window.get()));
    EXPECT_EQ(rig.window->ProgressBar()->maximum(), 3);
    ASSERT_TRUE(testsupport::WaitFor(
        [&] { return !rig.window->ProgressBar()->isVisibleTo(rig.window.get()); }));
    EXPECT_EQ(rig.window->ProgressBar()->value(), 3);
    ASSERT_EQ(rig.List().Count(), 3);
    EXPECT_EQ(rig.List().Path(0), root + "/a.wav");
    EXPECT_EQ(rig.List().Path(1), root + "/c.mp3");
    EXPECT_EQ(rig.List().Path(2), root + "/sub/b.ogg");
    // An empty folder ends at once.
    QTemporaryDir empty;
    rig.window->AddFolder(empty.path());
    EXPECT_TRUE(testsupport::WaitFor(
        [&] { return !rig.window->ProgressBar()->isVisibleTo(rig.window.get()); }));
    EXPECT_EQ(rig.List().Count(), 3);
}

TEST(PlayListWindow, ListsAreSavedOpenedAndAddedThroughTheDelayedDialogs) {
    Rig rig;
    QTemporaryDir dir;
    const QString saved = dir.path() + "/set";
    rig.window->SetListMode(PlayList::kFileMode);
    rig.Fill({"one", "two"});
    CRynPlayList::Dialogs d;
    d.message = [&](const QString& m) { rig.messages << m; };
    d.saveAs = [&] { return saved + ".PLS"; };
    d.openList = [&] { return saved + ".pls"; };
    rig.window->SetDialogsForTest(d);
    rig.window->SaveList();  // no name yet: the save as dialog, after its delay
    EXPECT_TRUE(testsupport::WaitFor([&] { return QFile::exists(saved + ".pls"); }, 3000));
    EXPECT_EQ(rig.window->windowTitle(), saved + ".pls");
    EXPECT_TRUE(QString::fromStdString(ReadText((saved + ".pls").toStdString()))
                    .endsWith("NumberOfEntries=2\nVersion=2\n"));
    // The deck was asked for the longest latency, and let go again.
    EXPECT_TRUE(testsupport::WaitFor([&] { return rig.deck.Count(UWM_LATENCY_MAXIMUM) >= 2; }));

    rig.window->OpenList();
    rig.FillRows();
    EXPECT_EQ(rig.Texts(), QStringList({"one", "two"}));
    rig.window->AddList(saved + ".pls");
    rig.FillRows();
    EXPECT_EQ(rig.List().Count(), 4);
    EXPECT_TRUE(rig.messages.isEmpty()) << rig.messages.join('\n').toStdString();
    rig.window->AddList(dir.path() + "/missing.m3u");
    ASSERT_EQ(rig.messages.size(), 1);
    EXPECT_TRUE(rig.messages[0].contains("could not be opened"));
    EXPECT_EQ(rig.List().Count(), 4);
}

TEST(PlayListWindow, TheDefaultListIsSavedAtTheChangeToCdModeAndAtShutdownAndLoadedInFileMode) {
    const std::string path = DefaultListPath(1);
    QFile::remove(QString::fromStdString(path));
    {
        Rig rig(1);
        rig.window->SetListMode(PlayList::kFileMode);
        EXPECT_EQ(rig.List().Count(), 0);  // first run: no default list yet
        rig.List().Add("/music/kept.mp3", "", 61.0f, 0);
        rig.window->SetListMode(PlayList::kCdMode);
        EXPECT_EQ(rig.window->windowTitle(), "Deck B Play List (CD Mode)");
        EXPECT_EQ(rig.window->DisplayMode(), "");
        EXPECT_NE(ReadText(path).find("#EXTINF:61,\n/music/kept.mp3\n"), std::string::npos);
        // The deck fills the list from the disc; back in File mode the saved list returns.
        rig.List().ShowCdTracks(3, [](int) { return 10.0; });
        rig.window->SetListMode(PlayList::kFileMode);
        ASSERT_EQ(rig.List().Count(), 1);
        EXPECT_EQ(rig.List().Path(0), "/music/kept.mp3");
        rig.List().Add("/music/added.mp3", "", kUnknownDuration, 0);
        rig.window->StopPlayList();  // shutdown in File mode saves
    }
    EXPECT_NE(ReadText(path).find("/music/added.mp3"), std::string::npos);
    {
        // Started in CD mode, the window never writes over the default list.
        Rig rig(1);
        rig.window->SetListMode(PlayList::kCdMode);
        rig.window->StopPlayList();
    }
    Rig rig(1);
    rig.window->SetListMode(PlayList::kFileMode);
    EXPECT_EQ(rig.List().Count(), 2);
}

TEST(PlayListWindow, RendersInFileAndCdModeToPngs) {
    Rig rig;
    rig.window->SetListMode(PlayList::kFileMode);
    rig.List().Clear();
    const char* names[] = {"Opening Set", "mix intro", "Deep Groove", "Club MIX", "Last Call"};
    float seconds = 187.6f;
    for (const char* n : names) {
        rig.List().Add(std::string("/music/") + n + ".mp3", "", seconds, 0);
        seconds += 61.3f;
    }
    rig.List().Add("/music/Not Measured.mp3", "", kUnknownDuration, 0);
    rig.window->RebuildRows();
    rig.FillRows();
    rig.List().LoadIndex(1);
    rig.List().SetPlaying(1);
    rig.window->ClickRow(3);
    rig.window->resize(460, 320);
    const QString file = QStringLiteral(MIXORA_BINARY_DIR "/playlist-window-file-mode.png");
    ASSERT_TRUE(rig.window->grab().save(file));
    EXPECT_GT(QFile(file).size(), 1000);

    rig.window->SetListMode(PlayList::kCdMode);
    rig.List().ShowCdTracks(4, [](int t) { return 120.0 + t * 17; });
    rig.FillRows();
    rig.List().LoadIndex(0);
    const QString cd = QStringLiteral(MIXORA_BINARY_DIR "/playlist-window-cd-mode.png");
    ASSERT_TRUE(rig.window->grab().save(cd));
    EXPECT_EQ(rig.window->RowText(0), "Track 1");
    EXPECT_EQ(rig.window->RowTime(1), "2:34");
    // The File mode buttons are hidden in CD mode, and the list grows into their place.
    EXPECT_EQ(rig.window->ListControl()->columnWidth(0),
              460 - CRynPlayList::kFilesColumnMargin - CRynPlayList::kTempoColumnWidth);
}
