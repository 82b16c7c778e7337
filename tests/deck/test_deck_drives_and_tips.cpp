// The decks' CD drive choosers follow each other through the main mixer
// (a drive one deck takes leaves the other's list and comes back when it is
// released), and the deck's LEDs and CD error-correction button carry their
// titled tool tips.
#include <gtest/gtest.h>

#include <QComboBox>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;

namespace {

QStringList Items(const QComboBox* chooser) {
    QStringList items;
    for (int i = 0; i < chooser->count(); ++i)
        items << chooser->itemText(i);
    return items;
}

}  // namespace

TEST(DeckDrives, ADriveOneDeckTakesLeavesTheOtherDecksList) {
    const testsupport::CdImage image = testsupport::MakeCdImage("drives-cd");
    ASSERT_TRUE(image.ok);
    const std::unique_ptr<CRynCdAudio> reader = testsupport::MakeImageReader(image);
    ASSERT_EQ(reader->DriveCount(), 1);
    const QString drive = QString::fromStdString(reader->DriveName(0));

    PlaybackRig rig(true);
    CRynDeck& a = rig.Deck(0);
    CRynDeck& b = rig.Deck(1);
    for (CRynDeck* deck : {&a, &b}) {
        deck->SetCdAudio(reader.get());
        deck->SetDeckMode(0);
    }
    const QStringList both = {"No CD Drive Selected", drive};
    ASSERT_TRUE(WaitFor([&] { return Items(b.DriveChooser()) == both; }));
    EXPECT_EQ(Items(a.DriveChooser()), both);

    // Deck A takes the drive: deck B no longer offers it.
    a.DriveChooser()->setCurrentIndex(1);
    a.SelectDriveItem(1);
    EXPECT_EQ(rig.Mixer().DriveOf(0), 0);
    EXPECT_TRUE(WaitFor([&] { return Items(b.DriveChooser()).size() == 1; }));
    EXPECT_EQ(Items(b.DriveChooser()), QStringList{"No CD Drive Selected"});
    EXPECT_EQ(Items(a.DriveChooser()), both);
    EXPECT_EQ(a.DriveChooser()->currentIndex(), 1);

    // Released again: both lists offer it.
    a.DriveChooser()->setCurrentIndex(0);
    a.SelectDriveItem(0);
    EXPECT_TRUE(WaitFor([&] { return Items(b.DriveChooser()) == both; }));
    EXPECT_EQ(rig.Mixer().DriveOf(0), -1);
}

TEST(DeckDrives, TheLedsAndTheErrorCorrectionButtonCarryTheirToolTips) {
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    QStringList tips;
    for (CNiButton* b : deck.findChildren<CNiButton*>())
        tips << b->toolTip();
    const QString all = tips.join('\n');
    EXPECT_TRUE(
        all.contains("<b>Fresh Data Is Low Warning LED:</b><br>Lights up when the disc "
                     "buffer is low and its priority has been increased."));
    EXPECT_TRUE(
        all.contains("This LED will light up when the disc buffer is low and has been "
                     "prioritized."));
    EXPECT_TRUE(
        all.contains("<b>Disc Read Error LED:</b><br>This LED will light up when a disc "
                     "read error has occured."));
    EXPECT_TRUE(
        all.contains("<b>CD Error Correction:</b><br>Turn On Error Correction (Seek "
                     "Correction) for CD Rom drive."));
}
