// The play list's "BPM" column: a measured tempo is stored in every entry of
// its file and shown with one decimal; rows made later show it too, and a
// tempo that is not known leaves the cell empty.
#include <gtest/gtest.h>

#include <QFile>
#include <QTreeWidget>
#include <memory>

#include "TestSupport.h"
#include "core/EngineState.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/window/CRynPlayList.h"

TEST(PlayListTempoColumn, MeasuredTempoIsStoredAndShownInEveryRowOfItsFile) {
    ResetEngineStateForTest();
    QFile::remove(QString::fromStdString(DefaultListPath(0)));
    testsupport::MessageLog deck;
    auto window = std::make_unique<CRynPlayList>();
    window->Initialise(deck.Handle(), 0);
    window->resize(420, 300);
    PlayList& list = window->List();
    for (const char* p : {"/music/a.mp3", "/music/b.mp3", "/music/a.mp3"})
        list.Add(p, "", kUnknownDuration, 0);
    window->RebuildRows();
    while (window->FillOneRow()) {
    }
    QTreeWidget* rows = window->ListControl();
    ASSERT_EQ(rows->columnCount(), 3);
    EXPECT_EQ(rows->headerItem()->text(2), "BPM");
    EXPECT_EQ(rows->topLevelItem(0)->text(2), "");

    window->ShowTempo("/music/a.mp3", 127.96f);
    EXPECT_EQ(rows->topLevelItem(0)->text(2), "128.0");
    EXPECT_EQ(rows->topLevelItem(1)->text(2), "");
    EXPECT_EQ(rows->topLevelItem(2)->text(2), "128.0");
    EXPECT_FLOAT_EQ(list.Tempo(2), 127.96f);
    EXPECT_EQ(list.TempoText(1), "");

    // The rows made again (a search, a rebuild) keep the stored tempo.
    window->RebuildRows();
    while (window->FillOneRow()) {
    }
    EXPECT_EQ(rows->topLevelItem(2)->text(2), "128.0");

    // A file not in the list changes nothing; 0 clears.
    window->ShowTempo("/music/c.mp3", 90.0f);
    window->ShowTempo("/music/b.mp3", 0.0f);
    EXPECT_EQ(rows->topLevelItem(1)->text(2), "");
    QImage shot = window->grab().toImage();
    EXPECT_TRUE(shot.save(QStringLiteral(MIXORA_BINARY_DIR "/playlist-tempo-column.png")));
    window->StopPlayList();
}
