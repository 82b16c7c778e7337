// A deck with its play list window: the deck mode switches the list between
// the deck's default list (File mode) and the disc in the chosen drive (CD
// mode, a CUE/BIN image), saving the File mode list on the way to CD mode.
#include <gtest/gtest.h>

#include <QFile>
#include <memory>

#include "TestSupport.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "playlist/DefaultPlayList.h"
#include "playlist/window/CRynPlayList.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

TEST(DeckPlayList, TheDeckModeSwitchesTheListBetweenTheDefaultListAndTheDisc) {
    ResetEngineStateForTest();
    const QString defaultList = QString::fromStdString(DefaultListPath(0));
    QFile::remove(defaultList);
    const testsupport::CdImage image = testsupport::MakeCdImage(QStringLiteral("deck-list-cd"));
    ASSERT_TRUE(image.ok);
    std::unique_ptr<CRynCdAudio> reader = testsupport::MakeImageReader(image);
    ASSERT_EQ(reader->DriveCount(), 1);
    // The main mixer: every drive request granted.
    testsupport::MessageLog mixer;
    mixer.onMessage = [](Uwm msg, WParam, LParam) { return msg == UWM_ASSIGN_CD_DRIVE ? 1 : 0; };

    CRynDeck deck;
    CRynPlayList window;
    window.Initialise(deck.Handle(), 0);
    deck.Initialise(nullptr, nullptr, &window, mixer.Handle(), 0);
    deck.SetCdAudio(reader.get());
    auto fill = [&] {
        while (window.FillOneRow()) {
        }
    };

    deck.SetDeckMode(1);
    EXPECT_EQ(window.windowTitle(), "Deck A Play List (File Mode)");
    EXPECT_EQ(window.DisplayMode(), "Name");
    EXPECT_EQ(&deck.List(), &window.List());
    window.AddFiles({"/music/kept one.mp3", "/music/kept two.mp3"});

    deck.SetDeckMode(0);
    EXPECT_EQ(window.windowTitle(), "Deck A Play List (CD Mode)");
    EXPECT_EQ(window.DisplayMode(), "");
    EXPECT_EQ(deck.List().Count(), 0);  // no drive chosen yet
    QFile saved(defaultList);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_TRUE(saved.readAll().contains("/music/kept two.mp3"));

    deck.SelectDriveItem(1);  // the disc image
    fill();
    ASSERT_EQ(window.RowCount(), 4);
    EXPECT_EQ(window.RowText(0), "Track 1");
    EXPECT_EQ(window.RowTime(0), "0:02");
    EXPECT_EQ(window.RowItemData(3), 4);
    EXPECT_EQ(window.SelectedRow(), 0);

    deck.SelectDriveItem(0);  // no drive: the deck goes back to File mode
    deck.SetDeckMode(1);
    fill();
    ASSERT_EQ(window.RowCount(), 2);
    EXPECT_EQ(window.RowText(0), "kept one");
    EXPECT_EQ(window.RowText(1), "kept two");
    deck.Shutdown();
    window.StopPlayList();
}
