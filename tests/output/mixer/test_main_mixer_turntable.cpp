// The main mixer's turntable messages on a playing deck: the reverse ring's
// position and frequency each by their own message, the direction switch,
// and the scratch buffer made at the deck's stream rate (not its tempo).
// And the deck's platters going back to 0 when its CD drive is released.
#include <gtest/gtest.h>

#include <QDir>

#include "TestSupport.h"
#include "controls/CNiKnob.h"
#include "deck/CRynDeck.h"
#include "deck/DeckRig.h"
#include "deck/turntable/DeckTurntablePanel.h"
#include "deck/turntable/TurntableController.h"
#include "output/mixer/CRynMainMixer.h"

using testsupport::PlaybackRig;

TEST(MainMixerTurntable, ReverseRingDirectionAndScratchMessages) {
    const QString path = QDir(testsupport::FixtureDir()).filePath("mixer-48k.wav");
    ASSERT_FALSE(testsupport::WriteWav(path, 48000, 5 * 48000, testsupport::NoiseSample).empty());
    PlaybackRig rig;
    ASSERT_TRUE(rig.LoadAndPrime(0, {path}));
    ASSERT_TRUE(rig.Drop(0));
    ASSERT_TRUE(rig.RenderBlocks(10));
    CRynMainMixer& mixer = rig.Mixer();
    CRynAudioOutput& out = mixer.MainOutput();
    CRynSoundEngine::DeckBuffers& buffers = out.SoundEngine()->Deck(0);
    const std::uint32_t forwardHz = buffers.forward->Frequency();

    SendAppMessage(mixer.Handle(), UWM_SET_REVERSE_FREQUENCY, 0, 30000);
    EXPECT_EQ(buffers.reverse->Frequency(), 30000u);
    EXPECT_EQ(buffers.forward->Frequency(), forwardHz);
    SendAppMessage(mixer.Handle(), UWM_SET_REVERSE_POSITION, 0, 17);
    EXPECT_EQ(out.ReversePlayCursor(0).blocks, 17);

    // Backwards: the forward ring stops, the reverse one plays at the mirror.
    const int forwardBlock = out.ForwardPlayCursor(0).blocks;
    SendAppMessage(mixer.Handle(), UWM_SET_DIRECTION, 0, 0);
    EXPECT_FALSE(out.IsForwardPlaying(0));
    EXPECT_TRUE(out.IsReversePlaying(0));
    EXPECT_EQ(out.ReversePlayCursor(0).blocks, 119 - forwardBlock);
    SendAppMessage(mixer.Handle(), UWM_SET_DIRECTION, 0, 1);
    EXPECT_TRUE(out.IsForwardPlaying(0));
    EXPECT_FALSE(out.IsReversePlaying(0));

    // A scratch of 1001 bytes at the file's 48000 Hz, whatever the tempo.
    Engine().decks[0].outputFrequency.store(50000);
    SendAppMessage(mixer.Handle(), UWM_START_SCRATCH, 0, 1001);
    ASSERT_NE(buffers.scratch, nullptr);
    EXPECT_EQ(buffers.scratchBytes, 1000);
    EXPECT_EQ(buffers.scratch->Frequency(), 48000u);
    EXPECT_TRUE(mixer.Notifications().Running(NotifyKind::Scratch, 0));
    SendAppMessage(mixer.Handle(), UWM_PLAY_SCRATCH, 0, 0);
    EXPECT_TRUE(buffers.scratch->IsPlaying());
    EXPECT_FALSE(out.IsForwardPlaying(0));
    // Done while the deck holds no loop: the scratch ends, forward plays again.
    SendAppMessage(mixer.Handle(), UWM_SCRATCH_DONE, 0, 0);
    EXPECT_EQ(buffers.scratch, nullptr);
    EXPECT_TRUE(out.IsForwardPlaying(0));
    rig.Deck(0).StopTurntable();
}

TEST(MainMixerTurntable, ReleasingTheCdDriveSetsBothPlattersToZero) {
    PlaybackRig rig;
    CRynDeck& deck = rig.Deck(0);
    DeckTurntablePanel* panel = deck.TurntablePanel();
    panel->Knob(0)->SetValue(0.4);
    panel->Knob(1)->SetValue(0.7);
    deck.SetDeckMode(0);  // CD mode starts without a drive: the drive is released
    EXPECT_EQ(panel->Knob(0)->Value(), 0.0);
    EXPECT_EQ(panel->Knob(1)->Value(), 0.0);
    EXPECT_TRUE(deck.Turntable().Writing());
}
