// The deck's source controls: the eject file dialog, the deck mode and its
// captions and buttons, and one CD drive for one deck at a time.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDir>

#include "DeckRig.h"
#include "TestSupport.h"
#include "controls/CNiButton.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/PlayList.h"
#include "sources/CRynCdAudio.h"
#include "sources/CdImageFixture.h"

using testsupport::PlaybackRig;
using testsupport::WaitFor;

namespace {

int ItemOfImage(CRynDeck& deck, CRynCdAudio& reader, const QString& cue) {
    QComboBox* chooser = deck.DriveChooser();
    for (int i = 1; i < chooser->count(); ++i) {
        if (reader.DriveRoot(chooser->itemData(i).toInt()) == cue.toStdString())
            return i;
    }
    return -1;
}

}  // namespace

TEST(DeckSources, EjectOpensTheFileDialogAndPlaysTheFirstChosenFile) {
    const QString a = testsupport::MakeTone("eject-a.wav", 330, 3);
    const QString b = testsupport::MakeTone("eject-b.wav", 550, 3);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty());
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    deck.SetDeckMode(1);
    EXPECT_EQ(deck.TrackNameText(), "No File Is Loaded");
    EXPECT_TRUE(deck.EjectButton()->isEnabled());
    EXPECT_FALSE(deck.StartStopButton()->isEnabled());

    int dialogs = 0;
    QStringList answer;
    deck.SetFileDialogForTest([&] {
        ++dialogs;
        return answer;
    });
    EXPECT_TRUE(CRynDeck::FileDialogFilter().startsWith("Files (*.wav *.mp3 *.wma *.ogg"));
    EXPECT_TRUE(CRynDeck::FileDialogFilter().endsWith(";;All Files (*)"));

    // Cancelled: nothing changes, and the latency comes back.
    deck.Eject();
    ASSERT_TRUE(WaitFor([&] { return dialogs == 1; }));
    EXPECT_EQ(deck.List().Count(), 0);
    EXPECT_FALSE(rig.Mixer().Target(0).MaximumRequested());

    // Two files: both join the list, the first loads and the turntable turns.
    answer = {a, b};
    deck.Eject();
    ASSERT_TRUE(WaitFor([&] { return dialogs == 2 && deck.Primed(); }, 10000));
    EXPECT_EQ(deck.List().Count(), 2);
    EXPECT_EQ(deck.TrackNameText(), "eject-a");
    EXPECT_EQ(deck.TrackNumberText(), "1/2");
    EXPECT_EQ(deck.StartStopButton()->Caption(), "stop");
    EXPECT_TRUE(deck.DropLiftButton()->isEnabled());
    EXPECT_FALSE(deck.ModeButton()->isEnabled());  // no mode change while turning
    ASSERT_TRUE(deck.NextTrack());
    EXPECT_EQ(deck.TrackNameText(), "eject-b");
    EXPECT_FALSE(deck.NextTrack());
    ASSERT_TRUE(deck.PreviousTrack());
    EXPECT_EQ(deck.TrackNumberText(), "1/2");
    deck.StopTurntable();
    EXPECT_TRUE(deck.ModeButton()->isEnabled());
}

TEST(DeckSources, ModesAndADriveServesOneDeckAtATime) {
    const testsupport::CdImage image = testsupport::MakeCdImage("deck-drives");
    ASSERT_TRUE(image.ok);
    const std::unique_ptr<CRynCdAudio> owned = testsupport::MakeImageReader(image);
    CRynCdAudio& reader = *owned;

    PlaybackRig rig(true);
    CRynDeck& a = rig.Deck(0);
    CRynDeck& b = rig.Deck(1);
    for (CRynDeck* d : {&a, &b}) {
        d->SetCdAudio(&reader);
        d->SetDeckMode(0);
        EXPECT_EQ(d->ModeButton()->Caption(), "CD");
        EXPECT_TRUE(d->DriveChooser()->isEnabled());
        EXPECT_FALSE(d->EjectButton()->isEnabled());
        EXPECT_EQ(d->TrackNameText(), "No CD Drive Is Selected");
    }
    const int item = ItemOfImage(a, reader, image.cuePath);
    ASSERT_GT(item, 0);
    a.DriveChooser()->setCurrentIndex(item);
    a.SelectDriveItem(item);
    EXPECT_EQ(a.TrackNameText(), "No Track Is Loaded");
    EXPECT_EQ(a.List().Count(), 4);
    EXPECT_EQ(rig.Mixer().DriveOf(0), a.DriveChooser()->itemData(item).toInt());

    // Deck B asks for the same drive: refused, nothing changes for it.
    b.DriveChooser()->setCurrentIndex(item);
    b.SelectDriveItem(item);
    EXPECT_EQ(b.DriveChooser()->currentIndex(), 0);
    EXPECT_EQ(b.List().Count(), 0);
    EXPECT_EQ(rig.Mixer().DriveOf(1), -1);
    EXPECT_EQ(Engine().decks[1].cdDrive.load(), -1);

    // Deck A's first track starts by itself, then deck A goes back to File
    // mode once stopped, which frees the drive for deck B.
    ASSERT_TRUE(WaitFor([&] { return a.Primed(); }, 10000));
    EXPECT_EQ(a.TrackNameText(), "Track 1");
    a.SetDeckMode(1);  // refused while turning
    EXPECT_EQ(a.ModeButton()->Caption(), "CD");
    a.StopTurntable();
    a.SetDeckMode(1);
    EXPECT_EQ(a.ModeButton()->Caption(), "File");
    EXPECT_EQ(a.DriveChooser()->count(), 0);
    EXPECT_FALSE(a.DriveChooser()->isEnabled());
    EXPECT_EQ(rig.Mixer().DriveOf(0), -1);
    b.DriveChooser()->setCurrentIndex(item);
    b.SelectDriveItem(item);
    EXPECT_EQ(b.List().Count(), 4);
    EXPECT_NE(rig.Mixer().DriveOf(1), -1);
}
